#include "workbench/segmentation_services.h"

#include <algorithm>
#include <utility>

#include "workbench/file_dialog.h"
#include "workbench/list_choice_dialog.h"
#include "workbench/prompt_dialog.h"
#include "workbench/text_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

Segmentation_Services::Segmentation_Services(Segmentation_Wiring to_application)
    : wiring(std::move(to_application)), statistics(wiring.look) {}

Segmentation_Hand Segmentation_Services::Hand() const {
    Segmentation_Hand hand;
    hand.slice = wiring.slice();
    hand.tag = wiring.variables.Tag_Cur();
    hand.tag_nb = wiring.variables.Tag_Nb();
    std::ranges::copy(wiring.variables.Tag_Lock(), hand.locked.begin());
    hand.cursor = wiring.cursor();
    return hand;
}

std::vector<Tag_Claim> Segmentation_Services::Claims() const {
    std::vector<Tag_Claim> claims;
    for (int tag = 1; tag < wiring.variables.Tag_Nb(); ++tag) {
        const float low = wiring.variables.Threshold_Min()[static_cast<std::size_t>(tag)];
        const float high = wiring.variables.Threshold_Max()[static_cast<std::size_t>(tag)];
        segmentation::Grey_Band band;
        if (low > TAG_THRESHOLD_MIN_UNSET) {
            band.low = static_cast<float>(wiring.grey(low));
        }
        if (high < TAG_THRESHOLD_MAX_UNSET) {
            band.high = static_cast<float>(wiring.grey(high));
        }
        if (band.low || band.high) {
            claims.push_back({tag, band});
        }
    }
    return claims;
}

std::string Segmentation_Services::Tag_Name(int tag) const {
    return Utf8_Of_Wide(Wide_Of_Panel(wiring.variables.Tag_Name(tag).c_str()));
}

std::optional<std::string> Segmentation_Services::Text_Ask(const std::string& title, const std::string& question,
                                                           const std::string& start) {
    const std::optional<std::wstring> answer =
        Prompt(wiring.owner(), Wide_Of_Utf8(title), Wide_Of_Utf8(question), Wide_Of_Utf8(start));
    return answer ? std::optional(Utf8_Of_Wide(*answer)) : std::nullopt;
}

int Segmentation_Services::Line_Ask(const std::string& title, const std::string& label,
                                    const std::vector<std::string>& lines, int current) {
    std::vector<std::wstring> shown;
    for (const std::string& line : lines) {
        shown.push_back(Wide_Of_Utf8(line));
    }
    return List_Choice_Ask(wiring.owner(), Wide_Of_Utf8(title), Wide_Of_Utf8(label), shown, current, L"&Choose");
}

std::optional<std::filesystem::path> Segmentation_Services::Label_File_Ask(const std::string& title) {
    return Open_Ask(wiring.owner(), Wide_Of_Utf8(title).c_str(),
                    L"Label volumes (*.nii.gz, *.nii, *.nrrd, *.mha)\0"
                    L"*.nii.gz;*.nii;*.gz;*.nrrd;*.nhdr;*.mha;*.mhd\0All files\0*.*\0");
}

std::optional<std::filesystem::path> Segmentation_Services::Csv_File_Ask(const std::string& title,
                                                                         const std::string& name) {
    return Save_Ask(wiring.owner(), Wide_Of_Utf8(title).c_str(), L"Tables (*.csv)\0*.csv\0All files\0*.*\0",
                    Wide_Of_Utf8(name), L"csv");
}

void Segmentation_Services::Run(const std::string& what,
                                const std::function<void(const segmentation::Edit_Progress& progress)>& action) {
    wiring.run(Wide_Of_Utf8(what), action);
}

void Segmentation_Services::Statistics_Show(const std::string& title, const std::string& table) {
    if (statistics.Is_Shown()) {
        return statistics.Text_Set(Wide_Of_Utf8(title), Wide_Of_Utf8(table));
    }
    statistics.Open(wiring.owner(), Wide_Of_Utf8(title), Wide_Of_Utf8(table), List_Font::Fixed);
}

bool Segmentation_Services::Table_Show(const std::string& title, const std::string& table) {
    return Text_Show(wiring.owner(), Wide_Of_Utf8(title), Wide_Of_Utf8(table), wiring.look.Fixed(),
                     {L"&Save as CSV..."}, Long_Lines::Scrolled) == 0;
}

void Segmentation_Services::Tell(const std::string& text) {
    wiring.tell(Wide_Of_Utf8(text));
}

}  // namespace workbench
