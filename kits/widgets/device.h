/** The rest of the kit's edge to the window system: what only the library's core needs. The widgets draw through
 * painter.h. */
#pragma once

#include <memory>
#include <span>

#include "kits/widgets/surface.h"

/** Pixels in memory with what the window system needs to write into them. Grows, never shrinks. */
class Memory_Picture {
  public:
    Memory_Picture();
    ~Memory_Picture();
    Memory_Picture(Memory_Picture&& other) noexcept;
    Memory_Picture& operator=(Memory_Picture&& other) noexcept;

    /** Makes room. The contents are lost when it had to grow. @return false without memory (the picture is empty then)
     */
    bool Reserve(int width, int height);
    /** A view of the upper left part; without pixels when it was not reserved. */
    Surface View(int width, int height);
    /** Its device context, null when empty. */
    HDC Get_DC() const;

  private:
    struct Data;
    std::unique_ptr<Data> data;
};

/** Waits until everything drawn by the window system stands in the pixels. */
void Device_Flush();

/** Copies parts of a picture onto the screen. Parts are rectangles of the picture, `target` is where its upper left
 * pixel stands. */
void Screen_Show(HWND window, Point target, Surface& picture, std::span<const Rect> parts);
/** Copies what the window shows into the upper left of a picture, as far as its clip rectangle goes. @return false when
 * that cannot be had */
bool Screen_Read(HWND window, const Rect& source, Surface& picture);

// ---- device contexts for panels' drawing

/** A device context that panels draw with, in the axis of its window. */
class Axis_DC {
  public:
    Axis_DC();
    ~Axis_DC();
    Axis_DC(Axis_DC&& other) noexcept;
    Axis_DC& operator=(Axis_DC&& other) noexcept;

    /** The window's own, or `buffer` when the window is being collected in a back buffer. @return false when there is
     * none */
    bool Begin(HWND window, HDC buffer, int client_height, bool axis_up);
    HDC Get() const;
    /** Gives it back. @return false when the system refused */
    bool End();

  private:
    struct Data;
    std::unique_ptr<Data> data;
};

/** The device pixel of a point in the units of a device context. */
Point Dc_To_Device(HDC dc, Point logical);
/** What the clip of a device context leaves of a rectangle, as one rectangle; device pixels. */
Rect Dc_Clip(HDC dc, const Rect& rect);
/** Lays 0xAARRGGBB pixels (not premultiplied) over what a device context shows; `target` in device pixels. Its clip
 * counts. */
void Dc_Blend(HDC dc, const Rect& target, const std::uint32_t* pixels);

// ---- odds and ends

HFONT System_Font_Create(HWND window, const char* name, bool bold, int height);
/** Gives back the fonts that the library made for captions, so that a new scale takes effect. */
void System_Fonts_Forget();
/** Shows the wait cursor, or the arrow again. */
void System_Wait_Cursor(HWND window, bool shown);
/** Set_Curs_Wait calls that no Reset_Curs_Wait has answered yet. */
int Wait_Cursor_Depth();
/** True when the window's character messages carry UTF-16 instead of bytes of the code page. */
bool System_Window_Is_Wide(HWND window);
/** The character that a key makes with the modifiers now held, as UTF-16; 0 for none. */
int System_Key_Character(int virtual_key, std::intptr_t lparam);
