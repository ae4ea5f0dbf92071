/** A window for a panel that can be read back. It works without Windows too: there it is memory. */
#pragma once

#include <cstdint>
#include <vector>

#include "host/kit_common.h"
#include "host/kit_dataset.h"
#include "host/kit_widgets.h"
#include "kits/widgets/widgets_host.h"
#include "tests/support/window_picture.h"

// The part that differs between window systems.
HWND Panel_Window_Make(int width, int height);
void Panel_Window_End(HWND window);
void Panel_Window_Fill(HWND window, int width, int height, std::uint32_t color);
std::vector<std::uint32_t> Panel_Window_Read(HWND window, int width, int height);
void Panel_Window_To_Screen(HWND window, int* x, int* y);

/** A window of its own, gone at the end. */
class Panel_Window {
  public:
    static constexpr std::uint32_t MARKER = 0x123456;  ///< what a fresh window shows

    Panel_Window(Window_Axis axis, int width, int height);
    ~Panel_Window();
    Panel_Window(const Panel_Window&) = delete;
    Panel_Window& operator=(const Panel_Window&) = delete;

    HWND Get() const { return window; }
    Window_Picture Read() const { return {width, height, Panel_Window_Read(window, width, height)}; }
    /** Fills it with the marker again. */
    void Wipe() const { Panel_Window_Fill(window, width, height, MARKER); }
    /** A grey host box of this window, without border. */
    Boxs Host_Box(int x, int y, int box_width, int box_height) const;
    /** Puts the pointer globals on a position of the window's axis. */
    void Point_At(int x, int y) const;
    /** The row, counted from the top, of a position of the window's axis. */
    int Row(int y) const { return axis == Window_Axis::Up ? height - 1 - y : y; }

  private:
    HWND window;
    Window_Axis axis;
    int width;
    int height;
};

/** True while the wait cursor is shown; `otherwise` where there is no cursor. */
bool Wait_Cursor_Shown(bool otherwise);
