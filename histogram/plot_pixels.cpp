#include "histogram/plot_pixels.h"

#include <algorithm>
#include <array>
#include <optional>

namespace {

constexpr int BLOCK = Span_Blocks::COLUMN_NB;
using Mask = std::array<std::uint32_t, BLOCK>;

constexpr Mask Full_Mask() {
    Mask mask{};
    mask.fill(0xFFFFFFFFU);
    return mask;
}
constexpr Mask FULL_MASK = Full_Mask();
// A single pixel takes about a third of the time of a row of a block.
constexpr std::int64_t PIXELS_PER_ROW = 3;

}  // namespace

/** @param here spans of columns that are worked on together @param begin the first one's column
 *  @return no value: they cover nothing */
std::optional<Span_Blocks::Block> Span_Blocks::Block_Of(std::span<const Column_Span> here, int begin, int height) {
    if (std::ranges::all_of(here, &Column_Span::Is_Empty)) {
        return std::nullopt;
    }
    Block block;
    std::int64_t pixel_nb = 0;
    block.begin = begin;
    block.count = static_cast<int>(here.size());
    block.lowest = height;
    block.full_highest = height - 1;
    for (std::size_t i = 0; i < COLUMN_NB; ++i) {
        const Column_Span span = i < here.size() ? here[i] : Column_Span{};
        block.low[i] = span.Is_Empty() ? height : std::max(span.low, 0);
        block.high[i] = span.Is_Empty() ? -1 : std::min(span.high, height - 1);
        block.lowest = std::min(block.lowest, block.low[i]);
        block.highest = std::max(block.highest, block.high[i]);
        block.full_lowest = std::max(block.full_lowest, block.low[i]);
        block.full_highest = std::min(block.full_highest, block.high[i]);
        pixel_nb += std::max(block.high[i] - block.low[i] + 1, 0);
    }
    block.is_sparse = pixel_nb < PIXELS_PER_ROW * (block.highest - block.lowest + 1);
    return block.lowest <= block.highest ? std::optional(block) : std::nullopt;
}

template <typename Take>
void Span_Blocks::Each_Of(std::span<const Column_Span> spans, int width, int height, int first_column, Take take) {
    const std::size_t nb = std::min(static_cast<std::size_t>(std::max(width - first_column, 0)), spans.size());
    for (std::size_t begin = 0; begin < nb; begin += COLUMN_NB) {
        const std::size_t count = std::min<std::size_t>(COLUMN_NB, nb - begin);
        if (const auto block = Block_Of(spans.subspan(begin, count), first_column + static_cast<int>(begin), height)) {
            take(*block);
        }
    }
}

Span_Blocks::Span_Blocks(std::span<const Column_Span> spans, int picture_width, int picture_height, int first_column) {
    Each_Of(spans, picture_width, picture_height, first_column,
            [this](const Block& block) { blocks.push_back(block); });
}

Column_Spans Thick_Spans(std::span<const Column_Span> spans, int thickness) {
    Column_Spans thick(spans.begin(), spans.end());
    if (thickness <= 1) {
        return thick;
    }
    // Spans of neighbouring columns touch, so that a span may take in those to its left.
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
            span =
                span.Is_Empty() ? other : Column_Span{std::min(span.low, other.low), std::max(span.high, other.high)};
        }
        if (!thick[column].Is_Empty()) {
            thick[column].high += thickness - 1;
        }
    }
    return thick;
}

/** Calls paint(row, column, count, mask) for every row that a span of a block covers; mask[i] is all ones where
 *  column + i is covered. Of a sparse block it is paint_one(pixel, column) for every pixel. */
template <typename Paint, typename Paint_One>
void Plot_Pixels::Block_Walk(const Span_Blocks::Block& block, Paint paint, Paint_One paint_one) {
    if (block.is_sparse) {
        for (int i = 0; i < block.count; ++i) {
            const auto slot = static_cast<std::size_t>(i);
            const int end = std::min(block.high[slot] + 1, row_end);
            for (int row = std::max(block.low[slot], row_begin); row < end; ++row) {
                paint_one(Row_Begin(row)[block.begin + i], block.begin + i);
            }
        }
        return;
    }
    const int last = std::min(block.highest, row_end - 1);
    for (int row = std::max(block.lowest, row_begin); row <= last; ++row) {
        if (row >= block.full_lowest && row <= block.full_highest) {
            paint(row, block.begin, block.count, FULL_MASK);
            continue;
        }
        Mask mask;
        for (std::size_t i = 0; i < BLOCK; ++i) {
            mask[i] = block.low[i] <= row && row <= block.high[i] ? 0xFFFFFFFFU : 0U;
        }
        paint(row, block.begin, block.count, mask);
    }
}

