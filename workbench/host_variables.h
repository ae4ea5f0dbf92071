/** The host variables that the panels read, defined and kept by the application. */
#pragma once

#include <array>
#include <cstdint>
#include <span>
#include <string>
#include <vector>

#include "kits/dataset/dataset_host.h"
#include "workbench/model/label_map.h"
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
class Host_Variables {
  public:
    /** Defines everything that any panel reads, with starting values. Once, before the first panel is placed. */
    void Define();
    /** Sets the dimensions for a scale. 1.0: 96 dots per inch */
    void Scale_Set(float scale);
    Panel_Dimensions Dimensions() const;

    int Tag_Nb() const;
    void Tag_Nb_Set(int nb);
    int Tag_Cur() const;
    void Tag_Cur_Set(int tag);
    std::span<std::uint8_t> Tag_Enable();
    std::span<std::uint8_t> Tag_Select();
    std::span<std::uint8_t> Tag_Lock();
    std::span<float> Threshold_Min();
    std::span<float> Threshold_Max();
    std::span<const char* const> Tag_Labels() const;
    /** null: none */
    void Tag_Label_Set(int tag, const char* label);
    /** 0x00RRGGBB, as the panels show it; the background is grey. */
    std::uint32_t Tag_Color(int tag) const;
    /** @param tag 1 .. TAG_MAX - 1; @param color 0x00RRGGBB */
    void Tag_Color_Set(int tag, std::uint32_t color);
    /** Of all TAGs, 0x00RRGGBB. */
    std::vector<std::uint32_t> Tag_Colors() const;
    /** The label, or the number of a TAG without one. */
    std::string Tag_Name(int tag) const;

    int Marker_Cur() const;
    void Marker_Cur_Set(int marker);
    std::span<std::uint8_t> Marker_Enable();
    std::span<const char* const> Marker_Labels() const;
    void Marker_Label_Set(int marker, const char* label);
    /** 0x00BBGGRR */
    std::uint32_t Marker_Color(int marker) const;
    void Marker_Color_Set(int marker, std::uint32_t color);
    std::string Marker_Name(int marker) const;

    int Brush_Cur() const;
    void Brush_Cur_Set(int brush);
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
