/** Writes label volumes that lie exactly on the image they were made for. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

#include "workbench/volumes/volume.h"

namespace volumes {

/** Writes labels as a NIfTI-1 file with the dimensions, voxel sizes, qform and sform of `source`; gzip-compressed when
 *  the name ends in ".gz". A file of that name is replaced, and stays as it is when writing fails. Never throws.
 *
 *  A source whose geometry came from NIfTI passes its geometry fields on unchanged (NIfTI-2's doubles become floats,
 *  the format's own type); any other gets its affine as sform.
 *
 *  A name that ends in ".nrrd", ".nhdr", ".mha" or ".mhd" gives labels of eight bits in that format (see
 *  text_header_writer.h).
 *
 *  @param labels one per voxel of `source`, of one time point or of all, in the order of Volume::levels
 *  @return empty on success, else one sentence for the user, UTF-8, naming the file */
std::string Label_Volume_Write(const std::filesystem::path& path, const Volume& source,
                               std::span<const std::uint8_t> labels) noexcept;
std::string Label_Volume_Write(const std::filesystem::path& path, const Volume& source,
                               std::span<const std::uint16_t> labels) noexcept;

}  // namespace volumes
