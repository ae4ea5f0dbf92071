/** Brushes: which pixels they cover, and what they may do to the TAGs there. */
#pragma once

#include <cstdint>
#include <cstdlib>
#include <optional>
#include <span>
#include <utility>
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
    /** @param footprint_rows by ascending y, then x, apart from one another */
    explicit Brush_Footprint(std::vector<Row> footprint_rows) : rows(std::move(footprint_rows)) {}
    /** The non-zero bytes of a mask of 2 * radius + 1 rows of 2 * radius + 1 bytes; null rows cover nothing. */
    Brush_Footprint(const unsigned char* const* mask_rows, int radius);

    /** By ascending y, then x; touching pixels of a row are one entry. */
    std::span<const Row> Rows() const { return rows; }
    std::size_t Pixel_Nb() const;
    bool Covers(int x, int y) const;
    /** The smallest rectangle around it. */
    Pixel_Rect Box() const;

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

/** A brush that reaches into the pictures before and behind the one it is held over. */
struct Brush_Body {
    struct Layer {
        int depth = 0;  ///< of its picture, from the one that the brush is held over
        Brush_Footprint footprint;
    };
    std::vector<Layer> layers;  ///< by ascending depth, each depth once

    Brush_Body() = default;
    Brush_Body(Brush_Footprint flat) : layers{{0, std::move(flat)}} {}  // NOLINT: a flat brush is one of a single layer
};

/** Levels from low to high, both included; none when high < low. */
struct Paint_Band {
    std::int32_t low = 0;
    std::int32_t high = -1;
    bool Has(std::int32_t level) const { return level >= low && level <= high; }
};

/** What to paint, and on what. */
struct Paint_Ink {
    std::uint8_t tag = 0;                     ///< 0 erases
    Tag_Flags locked{};                       ///< not 0: voxels of that TAG stay
    std::optional<std::uint8_t> only_inside;  ///< only voxels of this TAG change
    std::optional<Paint_Band> band;           ///< only voxels with a level in it change

    /** Whether voxels of a TAG may get another one. */
    bool May_Change(std::uint8_t there) const {
        return locked[there] == 0 && (!only_inside.has_value() || *only_inside == there);
    }
};

/** Calls `visit` for every pixel of a straight line, both ends included. */
template <class Visit>
void Line_Visit(int x0, int y0, int x1, int y1, Visit visit) {
    const int dx = std::abs(x1 - x0);
    const int dy = -std::abs(y1 - y0);
    const int step_x = x0 < x1 ? 1 : -1;
    const int step_y = y0 < y1 ? 1 : -1;
    int error = dx + dy;
    for (;;) {
        visit(x0, y0);
        if (x0 == x1 && y0 == y1) {
            return;
        }
        const int doubled = 2 * error;
        if (doubled >= dy) {
            error += dy;
            x0 += step_x;
        }
        if (doubled <= dx) {
            error += dx;
            y0 += step_y;
        }
    }
}

}  // namespace workbench
