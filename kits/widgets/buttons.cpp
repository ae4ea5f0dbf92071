#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "host/kit_widgets.h"
#include "kits/widgets/painter.h"
#include "kits/widgets/shown_widgets_note.h"

// The four images lie in one block behind a record of the library's own, which the button reaches through image[0].
namespace {

constexpr int IMAGE_NB = 4;
enum Image : int { Image_Plain, Image_Hover, Image_Pressed, Image_Current };
constexpr unsigned short LOOK_PLAIN = 0;
constexpr unsigned short LOOK_HOVER = 1;
constexpr unsigned short LOOK_PRESSED = 2;

constexpr std::size_t IMAGE_AREA_MAX = std::size_t{1} << 24U;  // pixels; larger buttons have no images
constexpr int MARK_THICKNESS = 2;                              // pixels of the current mark's frame
constexpr int INACTIVE_MIX = 50;                               // percent of the panel's colour
constexpr int HOVER_SHADE = 25;                                // percent
constexpr int PRESSED_SHADE = 48;                              // percent
constexpr int BORDER_MIX = 75;                                 // percent of the line's colour in the border
constexpr int CAPTION_MARGIN = 2;                              // pixels on either side of a caption

struct Image_Block {
    int width;
    int height;
    std::uint64_t painted_sum;       // of the face when the button was last painted; 0: not since Init
    std::uint64_t painted_mark_sum;  // of the image that its current mark showed; 0: no mark
    unsigned short painted_look;
};
constexpr std::size_t BLOCK_HEAD = (sizeof(Image_Block) + 15U) & ~std::size_t{15U};

Image_Block* Block_Of(const Buttons& button) {
    return button.image[0] == nullptr
               ? nullptr
               : reinterpret_cast<Image_Block*>(reinterpret_cast<unsigned char*>(button.image[0]) - BLOCK_HEAD);
}

std::size_t Pixel_Nb(const Buttons& button) {
    return static_cast<std::size_t>(button.width) * static_cast<std::size_t>(button.height);
}

bool Images_Fit(const Buttons& button) {
    const Image_Block* block = Block_Of(button);
    return block != nullptr && block->width == button.width && block->height == button.height;
}

/** The backgrounds of the four images: distinct, and none of them 0, which stands for an outline painted by a panel. */
void Background_Colors(Rgb face, Rgb out[IMAGE_NB]) {
    out[Image_Plain] = face != 0 ? face : 0x010101U;
    out[Image_Hover] = Shade(face, HOVER_SHADE);
    out[Image_Pressed] = Shade(face, PRESSED_SHADE);
    out[Image_Current] = Contrast_Color(face);
    for (int i = 1; i < IMAGE_NB; i++) {
        while (out[i] == 0 || std::find(out, out + i, out[i]) != out + i) {
            out[i] = out[i] >= 0xFFFFFFU ? 0x010101U : out[i] + 1U;
        }
    }
}

/** A sum over one image that tells whether a panel painted into it. Two pixels at a time, and several sums side by
 * side, so that none waits for the multiplication of another. */
std::uint64_t Image_Sum(const unsigned int* pixels, std::size_t nb) {
    constexpr std::size_t lane_nb = 8;
    constexpr std::size_t step = 2 * lane_nb;
    constexpr std::uint64_t factor = 0x9E3779B97F4A7C15ULL;
    std::uint64_t lanes[lane_nb] = {1, 2, 3, 4, 5, 6, 7, 8};
    const auto take = [&](std::size_t lane, std::uint64_t pair) {
        lanes[lane] = (lanes[lane] ^ pair) * factor;
        lanes[lane] ^= lanes[lane] >> 32U;
    };
    const unsigned int* const end = pixels + nb;
    for (std::size_t whole = nb / step; whole > 0; whole--, pixels += step) {
        std::uint64_t pairs[lane_nb];
        std::memcpy(pairs, pixels, sizeof pairs);
        for (std::size_t lane = 0; lane < lane_nb; lane++) {
            take(lane, pairs[lane]);
        }
    }
    for (; pixels != end; pixels++) {
        take(0, *pixels);
    }
    std::uint64_t sum = 0;
    for (std::size_t lane = 0; lane < lane_nb; lane++) {
        sum ^= lanes[lane] << lane;
    }
    return sum;
}

/** A sum over the image that is the face. Never 0. Runs over every visible button with every move of the pointer, so
 * the images that are not shown are left out: they are read when they come into sight. */
std::uint64_t Face_Sum(const Buttons& button) {
    const int face = std::clamp<int>(button.state, Image_Plain, Image_Pressed);
    return Image_Sum(button.image[face], Pixel_Nb(button)) | 1U;
}

/** The same over the image that the current mark shows; 0: no mark. */
std::uint64_t Mark_Sum(const Buttons& button) {
    return button.current != 0 ? Image_Sum(button.image[Image_Current], Pixel_Nb(button)) | 1U : 0;
}

// ---- drawing

/** Where the parts of a button stand, in its picture. */
struct Button_Layout {
    Rect area;
    Rect mark;   // outer rectangle of the current mark's frame
    Rect check;  // the left quarter
    Rect caption;
};

Button_Layout Layout_Of(const Buttons& button) {
    Button_Layout layout;
    layout.area = {0, 0, button.width, button.height};
    layout.mark = layout.area.Inner(Widget_Border(button));
    const Rect inner = layout.mark.Inner(MARK_THICKNESS);
    layout.caption = inner;
    if ((button.style & STYLE_SHOW_CHECK) != 0) {
        layout.check = Rect_Common({inner.left, inner.top, button.width / 4, inner.height}, inner);
        layout.caption.left += layout.check.width;
        layout.caption.width -= layout.check.width;
    }
    layout.caption.left += CAPTION_MARGIN;
    layout.caption.width -= 2 * CAPTION_MARGIN;
    return layout;
}

/** What a button's look depends on besides its images. */
struct Button_Look {
    int face = Image_Plain;
    bool inactive = false;
    Rgb backgrounds[IMAGE_NB] = {};
    Rgb ground = 0;  // the face's background as it is shown
    Rgb ink = 0;     // text and check mark on it
};

Button_Look Look_Of(const Buttons& button) {
    Button_Look look;
    Background_Colors(Rgb_Of(button.color), look.backgrounds);
    look.inactive = Widget_Inactive(button);
    look.face = look.inactive ? Image_Plain : std::clamp<int>(button.state, Image_Plain, Image_Pressed);
    look.ground = look.backgrounds[look.face];
    if (look.inactive) {
        look.ground = Mix(look.ground, Theme_Now().panel, INACTIVE_MIX);
    }
    look.ink = Contrast_Color(look.ground);
    if (look.inactive) {
        look.ink = Mix(look.ink, look.ground, INACTIVE_MIX);
    }
    return look;
}

void Draw_Image(Surface& picture, const Buttons& button, const Button_Look& look, int image) {
    const Rect area = {0, 0, button.width, button.height};
    if (Images_Fit(button)) {
        picture.Blit(area, button.image[image], button.width);
    } else {
        picture.Fill(area, look.backgrounds[image]);
    }
    if (look.inactive) {
        picture.Tint(area, Theme_Now().panel, INACTIVE_MIX);
    }
}

/** The marks over a face: the current mark's frame shows the fourth image, whose background contrasts with the face. */
void Draw_Marks(Surface& picture, const Buttons& button, const Button_Look& look, const Button_Layout& layout) {
    if (button.current != 0) {
        for (const Rect& side : Frame_Sides(layout.mark, MARK_THICKNESS)) {
            const Rect before = picture.Clip_Set(side);
            Draw_Image(picture, button, look, Image_Current);
            picture.Clip_Set(before);
        }
    }
    if (button.checked != 0) {
        Draw_Check(picture, layout.check, look.ink);
    }
}

void Draw_Border(Surface& picture, const Buttons& button, const Button_Look& look, const Rect& area) {
    const bool plain = look.inactive || button.state == LOOK_PLAIN;
    const Rgb line = plain ? Theme_Now().line : Contrast_Color(look.ground);
    picture.Frame(area, Widget_Border(button), Mix(look.ground, line, BORDER_MIX));
}

/** True when the caption reads upwards, over the whole button: a tall narrow button has room in that direction only. */
bool Is_Caption_Upwards(const Buttons& button, const Button_Layout& layout) {
    const int text_width = Text_Width(button.name, Widget_Font(button));
    return text_width > layout.caption.width && text_width <= layout.area.height;
}

/** In the middle of the button, or right of the check mark's place when it would reach into it: a check mark never
 * moves a caption. */
void Draw_Button_Caption(Surface& picture, const Buttons& button, const Button_Look& look,
                         const Button_Layout& layout) {
    if (button.name[0] == 0) {
        return;
    }
    if (Is_Caption_Upwards(button, layout)) {
        picture.Text_Upwards(layout.area, button.name, Widget_Font(button), look.ink);
        return;
    }
    Rect place = layout.caption;
    const int middle = layout.area.width / 2;
    const int half = (Text_Width(button.name, Widget_Font(button)) + 1) / 2;
    if (middle - half >= place.left) {
        place.left = middle - half;
        place.width = std::min(2 * half, layout.caption.Right() - place.left);
    }
    Draw_Caption(picture, place, button, button.name, look.ink, Align::Center);
}

void Note(const Buttons& button) {
    Shown_Note(button, {Widget_Kind::Button, button.name, {}, button.current != 0, button.checked != 0});
}

void Paint(Buttons& button) {
    if (Widget_Hidden(button)) {
        return;
    }
    Painter painter(button);
    if (!painter) {
        return;
    }
    Count_Draw();
    Note(button);
    Surface& picture = painter.Picture();
    const Button_Look look = Look_Of(button);
    const Button_Layout layout = Layout_Of(button);
    Draw_Image(picture, button, look, look.face);
    Draw_Border(picture, button, look, layout.area);
    Draw_Marks(picture, button, look, layout);
    Draw_Button_Caption(picture, button, look, layout);
    if (Images_Fit(button)) {
        Image_Block* block = Block_Of(button);
        block->painted_sum = Face_Sum(button);
        block->painted_mark_sum = Mark_Sum(button);
        block->painted_look = button.state;
    }
}

/** Takes a transient look; paints only when it differs from the present one. */
void Look_Set(Buttons& button, unsigned short look) {
    if (button.state != look) {
        button.state = look;
        Paint(button);
    }
}

/** True when a panel changed the image that is shown or the look itself, so that what is seen is out of date. */
bool Out_Of_Date(const Buttons& button) {
    if (!Images_Fit(button)) {
        return false;
    }
    const Image_Block* block = Block_Of(button);
    const bool is_marked = block->painted_mark_sum != 0 && button.current != 0;
    return block->painted_look != button.state || block->painted_sum != Face_Sum(button) ||
           (is_marked && block->painted_mark_sum != Mark_Sum(button));
}

}  // namespace

