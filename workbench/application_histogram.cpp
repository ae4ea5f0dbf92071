// The histogram: what it is made of, its bands, the analysis of its peaks.
#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <cwchar>
#include <span>
#include <tuple>
#include <utility>

#include "workbench/analysis/histogram_numbers.h"
#include "workbench/application.h"
#include "workbench/bands_dialog.h"
#include "workbench/model/background.h"
#include "workbench/model/number_text.h"
#include "workbench/prompt_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int BINS_LEAST = 16;
constexpr int BINS_MOST = 65535;
constexpr int PEAKS_ASKED = 8;
constexpr float SCALE_FACTOR = 1.6F;     // of one step of the magnification
constexpr int LEVEL_DIGITS = 4;          // of means, deviations and thresholds
constexpr double ONE_LEVEL_MOST = 1.01;  // widths are single precision

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

void Application::Histogram_Of_All() {
    if (session.Has_Volume()) {
        histogram.All_Take(session.Slice_Nb());
        Histogram_Chosen();
    }
}

void Application::Histogram_Of_Shown() {
    if (session.Has_Volume()) {
        histogram.Shown_Take(slice);
        Histogram_Chosen();
    }
}

void Application::Histogram_Of_Tag_Set(bool on) {
    histogram.Of_Tag_Set(on);
    hub.Note(Change::Counting);
}

void Application::Histogram_Smoothed_Set(bool on) {
    histogram.Smoothed_Set(on);
    hub.Note(Change::Counting);
}

void Application::Histogram_Scale_Step(int step) {
    hosted_histogram.Scale_Set(step > 0 ? histogram_panel.scale / SCALE_FACTOR : histogram_panel.scale * SCALE_FACTOR);
    histogram_host->Refresh();
}

void Application::Wheel_Turned_Set(bool on) {
    settings.Now().is_wheel_turned = on;
    Status(on ? L"Enlarged histogram: the wheel forward zooms in" : L"Enlarged histogram: the wheel forward zooms out");
}

void Application::Peaks_Show() {
    analysis.Open(window.Handle());
}

void Application::Peaks_Fit_Gaussian() {
    Peaks_Show();
    analysis.Fit_Gaussian();
}

void Application::Peaks_Fit_Derivative_Ask() {
    const auto answer =
        Prompt(window.Handle(), L"Derivative method", L"Largest number of peaks:", std::to_wstring(PEAKS_ASKED));
    const long peaks = answer ? std::wcstol(answer->c_str(), nullptr, 10) : 0;
    if (peaks > 0) {
        Peaks_Show();
        analysis.Fit_Derivative(static_cast<int>(std::min(peaks, 100L)));
    }
}

void Application::Peaks_To_Bands() {
    if (!analysis.Is_Open()) {
        Peaks_Show();  // the questions belong to it
    }
    analysis.Bands_Hand_On();
}

void Application::Histogram_Select() {
    objects.Select(histogram.Frames().first, histogram.Frames().last);
}

void Application::Histogram_Chosen() {
    Histogram_Select();
    hub.Note(Change::Selection);
    hub.Then([this] { Status(Histogram_Text()); });
}

void Application::Histogram_Range_Ask() {
    const Frame_Range now = histogram.Frames();
    const auto answer = Prompt(window.Handle(), L"Histogram of a range of frames",
                               L"First and last frame (1 to " + std::to_wstring(session.Slice_Nb()) + L"):",
                               std::to_wstring(now.first + 1) + L"-" + std::to_wstring(now.last + 1));
    if (!answer) {
        return;
    }
    const std::optional<Frame_Range> range = Frame_Range_Of(Utf8_Of_Wide(*answer), session.Slice_Nb());
    if (!range) {
        Warn("\"" + Utf8_Of_Wide(*answer) + "\" is no range of frames, for example 80-100.");
        return;
    }
    histogram.Range_Take(*range, session.Slice_Nb());
    Histogram_Chosen();
}

void Application::Histogram_Bins_Ask() {
    const int now = static_cast<int>(Variable_Number("$GLI_HISTO_BINS_MAX", 0));
    const auto answer =
        Prompt(window.Handle(), L"Bins of the histogram", L"Most bins (16 to 65535):", std::to_wstring(now));
    if (!answer) {
        return;
    }
    Variable_Set("$GLI_HISTO_BINS_MAX", static_cast<double>(std::clamp<long>(std::wcstol(answer->c_str(), nullptr, 10),
                                                                             BINS_LEAST, BINS_MOST)));
    hub.Note(Change::Counted);
}

