/** Pixels that are read when they are wanted: of series that were listed by the heads of their files. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/image_folder.h"
#include "workbench/volumes/volume.h"
#include "workbench/volumes/volume_load.h"

namespace volumes {

/** A volume without levels, and where they are. */
struct Waiting_Levels {
    Volume volume;                             ///< as Image_Folder_Open gave it
    std::vector<std::filesystem::path> files;  ///< of every slice
    std::vector<Slice_Identity> slices;        ///< Folder_Volume::waiting
};

/** @param file_of_slice indices into `files`; `slices` has as many */
Waiting_Levels Waiting_Levels_Of(const Volume& listed, std::span<const std::int32_t> file_of_slice,
                                 std::span<const std::filesystem::path> files, std::span<const Slice_Identity> slices);

struct Levels_Result {
    std::optional<Volume> volume;          ///< with levels, their scale and range; no value: see error
    std::vector<Folder_Problem> problems;  ///< slices that are empty, and oddities of the others
    std::string error;          ///< what the volume is or has, "needs more memory than ..."; empty on success
    bool is_cancelled = false;  ///< the progress callback gave up; `error` says so too
};

/** Reads the pixels of all slices on as many threads as there are processors. Never throws. The volume keeps size and
 *  place. A slice whose file cannot be read any more, or holds another image by now, is empty (see Slices_Join), and is
 *  a problem; only when none can be read there is no volume.
 *  @param progress may be empty; called on the caller's thread @param limits of each file, and of all levels together
 */
Levels_Result Waiting_Levels_Read(const Waiting_Levels& wanted, const Load_Progress& progress = {},
                                  const Load_Limits& limits = {}) noexcept;

}  // namespace volumes
