/** What the parts that look after the main window are given of the others: keys, focus, places, what is
 *  opened. */
#pragma once

#include <functional>

#include "workbench/parts/focus.h"
#include "workbench/parts/keyboard_control.h"
#include "workbench/volume_opener.h"
#include "workbench/window_control.h"

namespace workbench {

struct Application_Parts;

// None of the parts need be made yet; all outlive what is answered.
/** @param execute runs a command */
Keyboard_Host Keyboard_Wires(Application_Parts& parts, std::function<void(const Command_Call&)> execute);
Focus_Host Focus_Wires(Application_Parts& parts);
/** @param lay_out some part of the window wants other room */
Window_Parts Window_Wires(Application_Parts& parts, std::function<void()> lay_out);
/** @param deliver tells everybody of changes at once */
Opener_Parts Opener_Wires(Application_Parts& parts, std::function<void()> deliver);

}  // namespace workbench
