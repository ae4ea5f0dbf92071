// Stands in for segmentation objects where the program is built without DICOM.
#include "workbench/volumes/dicom_segmentation.h"
#include "workbench/volumes/dicom_segmentation_writer.h"

namespace volumes {

Segmentation_Result Dicom_Segmentation_Read(std::span<const std::uint8_t> /*file*/, const Volume& /*image*/,
                                            std::optional<double> /*threshold*/, const Load_Limits& /*limits*/,
                                            const Load_Progress& /*progress*/) noexcept {
    Segmentation_Result result;
    result.error = "is a DICOM file; this program was built without DICOM";
    return result;
}

Segmentation_Result Dicom_Structure_Set_Read(std::span<const std::uint8_t> /*file*/, const Volume& /*image*/,
                                             const Load_Limits& /*limits*/,
                                             const Load_Progress& /*progress*/) noexcept {
    Segmentation_Result result;
    result.error = "is a DICOM file; this program was built without DICOM";
    return result;
}

std::string Dicom_Segmentation_Write(const std::filesystem::path& /*path*/, const Volume& /*image*/,
                                     const Slice_Files& /*slices*/, const Segmentation_Content& /*content*/,
                                     const Load_Progress& /*progress*/) noexcept {
    return "This program was built without DICOM.";
}

Object_Owner Object_Owner_Read(const std::filesystem::path& /*file*/, const Load_Limits& /*limits*/) noexcept {
    return {};
}

std::string Tag_Description_Text(int tag) {
    return "TAG " + std::to_string(tag);
}

}  // namespace volumes
