/** The module's enlarged histogram window takes its icon from the window that is active when the first histogram panel
 * is made; the application makes its panels before it has one. */
#pragma once

namespace workbench {

/** Gives the enlarged histogram window of this thread the application's icon, if it is open. */
void Enlarged_Icon_Give();

}  // namespace workbench
