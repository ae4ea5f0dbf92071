#include "workbench/volumes/dicom_frame_fields.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "workbench/volumes/dicom_fields.h"

namespace volumes {

namespace {

constexpr double DIRECTION_LEAST = 1e-3;  // length of a vector below which it has no direction

double Length_Of(const std::array<double, 3>& vector) {
    return std::sqrt(vector[0] * vector[0] + vector[1] * vector[1] + vector[2] * vector[2]);
}

bool Normalise(std::array<double, 3>& vector) {
    const double length = Length_Of(vector);
    if (!(length > DIRECTION_LEAST)) {
        return false;
    }
    for (double& part : vector) {
        part /= length;
    }
    return true;
}

/** Whether a mapping to real-world values holds for all that a pixel can store. */
bool Is_Mapping_Whole(DcmItem& mapping, const Frame_Size& size) {
    const auto first = Field_Number(mapping, DCM_RealWorldValueFirstValueMapped);
    const auto last = Field_Number(mapping, DCM_RealWorldValueLastValueMapped);
    const auto first_real = Field_Number(mapping, DCM_DoubleFloatRealWorldValueFirstValueMapped);
    const auto last_real = Field_Number(mapping, DCM_DoubleFloatRealWorldValueLastValueMapped);
    return first_real.value_or(first.value_or(INFINITY)) <= size.stored_lowest &&
           last_real.value_or(last.value_or(-INFINITY)) >= size.stored_highest;
}

}  // namespace

bool Is_Length(double length) {
    constexpr double shortest = 1e-6;  // mm
    constexpr double longest = 1e6;
    return length >= shortest && length <= longest;
}

void Place_Read(DcmItem& position_item, DcmItem* orientation_item, Slice_Place& place) {
    const auto corner = Field_Numbers<3>(position_item, DCM_ImagePositionPatient);
    if (!corner) {
        return;
    }
    constexpr double coordinate_most = 1e6;  // mm: anything further away is a mistake
    place.corner = *corner;
    place.has_corner = std::ranges::all_of(place.corner, [](double at) { return std::abs(at) < coordinate_most; });
    place.is_known = false;
    const auto sides =
        orientation_item != nullptr ? Field_Numbers<6>(*orientation_item, DCM_ImageOrientationPatient) : std::nullopt;
    if (!sides || !place.has_corner) {
        return;
    }
    place.along_row = {(*sides)[0], (*sides)[1], (*sides)[2]};
    place.along_column = {(*sides)[3], (*sides)[4], (*sides)[5]};
    place.is_known =
        Normalise(place.along_row) && Normalise(place.along_column) && Length_Of(Slice_Normal(place)) > DIRECTION_LEAST;
}

DcmItem* Group_Of(DcmItem* own, DcmItem* shared, const DcmTagKey& tag) {
    DcmItem* const found = own != nullptr ? Field_Item(*own, tag) : nullptr;
    return found != nullptr || shared == nullptr ? found : Field_Item(*shared, tag);
}

bool Scale_Read(DcmItem& item, const DcmTagKey& slope_tag, Frame_Facts& facts) {
    const std::optional<double> slope = Field_Number(item, slope_tag);
    const std::optional<double> intercept = Field_Number(item, DCM_RescaleIntercept);
    constexpr double scale_most = 1e30;
    constexpr double scale_least = 1e-30;
    if (slope && (std::abs(*slope) < scale_least || std::abs(*slope) > scale_most)) {
        return false;
    }
    if (slope || intercept) {
        facts.has_scale = true;
        facts.slope = slope.value_or(1.0);
        facts.intercept = intercept && std::abs(*intercept) <= scale_most ? *intercept : 0.0;
    }
    return true;
}

Real_World Real_World_Read(DcmItem& item, const Frame_Size& size, Frame_Facts& facts) {
    DcmItem* const mapping = Field_Item(item, DCM_RealWorldValueMappingSequence);
    if (mapping == nullptr) {
        return Real_World::None;
    }
    const auto slope = Field_Number(*mapping, DCM_RealWorldValueSlope);
    const auto intercept = Field_Number(*mapping, DCM_RealWorldValueIntercept);
    if (facts.has_scale) {
        const bool is_same = slope == facts.slope && intercept == facts.intercept;
        return is_same ? Real_World::Shown : Real_World::Beside_Scale;
    }
    constexpr double scale_most = 1e30;
    constexpr double scale_least = 1e-30;
    if (Field_Item(item, DCM_RealWorldValueMappingSequence, 1) != nullptr || !slope || !intercept ||
        !(std::abs(*slope) >= scale_least && std::abs(*slope) <= scale_most && std::abs(*intercept) <= scale_most) ||
        !Is_Mapping_Whole(*mapping, size)) {
        return Real_World::Unusable;
    }
    facts.slope = *slope;
    facts.intercept = *intercept;
    return Real_World::Shown;
}

bool Region_Read(DcmItem& data_set, std::array<double, 3>& spacing, bool& differs) {
    constexpr std::int32_t flat = 1;
    constexpr std::int32_t centimetres = 3;
    constexpr double mm_in_cm = 10.0;
    constexpr double same = 1e-3;  // share
    constexpr unsigned long regions_most = 64;
    bool is_found = false;
    for (unsigned long number = 0; number < regions_most; ++number) {
        DcmItem* const region = Field_Item(data_set, DCM_SequenceOfUltrasoundRegions, number);
        if (region == nullptr) {
            break;
        }
        const double x = std::abs(Field_Number(*region, DCM_PhysicalDeltaX).value_or(0.0)) * mm_in_cm;
        const double y = std::abs(Field_Number(*region, DCM_PhysicalDeltaY).value_or(0.0)) * mm_in_cm;
        if (Field_Integer(*region, DCM_RegionSpatialFormat) != flat ||
            Field_Integer(*region, DCM_PhysicalUnitsXDirection) != centimetres ||
            Field_Integer(*region, DCM_PhysicalUnitsYDirection) != centimetres || !Is_Length(x) || !Is_Length(y)) {
            continue;
        }
        if (is_found &&
            (std::abs(x - spacing[0]) > same * spacing[0] || std::abs(y - spacing[1]) > same * spacing[1])) {
            differs = true;
            break;
        }
        spacing[0] = x;
        spacing[1] = y;
        is_found = true;
    }
    return is_found;
}

bool Proportion_Read(DcmItem& data_set, std::array<double, 3>& spacing) {
    constexpr double most = 1000.0;
    const auto sides = Field_Numbers<2>(data_set, DCM_PixelAspectRatio);
    if (!sides || !((*sides)[0] > 0.0) || !((*sides)[1] > 0.0) || (*sides)[0] > (*sides)[1] * most ||
        (*sides)[1] > (*sides)[0] * most) {
        return false;
    }
    spacing[0] = 1.0;
    spacing[1] = (*sides)[0] / (*sides)[1];
    return true;
}

Pixel_Source Spacing_Read(DcmItem& item, std::array<double, 3>& spacing) {
    for (const DcmTagKey& tag : {DCM_SpacingBetweenSlices, DCM_SliceThickness}) {
        const std::optional<double> distance = Field_Number(item, tag);
        if (distance && Is_Length(std::abs(*distance))) {
            spacing[2] = std::abs(*distance);
            break;
        }
    }
    for (const DcmTagKey& tag : {DCM_PixelSpacing, DCM_ImagerPixelSpacing, DCM_NominalScannedPixelSpacing}) {
        // Stored as distance of rows, distance of columns.
        const auto pixel = Field_Numbers<2>(item, tag);
        if (pixel && Is_Length((*pixel)[0]) && Is_Length((*pixel)[1])) {
            spacing[0] = (*pixel)[1];
            spacing[1] = (*pixel)[0];
            return tag == DCM_PixelSpacing ? Pixel_Source::Patient : Pixel_Source::Detector;
        }
    }
    return Pixel_Source::None;
}

std::array<double, 3> Unit_Normal(const Slice_Place& place) {
    std::array<double, 3> normal = Slice_Normal(place);
    Normalise(normal);
    return normal;
}

std::string Pixel_Source_Text(Pixel_Source source) {
    switch (source) {
        case Pixel_Source::Patient:
            return {};
        case Pixel_Source::Region:
            return "; pixel size of the ultrasound region";
        case Pixel_Source::Proportion:
            return "; no pixel size, taken as 1 mm across; only the proportion of the sides is said";
        case Pixel_Source::Detector:
            return "; pixel size at the detector, not in the patient";
        default:
            return "; no pixel size, taken as 1 mm";
    }
}

}  // namespace volumes
