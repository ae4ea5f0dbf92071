/** What each part of the application is given of the others. */
#pragma once

#include "workbench/edits/segmentation_control.h"
#include "workbench/histogram_counting.h"
#include "workbench/parts/color_advisor.h"
#include "workbench/parts/history_control.h"
#include "workbench/parts/label_file_control.h"
#include "workbench/parts/layout_control.h"
#include "workbench/parts/level_supply.h"
#include "workbench/parts/picture_control.h"
#include "workbench/parts/propagation_control.h"
#include "workbench/parts/recovery_control.h"
#include "workbench/parts/tag_control.h"
#include "workbench/parts/view_control.h"
#include "workbench/segmentation_services.h"
#include "workbench/tools/tool_host.h"

namespace workbench {

struct Application_Parts;

// None of the parts need be made yet; all outlive what is answered.
Segmentation_Wiring Segmentation_Wires(Application_Parts& parts);
Tool_Host Tool_Wires(Application_Parts& parts);
View_Host View_Wires(Application_Parts& parts);
Layout_Host Layout_Wires(Application_Parts& parts);
Tag_Host Tag_Wires(Application_Parts& parts);
Color_Host Color_Wires(Application_Parts& parts);
/** @param deliver tells everybody of changes at once */
Propagation_Host Propagation_Wires(Application_Parts& parts, std::function<void()> deliver);
History_Host History_Wires(Application_Parts& parts);
Label_File_Host Label_File_Wires(Application_Parts& parts);
Picture_Host Picture_Wires(Application_Parts& parts);
Level_Supply_Host Level_Wires(Application_Parts& parts);
/** @param on_timer called when a look is due, with nothing but what is global */
Recovery_Host Recovery_Wires(Application_Parts& parts, TIMERPROC on_timer);
/** @param on_timer as above */
Counting_Parts Counting_Wires(Application_Parts& parts, TIMERPROC on_timer);

}  // namespace workbench
