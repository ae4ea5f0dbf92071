#include "histogram/plot_pixels.h"

#include <algorithm>
#include <array>

namespace {

/** Columns that are worked on together: a cache line of pixels. */
constexpr int BLOCK = 16;

/** Calls paint(row, column, mask) for every block of columns and every row that a span of it covers; mask[i] is all
 * ones where column + i is covered. */
template <typename Paint>
void Blocks_Walk(std::span<const Column_Span> spans, int width, int height, Paint paint) {
    const int nb = std::min(width, static_cast<int>(spans.size()));
    for (int begin = 0; begin < nb; begin += BLOCK) {
        const int count = std::min(BLOCK, nb - begin);
        std::array<std::int32_t, BLOCK> low;
        std::array<std::int32_t, BLOCK> high;
        int lowest = height;
        int highest = -1;
        for (int i = 0; i < BLOCK; ++i) {
            const auto slot = static_cast<std::size_t>(i);
            const Column_Span span = i < count ? spans[static_cast<std::size_t>(begin + i)] : Column_Span{};
            low[slot] = span.Is_Empty() ? height : std::max(span.low, 0);
            high[slot] = span.Is_Empty() ? -1 : std::min(span.high, height - 1);
            lowest = std::min(lowest, low[slot]);
            highest = std::max(highest, high[slot]);
        }
        for (int row = lowest; row <= highest; ++row) {
            std::array<std::uint32_t, BLOCK> mask;
            for (std::size_t i = 0; i < BLOCK; ++i) {
                mask[i] = low[i] <= row && row <= high[i] ? 0xFFFFFFFFU : 0U;
            }
            paint(row, begin, count, mask);
        }
    }
}

}  // namespace

std::uint32_t* Plot_Pixels::Row_Begin(int row) const {
    return pixels + static_cast<std::ptrdiff_t>(height - 1 - row) * width;
}

std::uint32_t Plot_Pixels::At(int column, int row) const {
    return Row_Begin(row)[column];
}

void Plot_Pixels::Rows_Fill(std::span<const std::uint32_t> even, std::span<const std::uint32_t> odd) {
    const std::size_t shorter = std::min(even.size(), odd.size());
    const auto nb = std::min<std::ptrdiff_t>(width, static_cast<std::ptrdiff_t>(shorter));
    for (int row = 0; row < height; ++row) {
        const std::span<const std::uint32_t>& colors = row % 2 == 0 ? even : odd;
        std::copy(colors.begin(), colors.begin() + nb, Row_Begin(row));
    }
}

void Plot_Pixels::Rectangle_Blend(int left, int bottom, int rectangle_width, int rectangle_height, std::uint32_t pixel,
                                  std::uint32_t opacity) {
    const int column_begin = std::max(left, 0);
    const int column_end = std::min(left + rectangle_width, width);
    const int row_end = std::min(bottom + rectangle_height, height);
    for (int row = std::max(bottom, 0); row < row_end; ++row) {
        std::uint32_t* line = Row_Begin(row);
        for (int column = column_begin; column < column_end; ++column) {
            line[column] = Pixel_Blend(line[column], pixel, opacity);
        }
    }
}

void Plot_Pixels::Spans_Blend(std::span<const Column_Span> spans, std::uint32_t pixel, std::uint32_t opacity) {
    // By components: eight products of 16 bits at a time.
    std::array<std::uint16_t, BLOCK * 4> over;
    for (std::size_t i = 0; i < over.size(); ++i) {
        over[i] = static_cast<std::uint16_t>((pixel >> 8 * (i % 4) & 0xFF) * opacity);
    }
    const auto rest = static_cast<std::uint16_t>(OPACITY_FULL - opacity);
    Blocks_Walk(spans, width, height, [&](int row, int begin, int count, const std::array<std::uint32_t, BLOCK>& mask) {
        auto* line = reinterpret_cast<std::uint8_t*>(Row_Begin(row) + begin);
        const auto* covered = reinterpret_cast<const std::uint8_t*>(mask.data());
        const auto blend = [&](std::size_t nb) {
            for (std::size_t i = 0; i < nb; ++i) {
                const auto mixed = static_cast<std::uint8_t>(static_cast<std::uint16_t>(line[i] * rest + over[i]) >> 8);
                line[i] = static_cast<std::uint8_t>((mixed & covered[i]) | (line[i] & ~covered[i]));
            }
        };
        if (count == BLOCK) {
            blend(BLOCK * 4);
        } else {
            blend(static_cast<std::size_t>(count) * 4);
        }
    });
}

void Plot_Pixels::Spans_Fill(std::span<const Column_Span> spans, std::span<const std::uint32_t> colors) {
    Blocks_Walk(spans.first(std::min(spans.size(), colors.size())), width, height,
                [&](int row, int begin, int count, const std::array<std::uint32_t, BLOCK>& mask) {
                    std::uint32_t* line = Row_Begin(row) + begin;
                    const std::uint32_t* over = colors.data() + begin;
                    for (int i = 0; i < count; ++i) {
                        const std::uint32_t covered = mask[static_cast<std::size_t>(i)];
                        line[i] = (over[i] & covered) | (line[i] & ~covered);
                    }
                });
}

void Plot_Pixels::Line_Draw(std::span<const Column_Span> spans, std::uint32_t pixel, int thickness) {
    Column_Spans thick;
    if (thickness > 1) {
        // Spans of neighbouring columns touch, so that a span may take in those to its left.
        thick.assign(spans.begin(), spans.end());
        for (std::size_t column = 0; column < spans.size(); ++column) {
            for (std::size_t left = 0; left < static_cast<std::size_t>(thickness) && left <= column; ++left) {
                const Column_Span& other = spans[column - left];
                if (other.Is_Empty()) {
                    if (left == 0) {
                        continue;  // just right of the line's end
                    }
                    break;
                }
                Column_Span& span = thick[column];
                span = span.Is_Empty() ? other
                                       : Column_Span{std::min(span.low, other.low), std::max(span.high, other.high)};
            }
            if (!thick[column].Is_Empty()) {
                thick[column].high += thickness - 1;
            }
        }
        spans = thick;
    }
    Blocks_Walk(spans, width, height, [&](int row, int begin, int count, const std::array<std::uint32_t, BLOCK>& mask) {
        std::uint32_t* line = Row_Begin(row) + begin;
        for (int i = 0; i < count; ++i) {
            const std::uint32_t covered = mask[static_cast<std::size_t>(i)];
            line[i] = (pixel & covered) | (line[i] & ~covered);
        }
    });
}
