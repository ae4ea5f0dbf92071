/** What segments stand for, by the codes that hospitals' systems understand. */
#pragma once

#include <optional>
#include <span>
#include <string_view>

#include "workbench/volumes/dicom_segmentation.h"

namespace volumes {

struct Anatomy_Code {
    const char* category;  ///< SNOMED CT code of the kind of thing
    const char* category_meaning;
    const char* type;  ///< SNOMED CT code
    const char* meaning;
};

/** The table that a user chooses from, ordered by meaning. */
std::span<const Anatomy_Code> Anatomy_Codes();

/** Gives a segment the codes of the entry that its label is the meaning of, in capitals or not; of none of them:
 * tissue, and the label alone says what it is. */
void Anatomy_Code_Set(Segment& segment);

}  // namespace volumes
