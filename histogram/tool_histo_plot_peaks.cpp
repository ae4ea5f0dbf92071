#include "histogram/tool_histo_plot_peaks.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <iterator>

#include "histogram/histo_colors.h"
#include "histogram/peak_labels.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_peak.h"

namespace {

/** Hues that neighbouring peaks take in turn: none is the colour of a curve. */
constexpr std::array<std::uint32_t, 6> PEAK_PIXELS = {0x4FC3F7, 0xFF8A65, 0x81C784, 0xBA8CF0, 0xF0A0C0, 0x4DD0B8};
constexpr std::uint32_t COMPOSITE_PIXEL = 0x4FC3F7;
constexpr std::uint32_t FILL_OPACITY = 90;    // of 256
constexpr std::uint32_t PLATE_OPACITY = 208;  // of 256
constexpr int PLATE_EDGE = 2;                 // pixels beside a label's text
constexpr double HALF_BIN = 0.5;

std::uint32_t Peak_Pixel(std::size_t index) {
    return PEAK_PIXELS[index % PEAK_PIXELS.size()];
}

int Values_Nb(const Histo_Peak& peak, const Plot_Columns& columns) {
    return peak.curve != nullptr ? std::min<int>(peak.nb_pts, columns.Grid().nb_bins) : 0;
}

/** A label over a position, in bins; a bin's value stands at its middle.
 *  Contract: it names the centre without that half bin, as the exported file does, so that users find the one in the
 *  other. */
Histo_Plot_Peaks::Label Label_At(const Plot_Columns& columns, double centre, double top) {
    const Plot_Grid& grid = columns.Grid();
    return {columns.Frame().Column(grid.origin + (centre + HALF_BIN) * grid.bin_width), columns.Frame().Row(top),
            grid.origin + centre * grid.bin_width};
}

/** The curve that segments cut: the smoothed one, else the counts. */
double Segmented_Value(const Tool_Histo& panel, int bin) {
    const Histo_Data& data = *panel.data;
    if (data.filtered != nullptr && bin < data.curve_nb) {
        return data.filtered[bin];
    }
    return static_cast<double>(Histo_Band_Counts(*data.record, panel.color_component)[bin]);
}

}  // namespace

Histo_Plot_Peaks::Histo_Plot_Peaks(const Tool_Histo& panel, const Plot_Columns& columns, int display) {
    const Histo_Peak* first = panel.data->peak_first;
    if (first == nullptr || display == HISTO_PEAK_OFF || columns.Grid().nb_bins <= 0) {
        return;
    }
    if (first->type == PEAK_SEGMENT) {
        Segments_Add(panel, columns);
        return;
    }
    if (display == HISTO_PEAK_COMPOSITE) {
        Sum_Add(panel, columns);
    } else {
        Fits_Add(panel, columns);
    }
    const int nb_bins = columns.Grid().nb_bins;
    for (const Histo_Peak* peak = first; peak != nullptr; peak = peak->next) {
        const double centre = (*peak->param)[PEAK_CENTRE];
        if (Values_Nb(*peak, columns) > 0 && centre >= -HALF_BIN && centre <= nb_bins - HALF_BIN) {
            labels.push_back(Label_At(columns, centre, (*peak->param)[PEAK_AMPLITUDE]));
        }
    }
}

void Histo_Plot_Peaks::Segments_Add(const Tool_Histo& panel, const Plot_Columns& columns) {
    const int nb_bins = columns.Grid().nb_bins;
    const Plot_Frame& frame = columns.Frame();
    std::size_t index = 0;
    for (const Histo_Peak* peak = panel.data->peak_first; peak != nullptr; peak = peak->next) {
        const int first = std::max(static_cast<int>((*peak->param)[SEGMENT_FIRST]), 0);
        const int last = std::min(static_cast<int>((*peak->param)[SEGMENT_LAST]), nb_bins - 1);
        const std::size_t color = index++;
        if (first > last) {
            continue;
        }
        // Columns of one segment only: the next one begins where this one ends.
        const int begin = std::max(columns.Bin_Column(first), 0);
        const int end = std::min(columns.Bin_Column(last + 1), frame.width);
        const auto column_nb = static_cast<std::size_t>(std::max(end - begin, 0));
        curves.push_back({Column_Spans(column_nb, {0, frame.height - 1}), begin, Peak_Pixel(color), Look::Band});
        const double centre = (*peak->param)[PEAK_CENTRE];
        const int bin = std::clamp(static_cast<int>(centre), 0, nb_bins - 1);
        labels.push_back(Label_At(columns, centre, Segmented_Value(panel, bin)));
    }
}

void Histo_Plot_Peaks::Curve_Add(Column_Spans spans, std::uint32_t pixel, int base, Look look) {
    // Where a fit has run out into 0 there is no peak to draw.
    for (Column_Span& span : spans) {
        if (span.high <= base) {
            span = {};
        }
    }
    const auto is_seen = [](const Column_Span& span) { return !span.Is_Empty(); };
    const auto first = std::ranges::find_if(spans, is_seen);
    const auto end = std::find_if(spans.rbegin(), std::make_reverse_iterator(first), is_seen).base();
    curves.push_back({Column_Spans(first, end), static_cast<int>(first - spans.begin()), pixel, look});
}

