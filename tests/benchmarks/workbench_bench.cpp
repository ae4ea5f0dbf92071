// Painting and propagation on slices of 512 x 512: one stroke event must take less than a 60th of a second, "grow" of
// one frame less than 50 ms.
#include <benchmark/benchmark.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <optional>
#include <span>
#include <utility>
#include <vector>

#include "tests/benchmarks/large_brush.h"
#include "workbench/model/change_hub.h"
#include "workbench/model/painting.h"
#include "workbench/model/propagation.h"
#include "workbench/model/recovery_recorder.h"
#include "workbench/model/slice_render.h"
#include "workbench/model/voxel_stroke.h"
#include "workbench/parts/color_advisor.h"

using namespace workbench;

namespace {

constexpr int SIDE = 512;
constexpr std::size_t PIXEL_NB = static_cast<std::size_t>(SIDE) * SIDE;

/** Discs of several tissues with some texture. @param shift moves them */
std::vector<std::int32_t> Levels(int shift) {
    std::vector<std::int32_t> levels(PIXEL_NB);
    for (int y = 0; y < SIDE; ++y) {
        for (int x = 0; x < SIDE; ++x) {
            const int dx = x - SIDE / 2 - shift;
            const int dy = y - SIDE / 2;
            const int ring = static_cast<int>(std::sqrt(static_cast<double>(dx * dx + dy * dy))) / 40;
            levels[static_cast<std::size_t>(y * SIDE + x)] = 200 * (ring % 4) + (x * 7 + y * 13) % 21;
        }
    }
    return levels;
}

std::vector<std::uint8_t> Tags() {
    std::vector<std::uint8_t> tags(PIXEL_NB);
    for (int y = 0; y < SIDE; ++y) {
        for (int x = 0; x < SIDE; ++x) {
            const int dx = x - SIDE / 2;
            const int dy = y - SIDE / 2;
            tags[static_cast<std::size_t>(y * SIDE + x)] =
                static_cast<std::uint8_t>(static_cast<int>(std::sqrt(static_cast<double>(dx * dx + dy * dy))) / 40 % 4);
        }
    }
    return tags;
}

void Stroke_Event(benchmark::State& state) {
    const std::vector<std::int32_t> levels = Levels(0);
    std::vector<std::uint8_t> tags = Tags();
    std::vector<std::uint32_t> picture(PIXEL_NB);
    std::vector<std::uint32_t> screen(4 * PIXEL_NB);
    const Brush_Footprint brush = Large_Brush();
    Tag_Overlay overlay;
    overlay.shown.fill(1);
    View_State view;
    view.view_width = view.view_height = 2 * SIDE;
    view.slice_width = view.slice_height = SIDE;
    view.zoom = 2.0;
    const View_Layout layout = View_Layout_Make(view);
    const Plane_Cut cut = {Plane_Geometry_Of_Slices({SIDE, SIDE, 1}, {1.0, 1.0, 1.0}), 0};
    Paint_Ink ink;
    int x = 100;
    int y = 100;
    for (auto _ : state) {
        // A fast hand: 40 pixels between two events.
        const int x1 = (x + 37) % SIDE;
        const int y1 = (y + 15) % SIDE;
        ink.tag = static_cast<std::uint8_t>(1 + x1 % 3);
        // A stroke of one event each, so that what it notes of the voxels counts.
        Voxel_Stroke stroke(cut, brush, ink);
        const Pixel_Rect begun = stroke.Dab({tags, {}}, x, y);
        const Pixel_Rect changed = Rect_Union(begun, stroke.Line_To({tags, {}}, x1, y1));
        x = x1;
        y = y1;
        Slice_Render({SIDE, SIDE, levels, false, 1.0F, 0.0F, tags}, {0.0F, 800.0F}, overlay, {}, changed, picture);
        const Pixel_Rect part = {layout.To_Screen_X(changed.left), layout.To_Screen_Y(changed.top),
                                 layout.To_Screen_X(changed.right), layout.To_Screen_Y(changed.bottom)};
        Slice_Scale(picture, layout, part, 2 * SIDE, 2 * SIDE, 0, screen);
        benchmark::DoNotOptimize(screen.data());
    }
    state.counters["events_per_second"] =
        benchmark::Counter(static_cast<double>(state.iterations()), benchmark::Counter::kIsRate);
}
BENCHMARK(Stroke_Event)->Unit(benchmark::kMillisecond);

void Grow_Frame(benchmark::State& state) {
    const std::vector<std::int32_t> from = Levels(0);
    const std::vector<std::int32_t> to = Levels(2);
    const std::vector<std::uint8_t> tags = Tags();
    Propagation_Tags taking_part;
    taking_part.carried.fill(1);
    std::vector<std::uint8_t> result(PIXEL_NB);
    for (auto _ : state) {
        std::fill(result.begin(), result.end(), std::uint8_t{0});
        benchmark::DoNotOptimize(Propagate_Grow({SIDE, SIDE, from, tags, to, result}, taking_part));
    }
}
BENCHMARK(Grow_Frame)->Unit(benchmark::kMillisecond);

void Render_Slice(benchmark::State& state) {
    const std::vector<std::int32_t> levels = Levels(0);
    const std::vector<std::uint8_t> tags = Tags();
    std::vector<std::uint32_t> picture(PIXEL_NB);
    Tag_Overlay overlay;
    overlay.shown.fill(1);
    for (auto _ : state) {
        Slice_Render({SIDE, SIDE, levels, false, 1.0F, 0.0F, tags}, {0.0F, 800.0F}, overlay, {}, {0, 0, SIDE, SIDE},
                     picture);
        benchmark::DoNotOptimize(picture.data());
    }
}
BENCHMARK(Render_Slice)->Unit(benchmark::kMillisecond);

/** From the end of an event that changed everything until all are told, without drawing: telling, and the advice on
 *  colours of a slice that shows 16 TAGs, others than before. */
void Event_Delivered(benchmark::State& state) {
    constexpr int tag_nb = 32;
    std::vector<std::uint8_t> tags(PIXEL_NB);
    std::vector<std::uint32_t> colors(256);
    std::vector<int> shown;
    for (int tag = 1; tag < tag_nb; ++tag) {
        colors[static_cast<std::size_t>(tag)] = 0x123456U * static_cast<std::uint32_t>(tag) & 0xFFFFFFU;
        shown.push_back(tag);
    }
    std::string mark;
    Color_Host host;
    host.colors = [&] { return colors; };
    host.shown_tags = [&] { return shown; };
    host.slice = [&] { return std::span<const std::uint8_t>(tags); };
    host.mark = [&](const std::string& text) { mark = text; };
    Color_Advisor advisor(std::move(host));
    unsigned long long panel_flags = 0;
    Change_Hub hub([] {});
    hub.Listen(Change_Hub::Stage::Panels, [&](Told_Changes& told) { panel_flags |= told.panel_flags; });
    hub.Listen(Change_Hub::Stage::Views, [&](Told_Changes& told) {
        if (Is_Shown_In(Shown::Color_Advice, told.changes)) {
            advisor.Slice_Look();
        }
    });
    Changes all;
    for (int change = 0; change < CHANGE_NB; ++change) {
        all |= static_cast<Change>(change);
    }
    std::uint8_t first = 1;
    for (auto _ : state) {
        state.PauseTiming();
        first = static_cast<std::uint8_t>(17 - first);
        for (std::size_t pixel = 0; pixel < PIXEL_NB; ++pixel) {
            tags[pixel] = static_cast<std::uint8_t>(first + pixel % 16);
        }
        hub.Note(all);
        state.ResumeTiming();
        hub.Deliver();
        benchmark::DoNotOptimize(panel_flags);
    }
}
BENCHMARK(Event_Delivered)->Unit(benchmark::kMillisecond);

/** All 300 slices of TAGs are new: what the window's thread is held up for by keeping them, at once or look by look. */
void Recovery_Looks(benchmark::State& state) {
    constexpr int slices = 300;
    constexpr int rounds = 5;
    volumes::Image_Folder folder;
    volumes::Volume& image = folder.volumes.emplace_back().volume;
    image.nx = image.ny = SIDE;
    image.nz = slices;
    image.nt = 1;
    image.affine = {{{1, 0, 0, 0}, {0, 1, 0, 0}, {0, 0, 1, 0}}};
    image.levels = volumes::Voxel_Levels::Of_Range(PIXEL_NB * slices, 0, 0, false);
    Open_Volumes open;
    Session session;
    open.Take(std::move(folder), {}, session);
    std::vector<std::uint8_t> tags;
    for (int slice = 0; slice < slices; ++slice) {
        const std::vector<std::uint8_t> one = Tags();
        tags.insert(tags.end(), one.begin(), one.end());
    }
    session.Take_Up(std::move(tags), {}, {}, {});
    using Clock = std::chrono::steady_clock;
    const auto since = [](Clock::time_point start) {
        return std::chrono::duration<double, std::milli>(Clock::now() - start).count();
    };
    std::vector<double> plain;
    std::vector<double> longest;
    int looks = 0;
    for (auto _ : state) {
        for (int round = 0; round < rounds; ++round) {
            Clock::time_point start = Clock::now();
            {
                const std::span<const std::uint8_t> all = std::as_const(session).Labels().All();
                auto background_nb = std::ranges::count(all, std::uint8_t{0});
                benchmark::DoNotOptimize(background_nb);
                std::vector<std::vector<std::uint8_t>> copies;
                for (int slice = 0; slice < slices; ++slice) {
                    const std::span<const std::uint8_t> shown = std::as_const(session).Labels().Slice(slice);
                    copies.emplace_back(shown.begin(), shown.end());
                }
                benchmark::DoNotOptimize(copies.data());
                plain.push_back(since(start));  // freeing them is the other thread's
            }
            Recovery_Recorder recorder;
            double worst = 0.0;
            looks = 0;
            do {
                start = Clock::now();
                const std::optional<Recovery_Snapshot> snapshot =
                    recorder.Look(open, session, [](int) { return Label_Description(); }, {});
                worst = std::max(worst, since(start));
                ++looks;
            } while (recorder.Is_Unfinished());
            longest.push_back(worst);
        }
    }
    const auto median = [](std::vector<double>& times) {
        std::ranges::sort(times);
        return times[times.size() / 2];
    };
    state.counters["plain_ms"] = median(plain);
    state.counters["longest_ms"] = median(longest);
    state.counters["ratio"] = median(plain) / median(longest);
    state.counters["looks"] = looks;
}
BENCHMARK(Recovery_Looks)->Iterations(1)->Unit(benchmark::kMillisecond);

}  // namespace
