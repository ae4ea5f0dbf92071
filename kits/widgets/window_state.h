/** What the library keeps of each window: its axis, its back buffer and its wait cursors. */
#pragma once

#include "kits/widgets/device.h"
#include "kits/widgets/surface.h"
#include "kits/widgets/widgets_host.h"

/** A window's back buffer while one is being collected.
 *  @return its device context, null when drawing goes to the screen. Marks everything as changed: what panels draw
 *  there is not seen */
HDC Window_Buffer_DC(HWND window);

/** Notes, while the contract is checked, that something is drawn in a window. */
void Window_Drawn_Note(HWND window);
/** Reports windows that were drawn in and have no declared axis. */
void Contract_Check_Axes();

/** A picture for a painter, by nesting depth, so that a painter inside another one does not share its pixels. */
class Scratch_Picture {
  public:
    Scratch_Picture(int width, int height) : Scratch_Picture(width, height, {0, 0, width, height}) {}
    /** With pixels for the part `held` alone. */
    Scratch_Picture(int width, int height, const Rect& held);
    ~Scratch_Picture();
    Scratch_Picture(const Scratch_Picture&) = delete;
    Scratch_Picture& operator=(const Scratch_Picture&) = delete;
    /** Without pixels when memory is out. */
    Surface& View() { return view; }
    bool Has_Pixels() const { return has_pixels; }

  private:
    Surface view;
    bool has_pixels = false;
};
