// The histogram: what it is made of, its bands, the analysis of its peaks.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cwchar>
#include <span>
#include <tuple>
#include <utility>

#include "workbench/analysis/histogram_numbers.h"
#include "workbench/application.h"
#include "workbench/prompt_dialog.h"
#include "workbench/wide_text.h"

namespace {

constexpr int bins_least = 16;
constexpr int bins_most = 65535;
constexpr int peaks_asked = 8;

struct Range {
    int tag = 0;
    double min = 0.0;
    double max = 0.0;
};
using Ranges = std::array<Range, HISTO_RANGE_MAX>;

/** Hands all ranges to the panel, whose argument list has no array form; it reads the first `count` groups only. */
template <std::size_t... Index>
void Ranges_Set(Tool_Histo& panel, int count, const Ranges& range, std::index_sequence<Index...>) {
    const auto call = [&](auto... values) { panel.Set(count, values...); };
    std::apply(call, std::tuple_cat(std::make_tuple(range[Index].tag, range[Index].min, range[Index].max)...));
}

}  // namespace

void Application::Execute_Histogram(Command command) {
    switch (command) {
        case Command::HISTOGRAM_ALL:
            return Histogram_Selection_Set(0, session.Slice_Nb() - 1, false);
        case Command::HISTOGRAM_SHOWN:
            return Histogram_Selection_Set(slice, slice, true);
        case Command::HISTOGRAM_RANGE:
            return Histogram_Range_Ask();
        case Command::HISTOGRAM_OF_TAG:
            is_histogram_of_tag = !is_histogram_of_tag;
            return Histograms_Refresh();
        case Command::HISTOGRAM_SMOOTHED:
            is_histogram_smoothed = !is_histogram_smoothed;
            return Histograms_Refresh();
        case Command::HISTOGRAM_BINS:
            return Histogram_Bins_Ask();
        case Command::HISTOGRAM_COMPONENT:
            return Histogram_Component_Next();
        case Command::RANGE_OVERLAY:
            is_range_shown = !is_range_shown;
            return image.Refresh();
        case Command::WHEEL_TURNED:
            settings.is_wheel_turned = !settings.is_wheel_turned;
            return Status(settings.is_wheel_turned ? L"Enlarged histogram: the wheel forward zooms in"
                                                   : L"Enlarged histogram: the wheel forward zooms out");
        case Command::ANALYSIS_WINDOW:
            return analysis.Open(window.Handle());
        case Command::FIT_GAUSSIAN:
            analysis.Open(window.Handle());
            return analysis.Fit_Gaussian();
        case Command::FIT_DERIVATIVE: {
            const auto answer = Prompt(window.Handle(), L"Derivative method", L"Largest number of peaks:",
                                       std::to_wstring(peaks_asked));
            const long peaks = answer ? std::wcstol(answer->c_str(), nullptr, 10) : 0;
            if (peaks > 0) {
                analysis.Open(window.Handle());
                analysis.Fit_Derivative(static_cast<int>(std::min(peaks, 100L)));
            }
            return;
        }
        default:
            return analysis.Bands_Hand_On();
    }
}

void Application::Histogram_Select() {
    if (is_histogram_of_shown) {
        histogram_first = histogram_last = slice;
    }
    objects.Select(histogram_first, histogram_last);
}

void Application::Histogram_Selection_Set(int first, int last, bool follows_slice) {
    if (!session.Has_Volume()) {
        return;
    }
    histogram_first = first;
    histogram_last = last;
    is_histogram_of_shown = follows_slice;
    is_histogram_of_checked = false;
    Histogram_Select();
    Announce(UPDATE_SELECTION | UPDATE_LEVEL_2D | UPDATE_HISTO_PAINT);
    Status(Histogram_Text());
}

void Application::Histogram_Range_Ask() {
    const auto answer = Prompt(window.Handle(), L"Histogram of a range of frames",
                               L"First and last frame (1 to " + std::to_wstring(session.Slice_Nb()) + L"):",
                               std::to_wstring(histogram_first + 1) + L"-" + std::to_wstring(histogram_last + 1));
    if (!answer) {
        return;
    }
    wchar_t* rest = nullptr;
    const long first = std::wcstol(answer->c_str(), &rest, 10);
    while (*rest == L' ' || *rest == L'-') {
        ++rest;
    }
    const long last = *rest == 0 ? first : std::wcstol(rest, nullptr, 10);
    if (first < 1 || last < first || last > session.Slice_Nb()) {
        Warn("\"" + Utf8_Of_Wide(*answer) + "\" is no range of frames, for example 80-100.");
        return;
    }
    Histogram_Selection_Set(static_cast<int>(first) - 1, static_cast<int>(last) - 1, false);
}

void Application::Histogram_Bins_Ask() {
    const int now = static_cast<int>(Variable_Number("$GLI_HISTO_BINS_MAX", 0));
    const auto answer =
        Prompt(window.Handle(), L"Bins of the histogram", L"Most bins (16 to 65535):", std::to_wstring(now));
    if (!answer) {
        return;
    }
    Variable_Set("$GLI_HISTO_BINS_MAX", static_cast<double>(std::clamp<long>(std::wcstol(answer->c_str(), nullptr, 10),
                                                                             bins_least, bins_most)));
    Announce(UPDATE_HISTO_DATA | UPDATE_HISTO_PAINT);
}

