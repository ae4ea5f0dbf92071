/** Painting TAGs with a brush mask. */
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "workbench/model/label_map.h"

namespace workbench {

/** The pixels that a brush covers, row by row. Positions are relative to the brush's centre pixel. */
class Brush_Footprint {
  public:
    struct Row {
        int y = 0;
        int first = 0;  ///< leftmost pixel
        int last = 0;   ///< rightmost pixel, included
    };
    /** A brush that covers nothing. */
    Brush_Footprint() = default;
    /** The non-zero bytes of a mask of 2 * radius + 1 rows of 2 * radius + 1 bytes; null rows cover nothing. */
    Brush_Footprint(const unsigned char* const* mask_rows, int radius);

    /** By ascending y, then x; touching pixels of a row are one entry. */
    std::span<const Row> Rows() const { return rows; }
    std::size_t Pixel_Nb() const;
    bool Covers(int x, int y) const;

  private:
    std::vector<Row> rows;
};

/** A piece of a brush's outline, along pixel edges: the edge at x is the left side of pixel x. */
struct Outline_Edge {
    int x0 = 0;
    int y0 = 0;
    int x1 = 0;
    int y1 = 0;
    bool is_first = true;  ///< the covered pixels lie right of or below the edge
    friend bool operator==(const Outline_Edge&, const Outline_Edge&) = default;
};
/** The edges between covered and free pixels, straight pieces joined: exactly around what a dab paints. */
std::vector<Outline_Edge> Brush_Outline(const Brush_Footprint& brush);

/** A slice to paint on. */
struct Paint_Target {
    std::span<std::uint8_t> pixels;  ///< width * height
    int width = 0;
    int height = 0;
};
/** What to paint. */
struct Paint_Ink {
    std::uint8_t tag = 0;  ///< 0 erases
    Tag_Flags locked{};    ///< not 0: pixels of that TAG stay
};

/** Paints the brush at one place; what lies outside the slice is cut off. @return the pixels that may have changed */
Pixel_Rect Paint_Dab(const Paint_Target& target, const Brush_Footprint& brush, int x, int y, const Paint_Ink& ink);
/** Paints the brush at every pixel of a straight line, both ends included. */
Pixel_Rect Paint_Line(const Paint_Target& target, const Brush_Footprint& brush, int x0, int y0, int x1, int y1,
                      const Paint_Ink& ink);

}  // namespace workbench
