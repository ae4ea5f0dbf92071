/** The panel's small plot as pixels, from the left to the right, some columns at a time: bands, bars and outlines on
 *  black. Pure numbers; allocates nothing.
 *
 *  The picture leaves one pixel around the plot rectangle: row 0 is the base line, on which counts of 0 lie, row n
 *  stands n pixels above it.
 */
#pragma once

#include <cstdint>
#include <span>

#include "histogram/plot_columns.h"
#include "histogram/plot_pixels.h"
#include "histogram/plot_scale.h"

/** The bins first .. last of a TAG; first > last: none. Later bands hide earlier ones. */
struct Panel_Band {
    int first = 0;
    int last = -1;
    std::uint32_t pixel = 0;  ///< 0x00RRGGBB
};

/** The counts of all bins, drawn as a line along every bin and up and down between them. Later curves hide earlier
 * ones. The line ends before its last pixel, as the window system draws lines. */
struct Panel_Curve {
    const std::uint32_t* counts = nullptr;
    std::uint32_t pixel = 0;  ///< 0x00RRGGBB
};

struct Panel_Contents {
    const std::uint32_t* band_counts = nullptr;  ///< the bars' counts, for all bins
    std::span<const Panel_Band> bands;
    std::span<const Panel_Curve> curves;
    int phase = 0;  ///< column c of row r of a band is coloured where c + r + phase is odd, else black
};

class Panel_Picture {
  public:
    /** Widest part that is drawn at once. */
    static constexpr int COLUMNS_MAX = 256;

    /** @param plot_scale not empty; its rectangle's left is the column of the plot's first pixel
     *  @param panel_contents stays as long as the picture */
    Panel_Picture(const Plot_Scale& plot_scale, const Panel_Contents& panel_contents)
        : scale(plot_scale), contents(panel_contents), column(scale.Rectangle().left - 1) {}

    int Height() const { return scale.Rectangle().height + 2; }
    /** The first column that is not drawn yet; one less than the rectangle's left at first. */
    int Column() const { return column; }
    /** Columns that are not drawn yet. */
    int Columns_Left() const { return scale.Rectangle().left + scale.Rectangle().width + 1 - column; }
    /** Draws the next columns. @param part as many columns as are to be drawn, at most COLUMNS_MAX; Height() rows */
    void Part_Draw(Plot_Pixels part);

  private:
    /** For every column of a part, from the one before it on: the last bin edge at or left of it; -1: none. */
    using Edges = std::span<const int>;

    void Bands_Draw(Plot_Pixels& part, Edges edges) const;
    void Curve_Draw(Plot_Pixels& part, Edges edges, const Panel_Curve& curve) const;
    Column_Span Rows(const std::uint32_t* counts, int from, int to) const;
    Column_Span Last_Rows(const std::uint32_t* counts, int from) const;

    Plot_Scale scale;
    const Panel_Contents& contents;
    int column;
    int edge = -1;  // the last one left of the column
};
