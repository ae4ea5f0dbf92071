/** The panels' enlarged histogram window, as the application meets it among its messages. */
#pragma once

#include <windows.h>

#include "workbench/model/settings.h"

namespace workbench {

/** True when it is such a window; null is none. */
bool Is_Enlarged_Window(HWND window);

/** Names who owns the window, and where it stood last: it opens there. @param last without width: it opens beside its
 *  owner */
void Enlarged_Place_Set(HWND owner, const Window_Place& last);
/** Where it stands, or stood last; without width when it was never open. */
Window_Place Enlarged_Place_Now();

}  // namespace workbench
