/** The window system as far as the module's drawing, dialog and window need it, in memory: the same sources run where
 *  there is none, under the sanitizers. Objects are real allocations, so what is not given back is a leak; what is
 *  given back twice, while selected or by the wrong call ends the program with a message. Nothing is drawn but into
 *  pictures in memory, which stay as they were made. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>

#include "host/platform.h"

struct Headless_Message {
    unsigned int message = 0;
    std::uintptr_t wparam = 0;
    std::intptr_t lparam = 0;
};

/** What arrives at a dialog while it is open: called until it says false or the dialog ends. Without one a dialog that
 *  opens is closed at once. */
void Headless_Dialog_Set(std::function<bool(Headless_Message&)> next);
/** Whether the system makes windows that are asked for (not those of Headless_Window_Create); true at first. */
void Headless_Windows_Allow(bool allow);
/** Pens, brushes, pictures and the like that are not given back yet. Fonts are the kit's. */
std::size_t Headless_Objects_Living();
/** Sends a message to a window that the system made. */
void Headless_Message_Send(HWND window, const Headless_Message& message);
/** Delivers what was posted, also what is posted meanwhile. */
void Headless_Messages_Deliver();
