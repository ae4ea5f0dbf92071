#include "workbench/model/voxel_stroke.h"

#include <algorithm>
#include <cstring>
#include <utility>

namespace workbench {

namespace {

constexpr unsigned TAG_BITS = 8;
constexpr int WORD_SIZE = sizeof(std::uint64_t);
constexpr std::uint64_t EACH_BYTE = 0x0101010101010101U;

std::uint64_t Word(const std::uint8_t* bytes) {
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, WORD_SIZE);
    return word;
}

}  // namespace

Voxel_Stroke::Voxel_Stroke(const Plane_Cut& picture, Brush_Body stroke_brush, const Paint_Ink& stroke_ink)
    : cut(picture), brush(std::move(stroke_brush)), ink(stroke_ink) {
    for (std::size_t tag = 0; tag < takes.size(); ++tag) {
        // A voxel that has the ink's TAG stays: so each is noted once, with the TAG that it had before the stroke.
        takes[tag] = tag != ink.tag && ink.May_Change(static_cast<std::uint8_t>(tag));
    }
    for (const Brush_Body::Layer& layer : brush.layers) {
        brush_box = Rect_Union(brush_box, layer.footprint.Box());
    }
}

Touched_Slices Voxel_Stroke::Slices(int x0, int y0, int x1, int y1) const {
    const Pixel_Rect way = {std::min(x0, x1) + brush_box.left, std::min(y0, y1) + brush_box.top,
                            std::max(x0, x1) + brush_box.right, std::max(y0, y1) + brush_box.bottom};
    Touched_Slices touched;
    if (brush_box.Is_Empty()) {
        return touched;
    }
    const int last = cut.geometry.Depth_Nb() - 1;
    const int front = std::clamp(cut.depth + brush.layers.front().depth, 0, last);
    const int back = std::clamp(cut.depth + brush.layers.back().depth, 0, last);
    for (const int depth : {front, back}) {
        const Touched_Slices of = Plane_Slices(cut.geometry, depth, way);
        if (of.first <= of.last) {
            touched = touched.first <= touched.last
                          ? Touched_Slices{std::min(touched.first, of.first), std::max(touched.last, of.last)}
                          : of;
        }
    }
    return touched;
}

void Voxel_Stroke::Row_Paint(const Stroke_Ground& ground, std::size_t first, std::ptrdiff_t step, int count) {
    auto at = static_cast<std::ptrdiff_t>(first);
    const std::uint64_t painted_word = ink.tag * EACH_BYTE;
    for (; count > 0; --count, at += step) {
        // Eight at a time over what a dab before has painted: most of what the brush covers on its way.
        while (step == 1 && count > WORD_SIZE && Word(&ground.tags[static_cast<std::size_t>(at)]) == painted_word) {
            at += WORD_SIZE;
            count -= WORD_SIZE;
        }
        const auto voxel = static_cast<std::size_t>(at);
        const std::uint8_t tag = ground.tags[voxel];
        if (takes[tag] && (!ink.band || (!ground.levels.empty() && ink.band->Has(ground.levels[voxel])))) {
            painted.push_back((static_cast<std::uint64_t>(voxel) << TAG_BITS) | tag);
            ground.tags[voxel] = ink.tag;
        }
    }
}

Pixel_Rect Voxel_Stroke::Layer_Paint(const Stroke_Ground& ground, const Brush_Body::Layer& layer, int x, int y) {
    const int depth = cut.depth + layer.depth;
    if (depth < 0 || depth >= cut.geometry.Depth_Nb()) {
        return {};
    }
    const auto [across, down, through] = cut.geometry.Steps();
    const auto origin = static_cast<std::ptrdiff_t>(cut.geometry.First(depth));
    Pixel_Rect touched;
    for (const Brush_Footprint::Row& row : layer.footprint.Rows()) {
        const int at_row = y + row.y;
        const int first = std::max(x + row.first, 0);
        const int last = std::min(x + row.last, cut.geometry.Width() - 1);
        if (at_row < 0 || at_row >= cut.geometry.Height() || first > last) {
            continue;
        }
        Row_Paint(ground, static_cast<std::size_t>(origin + at_row * down + first * across), across, last - first + 1);
        touched = Rect_Union(touched, {first, at_row, last + 1, at_row + 1});
    }
    return touched;
}

Pixel_Rect Voxel_Stroke::Dab(const Stroke_Ground& ground, int x, int y) {
    at_x = x;
    at_y = y;
    Pixel_Rect touched;
    for (const Brush_Body::Layer& layer : brush.layers) {
        const Pixel_Rect of_layer = Layer_Paint(ground, layer, x, y);
        touched = layer.depth == 0 ? Rect_Union(touched, of_layer) : touched;
    }
    return touched;
}

Pixel_Rect Voxel_Stroke::Line_To(const Stroke_Ground& ground, int x, int y) {
    Pixel_Rect touched;
    Line_Visit(at_x, at_y, x, y,
               [&](int line_x, int line_y) { touched = Rect_Union(touched, Dab(ground, line_x, line_y)); });
    return touched;
}

std::vector<Slice_Change> Voxel_Stroke::Changes() {
    std::ranges::sort(painted);
    const std::uint64_t size =
        static_cast<std::uint64_t>(cut.geometry.voxel_nb[0]) * static_cast<std::uint64_t>(cut.geometry.voxel_nb[1]);
    std::vector<Slice_Change> changes;
    std::vector<Voxel_Run> runs;
    for (std::size_t next = 0; next < painted.size();) {
        const std::uint64_t slice = (painted[next] >> TAG_BITS) / size;
        runs.clear();
        for (; next < painted.size() && (painted[next] >> TAG_BITS) / size == slice; ++next) {
            const auto offset = static_cast<std::uint32_t>((painted[next] >> TAG_BITS) - slice * size);
            const auto before = static_cast<std::uint8_t>(painted[next]);
            if (!runs.empty() && runs.back().offset + runs.back().length == offset && runs.back().before == before) {
                ++runs.back().length;
            } else {
                runs.push_back({offset, 1, before, ink.tag});
            }
        }
        changes.emplace_back(static_cast<int>(slice), runs);
    }
    return changes;
}

Brush_Footprint Footprint_Taken(const Brush_Footprint& footprint, int x, int y, const Paint_Ink& ink,
                                std::span<const std::uint8_t> tags, const volumes::Level_View& levels,
                                const Plane_Cut& cut) {
    const auto [across, down, through] = cut.geometry.Steps();
    const auto origin = static_cast<std::ptrdiff_t>(cut.geometry.First(cut.depth));
    const auto is_taken = [&, across = across, down = down](int pixel_x, int pixel_y) {
        if (!cut.geometry.Has(pixel_x, pixel_y)) {
            return false;
        }
        const auto at = static_cast<std::size_t>(origin + pixel_y * down + pixel_x * across);
        const std::uint8_t tag = tags[at];
        return (tag == ink.tag || ink.May_Change(tag)) && (!ink.band || (!levels.empty() && ink.band->Has(levels[at])));
    };
    std::vector<Brush_Footprint::Row> taken;
    for (const Brush_Footprint::Row& row : footprint.Rows()) {
        for (int at = row.first; at <= row.last; ++at) {
            if (!is_taken(x + at, y + row.y)) {
                continue;
            }
            if (!taken.empty() && taken.back().y == row.y && taken.back().last + 1 == at) {
                taken.back().last = at;
            } else {
                taken.push_back({row.y, at, at});
            }
        }
    }
    return Brush_Footprint(std::move(taken));
}

}  // namespace workbench
