#include "workbench/volumes/dicom_frames.h"

#include <algorithm>
#include <cmath>
#include <numeric>
#include <optional>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_frame_fields.h"
#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

constexpr std::uint16_t MODALITY_ULTRASOUND = 'U' << 8 | 'S';
constexpr std::uint16_t MODALITY_ANGIOGRAPHY = 'X' << 8 | 'A';
constexpr std::uint16_t MODALITY_FLUOROSCOPY = 'R' << 8 | 'F';

/** Frames that are moments of one place, not places. */
bool Is_Cine(DcmItem& data_set, std::uint16_t modality) {
    const std::string pointer = Field_Text(data_set, DCM_FrameIncrementPointer);
    if (!pointer.empty()) {
        return pointer == "(0018,1063)" || pointer == "(0018,1065)";
    }
    return Field_Number(data_set, DCM_FrameTime) || Field_Number(data_set, DCM_CineRate) ||
           modality == MODALITY_ULTRASOUND || modality == MODALITY_ANGIOGRAPHY || modality == MODALITY_FLUOROSCOPY;
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

std::array<double, 3> Scaled(std::array<double, 3> vector, double factor) {
    for (double& part : vector) {
        part *= factor;
    }
    return vector;
}

/** Directions for what has none: no place in the patient, but slices that lie on one another. */
Slice_Place Place_Shown(Slice_Place place) {
    if (!place.is_known) {
        place.along_row = {1, 0, 0};
        place.along_column = {0, 1, 0};
    }
    return place;
}

class Planner {
  public:
    Planner(DcmItem& read_set, std::uint16_t image_modality, const Frame_Size& frame_size)
        : data_set(read_set), modality(image_modality), size(frame_size) {}
    Frame_Plan Make();
    /** What the frames say, without a plan. */
    Frame_Plan Read();

  private:
    void Frames_Read();
    void Frame_Read(Frame_Facts& facts, DcmItem* own, DcmItem* shared);
    void Detector_Read(Frame_Facts& common);
    void Real_World_Note(DcmItem* item, Frame_Facts& facts);
    void Real_World_Tell();
    void Vectors_Read();
    std::vector<std::int32_t> Vector_Of(const DcmTagKey& tag);
    std::vector<double> Offsets();
    bool Offsets_Apply();
    bool Placed();
    void Plain();
    void Warn(const std::string& text) { plan.warnings.push_back(text); }

    DcmItem& data_set;
    std::uint16_t modality;
    const Frame_Size& size;
    Frame_Plan plan;
    Pixel_Source pixel_source = Pixel_Source::None;
    bool is_scale_usable = true;
    Real_World real_world = Real_World::None;  // the worst of all frames
    bool is_views = false;                     // frames show things that cannot be stacked
};

/** Nuclear medicine keeps the place with the detector. */
void Planner::Detector_Read(Frame_Facts& common) {
    DcmItem* const detector = Field_Item(data_set, DCM_DetectorInformationSequence);
    if (!common.place.has_corner && detector != nullptr) {
        Place_Read(*detector, detector, common.place);
    }
}

void Planner::Frames_Read() {
    Frame_Facts common;
    Place_Read(data_set, &data_set, common.place);
    Detector_Read(common);
    const bool is_dose = data_set.tagExists(DCM_DoseGridScaling);
    is_scale_usable = Scale_Read(data_set, is_dose ? DCM_DoseGridScaling : DCM_RescaleSlope, common);
    pixel_source = Spacing_Read(data_set, common.spacing);
    bool differs = false;
    if (pixel_source == Pixel_Source::None && Region_Read(data_set, common.spacing, differs)) {
        pixel_source = Pixel_Source::Region;
    }
    if (pixel_source == Pixel_Source::None && Proportion_Read(data_set, common.spacing)) {
        pixel_source = Pixel_Source::Proportion;
    }
    common.has_scale = common.has_scale || Field_Item(data_set, DCM_ModalityLUTSequence) != nullptr;
    if (differs) {
        Warn("has regions whose pixels differ in size: lengths are right in the first of them only");
    }
    DcmItem* const shared = Field_Item(data_set, DCM_SharedFunctionalGroupsSequence);
    plan.facts.assign(static_cast<std::size_t>(size.frame_nb), common);
    const std::vector<DcmItem*> own = Field_Items(data_set, DCM_PerFrameFunctionalGroupsSequence);
    for (std::size_t frame = 0; frame < plan.facts.size(); ++frame) {
        Frame_Read(plan.facts[frame], frame < own.size() ? own[frame] : nullptr, shared);
        Real_World_Note(&data_set, plan.facts[frame]);
    }
    Real_World_Tell();
    if (!is_scale_usable) {
        Warn("has a slope that cannot be used: stored values are shown as they are");
    }
}

void Planner::Real_World_Note(DcmItem* item, Frame_Facts& facts) {
    if (item != nullptr) {
        real_world = std::max(real_world, Real_World_Read(*item, size, facts));
    }
}

void Planner::Real_World_Tell() {
    if (real_world == Real_World::Beside_Scale) {
        Warn("names real-world values beside its rescale: greys are those of the rescale");
    } else if (real_world == Real_World::Unusable) {
        Warn(
            "names real-world values in a way that is not read (a table, several, or not for all values): stored "
            "values are shown as they are");
    }
}

void Planner::Frame_Read(Frame_Facts& facts, DcmItem* own, DcmItem* shared) {
    if (own == nullptr && shared == nullptr) {
        return;
    }
    DcmItem* const position = Group_Of(own, shared, DCM_PlanePositionSequence);
    if (position != nullptr) {
        Place_Read(*position, Group_Of(own, shared, DCM_PlaneOrientationSequence), facts.place);
        facts.is_own_place = facts.place.has_corner;
    }
    if (DcmItem* const values = Group_Of(own, shared, DCM_PixelValueTransformationSequence)) {
        is_scale_usable = Scale_Read(*values, DCM_RescaleSlope, facts) && is_scale_usable;
    }
    for (DcmItem* const item : {own, shared}) {
        Real_World_Note(item, facts);
    }
    if (DcmItem* const content = Group_Of(own, shared, DCM_FrameContentSequence)) {
        facts.moment.temporal_position = Field_Integer(*content, DCM_TemporalPositionIndex).value_or(0);
        facts.moment.acquisition = Field_Integer(*content, DCM_FrameAcquisitionNumber).value_or(0);
    }
    if (DcmItem* const heart = Group_Of(own, shared, DCM_CardiacSynchronizationSequence)) {
        facts.moment.trigger = Field_Number(*heart, DCM_NominalCardiacTriggerDelayTime).value_or(0.0);
    }
    if (DcmItem* const measures = Group_Of(own, shared, DCM_PixelMeasuresSequence)) {
        const Pixel_Source source = Spacing_Read(*measures, facts.spacing);
        pixel_source = source != Pixel_Source::None ? source : pixel_source;
    }
}

/** Offsets along the normal from the first frame: radiotherapy's list, or frames at one distance from each other.
 *  Empty: the file does not say, or in no usable way. */
std::vector<double> Planner::Offsets() {
    std::vector<double> offsets;
    if (!data_set.tagExists(DCM_GridFrameOffsetVector)) {
        const auto distance = Field_Number(data_set, DCM_SpacingBetweenSlices);
        const std::vector<std::int32_t> slices = Vector_Of(DCM_SliceVector);
        if (const auto step = distance ? distance : Field_Number(data_set, DCM_SliceThickness);
            !slices.empty() && step && Is_Length(std::abs(*step))) {
            for (const std::int32_t slice : slices) {
                offsets.push_back(*step * (slice - 1.0));  // the position is that of slice 1
            }
            return offsets;
        }
        const bool has_times = Field_Integer(data_set, DCM_NumberOfTemporalPositions).value_or(1) > 1;
        if (distance && Is_Length(std::abs(*distance)) && !has_times && !Is_Cine(data_set, modality)) {
            for (std::int32_t frame = 0; frame < size.frame_nb; ++frame) {
                offsets.push_back(*distance * frame);
            }
        }
        return offsets;
    }
    for (std::size_t frame = 0; frame < plan.facts.size(); ++frame) {
        const auto offset = Field_Number(data_set, DCM_GridFrameOffsetVector, static_cast<unsigned long>(frame));
        constexpr double offset_most = 1e6;  // mm
        if (!offset || std::abs(*offset) > offset_most) {
            Warn("has a list of frame offsets that does not fit its frames: where they lie is not known");
            return {};
        }
        offsets.push_back(*offset);
    }
    // The first one is 0, or the height of the first frame: then all are heights, which rise to the patient's head.
    constexpr double same = 1e-3;  // mm
    const Slice_Place place = Place_Shown(plan.facts.front().place);
    const double first = offsets.front();
    const bool is_height = std::abs(first) > same && std::abs(first - place.corner[2]) < same;
    const double sign = is_height && Slice_Normal(place)[2] < 0 ? -1.0 : 1.0;
    for (double& offset : offsets) {
        offset = sign * (offset - first);
    }
    return offsets;
}

/** Numbers of all frames; empty: the file does not say them. */
std::vector<std::int32_t> Planner::Vector_Of(const DcmTagKey& tag) {
    std::vector<std::int32_t> numbers;
    for (unsigned long frame = 0; data_set.tagExists(tag) && frame < plan.facts.size(); ++frame) {
        const auto number = Field_Integer(data_set, tag, frame);
        if (!number) {
            return {};
        }
        numbers.push_back(*number);
    }
    return numbers;
}

/** Nuclear medicine numbers its frames by what they show: slices, times, and views that are no slices of one image. */
void Planner::Vectors_Read() {
    for (const DcmTagKey& tag : {DCM_PhaseVector, DCM_RRIntervalVector, DCM_TimeSlotVector, DCM_TimeSliceVector}) {
        constexpr std::int32_t numbers_most = 1000;
        const std::vector<std::int32_t> numbers = Vector_Of(tag);
        for (std::size_t frame = 0; frame < numbers.size(); ++frame) {
            std::int32_t& position = plan.facts[frame].moment.temporal_position;
            position =
                std::clamp(position, 0, numbers_most) * numbers_most + std::clamp(numbers[frame], 0, numbers_most);
        }
    }
    for (const DcmTagKey& tag :
         {DCM_EnergyWindowVector, DCM_DetectorVector, DCM_RotationVector, DCM_AngularViewVector}) {
        const std::vector<std::int32_t> numbers = Vector_Of(tag);
        is_views = is_views || std::ranges::any_of(numbers, [&](std::int32_t number) { return number != numbers[0]; });
    }
    if (is_views) {
        Warn(
            "has frames of several energy windows, detectors or views: they are shown one after the other in the "
            "file's order, without a place in the patient");
        for (Frame_Facts& facts : plan.facts) {
            facts.place = {};
        }
    }
}

/** Gives every frame a place of its own. @return false: nothing says where */
bool Planner::Offsets_Apply() {
    const std::vector<double> offsets = Offsets();
    if (offsets.empty()) {
        return false;
    }
    const std::array<double, 3> normal = Unit_Normal(Place_Shown(plan.facts.front().place));
    for (std::size_t frame = 0; frame < plan.facts.size(); ++frame) {
        Slice_Place& own = plan.facts[frame].place;
        for (std::size_t axis = 0; axis < 3; ++axis) {
            own.corner[axis] += offsets[frame] * normal[axis];
        }
        plan.facts[frame].is_own_place = true;
    }
    return true;
}

/** Stacks frames by their places. @return false: they have none of their own */
bool Planner::Placed() {
    auto placed = std::ranges::count_if(plan.facts, &Frame_Facts::is_own_place);
    const bool has_offsets = placed == 0 && Offsets_Apply();
    if (placed == 0 && !has_offsets) {
        return false;
    }
    placed = has_offsets ? size.frame_nb : placed;
    if (placed < static_cast<std::ptrdiff_t>(size.frame_nb)) {
        Warn(
            "has frames that do not say where they lie: all are shown in the file's order, without a place in the "
            "patient");
        for (Frame_Facts& facts : plan.facts) {
            facts.place = {};
        }
        return false;
    }
    std::vector<Slice_Place> places;
    for (const Frame_Facts& facts : plan.facts) {
        places.push_back(has_offsets ? Place_Shown(facts.place) : facts.place);
    }
    const bool is_known =
        std::ranges::all_of(plan.facts, [](const Frame_Facts& facts) { return facts.place.is_known; });
    if (!is_known && !has_offsets) {
        Warn("says where its frames lie, but not how they are turned: the sides of the patient are not known");
        if (!Directions_Assume(places)) {
            return false;
        }
    }
    std::vector<Stack_Slice> slices;
    for (std::size_t frame = 0; frame < plan.facts.size(); ++frame) {
        const Frame_Facts& facts = plan.facts[frame];
        slices.push_back(
            {places[frame], facts.moment, {facts.spacing[0], facts.spacing[1]}, {size.width, size.height}});
    }
    const Stack_Plan stacks = Slices_Stack(slices);
    for (const Stack_Warning& warning : stacks.warnings) {
        Warn(Stack_Warning_Text(warning, true));
    }
    for (const Slice_Stack& one : stacks.stacks) {
        const auto first = static_cast<std::size_t>(one.order.front());
        Frame_Stack stack;
        stack.nz = one.nz;
        stack.nt = one.nt;
        stack.order = one.order;
        stack.place = places[first];
        stack.spacing = plan.facts[first].spacing;
        if (one.kind == Slice_Stack::Kind::Scattered) {
            stack.place = Place_Shown({});
            stack.step = {0, 0, stack.spacing[2]};
        } else if (one.nz > 1) {
            stack.step = one.step;
            stack.spacing[2] = one.distance;
        } else {
            stack.step = Scaled(Unit_Normal(stack.place), stack.spacing[2]);
        }
        stack.place.is_known = is_known && one.kind != Slice_Stack::Kind::Scattered;
        plan.stacks.push_back(std::move(stack));
    }
    plan.place_source = has_offsets ? "position of the file, offset of every frame" : "position of every frame";
    return true;
}

/** Frames without places of their own. */
void Planner::Plain() {
    Frame_Stack stack;
    const Frame_Facts& first = plan.facts.front();
    stack.place = Place_Shown(first.place);
    stack.spacing = first.spacing;
    const std::int32_t times = Field_Integer(data_set, DCM_NumberOfTemporalPositions).value_or(1);
    if (size.frame_nb > 1 && Is_Cine(data_set, modality)) {
        stack.nt = size.frame_nb;
        stack.time_step = Time_Step(data_set);
    } else if (times > 1 && size.frame_nb % times == 0) {
        stack.nt = times;
    }
    stack.nz = size.frame_nb / stack.nt;
    if (stack.nz > 1 && !is_views) {
        Warn("does not say how far its frames lie apart: they are taken in the file's order, " +
             Amount_Text(stack.spacing[2]) + " mm from one to the next");
    }
    stack.step = Scaled(Unit_Normal(stack.place), stack.spacing[2]);
    stack.order.resize(static_cast<std::size_t>(size.frame_nb));
    std::iota(stack.order.begin(), stack.order.end(), 0);
    plan.place_source = "no position";
    if (stack.place.is_known) {
        plan.place_source = size.frame_nb == 1 ? "position of the slice" : "position of the file";
    }
    plan.stacks.push_back(std::move(stack));
}

Frame_Plan Planner::Read() {
    Frames_Read();
    plan.is_size_known = pixel_source == Pixel_Source::Patient || pixel_source == Pixel_Source::Region;
    return std::move(plan);
}

Frame_Plan Planner::Make() {
    Frames_Read();
    Vectors_Read();
    if (size.frame_nb == 1 || is_views || !Placed()) {
        Plain();
    }
    plan.place_source += Pixel_Source_Text(pixel_source);
    plan.is_size_known = pixel_source == Pixel_Source::Patient || pixel_source == Pixel_Source::Region;
    return std::move(plan);
}

}  // namespace

Frame_Plan Frames_Plan(DcmItem& data_set, std::uint16_t modality, const Frame_Size& size) {
    return Planner(data_set, modality, size).Make();
}

Frame_Plan Frames_Read(DcmItem& data_set, const Frame_Size& size) {
    return Planner(data_set, 0, size).Read();
}

}  // namespace volumes
