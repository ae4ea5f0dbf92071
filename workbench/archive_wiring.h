/** What archives in the network are given of the application. */
#pragma once

#include "workbench/parts/archive_control.h"

namespace workbench {

struct Application_Parts;

/** None of the parts need be made yet; all outlive what is answered. */
Archive_Host Archive_Wires(Application_Parts& parts);

}  // namespace workbench
