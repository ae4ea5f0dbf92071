#include "workbench/model/histogram_control.h"

#include <algorithm>
#include <charconv>
#include <system_error>

#include "workbench/model/number_text.h"

namespace workbench {

namespace {

constexpr int GREY_DIGITS = 4;

}  // namespace

std::optional<Frame_Range> Frame_Range_Of(std::string_view text, int frame_nb) {
    const auto blanks_drop = [&text](std::string_view of) {
        text.remove_prefix(std::min(text.find_first_not_of(of), text.size()));
    };
    const auto number = [&text]() {
        int read = 0;
        const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), read);
        text.remove_prefix(static_cast<std::size_t>(end - text.data()));
        return error == std::errc() ? read : 0;
    };
    blanks_drop(" ");
    const int first = number();
    blanks_drop(" -");
    const int last = text.empty() ? first : number();
    blanks_drop(" ");
    if (!text.empty() || first < 1 || last < first || last > frame_nb) {
        return std::nullopt;
    }
    return Frame_Range{first - 1, last - 1};
}

void Histogram_Control::All_Take(int frame_nb) {
    source = Source::All;
    frames = {0, frame_nb - 1};
}

void Histogram_Control::Shown_Take(int slice) {
    source = Source::Shown;
    frames = {slice, slice};
}

void Histogram_Control::Range_Take(Frame_Range range, int frame_nb) {
    source = range == Frame_Range{0, frame_nb - 1} ? Source::All : Source::Range;
    frames = range;
}

bool Histogram_Control::Slice_Follow(int slice) {
    if (source != Source::Shown) {
        return false;
    }
    frames = {slice, slice};
    return true;
}

bool Histogram_Control::Plain_Take() {
    const bool was_other = is_of_tag || is_smoothed || is_background_left_out;
    is_of_tag = is_smoothed = is_background_left_out = false;
    return was_other;
}

void Histogram_Control::Volume_Follow(int frame_nb, std::optional<double> its_background) {
    source = source == Source::Checked ? Source::Checked : Source::All;
    frames = {0, frame_nb - 1};
    background = its_background;
}

std::string Histogram_Control::Pixels_Text(int current_tag) const {
    std::string text = is_of_tag ? ", TAG " + std::to_string(current_tag) + " only" : "";
    text += is_smoothed ? ", smoothed" : "";
    if (const std::optional<double> grey = Left_Out()) {
        text += ", without background (up to " + Number_Text(*grey, GREY_DIGITS) + ")";
    }
    return text;
}

}  // namespace workbench
