// From grey values to labels: the bands of TAGs, and filling from the voxel that is pointed at.
#include <algorithm>
#include <cmath>
#include <cstdint>
#include <optional>
#include <vector>

#include "workbench/edits/segmentation_control.h"
#include "workbench/segmentation/region_edits.h"

namespace workbench {

using segmentation::Edit_Input;
using segmentation::Neighbours;

namespace {

/** The levels that TAGs claim in a volume. */
std::vector<segmentation::Tag_Levels_Claim> Levels_Of(const std::vector<Tag_Claim>& claims,
                                                      const volumes::Volume& volume) {
    std::vector<segmentation::Tag_Levels_Claim> levels;
    levels.reserve(claims.size());
    for (const Tag_Claim& claim : claims) {
        levels.push_back({static_cast<std::uint8_t>(claim.tag), segmentation::Level_Band_Of(claim.band, volume)});
    }
    return levels;
}

}  // namespace

void Segmentation_Control::Bands_Apply(bool of_all_tags) {
    if (!Has_Volume()) {
        return;
    }
    const volumes::Volume& volume = host.Work().Image();
    if (volume.color) {
        return host.Tell("Images in colour have no bands");
    }
    std::vector<Tag_Claim> claims = host.Claims();
    const int tag = host.Hand().tag;
    if (!of_all_tags) {
        std::erase_if(claims, [&](const Tag_Claim& claim) { return claim.tag != tag; });
    }
    if (claims.empty()) {
        return host.Tell(of_all_tags ? "No TAG has a band: set thresholds, or make bands of peaks (Analyze)"
                                     : Name() + " has no band: set its thresholds");
    }
    const std::vector<segmentation::Tag_Levels_Claim> levels = Levels_Of(claims, volume);
    Operate(of_all_tags ? "Apply all bands" : "Apply the band of " + Name(),
            [&](const Edit_Input& input) { return segmentation::Bands_Apply(input, levels); });
}

void Segmentation_Control::Bands_Preview_Set(bool on) {
    is_preview = on;
    host.Preview_Changed();
    if (on && host.Claims().empty()) {
        host.Tell("No TAG has a band yet: set thresholds, or make bands of peaks (Analyze)");
    }
}

void Segmentation_Control::Flood(bool by_tolerance) {
    if (!Has_Volume()) {
        return;
    }
    const volumes::Volume& volume = host.Work().Image();
    if (volume.color) {
        return host.Tell("Images in colour have no grey values to fill by");
    }
    const std::optional<segmentation::Voxel_Place> place = Cursor();
    if (!place) {
        return;
    }
    const Segmentation_Hand hand = host.Hand();
    segmentation::Flood flood{*place, Byte_Of(hand.tag), {}, Neighbours::Faces};
    if (by_tolerance) {
        if (!Number_Ask("Fill by tolerance", "Grey values at most so far from the voxel's own:", tolerance)) {
            return;
        }
        const std::int32_t level = volume.levels[volume.Index(place->x, place->y, place->z)];
        const double most = tolerance / std::abs(volume.slope) + 1e-6;  // a tolerance of whole levels reaches them
        flood.levels = segmentation::Level_Band_Around(level, static_cast<std::int32_t>(std::min(most, 2.0e9)));
    } else {
        const std::vector<Tag_Claim> claims = host.Claims();
        const auto own = std::ranges::find(claims, hand.tag, &Tag_Claim::tag);
        if (own == claims.end()) {
            return host.Tell(Name() + " has no band: set its thresholds, or fill by tolerance (Ctrl+K)");
        }
        flood.levels = segmentation::Level_Band_Of(own->band, volume);
    }
    Operate("Fill with " + Name(), [&](const Edit_Input& input) { return segmentation::Flood_Fill(input, flood); });
}

}  // namespace workbench
