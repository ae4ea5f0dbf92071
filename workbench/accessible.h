/** What a window tells programs that read the screen aloud (Microsoft Active Accessibility, which UI Automation takes
 *  over too): a name, and a part for everything in it that has one. */
#pragma once

#include "win32/gdi_handles.h"

#include <functional>
#include <memory>
#include <string>
#include <vector>

/** A thing in a window: a button, a row, a text. */
struct Accessible_Part {
    std::wstring name;
    std::wstring value;
    LONG role = 0;    ///< ROLE_SYSTEM_*
    LONG state = 0;   ///< STATE_SYSTEM_*
    RECT place = {};  ///< client pixels
};

/** Asked anew with every question, so that nothing has to be kept up to date. */
struct Accessible_Source {
    LONG role = 0;  ///< of the window
    std::function<std::wstring()> name;
    std::function<std::wstring()> value;                  ///< may be empty
    std::function<std::vector<Accessible_Part>()> parts;  ///< may be empty; only those that can be seen
};

/** Answers WM_GETOBJECT. @param source may die before the answer: the answer then says that it is not connected
 *  @return what the window procedure returns; 0 when something else than the client area is asked about */
LRESULT Accessible_Answer(HWND window, WPARAM wparam, LPARAM lparam, const std::shared_ptr<Accessible_Source>& source);

/** The parts of a window that the widgets' library has painted. See kits/widgets/shown_widgets.h.
 *  @param name gives a name to a part without one; may be empty. The index counts the parts without a name */
std::vector<Accessible_Part> Widget_Parts(HWND window, const std::function<std::wstring(int index)>& name);
