/** @file
 *  Ownership of GDI handles and of changes to device contexts.
 *
 *  Every handle that must be given back and every selection that must be undone lives in one of these types; nothing
 *  else in the repository calls DeleteObject, SelectObject, ReleaseDC, EndPaint, DeleteDC or RestoreDC. All types can
 *  be moved and not copied, except the guards, which stay where they are.
 */
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>

#include <cstdint>
#include <utility>

// ---- objects

/** An owned pen, brush, font, bitmap or region. */
template <typename Handle>
class Gdi_Object {
  public:
    Gdi_Object() = default;
    /** Takes over a created handle; null is allowed. */
    explicit Gdi_Object(Handle owned) : handle(owned) {}
    ///@{
    /** The handle moves; `other` is empty afterwards. What the assigned one owned is deleted. */
    Gdi_Object(Gdi_Object&& other) noexcept : handle(std::exchange(other.handle, nullptr)) {}
    Gdi_Object& operator=(Gdi_Object&& other) noexcept {
        if (this != &other) {
            Reset();
            handle = std::exchange(other.handle, nullptr);
        }
        return *this;
    }
    ///@}
    ~Gdi_Object() { Reset(); }

    /** Null when empty; stays owned by this object. */
    Handle Get() const { return handle; }
    /** True when it owns a handle. */
    explicit operator bool() const { return handle != nullptr; }
    /** The handle, owned by the caller from now on. */
    Handle Give_Away() { return std::exchange(handle, nullptr); }
    /** Deletes the handle now. */
    void Reset() {
        if (handle != nullptr) {
            ::DeleteObject(handle);
            handle = nullptr;
        }
    }

  private:
    Handle handle = nullptr;
};

///@{
/** Null, and false in a condition, when creation failed. */
using Gdi_Pen = Gdi_Object<HPEN>;
using Gdi_Brush = Gdi_Object<HBRUSH>;
using Gdi_Font = Gdi_Object<HFONT>;
using Gdi_Bitmap = Gdi_Object<HBITMAP>;
using Gdi_Region = Gdi_Object<HRGN>;
///@}

// ---- device contexts

/** A memory device context. */
class Memory_DC {
  public:
    Memory_DC() = default;
    /** One that agrees with `like`, or with the screen when it is null. */
    explicit Memory_DC(HDC like) : dc(::CreateCompatibleDC(like)) {}
    ///@{
    /** Assigning swaps: the other one deletes what this one had. */
    Memory_DC(Memory_DC&& other) noexcept : dc(std::exchange(other.dc, nullptr)) {}
    Memory_DC& operator=(Memory_DC&& other) noexcept {
        std::swap(dc, other.dc);
        return *this;
    }
    ///@}
    ~Memory_DC() {
        if (dc != nullptr) {
            ::DeleteDC(dc);
        }
    }
    ///@{
    /** Null and false when the system gave none. */
    HDC Get() const { return dc; }
    explicit operator bool() const { return dc != nullptr; }
    ///@}

  private:
    HDC dc = nullptr;
};

/** The device context of a window's client area. */
class Window_DC {
  public:
    Window_DC() = default;
    /** @param of_window null: the screen */
    explicit Window_DC(HWND of_window) : window(of_window), dc(::GetDC(of_window)) {}
    ///@{
    /** Assigning swaps: the other one gives back what this one had. */
    Window_DC(Window_DC&& other) noexcept
        : window(std::exchange(other.window, nullptr)), dc(std::exchange(other.dc, nullptr)) {}
    Window_DC& operator=(Window_DC&& other) noexcept {
        std::swap(window, other.window);
        std::swap(dc, other.dc);
        return *this;
    }
    ///@}
    ~Window_DC() { Release(); }
    ///@{
    /** Null and false when the system gave none. */
    HDC Get() const { return dc; }
    explicit operator bool() const { return dc != nullptr; }
    ///@}
    /** Gives it back now. @return false when the system refused or there was none */
    bool Release() { return dc != nullptr && ::ReleaseDC(window, std::exchange(dc, nullptr)) != 0; }

  private:
    HWND window = nullptr;
    HDC dc = nullptr;
};

/** The device context of a paint message; ends the painting. Only inside WM_PAINT. */
class Paint_DC {
  public:
    /** @param of_window the window that was sent WM_PAINT */
    explicit Paint_DC(HWND of_window) : window(of_window), dc(::BeginPaint(of_window, &paint)) {}
    Paint_DC(const Paint_DC&) = delete;
    Paint_DC& operator=(const Paint_DC&) = delete;
    ~Paint_DC() {
        if (dc != nullptr) {
            ::EndPaint(window, &paint);
        }
    }
    ///@{
    /** Null and false when the system gave none. */
    HDC Get() const { return dc; }
    explicit operator bool() const { return dc != nullptr; }
    ///@}
    /** What must be painted, client pixels, y down. */
    const RECT& Dirty() const { return paint.rcPaint; }

  private:
    HWND window = nullptr;
    PAINTSTRUCT paint = {};
    HDC dc = nullptr;
};

// ---- guards

/** Selects an object into a device context until the end of the scope. A null object selects nothing. */
class Selected_Object {
  public:
    /** @param into a device context; null: nothing is selected; @param object must outlive this one */
    Selected_Object(HDC into, HGDIOBJ object) : dc(into) {
        if (dc != nullptr && object != nullptr) {
            before = ::SelectObject(dc, object);
        }
    }
    Selected_Object(const Selected_Object&) = delete;
    Selected_Object& operator=(const Selected_Object&) = delete;
    ~Selected_Object() {
        if (before != nullptr) {
            ::SelectObject(dc, before);
        }
    }

  private:
    HDC dc = nullptr;
    HGDIOBJ before = nullptr;
};