void Application::Histogram_Component_Next() {
    constexpr const wchar_t* names[] = {
        L"the largest component", L"the three components, cursor by red", L"the three components, cursor by green",
        L"the three components, cursor by blue", L"all components, cursor by luminance"};
    const int next = (static_cast<int>(Variable_Number("$GLI_COLOR_COMPONENT", 0)) + 1) % 5;
    Variable_Set("$GLI_COLOR_COMPONENT", next);
    hub.Note(Change::Component);
    Status(std::wstring(L"The histogram of colour images shows ") + names[next]);
}

Counted_Pixels Application::Histogram_Counted() const {
    return {histogram.Is_Of_Tag() ? variables.Tag_Cur() : -1, histogram.Is_Smoothed(), histogram.Left_Out()};
}

std::string Application::Histogram_Source() const {
    if (!session.Has_Volume()) {
        return "no frames";
    }
    std::string source;
    std::vector<int> frames;
    int volume = -1;
    const auto volume_end = [&] {
        if (!frames.empty()) {
            source += (source.empty() ? "" : "; ") + Frames_Text(frames);
            source += volume != volumes.Current() ? " of " + volumes.Facts(volume).title : "";
        }
        frames.clear();
    };
    for (const Frame_Place& place : objects.Selected()) {
        if (place.volume != volume) {
            volume_end();
            volume = place.volume;
        }
        frames.push_back(place.slice + 1);
    }
    volume_end();
    source = source.empty() ? "no frames" : source;
    return source + histogram.Pixels_Text(variables.Tag_Cur());
}

void Application::Background_Leave_Out(bool on) {
    if (on && !histogram.Background() && session.Has_Volume()) {
        histogram.Background_Set(Background_Threshold(session.Image()));
    }
    const std::optional<double> background = histogram.Background();
    if (on && !background) {
        return Status(L"This image has no background to leave out");
    }
    histogram.Background_Leave_Out(on);
    hub.Note(Change::Counting);
    hub.Then([this] { Histogram_Scale_Suggest(); });
    Status(on ? L"What surrounds the image, up to grey " + Wide_Of_Utf8(Number_Text(*background, LEVEL_DIGITS)) +
                    L", is left out"
              : L"All pixels are counted");
}

void Application::Background_Ask() {
    const std::optional<double> proposed = session.Has_Volume() ? Background_Threshold(session.Image()) : std::nullopt;
    if (!proposed) {
        return Status(L"This image has no background to leave out");
    }
    const std::wstring otsu = Wide_Of_Utf8(Number_Text(*proposed, LEVEL_DIGITS));
    const auto answer =
        Prompt(window.Handle(), L"Background", L"Largest grey value of the background (Otsu's method: " + otsu + L"):",
               Wide_Of_Utf8(Number_Text(histogram.Background().value_or(*proposed), LEVEL_DIGITS)));
    if (!answer) {
        return;
    }
    wchar_t* end = nullptr;
    const double value = answer->empty() ? *proposed : std::wcstod(answer->c_str(), &end);
    if ((end != nullptr && (*end != 0 || end == answer->c_str())) || !std::isfinite(value)) {
        Warn("\"" + Utf8_Of_Wide(*answer) + "\" is no number.");
        return;
    }
    histogram.Background_Set(value);
    Background_Leave_Out(true);
}

std::wstring Application::Histogram_Text() const {
    if (histogram_panel.data == nullptr || !histogram_panel.data->Has_Counts()) {
        return L"The histogram is empty";
    }
    const Histo_Record& record = *histogram_panel.data->record;
    const double width = Grey_Of_Panel(record.bin_width);
    // Bins of one stored level stand for that level, wider ones for their middle.
    const bool is_one_level = session.Has_Volume() && width <= std::abs(session.Image().slope) * ONE_LEVEL_MOST;
    const Histogram_Numbers numbers = Histogram_Numbers_Of(
        {record.counts, record.nb_bins}, {Grey_Of_Panel(record.origin), width}, is_one_level ? 0.0 : 0.5);
    const auto level = [&](double value) { return Number_Text_In_Steps(value, width); };
    return Wide_Of_Utf8("grey: mean " + Number_Text(numbers.mean, LEVEL_DIGITS) + ", deviation " +
                        Number_Text(numbers.deviation, LEVEL_DIGITS) + ", mode " + level(numbers.mode) + ", median " +
                        level(numbers.median) + ", " + level(numbers.minimum) + " to " + level(numbers.maximum) +
                        ", 1 % " + level(numbers.percentile_1) + ", 99 % " + level(numbers.percentile_99));
}