void Histo_Plot_Peaks::Fits_Add(const Tool_Histo& panel, const Plot_Columns& columns) {
    std::size_t index = 0;
    for (const Histo_Peak* peak = panel.data->peak_first; peak != nullptr; peak = peak->next) {
        const std::size_t color = index++;
        const int nb = Values_Nb(*peak, columns);
        const Bin_Span support = Peak_Support(*peak, nb);
        if (nb <= 0 || support.first > support.last) {
            continue;
        }
        const bool smooth = columns.Is_Magnified() && peak->fct_value != nullptr;
        const auto value = [peak](double position) { return peak->fct_value(peak->type, position, *peak->param); };
        Curve_Add(smooth ? columns.Smooth(support.first, support.last, value)
                         : columns.Stepped(peak->curve, support.first, support.last),
                  Peak_Pixel(color), columns.Frame().Row(0.0), Look::Filled);
    }
}

void Histo_Plot_Peaks::Sum_Add(const Tool_Histo& panel, const Plot_Columns& columns) {
    const int nb_bins = columns.Grid().nb_bins;
    const Histo_Peak* first = panel.data->peak_first;
    if (columns.Is_Magnified()) {
        const auto sum = [&](double position) {
            double value = 0.0;
            for (const Histo_Peak* peak = first; peak != nullptr; peak = peak->next) {
                if (peak->fct_value != nullptr && position < Values_Nb(*peak, columns)) {
                    value += peak->fct_value(peak->type, position, *peak->param);
                }
            }
            return value;
        };
        Curve_Add(columns.Smooth(0, nb_bins - 1, sum), COMPOSITE_PIXEL, columns.Frame().Row(0.0), Look::Outline);
        return;
    }
    std::vector<float> sum(static_cast<std::size_t>(nb_bins), 0.0F);
    for (const Histo_Peak* peak = first; peak != nullptr; peak = peak->next) {
        const Bin_Span support = Peak_Support(*peak, Values_Nb(*peak, columns));
        for (int bin = support.first; bin <= support.last; ++bin) {
            sum[static_cast<std::size_t>(bin)] += peak->curve[bin];
        }
    }
    Curve_Add(columns.Stepped(sum.data(), nb_bins), COMPOSITE_PIXEL, columns.Frame().Row(0.0), Look::Outline);
}

void Histo_Plot_Window_Fill(std::vector<Plot_Layer>& layers, const Histo_Plot_Peaks& peaks, const Plot_Frame& frame,
                            int base) {
    for (const Histo_Plot_Peaks::Curve& curve : peaks.Curves()) {
        if (curve.look == Histo_Plot_Peaks::Look::Outline) {
            continue;
        }
        Column_Spans filled = curve.spans;
        for (Column_Span& span : filled) {
            if (curve.look == Histo_Plot_Peaks::Look::Filled && !span.Is_Empty()) {
                span = {base, span.high};
            }
        }
        layers.push_back({Span_Blocks(filled, frame.width, frame.height, curve.begin), curve.pixel, FILL_OPACITY});
    }
}

void Histo_Plot_Window_Curve(std::vector<Plot_Layer>& layers, const Histo_Plot_Peaks& peaks, const Plot_Frame& frame,
                             int thickness) {
    for (const Histo_Plot_Peaks::Curve& curve : peaks.Curves()) {
        if (curve.look == Histo_Plot_Peaks::Look::Band) {
            continue;
        }
        layers.push_back(
            {Span_Blocks(Thick_Spans(curve.spans, thickness), frame.width, frame.height, curve.begin), curve.pixel});
    }
}

void Histo_Plot_Peak_Label(HDC dc, Plot_Pixels& picture, const Histo_Plot_Peaks& peaks, std::uint32_t ground,
                           std::uint32_t text) {
    constexpr int text_max = 340;  // "%.0f" of the largest number
    std::vector<std::array<char, text_max>> texts(peaks.Labels().size());
    std::vector<Peak_Label_Request> requests;
    for (std::size_t i = 0; i < texts.size(); ++i) {
        const Histo_Plot_Peaks::Label& label = peaks.Labels()[i];
        const int length = std::snprintf(texts[i].data(), texts[i].size(), "%.0f", label.centre);
        SIZE size = {};
        ::GetTextExtentPoint32A(dc, texts[i].data(), length, &size);
        requests.push_back({label.column, label.row, static_cast<int>(size.cx), static_cast<int>(size.cy)});
    }
    const auto places = Peak_Labels_Place(requests, picture.Width(), picture.Height());
    // All plates first, so that GDI and the picture's own pixels take turns once.
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (places[i].shown) {
            const Peak_Label_Request& request = requests[i];
            picture.Rectangle_Blend(places[i].left - PLATE_EDGE, places[i].bottom, request.width + 2 * PLATE_EDGE,
                                    request.height, ground, PLATE_OPACITY);
            // A label that moved up keeps a line to its peak.
            const int reach = places[i].bottom - request.row - PEAK_LABEL_GAP;
            if (reach > 0) {
                picture.Rectangle_Blend(request.column, request.row + 1, 1, places[i].bottom - request.row - 1, text,
                                        PLATE_OPACITY);
            }
        }
    }
    ::SetBkMode(dc, TRANSPARENT);
    ::SetTextColor(dc, RGB(text >> 16 & 0xFF, text >> 8 & 0xFF, text & 0xFF));
    ::SetTextAlign(dc, TA_LEFT | TA_TOP);
    for (std::size_t i = 0; i < places.size(); ++i) {
        if (places[i].shown) {
            const int top = picture.Height() - places[i].bottom - requests[i].height;
            ::TextOutA(dc, places[i].left, top, texts[i].data(),
                       static_cast<int>(std::char_traits<char>::length(texts[i].data())));
        }
    }
}
