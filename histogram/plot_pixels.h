/** Drawing into a picture in memory: shaded columns, curves, half-transparent fills. No window system.
 *
 *  Pixels are 0x00RRGGBB, top row first; columns count from the left, rows from the bottom upward. Everything is
 *  clipped to the picture.
 */
#pragma once

#include <cstdint>
#include <span>

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

/** A picture that someone else owns. */
class Plot_Pixels {
  public:
    /** @param in_pixels in_width x in_height pixels */
    Plot_Pixels(std::uint32_t* in_pixels, int in_width, int in_height)
        : pixels(in_pixels), width(in_width), height(in_height) {}

    int Width() const { return width; }
    int Height() const { return height; }
    std::uint32_t At(int column, int row) const;
    /** Gives every row its colours. @param even, odd one pixel per column, for the rows 0, 2 .. and 1, 3 .. */
    void Rows_Fill(std::span<const std::uint32_t> even, std::span<const std::uint32_t> odd);
    /** Lays a colour over a rectangle. */
    void Rectangle_Blend(int left, int bottom, int rectangle_width, int rectangle_height, std::uint32_t pixel,
                         std::uint32_t opacity);
    /** Lays a colour over spans. @param spans one per column */
    void Spans_Blend(std::span<const Column_Span> spans, std::uint32_t pixel, std::uint32_t opacity);
    /** Gives spans one colour per column. */
    void Spans_Fill(std::span<const Column_Span> spans, std::span<const std::uint32_t> colors);
    /** Draws spans as a line this many pixels thick, which grows to the right and upward. */
    void Line_Draw(std::span<const Column_Span> spans, std::uint32_t pixel, int thickness);

  private:
    std::uint32_t* Row_Begin(int row) const;

    std::uint32_t* pixels;
    int width;
    int height;
};