void Application::Histogram_Component_Next() {
    constexpr const wchar_t* names[] = {
        L"the largest component", L"the three components, cursor by red", L"the three components, cursor by green",
        L"the three components, cursor by blue", L"all components, cursor by luminance"};
    const int next = (static_cast<int>(Variable_Number("$GLI_COLOR_COMPONENT", 0)) + 1) % 5;
    Variable_Set("$GLI_COLOR_COMPONENT", next);
    Announce(UPDATE_COLOR_COMPONENT);
    Status(std::wstring(L"The histogram of colour images shows ") + names[next]);
}

void Application::Histogram_Tag_Refresh() {
    if (is_histogram_of_tag) {
        return Histograms_Refresh();
    }
    Notes_Refresh();
}

void Application::Histograms_Refresh() {
    if (session.Has_Volume()) {
        objects.Histograms_Build(session, is_histogram_of_tag ? variables.Tag_Cur() : -1, is_histogram_smoothed);
        Announce(UPDATE_HISTO_DATA | UPDATE_HISTO_PAINT);
    }
    Notes_Refresh();
}

std::wstring Application::Histogram_Text() const {
    if (histogram_panel.data == nullptr || !histogram_panel.data->Has_Counts()) {
        return L"The histogram is empty";
    }
    const Histo_Record& record = *histogram_panel.data->record;
    // Bins of one stored level stand for that level, wider ones for their middle.
    const bool is_one_level = session.Has_Volume() && record.bin_width <= std::abs(session.Image().slope);
    const Histogram_Numbers numbers = Histogram_Numbers_Of({record.counts, record.nb_bins},
                                                           {record.origin, record.bin_width}, is_one_level ? 0.0 : 0.5);
    wchar_t text[240] = {};
    std::swprintf(text, 240,
                  L"grey: mean %.1f, deviation %.1f, mode %.0f, median %.0f, %.0f to %.0f, 1 %% %.0f, 99 %% %.0f",
                  numbers.mean, numbers.deviation, numbers.mode, numbers.median, numbers.minimum, numbers.maximum,
                  numbers.percentile_1, numbers.percentile_99);
    return text;
}

void Application::Histogram_Scale_Suggest() {
    constexpr float headroom = 1.1F;
    if (histogram_panel.data == nullptr || !histogram_panel.data->Has_Counts()) {
        return;
    }
    const Histo_Record& record = *histogram_panel.data->record;
    const std::span<const std::uint32_t> counts(record.counts, record.nb_bins);
    const auto fullest = std::ranges::max_element(counts);
    if (fullest == counts.end() || *fullest == 0) {
        return;
    }
    // The largest count that does not stand beside the fullest bin.
    std::uint32_t next = 0;
    for (auto bin = counts.begin(); bin != counts.end(); ++bin) {
        next = std::abs(bin - fullest) > 2 ? std::max(next, *bin) : next;
    }
    histogram_base.Scale_Set(headroom * static_cast<float>(next) / static_cast<float>(*fullest));
    histogram_host->Lay_Out();
}

void Application::Histogram_Ranges_Refresh() {
    Ranges ranges = {};
    int count = 0;
    for (int tag = 0; tag < variables.Tag_Nb() && count < HISTO_RANGE_MAX; ++tag) {
        const float low = variables.Threshold_Min()[static_cast<std::size_t>(tag)];
        const float high = variables.Threshold_Max()[static_cast<std::size_t>(tag)];
        if (low > TAG_THRESHOLD_MIN_UNSET || high < TAG_THRESHOLD_MAX_UNSET) {
            ranges[static_cast<std::size_t>(count++)] = {tag, std::max<double>(low, statistics.min),
                                                         std::min<double>(high, statistics.max)};
        }
    }
    Ranges_Set(histogram_panel, count, ranges, std::make_index_sequence<HISTO_RANGE_MAX>());
}

void Application::Peaks_Changed() {
    Announce(UPDATE_HISTO_PAINT);
    const std::size_t found = analysis.Table().rows.size();
    Status(found == 0   ? L"No peaks were found"
           : found == 1 ? L"One peak was found"
                        : std::to_wstring(found) + L" peaks were found");
}

void Application::Bands_Take(const std::vector<Peak_Band>& peaks) {
    const int count = std::min(static_cast<int>(peaks.size()), variables.Tag_Nb() - 1);
    for (int peak = 0; peak < count; ++peak) {
        const auto tag = static_cast<std::size_t>(peak) + 1;  // the background claims no levels
        variables.Threshold_Min()[tag] = static_cast<float>(peaks[static_cast<std::size_t>(peak)].from);
        variables.Threshold_Max()[tag] = static_cast<float>(peaks[static_cast<std::size_t>(peak)].to);
    }
    On_Panel_Request(UPDATE_TAG_LABEL);
    Status(std::to_wstring(count) + L" TAG bands were set from the peaks");
}

void Application::Report_Peaks() {
    report.Line(std::string("histogram_smoothed ") + (is_histogram_smoothed ? "1" : "0"));
    for (const Peak_Row& peak : analysis.Table().rows) {
        char text[160];
        std::snprintf(text, sizeof text, "peak %d %.2f %.1f %.2f %.0f %.4f", peak.number, peak.centre, peak.height,
                      peak.full_width, peak.area, peak.share);
        report.Line(text);
    }
}
