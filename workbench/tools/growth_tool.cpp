#include "workbench/tools/growth_tool.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>
#include <utility>

#include "workbench/model/number_text.h"

namespace workbench {

namespace {

constexpr double STEP_SHARE = 0.1;                           // of the tolerance, by which a step changes it
constexpr std::int64_t REACH_MOST = std::int64_t{1} << 22U;  // levels: each takes room, and a step of finding
constexpr double DRAG_SHARE = 0.04;                          // of the tolerance at the press, per pixel

}  // namespace

segmentation::Edit_Input Growth_Tool::Input(const Growing_Region& of) const {
    return of.ground ? of.ground->Input(host) : Volume_Input(host);
}

std::int32_t Growth_Tool::Reach_Wanted() const {
    const volumes::Volume& image = host.work().Image();
    const std::int64_t all = std::int64_t{image.level_max} - image.level_min;
    return static_cast<std::int32_t>(std::min({2 * std::int64_t{Levels()}, all, REACH_MOST}));
}

Pixel_Rect Growth_Tool::Press(const Tool_Spot& spot, Tool_Hand) {
    Cancel();
    Session& work = host.work();
    if (!work.Has_Volume() || !spot.Is_Inside()) {
        return {};
    }
    if (work.Plain_Levels().empty()) {
        host.tell("Images in colour have no grey values to grow by");
        return {};
    }
    try {
        growing.emplace();
        growing->flood.tag = static_cast<std::uint8_t>(host.tag());
        growing->flood.neighbours = settings.Neighbours();
        growing->axes = spot.cut.geometry.axes;
        growing->begun_at = spot.at.x;
        growing->begun_tolerance = settings.tolerance;
        const Shown_Voxel seed = spot.Voxel();
        growing->flood.seed = {seed.x, seed.y, seed.slice};
        if (!settings.is_in_space) {
            growing->ground.emplace(work, spot.cut);
            growing->flood.seed = {spot.X(), spot.Y(), 0};
        }
    } catch (const std::bad_alloc&) {
        growing.reset();
        host.warn("There is not enough memory to grow a region.");
        return {};
    }
    if (Find()) {
        Tell();
    }
    return {};
}

bool Growth_Tool::Find() {
    // The window's messages go on meanwhile, and may drop what is in hand: the thread has the region to itself.
    Growing_Region region = std::move(*growing);
    growing.reset();
    region.reach = Reach_Wanted();
    try {
        std::optional<segmentation::Region_Growth> found;
        std::size_t voxel_nb = 0;
        host.run("Grow a region", [&](const segmentation::Edit_Progress& progress) {
            segmentation::Edit_Input input = Input(region);
            input.progress = progress;
            voxel_nb = input.grid.Voxel_Nb();
            found = segmentation::Region_Growth::Find(input, region.flood, region.reach);
        });
        if (found) {
            region.growth = std::move(*found);
            if (!region.ground) {
                region.mask.Begin(voxel_nb);
            }
            growing = std::move(region);
            return true;
        }
        host.tell("Growing was given up: nothing has changed");
    } catch (const std::bad_alloc&) {
        host.warn("There is not enough memory to grow a region. Nothing has changed.");
    }
    host.note(Change::View);
    return false;
}

void Growth_Tool::Tolerance_Set(double wanted) {
    const double level = std::abs(host.work().Image().slope);
    settings.tolerance = std::clamp(wanted, 0.0, level * volumes::LEVEL_LARGEST / 4);
    if (Levels() > growing->reach && Reach_Wanted() > growing->reach && !Find()) {
        return;
    }
    Tell();
}

std::string Growth_Tool::Text() const {
    const std::uint64_t nb = growing->growth.Voxel_Nb(Levels());
    return "Growing " + host.tag_name(growing->flood.tag) + " by a tolerance of " + Number_Text(settings.tolerance) +
           ": " + std::to_string(nb) + (nb == 1 ? " voxel" : " voxels");
}

void Growth_Tool::Tell() const {
    host.note(Change::View);
    host.tell(Text() + "; Enter takes it over, Escape drops it");
}

std::optional<Tool_Slider> Growth_Tool::Slider(const Plane_Cut& cut) const {
    if (!growing || growing->axes != cut.geometry.axes) {
        return std::nullopt;
    }
    const double most = Slider_Most();
    return Tool_Slider{most > 0.0 ? std::sqrt(std::clamp(Levels() / most, 0.0, 1.0)) : 0.0, Text()};
}

void Growth_Tool::Slide(double share) {
    if (!growing) {
        return;
    }
    const double wanted = std::round(share * share * Slider_Most()) * std::abs(host.work().Image().slope);
    if (wanted != settings.tolerance) {
        Tolerance_Set(wanted);
    }
}

double Growth_Tool::Slider_Most() const {
    const volumes::Volume& image = host.work().Image();
    return std::min(static_cast<double>(image.level_max) - image.level_min, static_cast<double>(REACH_MOST) / 2.0);
}

Pixel_Rect Growth_Tool::Move(const Tool_Spot& spot) {
    if (growing) {
        const double level = std::abs(host.work().Image().slope);
        const double per_pixel = std::max(growing->begun_tolerance * DRAG_SHARE, level);
        const double steps = std::round(spot.at.x - growing->begun_at);
        const double wanted = std::max(growing->begun_tolerance + steps * per_pixel, 0.0);
        if (wanted != settings.tolerance) {
            Tolerance_Set(wanted);
        }
    }
    return {};
}

bool Growth_Tool::Step(int step) {
    if (!growing) {
        return false;
    }
    const double level = std::abs(host.work().Image().slope);
    const double by = std::max(std::round(settings.tolerance * STEP_SHARE / level), 1.0) * level;
    Tolerance_Set(settings.tolerance + step * by);
    return true;
}

bool Growth_Tool::Accept() {
    if (!growing) {
        return false;
    }
    const std::string title = "Grow " + host.tag_name(growing->flood.tag);
    try {
        segmentation::Label_Edit edit = growing->growth.Edit(Input(*growing), Levels());
        const std::uint64_t voxel_nb = edit.voxel_nb;
        Voxel_Change change = growing->ground ? growing->ground->Change_By(edit) : Voxel_Change{std::move(edit.slices)};
        growing.reset();
        host.note(Change::View);
        Change_Take(host, title, std::move(change), voxel_nb);
    } catch (const std::bad_alloc&) {
        growing.reset();
        host.note(Change::View);
        host.warn(title + ": there is not enough memory. Nothing has changed.");
    }
    return true;
}

bool Growth_Tool::Cancel() {
    if (!growing) {
        return false;
    }
    growing.reset();
    host.note(Change::View);
    host.tell("The region was dropped: nothing has changed");
    return true;
}

void Growth_Tool::Follow(Changes changes) {
    // What it was found in is no more.
    if (changes.Has_Any({Change::Pixels, Change::Stroke, Change::Volume, Change::Opened, Change::Current_Tag,
                         Change::Tag_Locked, Change::Mode})) {
        Cancel();
    }
}

void Growth_Tool::Preview(const Plane_Cut& cut, std::span<std::uint8_t> picture) const {
    if (!growing || picture.size() != cut.geometry.Pixel_Nb()) {
        return;
    }
    const std::span<const std::size_t> voxels = growing->growth.Voxels(Levels());
    if (growing->ground) {
        const Plane_Cut& grown = growing->ground->Cut();
        if (grown.geometry.axes == cut.geometry.axes && grown.depth == cut.depth) {
            for (const std::size_t at : voxels) {
                picture[at] = growing->flood.tag;
            }
        }
        return;
    }
    const Plane_Geometry& plane = cut.geometry;
    Growth_Mask& mask = growing->mask;
    if (cut.depth < 0 || cut.depth >= plane.Depth_Nb() ||
        mask.Voxel_Nb() != plane.Pixel_Nb() * static_cast<std::size_t>(plane.Depth_Nb())) {
        return;
    }
    mask.Follow(growing->growth.Voxels(std::numeric_limits<std::int32_t>::max()), voxels.size());
    Plane_Walk(plane, cut.depth, plane.Whole(), [&](std::size_t pixel, std::size_t voxel) {
        if (mask[voxel]) {
            picture[pixel] = growing->flood.tag;
        }
    });
}

}  // namespace workbench
