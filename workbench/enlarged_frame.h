/** The frame of the module's enlarged histogram window. Its icon comes from the window that is active when the first
 *  histogram panel is made, and the application makes its panels before it has one. */
#pragma once

namespace workbench {

/** Gives the enlarged histogram window of this thread the application's icon and the theme's frame, if it is open. */
void Enlarged_Frame_Dress();

}  // namespace workbench