void Application::Histogram_Scale_Suggest() {
    if (hosted_histogram.Scale_Suggest()) {
        histogram_host->Lay_Out();
    }
}

void Application::Histogram_Ranges_Refresh() {
    Ranges ranges = {};
    int count = 0;
    for (int tag = 0; tag < variables.Tag_Nb() && count < HISTO_RANGE_MAX; ++tag) {
        const float low = variables.Threshold_Min()[static_cast<std::size_t>(tag)];
        const float high = variables.Threshold_Max()[static_cast<std::size_t>(tag)];
        if (low > TAG_THRESHOLD_MIN_UNSET || high < TAG_THRESHOLD_MAX_UNSET) {
            ranges[static_cast<std::size_t>(count++)] = {tag,
                                                         std::max<double>(low, panel_scale.To_Panel(statistics.min)),
                                                         std::min<double>(high, panel_scale.To_Panel(statistics.max))};
        }
    }
    Ranges_Set(histogram_panel, count, ranges, std::make_index_sequence<HISTO_RANGE_MAX>());
}

void Application::Peaks_Changed() {
    hub.Note(Change::Peaks);
    const std::size_t found = analysis.Table().rows.size();
    Status(found == 0   ? L"No peaks were found"
           : found == 1 ? L"One peak was found"
                        : std::to_wstring(found) + L" peaks were found");
}

Claimed_Levels Application::Claimed(int tag) const {
    const float low = variables.Threshold_Min()[static_cast<std::size_t>(tag)];
    const float high = variables.Threshold_Max()[static_cast<std::size_t>(tag)];
    return {low > TAG_THRESHOLD_MIN_UNSET || high<TAG_THRESHOLD_MAX_UNSET, low> TAG_THRESHOLD_MIN_UNSET
                ? Grey_Of_Panel(low)
                : statistics.min,
            high < TAG_THRESHOLD_MAX_UNSET ? Grey_Of_Panel(high) : statistics.max};
}

void Application::Bands_Take(const std::vector<Peak_Row>& peaks) {
    int of_background = -1;
    const bool is_background_counted = !histogram.Left_Out();
    // No frame may be selected any more since the peaks were found.
    if (is_background_counted && histogram_panel.data != nullptr && histogram_panel.data->Has_Counts()) {
        const Histo_Record& record = *histogram_panel.data->record;
        const std::span<const std::uint32_t> counts(record.counts, record.nb_bins);
        const auto fullest = static_cast<float>(std::ranges::max_element(counts) - counts.begin());
        of_background = Background_Peak(peaks, Grey_Of_Panel((fullest + 0.5F) * record.bin_width + record.origin));
    }
    Band_Plan plan(peaks, of_background, variables.Tag_Nb());
    const Tag_Namer namer = {[this](int tag) { return Utf8_Of_Wide(Wide_Of_Panel(variables.Tag_Name(tag).c_str())); },
                             [this](int tag) { return Claimed(tag); }};
    if (!Bands_Ask(analysis.Window(), plan, namer)) {
        return Status(L"No TAG band was changed");
    }
    int count = 0;
    for (const Band_Choice& choice : plan.Choices()) {
        if (choice.tag > 0) {
            const auto tag = static_cast<std::size_t>(choice.tag);
            variables.Threshold_Min()[tag] = Panel_Of_Grey(choice.from);
            variables.Threshold_Max()[tag] = Panel_Of_Grey(choice.to);
            ++count;
        }
    }
    labels.Note();
    Status(count == 1 ? L"One TAG band was set from the peaks"
                      : std::to_wstring(count) + L" TAG bands were set from the peaks");
}

}  // namespace workbench
