/** Whose images a file holds. */
#pragma once

#include <cstdint>
#include <string>

namespace volumes {

/** Patient, study, series and image, DICOM's levels of data. Texts are UTF-8; empty or 0: the file does not say, as no
 *  NIfTI file does. */
struct File_Origin {
    std::string patient_name;  ///< "Doe Jane": its parts in the order of the file, with blanks between them
    std::string patient_id;
    std::string study;       ///< unique identifiers
    std::string study_date;  ///< "2004-01-19"
    std::string study_text;  ///< description
    std::string series;
    std::string series_text;  ///< description, or the protocol's name
    std::int32_t series_number = 0;
    std::int32_t instance_number = 0;
    std::uint16_t modality = 0;  ///< two letters, the first in the high byte
    bool operator==(const File_Origin&) const = default;
};

}  // namespace volumes
