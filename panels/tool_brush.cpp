#include "panels/tool_brush.h"

#include <algorithm>
#include <new>
#include <span>

#include "host/kit_common.h"
#include "host/kit_dataset.h"
#include "panels/brush_disc.h"
#include "panels/brush_mask.h"
#include "panels/protocol/host_variables.h"

namespace {

constexpr unsigned short BRUSH_CAPACITY = 8;  ///< buttons; also sizes remembered
constexpr int INNER_TRACE_LEVEL = TRACE_LEVEL + 1;
constexpr int HEIGHT_EXTRA = 8;  ///< pixels that a row of brushes is higher than a list
constexpr int NO_TAG = -1;
constexpr unsigned int BACKGROUND_COLOR = 0xAAAAAA;  ///< discs of TAG 0, 0x00RRGGBB
constexpr unsigned int UNKNOWN_COLOR = 0;            ///< discs while a colour table is missing

Cached_Variable<unsigned short> brush_nb_now("$BRUSH_NB");
Cached_Variable<unsigned short> brush_cur_now("$BRUSH_CUR");
Cached_Variable<const unsigned short*> tag_red("$TAG_RED");
Cached_Variable<const unsigned short*> tag_green("$TAG_GRN");
Cached_Variable<const unsigned short*> tag_blue("$TAG_BLU");

/** An array that copies of a panel share; null without memory. */
template <class Element>
std::shared_ptr<Element[]> Shared_Array(std::size_t nb) {
    try {
        return std::make_shared<Element[]>(nb);
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

Button_Pictures Pictures_Of(const Buttons& one) {
    return {{one.image[0], one.image[1], one.image[2], one.image[3]}, one.width, one.height};
}

/** The colour of a TAG's discs, 0x00RRGGBB. */
unsigned int Disc_Color(int tag) {
    if (tag == 0) {
        return BACKGROUND_COLOR;
    }
    const unsigned short* red = tag_red.Value_Or(nullptr);
    const unsigned short* green = tag_green.Value_Or(nullptr);
    const unsigned short* blue = tag_blue.Value_Or(nullptr);
    if (red == nullptr || green == nullptr || blue == nullptr) {
        return UNKNOWN_COLOR;
    }
    constexpr int high_byte = 8;
    return static_cast<unsigned int>(((red[tag] >> high_byte) << 16) | ((green[tag] >> high_byte) << 8) |
                                     (blue[tag] >> high_byte));
}

}  // namespace

Tool_Brush::Tool_Brush()
    : capacity(BRUSH_CAPACITY),
      current(0),
      color_tag(NO_TAG),
      brush_nb(0),
      size(Shared_Array<unsigned short>(BRUSH_CAPACITY)),
      button(Shared_Array<Buttons>(BRUSH_CAPACITY)) {}

Tool_Brush::~Tool_Brush() = default;
Tool_Brush::Tool_Brush(const Tool_Brush& other) = default;
Tool_Brush& Tool_Brush::operator=(const Tool_Brush& other) = default;

int Tool_Brush::Resize(Boxs* box) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Brush::Resize(dim=%dx%d)", box->width, box->height);
    const int space = Host_Dimension("$INTERFACE_SPACE_DIM");
    // Looked up and not used; hosts that count look-ups see them.
    Host_Count("$BRUSH_CUR");
    Host_Dimension("$INTERFACE_LIST_DIM_SML");

    frame.style = STYLE_FRAMED_BOX;
    frame.x = box->x;
    frame.y = box->y;
    frame.width = box->width;
    frame.height = box->height;
    frame.Take_Look(*box);
    frame.Init(box->window);

    const int shown = Shown_Nb(Host_Count("$BRUSH_NB"));
    if (shown == 0) {
        return 1;
    }
    const int column_width = (frame.width - 2 * space) / shown;
    for (int i = 0; i < shown; i++) {
        Buttons& one = button[i];
        one.x = static_cast<short>(frame.x + space + i * column_width);
        one.y = static_cast<short>(frame.y + space);
        one.width = static_cast<short>(column_width);
        one.height = static_cast<short>(frame.height - 2 * space);
        one.Take_Look(*box);
        one.Init(box->window);
    }
    Set_Color(Host_Count("$TAG_CUR"));
    Set_Border();
    return 1;
}

int Tool_Brush::Height() {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Brush::Height()");
    return Host_Dimension("$INTERFACE_LIST_DIM_SML") + HEIGHT_EXTRA + 2 * Host_Dimension("$INTERFACE_SPACE_DIM");
}

void Tool_Brush::Draw() {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Brush::Draw()");
    const unsigned short* nb = brush_nb_now.Address();
    const unsigned short* cur = brush_cur_now.Address();
    if (nb == nullptr || cur == nullptr) {
        return;
    }
    frame.Draw();
    const int shown = Shown_Nb(*nb);
    // The mark of the button that was current before stays: only Click and Update move it.
    if (*cur < Shown_Nb(capacity)) {
        button[*cur].current = 1;
    }
    for (int i = 0; i < shown; i++) {
        button[i].Draw();
    }
}

int Tool_Brush::Click(int up_down) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Brush::Click(up_down=0x%08x)", static_cast<unsigned int>(up_down));
    if ((up_down & MOUSE_PRESS) == 0) {
        return 0;
    }
    const int shown = Shown_Nb(brush_nb_now.Value_Or(0));
    for (int i = 0; i < shown; i++) {
        if (button[i].Select(up_down) != 0) {
            Mark(current, 0);
            current = i;
            Mark(current, 1);
            return 1;
        }
    }
    return 0;
}

