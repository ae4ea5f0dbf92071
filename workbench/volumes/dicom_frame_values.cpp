#include "workbench/volumes/dicom_frame_values.h"

#include <algorithm>
#include <cstddef>

#include "workbench/volumes/volume.h"

namespace volumes {

void Values_Make(const Pixel_Meaning& meaning, Value_Room& room) {
    const Pixel_Format& format = meaning.format;
    std::vector<std::int64_t>& values = room.values;
    values.resize(static_cast<std::size_t>(format.width) * static_cast<std::size_t>(format.height));
    Frame_Decode(format, room.frame.bytes, meaning.palette, values);
    if (meaning.padding) {
        room.is_padding.resize(values.size());
        std::ranges::transform(values, room.is_padding.begin(), [&](std::int64_t value) {
            return static_cast<std::uint8_t>(value >= meaning.padding->first && value <= meaning.padding->second ? 1
                                                                                                                 : 0);
        });
    }
    if (meaning.greys) {
        const auto last = static_cast<std::int64_t>(meaning.greys->entries.size()) - 1;
        for (std::int64_t& value : values) {
            value = meaning.greys->entries[static_cast<std::size_t>(
                std::clamp<std::int64_t>(value - meaning.greys->first, 0, last))];
        }
    }
}

void Frame_Levels_Make(const Pixel_Meaning& meaning, bool is_level, const Level_Map& map, Value_Room& room,
                       std::span<std::int32_t> levels) {
    if (is_level && meaning.Is_Plain()) {
        return Levels_Decode_Grey(meaning.format, room.frame.bytes, levels);
    }
    Values_Make(meaning, room);
    for (std::size_t pixel = 0; pixel < levels.size(); ++pixel) {
        const bool is_outside = !room.is_padding.empty() && room.is_padding[pixel] != 0;
        const std::int64_t value = room.values[pixel];
        levels[pixel] = is_outside ? LEVEL_OUTSIDE : (is_level ? static_cast<std::int32_t>(value) : map.Level(value));
    }
}

}  // namespace volumes
