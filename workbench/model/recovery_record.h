/** Work that was not saved, as the bytes of a file from which it can be taken up again.
 *
 *      "work journal\n"  13 bytes
 *      version           4 bytes, lowest first, as all numbers
 *      size              8 bytes: of what follows the checksum
 *      checksum          4 bytes: CRC-32 of it
 *      time, program, what was opened, volumes
 *
 *  TAGs are runs: a length in groups of seven bits, then the TAG; every slice for itself, in the order of the image's
 *  file.
 */
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/model/grid_match.h"
#include "workbench/model/label_files.h"

namespace workbench {

inline constexpr std::uint32_t RECOVERY_VERSION = 1;
inline constexpr std::size_t RECOVERY_FILE_MOST = std::size_t{2} << 30U;  ///< bytes; a longer file is none of ours

using Packed_Slice = std::vector<std::uint8_t>;
Packed_Slice Slice_Pack(std::span<const std::uint8_t> tags);
/** @return false: these are not the runs of so many pixels; `tags` is then undefined */
bool Slice_Unpack(std::span<const std::uint8_t> packed, std::span<std::uint8_t> tags);

/** The work on one volume. Texts and paths are UTF-8. */
struct Recovery_Volume {
    std::string image;            ///< path of the file, or of the first of them
    std::string title;            ///< of the volume
    std::int32_t index = 0;       ///< among the volumes that were open
    Volume_Grid grid;             ///< of the image
    std::string labels;           ///< path of the labels' own file; empty: none
    Label_Stamps stamps;          ///< of that file
    std::string description;      ///< names, colours, thresholds and markers, as they stand beside label volumes
    std::uint64_t tagged_nb = 0;  ///< voxels that are not background
    std::vector<Packed_Slice> slices;
};
struct Recovery_Record {
    std::int64_t time = 0;            ///< seconds since 1970 began
    std::string program;              ///< which version wrote it
    std::vector<std::string> opened;  ///< paths that had been opened, all together
    std::vector<Recovery_Volume> volumes;
};

std::string Recovery_Encode(const Recovery_Record& record);

struct Recovery_Reading {
    std::optional<Recovery_Record> record;
    std::string problem;    ///< why there is no record, to follow the file's name: "is damaged"
    bool is_newer = false;  ///< a later version wrote it
};
/** Takes only what is whole: every slice fills its volume. Never throws but for lack of memory. */
Recovery_Reading Recovery_Decode(std::string_view bytes);

}  // namespace workbench
