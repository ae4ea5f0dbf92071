// The edge without a window system: windows are sizes with pixels, text is boxes of fixed width, fonts are numbers.
#include <algorithm>
#include <cstring>
#include <map>
#include <new>
#include <set>
#include <string>
#include <vector>

#include "kits/widgets/device.h"
#include "kits/widgets/headless_windows.h"
#include "kits/widgets/surface.h"
#include "kits/widgets/widgets_host.h"

namespace {

struct Headless_Window {
    Point origin;
    int width = 0;
    int height = 0;
    std::vector<std::uint32_t> pixels;
    Surface View() { return Surface(pixels.data(), width, height, width, nullptr); }
};

/** What a device context refers to here. */
struct Headless_DC {
    Surface picture;
    int client_height = 0;
    bool axis_up = false;
};

std::map<HWND, Headless_Window>& Windows() {
    static std::map<HWND, Headless_Window> windows;
    return windows;
}

Headless_Window* Find(HWND window) {
    const auto found = Windows().find(window);
    return found == Windows().end() ? nullptr : &found->second;
}

std::set<int> held_keys;
std::set<int> held_buttons;
std::string clipboard;

int Font_Height(const Font_Choice& font) {
    return font.height > 0 ? font.height : 13;
}
int Character_Width(const Font_Choice& font) {
    return std::max(1, Font_Height(font) / 2);
}

}  // namespace

// ---- test windows

HWND Headless_Window_Create(int width, int height) {
    static std::uintptr_t next = 0x1000;
    const HWND window = reinterpret_cast<HWND>(next);
    next += 16;
    Windows()[window];
    Headless_Window_Resize(window, width, height);
    return window;
}

void Headless_Window_Move(HWND window, Point origin) {
    if (Headless_Window* found = Find(window)) {
        found->origin = origin;
    }
}

void Headless_Window_Resize(HWND window, int width, int height) {
    if (Headless_Window* found = Find(window)) {
        found->width = width;
        found->height = height;
        found->pixels.assign(static_cast<std::size_t>(width) * static_cast<std::size_t>(height), 0);
    }
}

void Headless_Window_Destroy(HWND window) {
    Windows().erase(window);
}

Rgb Headless_Window_Pixel(HWND window, int x, int y) {
    Headless_Window* found = Find(window);
    return found != nullptr ? found->View().Pixel(x, y) : 0;
}

void Headless_Key_Set(int virtual_key, bool held) {
    if (held) {
        held_keys.insert(virtual_key);
    } else {
        held_keys.erase(virtual_key);
    }
}

void Headless_Button_Set(int button, bool held) {
    if (held) {
        held_buttons.insert(button);
    } else {
        held_buttons.erase(button);
    }
}

// ---- text

void Surface::Text(const Rect& box, std::string_view text, const Font_Choice& font, Rgb color, Align align) {
    const int width_needed = Text_Width(text, font);
    int x = box.left;
    if (align == Align::Center) {
        x += (box.width - width_needed) / 2;
    } else if (align == Align::Right) {
        x += box.width - width_needed;
    }
    const int glyph = Character_Width(font);
    const int top = box.top + (box.height - Font_Height(font)) / 2;
    const Rect before = Clip_Set(Rect_Common(box, clip));
    for (std::size_t at = 0; at < text.size(); at += Character_Length(text, at), x += glyph) {
        if (text[at] != ' ') {
            Frame({x, top + 2, glyph - 1, Font_Height(font) - 4}, 1, color);
        }
    }
    Clip_Set(before);
}

void Surface::Text_Upwards(const Rect& box, std::string_view text, const Font_Choice& font, Rgb color) {
    const int length = Text_Width(text, font);
    Frame(Rect_Common(box, {box.left + (box.width - Font_Height(font)) / 2, box.top + (box.height - length) / 2,
                            Font_Height(font), length}),
          1, color);
}

int Text_Width(std::string_view text, const Font_Choice& font) {
    int characters = 0;
    for (std::size_t at = 0; at < text.size(); at += Character_Length(text, at)) {
        characters++;
    }
    return characters * Character_Width(font);
}

int Text_Height(const Font_Choice& font) {
    return Font_Height(font) + 3;
}

// ---- windows

bool Window_Client_Size(HWND window, Size* size) {
    const Headless_Window* found = Find(window);
    if (found != nullptr) {
        *size = {found->width, found->height};
    }
    return found != nullptr;
}

bool Window_From_Screen(HWND window, Point screen, Point* client) {
    const Headless_Window* found = Find(window);
    if (found != nullptr) {
        *client = {screen.x - found->origin.x, screen.y - found->origin.y};
    }
    return found != nullptr;
}

bool Window_To_Screen(HWND window, Point client, Point* screen) {
    const Headless_Window* found = Find(window);
    if (found != nullptr) {
        *screen = {client.x + found->origin.x, client.y + found->origin.y};
    }
    return found != nullptr;
}

