/** Loads images whose header is text: NRRD (.nrrd, .nhdr) and MetaImage (.mha, .mhd). */
#pragma once

#include <filesystem>
#include <optional>

#include "workbench/volumes/byte_source.h"
#include "workbench/volumes/text_header.h"
#include "workbench/volumes/volume_load.h"

namespace volumes {

/** What kind of text header a file begins with; nothing: none, or it cannot be read. */
std::optional<Text_Header_Kind> Text_Header_Find(const std::filesystem::path& path) noexcept;

/** Loads a file. Never throws. Memory is taken only for voxels that are there. Voxels that stand in a file of their own
 *  are looked for beside the header; a header that names another folder is refused.
 *  @param progress may be empty; called on the caller's thread */
Load_Result Text_Header_Load(const std::filesystem::path& path, const Load_Progress& progress = {},
                             const Load_Limits& limits = {}) noexcept;

/** Loads from sources at their beginning; they are read, not kept. Never throws.
 *  @param data the voxels of a header without, null when there are none */
Load_Result Text_Header_Load(Byte_Source& source, Byte_Source* data, const Load_Progress& progress = {},
                             const Load_Limits& limits = {}) noexcept;

}  // namespace volumes
