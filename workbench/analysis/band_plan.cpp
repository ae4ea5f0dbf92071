#include "workbench/analysis/band_plan.h"

#include <algorithm>

#include "workbench/model/number_text.h"

namespace workbench {

Band_Plan::Band_Plan(std::span<const Peak_Row> peaks, int background, int tag_count) : tag_nb(tag_count) {
    int next = 1;  // the background TAG claims no levels
    for (std::size_t at = 0; at < peaks.size(); ++at) {
        const bool has_tag = static_cast<int>(at) != background && next < tag_nb;
        choices.push_back({peaks[at].number, peaks[at].from, peaks[at].to, has_tag ? next++ : 0});
    }
}

void Band_Plan::Tag_Set(std::size_t choice, int tag) {
    if (choice >= choices.size() || tag < 0 || tag >= tag_nb) {
        return;
    }
    for (Band_Choice& other : choices) {
        other.tag = other.tag == tag ? 0 : other.tag;
    }
    choices[choice].tag = tag;
}

int Background_Peak(std::span<const Peak_Row> peaks, double mode) {
    return peaks.size() > 1 && mode >= peaks.front().from && mode <= peaks.front().to ? 0 : -1;
}

std::string Band_Choice_Text(const Band_Choice& choice, const std::string& tag_name, const Claimed_Levels& now) {
    const std::string levels = Number_Text(choice.from, 4) + " to " + Number_Text(choice.to, 4);
    std::string text = "Peak " + std::to_string(choice.peak) + "   " + levels + "   ";
    if (choice.tag == 0) {
        return text + "no TAG";
    }
    text += "TAG " + std::to_string(choice.tag) + " " + tag_name;
    return now.is_set ? text + ", now " + Number_Text(now.from, 4) + " to " + Number_Text(now.to, 4) : text;
}

}  // namespace workbench
