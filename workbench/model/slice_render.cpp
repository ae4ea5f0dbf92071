#include "workbench/model/slice_render.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <vector>

#include "workbench/model/label_difference.h"
#include "workbench/volumes/volume.h"

namespace workbench {

namespace {

constexpr int RANGE_PERCENT = 35;       // colour of the range in its tint
constexpr int DIFFERENCE_PERCENT = 60;  // of the colour of a difference

std::uint32_t Mix_Pixel(std::uint32_t ground, std::uint32_t color, int percent) {
    const auto weight = static_cast<std::uint32_t>(percent * 256 / 100);
    const std::uint32_t rest = 256 - weight;
    // Red and blue in one multiplication, green in another: their bytes do not touch.
    const std::uint32_t red_blue = (((ground & 0xFF00FFU) * rest + (color & 0xFF00FFU) * weight) >> 8U) & 0xFF00FFU;
    const std::uint32_t green = (((ground & 0x00FF00U) * rest + (color & 0x00FF00U) * weight) >> 8U) & 0x00FF00U;
    return red_blue | green;
}

/** The sigmoid of what would be 0 .. 255 along a straight line. */
float Bent(float straight) {
    constexpr float whole = 255.0F;
    return whole / (1.0F + std::exp(-4.0F * (straight / whole - 0.5F)));
}

/** What levels look like through a window. */
class Shade {
  public:
    Shade(const Slice_Source& of, const Grey_Window& through)
        : is_bent(through.is_sigmoid), is_inverted(of.is_inverted) {
        const float width = through.high > through.low ? through.high - through.low : 1.0F;
        factor = of.slope * 255.0F / width;
        offset = (of.intercept - through.low) * 255.0F / width;
    }
    std::uint32_t Pixel(float level) const {
        const float straight = level * factor + offset;
        const float bright = is_bent ? Bent(straight) : std::clamp(straight, 0.0F, 255.0F);
        const float shade = is_inverted ? 255.0F - bright : bright;
        return static_cast<std::uint32_t>(shade + 0.5F) * 0x010101U;
    }

  private:
    float factor = 1.0F;
    float offset = 0.0F;
    bool is_bent = false;
    bool is_inverted = false;
};

std::uint32_t Color_Pixel(std::int32_t level) {
    const auto packed = static_cast<std::uint32_t>(level);
    return ((packed & 0xFFU) << 16U) | (packed & 0xFF00U) | ((packed >> 16U) & 0xFFU);
}

/** What lies over the pixels of a slice. */
class Tints {
  public:
    Tints(const Slice_Source& of, const Tag_Overlay& tag_overlay, std::span<const Range_Overlay> range_overlays)
        : source(of),
          overlay(tag_overlay),
          ranges(range_overlays),
          has_ranges(!ranges.empty() && !of.color),
          is_difference(tag_overlay.is_difference && of.compared.size() == of.tags.size()) {}
    /** @param pixel without tints @param at of the slice */
    std::uint32_t Over(std::uint32_t pixel, std::size_t at) const {
        if (has_ranges && source.levels[at] != volumes::LEVEL_OUTSIDE) {
            const std::int32_t level = source.levels[at];
            const auto tint = std::find_if(ranges.rbegin(), ranges.rend(), [level](const Range_Overlay& range) {
                return level >= range.low && level <= range.high;
            });
            if (tint != ranges.rend()) {
                pixel = Mix_Pixel(pixel, tint->color, RANGE_PERCENT);
            }
        }
        if (source.tags.empty()) {
            return pixel;
        }
        const std::uint8_t tag = source.tags[at];
        if (is_difference) {
            const Label_Difference difference = Difference_Of(tag, source.compared[at]);
            return difference == Label_Difference::None
                       ? pixel
                       : Mix_Pixel(pixel, DIFFERENCE_COLOR[static_cast<std::size_t>(difference)], DIFFERENCE_PERCENT);
        }
        return tag != 0 && overlay.shown[tag] != 0 ? Mix_Pixel(pixel, overlay.color[tag], overlay.opacity) : pixel;
    }