// ---- images

void Buttons::Images_Free() {
    std::free(Block_Of(*this));
    std::fill_n(image, IMAGE_NB, nullptr);
}

int Buttons::Images_Make() {
    if (!Images_Fit(*this)) {
        Images_Free();
        if (width <= 0 || height <= 0 || Pixel_Nb(*this) > IMAGE_AREA_MAX) {
            return 0;
        }
        auto* bytes =
            static_cast<unsigned char*>(std::calloc(1, BLOCK_HEAD + Pixel_Nb(*this) * IMAGE_NB * sizeof(unsigned int)));
        if (bytes == nullptr) {
            return 0;
        }
        for (std::size_t i = 0; i < IMAGE_NB; i++) {
            image[i] = reinterpret_cast<unsigned int*>(bytes + BLOCK_HEAD) + i * Pixel_Nb(*this);
        }
        Block_Of(*this)->width = width;
        Block_Of(*this)->height = height;
    }
    Rgb backgrounds[IMAGE_NB];
    Background_Colors(Rgb_Of(color), backgrounds);
    for (int i = 0; i < IMAGE_NB; i++) {
        std::fill_n(image[i], Pixel_Nb(*this), backgrounds[i]);
    }
    Block_Of(*this)->painted_sum = 0;
    Block_Of(*this)->painted_mark_sum = 0;
    return 1;
}

