/** Reads one DICOM file: what it shows, where it lies, and its pixels. */
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "volumes/nifti_reader.h"

/** The image of one file, of one or more frames of one size. */
struct Dicom_Image {
    std::filesystem::path path;
    std::string study_uid;
    std::string series_uid;
    std::string study;           ///< description, may be empty
    std::string series;          ///< description, may be empty
    std::uint16_t modality = 0;  ///< two letters, the first in the high byte
    bool scout = false;          ///< a localizer
    int width = 0;               ///< pixels, 1 or more
    int height = 0;              ///< pixels, 1 or more
    int frame_nb = 1;
    bool frames_are_times = false;  ///< a cine: the frames follow each other in time, not in space
    int series_number = 0;
    int instance_number = 0;
    int temporal_position = 0;
    std::optional<std::array<double, 3>>
        position;  ///< of the first pixel's middle, mm, to the patient's left, back, top
    std::optional<std::array<double, 6>> orientation;  ///< directions of a row and of a column
    std::array<double, 2> pixel_spacing{1.0, 1.0};     ///< mm between rows, between columns
    double slice_spacing = 0.0;                        ///< mm; 0: not told
    double time_step = 0.0;                            ///< seconds; 0: not told
    double slope = 1.0;                                ///< grey = level x slope + intercept, not 0
    double intercept = 0.0;
    bool color = false;                ///< levels are packed: red in the low byte, green, blue
    std::string scalar_type;           ///< for example "int16"
    std::vector<std::int32_t> levels;  ///< frame_nb x height x width, rows from the top
};

struct Dicom_Result {
    std::optional<Dicom_Image> image;
    std::string reason;  ///< why there is no image: the end of a sentence that begins with the file's name; UTF-8
};

/** Loads a file of any transfer syntax without compression, deflated, or run-length coded. Never throws. */
Dicom_Result Dicom_Load(const std::filesystem::path& path, const Load_Limits& limits = {}) noexcept;
/** The same from bytes. @param name of the file */
Dicom_Result Dicom_Load(const std::vector<char>& bytes, const std::filesystem::path& name,
                        const Load_Limits& limits = {}) noexcept;
