/** Reads one DICOM file: its pictures, and what is needed to put them beside those of other files. */
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/nifti_reader.h"
#include "workbench/volumes/volume.h"

/** Where a slice lies in the patient. Millimetres to the patient's left, back and top. */
struct Slice_Place {
    bool is_known = false;              ///< false: the file does not say; the other members mean nothing
    std::array<double, 3> corner{};     ///< centre of the first pixel
    std::array<double, 3> along_row{};  ///< unit vector of rising x
    std::array<double, 3> along_column{};
};

/** The vector that slices are stacked along: row times column. */
std::array<double, 3> Slice_Normal(const Slice_Place& place);
/** How far the slice lies along its normal, mm. */
double Slice_Depth(const Slice_Place& place);
/** Voxel index to NIfTI's millimetres (right, front, top). @param step from one slice to the next, mm, in the
 *  coordinates of Slice_Place */
Affine Affine_Of(const Slice_Place& first, const std::array<double, 3>& spacing, const std::array<double, 3>& step);

/** The pictures of one file.
 *
 *  Stored values are levels: sign, stored bits and high bit are taken into account, and
 *  MONOCHROME1 is turned round so that a larger level is brighter. Colours (RGB, YBR_FULL, YBR_FULL_422, palettes) are
 *  packed 8-bit colours. Rows run from the top. */
struct Dicom_Image {
    Volume volume;         ///< nz slices at nt time points
    Slice_Place place;     ///< of the first slice
    std::string instance;  ///< unique identifier of the image itself; may be empty
    std::string study;
    std::string series;       ///< unique identifiers; may be empty
    std::string series_text;  ///< description, or the protocol's name; UTF-8, may be empty
    std::int32_t series_number = 0;
    std::int32_t instance_number = 0;
    std::int32_t acquisition_number = 0;
    std::int32_t temporal_position = 0;  ///< 0: the file does not say
    double trigger_time = 0;             ///< ms, 0: the file does not say
    std::uint16_t modality = 0;          ///< two letters, the first in the high byte
    bool is_scout = false;               ///< a localizer
};

struct Dicom_Result {
    std::optional<Dicom_Image> image;   ///< no value: see error
    std::string error;                  ///< what the file is or has, "is no DICOM file"; empty on success
    std::vector<std::string> warnings;  ///< said in the same way
};

/** Bytes at the beginning of a file that are enough for Dicom_Is_Likely. */
inline constexpr std::size_t DICOM_HEAD_SIZE = 140;
/** Whether a file that begins so may be a DICOM file. @param head the first bytes, at most DICOM_HEAD_SIZE are looked
 * at */
bool Dicom_Is_Likely(std::span<const std::uint8_t> head);

/** Reads a whole file. Never throws.
 *  Decoded: uncompressed pixels in either byte order, deflated data sets, run-length (RLE) pixels.
 *  @param file all bytes, not kept
 *  @param limits most bytes of the decoded levels, and of an inflated data set, each for itself */
Dicom_Result Dicom_Read(std::span<const std::uint8_t> file, const Load_Limits& limits = {}) noexcept;
