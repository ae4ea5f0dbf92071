/** The enlarged histogram window: its state and its window procedure. One instance in the process. */
#pragma once

#include <cstdint>

#include "host/platform.h"

class Tool_Histo;

/** State of the one window. */
struct Histo_Blow_State {
    HWND window = nullptr;        ///< null while closed
    Tool_Histo* panel = nullptr;  ///< the panel whose data is shown; null when it is gone
};
extern Histo_Blow_State histo_blow;

/** Window procedure of the class "Histogram". */
#if defined(_WIN32)
std::intptr_t __stdcall WndProc_Histo_Blow(HWND window, unsigned int message, std::uintptr_t wparam,
                                           std::intptr_t lparam);
#endif

/** Registers the window for touch input where the system has it. */
void Histo_Blow_Touch_Register(HWND window);
