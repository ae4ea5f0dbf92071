/** The same parts that MSAA tells, as UI Automation's own providers: with a kind of control for each, its level in a
 *  tree, and what can be done with it. */
#pragma once

#include "base/gdi_handles.h"

#include <uiautomationcore.h>

namespace workbench {

/** Answers WM_GETOBJECT when UI Automation asks.
 *  @return what the window procedure returns; 0 when somebody else asks, or the system has no UI Automation */
LRESULT Automation_Answer(HWND window, WPARAM wparam, LPARAM lparam);
/** Tells UI Automation that a window goes. */
void Automation_Forget(HWND window);

/** The provider of a window, which answers from any thread as long as the window lives (see accessible_snapshot.h).
 *  @return one reference, the caller's; null without memory */
IRawElementProviderSimple* Automation_Provider_Make(HWND window);

}  // namespace workbench
