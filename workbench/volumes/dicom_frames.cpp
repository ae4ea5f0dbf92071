#include "workbench/volumes/dicom_frames.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_frame_order.h"

namespace {

constexpr double direction_least = 1e-3;  // length of a vector below which it has no direction
constexpr std::uint16_t modality_ultrasound = 'U' << 8 | 'S';
constexpr std::uint16_t modality_angiography = 'X' << 8 | 'A';
constexpr std::uint16_t modality_fluoroscopy = 'R' << 8 | 'F';

double Length_Of(const std::array<double, 3>& vector) {
    return std::sqrt(vector[0] * vector[0] + vector[1] * vector[1] + vector[2] * vector[2]);
}

bool Normalise(std::array<double, 3>& vector) {
    const double length = Length_Of(vector);
    if (!(length > direction_least)) {
        return false;
    }
    for (double& part : vector) {
        part /= length;
    }
    return true;
}

/** Reads position or orientation where an item has it; what it has not stays. */
void Place_Read(DcmItem& position_item, DcmItem& orientation_item, Slice_Place& place) {
    const auto corner = Field_Numbers<3>(position_item, DCM_ImagePositionPatient);
    const auto sides = Field_Numbers<6>(orientation_item, DCM_ImageOrientationPatient);
    if (!corner || !sides) {
        return;
    }
    place.corner = *corner;
    place.along_row = {(*sides)[0], (*sides)[1], (*sides)[2]};
    place.along_column = {(*sides)[3], (*sides)[4], (*sides)[5]};
    constexpr double coordinate_most = 1e6;  // mm: anything further away is a mistake
    const bool is_near = std::ranges::all_of(place.corner, [](double at) { return std::abs(at) < coordinate_most; });
    place.is_known = is_near && Normalise(place.along_row) && Normalise(place.along_column) &&
                     Length_Of(Slice_Normal(place)) > direction_least;
}

/** The functional group of one frame: its own, else the one that all frames share; null when there is neither. */
DcmItem* Group_Of(DcmItem* own, DcmItem* shared, const DcmTagKey& tag) {
    DcmItem* const found = own != nullptr ? Field_Item(*own, tag) : nullptr;
    return found != nullptr || shared == nullptr ? found : Field_Item(*shared, tag);
}

/** Rescale numbers, if they are usable. */
void Scale_Read(DcmItem& item, Frame_Facts& facts) {
    const std::optional<double> slope = Field_Number(item, DCM_RescaleSlope);
    const std::optional<double> intercept = Field_Number(item, DCM_RescaleIntercept);
    constexpr double scale_most = 1e30;
    constexpr double scale_least = 1e-30;
    if (slope && std::abs(*slope) >= scale_least && std::abs(*slope) <= scale_most) {
        facts.slope = *slope;
        facts.intercept = intercept && std::abs(*intercept) <= scale_most ? *intercept : 0.0;
    }
}

bool Is_Length(double length) {
    constexpr double shortest = 1e-6;  // mm
    constexpr double longest = 1e6;
    return length >= shortest && length <= longest;
}

void Spacing_Read(DcmItem& item, std::array<double, 3>& spacing) {
    for (const DcmTagKey& tag : {DCM_PixelSpacing, DCM_ImagerPixelSpacing, DCM_NominalScannedPixelSpacing}) {
        // Stored as distance of rows, distance of columns.
        const auto pixel = Field_Numbers<2>(item, tag);
        if (pixel && Is_Length((*pixel)[0]) && Is_Length((*pixel)[1])) {
            spacing[0] = (*pixel)[1];
            spacing[1] = (*pixel)[0];
            break;
        }
    }
    for (const DcmTagKey& tag : {DCM_SpacingBetweenSlices, DCM_SliceThickness}) {
        const std::optional<double> distance = Field_Number(item, tag);
        if (distance && Is_Length(std::abs(*distance))) {
            spacing[2] = std::abs(*distance);
            break;
        }
    }
}

/** Frames that are moments of one place, not places. */
bool Is_Cine(DcmItem& data_set, std::uint16_t modality) {
    const std::string pointer = Field_Text(data_set, DCM_FrameIncrementPointer);
    if (!pointer.empty()) {
        return pointer == "(0018,1063)" || pointer == "(0018,1065)";
    }
    return Field_Number(data_set, DCM_FrameTime) || Field_Number(data_set, DCM_CineRate) ||
           modality == modality_ultrasound || modality == modality_angiography || modality == modality_fluoroscopy;
}

double Time_Step(DcmItem& data_set) {
    constexpr double ms_in_s = 1000.0;
    if (const auto time = Field_Number(data_set, DCM_FrameTime); time && *time > 0.0) {
        return *time / ms_in_s;
    }
    if (const auto rate = Field_Number(data_set, DCM_CineRate); rate && *rate > 0.0) {
        return 1.0 / *rate;
    }
    return 0.0;
}

void Plain_Plan(DcmItem& data_set, std::uint16_t modality, std::int32_t frame_nb, Frame_Plan& plan) {
    const std::int32_t times = Field_Integer(data_set, DCM_NumberOfTemporalPositions).value_or(1);
    plan.nt = 1;
    if (Is_Cine(data_set, modality)) {
        plan.nt = frame_nb;
        plan.time_step = Time_Step(data_set);
    } else if (times > 1 && frame_nb % times == 0) {
        plan.nt = times;
    }
    plan.nz = frame_nb / plan.nt;
    // Radiotherapy says where each frame lies by its distance from the first.
    const auto first = Field_Number(data_set, DCM_GridFrameOffsetVector);
    const auto second = Field_Number(data_set, DCM_GridFrameOffsetVector, 1);
    if (plan.nz > 1 && first && second && Is_Length(std::abs(*second - *first))) {
        plan.spacing[2] = std::abs(*second - *first);
    }
    plan.order.resize(static_cast<std::size_t>(frame_nb));
    std::iota(plan.order.begin(), plan.order.end(), 0);
}

void Frames_Read(DcmItem& data_set, Frame_Plan& plan) {
    Frame_Facts common;
    Place_Read(data_set, data_set, common.place);
    Scale_Read(data_set, common);
    Spacing_Read(data_set, plan.spacing);
    DcmItem* const shared = Field_Item(data_set, DCM_SharedFunctionalGroupsSequence);
    for (std::size_t frame = 0; frame < plan.facts.size(); ++frame) {
        Frame_Facts& facts = plan.facts[frame];
        facts = common;
        DcmItem* const own =
            Field_Item(data_set, DCM_PerFrameFunctionalGroupsSequence, static_cast<unsigned long>(frame));
        if (own == nullptr && shared == nullptr) {
            continue;
        }
        DcmItem* const position = Group_Of(own, shared, DCM_PlanePositionSequence);
        DcmItem* const orientation = Group_Of(own, shared, DCM_PlaneOrientationSequence);
        if (position != nullptr && orientation != nullptr) {
            Place_Read(*position, *orientation, facts.place);
        }
        if (DcmItem* const values = Group_Of(own, shared, DCM_PixelValueTransformationSequence)) {
            Scale_Read(*values, facts);
        }
        if (DcmItem* const content = Group_Of(own, shared, DCM_FrameContentSequence)) {
            facts.temporal_position = Field_Integer(*content, DCM_TemporalPositionIndex).value_or(0);
        }
        DcmItem* const measures = frame == 0 ? Group_Of(own, shared, DCM_PixelMeasuresSequence) : nullptr;
        if (measures != nullptr) {
            Spacing_Read(*measures, plan.spacing);
        }
    }
}

/** Orders frames by their places. @return false: they have none that make a stack */
bool Placed_Plan(Frame_Plan& plan) {
    std::vector<double> depth;
    std::vector<double> later;
    const std::array<double, 3> normal = Slice_Normal(plan.facts.front().place);
    for (const Frame_Facts& facts : plan.facts) {
        const std::array<double, 3> own = Slice_Normal(facts.place);
        const double along = normal[0] * own[0] + normal[1] * own[1] + normal[2] * own[2];
        constexpr double parallel = 0.999;
        if (!facts.place.is_known || along < parallel) {
            return false;
        }
        depth.push_back(Slice_Depth(facts.place));
        later.push_back(facts.temporal_position);
    }
    std::vector<std::int32_t> order = Slices_In_Order(depth, later, plan.nz, plan.nt);
    if (order.empty() || plan.nz == 1) {
        return false;
    }
    plan.order = std::move(order);
    const double span = depth[static_cast<std::size_t>(plan.order[static_cast<std::size_t>(plan.nz) - 1])] -
                        depth[static_cast<std::size_t>(plan.order[0])];
    plan.spacing[2] = span / (plan.nz - 1);
    return true;
}

}  // namespace

Frame_Plan Frames_Plan(DcmItem& data_set, std::uint16_t modality, std::int32_t frame_nb) {
    Frame_Plan plan;
    plan.facts.resize(static_cast<std::size_t>(frame_nb));
    Frames_Read(data_set, plan);
    if (frame_nb == 1 || !Placed_Plan(plan)) {
        Plain_Plan(data_set, modality, frame_nb, plan);
    }
    return plan;
}
