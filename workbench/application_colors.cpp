// TAG colours that are hard to tell apart.
#include <algorithm>
#include <cmath>
#include <vector>

#include "workbench/application.h"
#include "workbench/model/color_sight.h"
#include "workbench/text_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

std::wstring Distance_Text(double distance) {
    const auto tenths = std::lround(distance * 10.0);
    return std::to_wstring(tenths / 10) + L"." + std::to_wstring(tenths % 10);
}

}  // namespace

std::vector<std::uint32_t> Application::Colors_Of(const std::vector<int>& tags) const {
    std::vector<std::uint32_t> colors;
    for (const int tag : tags) {
        colors.push_back(variables.Tag_Color(tag));
    }
    return colors;
}

/** The background is not drawn over the image and so is no colour among the others. */
std::vector<int> Application::Colored_Tags() const {
    std::vector<int> tags;
    for (int tag = 1; tag < variables.Tag_Nb(); ++tag) {
        if (variables.Tag_Enable()[static_cast<std::size_t>(tag)] != 0) {
            tags.push_back(tag);
        }
    }
    return tags;
}

void Application::Colors_Refresh() {
    std::vector<int> tags;
    if (session.Has_Volume()) {
        std::array<bool, TAG_MAX> is_there = {};
        for (const std::uint8_t tag : session.Labels().Slice(slice)) {
            is_there[tag] = true;
        }
        tags = Colored_Tags();
        std::erase_if(tags, [&](int tag) { return !is_there[static_cast<std::size_t>(tag)]; });
    }
    const auto pairs = Alike_Pairs(Colors_Of(tags));
    alike_nb = static_cast<int>(pairs.size());
    std::wstring mark;
    if (!pairs.empty()) {
        mark = L"TAGs " + std::to_wstring(tags[static_cast<std::size_t>(pairs[0].first)]) + L" and " +
               std::to_wstring(tags[static_cast<std::size_t>(pairs[0].second)]) + L" look alike to " +
               Wide_Of_Utf8(Sight_Name(pairs[0].sight));
        mark += pairs.size() > 1 ? L" (+" + std::to_wstring(pairs.size() - 1) + L")" : L"";
    }
    status_line.Mark_Set(mark);
}

std::wstring Application::Colors_Text(const std::vector<int>& tags, const std::vector<Alike_Pair>& pairs) const {
    std::wstring text = L"Colours of the shown TAGs that are closer than " + Distance_Text(TAG_DISTANCE_LEAST) +
                        L" (CIEDE2000)\nto normal sight or to sight without one of the three receptors. The "
                        L"closest\ncome first; * marks pairs of which both stand in this volume.\n\n";
    if (pairs.empty()) {
        return text + L"There are none: all " + std::to_wstring(tags.size()) + L" shown TAGs can be told apart.\n";
    }
    const auto counts = session.Labels().Counts();
    for (const Alike_Pair& pair : pairs) {
        const int first = tags[static_cast<std::size_t>(pair.first)];
        const int second = tags[static_cast<std::size_t>(pair.second)];
        const auto is_used = [&](int tag) {
            return session.Has_Volume() && counts[static_cast<std::size_t>(tag)] != 0;
        };
        const auto name = [&](int tag) {
            const std::wstring label = Wide_Of_Panel(variables.Tag_Name(tag).c_str());
            const std::wstring number = std::to_wstring(tag);
            return label == number ? number : number + L" " + label;
        };
        std::wstring line = is_used(first) && is_used(second) ? L"* " : L"  ";
        line += L"TAG " + name(first) + L" and " + name(second);
        line.resize(std::max<std::size_t>(line.size() + 2, 48), L' ');
        text += line + Distance_Text(pair.distance) + L" to " + Wide_Of_Utf8(Sight_Name(pair.sight)) + L"\n";
    }
    return text;
}

void Application::Colors_Check() {
    const std::vector<int> tags = Colored_Tags();
    const std::vector<Alike_Pair> pairs = Alike_Pairs(Colors_Of(tags));
    report.Line("alike_pairs " + std::to_string(pairs.size()));
    std::vector<std::wstring> choices;
    if (!pairs.empty()) {
        choices.emplace_back(L"C&hange colours");
    }
    if (!colors_before.empty()) {
        choices.emplace_back(L"&Former colours");
    }
    const int chosen = Text_Show(window.Handle(), L"TAG colours", Colors_Text(tags, pairs), look.Fixed(), choices);
    if (chosen < 0) {
        return;
    }
    if (choices[static_cast<std::size_t>(chosen)] == L"C&hange colours") {
        Colors_Spread(tags);
    } else {
        for (int tag = 1; tag < TAG_MAX; ++tag) {
            variables.Tag_Color_Set(tag, colors_before[static_cast<std::size_t>(tag)]);
        }
        colors_before.clear();
    }
    session.Note_Colors(variables.Tag_Colors());
    Title_Refresh();
    Announce(UPDATE_TAG_TABLE);
    Tag_Scroll_To(variables.Tag_Cur());
    image.Refresh();
}

void Application::Colors_Spread(const std::vector<int>& tags) {
    if (colors_before.empty()) {
        colors_before = variables.Tag_Colors();
    }
    std::vector<std::uint32_t> colors = Colors_Of(tags);
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
            variables.Tag_Color_Set(tags[second], *wanted);
            ++changed;
        }
    }
    const std::size_t left = Alike_Pairs(colors).size();
    report.Line("alike_pairs " + std::to_string(left));
    Status(std::to_wstring(changed) + L" TAG colours were changed; pairs that look alike: " + std::to_wstring(left));
}

}  // namespace workbench
