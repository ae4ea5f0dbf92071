/** The kit's edge to the window system: pictures, windows, text and input.
 *
 *  Everything above this header is plain C++. surface.cpp holds the drawing that only writes pixels; surface_win32.cpp
 *  answers the rest with GDI and user input, surface_headless.cpp with memory alone, so that the same widget code runs
 *  where there is no window system.
 *
 *  All coordinates here are pixels, x to the right and y DOWN, whatever the axis of a window; see axis.h for the way
 *  there.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>

#include "host/platform.h"

/** A colour packed as 0x00RRGGBB, the form of pixels. */
using Rgb = std::uint32_t;

struct Point {
    int x = 0;
    int y = 0;
    friend bool operator==(const Point&, const Point&) = default;
};

/** The pixels left .. left + width - 1, top .. top + height - 1. Empty when width or height is 0 or less. */
struct Rect {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    int Right() const { return left + width; }   ///< first column beyond
    int Bottom() const { return top + height; }  ///< first row beyond
    bool Is_Empty() const { return width <= 0 || height <= 0; }
    bool Has_Point(Point point) const {
        return point.x >= left && point.x < Right() && point.y >= top && point.y < Bottom();
    }
    /** The rectangle less `margin` pixels on every side; negative margins grow it. */
    Rect Inner(int margin) const { return {left + margin, top + margin, width - 2 * margin, height - 2 * margin}; }
    friend bool operator==(const Rect&, const Rect&) = default;
};
/** What two rectangles share; empty when nothing. */
Rect Rect_Common(const Rect& a, const Rect& b);
/** The smallest rectangle around both; an empty one counts for nothing. */
Rect Rect_Around(const Rect& a, const Rect& b);

/** Which font a text is drawn with. Texts are owned by the caller. */
struct Font_Choice {
    const char* name = nullptr;    ///< face name; null or empty: the library's own
    const char* weight = nullptr;  ///< "bold" or anything else
    int height = 0;                ///< pixels; 0: the library's own, which follows its scale
    HFONT font = nullptr;          ///< a created font; wins over all above
};

enum class Align { Left, Center, Right };

/** A picture in memory that can be drawn into. A view: owns nothing. Everything is cut at the picture and at the clip
 * rectangle. */
class Surface {
  public:
    Surface() = default;
    /** @param pixels rows of `stride` pixels, top row first; @param memory_dc what the window system needs to write
     * text into them, may be null */
    Surface(std::uint32_t* pixels, int width, int height, int stride, HDC memory_dc);
    /** A picture of that size of which only the part `held` has pixels: its first one is at `pixels`. What is drawn
     * beside it is lost. */
    Surface(std::uint32_t* pixels, int width, int height, const Rect& held, int stride, HDC memory_dc);

    /** The part that has pixels; all of it unless said otherwise. */
    const Rect& Held() const { return held; }
    int Width() const { return width; }
    int Height() const { return height; }
    Rect Area() const { return {0, 0, width, height}; }

