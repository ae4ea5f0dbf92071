/** A small volume, and an application that the tools ask: it notes what it is told, and answers with what was set. */
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "workbench/tools/tool_box.h"

namespace workbench {

inline constexpr std::array<int, 3> TOOL_VOXEL_NB = {11, 9, 7};

/** Voxels of 1 x 2 x 3 mm; levels 0 .. 692 in the order of display. */
inline volumes::Volume Tool_Volume() {
    volumes::Volume volume;
    volume.nx = TOOL_VOXEL_NB[0];
    volume.ny = TOOL_VOXEL_NB[1];
    volume.nz = TOOL_VOXEL_NB[2];
    volume.nt = 1;
    volume.affine = {{{-1, 0, 0, 0}, {0, -2, 0, 0}, {0, 0, 3, 0}}};  // is displayed as it lies in the file
    volume.spacing = {1.0, 2.0, 3.0};
    volume.is_size_known = true;
    volume.affine_source = volumes::Affine_Source::Sform;
    std::vector<std::int32_t> levels(volume.Voxel_Nb_3D());
    std::iota(levels.begin(), levels.end(), 0);
    volume.levels = std::move(levels);
    volume.level_max = volume.levels.back();
    return volume;
}

class Tool_Double {
  public:
    Tool_Double() { session.Take(Tool_Volume(), "image.nii"); }

    Tool_Host Host() {
        Tool_Host host;
        host.work = [this]() -> Session& { return session; };
        host.tag = [this] { return tag; };
        host.tag_name = [](int of) { return "T" + std::to_string(of); };
        host.is_tag_hidden = [this] { return is_tag_hidden; };
        host.locked = [this] { return locked; };
        host.only_inside = [this] { return only_inside; };
        host.slices = [this] { return slices; };
        host.band = [this] { return band; };
        host.brush = [this] { return brush; };
        host.marker = [this] { return marker; };
        host.marker_pick = [this](int picked) { marker = picked; };
        host.marker_place = [this](int placed, const Marker& place) { session.Marker_Set(placed, place); };
        host.note = [this](Changes changes) { noted |= changes; };
        host.pen_lifted = [this] { ++pens_lifted; };
        host.run = [this](const std::string&, const std::function<void(const segmentation::Edit_Progress&)>& action) {
            action([this](double) { return !is_given_up; });
        };
        host.text_ask = [this](const std::string&, const std::string&, const std::string&) { return answer; };
        host.tell = [this](const std::string& text) { told = text; };
        host.warn = [this](const std::string& text) { warned = text; };
        host.log = [this](const std::string& line) { logged = line; };
        return host;
    }
    /** The middle of a pixel. */
    Tool_Spot Spot(Plane plane, int x, int y, int depth) const {
        const Patient_Axes axes = Patient_Axes_Of(session.Image().affine, session.Order());
        return {{Plane_Geometry_Of(plane, axes, TOOL_VOXEL_NB, session.Image().spacing), depth}, {x + 0.5, y + 0.5}};
    }
    Tool_Spot In_Slice(double x, double y, int slice) const { return {{session.Slice_Pictures(), slice}, {x, y}}; }
    std::uint64_t Nb(int of) const { return session.Labels().Counts()[static_cast<std::size_t>(of)]; }
    std::vector<std::uint8_t> Tags() const {
        const std::span<const std::uint8_t> all = std::as_const(session).Labels().All();
        return {all.begin(), all.end()};
    }
    std::size_t Step_Nb() const { return session.Journal().Undo_Nb(); }

    Session session;
    int tag = 1;
    int marker = 0;
    bool is_tag_hidden = false;
    bool is_given_up = false;
    Tag_Flags locked{};
    std::optional<std::uint8_t> only_inside;
    segmentation::Slice_Range slices{0, TOOL_VOXEL_NB[2] - 1};
    std::optional<segmentation::Level_Band> band;
    Brush_Footprint brush{{{-1, 0, 0}, {0, -1, 1}, {1, 0, 0}}};  // a cross of five pixels
    Changes noted;
    int pens_lifted = 0;
    std::optional<std::string> answer;
    std::string told, warned, logged;
};

}  // namespace workbench
