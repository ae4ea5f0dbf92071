/** What a DICOM file of one picture says before its pixels: enough to list series without reading a picture. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/dicom_reader.h"

namespace volumes {

struct Dicom_Head {
    /** As Dicom_Read gives it but for what only pixels say: no levels, their range and scale are unknown. No value: the
     *  file is to be read whole. It is damaged, no DICOM file, has several frames, or is of a rare kind. */
    std::optional<Dicom_Image> image;
    std::vector<std::string> warnings;  ///< as Dicom_Result::warnings, as far as the head gives rise to them
};

/** The head of a file that begins so. Throws std::bad_alloc. @return no value: it does not end in these bytes, or is
 *  damaged */
std::optional<Dicom_Head> Dicom_Head_Of(std::span<const std::uint8_t> beginning);

/** Reads as much of a file as its head needs. Throws std::bad_alloc. That there are pixels, and as many as
 *  the head says, is not looked at. Packed files are not unpacked.
 *  @param room its `file` is used and left for the next file */
Dicom_Head Dicom_Head_Read(const std::filesystem::path& path, Reading_Room& room);

}  // namespace volumes
