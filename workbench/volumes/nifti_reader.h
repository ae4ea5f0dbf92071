/** Loads NIfTI-1, NIfTI-2 and Analyze 7.5 files: .nii, .nii.gz, and pairs of .hdr and .img (also each gzip-compressed).
 */
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "workbench/volumes/byte_source.h"
#include "workbench/volumes/volume.h"

namespace volumes {

/** Called now and then with the fraction done, 0 .. 1, never falling. @return false to give up */
using Load_Progress = std::function<bool(double)>;

/** What a file may ask for. */
struct Load_Limits {
    /** Most bytes of the decoded voxels, of the levels made of them (4 bytes per voxel), and of anything else in the
     * file, each for itself. */
    std::uint64_t decoded_bytes = std::uint64_t{2} << 30U;
};

struct Load_Result {
    std::optional<Volume> volume;       ///< no value: see error
    std::string error;                  ///< one sentence for the user, UTF-8, naming the file; empty on success
    bool cancelled = false;             ///< the progress callback gave up; `error` says so too
    std::vector<std::string> warnings;  ///< sentences about oddities that did not prevent loading
};

/** Loads a file. Never throws. Memory is taken only for bytes that are there.
 *  @param path the .nii file, or either file of a pair; UTF-8 text becomes a path by Path_From_Utf8 (message_text.h)
 *  @param progress may be empty; called on the caller's thread */
Load_Result Volume_Load(const std::filesystem::path& path, const Load_Progress& progress = {},
                        const Load_Limits& limits = {}) noexcept;

/** Loads from sources at their beginning; they are read, not kept. Never throws.
 *  @param source a single file or the header of a pair; @param image the voxels of a pair, null when there are none */
Load_Result Volume_Load(Byte_Source& source, Byte_Source* image, const Load_Progress& progress = {},
                        const Load_Limits& limits = {}) noexcept;

}  // namespace volumes
