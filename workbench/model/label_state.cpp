#include "workbench/model/label_state.h"

#include <algorithm>
#include <cstddef>
#include <span>

#include "workbench/model/marker_table.h"

namespace workbench {

namespace {

std::vector<std::optional<std::string>> Names_Of(std::span<const char* const> labels) {
    std::vector<std::optional<std::string>> names;
    names.reserve(labels.size());
    for (const char* const label : labels) {
        names.emplace_back(label != nullptr ? std::optional<std::string>(label) : std::nullopt);
    }
    return names;
}

template <class T>
std::vector<T> Copy_Of(std::span<T> values) {
    return {values.begin(), values.end()};
}

/** Leaves texts alone that are the same: the panels keep their addresses. */
template <class Set>
void Names_Put(const std::vector<std::optional<std::string>>& names, std::span<const char* const> labels,
               const Set& set) {
    const std::vector<std::optional<std::string>> former = Names_Of(labels);
    for (std::size_t at = 0; at < std::min(names.size(), former.size()); ++at) {
        if (names[at] != former[at]) {
            set(static_cast<int>(at), names[at] ? names[at]->c_str() : nullptr);
        }
    }
}

}  // namespace

Label_State Label_State_Of(Label_Values& values, const Panel_Scale& scale) {
    Label_State state = {scale,
                         Names_Of(values.Tag_Labels()),
                         values.Tag_Colors(),
                         Copy_Of(values.Tag_Enable()),
                         Copy_Of(values.Tag_Select()),
                         Copy_Of(values.Tag_Lock()),
                         Copy_Of(values.Threshold_Min()),
                         Copy_Of(values.Threshold_Max()),
                         Names_Of(values.Marker_Labels()),
                         {}};
    for (int marker = 0; marker < MARKER_NB; ++marker) {
        state.marker_colors.push_back(values.Marker_Color(marker));
    }
    return state;
}

void Label_State_Put(const Label_State& state, Label_Values& values) {
    Names_Put(state.tag_names, values.Tag_Labels(),
              [&](int tag, const char* label) { values.Tag_Label_Set(tag, label); });
    Names_Put(state.marker_names, values.Marker_Labels(),
              [&](int marker, const char* label) { values.Marker_Label_Set(marker, label); });
    for (std::size_t tag = 1; tag < state.tag_colors.size(); ++tag) {
        values.Tag_Color_Set(static_cast<int>(tag), state.tag_colors[tag]);
    }
    std::ranges::copy(state.is_shown, values.Tag_Enable().begin());
    std::ranges::copy(state.is_selected, values.Tag_Select().begin());
    std::ranges::copy(state.is_locked, values.Tag_Lock().begin());
    std::ranges::copy(state.low, values.Threshold_Min().begin());
    std::ranges::copy(state.high, values.Threshold_Max().begin());
    for (std::size_t marker = 0; marker < state.marker_colors.size(); ++marker) {
        values.Marker_Color_Set(static_cast<int>(marker), state.marker_colors[marker]);
    }
}

}  // namespace workbench
