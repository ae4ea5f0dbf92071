// The views of a volume of 512 x 512 x 600: a picture must be made in less than a 60th of a second while a person
// scrolls or paints, in each plane, and nothing but the voxels takes much memory.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "tests/benchmarks/large_brush.h"
#include "tests/benchmarks/peak_memory.h"
#include "workbench/model/view_geometry.h"
#include "workbench/parts/plane_views.h"
#include "workbench/segmentation/tag_statistics.h"

using namespace workbench;

namespace {

constexpr int SIDE = 512;
constexpr int SLICES = 600;
constexpr int VIEW_WIDTH = 900;
constexpr int VIEW_HEIGHT = 700;
constexpr int AXIAL = 2;  // the view of the slices; 0 and 1 are coronal and sagittal

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

/** A TAG for every voxel: labels take their memory, and no picture finds them in pages that are not there yet. */
Voxel_Change Labels_Everywhere() {
    constexpr int stripe = SIDE / 8;
    Voxel_Change change;
    std::vector<std::uint8_t> tags(static_cast<std::size_t>(SIDE) * SIDE);
    const std::vector<std::uint8_t> background(tags.size());
    for (int slice = 0; slice < SLICES; ++slice) {
        for (std::size_t at = 0; at < tags.size(); ++at) {
            tags[at] = static_cast<std::uint8_t>(1 + (slice / stripe + static_cast<int>(at) / (SIDE * stripe)) % 3);
        }
        change.slices.push_back(*Slice_Difference(slice, background, tags));
    }
    return change;
}

/** What a person has on the screen. */
class Desk {
  public:
    Desk() : views(session, Host()) {
        overlay.shown.fill(1);
        overlay.color.fill(0x40C040U);
        session.Take(Large_Volume(), "large.nii");
        session.Voxels_Change("Everything labelled", Labels_Everywhere());
        views.Volume_Look();
    }
    Desk(const Desk&) = delete;
    Desk& operator=(const Desk&) = delete;

    Session& Work() { return session; }
    /** The picture of a view, anew. */
    Image_Content Content(int view) {
        if (view != AXIAL) {
            return views.User(view).Content();
        }
        Image_Content content = Ground();
        const std::size_t size = session.Labels().Slice_Size();
        content.source.width = content.source.height = SIDE;
        content.source.levels = session.Plain_Levels().subspan(static_cast<std::size_t>(slice) * size, size);
        content.source.tags = std::as_const(session).Labels().Slice(slice);
        return content;
    }
    void Scroll(int view) {
        depth = (depth + 1) % SIDE;
        view == AXIAL ? Slice_Go(depth) : views.User(view).Slice_Go(depth);
    }
    Plane_Cut Cut(int view) const {
        if (view == AXIAL) {
            return {Plane_Geometry_Of_Slices({SIDE, SIDE, SLICES}, {1.0, 1.0, 1.0}), slice};
        }
        return {views.Geometry_Of(view), depth};
    }
    /** What the pointer's button does in a view. */
    Pixel_Rect Paint(int view, const Slice_Point& at) {
        return view == AXIAL ? Dab(Cut(view), at) : views.User(view).Tool_Press(at, Tool_Hand::Left);
    }
    /** A part of a view as it is brought to the screen. @param part of the picture */
    void Draw(const Image_Content& content, bool is_linear, const Pixel_Rect& part) {
        picture.resize(static_cast<std::size_t>(content.source.width) *
                       static_cast<std::size_t>(content.source.height));
        View_State shown;
        shown.view_width = VIEW_WIDTH;
        shown.view_height = VIEW_HEIGHT;
        shown.slice_width = content.source.width;
        shown.slice_height = content.source.height;
        const View_Layout layout = View_Layout_Make(shown);
        const bool is_whole = part.right - part.left == shown.slice_width;
        const Pixel_Rect on_screen = is_whole
                                         ? Pixel_Rect{0, 0, VIEW_WIDTH, VIEW_HEIGHT}
                                         : Pixel_Rect{layout.To_Screen_X(part.left), layout.To_Screen_Y(part.top),
                                                      layout.To_Screen_X(part.right), layout.To_Screen_Y(part.bottom)};
        if (is_linear) {
            Slice_Draw_Linear(content.source, content.window, content.overlay, content.ranges, layout,
                              {on_screen, VIEW_WIDTH, VIEW_HEIGHT, 0, screen});
        } else {
            Slice_Render(content.source, content.window, content.overlay, content.ranges, part, picture);
            Slice_Scale(picture, layout, on_screen, VIEW_WIDTH, VIEW_HEIGHT, 0, screen);
        }
        benchmark::DoNotOptimize(screen.data());
    }

