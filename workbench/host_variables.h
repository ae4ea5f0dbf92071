/** The host variables that the panels read, defined and kept by the application. */
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "kits/dataset/dataset_host.h"
#include "workbench/model/label_map.h"
#include "workbench/model/label_values.h"
#include "workbench/model/painting.h"

namespace workbench {

inline constexpr int BRUSH_NB = 8;

/** Heights and distances that the tool area shares with the panels, pixels. */
struct Panel_Dimensions {
    int space = 0;
    int border = 0;
    int button = 0;
};

/** Arrays per TAG have 256 elements always, so that no address moves when the number of TAGs does. */
class Host_Variables : public Label_Values {
  public:
    /** Defines everything that any panel reads, with starting values. Once, before the first panel is placed. */
    void Define();
    /** Sets the dimensions for a scale. 1.0: 96 dots per inch */
    void Scale_Set(float scale);
    Panel_Dimensions Dimensions() const;

    int Tag_Nb() const override;
    void Tag_Nb_Set(int nb) override;
    int Tag_Cur() const override;
    void Tag_Cur_Set(int tag) override;
    std::span<std::uint8_t> Tag_Enable() override;
    std::span<std::uint8_t> Tag_Select() override;
    std::span<std::uint8_t> Tag_Lock() override;
    std::span<float> Threshold_Min() override;
    std::span<float> Threshold_Max() override;
    std::span<const char* const> Tag_Labels() const override;
    void Tag_Label_Set(int tag, const char* label) override;
    std::uint32_t Tag_Color(int tag) const override;
    void Tag_Color_Set(int tag, std::uint32_t color) override;
    std::vector<std::uint32_t> Tag_Colors() const override;
    std::string Tag_Name(int tag) const override;

    int Marker_Cur() const override;
    void Marker_Cur_Set(int marker) override;
    std::span<std::uint8_t> Marker_Enable() override;
    std::span<const char* const> Marker_Labels() const override;
    void Marker_Label_Set(int marker, const char* label) override;
    std::uint32_t Marker_Color(int marker) const override;
    void Marker_Color_Set(int marker, std::uint32_t color) override;
    std::string Marker_Name(int marker) const override;

    std::string Utf8_Of(const char* panel_text) const override;
    std::string Panel_Text_Of(const std::string& utf8) const override;

    int Brush_Cur() const override;
    void Brush_Cur_Set(int brush) override;
    /** The mask that the brush panel built for the current brush. */
    Brush_Footprint Brush() const;

    /** What parts the columns of exported files. */
    char Separator() const;
    /** What stands in exported files where a TAG does not claim a bin. */
    std::string Filler() const;

    /** The frame and pixel under the image mouse. @param frame null: none */
    void Mouse_Set(Quorel_2D* frame, float x, float y);

  private:
    void Define_Tags();
    void Define_Markers();
    void Define_Brushes();
    void Define_Data();

    std::vector<unsigned char> mask_bytes;
    std::vector<unsigned char*> mask_rows;
};

}  // namespace workbench
