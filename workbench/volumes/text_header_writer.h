/** Writes images and labels as NRRD (.nrrd, .nhdr) or MetaImage (.mha, .mhd), header and voxels in one file. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>

#include "workbench/volumes/volume.h"
#include "workbench/volumes/volume_load.h"

namespace volumes {

/** Whether a name's extension is one of those that are written here. */
bool Text_Header_Is_Name(const std::filesystem::path& path);

/** Writes labels that lie on an image, compressed. A file of that name is replaced, and stays as it is when writing
 *  fails. Never throws. @param labels one per voxel of `source`, of one time point or of all
 *  @return empty on success, else one sentence for the user, UTF-8, naming the file */
std::string Text_Header_Labels_Write(const std::filesystem::path& path, const Volume& source,
                                     std::span<const std::uint8_t> labels) noexcept;

/** How an image whose levels are kept in another order than its file's is written. */
struct Image_Writing {
    /** Turns the levels of one slice, nx * ny of them, to the file's order, in place. May be empty. */
    std::function<void(std::span<std::int32_t> slice)> turn;
    Load_Progress progress;  ///< may be empty; false gives up: no file is written, and a sentence says so
};

/** The same of an image, not compressed: its grey values, in whole numbers where all of them are and none is outside,
 *  else as float32 with "no number" for those outside; colours as three bytes. */
std::string Text_Header_Image_Write(const std::filesystem::path& path, const Volume& image,
                                    const Image_Writing& writing = {}) noexcept;

}  // namespace volumes
