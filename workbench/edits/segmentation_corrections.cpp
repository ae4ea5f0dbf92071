// Corrections of one TAG: its regions, its holes, its shape, and what lies between its slices.
#include <cstdint>
#include <optional>
#include <string>

#include "workbench/edits/segmentation_control.h"
#include "workbench/model/number_text.h"
#include "workbench/segmentation/region_edits.h"
#include "workbench/segmentation/tag_shape.h"

namespace workbench {

using segmentation::Edit_Input;
using segmentation::Neighbours;

namespace {

/** Voxels of a TAG's neighbours in space hang together over corners, too, as people see them. */
constexpr Neighbours TOGETHER = Neighbours::Corners;

std::string Volume_Unit(Segmentation_Host& host) {
    return host.Work().Image().is_size_known ? "mm\xC2\xB3" : "voxels";
}

}  // namespace

void Segmentation_Control::Region_Keep_Largest() {
    if (Has_Tag()) {
        Operate("Keep the largest region of " + Name(), [tag = Byte_Of(host.Hand().tag)](const Edit_Input& input) {
            return segmentation::Region_Keep_Largest(input, tag, TOGETHER);
        });
    }
}

void Segmentation_Control::Regions_Drop_Small() {
    if (Has_Tag() && Number_Ask("Drop small regions", "Least volume of a region that stays, " + Volume_Unit(host) + ":",
                                least_mm3)) {
        Operate("Drop regions of " + Name() + " below " + Number_Text(least_mm3) + " " + Volume_Unit(host),
                [this, tag = Byte_Of(host.Hand().tag)](const Edit_Input& input) {
                    return segmentation::Regions_Drop_Below(input, tag, least_mm3, TOGETHER);
                });
    }
}

void Segmentation_Control::Region_Keep_At_Cursor() {
    if (!Has_Tag()) {
        return;
    }
    const std::optional<segmentation::Voxel_Place> place = Cursor();
    const int tag = host.Hand().tag;
    if (!place) {
        return;
    }
    if (host.Work().Labels().At(place->x, place->y, place->z) != tag) {
        return host.Tell("There is no region of " + Name() + " where you point at");
    }
    Operate("Keep one region of " + Name(), [&](const Edit_Input& input) {
        return segmentation::Region_Keep_At(input, Byte_Of(tag), *place, TOGETHER);
    });
}

void Segmentation_Control::Region_Take_At_Cursor() {
    if (!Has_Volume()) {
        return;
    }
    if (const std::optional<segmentation::Voxel_Place> place = Cursor()) {
        const int tag = host.Hand().tag;
        const int from = host.Work().Labels().At(place->x, place->y, place->z);
        if (from == 0) {
            return host.Tell(
                "There is only background where you point at: fill it by its band (F) or tolerance (Ctrl+K)");
        }
        Operate("Region of " + host.Tag_Name(from) + " to " + Name(), [&](const Edit_Input& input) {
            return segmentation::Region_Give(input, *place, Byte_Of(tag), TOGETHER);
        });
    }
}

void Segmentation_Control::Holes_Fill(bool in_space) {
    if (Has_Tag()) {
        Operate("Fill holes of " + Name() + (in_space ? " in space" : " in slices"),
                [in_space, tag = Byte_Of(host.Hand().tag)](const Edit_Input& input) {
                    return segmentation::Holes_Fill(
                        input, tag, in_space ? segmentation::Hole_Kind::In_Space : segmentation::Hole_Kind::Per_Slice);
                });
    }
}

void Segmentation_Control::Tag_Smooth() {
    if (Has_Tag() && Number_Ask("Smooth", "Radius, " + Length_Unit() + ":", smooth_mm)) {
        Operate("Smooth " + Name() + " by " + Number_Text(smooth_mm) + " " + Length_Unit(),
                [this, tag = Byte_Of(host.Hand().tag)](const Edit_Input& input) {
                    return segmentation::Tag_Smooth(input, tag, smooth_mm);
                });
    }
}

void Segmentation_Control::Tag_Resize(int direction) {
    const bool grows = direction > 0;
    if (Has_Tag() && Number_Ask(grows ? "Grow" : "Shrink", "Distance, " + Length_Unit() + ":", resize_mm)) {
        Operate((grows ? "Grow " : "Shrink ") + Name() + " by " + Number_Text(resize_mm) + " " + Length_Unit(),
                [this, grows, tag = Byte_Of(host.Hand().tag)](const Edit_Input& input) {
                    return grows ? segmentation::Tag_Grow(input, tag, resize_mm)
                                 : segmentation::Tag_Shrink(input, tag, resize_mm);
                });
    }
}

void Segmentation_Control::Slices_Between_Fill() {
    if (Has_Tag()) {
        Operate("Fill " + Name() + " between painted slices",
                [tag = Byte_Of(host.Hand().tag)](const Edit_Input& input) {
                    return segmentation::Slices_Between_Fill(input, tag);
                });
    }
}

}  // namespace workbench