int Tool_Brush::Motion(int up_down) {
    const int shown = Shown_Nb(brush_nb_now.Value_Or(0));
    for (int i = 0; i < shown; i++) {
        button[i].Select(up_down);
    }
    return 0;  // also when a button changed its look
}

int Tool_Brush::Scroll(int /*val*/) {
    return 1;
}

int Tool_Brush::Keyboard(int /*key*/) {
    return 0;
}

void Tool_Brush::Leave() {
    const int shown = Shown_Nb(brush_nb_now.Value_Or(0));
    for (int i = 0; i < shown; i++) {
        button[i].Deselect();
    }
}

void Tool_Brush::Update(unsigned __int64 flags) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Brush::Update()");
    if (Has_Any(flags, UPDATE_ALL | UPDATE_BRUSH)) {
        const int announced = Host_Count("$BRUSH_CUR");
        if (announced != current) {
            Mark(current, 0);
            current = announced;
            Mark(current, 1);
        }
        if (Brushes_Changed()) {
            Init();
            Resize(&frame);
            Draw();
        }
    }
    if (Has_Any(flags, UPDATE_TAG_CUR)) {
        const int tag = Host_Count("$TAG_CUR");
        if (tag != color_tag) {
            Set_Color(tag);
            color_tag = tag;  // here only: a layout or a change of the table does not count as a change of TAG
        }
    }
    if (Has_Any(flags, UPDATE_ALL | UPDATE_TAG_TABLE)) {
        Set_Color(Host_Count("$TAG_CUR"));
    }
}

int Tool_Brush::Read() {
    return current;
}

