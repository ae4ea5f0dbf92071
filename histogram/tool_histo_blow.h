/** The enlarged histogram window: its state, its handlers and its window procedure. One instance in the process.
 *
 *  Positions are client pixels, y counted upward from the bottom row. The widgets take the pointer from the library's
 *  globals, which the window procedure sets before it calls a handler.
 */
#pragma once

#include <cstdint>

#include "base/wheel_remainder.h"
#include "histogram/blow_view.h"
#include "host/kit_widgets.h"
#include "host/platform.h"

class Tool_Histo;

/** State of the one window. */
struct Histo_Blow_State {
    HWND window = nullptr;        ///< null while closed
    Tool_Histo* panel = nullptr;  ///< the panel whose data is shown; null when it is gone

    std::int16_t width = 0;  ///< client area, as last received with an extent
    std::int16_t height = 0;
    bool hidden = false;  ///< the client area has no extent now (minimised): nothing is drawn
    int frame_width = 0;  ///< from the window's corner to its client area, for pens; read at creation
    int caption_height = 0;
    int frame_height = 0;

    Wheel_Remainder wheel;
    Blow_View view;  ///< zoom, origin, scale and their limits
    bool dragging = false;
    Blow_Drag drag;

    int display_cursor = 0;  ///< 0 off, 1 on
    int display_tag = 0;     ///< 0 off, 1 on
    int display_peak = 0;    ///< Histo_Peak_Display

    Boxs plot;
    Pixel_Rectangle area;  ///< where data is drawn, inside the box's margins
    Buttons reset_button;
    Buttons export_button;
    Selects peak_select;  ///< without items while the panel has no peaks: it does not exist then
    Selects tag_select;
    Selects cursor_select;
};
extern Histo_Blow_State histo_blow;

/** A press begins the zoom rectangle and feeds the controls; up_down 0 is a release and ends the rectangle. "Export"
 * and a selector's field run modal loops: the window and its panel may be gone when this returns. @return 1 when
 * something was done */
int Histo_Blow_Click(int up_down, int x, int y);
/** Repaints the window. @return 1; 0 while it has no extent */
int Histo_Blow_Draw();
/** Lets the zoom rectangle go without a zoom. */
void Histo_Blow_Drag_Drop();
/** Takes no key. @return 0 */
int Histo_Blow_Key(int key, int x, int y);
/** Moves the zoom rectangle; the controls follow the pointer. @return 1 */
int Histo_Blow_Motion(int up_down, int x, int y);
/** Lays the window out for a client size. A size without extent (a minimised window) keeps the last layout. @return 1
 */
int Histo_Blow_Resize(HWND window, int client_width, int client_height);
/** Wheel notches, forward positive: zooms about the pointer, and turns the selector under it. @return 1 */
int Histo_Blow_Scroll(int notches, int x, int y);
/** Two fingers zoom and pan. @return 1; 0 when the gesture is ignored */
int Histo_Blow_Pinch(const Gesture_Record& gesture);

/** Begins a window's life: its handle is known, nothing is zoomed, dragged or laid out yet. */
void Histo_Blow_Begin(HWND window);
/** The window is being destroyed: forgets it and draws the shown panel, whose button is released then. */
void Histo_Blow_End();
/** Repaints with the panel's present data; lays out anew when its titles or its peaks' selector have changed. @return
 * as Histo_Blow_Draw */
int Histo_Blow_Redraw();
/** Moves the cursor line to the grey level under the image mouse, when it is displayed. */
void Histo_Blow_Cursor();

///@{
/** A command's button: pressed while the command runs, plain afterwards, whatever the pointer does meanwhile. */
void Histo_Blow_Button_Press(Buttons& button);
void Histo_Blow_Button_Release(Buttons& button);
///@}
/** The pointer has left: no control is lit up any more. */
void Histo_Blow_Controls_Leave();
/** Lets the window take input or not, for the time of a dialog; enabled again it comes to the front, as after a dialog
 * of its own. */
void Histo_Blow_Enable(HWND window, bool enabled);

/** Window procedure of the class "Histogram". */
#if defined(_WIN32) || defined(__stdcall)  // a macro of the system's headers elsewhere
std::intptr_t __stdcall WndProc_Histo_Blow(HWND window, unsigned int message, std::uintptr_t wparam,
                                           std::intptr_t lparam);
#endif

/** Registers the window for touch input where the system has it. */
void Histo_Blow_Touch_Register(HWND window);
