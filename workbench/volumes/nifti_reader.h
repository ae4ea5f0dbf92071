/** Loads NIfTI-1, NIfTI-2 and Analyze 7.5 files: .nii, .nii.gz, and pairs of .hdr and .img (also each gzip-compressed).
 */
#pragma once

#include <filesystem>

#include "workbench/volumes/byte_source.h"
#include "workbench/volumes/volume_load.h"

namespace volumes {

/** Loads a file; one that begins as NRRD or MetaImage do is loaded as such (text_header_reader.h). Never throws. Memory
 *  is taken only for bytes that are there.
 *  @param path the .nii file, or either file of a pair; UTF-8 text becomes a path by Path_From_Utf8 (message_text.h)
 *  @param progress may be empty; called on the caller's thread */
Load_Result Volume_Load(const std::filesystem::path& path, const Load_Progress& progress = {},
                        const Load_Limits& limits = {}) noexcept;

/** Loads from sources at their beginning; they are read, not kept. Never throws.
 *  @param source a single file or the header of a pair; @param image the voxels of a pair, null when there are none */
Load_Result Volume_Load(Byte_Source& source, Byte_Source* image, const Load_Progress& progress = {},
                        const Load_Limits& limits = {}) noexcept;

}  // namespace volumes
