/** Stands for what the panels read of TAGs and markers. */
#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/kit_dataset.h"
#include "workbench/model/label_map.h"
#include "workbench/model/label_values.h"
#include "workbench/model/marker_table.h"
#include "workbench/model/tag_table.h"

namespace workbench {

/** Its code page has ASCII only. */
class Label_Values_Double : public Label_Values {
  public:
    Label_Values_Double() {
        enable.fill(1);
        select.fill(1);
        low.fill(TAG_THRESHOLD_MIN_UNSET);
        high.fill(TAG_THRESHOLD_MAX_UNSET);
        for (int tag = 0; tag < TAG_MAX; ++tag) {
            colors[static_cast<std::size_t>(tag)] = static_cast<std::uint32_t>(tag) * 0x010203U;
        }
    }

    int Tag_Nb() const override { return tag_nb; }
    void Tag_Nb_Set(int nb) override { tag_nb = nb; }
    int Tag_Cur() const override { return tag_cur; }
    void Tag_Cur_Set(int tag) override { tag_cur = tag; }
    std::span<std::uint8_t> Tag_Enable() override { return enable; }
    std::span<std::uint8_t> Tag_Select() override { return select; }
    std::span<std::uint8_t> Tag_Lock() override { return lock; }
    std::span<float> Threshold_Min() override { return low; }
    std::span<float> Threshold_Max() override { return high; }
    std::span<const char* const> Tag_Labels() const override { return tags.texts; }
    void Tag_Label_Set(int tag, const char* label) override { tags.Set(tag, label); }
    std::uint32_t Tag_Color(int tag) const override { return colors[static_cast<std::size_t>(tag)]; }
    void Tag_Color_Set(int tag, std::uint32_t color) override { colors[static_cast<std::size_t>(tag)] = color; }
    std::vector<std::uint32_t> Tag_Colors() const override { return {colors.begin(), colors.end()}; }
    std::string Tag_Name(int tag) const override { return tags.Name(tag); }

    int Marker_Cur() const override { return marker_cur; }
    void Marker_Cur_Set(int marker) override { marker_cur = marker; }
    std::span<std::uint8_t> Marker_Enable() override { return marker_enable; }
    std::span<const char* const> Marker_Labels() const override { return {markers.texts.data(), MARKER_NB}; }
    void Marker_Label_Set(int marker, const char* label) override { markers.Set(marker, label); }
    std::uint32_t Marker_Color(int marker) const override { return marker_colors[static_cast<std::size_t>(marker)]; }
    void Marker_Color_Set(int marker, std::uint32_t color) override {
        marker_colors[static_cast<std::size_t>(marker)] = color;
    }
    std::string Marker_Name(int marker) const override { return markers.Name(marker); }

    int Brush_Cur() const override { return brush_cur; }
    void Brush_Cur_Set(int brush) override { brush_cur = brush; }

    std::string Utf8_Of(const char* panel_text) const override { return panel_text; }
    std::string Panel_Text_Of(const std::string& utf8) const override {
        std::string text;
        for (const char letter : utf8) {
            const bool is_ascii = static_cast<unsigned char>(letter) < 0x80;
            const bool is_first = (static_cast<unsigned char>(letter) & 0xC0U) == 0xC0U;
            text += is_ascii ? std::string(1, letter) : is_first ? "?" : "";
        }
        return text;
    }

  private:
    struct Texts {
        std::map<int, std::string> own;
        std::array<const char*, TAG_MAX> texts{};
        void Set(int at, const char* label) {
            const std::string copy = label != nullptr ? label : "";
            own[at] = copy;
            texts[static_cast<std::size_t>(at)] = label != nullptr ? own[at].c_str() : nullptr;
        }
        std::string Name(int at) const {
            const char* const label = texts[static_cast<std::size_t>(at)];
            return label != nullptr ? label : std::to_string(at);
        }
    };

    int tag_nb = TAG_DEFAULT_NB;
    int tag_cur = 1;
    int marker_cur = 0;
    int brush_cur = 0;
    std::array<std::uint8_t, TAG_MAX> enable{};
    std::array<std::uint8_t, TAG_MAX> select{};
    std::array<std::uint8_t, TAG_MAX> lock{};
    std::array<float, TAG_MAX> low{};
    std::array<float, TAG_MAX> high{};
    std::array<std::uint32_t, TAG_MAX> colors{};
    std::array<std::uint8_t, MARKER_NB> marker_enable{};
    std::array<std::uint32_t, MARKER_NB> marker_colors{};
    Texts tags;
    Texts markers;
};

}  // namespace workbench
