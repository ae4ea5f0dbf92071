#include "workbench/volumes/dicom_window.h"

#include "dcmtk/dcmdata/dcdeftag.h"

namespace volumes {

namespace {

constexpr unsigned long WINDOW_MOST = 16;  // of one image

Window_Function Function_Of(const std::string& text) {
    return text == "SIGMOID"        ? Window_Function::Sigmoid
           : text == "LINEAR_EXACT" ? Window_Function::Linear_Exact
                                    : Window_Function::Linear;
}

std::vector<Display_Window> Windows_Of_Item(DcmItem& item) {
    std::vector<Display_Window> windows;
    const Window_Function function = Function_Of(Field_Text(item, DCM_VOILUTFunction));
    for (unsigned long at = 0; at < WINDOW_MOST; ++at) {
        const std::optional<double> center = Field_Number(item, DCM_WindowCenter, at);
        const std::optional<double> width = Field_Number(item, DCM_WindowWidth, at);
        if (!center || !width) {
            break;
        }
        if (*width > 0.0) {
            // Narrower than 1 DICOM's own function has no meaning.
            const bool is_narrow = function == Window_Function::Linear && *width < 1.0;
            windows.push_back({Field_Utf8(item, DCM_WindowCenterWidthExplanation, at), *center, *width,
                               is_narrow ? Window_Function::Linear_Exact : function});
        }
    }
    return windows;
}

}  // namespace

std::vector<Display_Window> Windows_Read(DcmItem& data_set) {
    std::vector<Display_Window> windows = Windows_Of_Item(data_set);
    for (const DcmTagKey& groups : {DCM_SharedFunctionalGroupsSequence, DCM_PerFrameFunctionalGroupsSequence}) {
        DcmItem* const group = windows.empty() ? Field_Item(data_set, groups) : nullptr;
        DcmItem* const shown = group != nullptr ? Field_Item(*group, DCM_FrameVOILUTSequence) : nullptr;
        if (shown != nullptr) {
            windows = Windows_Of_Item(*shown);
        }
    }
    return windows;
}

}  // namespace volumes
