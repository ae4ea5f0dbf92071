/** A small window that tells a name in full where a panel had no room for it. There is one for all panels: it comes
 *  when the mouse rests on such a name, and goes when it moves on. */
#pragma once

#include <functional>
#include <vector>

#include "workbench/accessible.h"
#include "workbench/look.h"

namespace workbench {

/** How long the mouse rests before the tip comes. */
inline constexpr UINT NAME_TIP_REST_MS = 500;

/** From now on the names in a window have tips. @param shared_look outlives the window
 *  @param parts what stands in the window now, as Accessible_Source::parts */
void Name_Tip_Set(HWND window, const Look& shared_look, std::function<std::vector<Accessible_Part>()> parts);
/** Before the window goes. */
void Name_Tip_Forget(HWND window);
/** The mouse is at a point of the window, client pixels. Costs nothing as long as it moves. */
void Name_Tip_Follow(HWND window, POINT client);
/** The mouse has left, or a button was pressed. */
void Name_Tip_Hide();

/** The tip while it is shown; else null. */
HWND Name_Tip_Window();

/** The part whose name has no room at a point; null: none, or its name is whole. What stands before a name - the mark
 *  of a button, the lines of a tree - is taken as squares of the part's height.
 *  @param width_of pixels of a name */
const Accessible_Part* Part_Cut_At(const std::vector<Accessible_Part>& parts, POINT client,
                                   const std::function<int(const std::wstring& name)>& width_of);

}  // namespace workbench
