#include "workbench/segmentation_services.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "workbench/text_dialog.h"
#include "workbench/volumes/message_text.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr std::uint16_t MODALITY_CT = ('C' << 8) | 'T';

}  // namespace

Segmentation_Services::Segmentation_Services(Segmentation_Wiring to_application)
    : wiring(std::move(to_application)), statistics(wiring.look) {}

Segmentation_Hand Segmentation_Services::Hand() const {
    Segmentation_Hand hand;
    hand.slice = wiring.work.slice;
    hand.tag = wiring.variables.Tag_Cur();
    hand.tag_nb = wiring.variables.Tag_Nb();
    std::ranges::copy(wiring.variables.Tag_Lock(), hand.locked.begin());
    hand.cursor = wiring.cursor();
    return hand;
}

std::vector<Tag_Claim> Segmentation_Services::Claims() const {
    std::vector<Tag_Claim> claims;
    for (int tag = 1; tag < wiring.variables.Tag_Nb(); ++tag) {
        const Claimed_Band told = wiring.labels.Band_Of(tag);
        segmentation::Grey_Band band;
        if (told.low) {
            band.low = static_cast<float>(*told.low);
        }
        if (told.high) {
            band.high = static_cast<float>(*told.high);
        }
        if (told.Is_Set()) {
            claims.push_back({tag, band});
        }
    }
    return claims;
}

std::string Segmentation_Services::Grey_Unit() const {
    const Open_Volumes& open = wiring.work.volumes;
    return open.Nb() > 0 && open.Facts(open.Current()).modality == MODALITY_CT ? "HU" : "";
}

std::optional<std::string> Segmentation_Services::Text_Ask(const std::string& title, const std::string& question,
                                                           const std::string& start) {
    return wiring.dialogs.Text_Ask(title, question, start);
}

int Segmentation_Services::Line_Ask(const std::string& title, const std::string& label,
                                    const std::vector<std::string>& lines, int current) {
    return wiring.dialogs.Line_Ask(title, label, lines, current, "&Choose");
}

std::optional<std::filesystem::path> Segmentation_Services::Label_File_Ask(const std::string& title) {
    return wiring.dialogs.File_To_Open(title, File_Kind::Label_Volumes);
}

std::optional<std::filesystem::path> Segmentation_Services::Csv_File_Ask(const std::string& title,
                                                                         const std::string& name) {
    return wiring.dialogs.File_To_Save(title, File_Kind::Tables, volumes::Path_From_Utf8(name));
}

void Segmentation_Services::Run(const std::string& what,
                                const std::function<void(const segmentation::Edit_Progress& progress)>& action) {
    wiring.dialogs.Run(what, [&](const volumes::Load_Progress& progress) { action(progress); });
}

void Segmentation_Services::Labels_Changed(int slice) {
    wiring.slice_go(slice);
    wiring.work.hub.Note(Change::Pixels);
    wiring.dialogs.Log("segmented");
}

void Segmentation_Services::Statistics_Show(const std::string& title, const std::string& table) {
    Table_View* const beside = wiring.table();
    if (beside != nullptr) {
        beside->Text_Set(Wide_Of_Utf8(title), Wide_Of_Utf8(table));
    }
    if (statistics.Is_Shown()) {
        return statistics.Text_Set(Wide_Of_Utf8(title), Wide_Of_Utf8(table));
    }
    if (beside != nullptr) {
        return;
    }
    statistics.Open(wiring.owner(), Wide_Of_Utf8(title), Wide_Of_Utf8(table), List_Font::Fixed);
}

bool Segmentation_Services::Table_Show(const std::string& title, const std::string& table) {
    return Text_Show(wiring.owner(), Wide_Of_Utf8(title), Wide_Of_Utf8(table), wiring.look.Fixed(),
                     {L"&Save as CSV..."}, Long_Lines::Scrolled) == 0;
}

}  // namespace workbench
