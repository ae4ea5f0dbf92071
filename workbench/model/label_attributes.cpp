#include "workbench/model/label_attributes.h"

#include <algorithm>
#include <cstddef>
#include <memory>
#include <optional>
#include <span>
#include <utility>

#include "host/kit_dataset.h"
#include "workbench/model/marker_table.h"
#include "workbench/model/tag_table.h"

namespace workbench {

namespace {

constexpr Changes DESCRIBED = {Change::Colors,    Change::Texts,        Change::Bands,
                               Change::Tag_Shown, Change::Tag_Selected, Change::Tag_Locked};

/** Between 0x00RRGGBB and 0x00BBGGRR. */
std::uint32_t Turned_Color(std::uint32_t color) {
    return ((color & 0xFFU) << 16U) | (color & 0xFF00U) | ((color >> 16U) & 0xFFU);
}

std::optional<std::string> Utf8_Name(const Label_Values& values, const std::optional<std::string>& label) {
    return label ? std::optional(values.Utf8_Of(label->c_str())) : std::nullopt;
}

Claimed_Band Band_In(float low, float high, const Panel_Scale& scale) {
    Claimed_Band band;
    if (low > TAG_THRESHOLD_MIN_UNSET) {
        band.low = scale.To_Grey(static_cast<double>(low));
    }
    if (high < TAG_THRESHOLD_MAX_UNSET) {
        band.high = scale.To_Grey(static_cast<double>(high));
    }
    return band;
}

/** Of the TAGs that are offered. */
Label_Description Description_Of(const Label_State& state, const Label_Values& values) {
    Label_Description description;
    for (int number = 0; number < values.Tag_Nb(); ++number) {
        const auto at = static_cast<std::size_t>(number);
        Tag_Description tag;
        tag.number = number;
        tag.color = state.tag_colors[at];
        tag.is_shown = state.is_shown[at] != 0;
        tag.is_selected = state.is_selected[at] != 0;
        tag.is_locked = state.is_locked[at] != 0;
        const Claimed_Band band = Band_In(state.low[at], state.high[at], state.scale);
        if (band.low) {
            tag.low = static_cast<float>(*band.low);
        }
        if (band.high) {
            tag.high = static_cast<float>(*band.high);
        }
        tag.name = Utf8_Name(values, state.tag_names[at]);
        description.tags.push_back(std::move(tag));
    }
    for (int number = 0; number < MARKER_NB; ++number) {
        Marker_Description marker;
        marker.number = number;
        const auto at = static_cast<std::size_t>(number);
        marker.color = Turned_Color(state.marker_colors[at]);
        marker.name = Utf8_Name(values, state.marker_names[at]);
        description.markers.push_back(std::move(marker));
    }
    return description;
}

/** Hands a name to what sets it as a text of the panels; null: none. @return false: letters were lost */
template <class Set>
bool Name_Hand_On(const Label_Values& values, const std::optional<std::string>& name, const Set& set) {
    const std::string label = name ? values.Panel_Text_Of(*name) : std::string();
    set(name ? label.c_str() : nullptr);
    return !name || Utf8_Name(values, label) == name;
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
    const auto at = static_cast<std::size_t>(tag);
    return Band_In(values.Threshold_Min()[at], values.Threshold_Max()[at], work.panel_scale);
}

Label_Description Label_Attributes::Describe() const {
    return Description_Of(Label_State_Of(values, work.panel_scale), values);
}

Label_Description Label_Attributes::Describe(int volume) const {
    return Has_Own(volume) ? Description_Of(*work.volumes.Labels_Kept(volume), values) : Describe();
}

bool Label_Attributes::Has_Own(int volume) const {
    return !is_shared && volume != work.volumes.Current() && work.volumes.Labels_Kept(volume) != nullptr;
}

void Label_Attributes::All_Keep() {
    const auto state = std::make_shared<const Label_State>(Label_State_Of(values, work.panel_scale));
    for (int volume = 0; volume < work.volumes.Nb(); ++volume) {
        work.volumes.Labels_Keep(volume, state);
    }
}

void Label_Attributes::Opened() {
    if (!is_shared) {
        All_Keep();
    }
}

void Label_Attributes::Leave() {
    Note();
    if (!is_shared && work.volumes.Current() >= 0) {
        work.volumes.Labels_Keep(work.volumes.Current(),
                                 std::make_shared<const Label_State>(Label_State_Of(values, work.panel_scale)));
    }
}

void Label_Attributes::Enter() {
    const Label_State* own = is_shared ? nullptr : work.volumes.Labels_Kept(work.volumes.Current());
    if (own != nullptr && *own != Label_State_Of(values, work.panel_scale)) {
        Label_State_Put(*own, values);
        work.panel_scale = own->scale;
        work.hub.Note(DESCRIBED);
    }
    Unit_Follow();
    Adopt();
}

void Label_Attributes::Switch(int volume) {
    if (volume < 0 || volume >= work.volumes.Nb() || volume == work.volumes.Current()) {
        return;
    }
    Leave();
    work.volumes.Switch(volume, work.session);
    Enter();
}

void Label_Attributes::Share(bool on) {
    if (std::exchange(is_shared, on) == on || work.volumes.Nb() == 0) {
        return;
    }
    Label_State now = Label_State_Of(values, work.panel_scale);
    if (on) {
        Note();
        shared_first = std::move(now);
    } else if (now != shared_first) {
        All_Keep();
    }
}

bool Label_Attributes::Are_Others_Different() const {
    const Label_State now = Label_State_Of(values, work.panel_scale);
    for (int volume = 0; volume < work.volumes.Nb(); ++volume) {
        if (Has_Own(volume) && *work.volumes.Labels_Kept(volume) != now) {
            return true;
        }
    }
    return false;
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
    work.hub.Note(DESCRIBED);
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