Buttons::Buttons() {
    name_max = BUTTON_CAPTION_MAX;
}

Buttons::~Buttons() {
    Images_Free();
}

Buttons::Buttons(const Buttons& other)
    : Tools(other), current(other.current), checked(other.checked), state(other.state) {
    if (Images_Fit(other) && Images_Make() != 0) {
        std::memcpy(image[0], other.image[0], Pixel_Nb(other) * IMAGE_NB * sizeof(unsigned int));
    }
}

Buttons& Buttons::operator=(const Buttons& other) {
    if (this == &other) {
        return *this;
    }
    Tools::operator=(other);
    current = other.current;
    checked = other.checked;
    state = other.state;
    if (!Images_Fit(other)) {
        Images_Free();
    } else if (Images_Make() != 0) {
        std::memcpy(image[0], other.image[0], Pixel_Nb(other) * IMAGE_NB * sizeof(unsigned int));
    }
    return *this;
}

// ---- operations

int Buttons::Init(HWND init_window) {
    Images_Make();
    return Widget_Init(*this, init_window);
}

void Buttons::Draw() {
    Paint(*this);
}

void Buttons::Adjust() {
    if (Widget_Hidden(*this)) {
        return;
    }
    Painter painter(*this);
    if (!painter) {
        return;
    }
    Count_Adjust();
    Note(*this);
    const Button_Look look = Look_Of(*this);
    const Button_Layout layout = Layout_Of(*this);
    Draw_Image(painter.Picture(), *this, look, look.face);
    Draw_Marks(painter.Picture(), *this, look, layout);
    if (name[0] != 0 && Is_Caption_Upwards(*this, layout)) {
        Draw_Button_Caption(painter.Picture(), *this, look, layout);  // it stands across the marks' places
    }
    for (const Rect& side : Frame_Sides(layout.mark, MARK_THICKNESS)) {
        painter.Show_Only(side);
    }
    painter.Show_Only(layout.check);
    if (Images_Fit(*this)) {
        Block_Of(*this)->painted_mark_sum = Mark_Sum(*this);  // the mark, and nothing else, is as it stands
    }
}

int Buttons::Select(int up_down) {
    Point point;
    const bool inside = Widget_Pointer(*this, &point);
    if (Widget_Inactive(*this)) {
        state = LOOK_PLAIN;  // what was shown when it was greyed or hidden is over when it comes back
        return 0;
    }
    if (up_down == MOUSE_ASK) {
        return inside ? 1 : 0;
    }
    // A mere motion has the code 0 too: it refreshes only what a panel changed, and shows the pointer otherwise.
    if (up_down == 0 && Out_Of_Date(*this)) {
        Paint(*this);
        return inside ? 1 : 0;
    }
    const unsigned short pointed = (up_down & MOUSE_PRESS) != 0 ? LOOK_PRESSED : LOOK_HOVER;
    Look_Set(*this, inside ? pointed : LOOK_PLAIN);
    return inside ? 1 : 0;
}

void Buttons::Deselect() {
    Look_Set(*this, LOOK_PLAIN);
}
