#include "workbench/histogram_desk.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>
#include <span>
#include <tuple>
#include <utility>

#include "workbench/analysis/histogram_numbers.h"
#include "workbench/bands_dialog.h"
#include "workbench/model/background.h"
#include "workbench/model/number_text.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int BINS_LEAST = 16;
constexpr int BINS_MOST = 65535;
constexpr int PEAKS_ASKED = 8;
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

Histogram_Desk::Histogram_Desk(Histogram_Parts parts)
    : of(std::move(parts)),
      exports(of.work, of.variables, of.panel, of.dialogs, [this] { return Source_Text(); }),
      analysis(of.look, Analysis_Services()) {}

Analysis_Host Histogram_Desk::Analysis_Services() {
    Analysis_Host host;
    host.panel = [this] { return &of.panel; };
    host.peaks_changed = [this] { Peaks_Changed(); };
    host.bands_take = [this](const std::vector<Peak_Row>& peaks) { Bands_Take(peaks); };
    host.tell = [this](const wchar_t* text) { of.dialogs.Tell(Utf8_Of_Wide(text)); };
    host.source = [this] { return Source_Text(); };
    host.grey_unit = [this] { return of.work.panel_scale.To_Grey(1.0); };
    host.table_save = [this](const std::string& text) { exports.Table_Save(analysis.Window(), text); };
    host.table_source = [this] { return exports.Table_Source(); };
    return host;
}

void Histogram_Desk::All_Select() {
    control.All_Take(of.work.session.Slice_Nb());
    Select();
}

void Histogram_Desk::Images_Take() {
    control.Plain_Take();
    control.All_Take(of.work.session.Slice_Nb());
    of.scale_release();
    Select();
}

void Histogram_Desk::Volume_Leave() {
    if (control.Plain_Take()) {
        of.objects.Histograms_Build(of.work.session, {});
    }
}

void Histogram_Desk::Derive(Told_Changes& told) {
    const bool has_volume = of.work.session.Has_Volume();
    if (told.changes.Has_Any({Change::Bands, Change::Tag_Nb, Change::Volume, Change::Opened})) {
        Ranges_Refresh();
    }
    if (told.changes.Has(Change::Position) && has_volume && control.Slice_Follow(of.work.slice)) {
        Select();
        Add_To(told, Change::Selection);
    }
    const bool is_other_tag = control.Is_Of_Tag() && told.changes.Has_Any({Change::Pixels, Change::Current_Tag});
    if (has_volume && (is_other_tag || told.changes.Has(Change::Counting))) {
        if (!of.objects.Histograms_Build(of.work.session, Counted())) {
            of.dialogs.Warn("There is not enough memory for the histogram.");
        }
        Add_To(told, Change::Counted);
    }
}

std::string Histogram_Desk::Note() const {
    std::string counted = Source_Text();
    if (control.Source_Now() == Histogram_Frames::Checked) {
        counted = "checked frames" + counted.substr(std::min(counted.find(", TAG"), counted.size()));
    }
    const std::string unit = of.work.panel_scale.Text();
    const Counting_State counting = of.objects.Counting();
    counted += counting == Counting_State::Coming ? ", being counted" : "";
    counted += counting == Counting_State::Failed ? ", not counted for want of memory" : "";
    return of.work.session.Has_Volume() ? counted + (unit.empty() ? "" : "   levels " + unit) : "";
}

void Histogram_Desk::Histogram_Of_All() {
    if (of.work.session.Has_Volume()) {
        control.All_Take(of.work.session.Slice_Nb());
        Chosen();
    }
}

void Histogram_Desk::Histogram_Of_Shown() {
    if (of.work.session.Has_Volume()) {
        control.Shown_Take(of.work.slice);
        Chosen();
    }
}

void Histogram_Desk::Histogram_Of_Tag_Set(bool on) {
    control.Of_Tag_Set(on);
    of.work.hub.Note(Change::Counting);
}

void Histogram_Desk::Histogram_Smoothed_Set(bool on) {
    control.Smoothed_Set(on);
    of.work.hub.Note(Change::Counting);
}

void Histogram_Desk::Wheel_Turned_Set(bool on) {
    of.settings.Now().is_wheel_turned = on;
    of.dialogs.Tell(on ? "Enlarged histogram: the wheel forward zooms in"
                       : "Enlarged histogram: the wheel forward zooms out");
}

void Histogram_Desk::Peaks_Show() {
    analysis.Open(of.window());
}

void Histogram_Desk::Peaks_Fit_Gaussian() {
    Peaks_Show();
    analysis.Fit_Gaussian();
}

void Histogram_Desk::Peaks_Fit_Derivative_Ask() {
    const auto answer =
        of.dialogs.Text_Ask("Derivative method", "Largest number of peaks:", std::to_string(PEAKS_ASKED));
    const long peaks = answer ? std::strtol(answer->c_str(), nullptr, 10) : 0;
    if (peaks > 0) {
        Peaks_Show();
        analysis.Fit_Derivative(static_cast<int>(std::min(peaks, 100L)));
    }
}

