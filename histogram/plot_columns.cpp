#include "histogram/plot_columns.h"

#include <algorithm>
#include <cmath>

namespace {

bool Increasing(double start, double end) {
    return std::isfinite(start) && std::isfinite(end) && start < end;
}

/** The nearest pixel, limited to -1 .. pixels before it becomes an integer. */
int Pixel_Of(double value, double start, double end, int pixels) {
    const double at = (value - start) / (end - start) * pixels + 0.5;
    if (!(at >= 0.0)) {
        return -1;
    }
    return at >= pixels ? pixels : static_cast<int>(at);
}

}  // namespace

bool Plot_Frame::Is_Empty() const {
    return width <= 0 || height <= 0 || !Increasing(x_start, x_end) || !Increasing(y_start, y_end);
}

int Plot_Frame::Column(double level) const {
    return Pixel_Of(level, x_start, x_end, width);
}

int Plot_Frame::Row(double count) const {
    return Pixel_Of(count, y_start, y_end, height);
}

double Plot_Frame::Level(int column) const {
    return x_start + (x_end - x_start) * column / width;
}

Plot_Columns::Plot_Columns(const Plot_Frame& plot_frame, const Plot_Grid& plot_grid)
    : frame(plot_frame), grid(plot_grid) {
    if (frame.Is_Empty() || !(grid.bin_width > 0.0)) {
        grid.nb_bins = 0;
    }
    last_edge.assign(static_cast<std::size_t>(std::max(frame.width, 0)) + 1, -1);
    if (grid.nb_bins <= 0) {
        return;
    }
    for (int edge = 0; edge <= grid.nb_bins; ++edge) {
        const int column = Bin_Column(edge);
        if (column >= frame.width) {
            break;
        }
        last_edge[static_cast<std::size_t>(column + 1)] = edge;
    }
    for (std::size_t i = 1; i < last_edge.size(); ++i) {
        last_edge[i] = std::max(last_edge[i], last_edge[i - 1]);
    }
}

bool Plot_Columns::Is_Magnified() const {
    return grid.nb_bins > 0 && grid.bin_width / (frame.x_end - frame.x_start) * frame.width >= 2.0;
}

template <typename Value>
Column_Spans Plot_Columns::Reduce(const Value* values, int first, int last) const {
    Column_Spans spans(last_edge.size() - 1);
    last = std::min(last, grid.nb_bins - 1);
    if (values == nullptr || first > last) {
        return spans;
    }
    // Edges rise from column to column: those of the bins lie in a row.
    const auto begin = std::ranges::lower_bound(last_edge, first);
    const auto end = std::ranges::upper_bound(last_edge, last);
    const auto column_begin = static_cast<std::size_t>(std::max<std::ptrdiff_t>(begin - last_edge.begin() - 1, 0));
    const auto column_end = std::min(static_cast<std::size_t>(end - last_edge.begin()), spans.size());
    for (std::size_t column = column_begin; column < column_end; ++column) {
        // A line along a bin ends on the column where the next bin's begins: a column shows every bin that touches it.
        const int from = last_edge[column];
        const int to = last_edge[column + 1];
        const bool with_end = from < first || to > last;
        const int bin_from = std::max(from, first);
        const int bin_to = std::min(to, last);
        Value least = values[bin_from];
        Value most = least;
        for (int bin = bin_from + 1; bin <= bin_to; ++bin) {
            least = std::min(least, values[bin]);
            most = std::max(most, values[bin]);
        }
        if (with_end) {
            least = std::min(least, Value{});
            most = std::max(most, Value{});
        }
        spans[column] = {frame.Row(static_cast<double>(least)), frame.Row(static_cast<double>(most))};
    }
    return spans;
}

Column_Spans Plot_Columns::Stepped(const std::uint32_t* values, int nb) const {
    return Reduce(values, 0, nb - 1);
}

Column_Spans Plot_Columns::Stepped(const double* values, int nb) const {
    return Reduce(values, 0, nb - 1);
}

Column_Spans Plot_Columns::Stepped(const float* values, int nb) const {
    return Reduce(values, 0, nb - 1);
}

Column_Spans Plot_Columns::Stepped(const float* values, int first, int last) const {
    return Reduce(values, std::max(first, 0), last);
}

Column_Spans Plot_Columns::Smooth(int first, int last, const std::function<double(double position)>& value) const {
    Column_Spans spans(last_edge.size() - 1);
    last = std::min(last, grid.nb_bins - 1);
    first = std::max(first, 0);
    if (first > last) {
        return spans;
    }
    bool begun = false;
    int before = 0;
    const int from = std::max(Bin_Column(first), 0);
    const int to = std::min(Bin_Column(last + 1), frame.width - 1);
    for (int column = from; column <= to; ++column) {
        constexpr double half_bin = 0.5;
        const double bin = (frame.Level(column) - grid.origin) / grid.bin_width - half_bin;
        const int row = frame.Row(value(std::clamp(bin, first - half_bin, last + half_bin)));
        Column_Span& span = spans[static_cast<std::size_t>(column)];
        span = {row, row};
        if (begun && before + 1 < row) {
            span.low = before + 1;
        } else if (begun && before - 1 > row) {
            span.high = before - 1;
        }
        before = row;
        begun = true;
    }
    return spans;
}
