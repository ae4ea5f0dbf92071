/** Growing a region from a click, shown before it is taken over. */
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "workbench/tools/fill_settings.h"
#include "workbench/tools/growth_mask.h"
#include "workbench/tools/picture_edit.h"
#include "workbench/tools/tool.h"
#include "workbench/tools/tool_host.h"

namespace workbench {

/** A region while its tolerance is being chosen. */
struct Growing_Region {
    segmentation::Flood flood;
    std::optional<Picture_Ground> ground;  ///< in a picture; no value: in space
    std::int32_t reach = 0;                ///< levels that the growth knows
    segmentation::Region_Growth growth;
    mutable Growth_Mask mask;                  ///< in space: what the tolerance reached when it was drawn last
    std::array<Plane_Geometry::Axis, 3> axes;  ///< of the picture that was clicked
    double begun_at = 0.0;                     ///< the pointer's place across the picture
    double begun_tolerance = 0.0;
};

/** A click begins; dragging to the right and Step widen the tolerance; nothing changes before Accept. */
class Growth_Tool : public Image_Tool {
  public:
    /** @param both outlive the tool; the tolerance that was used last is kept in the settings */
    Growth_Tool(const Tool_Host& tool_host, Fill_Settings& fill_settings) : host(tool_host), settings(fill_settings) {}

    std::string Hint() const override {
        return "A click grows a region; drag to the right, or press ] and [, for more and less; Enter takes it over, "
               "Escape drops it";
    }
    Pixel_Rect Press(const Tool_Spot& spot, Tool_Hand hand) override;
    Pixel_Rect Move(const Tool_Spot& spot) override;
    bool Accept() override;
    bool Cancel() override;
    bool Step(int step) override;
    /** In the plane that was clicked in: the tolerance, small ones with more room. */
    std::optional<Tool_Slider> Slider(const Plane_Cut& cut) const override;
    void Slide(double share) override;
    void Follow(Changes changes) override;

    bool Is_Growing() const { return growing.has_value(); }
    /** The TAG that it would give. Only while it is growing. */
    std::uint8_t Tag() const { return growing->flood.tag; }
    /** Gives the pixels of a picture that the region has its TAG. @param picture one TAG per pixel */
    void Preview(const Plane_Cut& cut, std::span<std::uint8_t> picture) const;

  private:
    segmentation::Edit_Input Input(const Growing_Region& of) const;
    /** Finds what the tolerance, and as much again, reaches. @return false: given up, or no memory; nothing is begun
     *  then */
    bool Find();
    /** Levels that a growth should know for the tolerance: never more than the image has. */
    std::int32_t Reach_Wanted() const;
    void Tolerance_Set(double wanted);
    /** Levels at the slider's end. */
    double Slider_Most() const;
    std::int32_t Levels() const { return Levels_Of_Greys(settings.tolerance, host.work().Image()); }
    /** "Growing T by a tolerance of 12: 345 voxels". */
    std::string Text() const;
    void Tell() const;

    const Tool_Host& host;
    Fill_Settings& settings;
    std::optional<Growing_Region> growing;
};

}  // namespace workbench
