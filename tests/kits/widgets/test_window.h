/** A window that tests draw into and read back, real on Windows and in memory elsewhere. */
#pragma once

#include <cstdint>
#include <vector>

#include "host/kit_widgets.h"
#include "kits/widgets/surface.h"
#include "kits/widgets/widgets_host.h"
#include "tests/support/window_picture.h"

class Test_Window {
  public:
    static constexpr std::uint32_t MARKER = 0x123456;  ///< what a fresh window shows

    Test_Window(int width, int height, Window_Axis axis);
    ~Test_Window();
    Test_Window(const Test_Window&) = delete;
    Test_Window& operator=(const Test_Window&) = delete;

    HWND Get() const { return window; }
    Window_Picture Read() const;
    /** Fills the whole window with the marker again. */
    void Wipe() const;
    /** Puts the pointer globals on a client position, y down. */
    void Point_At(int x, int y) const;
    /** Puts the pointer globals on a position of the window's own axis. */
    void Point_At_Logical(int x, int y) const;
    void Resize(int width, int height);

  private:
    HWND window = nullptr;
    int width = 0;
    int height = 0;
};

/** Writes a picture as PNG beside the test program, for people to look at. */
bool Write_Png(const char* path, const Window_Picture& picture);
