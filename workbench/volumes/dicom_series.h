/** Puts the images of files together to volumes. */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "workbench/volumes/image_folder.h"

namespace volumes {

/** One image with the file that it came from. */
struct Series_Part {
    Dicom_Image image;
    std::int32_t file = 0;      ///< index into Image_Folder::files
    bool is_waiting = false;    ///< the image is that of a head: it has no levels
    Slice_Identity identity{};  ///< filled in by Series_Assemble
};

/** What an image is to be known by again. */
Slice_Identity Identity_Of(const Dicom_Image& image);

/** Takes the parts apart into volumes.
 *  Parts of one study and series with the same size and kind, and, but for parts of a voxel, the same pixel spacing and
 *  direction, are slices of one volume (see slice_stack.h); a file with several frames stands alone. A copy of an image
 *  is left out and listed. Where places repeat equally often, each time is a volume. Volumes with a part that waits
 *  have no levels (see Folder_Volume::waiting).
 *  @param folder its files are known; volumes and problems are added */
void Series_Assemble(std::vector<Series_Part>&& parts, Image_Folder& folder);

/** Adds a volume of one or several times to the folder: one volume per time, or, when it has a single slice, one whose
 *  slices are the times. @param one path and title are known; file_of_slice holds one file for every slice of a time */
void Times_Split(Folder_Volume&& one, Image_Folder& folder);

}  // namespace volumes