void Histogram_Desk::Peaks_To_Bands() {
    if (!analysis.Is_Open()) {
        Peaks_Show();  // the questions belong to it
    }
    analysis.Bands_Hand_On();
}

void Histogram_Desk::Select() {
    of.objects.Select(control.Frames().first, control.Frames().last);
}

void Histogram_Desk::Chosen() {
    Select();
    of.work.hub.Note(Change::Selection);
    of.work.hub.Then([this] { of.dialogs.Tell(Numbers_Text()); });
}

void Histogram_Desk::Tag_Take(int first, int last) {
    control.Range_Take({first, last}, of.work.session.Slice_Nb());
    Histogram_Of_Tag_Set(true);
    Chosen();
}

void Histogram_Desk::Histogram_Range_Ask() {
    const Frame_Range now = control.Frames();
    const auto answer =
        of.dialogs.Text_Ask("Histogram of a range of frames",
                            "First and last frame (1 to " + std::to_string(of.work.session.Slice_Nb()) + "):",
                            std::to_string(now.first + 1) + "-" + std::to_string(now.last + 1));
    if (!answer) {
        return;
    }
    const std::optional<Frame_Range> range = Frame_Range_Of(*answer, of.work.session.Slice_Nb());
    if (!range) {
        of.dialogs.Warn("\"" + *answer + "\" is no range of frames, for example 80-100.");
        return;
    }
    control.Range_Take(*range, of.work.session.Slice_Nb());
    Chosen();
}

void Histogram_Desk::Histogram_Bins_Ask() {
    const int now = static_cast<int>(Variable_Number("$GLI_HISTO_BINS_MAX", 0));
    const auto answer = of.dialogs.Text_Ask("Bins of the histogram", "Most bins (16 to 65535):", std::to_string(now));
    if (!answer) {
        return;
    }
    Variable_Set("$GLI_HISTO_BINS_MAX", static_cast<double>(std::clamp<long>(std::strtol(answer->c_str(), nullptr, 10),
                                                                             BINS_LEAST, BINS_MOST)));
    of.work.hub.Note(Change::Counted);
}

void Histogram_Desk::Histogram_Component_Next() {
    constexpr const char* names[] = {"the largest component", "the three components, cursor by red",
                                     "the three components, cursor by green", "the three components, cursor by blue",
                                     "all components, cursor by luminance"};
    const int next = (static_cast<int>(Variable_Number("$GLI_COLOR_COMPONENT", 0)) + 1) % 5;
    Variable_Set("$GLI_COLOR_COMPONENT", next);
    of.work.hub.Note(Change::Component);
    of.dialogs.Tell(std::string("The histogram of colour images shows ") + names[next]);
}

Counted_Pixels Histogram_Desk::Counted() const {
    return {control.Is_Of_Tag() ? of.variables.Tag_Cur() : -1, control.Is_Smoothed(), control.Left_Out()};
}

std::string Histogram_Desk::Source_Text() const {
    if (!of.work.session.Has_Volume()) {
        return "no frames";
    }
    std::vector<int> frames;
    for (const Frame_Place& place : of.objects.Selected()) {
        if (place.volume == of.work.volumes.Current()) {  // the panel counts frames of what the window shows
            frames.push_back(place.slice + 1);
        }
    }
    const std::string source = frames.empty() ? "no frames" : Frames_Text(frames);
    return source + control.Pixels_Text(of.variables.Tag_Cur());
}

void Histogram_Desk::Background_Leave_Out(bool on) {
    if (on && !control.Background() && of.work.session.Has_Volume()) {
        control.Background_Set(Background_Threshold(of.work.session.Image()));
    }
    const std::optional<double> background = control.Background();
    if (on && !background) {
        return of.dialogs.Tell("This image has no background to leave out");
    }
    control.Background_Leave_Out(on);
    of.work.hub.Note(Change::Counting);
    of.work.hub.Then([this] { of.scale_suggest(); });
    of.dialogs.Tell(on ? "What surrounds the image, up to grey " + Number_Text(*background, LEVEL_DIGITS) +
                             ", is left out"
                       : std::string("All pixels are counted"));
}

void Histogram_Desk::Background_Ask() {
    const std::optional<double> proposed =
        of.work.session.Has_Volume() ? Background_Threshold(of.work.session.Image()) : std::nullopt;
    if (!proposed) {
        return of.dialogs.Tell("This image has no background to leave out");
    }
    const std::string otsu = Number_Text(*proposed, LEVEL_DIGITS);
    const auto answer =
        of.dialogs.Text_Ask("Background", "Largest grey value of the background (Otsu's method: " + otsu + "):",
                            Number_Text(control.Background().value_or(*proposed), LEVEL_DIGITS));
    if (!answer) {
        return;
    }
    char* end = nullptr;
    const double value = answer->empty() ? *proposed : std::strtod(answer->c_str(), &end);
    if ((end != nullptr && (*end != 0 || end == answer->c_str())) || !std::isfinite(value)) {
        of.dialogs.Warn("\"" + *answer + "\" is no number.");
        return;
    }
    control.Background_Set(value);
    Background_Leave_Out(true);
}

