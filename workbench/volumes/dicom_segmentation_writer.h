/** Writes labels as a DICOM segmentation object that belongs to the images they were drawn on. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/dicom_segmentation.h"

namespace volumes {

/** Where the slices of a volume came from. */
struct Slice_Files {
    std::span<const std::filesystem::path> files;
    std::span<const std::int32_t> file_of_slice;  ///< one per slice: an index into `files`
};

struct Segmentation_Content {
    std::span<const std::uint8_t> tags;  ///< one per voxel of the volume, in the order of its file
    std::vector<Segment> segments;       ///< of the TAGs that may occur; codes that are empty are "Tissue"
    std::string creator;                 ///< who made it, UTF-8; may be empty
    std::string program_version;
    bool is_deflated = false;  ///< smaller, but not every system reads it
};

/** Writes a binary segmentation: one segment per TAG that a voxel has, frames of those slices only that have one.
 *
 *  Patient, study, frame of reference and the places of the slices come from the images' files, which are read again
 *  for that: they must be where they were, and what they were. The object is read back before it takes its name, and
 *  compared with the labels voxel by voxel. A file of that name is replaced, and stays as it is when writing fails.
 *  Never throws.
 *  @param image that the labels lie on: of one time point or of several, of which the labels are those of one
 *  @param progress may be empty; called on the caller's thread
 *  @return empty on success, else one sentence for the user, UTF-8, naming the file */
std::string Dicom_Segmentation_Write(const std::filesystem::path& path, const Volume& image, const Slice_Files& slices,
                                     const Segmentation_Content& content, const Load_Progress& progress = {}) noexcept;

}  // namespace volumes
