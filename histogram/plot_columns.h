/** The enlarged plot's pixels: how data becomes columns and rows, and a curve of any number of bins reduced to one span
 *  per pixel column. Pure numbers.
 *
 *  Columns count from the left edge of the plot area, rows from its bottom edge upward. A value stands on the pixel
 *  whose middle is nearest, as the ticks of the axes do.
 */
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

/** The plot area in pixels and the data range that it shows. */
struct Plot_Frame {
    int width = 0;   ///< pixels
    int height = 0;  ///< pixels
    double x_start = 0.0;
    double x_end = 0.0;
    double y_start = 0.0;
    double y_end = 0.0;

    /** True when nothing can be drawn: no pixels, or ranges that are not increasing pairs of finite numbers. */
    bool Is_Empty() const;
    /** Column of a grey level, -1 left of the area, `width` right of it. */
    int Column(double level) const;
    /** Row of a count, -1 below the area (and for not a number), `height` above it. */
    int Row(double count) const;
    /** Grey level of the middle of a column. */
    double Level(int column) const;
};

/** Where the bins of a histogram lie, in grey levels. */
struct Plot_Grid {
    int nb_bins = 0;
    double origin = 0.0;     ///< lower edge of bin 0
    double bin_width = 1.0;  ///< 0 or less: there are no bins to draw
    double Edge(int bin) const { return origin + bin * bin_width; }
};

/** The rows low .. high of one column, both included; may reach outside the area. low > high: none. */
struct Column_Span {
    int low = 0;
    int high = -1;
    bool Is_Empty() const { return low > high; }
    friend bool operator==(const Column_Span&, const Column_Span&) = default;
};
using Column_Spans = std::vector<Column_Span>;

/** Which bins fall on which column of a frame; made once for all curves of a picture. */
class Plot_Columns {
  public:
    Plot_Columns(const Plot_Frame& plot_frame, const Plot_Grid& plot_grid);

    const Plot_Frame& Frame() const { return frame; }
    const Plot_Grid& Grid() const { return grid; }
    /** True when a bin is at least two columns wide, so that a smooth curve shows more than one value of it. */
    bool Is_Magnified() const;
    /** First column of a bin; see Plot_Frame::Column. */
    int Bin_Column(int bin) const { return frame.Column(grid.Edge(bin)); }

    /** The stepped curve: the same pixels as a line along every bin's value from its lower to its upper edge, with
     *  strokes between neighbours and down to 0 at both ends. One span per column.
     *  @param nb values; bins beyond them have no curve
     *  @param first, last bins to draw, others count as without a curve */
    Column_Spans Stepped(const std::uint32_t* values, int nb) const;
    Column_Spans Stepped(const double* values, int nb) const;
    Column_Spans Stepped(const float* values, int nb) const;
    Column_Spans Stepped(const float* values, int first, int last) const;
    /** A smooth curve through the values at column middles, without gaps. The position is in bins, a bin's own value
     * standing at its middle; asked from `first` - 0.5 to `last` + 0.5. */
    Column_Spans Smooth(int first, int last, const std::function<double(double position)>& value) const;

  private:
    template <typename Value>
    Column_Spans Reduce(const Value* values, int first, int last) const;

    Plot_Frame frame;
    Plot_Grid grid;
    std::vector<int> last_edge;  // per column, from -1 on: the last bin edge at or left of it; -1: none
};