/** Builds the masks of all brushes and remembers what they were built from. Does nothing while a table is missing. */
void Tool_Brush::Init() {
    Error_Fct(hwnd, INNER_TRACE_LEVEL, "in Tool_Brush::Init()");
    const int nb = Host_Count("$BRUSH_NB");
    const std::size_t row_nb = 2 * static_cast<std::size_t>(Host_Count("$BRUSH_RADIUS")) + 1;
    unsigned char*** mask = Host_Pointer<unsigned char**>("$BRUSH_PT");
    const auto* host_size = Host_Pointer<const unsigned short>("$BRUSH_SIZE");
    if (mask == nullptr || host_size == nullptr) {
        return;
    }
    const auto rows_of = [mask, row_nb](int i) {
        return mask[i] != nullptr ? Brush_Mask_Rows(mask[i], row_nb) : Brush_Mask_Rows();
    };
    for (int i = 0; i < nb; i++) {
        if (Brush_Mask_Complete(rows_of(i))) {
            Brush_Mask_Clear(rows_of(i));
        }
    }
    brush_nb = static_cast<unsigned short>(nb);
    for (int i = 0; i < nb; i++) {
        if (size != nullptr && i < capacity) {
            size[i] = host_size[i];
        }
        if (Brush_Mask_Complete(rows_of(i))) {
            Brush_Mask_Fill(rows_of(i), host_size[i]);
        }
    }
}

/** Paints all discs in the colour of a TAG and refreshes the buttons. */
void Tool_Brush::Set_Color(int tag) {
    Error_Fct(hwnd, INNER_TRACE_LEVEL, "in Tool_Brush::Set_Color()");
    const int shown = Shown_Nb(Host_Count("$BRUSH_NB"));
    const auto* host_size = Host_Pointer<const unsigned short>("$BRUSH_SIZE");
    if (shown == 0 || host_size == nullptr) {
        return;
    }
    const float scale = Scale(shown);
    const unsigned int color = Disc_Color(tag);
    for (int i = 0; i < shown && scale > 0.0F; i++) {
        const Button_Pictures pictures = Pictures_Of(button[i]);
        if (pictures.Complete()) {
            Brush_Disc_Paint(pictures, Brush_Disc_Square(host_size[i], scale), color);
        }
    }
    for (int i = 0; i < shown; i++) {
        button[i].state = 0;
        button[i].Select(0);
    }
}

/** Outlines the discs in black, once after the buttons' pictures were made. */
void Tool_Brush::Set_Border() {
    Error_Fct(hwnd, INNER_TRACE_LEVEL, "in Tool_Brush::Set_Border()");
    const int shown = Shown_Nb(Host_Count("$BRUSH_NB"));
    if (shown == 0 || Host_Pointer<const unsigned short>("$BRUSH_SIZE") == nullptr || Scale(shown) <= 0.0F) {
        return;
    }
    for (int i = 0; i < shown; i++) {
        const Button_Pictures pictures = Pictures_Of(button[i]);
        if (pictures.Complete()) {
            Brush_Outline_Paint(pictures,
                                Brush_Outline_Range(pictures.width, pictures.height, Brush_Disc_Margin(BORDER)));
        }
    }
}

/** How many of the host's brushes have a button. */
int Tool_Brush::Shown_Nb(int nb) const {
    return button != nullptr ? std::min<int>(nb, capacity) : 0;
}

/** Mask pixels per screen pixel, common to all discs, from the first button; 0 when it has no room. */
float Tool_Brush::Scale(int shown) const {
    const std::span host_size(Host_Pointer<const unsigned short>("$BRUSH_SIZE"), static_cast<std::size_t>(shown));
    return Brush_Disc_Scale(button[0].width, button[0].height, Brush_Disc_Margin(BORDER),
                            *std::max_element(host_size.begin(), host_size.end()));
}

/** True when the host's brushes are others than those that the masks were built from. */
bool Tool_Brush::Brushes_Changed() const {
    const int nb = Host_Count("$BRUSH_NB");
    const auto* host_size = Host_Pointer<const unsigned short>("$BRUSH_SIZE");
    return nb != brush_nb || (host_size != nullptr && size != nullptr &&
                              !std::equal(host_size, host_size + std::min<int>(nb, capacity), size.get()));
}

/** Sets a button's current mark and shows it; an index without a button is skipped. */
void Tool_Brush::Mark(int index, unsigned short mark) {
    if (index >= 0 && index < Shown_Nb(capacity)) {
        button[index].current = mark;
        button[index].Adjust();
    }
}
