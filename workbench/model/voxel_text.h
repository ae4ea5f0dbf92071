/** What the status line says of the pixel under the mouse. Pure code. */
#pragma once

#include <string>

#include "workbench/model/session.h"

namespace workbench {

/** @param x, y, slice in the order of display @param tag_name of the pixel's TAG, UTF-8
 *  @return place in the file, place in the patient, grey value and TAG, UTF-8; empty outside the volume */
std::string Voxel_Text(const Session& session, int x, int y, int slice, const std::string& tag_name);

}  // namespace workbench
