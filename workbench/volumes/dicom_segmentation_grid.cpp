// Where the frames of a segmentation object lie: on the voxels of the shown image, or on a grid of their own.
#include <algorithm>
#include <cmath>
#include <numeric>

#include "dcmtk/dcmdata/dcdeftag.h"
#include "workbench/volumes/dicom_fields.h"
#include "workbench/volumes/dicom_label_reading.h"
#include "workbench/volumes/dicom_segmentation_object.h"
#include "workbench/volumes/message_text.h"

namespace volumes {

Placed_Picture Segmentation_Reader::Picture_Of(std::int32_t frame) const {
    const Frame_Facts& facts = plan.facts[static_cast<std::size_t>(frame)];
    return {facts.place, {facts.spacing[0], facts.spacing[1]}, {format.width, format.height}};
}

// Its frames lie on slices of the image, but stand for thicker ones: those between must not stay empty.
bool Segmentation_Reader::Is_Coarser(const std::map<std::array<std::int32_t, 3>, double>& depth_of) const {
    if (depth_of.size() < 2) {
        return false;
    }
    std::vector<double> depths;
    depths.reserve(depth_of.size());
    for (const auto& [origin, depth] : depth_of) {
        depths.push_back(depth);
    }
    std::ranges::sort(depths);
    double gap = depths.back() - depths.front();
    for (std::size_t at = 1; at < depths.size(); ++at) {
        gap = std::min(gap, depths[at] - depths[at - 1]);
    }
    const std::array<double, 3> normal = Slice_Normal(Picture_Of(frames.front().number).place);
    double step = 0.0;  // mm from slice to slice of the image
    for (std::size_t axis = 0; axis < 3; ++axis) {
        double along = 0.0;
        for (std::size_t row = 0; row < 3; ++row) {
            along += image.affine[row][axis] * normal[row] * (row < 2 ? -1.0 : 1.0);
        }
        step = std::max(step, std::abs(along));
    }
    constexpr double coarser = 1.5;
    const double told = plan.facts[static_cast<std::size_t>(frames.front().number)].spacing[2];
    return gap > coarser * step && told > coarser * step;
}

bool Segmentation_Reader::On_Image() {
    std::map<std::array<std::int32_t, 3>, double> depth_of;  // of the slices of the image that frames lie on
    double off = 0.0;
    for (Frame& frame : frames) {
        const Placed_Picture picture = Picture_Of(frame.number);
        const std::optional<Picture_Voxels> found = Picture_Voxels_Find(image, picture);
        if (!found) {
            return false;
        }
        frame.voxels = *found;
        off = std::max(off, found->off);
        // Two frames that lie apart must not become one slice.
        const double depth = Slice_Depth(picture.place);
        constexpr double apart = 0.02;  // mm
        const auto [place, is_new] = depth_of.emplace(found->origin, depth);
        if (!is_new && std::abs(place->second - depth) > apart) {
            return false;
        }
    }
    if (Is_Coarser(depth_of)) {
        return false;
    }
    constexpr double told_above = 0.1;
    if (off > told_above) {
        result.warnings.push_back("has frames that lie up to " + Amount_Text(off) +
                                  " slices beside those of the image; each is on the nearest");
    }
    Labels_Begin(image);
    result.is_on_image = true;
    return true;
}

bool Segmentation_Reader::Is_Distance_Told() {
    DcmItem* const shared = Field_Item(Data_Set(), DCM_SharedFunctionalGroupsSequence);
    DcmItem* const measures = shared != nullptr ? Field_Item(*shared, DCM_PixelMeasuresSequence) : nullptr;
    return measures != nullptr && Field_Number(*measures, DCM_SpacingBetweenSlices).has_value();
}

double Segmentation_Reader::Own_Distance(const std::vector<double>& depths, const std::array<double, 3>& spacing) {
    if (depths.size() < 2) {
        return spacing[2];
    }
    std::vector<double> gaps(depths.size());
    std::adjacent_difference(depths.begin(), depths.end(), gaps.begin());
    gaps.erase(gaps.begin());
    const double least = std::ranges::min(gaps);
    for (const double distance : {Is_Distance_Told() ? spacing[2] : least, least}) {
        constexpr double off_most = 0.05;  // of the distance
        const bool is_even = std::ranges::all_of(gaps, [&](double gap) {
            const double steps = std::round(gap / distance);
            return steps >= 1.0 && std::abs(gap - steps * distance) <= off_most * distance;
        });
        if (is_even) {
            return distance;
        }
    }
    throw Dicom_Refusal{"has frames that lie neither on the voxels of the image nor at even distances"};
}

void Segmentation_Reader::On_Own_Grid() {
    Placed_Picture first = Picture_Of(frames.front().number);
    std::vector<double> depths;
    depths.reserve(frames.size());
    for (const Frame& frame : frames) {
        depths.push_back(Slice_Depth(Picture_Of(frame.number).place));
        first = depths.back() < Slice_Depth(first.place) ? Picture_Of(frame.number) : first;
    }
    std::ranges::sort(depths);
    constexpr double same = 0.02;  // mm
    const auto is_same = [](double a, double b) { return b - a <= same; };
    depths.erase(std::unique(depths.begin(), depths.end(), is_same), depths.end());
    const std::array<double, 3>& spacing = plan.facts[static_cast<std::size_t>(frames.front().number)].spacing;
    const double distance = Own_Distance(depths, spacing);
    const double slices = std::round((depths.back() - depths.front()) / distance) + 1.0;
    constexpr double slices_most = 65535;
    if (!(slices <= slices_most)) {
        throw Dicom_Refusal{"has frames that lie too far from one another"};
    }
    std::array<double, 3> normal = Slice_Normal(first.place);
    for (double& part : normal) {
        part *= distance;
    }
    Volume own;
    own.nx = format.width;
    own.ny = format.height;
    own.nz = static_cast<std::int32_t>(slices);
    own.nt = 1;
    own.spacing = {first.pixel[0], first.pixel[1], distance};
    own.affine = Affine_Of(first.place, own.spacing, normal);
    own.affine_source = Affine_Source::Qform;
    for (Frame& frame : frames) {
        const std::optional<Picture_Voxels> found = Picture_Voxels_Find(own, Picture_Of(frame.number));
        if (!found) {
            throw Dicom_Refusal{"has frames that do not lie on one another"};
        }
        frame.voxels = *found;
    }
    Labels_Begin(own);
}

}  // namespace volumes
