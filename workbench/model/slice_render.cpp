#include "workbench/model/slice_render.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <limits>
#include <vector>

#include "workbench/model/label_difference.h"
#include "workbench/volumes/volume.h"

namespace workbench {

namespace {

constexpr int RANGE_PERCENT = 35;       // colour of the range in its tint
constexpr int DIFFERENCE_PERCENT = 60;  // of the colour of a difference

/** A colour that lies over others. */
class Tint {
  public:
    Tint() = default;
    Tint(std::uint32_t color, int percent) {
        const auto weight = static_cast<std::uint32_t>(percent * 256 / 100);
        rest = 256 - weight;
        red_blue = (color & 0xFF00FFU) * weight;
        green = (color & 0x00FF00U) * weight;
    }
    std::uint32_t Over(std::uint32_t ground) const {
        // Red and blue in one multiplication, green in another: their bytes do not touch.
        return (((ground & 0xFF00FFU) * rest + red_blue) >> 8U & 0xFF00FFU) |
               (((ground & 0x00FF00U) * rest + green) >> 8U & 0x00FF00U);
    }

  private:
    std::uint32_t rest = 256;  // all of the ground
    std::uint32_t red_blue = 0;
    std::uint32_t green = 0;
};

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
    /** Black where there is no value. */
    std::uint32_t Of_Level(std::int32_t level) const {
        return level == volumes::LEVEL_OUTSIDE ? 0 : Pixel(static_cast<float>(level));
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
    Tints(const Slice_Source& of, const Tag_Overlay& overlay, std::span<const Range_Overlay> range_overlays)
        : source(of), is_difference(overlay.is_difference && of.compared.size() == of.tags.size()) {
        if (!of.color) {
            for (const Range_Overlay& range : range_overlays) {
                ranges.push_back({range.low, range.high, Tint(range.color, RANGE_PERCENT)});
            }
        }
        for (std::size_t tag = 1; tag < of_tag.size(); ++tag) {
            of_tag[tag] = overlay.shown[tag] != 0 ? Tint(overlay.color[tag], overlay.opacity) : Tint();
        }
        for (std::size_t difference = 1; difference < of_difference.size(); ++difference) {
            of_difference[difference] = Tint(DIFFERENCE_COLOR[difference], DIFFERENCE_PERCENT);
        }
    }
    /** @param pixel without tints @param at of the slice */
    std::uint32_t Over(std::uint32_t pixel, std::size_t at) const {
        const std::uint32_t ground = ranges.empty() ? pixel : Over_Range(pixel, at);
        if (source.tags.empty()) {
            return ground;
        }
        const std::uint8_t tag = source.tags[at];
        return is_difference
                   ? of_difference[static_cast<std::size_t>(Difference_Of(tag, source.compared[at]))].Over(ground)
                   : of_tag[tag].Over(ground);
    }

  private:
    struct Range_Tint {
        std::int32_t low;
        std::int32_t high;
        Tint tint;
    };

    std::uint32_t Over_Range(std::uint32_t pixel, std::size_t at) const {
        const std::int32_t level = source.levels[at];
        const auto range = std::find_if(ranges.rbegin(), ranges.rend(), [level](const Range_Tint& one) {
            return level >= one.low && level <= one.high;
        });
        return level != volumes::LEVEL_OUTSIDE && range != ranges.rend() ? range->tint.Over(pixel) : pixel;
    }

    const Slice_Source& source;
    std::vector<Range_Tint> ranges;
    std::array<Tint, TAG_MAX> of_tag;               // nothing over those that are not shown
    std::array<Tint, DIFFERENCE_NB> of_difference;  // nothing where there is none
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

/** Mixes greys. A pixel without a value is no number here, and so is whatever is mixed with it. */
class Grey_Rows {
  public:
    explicit Grey_Rows(const Slice_Source& of) : source(of) {}
    /** The rows that a row of the screen lies between as one. Valid until the next call. */
    std::span<const float> Mixed(const Sample& in_height) {
        Kept_Row& above = Row(in_height.before, in_height.after);
        const Kept_Row& below = Row(in_height.after, in_height.before);
        mixed.resize(above.greys.size());
        for (std::size_t x = 0; x < mixed.size(); ++x) {
            mixed[x] = Between(above.greys[x], below.greys[x], in_height.share);
        }
        return mixed;
    }

  private:
    struct Kept_Row {
        int y = -1;
        std::vector<float> greys;
    };

    /** @param other the row that must stay as well */
    Kept_Row& Row(int y, int other) {
        const auto known = std::ranges::find(kept, y, &Kept_Row::y);
        if (known != kept.end()) {
            return *known;
        }
        Kept_Row& row = kept[0].y == other ? kept[1] : kept[0];
        row.y = y;
        const auto size = static_cast<std::size_t>(source.width);
        row.greys.resize(size);
        source.levels.subspan(static_cast<std::size_t>(y) * size, size).Visit([&](const auto& levels) {
            for (std::size_t x = 0; x < size; ++x) {
                const std::int32_t level = levels[x];
                row.greys[x] = level == volumes::LEVEL_OUTSIDE ? std::numeric_limits<float>::quiet_NaN()
                                                               : static_cast<float>(level);
            }
        });
        return row;
    }

    const Slice_Source& source;
    std::array<Kept_Row, 2> kept;
    std::vector<float> mixed;
};

/** A pixel of a slice of colours. */
std::uint32_t Mixed_Color(const Slice_Source& source, const Sample& column, const Sample& row) {
    const auto level = [&](int x, int y) {
        return static_cast<std::uint32_t>(
            source.levels[static_cast<std::size_t>(y) * static_cast<std::size_t>(source.width) +
                          static_cast<std::size_t>(x)]);
    };
    std::uint32_t packed = 0;
    for (const unsigned int shift : {0U, 8U, 16U}) {
        const auto value = [&](int x, int y) { return static_cast<float>(level(x, y) >> shift & 0xFFU); };
        const auto in_height = [&](int x) { return Between(value(x, row.before), value(x, row.after), row.share); };
        const float mixed = Between(in_height(column.before), in_height(column.after), column.share);
        packed |= static_cast<std::uint32_t>(mixed + 0.5F) << shift;
    }
    return Color_Pixel(static_cast<std::int32_t>(packed));
}

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
            out[at] = tints.Over(source.color ? Color_Pixel(level) : shade.Of_Level(level), at);
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
    const auto is_inside = [](const Sample& column) { return column.nearest >= 0; };
    const auto first = std::ranges::find_if(columns, is_inside);
    const std::span<const Sample> inside(first, std::find_if_not(first, columns.end(), is_inside));
    Grey_Rows rows(source);
    for (int y = area.top; y < area.bottom; ++y) {
        std::uint32_t* const line = screen.pixels.data() + static_cast<std::ptrdiff_t>(y) * screen.width + area.left;
        const Sample row = Sample_At(layout.To_Slice(0, y).y, source.height);
        if (row.nearest < 0) {
            std::fill_n(line, columns.size(), screen.outside);
            continue;
        }
        std::uint32_t* out = std::fill_n(line, first - columns.begin(), screen.outside);
        const std::size_t row_at = static_cast<std::size_t>(row.nearest) * static_cast<std::size_t>(source.width);
        if (source.color) {
            for (const Sample& column : inside) {
                *out++ =
                    tints.Over(Mixed_Color(source, column, row), row_at + static_cast<std::size_t>(column.nearest));
            }
        } else {
            const std::span<const float> mixed = rows.Mixed(row);
            for (const Sample& column : inside) {
                const std::size_t at = row_at + static_cast<std::size_t>(column.nearest);
                const float grey = Between(mixed[static_cast<std::size_t>(column.before)],
                                           mixed[static_cast<std::size_t>(column.after)], column.share);
                *out++ = tints.Over(std::isnan(grey) ? shade.Of_Level(source.levels[at]) : shade.Pixel(grey), at);
            }
        }
        std::fill(out, line + columns.size(), screen.outside);
    }
}

}  // namespace workbench
