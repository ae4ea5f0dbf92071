/** What the images that labels lie on say of themselves, read from their files anew. */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "workbench/volumes/dicom_frames.h"
#include "workbench/volumes/dicom_segmentation_writer.h"

namespace volumes {

/** The image file that a slice came from. */
struct Source_Image {
    std::string kind;      ///< unique identifier of its class
    std::string instance;  ///< its own
    std::string series;
    std::string study;
    std::string frame_of_reference;   ///< may be empty
    std::vector<Slice_Place> places;  ///< of its frames
    std::array<double, 3> spacing{1, 1, 1};
};

/** The frame that a slice is. */
struct Source_Slice {
    std::size_t image = 0;       ///< index into Source_Images::images
    std::int32_t frame = 0;      ///< from 0
    bool is_frame_told = false;  ///< the file has several frames, and this one alone lies there
    std::array<double, 3> corner{};
};

/** A value that every object of a study repeats. */
struct Repeated_Field {
    DcmTagKey tag;
    std::string value;  ///< UTF-8; may be empty
};

struct Source_Images {
    std::vector<Source_Image> images;
    std::vector<Source_Slice> slices;      ///< of the volume, by z
    std::vector<Repeated_Field> repeated;  ///< patient and study, of the first image
    bool is_lossy = false;                 ///< an image was compressed with losses
    std::string lossy_ratio;
    std::string lossy_method;
    std::string series_text;
    std::int32_t series_number = 0;
};

/** Throws Dicom_Refusal with a whole sentence: a file is gone, is no image, says not where it lies, or is another than
 *  the one that the slice was read from. @param progress may be empty. Returning false throws Dicom_Refusal, too */
Source_Images Source_Images_Read(const Volume& image, const Slice_Files& slices, const Load_Progress& progress);

}  // namespace volumes
