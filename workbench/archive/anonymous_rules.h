/** What becomes of every element of an image that leaves without the patient's identity: the Basic Application Level
 *  Confidentiality Profile of DICOM PS3.15 Annex E, with the option of modified dates. Where the profile names
 *  elements one by one, texts that people write are left out altogether, but for those that are known to be harmless.
 */
#pragma once

#include <cstdint>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcvr.h"

namespace workbench::archive {

enum class Anonymous_Action {
    Keep,     ///< as it is; a sequence's items are looked at
    Remove,   ///< the whole element
    Empty,    ///< the element stays without a value
    Dummy,    ///< a text that means nothing: the element has to have a value
    Patient,  ///< what the patient is called instead, always the same
    Replace,  ///< unique identifiers by others, the same by the same; those of the standard stay
    Shift     ///< dates by the patient's number of days
};

/** @param representation of the value, as it was read */
Anonymous_Action Anonymous_Action_Of(std::uint16_t group, std::uint16_t element, DcmEVR representation);

}  // namespace workbench::archive