  private:
    const Slice_Source& source;
    const Tag_Overlay& overlay;
    std::span<const Range_Overlay> ranges;
    bool has_ranges = false;
    bool is_difference = false;
};

/** Where a column or row of the screen lies in the slice. */
struct Sample {
    int nearest = -1;  ///< -1: outside the slice
    int before = 0;    ///< the pixels whose middles it lies between
    int after = 0;
    float share = 0.0F;  ///< of the one after
};

Sample Sample_At(double slice_side, int size) {
    Sample sample;
    const double pixel = std::floor(slice_side);
    if (pixel < 0.0 || pixel >= static_cast<double>(size)) {
        return sample;
    }
    sample.nearest = static_cast<int>(pixel);
    const double from_middle = slice_side - 0.5;
    const auto before = static_cast<int>(std::floor(from_middle));
    sample.before = std::max(before, 0);
    sample.after = std::min(before + 1, size - 1);
    sample.share = static_cast<float>(from_middle - before);
    return sample;
}

float Between(float before, float after, float share) {
    return before + (after - before) * share;
}

/** The rows of a slice that a row of the screen lies between. */
class Row_Pair {
  public:
    Row_Pair(const Slice_Source& of, const Sample& in_height) : row(in_height), width(of.width) {
        const auto size = static_cast<std::size_t>(width);
        above = of.levels.subspan(static_cast<std::size_t>(row.before) * size, size);
        below = of.levels.subspan(static_cast<std::size_t>(row.after) * size, size);
    }
    bool Has_Gap() const {
        return std::ranges::find(above, volumes::LEVEL_OUTSIDE) != above.end() ||
               std::ranges::find(below, volumes::LEVEL_OUTSIDE) != below.end();
    }
    /** Both as one row. */
    void Mix(std::vector<float>& mixed) const {
        mixed.resize(above.size());
        for (std::size_t x = 0; x < mixed.size(); ++x) {
            mixed[x] = Between(static_cast<float>(above[x]), static_cast<float>(below[x]), row.share);
        }
    }
    bool Has_Gap(const Sample& column) const {
        return std::ranges::any_of(Corners(column), [](std::int32_t level) { return level == volumes::LEVEL_OUTSIDE; });
    }
    float Level(const Sample& column) const {
        return Mixed(column, [](std::int32_t level) { return level; });
    }
    std::uint32_t Color(const Sample& column) const {
        std::uint32_t packed = 0;
        for (const unsigned int shift : {0U, 8U, 16U}) {
            const float value = Mixed(column, [shift](std::int32_t level) {
                return static_cast<std::int32_t>(static_cast<std::uint32_t>(level) >> shift & 0xFFU);
            });
            packed |= static_cast<std::uint32_t>(value + 0.5F) << shift;
        }
        return Color_Pixel(static_cast<std::int32_t>(packed));
    }

  private:
    std::array<std::int32_t, 4> Corners(const Sample& column) const {
        const auto before = static_cast<std::size_t>(column.before);
        const auto after = static_cast<std::size_t>(column.after);
        return {above[before], below[before], above[after], below[after]};
    }
    template <class Part>
    float Mixed(const Sample& column, const Part& part) const {
        std::array<float, 4> values{};
        std::ranges::transform(Corners(column), values.begin(),
                               [&](std::int32_t level) { return static_cast<float>(part(level)); });
        return Between(Between(values[0], values[1], row.share), Between(values[2], values[3], row.share),
                       column.share);
    }

