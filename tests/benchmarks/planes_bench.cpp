// Scrolling through the other planes of a volume of 512 x 512 x 600: a picture must be made in less than a 60th of a
// second.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "workbench/model/view_geometry.h"
#include "workbench/parts/plane_views.h"

using namespace workbench;

namespace {

constexpr int SIDE = 512;
constexpr int SLICES = 600;
constexpr int VIEW_WIDTH = 900;
constexpr int VIEW_HEIGHT = 700;

volumes::Volume Large_Volume() {
    volumes::Volume volume;
    volume.nx = volume.ny = SIDE;
    volume.nz = SLICES;
    volume.nt = 1;
    volume.affine = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    volume.affine_source = volumes::Affine_Source::Sform;
    volume.levels = volumes::Voxel_Levels::Of_Range(volume.Voxel_Nb_3D(), 0, 1023, false);
    for (std::size_t at = 0; at < volume.levels.size(); ++at) {
        volume.levels.Set(at, static_cast<std::int32_t>(at * 2654435761U >> 22U & 1023U));
    }
    return volume;
}

/** @param state.range(0) the view: 0 coronal, 1 sagittal @param state.range(1) 1: grey values between the voxels */
void Scroll_Plane(benchmark::State& state) {
    Session session;
    session.Take(Large_Volume(), "large.nii");
    int slice = SLICES / 2;
    Tag_Overlay overlay;
    overlay.shown.fill(1);
    Plane_Host host;
    host.slice = [&slice] { return slice; };
    host.slice_go = [&slice](int wanted) { slice = wanted; };
    host.ground = [&overlay] {
        Image_Content content;
        content.window = {0.0F, 1023.0F};
        content.overlay = overlay;
        return content;
    };
    host.markers = [] { return std::vector<Placed_Marker>(); };
    host.tool_paths = [](const Plane_Cut&) { return std::vector<Shown_Path>(); };
    host.tool_preview = [](const Plane_Cut&, std::span<const std::uint8_t> tags) { return tags; };
    host.stroke_end = [] {};
    host.moved = [] {};
    Plane_Views views(session, std::move(host));
    views.Volume_Look();
    const auto view = static_cast<int>(state.range(0));
    std::vector<std::uint32_t> picture(static_cast<std::size_t>(SIDE) * SLICES);
    std::vector<std::uint32_t> screen(static_cast<std::size_t>(VIEW_WIDTH) * VIEW_HEIGHT);
    int depth = 0;
    double worst = 0.0;
    for (auto _ : state) {
        const auto start = std::chrono::steady_clock::now();
        depth = (depth + 1) % SIDE;
        views.User(view).Slice_Go(depth);
        const Image_Content content = views.User(view).Content();
        View_State shown;
        shown.view_width = VIEW_WIDTH;
        shown.view_height = VIEW_HEIGHT;
        shown.slice_width = content.source.width;
        shown.slice_height = content.source.height;
        const Pixel_Rect view_part = {0, 0, VIEW_WIDTH, VIEW_HEIGHT};
        if (state.range(1) != 0) {
            Slice_Draw_Linear(content.source, content.window, content.overlay, content.ranges, View_Layout_Make(shown),
                              {view_part, VIEW_WIDTH, VIEW_HEIGHT, 0, screen});
        } else {
            Slice_Render(content.source, content.window, content.overlay, content.ranges,
                         {0, 0, content.source.width, content.source.height}, picture);
            Slice_Scale(picture, View_Layout_Make(shown), view_part, VIEW_WIDTH, VIEW_HEIGHT, 0, screen);
        }
        benchmark::DoNotOptimize(screen.data());
        const std::chrono::duration<double, std::milli> took = std::chrono::steady_clock::now() - start;
        worst = std::max(worst, took.count());
    }
    state.counters["worst_ms"] = worst;
}
BENCHMARK(Scroll_Plane)->ArgsProduct({{0, 1}, {0, 1}})->Unit(benchmark::kMillisecond);

}  // namespace
