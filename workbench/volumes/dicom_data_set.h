/** Takes the bytes of a DICOM file apart into its data set. */
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcfilefo.h"

namespace volumes {

/** What is wrong with a file, in the words of Dicom_Result::error. */
struct Dicom_Refusal {
    std::string text;
};

/** What the toolkit says of a failure, without control characters. */
std::string Toolkit_Text(const OFCondition& condition);

struct Data_Set_Source {
    std::vector<std::uint8_t> inflated;  ///< what a deflated data set holds: must outlive the data set
    std::string syntax_name;             ///< how the file says it is written, for people
    std::vector<std::string> warnings;
};

/** Bytes before the mark "DICM". */
inline constexpr std::size_t DICOM_PREAMBLE_SIZE = 128;
/** Whether the mark of a DICOM file is there. */
bool Dicom_Has_Mark(std::span<const std::uint8_t> head);
/** Whether the elements that follow the mark are there, although the mark itself may not be. */
bool Dicom_Has_Meta(std::span<const std::uint8_t> head);

struct Object_Owner;
/** Whose a data set is. */
Object_Owner Owner_Of(DcmItem& data_set);

/** Reads meta information and data set; throws Dicom_Refusal. Long values stay in `bytes` until they are asked for.
 *  @param most bytes of an inflated data set */
void Data_Set_Read(std::span<const std::uint8_t> bytes, std::uint64_t most, DcmFileFormat& file,
                   Data_Set_Source& source);

/** The same of what stands before the pixels.
 *  @param bytes the file, or its beginning
 *  @return false: no pixels follow in these bytes, so that a beginning may have been too short, or elements stand out
 *  of their order */
bool Data_Set_Head_Read(std::span<const std::uint8_t> bytes, std::uint64_t most, DcmFileFormat& file,
                        Data_Set_Source& source);

}  // namespace volumes
