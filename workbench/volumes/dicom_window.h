/** The windows that a DICOM image proposes to be shown in. */
#pragma once

#include <vector>

#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/volume.h"

namespace volumes {

/** The windows of an image, or of the first item of its shared or per-frame functional groups, in their order. Those
 *  without a usable width are left out. */
std::vector<Display_Window> Windows_Read(DcmItem& data_set);

}  // namespace volumes
