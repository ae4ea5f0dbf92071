/** The panels' enlarged histogram window, as the application meets it among its messages. */
#pragma once

#include <windows.h>

namespace workbench {

/** True when it is such a window; null is none. */
bool Is_Enlarged_Window(HWND window);

}  // namespace workbench