void Screen_Show(HWND window, Point target, Surface& picture, std::span<const Rect> parts) {
    Headless_Window* found = Find(window);
    if (found == nullptr) {
        return;
    }
    Surface view = found->View();
    for (const Rect& part : parts) {
        const Rect inside = Rect_Common(part, picture.Held());
        view.Blit({target.x + inside.left, target.y + inside.top, inside.width, inside.height},
                  inside.Is_Empty() ? nullptr : picture.Pixels_From(inside.left, inside.top), picture.Stride());
    }
}

bool Screen_Read(HWND window, const Rect& source, Surface& picture) {
    Headless_Window* found = Find(window);
    if (found == nullptr) {
        return false;
    }
    picture.Blit({-source.left, -source.top, found->width, found->height}, found->pixels.data(), found->width);
    return true;
}

// ---- pictures

struct Memory_Picture::Data {
    std::vector<std::uint32_t> pixels;
    int width = 0;
    int height = 0;
    Headless_DC dc;
};

Memory_Picture::Memory_Picture() = default;
Memory_Picture::~Memory_Picture() = default;
Memory_Picture::Memory_Picture(Memory_Picture&&) noexcept = default;
Memory_Picture& Memory_Picture::operator=(Memory_Picture&&) noexcept = default;

bool Memory_Picture::Reserve(int width, int height) {
    if (data != nullptr && width <= data->width && height <= data->height) {
        return true;
    }
    try {
        auto grown = std::make_unique<Data>();
        grown->width = std::max(width, data != nullptr ? data->width : 0);
        grown->height = std::max(height, data != nullptr ? data->height : 0);
        grown->pixels.resize(static_cast<std::size_t>(grown->width) * static_cast<std::size_t>(grown->height));
        data = std::move(grown);
        return true;
    } catch (const std::bad_alloc&) {
        data.reset();
        return false;
    }
}

Surface Memory_Picture::View(int width, int height) {
    if (data == nullptr || width > data->width || height > data->height) {
        return {};
    }
    return Surface(data->pixels.data(), width, height, data->width, nullptr);
}

HDC Memory_Picture::Get_DC() const {
    if (data == nullptr) {
        return nullptr;
    }
    data->dc.picture = Surface(data->pixels.data(), data->width, data->height, data->width, nullptr);
    return reinterpret_cast<HDC>(&data->dc);
}

void Device_Flush() {}

// ---- device contexts

struct Axis_DC::Data {
    Headless_DC own;
    HDC handle = nullptr;
};

Axis_DC::Axis_DC() = default;
Axis_DC::~Axis_DC() = default;
Axis_DC::Axis_DC(Axis_DC&&) noexcept = default;
Axis_DC& Axis_DC::operator=(Axis_DC&&) noexcept = default;

bool Axis_DC::Begin(HWND window, HDC buffer, int client_height, bool axis_up) {
    Headless_Window* found = Find(window);
    if (found == nullptr) {
        return false;
    }
    data = std::make_unique<Data>();
    data->own = {buffer != nullptr ? reinterpret_cast<Headless_DC*>(buffer)->picture : found->View(), client_height,
                 axis_up};
    data->handle = reinterpret_cast<HDC>(&data->own);
    return true;
}

HDC Axis_DC::Get() const {
    return data != nullptr ? data->handle : nullptr;
}

bool Axis_DC::End() {
    const bool had = data != nullptr;
    data.reset();
    return had;
}

Point Dc_To_Device(HDC dc, Point logical) {
    const auto* headless = reinterpret_cast<const Headless_DC*>(dc);
    return {logical.x, headless->axis_up ? headless->client_height - 1 - logical.y : logical.y};
}

Rect Dc_Clip(HDC, const Rect& rect) {
    return rect;  // there is nothing to set a clip with
}

void Dc_Blend(HDC dc, const Rect& target, const std::uint32_t* pixels) {
    reinterpret_cast<Headless_DC*>(dc)->picture.Blit_Alpha(target, pixels, target.width);
}

// ---- input

bool System_Button_Held(int button) {
    return held_buttons.contains(button);
}
bool System_Key_Held(int virtual_key) {
    return held_keys.contains(virtual_key);
}

int System_Clipboard_Get(char* out, int size) {
    if (out == nullptr || size <= 0) {
        return 0;
    }
    const std::size_t length = std::min(clipboard.size(), static_cast<std::size_t>(size) - 1);
    std::memcpy(out, clipboard.data(), length);
    out[length] = 0;
    return static_cast<int>(length);
}

int System_Clipboard_Set(const char* text) {
    clipboard = text != nullptr ? text : "";
    return 1;
}

HFONT System_Font_Create(HWND, const char*, bool, int) {
    static std::uintptr_t next = 0x100;
    return reinterpret_cast<HFONT>(next += 16);
}
void System_Fonts_Forget() {}
void System_Wait_Cursor(HWND, bool) {}

bool System_Window_Is_Wide(HWND) {
    return false;
}

int System_Key_Character(int virtual_key, std::intptr_t) {
    return (virtual_key >= '0' && virtual_key <= '9') || (virtual_key >= 'A' && virtual_key <= 'Z') ||
                   virtual_key == ' '
               ? virtual_key
               : 0;
}
