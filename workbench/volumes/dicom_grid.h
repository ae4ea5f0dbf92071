/** What a DICOM file says of a volume beside its levels: size, place, kind. */
#pragma once

#include <cstdint>

#include "workbench/volumes/dicom_frames.h"
#include "workbench/volumes/dicom_pixels.h"
#include "workbench/volumes/volume.h"

namespace volumes {

/** The frames' size, and what their pixels can store. */
Frame_Size Frame_Size_Of(const Pixel_Format& format, std::int32_t frame_nb);

/** Fills everything of the volume that follows from these; levels, their range and scale stay.
 *  @param stack one of the plan's */
void Grid_Take(const Pixel_Format& format, const Frame_Plan& plan, const Frame_Stack& stack, Volume& volume);

}  // namespace volumes