std::string Histogram_Desk::Numbers_Text() const {
    if (of.panel.data == nullptr || !of.panel.data->Has_Counts()) {
        switch (of.objects.Counting()) {
            case Counting_State::Coming:
            case Counting_State::Waiting:
                return "The histogram is still being counted";
            case Counting_State::Failed:
                return "The histogram was not counted for want of memory";
            case Counting_State::Done:
                return "The histogram is empty";
        }
    }
    const Histo_Record& record = *of.panel.data->record;
    const double width = of.labels.Grey_Of(record.bin_width);
    // Bins of one stored level stand for that level, wider ones for their middle.
    const bool is_one_level =
        of.work.session.Has_Volume() && width <= std::abs(of.work.session.Image().slope) * ONE_LEVEL_MOST;
    const Histogram_Numbers numbers = Histogram_Numbers_Of(
        {record.counts, record.nb_bins}, {of.labels.Grey_Of(record.origin), width}, is_one_level ? 0.0 : 0.5);
    const auto level = [&](double value) { return Number_Text_In_Steps(value, width); };
    return "grey: mean " + Number_Text(numbers.mean, LEVEL_DIGITS) + ", deviation " +
           Number_Text(numbers.deviation, LEVEL_DIGITS) + ", mode " + level(numbers.mode) + ", median " +
           level(numbers.median) + ", " + level(numbers.minimum) + " to " + level(numbers.maximum) + ", 1 % " +
           level(numbers.percentile_1) + ", 99 % " + level(numbers.percentile_99);
}

void Histogram_Desk::Ranges_Refresh() {
    Ranges ranges = {};
    int count = 0;
    for (int tag = 0; tag < of.variables.Tag_Nb() && count < HISTO_RANGE_MAX; ++tag) {
        const float low = of.variables.Threshold_Min()[static_cast<std::size_t>(tag)];
        const float high = of.variables.Threshold_Max()[static_cast<std::size_t>(tag)];
        if (low > TAG_THRESHOLD_MIN_UNSET || high < TAG_THRESHOLD_MAX_UNSET) {
            ranges[static_cast<std::size_t>(count++)] = {
                tag, std::max<double>(low, of.work.panel_scale.To_Panel(of.work.statistics.min)),
                std::min<double>(high, of.work.panel_scale.To_Panel(of.work.statistics.max))};
        }
    }
    Ranges_Set(of.panel, count, ranges, std::make_index_sequence<HISTO_RANGE_MAX>());
}

void Histogram_Desk::Peaks_Changed() {
    of.work.hub.Note(Change::Peaks);
    const std::size_t found = analysis.Table().rows.size();
    of.dialogs.Tell(found == 0   ? "No peaks were found"
                    : found == 1 ? "One peak was found"
                                 : std::to_string(found) + " peaks were found");
}

Claimed_Levels Histogram_Desk::Claimed(int tag) const {
    const Claimed_Band band = of.labels.Band_Of(tag);
    return {band.Is_Set(), band.low.value_or(of.work.statistics.min), band.high.value_or(of.work.statistics.max)};
}

int Histogram_Desk::Peak_Of_Background(const std::vector<Peak_Row>& peaks) const {
    const Histo_Data* const data = of.panel.data.get();
    // No frame may be selected any more since the peaks were found.
    if (control.Left_Out() || data == nullptr || !data->Has_Counts()) {
        return -1;
    }
    const Histo_Record& record = *data->record;
    const std::span<const std::uint32_t> counts(record.counts, record.nb_bins);
    const auto fullest = static_cast<float>(std::ranges::max_element(counts) - counts.begin());
    return Background_Peak(peaks, of.labels.Grey_Of((fullest + 0.5F) * record.bin_width + record.origin));
}

void Histogram_Desk::Bands_Take(const std::vector<Peak_Row>& peaks) {
    Band_Plan plan(peaks, Peak_Of_Background(peaks), of.variables.Tag_Nb());
    const Tag_Namer namer = {[this](int tag) { return of.labels.Tag_Name(tag); },
                             [this](int tag) { return Claimed(tag); }};
    if (!Bands_Ask(analysis.Window(), plan, namer)) {
        return of.dialogs.Tell("No TAG band was changed");
    }
    int count = 0;
    for (const Band_Choice& choice : plan.Choices()) {
        if (choice.tag > 0) {
            const auto tag = static_cast<std::size_t>(choice.tag);
            of.variables.Threshold_Min()[tag] = of.labels.Told_Of(choice.from);
            of.variables.Threshold_Max()[tag] = of.labels.Told_Of(choice.to);
            ++count;
        }
    }
    of.labels.Note();
    of.dialogs.Tell(count == 1 ? "One TAG band was set from the peaks"
                               : std::to_string(count) + " TAG bands were set from the peaks");
}

}  // namespace workbench
