// Where operations on labels may change voxels: the slices and the TAG that are chosen.
#include <algorithm>
#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "workbench/edits/segmentation_control.h"

namespace workbench {

namespace {

/** "12 to 40", one number for one slice; slices count from 1. @return no value: not two numbers */
std::optional<segmentation::Slice_Range> Range_Of(const std::string& text) {
    std::vector<int> numbers;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] < '0' || text[at] > '9') {
            ++at;
            continue;
        }
        int number = 0;
        for (; at < text.size() && text[at] >= '0' && text[at] <= '9'; ++at) {
            number = std::min(number, 1'000'000) * 10 + (text[at] - '0');
        }
        numbers.push_back(number - 1);
    }
    if (numbers.empty() || numbers.size() > 2) {
        return std::nullopt;
    }
    return segmentation::Slice_Range{std::min(numbers.front(), numbers.back()),
                                     std::max(numbers.front(), numbers.back())};
}

}  // namespace

segmentation::Slice_Range Segmentation_Control::Slices() const {
    const int last = host.Work().Slice_Nb() - 1;
    switch (scope) {
        case Edit_Scope::Shown_Slice:
            return {host.Hand().slice, host.Hand().slice};
        case Edit_Scope::Range:
            return {std::clamp(range.first, 0, last), std::clamp(range.last, 0, last)};
        case Edit_Scope::Volume:
            break;
    }
    return {0, last};
}

std::string Segmentation_Control::Slices_Text() const {
    const segmentation::Slice_Range slices = Slices();
    const int all = host.Work().Slice_Nb();
    if (slices.first == slices.last) {
        return "slice " + std::to_string(slices.first + 1);
    }
    return slices.last - slices.first + 1 == all
               ? "all " + std::to_string(all) + " slices"
               : "slices " + std::to_string(slices.first + 1) + " to " + std::to_string(slices.last + 1);
}

std::string Segmentation_Control::Limits_Text() const {
    std::string text;
    if (only_inside) {
        text += "; only voxels of " + host.Tag_Name(*only_inside) + " may change";
    }
    const Segmentation_Hand hand = host.Hand();
    if (hand.tag != 0 && hand.locked[static_cast<std::size_t>(hand.tag)] != 0) {
        text += "; " + host.Tag_Name(hand.tag) + " is locked";
    }
    return text;
}

void Segmentation_Control::Scope_Set(Edit_Scope wanted) {
    if (wanted == Edit_Scope::Range) {
        if (!Has_Volume()) {
            return;
        }
        const segmentation::Slice_Range now = Slices();
        const std::optional<std::string> answer = host.Text_Ask(
            "Range of slices", "First and last slice (1 to " + std::to_string(host.Work().Slice_Nb()) + "):",
            std::to_string(now.first + 1) + " to " + std::to_string(now.last + 1));
        if (!answer) {
            return;
        }
        const std::optional<segmentation::Slice_Range> entered = Range_Of(*answer);
        if (!entered || entered->first < 0 || entered->last >= host.Work().Slice_Nb()) {
            return host.Warn("\"" + *answer + "\" names no slices of the image: it has slices 1 to " +
                             std::to_string(host.Work().Slice_Nb()) + ".");
        }
        range = *entered;
    }
    scope = wanted;
    host.Limits_Changed();
    host.Tell("Operations on TAGs work on " + (host.Work().Has_Volume() ? Slices_Text() : std::string("the volume")));
    Labels_Follow();
}

void Segmentation_Control::Only_Inside_Ask() {
    std::vector<std::string> lines = {"Everywhere"};
    for (int tag = 0; tag < host.Hand().tag_nb; ++tag) {
        lines.push_back("Only " + std::to_string(tag) + "  " + (tag == 0 ? "Background" : host.Tag_Name(tag)));
    }
    const int chosen =
        host.Line_Ask("Only inside a TAG", "Operations change voxels of:", lines, only_inside ? *only_inside + 1 : 0);
    if (chosen < 0 || static_cast<std::size_t>(chosen) >= lines.size()) {
        return;
    }
    only_inside = chosen == 0 ? std::nullopt : std::optional(Byte_Of(chosen - 1));
    host.Limits_Changed();
    host.Tell(only_inside ? "Operations change only voxels of " + *Only_Inside_Name()
                          : "Operations change voxels of all TAGs but locked ones");
}

std::optional<std::string> Segmentation_Control::Only_Inside_Name() const {
    if (!only_inside) {
        return std::nullopt;
    }
    return *only_inside == 0 ? "Background" : host.Tag_Name(*only_inside);
}

}  // namespace workbench
