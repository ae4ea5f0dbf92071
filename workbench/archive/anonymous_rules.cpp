#include "workbench/archive/anonymous_rules.h"

#include <algorithm>
#include <array>

namespace workbench::archive {

namespace {

using enum Anonymous_Action;

struct Element_Rule {
    std::uint32_t tag;  ///< group, element
    Anonymous_Action action;
};

/** What neither its group nor its representation says. By tag. */
constexpr Element_Rule ELEMENT_RULES[] = {
    {0x00080016, Keep},     // SOP Class UID
    {0x00080050, Empty},    // Accession Number
    {0x00080070, Keep},     // Manufacturer
    {0x00080082, Remove},   // Institution Code Sequence
    {0x00080090, Empty},    // Referring Physician's Name
    {0x00080096, Remove},   // Referring Physician Identification Sequence
    {0x0008009D, Remove},   // Consulting Physician Identification Sequence
    {0x00080100, Keep},     // Code Value
    {0x00080102, Keep},     // Coding Scheme Designator
    {0x00080103, Keep},     // Coding Scheme Version
    {0x00080104, Keep},     // Code Meaning
    {0x00080106, Keep},     // Context Group Version
    {0x00080107, Keep},     // Context Group Local Version
    {0x0008010C, Keep},     // Coding Scheme UID
    {0x00080117, Keep},     // Context UID
    {0x00080118, Keep},     // Mapping Resource UID
    {0x00080119, Keep},     // Long Code Value
    {0x00080300, Remove},   // Private Data Element Characteristics Sequence
    {0x00081041, Remove},   // Institutional Department Type Code Sequence
    {0x00081049, Remove},   // Physician(s) of Record Identification Sequence
    {0x00081052, Remove},   // Performing Physician Identification Sequence
    {0x00081062, Remove},   // Physician(s) Reading Study Identification Sequence
    {0x00081072, Remove},   // Operator Identification Sequence
    {0x00081084, Remove},   // Admitting Diagnoses Code Sequence
    {0x00081090, Keep},     // Manufacturer's Model Name
    {0x00081110, Remove},   // Referenced Study Sequence
    {0x00081111, Remove},   // Referenced Performed Procedure Step Sequence
    {0x00081120, Remove},   // Referenced Patient Sequence
    {0x00081150, Keep},     // Referenced SOP Class UID
    {0x0008115A, Keep},     // SOP Classes Supported
    {0x00100010, Patient},  // Patient's Name
    {0x00100020, Patient},  // Patient ID
    {0x00100030, Empty},    // Patient's Birth Date
    {0x00100040, Empty},    // Patient's Sex
    {0x00102210, Keep},     // Anatomical Orientation Type: left and right depend on it
    {0x00180010, Empty},    // Contrast/Bolus Agent
    {0x00180024, Keep},     // Sequence Name
    {0x00180031, Keep},     // Radiopharmaceutical
    {0x00180085, Keep},     // Imaged Nucleus
    {0x00181000, Dummy},    // Device Serial Number: enhanced objects have to have one
    {0x0018100A, Remove},   // UDI Sequence
    {0x00181016, Keep},     // Secondary Capture Device Manufacturer
    {0x00181018, Keep},     // Secondary Capture Device Manufacturer's Model Name
    {0x00181019, Keep},     // Secondary Capture Device Software Versions
    {0x00181020, Keep},     // Software Versions
    {0x00181160, Keep},     // Filter Type
    {0x001811BB, Dummy},    // Acquisition Field Of View Label
    {0x00181210, Keep},     // Convolution Kernel
    {0x00181250, Keep},     // Receive Coil Name
    {0x00181251, Keep},     // Transmit Coil Name
    {0x00185011, Remove},   // Transducer Identification Sequence
    {0x00189005, Keep},     // Pulse Sequence Name
    {0x00189367, Dummy},    // X-Ray Source ID
    {0x00189371, Dummy},    // X-Ray Detector ID
    {0x00200010, Empty},    // Study ID
    {0x00201040, Keep},     // Position Reference Indicator
    {0x00203401, Remove},   // Modifying Device ID
    {0x00209056, Keep},     // Stack ID
    {0x00209421, Keep},     // Dimension Description Label
    {0x00281054, Keep},     // Rescale Type
    {0x00281055, Keep},     // Window Center & Width Explanation
    {0x00283003, Keep},     // LUT Explanation
    {0x0040000B, Remove},   // Scheduled Performing Physician Identification Sequence
    {0x00400275, Remove},   // Request Attributes Sequence
    {0x00400512, Dummy},    // Container Identifier
    {0x00400513, Empty},    // Issuer of the Container Identifier Sequence
    {0x00400551, Dummy},    // Specimen Identifier
    {0x00400555, Empty},    // Acquisition Context Sequence
    {0x00400562, Empty},    // Issuer of the Specimen Identifier Sequence
    {0x00400610, Empty},    // Specimen Preparation Sequence
    {0x004008EA, Keep},     // Measurement Units Code Sequence
    {0x0040100A, Remove},   // Reason for Requested Procedure Code Sequence
    {0x00401011, Remove},   // Intended Recipients of Results Identification Sequence
    {0x00401101, Remove},   // Person Identification Code Sequence
    {0x00404025, Remove},   // Scheduled Station Name Code Sequence
    {0x00404027, Remove},   // Scheduled Station Geographic Location Code Sequence
    {0x00404028, Remove},   // Performed Station Name Code Sequence
    {0x00404030, Remove},   // Performed Station Geographic Location Code Sequence
    {0x00404034, Remove},   // Scheduled Human Performers Sequence
    {0x00404035, Remove},   // Actual Human Performers Sequence
    {0x00409210, Keep},     // LUT Label
    {0x0040A073, Remove},   // Verifying Observer Sequence
    {0x0040A078, Remove},   // Author Observer Sequence
    {0x0040A07A, Remove},   // Participant Sequence
    {0x0040A07C, Remove},   // Custodial Organization Sequence
    {0x0040A088, Remove},   // Verifying Observer Identification Code Sequence
    {0x0040A358, Remove},   // Verbal Source Identifier Code Sequence
    {0x0040A730, Remove},   // Content Sequence
    {0x00540018, Keep},     // Energy Window Name
    {0x00541101, Keep},     // Attenuation Correction Method
    {0x00541103, Keep},     // Reconstruction Method
    {0x00541104, Keep},     // Detector Lines of Response Used
    {0x00541105, Keep},     // Scatter Correction Method
    {0x00620005, Keep},     // Segment Label
    {0x00620006, Keep},     // Segment Description
    {0x00620009, Keep},     // Segment Algorithm Name
    {0x00620021, Remove},   // Tracking UID: goes with Tracking ID
    {0x00660031, Keep},     // Algorithm Version
    {0x00660036, Keep},     // Algorithm Name
    {0x00700001, Remove},   // Graphic Annotation Sequence
    {0x00700081, Empty},    // Content Description
    {0x00700084, Empty},    // Content Creator's Name
    {0x00700086, Remove},   // Content Creator's Identification Code Sequence
    {0x30020002, Dummy},    // RT Image Label
};

/** Groups of which nothing stays but what ELEMENT_RULES name: patient, trial, camera and place, flow of video, study
 *  requests, visits, storage, labels of media, results, texts, signatures. */
constexpr std::array<std::uint16_t, 14> REMOVED_GROUPS = {0x0010, 0x0012, 0x0016, 0x0032, 0x0034, 0x0038, 0x0088,
                                                          0x0400, 0x2030, 0x2200, 0x4000, 0x4008, 0xFFFA, 0xFFFC};

Anonymous_Action Action_Of_Representation(DcmEVR representation) {
    switch (representation) {
        case EVR_AE:
        case EVR_AS:
        case EVR_LO:
        case EVR_LT:
        case EVR_PN:
        case EVR_SH:
        case EVR_ST:
        case EVR_UC:
        case EVR_UR:
        case EVR_UT:
        case EVR_UN:
        case EVR_UNKNOWN:
        case EVR_UNKNOWN2B:
            return Remove;
        case EVR_UI:
            return Replace;
        case EVR_DA:
        case EVR_DT:
            return Shift;
        default:
            return Keep;
    }
}

bool Is_Graphics(std::uint16_t group) {
    constexpr std::uint16_t repeating = 0xFF00;
    return (group & repeating) == 0x5000 || (group & repeating) == 0x6000;  // curves, overlays
}

}  // namespace

Anonymous_Action Anonymous_Action_Of(std::uint16_t group, std::uint16_t element, DcmEVR representation) {
    if (group % 2 != 0 || element == 0 || Is_Graphics(group)) {
        return Remove;  // private ones; lengths of groups, which change
    }
    static_assert(std::ranges::is_sorted(ELEMENT_RULES, {}, &Element_Rule::tag));
    const std::uint32_t tag = std::uint32_t{group} << 16U | element;
    const auto* const rule = std::ranges::lower_bound(ELEMENT_RULES, tag, {}, &Element_Rule::tag);
    if (rule != std::end(ELEMENT_RULES) && rule->tag == tag) {
        return rule->action;
    }
    return std::ranges::find(REMOVED_GROUPS, group) != REMOVED_GROUPS.end() ? Remove
                                                                            : Action_Of_Representation(representation);
}

}  // namespace workbench::archive
