#include "histogram/plot_panel_picture.h"

#include <algorithm>
#include <array>

namespace {

template <typename Value>
using Per_Column = std::array<Value, Panel_Picture::COLUMNS_MAX>;

}  // namespace

void Panel_Picture::Part_Draw(Plot_Pixels part) {
    std::array<int, COLUMNS_MAX + 1> edges;
    const auto nb = static_cast<std::size_t>(part.Width());
    edges[0] = edge;
    for (std::size_t i = 0; i < nb; ++i, ++column) {
        while (edge < scale.Bins().nb_bins && scale.Bin_To_Column(edge + 1) <= column) {
            ++edge;
        }
        edges[i + 1] = edge;
    }
    const Edges known(edges.data(), nb + 1);
    Bands_Draw(part, known);
    for (const Panel_Curve& curve : contents.curves) {
        Curve_Draw(part, known, curve);
    }
}

/** A band is a checker of its colour and black over the full height, with the bars solid. */
void Panel_Picture::Bands_Draw(Plot_Pixels& part, Edges edges) const {
    const auto nb = static_cast<std::size_t>(part.Width());
    const int first_column = column - part.Width();
    Per_Column<std::uint32_t> even{};
    Per_Column<std::uint32_t> odd{};
    Per_Column<std::uint32_t> solid{};
    Per_Column<Column_Span> bars{};
    for (const Panel_Band& band : contents.bands) {
        if (band.first > band.last) {
            continue;
        }
        const int begin = std::max(scale.Bin_To_Column(band.first) - first_column, 0);
        const int end = std::min(scale.Bin_To_Column(band.last + 1) - first_column, part.Width());
        for (int at = begin; at < end; ++at) {
            const auto i = static_cast<std::size_t>(at);
            const bool is_odd = ((first_column + at + contents.phase) & 1) != 0;
            even[i] = is_odd ? band.pixel : 0;
            odd[i] = is_odd ? 0 : band.pixel;
            solid[i] = band.pixel;
            // Of several bins on one column the last one has it.
            bars[i] = {1, scale.Count_To_Height(contents.band_counts[edges[i + 1]])};
        }
    }
    part.Rows_Fill(std::span(even).first(nb), std::span(odd).first(nb));
    part.Spans_Fill(std::span(bars).first(nb), std::span(solid).first(nb));
    part.Rectangle_Blend(0, 0, part.Width(), 1, 0, OPACITY_FULL);
    part.Rectangle_Blend(0, Height() - 1, part.Width(), 1, 0, OPACITY_FULL);
}

void Panel_Picture::Curve_Draw(Plot_Pixels& part, Edges edges, const Panel_Curve& curve) const {
    const auto nb = static_cast<std::size_t>(part.Width());
    const int nb_bins = scale.Bins().nb_bins;
    Per_Column<Column_Span> spans{};
    for (std::size_t i = 0; i < nb; ++i) {
        // A line along a bin ends on the column where the next bin's begins: a column shows every bin that touches it.
        const int from = std::max(edges[i], 0);
        const int to = edges[i + 1];
        if (to >= 0 && from < nb_bins) {
            spans[i] = to == nb_bins ? Last_Rows(curve.counts, from) : Rows(curve.counts, from, to);
        }
    }
    part.Line_Draw(std::span(spans).first(nb), curve.pixel);
}

Column_Span Panel_Picture::Rows(const std::uint32_t* counts, int from, int to) const {
    const auto [least, most] = std::minmax_element(counts + from, counts + to + 1);
    return {scale.Count_To_Height(*least), scale.Count_To_Height(*most)};
}

/** The column where the line ends: its last pixel is drawn only if the line has been there before. */
Column_Span Panel_Picture::Last_Rows(const std::uint32_t* counts, int from) const {
    int before = scale.Bins().nb_bins - 1;
    const int end = scale.Count_To_Height(counts[before]);
    while (before >= from && scale.Count_To_Height(counts[before]) == end) {
        --before;
    }
    if (before < from) {
        return {};
    }
    Column_Span rows = Rows(counts, from, before);
    if (end > rows.high) {
        rows.high = end - 1;
    } else if (end < rows.low) {
        rows.low = end + 1;
    }
    return rows;
}
