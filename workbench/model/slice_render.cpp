#include "workbench/model/slice_render.h"

#include <algorithm>
#include <cmath>
#include <vector>

#include "workbench/volumes/volume.h"

namespace workbench {

namespace {

constexpr int RANGE_PERCENT = 35;  // colour of the range in its tint

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

/** The picture of a part, all of it inside. @param levels the source's */
template <class Levels>
void Part_Render(const Slice_Source& source, const Levels& levels, const Grey_Window& window,
                 const Tag_Overlay& overlay, std::span<const Range_Overlay> ranges, const Pixel_Rect& area,
                 std::span<std::uint32_t> out) {
    const float width = window.high > window.low ? window.high - window.low : 1.0F;
    const float factor = source.slope * 255.0F / width;
    const float offset = (source.intercept - window.low) * 255.0F / width;
    for (int y = area.top; y < area.bottom; ++y) {
        const std::size_t row = static_cast<std::size_t>(y) * static_cast<std::size_t>(source.width);
        for (int x = area.left; x < area.right; ++x) {
            const std::size_t at = row + static_cast<std::size_t>(x);
            const std::int32_t level = levels[at];
            std::uint32_t pixel = 0;
            if (source.color) {
                const auto packed = static_cast<std::uint32_t>(level);
                pixel = ((packed & 0xFFU) << 16U) | (packed & 0xFF00U) | ((packed >> 16U) & 0xFFU);
            } else if (level != volumes::LEVEL_OUTSIDE) {
                const float straight = static_cast<float>(level) * factor + offset;
                const float bright = window.is_sigmoid ? Bent(straight) : std::clamp(straight, 0.0F, 255.0F);
                const float shade = source.is_inverted ? 255.0F - bright : bright;
                pixel = static_cast<std::uint32_t>(shade + 0.5F) * 0x010101U;
                const auto tint = std::find_if(ranges.rbegin(), ranges.rend(), [&](const Range_Overlay& range) {
                    return level >= range.low && level <= range.high;
                });
                if (tint != ranges.rend()) {
                    pixel = Mix_Pixel(pixel, tint->color, RANGE_PERCENT);
                }
            }
            if (!source.tags.empty()) {
                const std::uint8_t tag = source.tags[at];
                if (tag != 0 && overlay.shown[tag] != 0) {
                    pixel = Mix_Pixel(pixel, overlay.color[tag], overlay.opacity);
                }
            }
            out[at] = pixel;
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

}  // namespace workbench
