/** Reads one DICOM file: its pictures, and what is needed to put them beside those of other files. */
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/file_origin.h"
#include "workbench/volumes/slice_stack.h"
#include "workbench/volumes/volume.h"
#include "workbench/volumes/volume_load.h"

namespace volumes {

/** The pictures of one file, or those of them that lie on one grid.
 *
 *  Stored values are levels where they fit: sign, stored bits and high bit are taken into account, slopes of frames
 *  that differ are brought to one scale, and a table of grey values is looked up. MONOCHROME1 keeps its values
 *  (Volume::is_inverted). Colours (RGB, YBR_FULL, YBR_FULL_422, palettes) are
 *  packed 8-bit colours. Rows run from the top. */
struct Dicom_Image {
    Volume volume;              ///< nz slices at nt time points
    Slice_Place place;          ///< of the first slice; a corner without directions: has_corner alone
    std::int32_t frame_nb = 1;  ///< frames of the file
    std::int32_t part = 0;      ///< of part_nb that the file's frames make up, from 0
    std::int32_t part_nb = 1;
    std::string instance;  ///< unique identifier of the image itself; may be empty
    File_Origin origin;
    Slice_Moment moment;    ///< of the first slice
    bool is_scout = false;  ///< a localizer
};

struct Dicom_Result {
    std::optional<Dicom_Image> image;   ///< no value: see error
    std::vector<Dicom_Image> others;    ///< frames that do not lie on the first image's grid
    std::string error;                  ///< what the file is or has, "is no DICOM file"; empty on success
    std::vector<std::string> warnings;  ///< said in the same way
    bool is_cancelled = false;          ///< the progress callback gave up; `error` says so too
    bool has_no_room = false;           ///< the limits' share had not enough left; `error` says so too
};

/** Bytes at the beginning of a file that are enough for Dicom_Is_Likely. */
inline constexpr std::size_t DICOM_HEAD_SIZE = 140;
/** Whether a file that begins so may be a DICOM file. @param head the first bytes, at most DICOM_HEAD_SIZE are looked
 * at */
bool Dicom_Is_Likely(std::span<const std::uint8_t> head);

/** Memory that outlives the reading of a file, so that the next one need not ask the system for it: large blocks that
 *  come and go are what many small files spend their time on. For one thread at a time. */
struct Reading_Room {
    std::vector<std::uint8_t> file;
    std::vector<std::uint8_t> frame;
};

/** Reads a whole file. Never throws. Decoded: uncompressed pixels in either byte order, of 1, 8, 16 or 32 bits or
 *  floating-point ones; deflated data sets; pixels compressed by run lengths (RLE), JPEG, JPEG-LS or JPEG 2000. A
 *  compressed picture that its codec had errors with is given with a warning. Frames of a codec are decoded on as many
 *  threads as there are processors.
 *  @param file all bytes, not kept
 *  @param limits most bytes of the decoded levels, and of an inflated data set, each for itself
 *  @param progress may be empty; called on the caller's thread
 *  @param room its `frame` is used and left for the next file; may be null */
Dicom_Result Dicom_Read(std::span<const std::uint8_t> file, const Load_Limits& limits = {},
                        const Load_Progress& progress = {}, Reading_Room* room = nullptr) noexcept;

}  // namespace volumes
