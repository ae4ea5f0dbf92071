/** What a window tells programs that read the screen aloud, by Microsoft Active Accessibility and by UI Automation: a
 *  name, and a part for everything in it that has one. */
#pragma once

#include "base/gdi_handles.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace workbench {

/** A thing in a window: a button, a row, a text. */
struct Accessible_Part {
    std::wstring name;
    std::wstring value;
    LONG role = 0;    ///< ROLE_SYSTEM_*
    LONG state = 0;   ///< STATE_SYSTEM_*
    RECT place = {};  ///< client pixels
    int level = 0;    ///< in a tree, from 1; 0: in none
};

/** Asked anew with every question, so that nothing has to be kept up to date. */
struct Accessible_Source {
    LONG role = 0;  ///< of the window
    std::function<std::wstring()> name;
    std::function<std::wstring()> value;                  ///< may be empty
    std::function<std::vector<Accessible_Part>()> parts;  ///< may be empty; only those that can be seen
};

/** Answers what such programs send to a window, whichever of the two ways they go.
 *  @return what the window procedure returns; no value: the message is to be handled as if this had not been called */
std::optional<LRESULT> Accessible_Message(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                          const std::shared_ptr<Accessible_Source>& source);
/** Active Accessibility's question alone, WM_GETOBJECT. @param source may die before the answer: the answer then says
 *  that it is not connected
 *  @return what the window procedure returns; 0 when something else than the client area is asked about */
LRESULT Accessible_Answer(HWND window, WPARAM wparam, LPARAM lparam, const std::shared_ptr<Accessible_Source>& source);

/** The parts of a window that the widgets' library has painted. See kits/widgets/shown_widgets.h.
 *  @param name gives a name to a part without one; may be empty. The index counts the parts without a name */
std::vector<Accessible_Part> Widget_Parts(HWND window, const std::function<std::wstring(int index)>& name);

/** A click presses the part. */
bool Accessible_Is_Pressed(const Accessible_Part& part);
/** Presses what stands at a point, client pixels: as a click, when the window comes to it. */
void Accessible_Press(HWND window, POINT point);

}  // namespace workbench
