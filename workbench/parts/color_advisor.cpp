#include "workbench/parts/color_advisor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace workbench {

namespace {

constexpr const char* CHOICE_CHANGE = "C&hange colours";
constexpr const char* CHOICE_FORMER = "&Former colours";
constexpr std::size_t COLUMN = 48;  // of the distances, letters

std::string Distance_Text(double distance) {
    const auto tenths = std::lround(distance * 10.0);
    return std::to_string(tenths / 10) + "." + std::to_string(tenths % 10);
}

std::vector<std::uint32_t> Colors_Of(const std::vector<int>& tags, const std::vector<std::uint32_t>& all) {
    std::vector<std::uint32_t> colors;
    colors.reserve(tags.size());
    for (const int tag : tags) {
        colors.push_back(all[static_cast<std::size_t>(tag)]);
    }
    return colors;
}

}  // namespace

void Color_Advisor::Slice_Look() {
    std::array<bool, std::numeric_limits<std::uint8_t>::max() + 1> is_there = {};
    for (const std::uint8_t tag : host.slice()) {
        is_there[tag] = true;
    }
    std::vector<int> tags = host.shown_tags();
    std::erase_if(tags, [&](int tag) { return !is_there[static_cast<std::size_t>(tag)]; });
    std::vector<std::uint32_t> colors = Colors_Of(tags, host.colors());
    if (colors != slice_colors) {
        slice_pairs = Alike_Pairs(colors);
        slice_colors = std::move(colors);
    }
    std::string mark;
    if (!slice_pairs.empty()) {
        const Alike_Pair& closest = slice_pairs.front();
        mark = "TAGs " + std::to_string(tags[static_cast<std::size_t>(closest.first)]) + " and " +
               std::to_string(tags[static_cast<std::size_t>(closest.second)]) + " look alike to " +
               Sight_Name(closest.sight);
        mark += slice_pairs.size() > 1 ? " (+" + std::to_string(slice_pairs.size() - 1) + ")" : "";
    }
    host.mark(mark);
}

std::string Color_Advisor::Text(const std::vector<int>& tags, const std::vector<Alike_Pair>& pairs) const {
    std::string text = "Colours of the shown TAGs that are closer than " + Distance_Text(TAG_DISTANCE_LEAST) +
                       " (CIEDE2000)\nto normal sight or to sight without one of the three receptors. The closest\n"
                       "come first; * marks pairs of which both stand in this volume.\n\n";
    if (pairs.empty()) {
        return text + "There are none: all " + std::to_string(tags.size()) + " shown TAGs can be told apart.\n";
    }
    const std::vector<bool> is_used = host.used_tags();
    const auto name = [&](int tag) {
        const std::string label = host.name(tag);
        const std::string number = std::to_string(tag);
        return label == number ? number : number + " " + label;
    };
    for (const Alike_Pair& pair : pairs) {
        const int first = tags[static_cast<std::size_t>(pair.first)];
        const int second = tags[static_cast<std::size_t>(pair.second)];
        const bool is_both = is_used[static_cast<std::size_t>(first)] && is_used[static_cast<std::size_t>(second)];
        std::string line = is_both ? "* " : "  ";
        line += "TAG " + name(first) + " and " + name(second);
        const auto letters = static_cast<std::size_t>(
            std::ranges::count_if(line, [](char unit) { return (static_cast<unsigned char>(unit) & 0xC0U) != 0x80U; }));
        line.append(std::max<std::size_t>(COLUMN, letters + 2) - letters, ' ');
        text += line + Distance_Text(pair.distance) + " to " + Sight_Name(pair.sight) + "\n";
    }
    return text;
}

void Color_Advisor::Colors_Check() {
    const std::vector<int> tags = host.shown_tags();
    const std::vector<Alike_Pair> pairs = Alike_Pairs(Colors_Of(tags, host.colors()));
    host.found(static_cast<int>(pairs.size()));
    std::vector<std::string> choices;
    if (!pairs.empty()) {
        choices.emplace_back(CHOICE_CHANGE);
    }
    if (!former.empty()) {
        choices.emplace_back(CHOICE_FORMER);
    }
    const int chosen = host.ask(Text(tags, pairs), choices);
    if (chosen < 0) {
        return;
    }
    if (choices[static_cast<std::size_t>(chosen)] == CHOICE_CHANGE) {
        Spread(tags);
    } else {
        host.change(std::exchange(former, {}));
    }
}

void Color_Advisor::Spread(const std::vector<int>& tags) {
    std::vector<std::uint32_t> all = host.colors();
    if (former.empty()) {
        former = all;
    }
    std::vector<std::uint32_t> colors = Colors_Of(tags, all);
    int changed = 0;
    for (const Alike_Pair& pair : Alike_Pairs(colors)) {
        // The lower number keeps its colour. A change before may have parted the two already.
        const auto first = static_cast<std::size_t>(pair.first);
        const auto second = static_cast<std::size_t>(pair.second);
        if (Alike_Pairs(std::vector<std::uint32_t>{colors[first], colors[second]}).empty()) {
            continue;
        }
        if (const auto wanted = Color_Suggest(colors, pair.second)) {
            colors[second] = *wanted;
            all[static_cast<std::size_t>(tags[second])] = *wanted;
            ++changed;
        }
    }
    host.change(all);
    const auto left = static_cast<int>(Alike_Pairs(colors).size());
    host.found(left);
    host.tell(std::to_string(changed) + " TAG colours were changed; pairs that look alike: " + std::to_string(left));
}

}  // namespace workbench
