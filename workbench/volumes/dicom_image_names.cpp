#include "workbench/volumes/dicom_image_names.h"

#include <cstdint>
#include <string>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "workbench/volumes/dicom_fields.h"

namespace volumes {

namespace {

constexpr std::uint16_t MODALITY_UNKNOWN = 'O' << 8 | 'T';

}  // namespace

void Names_Read(DcmItem& data_set, Dicom_Image& image) {
    image.instance = Field_Text(data_set, DCM_SOPInstanceUID);
    image.origin.patient_name = Field_Person(data_set, DCM_PatientName);
    image.origin.patient_id = Field_Utf8(data_set, DCM_PatientID);
    image.origin.study = Field_Text(data_set, DCM_StudyInstanceUID);
    image.origin.study_date = Field_Date(data_set, DCM_StudyDate);
    image.origin.study_text = Field_Utf8(data_set, DCM_StudyDescription);
    image.origin.series = Field_Text(data_set, DCM_SeriesInstanceUID);
    image.origin.series_text = Field_Utf8(data_set, DCM_SeriesDescription);
    if (image.origin.series_text.empty()) {
        image.origin.series_text = Field_Utf8(data_set, DCM_ProtocolName);
    }
    image.origin.series_number = Field_Integer(data_set, DCM_SeriesNumber).value_or(0);
    image.origin.instance_number = Field_Integer(data_set, DCM_InstanceNumber).value_or(0);
    image.moment.acquisition = Field_Integer(data_set, DCM_AcquisitionNumber).value_or(0);
    image.moment.temporal_position = Field_Integer(data_set, DCM_TemporalPositionIdentifier).value_or(0);
    image.moment.trigger = Field_Number(data_set, DCM_TriggerTime).value_or(0.0);
    const std::string modality = Field_Text(data_set, DCM_Modality);
    image.origin.modality = MODALITY_UNKNOWN;
    if (modality.size() >= 2) {
        const auto high = static_cast<unsigned char>(modality[0]);
        const auto low = static_cast<unsigned char>(modality[1]);
        image.origin.modality = static_cast<std::uint16_t>(high << 8U | low);
    }
    constexpr unsigned long kind_most = 8;  // values of the image type that are looked at
    for (unsigned long at = 0; at < kind_most; ++at) {
        const std::string kind = Field_Text(data_set, DCM_ImageType, at);
        image.is_scout = image.is_scout || kind == "LOCALIZER" || kind == "SCOUT";
    }
}

}  // namespace volumes