    Sample row;
    int width = 0;
    volumes::Level_View above;
    volumes::Level_View below;
};

/** The picture of a part, all of it inside. @param levels the source's */
template <class Levels>
void Part_Render(const Slice_Source& source, const Levels& levels, const Grey_Window& window,
                 const Tag_Overlay& overlay, std::span<const Range_Overlay> ranges, const Pixel_Rect& area,
                 std::span<std::uint32_t> out) {
    const Shade shade(source, window);
    const Tints tints(source, overlay, ranges);
    for (int y = area.top; y < area.bottom; ++y) {
        const std::size_t row = static_cast<std::size_t>(y) * static_cast<std::size_t>(source.width);
        for (int x = area.left; x < area.right; ++x) {
            const std::size_t at = row + static_cast<std::size_t>(x);
            const std::int32_t level = levels[at];
            const std::uint32_t pixel = source.color                      ? Color_Pixel(level)
                                        : level != volumes::LEVEL_OUTSIDE ? shade.Pixel(static_cast<float>(level))
                                                                          : 0;
            out[at] = tints.Over(pixel, at);
        }
    }
}

}  // namespace

Grey_Window Grey_Window::Dragged(float dx, float dy, float whole_range) const {
    constexpr float least_share = 0.001F;
    const float range = whole_range > 0.0F ? whole_range : 1.0F;
    const float center = (low + high) / 2.0F + dy * range;
    const float width = std::clamp(high - low + dx * range, range * least_share, range * 4.0F);
    return {center - width / 2.0F, center + width / 2.0F, is_sigmoid};
}

void Slice_Render(const Slice_Source& source, const Grey_Window& window, const Tag_Overlay& overlay,
                  std::span<const Range_Overlay> ranges, const Pixel_Rect& part, std::span<std::uint32_t> out) {
    const Pixel_Rect area = Rect_Common(part, {0, 0, source.width, source.height});
    if (area.Is_Empty()) {
        return;
    }
    source.levels.Visit([&](const auto& levels) { Part_Render(source, levels, window, overlay, ranges, area, out); });
}

void Slice_Scale(std::span<const std::uint32_t> slice, const View_Layout& layout, const Pixel_Rect& part,
                 int screen_width, int screen_height, std::uint32_t outside, std::span<std::uint32_t> screen) {
    const Pixel_Rect area = Rect_Common(part, {0, 0, screen_width, screen_height});
    if (area.Is_Empty()) {
        return;
    }
    std::vector<int> column(static_cast<std::size_t>(area.right - area.left));
    for (int x = area.left; x < area.right; ++x) {
        const int shown = static_cast<int>(std::floor(layout.To_Slice(x, 0).x));
        column[static_cast<std::size_t>(x - area.left)] = shown >= 0 && shown < layout.slice_width ? shown : -1;
    }
    int row_before = -2;  // the slice row of the screen row above
    for (int y = area.top; y < area.bottom; ++y) {
        std::uint32_t* out = screen.data() + static_cast<std::ptrdiff_t>(y) * screen_width + area.left;
        int row = static_cast<int>(std::floor(layout.To_Slice(0, y).y));
        row = row >= 0 && row < layout.slice_height ? row : -1;
        if (row == row_before) {
            std::copy_n(out - screen_width, column.size(), out);
            continue;
        }
        row_before = row;
        const std::uint32_t* from =
            row < 0 ? nullptr : slice.data() + static_cast<std::ptrdiff_t>(row) * layout.slice_width;
        for (const int x : column) {
            *out++ = from != nullptr && x >= 0 ? from[x] : outside;
        }
    }
}

void Slice_Draw_Linear(const Slice_Source& source, const Grey_Window& window, const Tag_Overlay& overlay,
                       std::span<const Range_Overlay> ranges, const View_Layout& layout, const Screen_Part& screen) {
    const Pixel_Rect area = Rect_Common(screen.part, {0, 0, screen.width, screen.height});
    if (area.Is_Empty()) {
        return;
    }
    const Shade shade(source, window);
    const Tints tints(source, overlay, ranges);
    std::vector<Sample> columns;
    for (int x = area.left; x < area.right; ++x) {
        columns.push_back(Sample_At(layout.To_Slice(x, 0).x, source.width));
    }
    std::vector<float> mixed;
    for (int y = area.top; y < area.bottom; ++y) {
        std::uint32_t* out = screen.pixels.data() + static_cast<std::ptrdiff_t>(y) * screen.width + area.left;
        const Sample row = Sample_At(layout.To_Slice(0, y).y, source.height);
        if (row.nearest < 0) {
            std::fill_n(out, columns.size(), screen.outside);
            continue;
        }
        const Row_Pair rows(source, row);
        const bool is_plain = !source.color && !rows.Has_Gap();
        if (is_plain) {
            rows.Mix(mixed);
        }
        const std::size_t first = static_cast<std::size_t>(row.nearest) * static_cast<std::size_t>(source.width);
        for (const Sample& column : columns) {
            if (column.nearest < 0) {
                *out++ = screen.outside;
                continue;
            }
            const std::size_t at = first + static_cast<std::size_t>(column.nearest);
            std::uint32_t pixel = 0;
            if (is_plain) {
                pixel = shade.Pixel(Between(mixed[static_cast<std::size_t>(column.before)],
                                            mixed[static_cast<std::size_t>(column.after)], column.share));
            } else if (source.color) {
                pixel = rows.Color(column);
            } else if (!rows.Has_Gap(column)) {
                pixel = shade.Pixel(rows.Level(column));
            } else if (source.levels[at] != volumes::LEVEL_OUTSIDE) {
                pixel = shade.Pixel(static_cast<float>(source.levels[at]));
            }
            *out++ = tints.Over(pixel, at);
        }
    }
}

}  // namespace workbench
