#include "workbench/model/label_attributes.h"

#include <algorithm>
#include <optional>
#include <span>
#include <utility>

#include "host/kit_dataset.h"
#include "workbench/model/marker_table.h"
#include "workbench/model/tag_table.h"

namespace workbench {

namespace {

/** Between 0x00RRGGBB and 0x00BBGGRR. */
std::uint32_t Turned_Color(std::uint32_t color) {
    return ((color & 0xFFU) << 16U) | (color & 0xFF00U) | ((color >> 16U) & 0xFFU);
}

std::optional<std::string> Utf8_Name(const Label_Values& values, const char* label) {
    return label != nullptr ? std::optional(values.Utf8_Of(label)) : std::nullopt;
}

/** Hands a name to what sets it as a text of the panels; null: none. @return false: letters were lost */
template <class Set>
bool Name_Hand_On(const Label_Values& values, const std::optional<std::string>& name, const Set& set) {
    const std::string label = name ? values.Panel_Text_Of(*name) : std::string();
    set(name ? label.c_str() : nullptr);
    return !name || Utf8_Name(values, label.c_str()) == name;
}

}  // namespace

void Label_Attributes::Note() {
    const int names = work.session.Note_Labels(Text_Table::Tag_Labels, values.Tag_Labels()) +
                      work.session.Note_Labels(Text_Table::Marker_Labels, values.Marker_Labels());
    const int bands = work.session.Note_Thresholds(values.Threshold_Min(), values.Threshold_Max());
    work.hub.Note((names != 0 ? Changes(Change::Texts) : Changes()) |
                  (bands != 0 ? Changes(Change::Bands) : Changes()));
}

void Label_Attributes::Adopt() {
    work.session.Adopt_Labels(Text_Table::Tag_Labels, values.Tag_Labels());
    work.session.Adopt_Labels(Text_Table::Marker_Labels, values.Marker_Labels());
    work.session.Adopt_Thresholds(values.Threshold_Min(), values.Threshold_Max());
    work.session.Adopt_Colors(values.Tag_Colors());
}

Claimed_Band Label_Attributes::Band_Of(int tag) const {
    Claimed_Band band;
    const auto at = static_cast<std::size_t>(tag);
    if (const float low = values.Threshold_Min()[at]; low > TAG_THRESHOLD_MIN_UNSET) {
        band.low = Grey_Of(low);
    }
    if (const float high = values.Threshold_Max()[at]; high < TAG_THRESHOLD_MAX_UNSET) {
        band.high = Grey_Of(high);
    }
    return band;
}

Label_Description Label_Attributes::Describe() const {
    Label_Description description;
    for (int number = 0; number < values.Tag_Nb(); ++number) {
        const auto at = static_cast<std::size_t>(number);
        Tag_Description tag;
        tag.number = number;
        tag.color = values.Tag_Color(number);
        tag.is_shown = values.Tag_Enable()[at] != 0;
        tag.is_selected = values.Tag_Select()[at] != 0;
        tag.is_locked = values.Tag_Lock()[at] != 0;
        const Claimed_Band band = Band_Of(number);
        if (band.low) {
            tag.low = static_cast<float>(*band.low);
        }
        if (band.high) {
            tag.high = static_cast<float>(*band.high);
        }
        tag.name = Utf8_Name(values, values.Tag_Labels()[at]);
        description.tags.push_back(std::move(tag));
    }
    for (int number = 0; number < MARKER_NB; ++number) {
        Marker_Description marker;
        marker.number = number;
        marker.color = Turned_Color(values.Marker_Color(number));
        marker.name = Utf8_Name(values, values.Marker_Labels()[static_cast<std::size_t>(number)]);
        description.markers.push_back(std::move(marker));
    }
    return description;
}

int Label_Attributes::Take(const Label_Description& description) {
    int highest = 0;
    int changed_names = 0;
    for (const Tag_Description& tag : description.tags) {
        const auto at = static_cast<std::size_t>(tag.number);
        highest = std::max(highest, tag.number);
        values.Tag_Color_Set(tag.number, tag.color);
        values.Tag_Enable()[at] = tag.is_shown ? 1 : 0;
        values.Tag_Select()[at] = tag.is_selected ? 1 : 0;
        values.Tag_Lock()[at] = tag.is_locked ? 1 : 0;
        const auto told = [this](float grey) { return Told_Of(static_cast<double>(grey)); };
        values.Threshold_Min()[at] = tag.low ? told(*tag.low) : TAG_THRESHOLD_MIN_UNSET;
        values.Threshold_Max()[at] = tag.high ? told(*tag.high) : TAG_THRESHOLD_MAX_UNSET;
        const auto set = [&](const char* label) { values.Tag_Label_Set(tag.number, label); };
        changed_names += Name_Hand_On(values, tag.name, set) ? 0 : 1;
    }
    for (const Marker_Description& marker : description.markers) {
        values.Marker_Color_Set(marker.number, Turned_Color(marker.color));
        const auto set = [&](const char* label) { values.Marker_Label_Set(marker.number, label); };
        changed_names += Name_Hand_On(values, marker.name, set) ? 0 : 1;
    }
    Adopt();
    Nb_Grow(highest);
    work.hub.Note(
        {Change::Colors, Change::Texts, Change::Bands, Change::Tag_Shown, Change::Tag_Selected, Change::Tag_Locked});
    return changed_names;
}

void Label_Attributes::Nb_Grow(int highest) {
    if (const int wanted = Tag_Count_For(highest); wanted > values.Tag_Nb()) {
        values.Tag_Nb_Set(wanted);
        work.hub.Note(Change::Tag_Nb);
    }
}

void Label_Attributes::Unit_Follow() {
    const Panel_Scale former = std::exchange(work.panel_scale, Panel_Scale_Of(work.session.Image()));
    if (former == work.panel_scale) {
        return;
    }
    // Thresholds are grey values: they stay while the unit changes that panels are told them in.
    constexpr float most = TAG_THRESHOLD_MAX_UNSET - 1.0F;
    for (const std::span<float> thresholds : {values.Threshold_Min(), values.Threshold_Max()}) {
        for (float& told : thresholds) {
            const bool is_set = told > TAG_THRESHOLD_MIN_UNSET && told < TAG_THRESHOLD_MAX_UNSET;
            told = is_set ? std::clamp(Told_Of(former.To_Grey(static_cast<double>(told))), -most, most) : told;
        }
    }
}

}  // namespace workbench
