/** Names, colours, thresholds and states of TAGs and markers as the panels read them. */
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace workbench {

/** Arrays per TAG have TAG_MAX elements always. `const char*` are texts of the panels, in the system's code page; null:
 *  no name. Thresholds are in the unit of Panel_Scale. Who writes here notes it in the hub. */
class Label_Values {
  public:
    virtual ~Label_Values() = default;

    virtual int Tag_Nb() const = 0;
    virtual void Tag_Nb_Set(int nb) = 0;
    virtual int Tag_Cur() const = 0;
    virtual void Tag_Cur_Set(int tag) = 0;
    virtual std::span<std::uint8_t> Tag_Enable() = 0;
    virtual std::span<std::uint8_t> Tag_Select() = 0;
    virtual std::span<std::uint8_t> Tag_Lock() = 0;
    virtual std::span<float> Threshold_Min() = 0;
    virtual std::span<float> Threshold_Max() = 0;
    virtual std::span<const char* const> Tag_Labels() const = 0;
    virtual void Tag_Label_Set(int tag, const char* label) = 0;
    /** 0x00RRGGBB, as the panels show it; the background is grey. */
    virtual std::uint32_t Tag_Color(int tag) const = 0;
    /** @param tag 1 .. TAG_MAX - 1; @param color 0x00RRGGBB */
    virtual void Tag_Color_Set(int tag, std::uint32_t color) = 0;
    /** Of all TAGs, 0x00RRGGBB. */
    virtual std::vector<std::uint32_t> Tag_Colors() const = 0;
    /** The label, or the number of a TAG without one; in the system's code page. */
    virtual std::string Tag_Name(int tag) const = 0;

    virtual int Marker_Cur() const = 0;
    virtual void Marker_Cur_Set(int marker) = 0;
    virtual std::span<std::uint8_t> Marker_Enable() = 0;
    virtual std::span<const char* const> Marker_Labels() const = 0;
    virtual void Marker_Label_Set(int marker, const char* label) = 0;
    /** 0x00BBGGRR */
    virtual std::uint32_t Marker_Color(int marker) const = 0;
    virtual void Marker_Color_Set(int marker, std::uint32_t color) = 0;
    virtual std::string Marker_Name(int marker) const = 0;

    virtual int Brush_Cur() const = 0;
    virtual void Brush_Cur_Set(int brush) = 0;

    /** Between the system's code page and UTF-8; letters that the code page lacks become question marks. */
    virtual std::string Utf8_Of(const char* panel_text) const = 0;
    virtual std::string Panel_Text_Of(const std::string& utf8) const = 0;
};

}  // namespace workbench