template <typename Paint, typename Paint_One>
void Plot_Pixels::Walk(const Span_Blocks& spans, Paint paint, Paint_One paint_one) {
    for (const Span_Blocks::Block& block : spans.Blocks()) {
        Block_Walk(block, paint, paint_one);
    }
}

/** The same of what is drawn once: takes no memory. */
template <typename Paint, typename Paint_One>
void Plot_Pixels::Walk(std::span<const Column_Span> spans, Paint paint, Paint_One paint_one) {
    Span_Blocks::Each_Of(spans, width, height, 0,
                         [&](const Span_Blocks::Block& block) { Block_Walk(block, paint, paint_one); });
}

Plot_Pixels Plot_Pixels::Strip(int begin, int end) const {
    Plot_Pixels strip = *this;
    strip.row_begin = std::max(row_begin, begin);
    strip.row_end = std::min(row_end, end);
    return strip;
}

std::uint32_t* Plot_Pixels::Row_Begin(int row) const {
    return pixels + static_cast<std::ptrdiff_t>(height - 1 - row) * width;
}

std::uint32_t Plot_Pixels::At(int column, int row) const {
    return Row_Begin(row)[column];
}

void Plot_Pixels::Rows_Fill(std::span<const std::uint32_t> even, std::span<const std::uint32_t> odd) {
    const std::size_t shorter = std::min(even.size(), odd.size());
    const auto nb = std::min<std::ptrdiff_t>(width, static_cast<std::ptrdiff_t>(shorter));
    for (int row = row_begin; row < row_end; ++row) {
        const std::span<const std::uint32_t>& colors = row % 2 == 0 ? even : odd;
        std::copy(colors.begin(), colors.begin() + nb, Row_Begin(row));
    }
}

void Plot_Pixels::Rectangle_Blend(int left, int bottom, int rectangle_width, int rectangle_height, std::uint32_t pixel,
                                  std::uint32_t opacity) {
    const int column_begin = std::max(left, 0);
    const int column_end = std::min(left + rectangle_width, width);
    const int rectangle_end = std::min(bottom + rectangle_height, row_end);
    for (int row = std::max(bottom, row_begin); row < rectangle_end; ++row) {
        std::uint32_t* line = Row_Begin(row);
        for (int column = column_begin; column < column_end; ++column) {
            line[column] = Pixel_Blend(line[column], pixel, opacity);
        }
    }
}

void Plot_Pixels::Blend(const Span_Blocks& spans, std::uint32_t pixel, std::uint32_t opacity) {
    // By components: eight products of 16 bits at a time.
    std::array<std::uint16_t, BLOCK * 4> over;
    for (std::size_t i = 0; i < over.size(); ++i) {
        over[i] = static_cast<std::uint16_t>((pixel >> 8 * (i % 4) & 0xFF) * opacity);
    }
    const auto rest = static_cast<std::uint16_t>(OPACITY_FULL - opacity);
    const auto paint = [&](int row, int begin, int count, const Mask& mask) {
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
    };
    Walk(spans, paint, [&](std::uint32_t& under, int) { under = Pixel_Blend(under, pixel, opacity); });
}

/** @param color_of pixel of a column */
template <typename Spans, typename Color_Of>
void Plot_Pixels::Fill(const Spans& spans, Color_Of color_of) {
    const auto paint = [&](int row, int begin, int count, const Mask& mask) {
        std::uint32_t* line = Row_Begin(row) + begin;
        for (int i = 0; i < count; ++i) {
            const std::uint32_t covered = mask[static_cast<std::size_t>(i)];
            line[i] = (color_of(begin + i) & covered) | (line[i] & ~covered);
        }
    };
    Walk(spans, paint, [&](std::uint32_t& under, int column) { under = color_of(column); });
}

void Plot_Pixels::Spans_Fill(std::span<const Column_Span> spans, std::span<const std::uint32_t> colors) {
    Fill(spans.first(std::min(spans.size(), colors.size())),
         [over = colors.data()](int column) { return over[column]; });
}

void Plot_Pixels::Spans_Fill(const Span_Blocks& spans, std::span<const std::uint32_t> colors) {
    Fill(spans, [over = colors.data()](int column) { return over[column]; });
}

void Plot_Pixels::Layer_Draw(const Plot_Layer& layer) {
    if (layer.opacity < OPACITY_FULL) {
        Blend(layer.spans, layer.pixel, layer.opacity);
    } else {
        Fill(layer.spans, [pixel = layer.pixel](int) { return pixel; });
    }
}

void Plot_Pixels::Line_Draw(std::span<const Column_Span> spans, std::uint32_t pixel) {
    Fill(spans, [pixel](int) { return pixel; });
}