  private:
    Image_Content Ground() const {
        Image_Content content;
        content.window = {0.0F, 1023.0F};
        content.overlay = overlay;
        return content;
    }
    void Slice_Go(int wanted) { slice = wanted; }
    Pixel_Rect Dab(const Plane_Cut& cut, const Slice_Point& at) {
        const Paint_Ink ink{static_cast<std::uint8_t>(1 + static_cast<int>(at.x) % 3), {}, {}, {}};
        const Pixel_Rect changed =
            session.Stroke_Begin(cut, brush, static_cast<int>(at.x), static_cast<int>(at.y), ink);
        return Rect_Union(changed,
                          session.Stroke_Move(static_cast<int>(at.x) + LARGE_BRUSH_RADIUS, static_cast<int>(at.y)));
    }
    Plane_Host Host() {
        Plane_Host host;
        host.slice = [this] { return slice; };
        host.slice_go = [this](int wanted) { Slice_Go(wanted); };
        host.ground = [this] { return Ground(); };
        host.markers = [] { return std::vector<Placed_Marker>(); };
        host.tool_press = [this](const Plane_Cut& cut, const Slice_Point& at, Tool_Hand) { return Dab(cut, at); };
        host.tool_paths = [](const Plane_Cut&) { return std::vector<Shown_Path>(); };
        host.tool_preview = [](const Plane_Cut&, std::span<const std::uint8_t> tags) { return tags; };
        host.stroke_end = [] {};
        host.moved = [] {};
        return host;
    }

    Session session;
    int slice = SLICES / 2;
    int depth = 0;
    Tag_Overlay overlay;
    Brush_Footprint brush = Large_Brush();
    Plane_Views views;
    std::vector<std::uint32_t> picture;
    std::vector<std::uint32_t> screen = std::vector<std::uint32_t>(static_cast<std::size_t>(VIEW_WIDTH) * VIEW_HEIGHT);
};

Desk& The_Desk() {
    static Desk desk;
    return desk;
}

/** @param state.range(0) the view: 0 coronal, 1 sagittal, 2 axial @param state.range(1) 1: grey values between the
 *  voxels */
void Scroll_Plane(benchmark::State& state) {
    Desk& desk = The_Desk();
    const auto view = static_cast<int>(state.range(0));
    for (auto _ : state) {
        desk.Scroll(view);
        const Image_Content content = desk.Content(view);
        desk.Draw(content, state.range(1) != 0, {0, 0, content.source.width, content.source.height});
    }
}
BENCHMARK(Scroll_Plane)->ArgsProduct({{0, 1, AXIAL}, {0, 1}})->Unit(benchmark::kMillisecond);

/** One event of a pointer that paints: in its own view the part, the two others whole. The time is that of the slowest
 *  view. @param state as above: the view that is painted in */
void Paint_Plane(benchmark::State& state) {
    using Clock = std::chrono::steady_clock;
    Desk& desk = The_Desk();
    const auto painted = static_cast<int>(state.range(0));
    int x = LARGE_BRUSH_RADIUS;
    for (auto _ : state) {
        x = (x + 37) % (SIDE - 2 * LARGE_BRUSH_RADIUS);
        double slowest = 0.0;
        auto start = Clock::now();
        const Pixel_Rect changed = desk.Paint(painted, {x + 0.5, SIDE / 2.0});
        for (const int view : {painted, (painted + 1) % 3, (painted + 2) % 3}) {
            const Image_Content content = desk.Content(view);
            const Pixel_Rect whole = {0, 0, content.source.width, content.source.height};
            desk.Draw(content, state.range(1) != 0, view == painted ? changed : whole);
            slowest = std::max(slowest, std::chrono::duration<double>(Clock::now() - start).count());
            start = Clock::now();
        }
        state.SetIterationTime(slowest);
        desk.Work().Stroke_End();
    }
}
BENCHMARK(Paint_Plane)->ArgsProduct({{0, 1, AXIAL}, {0, 1}})->UseManualTime()->Unit(benchmark::kMillisecond);

/** @param state.range(0) slices that are counted */
void Statistics_Of(benchmark::State& state) {
    Desk& desk = The_Desk();
    const Session& work = desk.Work();
    const auto slices = static_cast<int>(state.range(0));
    segmentation::Edit_Input input;
    input.grid = {SIDE, SIDE, SLICES, {1.0, 1.0, 1.0}};
    input.tags = work.Labels().All();
    input.levels = work.Plain_Levels();
    input.slices = {SLICES / 2 - slices / 2, SLICES / 2 - slices / 2 + slices - 1};
    for (auto _ : state) {
        benchmark::DoNotOptimize(segmentation::Tag_Statistics(input, {}));
    }
}
BENCHMARK(Statistics_Of)->Arg(1)->Arg(SLICES)->Unit(benchmark::kMillisecond);

/** After all of the above, the history included. */
void Views_Memory(benchmark::State& state) {
    constexpr double megabyte = 1e6;
    const Session& work = The_Desk().Work();
    const double voxels = static_cast<double>(work.Image().levels.Bytes() + work.Labels().All().size()) / megabyte;
    for (auto _ : state) {
        state.counters["voxels_mb"] = voxels;
        state.counters["beside_mb"] = Peak_Memory() - voxels;
    }
}
BENCHMARK(Views_Memory)->Iterations(1);

}  // namespace
