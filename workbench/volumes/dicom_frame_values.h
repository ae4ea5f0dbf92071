/** The values of a frame's pixels, and levels of them. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "workbench/volumes/dicom_pixel_meaning.h"
#include "workbench/volumes/dicom_stored_frames.h"
#include "workbench/volumes/level_scale.h"

namespace volumes {

/** A frame's values: every thread that decodes has room for one. */
struct Value_Room {
    Frame_Room frame;
    std::vector<std::int64_t> values;
    std::vector<std::uint8_t> is_padding;  ///< of the values; empty: none is
    std::vector<std::int32_t> levels;
};

/** Makes values of the bytes of the room's frame. */
void Values_Make(const Pixel_Meaning& meaning, Value_Room& room);
/** Makes levels of the room's frame. @param is_level the values are levels as they are; if not, `map` makes them
 *  @param levels as many as the frame has pixels */
void Frame_Levels_Make(const Pixel_Meaning& meaning, bool is_level, const Level_Map& map, Value_Room& room,
                       std::span<std::int32_t> levels);

}  // namespace volumes
