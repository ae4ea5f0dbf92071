/** What describes the labels of one volume while another one is the current one. */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "workbench/model/label_values.h"
#include "workbench/model/panel_scale.h"

namespace workbench {

/** Names, colours, thresholds and states as the panels read them: copies that are equal to the bit. Vectors hold an
 *  entry per TAG, TAG_MAX of them, or per marker. */
struct Label_State {
    Panel_Scale scale;  ///< in which the thresholds are told
    std::vector<std::optional<std::string>> tag_names;
    std::vector<std::uint32_t> tag_colors;
    std::vector<std::uint8_t> is_shown;
    std::vector<std::uint8_t> is_selected;
    std::vector<std::uint8_t> is_locked;
    std::vector<float> low;
    std::vector<float> high;
    std::vector<std::optional<std::string>> marker_names;
    std::vector<std::uint32_t> marker_colors;
    friend bool operator==(const Label_State&, const Label_State&) = default;
};

/** @param values is only read */
Label_State Label_State_Of(Label_Values& values, const Panel_Scale& scale);
void Label_State_Put(const Label_State& state, Label_Values& values);

}  // namespace workbench