    /** Further drawing stays inside `rect`. @return the clip rectangle until now, to be set again afterwards */
    Rect Clip_Set(const Rect& rect);
    const Rect& Clip() const { return clip; }
    void Fill(const Rect& rect, Rgb color);
    /** The border lines of a rectangle, `thickness` pixels to the inside. */
    void Frame(const Rect& rect, int thickness, Rgb color);
    /** A one-pixel line, both ends included. */
    void Line(Point from, Point to, Rgb color);
    /** A filled polygon (even-odd): the pixels whose centres lie inside. Its points stand on pixel corners. */
    void Polygon(std::span<const Point> points, Rgb color);
    /** A polyline of `thickness` pixels with round joints. */
    void Stroke(std::span<const Point> points, int thickness, Rgb color);
    void Invert(const Rect& rect);
    /** Mixes `percent` of the colour into every pixel. */
    void Tint(const Rect& rect, Rgb color, int percent);
    /** Copies a picture of target.width x target.height pixels. @param stride pixels from row to row */
    void Blit(const Rect& target, const std::uint32_t* source, int stride);
    /** Lays a picture of pixels 0xAARRGGBB (not premultiplied) over this one. */
    void Blit_Alpha(const Rect& target, const std::uint32_t* source, int stride);
    /** Mixes the colour in by an opacity of 0 to 255 per pixel; target.width x target.height of them. */
    void Stencil(const Rect& target, const std::uint32_t* opacity, Rgb color);
    /** A line of text, centred in height in `box` and cut at it. Never wraps. */
    void Text(const Rect& box, std::string_view text, const Font_Choice& font, Rgb color, Align align = Align::Left);
    /** The text turned by 90 degrees, reading upwards, centred in `box`. */
    void Text_Upwards(const Rect& box, std::string_view text, const Font_Choice& font, Rgb color);
    /** One pixel; 0 where there is none. */
    Rgb Pixel(int x, int y) const;
    /** The first pixel of Held(), for direct writing; rows are Stride() apart. */
    std::uint32_t* Pixels() {
        Settle();
        return pixels;
    }
    /** The pixel at a place inside Held(), and those to its right, for direct writing. */
    std::uint32_t* Pixels_From(int x, int y) {
        Settle();
        return Row(y) + x;
    }
    int Stride() const { return stride; }
    /** The device context of its memory, null when it is plain memory. */
    HDC Get_DC() const { return memory_dc; }

  private:
    static double Distance_To_Polyline(std::span<const Point> points, double x, double y);
    /** Of that row, where column 0 stands or would stand. */
    std::uint32_t* Row(int y) const {
        return pixels + (static_cast<std::ptrdiff_t>(y - held.top) * stride - held.left);
    }
    void Settle();  ///< waits for text that the window system has not written yet

    std::uint32_t* pixels = nullptr;
    int width = 0;
    int height = 0;
    int stride = 0;
    HDC memory_dc = nullptr;
    bool text_pending = false;
    Rect held;
    Rect clip;
};

// ---- text
//
// All texts are in the system's code page, which may be UTF-8; what a character is, text_conversion.h of Kit_Common
// says. A character that the end of a text cuts off counts byte by byte.

/** Width in pixels of a line of text. */
int Text_Width(std::string_view text, const Font_Choice& font);
/** Height in pixels of a line of text. */
int Text_Height(const Font_Choice& font);
/** The start of `text` that fits into `room` pixels, in bytes, never inside a character. */
std::size_t Text_Fit(std::string_view text, const Font_Choice& font, int room);
/** Bytes of the character that starts at `at` (1 at least, unless at the end). */
std::size_t Character_Length(std::string_view text, std::size_t at);
/** Start of the character before `at`, or of the one that `at` lies in. */
std::size_t Character_Before(std::string_view text, std::size_t at);

// ---- windows

struct Size {
    int width = 0;
    int height = 0;
};
/** @return false when the window is null or gone */
bool Window_Client_Size(HWND window, Size* size);
bool Window_From_Screen(HWND window, Point screen, Point* client);
bool Window_To_Screen(HWND window, Point client, Point* screen);

/** Shows parts of a picture in the window (or in its back buffer). @param target where the whole picture stands; @param
 * parts in the picture. Between Y_setup and Y_release for the same window the clip of that device context counts. */
void Window_Show(HWND window, const Rect& target, Surface& picture, std::span<const Rect> parts);
/** Fills a rectangle of the window's back buffer, without a picture in between. The clip counts as above.
 *  @return false: the window has none now, and nothing was filled */
bool Window_Fill(HWND window, const Rect& target, Rgb color);
/** Reads what the window (or its back buffer) shows. @param pixels target.width x target.height. @return false when
 * that cannot be had */
bool Window_Read(HWND window, const Rect& target, std::uint32_t* pixels);

// ---- input

bool System_Button_Held(int button);
bool System_Key_Held(int virtual_key);
/** @return length of the text copied into `out`, 0 for none */
int System_Clipboard_Get(char* out, int size);
int System_Clipboard_Set(const char* text);
