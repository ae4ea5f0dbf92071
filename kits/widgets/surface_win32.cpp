// The edge to Windows: GDI text and device contexts, windows, cursor, clipboard and keys.
#include "base/gdi_handles.h"

#include <algorithm>
#include <cstring>
#include <list>
#include <new>
#include <string>

#include "kits/common/text_conversion.h"
#include "kits/widgets/device.h"
#include "kits/widgets/surface.h"
#include "kits/widgets/text_edit_core.h"
#include "kits/widgets/theme.h"

namespace {

constexpr int ASCII_NB = 128;
constexpr int WIDE_MAX = 1100;        // longest text that is drawn, in wide characters
constexpr std::size_t FONT_MAX = 64;  // cached caption fonts; the oldest goes first

COLORREF Color_Ref(Rgb color) {
    return RGB((color >> 16U) & 0xFFU, (color >> 8U) & 0xFFU, color & 0xFFU);
}

/** A font with what measuring needs. */
struct Cached_Font {
    std::string name;
    bool bold = false;
    int height = 0;
    Gdi_Font font;
    int line_height = 0;
    int ascii_width[ASCII_NB] = {};
};

std::list<Cached_Font>& Fonts() {
    static std::list<Cached_Font> fonts;
    return fonts;
}

HDC Measure_DC() {
    static const Memory_DC dc(nullptr);
    return dc.Get();
}

bool Is_Bold(const char* weight) {
    return weight != nullptr && ::_stricmp(weight, "bold") == 0;
}

HFONT Font_Make(const char* name, bool bold, int height, int escapement) {
    LOGFONTA description = {};
    description.lfHeight = -height;
    description.lfEscapement = escapement;
    description.lfOrientation = escapement;
    description.lfWeight = bold ? FW_BOLD : FW_NORMAL;
    description.lfCharSet = DEFAULT_CHARSET;
    description.lfQuality = CLEARTYPE_QUALITY;
    std::strncpy(description.lfFaceName, name, LF_FACESIZE - 1);
    return ::CreateFontIndirectA(&description);
}

void Measure_Font(Cached_Font& entry) {
    const Selected_Object selected(Measure_DC(), entry.font.Get());
    TEXTMETRICA metrics = {};
    ::GetTextMetricsA(Measure_DC(), &metrics);
    entry.line_height = metrics.tmHeight;
    INT widths[ASCII_NB] = {};
    if (::GetCharWidth32W(Measure_DC(), 0, ASCII_NB - 1, widths) != 0) {
        std::copy_n(widths, ASCII_NB, entry.ascii_width);
    }
}

/** The cached font of a choice without a created font; null without memory. */
const Cached_Font* Font_Find(const Font_Choice& choice) {
    const char* name = choice.name != nullptr && choice.name[0] != 0 ? choice.name : LIBRARY_FONT_NAME;
    const bool bold = Is_Bold(choice.weight);
    const int height = choice.height > 0 ? choice.height : Library_Font_Height();
    std::list<Cached_Font>& fonts = Fonts();
    for (const Cached_Font& entry : fonts) {
        if (entry.height == height && entry.bold == bold && entry.name == name) {
            return &entry;
        }
    }
    try {
        Cached_Font made;
        made.name = name;
        made.bold = bold;
        made.height = height;
        made.font = Gdi_Font(Font_Make(name, bold, height, 0));
        if (!made.font) {
            return nullptr;
        }
        Measure_Font(made);
        if (fonts.size() >= FONT_MAX) {
            fonts.pop_back();
        }
        fonts.push_front(std::move(made));
        return &fonts.front();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

/** A font ready to be selected, with its line height. */
struct Ready_Font {
    HFONT handle = nullptr;
    int line_height = 0;
    const Cached_Font* cached = nullptr;
};

Ready_Font Font_Ready(const Font_Choice& choice) {
    if (choice.font != nullptr) {
        const Selected_Object selected(Measure_DC(), choice.font);
        TEXTMETRICA metrics = {};
        ::GetTextMetricsA(Measure_DC(), &metrics);
        return {choice.font, metrics.tmHeight, nullptr};
    }
    const Cached_Font* cached = Font_Find(choice);
    return cached != nullptr ? Ready_Font{cached->font.Get(), cached->line_height, cached} : Ready_Font{};
}

/** A text as wide characters. */
class Wide_Text {
  public:
    explicit Wide_Text(std::string_view text) {
        text = Text_Cut(text, WIDE_MAX);
        const bool ascii = std::all_of(text.begin(), text.end(),
                                       [](char byte) { return static_cast<unsigned char>(byte) < ASCII_NB; });
        if (ascii) {
            std::copy(text.begin(), text.end(), characters);
            length = static_cast<int>(text.size());
        } else {
            length =
                ::MultiByteToWideChar(Code_Page(), 0, text.data(), static_cast<int>(text.size()), characters, WIDE_MAX);
        }
    }
    const wchar_t* Data() const { return characters; }
    int Length() const { return length; }

  private:
    wchar_t characters[WIDE_MAX];
    int length = 0;
};

int Width_Of(std::string_view text, const Ready_Font& font) {
    if (font.cached != nullptr) {
        int width = 0;
        bool ascii = true;
        for (const char character : text) {
            const auto code = static_cast<unsigned char>(character);
            ascii = ascii && code < ASCII_NB;
            width += code < ASCII_NB ? font.cached->ascii_width[code] : 0;
        }
        if (ascii) {
            return width;
        }
    }
    const Wide_Text wide(text);
    const Selected_Object selected(Measure_DC(), font.handle);
    SIZE size = {};
    ::GetTextExtentPoint32W(Measure_DC(), wide.Data(), wide.Length(), &size);
    return size.cx;
}

void Text_Out(HDC dc, Point at, const Rect& part, const Wide_Text& wide) {
    const RECT cut = {part.left, part.top, part.Right(), part.Bottom()};
    ::ExtTextOutW(dc, at.x, at.y, ETO_CLIPPED, &cut, wide.Data(), static_cast<UINT>(wide.Length()), nullptr);
}

/** Device units from here to the end of the scope, whatever the mapping was. */
void Device_Units(HDC dc) {
    ::SetMapMode(dc, MM_TEXT);
    ::SetWindowOrgEx(dc, 0, 0, nullptr);
    ::SetViewportOrgEx(dc, 0, 0, nullptr);
}

}  // namespace

// ---- text

void Surface::Text(const Rect& box, std::string_view text, const Font_Choice& choice, Rgb color, Align align) {
    const Rect part = Rect_Common(box, clip);
    if (memory_dc == nullptr || text.empty() || part.Is_Empty()) {
        return;
    }
    const Ready_Font font = Font_Ready(choice);
    const Wide_Text wide(text);
    int x = box.left;
    if (align != Align::Left) {
        const int room = box.width - Width_Of(text, font);
        x += align == Align::Center ? room / 2 : room;
    }
    const int y = box.top + (box.height - font.line_height) / 2;
    const Selected_Object selected(memory_dc, font.handle);
    ::SetBkMode(memory_dc, TRANSPARENT);
    ::SetTextColor(memory_dc, Color_Ref(color));
    Text_Out(memory_dc, {x - held.left, y - held.top},
             {part.left - held.left, part.top - held.top, part.width, part.height}, wide);
    text_pending = true;
}

void Surface::Text_Upwards(const Rect& box, std::string_view text, const Font_Choice& choice, Rgb color) {
    const Rect part = Rect_Common(box, clip);
    if (memory_dc == nullptr || text.empty() || part.Is_Empty()) {
        return;
    }
    LOGFONTA description = {};
    const Ready_Font flat = Font_Ready(choice);
    if (flat.handle == nullptr || ::GetObjectA(flat.handle, sizeof description, &description) == 0) {
        return;
    }
    constexpr LONG quarter_turn = 900;  // tenths of a degree, counterclockwise
    description.lfEscapement = quarter_turn;
    description.lfOrientation = quarter_turn;
    const Gdi_Font turned(::CreateFontIndirectA(&description));
    const Wide_Text wide(text);
    const int x = box.left + (box.width - flat.line_height) / 2;
    const int y = box.top + (box.height + Width_Of(text, flat)) / 2;
    const Selected_Object selected(memory_dc, turned.Get());
    ::SetBkMode(memory_dc, TRANSPARENT);
    ::SetTextColor(memory_dc, Color_Ref(color));
    Text_Out(memory_dc, {x - held.left, y - held.top},
             {part.left - held.left, part.top - held.top, part.width, part.height}, wide);
    ::GdiFlush();
}

int Text_Width(std::string_view text, const Font_Choice& font) {
    return Width_Of(text, Font_Ready(font));
}
int Text_Height(const Font_Choice& font) {
    return Font_Ready(font).line_height;
}

HFONT System_Font_Create(HWND, const char* name, bool bold, int height) {
    return Font_Make(name != nullptr && name[0] != 0 ? name : LIBRARY_FONT_NAME, bold, height, 0);
}

void System_Fonts_Forget() {
    Fonts().clear();
}

// ---- windows

bool Window_Client_Size(HWND window, Size* size) {
    RECT rect = {};
    if (window == nullptr || ::GetClientRect(window, &rect) == 0) {
        return false;
    }
    *size = {rect.right, rect.bottom};
    return true;
}

bool Window_From_Screen(HWND window, Point screen, Point* client) {
    POINT point = {screen.x, screen.y};
    if (window == nullptr || ::ScreenToClient(window, &point) == 0) {
        return false;
    }
    *client = {point.x, point.y};
    return true;
}

bool Window_To_Screen(HWND window, Point client, Point* screen) {
    POINT point = {client.x, client.y};
    if (window == nullptr || ::ClientToScreen(window, &point) == 0) {
        return false;
    }
    *screen = {point.x, point.y};
    return true;
}

void Screen_Show(HWND window, Point target, Surface& picture, std::span<const Rect> parts) {
    const Window_DC dc(window);
    if (window == nullptr || !dc || picture.Get_DC() == nullptr) {
        return;
    }
    const Saved_DC saved(
        dc.Get());  // a window may keep one device context for ever, also one that a panel is drawing with
    if (!saved.Is_Saved()) {
        return;
    }
    Device_Units(dc.Get());
    ::SelectClipRgn(dc.Get(), nullptr);
    for (const Rect& part : parts) {
        const Rect& held = picture.Held();
        const Rect inside = Rect_Common(part, held);
        if (!inside.Is_Empty()) {
            ::BitBlt(dc.Get(), target.x + inside.left, target.y + inside.top, inside.width, inside.height,
                     picture.Get_DC(), inside.left - held.left, inside.top - held.top, SRCCOPY);
        }
    }
}

bool Screen_Read(HWND window, const Rect& source, Surface& picture) {
    const Window_DC dc(window);
    if (window == nullptr || !dc || picture.Get_DC() == nullptr) {
        return false;
    }
    const Saved_DC saved(dc.Get());
    if (!saved.Is_Saved()) {
        return false;
    }
    Device_Units(dc.Get());
    const Rect area = Rect_Common(picture.Clip(), {0, 0, source.width, source.height});
    const bool done = ::BitBlt(picture.Get_DC(), area.left, area.top, area.width, area.height, dc.Get(),
                               source.left + area.left, source.top + area.top, SRCCOPY) != 0;
    ::GdiFlush();
    return done;
}

// ---- pictures

struct Memory_Picture::Data {
    Dib_Picture picture;
};

Memory_Picture::Memory_Picture() = default;
Memory_Picture::~Memory_Picture() = default;
Memory_Picture::Memory_Picture(Memory_Picture&&) noexcept = default;
Memory_Picture& Memory_Picture::operator=(Memory_Picture&&) noexcept = default;

bool Memory_Picture::Reserve(int width, int height) {
    if (data != nullptr && width <= data->picture.Width() && height <= data->picture.Height()) {
        return true;
    }
    const int room_width = std::max(width, data != nullptr ? data->picture.Width() : 0);
    const int room_height = std::max(height, data != nullptr ? data->picture.Height() : 0);
    data.reset(new (std::nothrow) Data);
    if (data != nullptr) {
        data->picture = Dib_Picture(nullptr, room_width, room_height);
        if (!data->picture) {
            data.reset();
        }
    }
    return data != nullptr;
}

Surface Memory_Picture::View(int width, int height) {
    if (data == nullptr || width > data->picture.Width() || height > data->picture.Height()) {
        return {};
    }
    return Surface(data->picture.Pixels(), width, height, data->picture.Width(), data->picture.Get_DC());
}

HDC Memory_Picture::Get_DC() const {
    return data != nullptr ? data->picture.Get_DC() : nullptr;
}

void Device_Flush() {
    ::GdiFlush();
}

// ---- device contexts

namespace {

/** The state that GetDC would give: what an outer drawing has set must not be seen by an inner one. */
void Dc_Defaults(HDC dc) {
    constexpr int stock[] = {BLACK_PEN, WHITE_BRUSH, SYSTEM_FONT};
    Stock_Objects_Select(dc, stock, 3);
    ::SelectClipRgn(dc, nullptr);
    ::SetTextAlign(dc, TA_LEFT | TA_TOP | TA_NOUPDATECP);
    ::SetBkMode(dc, OPAQUE);
    ::SetTextColor(dc, RGB(0, 0, 0));
    ::SetBkColor(dc, RGB(255, 255, 255));
    ::SetROP2(dc, R2_COPYPEN);
    ::SetPolyFillMode(dc, ALTERNATE);
    Device_Units(dc);
}

void Axis_Up_Set(HDC dc, int client_height) {
    ::SetMapMode(dc, MM_ANISOTROPIC);
    ::SetWindowOrgEx(dc, 0, 0, nullptr);
    ::SetWindowExtEx(dc, 1, 1, nullptr);
    ::SetViewportExtEx(dc, 1, -1, nullptr);
    ::SetViewportOrgEx(dc, 0, client_height - 1, nullptr);
}

}  // namespace

struct Axis_DC::Data {
    Window_DC own;
    HDC handle = nullptr;
    Saved_DC saved{nullptr};
    Data(HWND window, HDC buffer)
        : own(buffer == nullptr ? Window_DC(window) : Window_DC()),
          handle(buffer != nullptr ? buffer : own.Get()),
          saved(handle) {}
};

Axis_DC::Axis_DC() = default;
Axis_DC::~Axis_DC() = default;
Axis_DC::Axis_DC(Axis_DC&&) noexcept = default;
Axis_DC& Axis_DC::operator=(Axis_DC&&) noexcept = default;

bool Axis_DC::Begin(HWND window, HDC buffer, int client_height, bool axis_up) {
    if (window == nullptr) {
        return false;  // GetDC would give the whole screen
    }
    data.reset(new (std::nothrow) Data(window, buffer));
    if (data == nullptr || data->handle == nullptr || !data->saved.Is_Saved()) {
        data.reset();
        return false;
    }
    Dc_Defaults(data->handle);
    if (axis_up) {
        Axis_Up_Set(data->handle, client_height);
    }
    return true;
}

HDC Axis_DC::Get() const {
    return data != nullptr ? data->handle : nullptr;
}

bool Axis_DC::End() {
    if (data == nullptr) {
        return false;
    }
    data->saved.Restore();
    const bool buffered = data->own.Get() == nullptr;
    const bool released = buffered || data->own.Release();
    data.reset();
    return released;
}

Point Dc_To_Device(HDC dc, Point logical) {
    POINT point = {logical.x, logical.y};
    ::LPtoDP(dc, &point, 1);
    return {point.x, point.y};
}

Rect Dc_Clip(HDC dc, const Rect& rect) {
    const Gdi_Region region(::CreateRectRgn(0, 0, 0, 0));
    RECT hull = {};
    if (!region || ::GetClipRgn(dc, region.Get()) != 1 || ::GetRgnBox(region.Get(), &hull) == ERROR) {
        return rect;
    }
    return Rect_Common(rect, {hull.left, hull.top, hull.right - hull.left, hull.bottom - hull.top});
}

void Dc_Blend(HDC dc, const Rect& target, const std::uint32_t* pixels) {
    static Memory_Picture blend;
    if (target.Is_Empty() || pixels == nullptr || !blend.Reserve(target.width, target.height)) {
        return;
    }
    Surface picture = blend.View(target.width, target.height);
    std::uint32_t* row = picture.Pixels();
    for (int y = 0; y < target.height; y++, row += picture.Stride()) {
        for (int x = 0; x < target.width; x++) {  // the system wants colours multiplied by their opacity
            const std::uint32_t pixel = *pixels++;
            const std::uint32_t alpha = pixel >> 24U;
            const auto part = [&](unsigned int shift) { return (((pixel >> shift) & 0xFFU) * alpha + 127U) / 255U; };
            row[x] = (alpha << 24U) | (part(16) << 16U) | (part(8) << 8U) | part(0);
        }
    }
    const Saved_DC saved(dc);
    Device_Units(dc);
    const BLENDFUNCTION over = {AC_SRC_OVER, 0, 255, AC_SRC_ALPHA};
    ::GdiAlphaBlend(dc, target.left, target.top, target.width, target.height, picture.Get_DC(), 0, 0, target.width,
                    target.height, over);
}
