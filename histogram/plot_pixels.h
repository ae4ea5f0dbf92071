/** Drawing into a picture in memory: shaded columns, curves, half-transparent fills. No window system.
 *
 *  Pixels are 0x00RRGGBB, top row first; columns count from the left, rows from the bottom upward. Everything is
 *  clipped to the picture.
 */
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "histogram/plot_columns.h"

/** Parts of 256. */
inline constexpr std::uint32_t OPACITY_FULL = 256;

/** A colour 0x00BBGGRR as a pixel 0x00RRGGBB. */
constexpr std::uint32_t Pixel_Of_Color(std::uint32_t color) {
    return (color & 0xFF) << 16 | (color & 0xFF00) | (color >> 16 & 0xFF);
}
/** `over` laid over `under`. @param opacity 0 (nothing) .. OPACITY_FULL */
constexpr std::uint32_t Pixel_Blend(std::uint32_t under, std::uint32_t over, std::uint32_t opacity) {
    constexpr std::uint32_t red_blue = 0xFF00FF;
    constexpr std::uint32_t green = 0x00FF00;
    const std::uint32_t rest = OPACITY_FULL - opacity;
    return (((under & red_blue) * rest + (over & red_blue) * opacity) >> 8 & red_blue) |
           (((under & green) * rest + (over & green) * opacity) >> 8 & green);
}

/** Spans made ready for drawing, in blocks of columns: what is drawn strip by strip asks for them again and again. */
class Span_Blocks {
  public:
    /** Columns that are worked on together: a cache line of pixels. */
    static constexpr int COLUMN_NB = 16;
    using Rows = std::array<std::int32_t, COLUMN_NB>;

    /** At least one row is covered. Columns without rows have low above every row and high below. */
    struct Block {
        int begin = 0;  ///< first column
        int count = 0;  ///< columns, the last block has fewer
        int lowest = 0;
        int highest = -1;
        int full_lowest = 0;  ///< from here to full_highest every column is covered
        int full_highest = -1;
        bool is_sparse = false;  ///< so few pixels are covered that they are better drawn one by one
        Rows low{};
        Rows high{};
    };

    /** @param spans one per column; those right of the picture are left out
     *  @param picture_width, picture_height pixels @param first_column of the first span, not below 0 */
    Span_Blocks(std::span<const Column_Span> spans, int picture_width, int picture_height, int first_column = 0);
    /** From the left. */
    const std::vector<Block>& Blocks() const { return blocks; }
    /** Calls take(block) for each block of spans without keeping any; for the rest see above. */
    template <typename Take>
    static void Each_Of(std::span<const Column_Span> spans, int width, int height, int first_column, Take take);

  private:
    static std::optional<Block> Block_Of(std::span<const Column_Span> here, int begin, int height);
    std::vector<Block> blocks;
};

/** The spans of a line this many pixels thick, which grows to the right and upward. @param spans of a line of 1 pixel
 */
Column_Spans Thick_Spans(std::span<const Column_Span> spans, int thickness);

/** Spans in one colour. */
struct Plot_Layer {
    Span_Blocks spans;
    std::uint32_t pixel = 0;
    std::uint32_t opacity = OPACITY_FULL;
};

/** A picture that someone else owns. */
class Plot_Pixels {
  public:
    /** @param in_pixels in_width x in_height pixels */
    Plot_Pixels(std::uint32_t* in_pixels, int in_width, int in_height)
        : pixels(in_pixels), width(in_width), height(in_height), row_end(in_height) {}
    /** The same picture, of which only these rows are drawn: all that is drawn one over another stays in the nearest
     *  memory, strip after strip. @param end behind the last row */
    Plot_Pixels Strip(int begin, int end) const;

    int Width() const { return width; }
    int Height() const { return height; }
    std::uint32_t At(int column, int row) const;
    /** Gives every row its colours. @param even, odd one pixel per column, for the rows 0, 2 .. and 1, 3 .. */
    void Rows_Fill(std::span<const std::uint32_t> even, std::span<const std::uint32_t> odd);
    /** Lays a colour over a rectangle. */
    void Rectangle_Blend(int left, int bottom, int rectangle_width, int rectangle_height, std::uint32_t pixel,
                         std::uint32_t opacity);
    /** Gives spans one colour per column. */
    void Spans_Fill(std::span<const Column_Span> spans, std::span<const std::uint32_t> colors);
    /** @param colors at least one for every column that the spans cover */
    void Spans_Fill(const Span_Blocks& spans, std::span<const std::uint32_t> colors);
    /** Gives spans a colour, or lays it over them. */
    void Layer_Draw(const Plot_Layer& layer);
    /** Gives spans a colour: a line one pixel thick; see Thick_Spans for others. Takes no memory. */
    void Line_Draw(std::span<const Column_Span> spans, std::uint32_t pixel);

  private:
    std::uint32_t* Row_Begin(int row) const;
    template <typename Paint, typename Paint_One>
    void Block_Walk(const Span_Blocks::Block& block, Paint paint, Paint_One paint_one);
    template <typename Paint, typename Paint_One>
    void Walk(const Span_Blocks& spans, Paint paint, Paint_One paint_one);
    template <typename Paint, typename Paint_One>
    void Walk(std::span<const Column_Span> spans, Paint paint, Paint_One paint_one);
    void Blend(const Span_Blocks& spans, std::uint32_t pixel, std::uint32_t opacity);
    /** @param spans Span_Blocks, or spans */
    template <typename Spans, typename Color_Of>
    void Fill(const Spans& spans, Color_Of color_of);

    std::uint32_t* pixels;
    int width;
    int height;
    int row_begin = 0;  // rows that are drawn
    int row_end;
};