/** Brings back the whole state of a device context (mapping, clip, selected objects, colours, alignment) at the end of
 * the scope. */
class Saved_DC {
  public:
    /** @param of_dc null: nothing is saved */
    explicit Saved_DC(HDC of_dc) : dc(of_dc), level(of_dc != nullptr ? ::SaveDC(of_dc) : 0) {}
    Saved_DC(const Saved_DC&) = delete;
    Saved_DC& operator=(const Saved_DC&) = delete;
    /** The duty to restore moves. */
    Saved_DC(Saved_DC&& other) noexcept : dc(other.dc), level(std::exchange(other.level, 0)) {}
    Saved_DC& operator=(Saved_DC&&) = delete;
    ~Saved_DC() { Restore(); }
    /** False when there is nothing to bring back: a device context that could not be saved must not be changed. */
    bool Is_Saved() const { return level != 0; }
    /** Brings the state back now; the end of the scope does nothing any more. */
    void Restore() {
        if (level != 0) {
            ::RestoreDC(dc, std::exchange(level, 0));
        }
    }

  private:
    HDC dc = nullptr;
    int level = 0;
};

/** Selects stock objects (BLACK_PEN and the like), which are never given back, in place of whatever a device context
 * has. */
inline void Stock_Objects_Select(HDC dc, const int* stock, int nb) {
    for (int i = 0; i < nb; i++) {
        ::SelectObject(dc, ::GetStockObject(stock[i]));
    }
}

/** Sets a clip region, in device units, until the end of the scope. */
class Clip_Guard {
  public:
    /** @param of_dc not null; @param region device units, copied by the system; null: no clip */
    Clip_Guard(HDC of_dc, HRGN region) : dc(of_dc), before(::CreateRectRgn(0, 0, 0, 0)) {
        had_clip = before && ::GetClipRgn(dc, before.Get()) == 1;
        ::SelectClipRgn(dc, region);
    }
    /** Keeps the device context's clip as it is now, and restores it at the end: for callers that change it themselves.
     */
    explicit Clip_Guard(HDC of_dc) : dc(of_dc), before(::CreateRectRgn(0, 0, 0, 0)) {
        had_clip = before && ::GetClipRgn(dc, before.Get()) == 1;
    }
    Clip_Guard(const Clip_Guard&) = delete;
    Clip_Guard& operator=(const Clip_Guard&) = delete;
    ~Clip_Guard() { ::SelectClipRgn(dc, had_clip ? before.Get() : nullptr); }

  private:
    HDC dc = nullptr;
    Gdi_Region before;
    bool had_clip = false;
};

/** Sets the raster operation of pens (R2_*) until the end of the scope. */
class Rop_Guard {
  public:
    /** @param of_dc not null; @param operation one of R2_*; a failure leaves everything as it is */
    Rop_Guard(HDC of_dc, int operation) : dc(of_dc), before(::SetROP2(of_dc, operation)) {}
    Rop_Guard(const Rop_Guard&) = delete;
    Rop_Guard& operator=(const Rop_Guard&) = delete;
    ~Rop_Guard() {
        if (before != 0) {
            ::SetROP2(dc, before);
        }
    }

  private:
    HDC dc = nullptr;
    int before = 0;
};

// ---- memory picture

/** A 32-bit picture in memory, top row first, that GDI draws into through its device context. */
class Dib_Picture {
  public:
    Dib_Picture() = default;
    /** @param like a device context to agree with, or null. Without memory, or with a side of 0 or less, the picture is
     *  empty. @param of_width, of_height pixels */
    Dib_Picture(HDC like, int of_width, int of_height) : dc(like) {
        if (!dc || of_width <= 0 || of_height <= 0) {
            return;
        }
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof(BITMAPINFOHEADER);
        info.bmiHeader.biWidth = of_width;
        info.bmiHeader.biHeight = -of_height;  // negative: the first row is the top row
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        info.bmiHeader.biCompression = BI_RGB;
        void* bits = nullptr;
        bitmap = Gdi_Bitmap(::CreateDIBSection(dc.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        if (!bitmap || bits == nullptr) {
            return;
        }
        before = ::SelectObject(dc.Get(), bitmap.Get());
        pixels = static_cast<std::uint32_t*>(bits);
        width = of_width;
        height = of_height;
    }
    ///@{
    /** Assigning swaps. */
    Dib_Picture(Dib_Picture&& other) noexcept { *this = std::move(other); }
    Dib_Picture& operator=(Dib_Picture&& other) noexcept {
        std::swap(dc, other.dc);
        std::swap(bitmap, other.bitmap);
        std::swap(before, other.before);
        std::swap(pixels, other.pixels);
        std::swap(width, other.width);
        std::swap(height, other.height);
        return *this;
    }
    ///@}
    ~Dib_Picture() {
        if (before != nullptr) {
            ::SelectObject(dc.Get(), before);
        }
    }
    /** True when it has pixels. */
    explicit operator bool() const { return pixels != nullptr; }
    /** Where GDI draws; not null for an empty picture that got a device context only, so ask operator bool. */
    HDC Get_DC() const { return dc.Get(); }
    /** width x height pixels 0x00RRGGBB. Call Flush before touching them after GDI drew. */
    std::uint32_t* Pixels() const { return pixels; }
    ///@{
    /** Pixels; 0 for an empty picture. */
    int Width() const { return width; }
    int Height() const { return height; }
    ///@}
    /** Ends what GDI still has to draw on this thread. */
    static void Flush() { ::GdiFlush(); }

  private:
    Memory_DC dc;  // declared before the bitmap, so that it goes after it
    Gdi_Bitmap bitmap;
    HGDIOBJ before = nullptr;
    std::uint32_t* pixels = nullptr;
    int width = 0;
    int height = 0;
};
