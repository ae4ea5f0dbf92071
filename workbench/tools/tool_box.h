/** All tools, and which one is in hand. */
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "workbench/commands/command_actions.h"
#include "workbench/tools/fill_tool.h"
#include "workbench/tools/growth_tool.h"
#include "workbench/tools/marker_tool.h"
#include "workbench/tools/measure_tool.h"
#include "workbench/tools/paint_tool.h"
#include "workbench/tools/polygon_tool.h"

namespace workbench {

class Tool_Box : public Tool_Actions {
  public:
    /** @param application is not asked for anything here */
    explicit Tool_Box(Tool_Host application) : host(std::move(application)) {}
    Tool_Box(const Tool_Box&) = delete;
    Tool_Box& operator=(const Tool_Box&) = delete;
    ~Tool_Box() override = default;

    void Tool_Choose(Tool_Kind kind) override;
    Tool_Kind Tool_Now() const override { return now; }
    void Band_Only_Set(bool on) override;
    bool Is_Band_Only() const override { return paint.Is_Band_Only(); }
    void Ball_Set(bool on) override;
    bool Is_Ball() const override { return paint.Shape().is_ball; }
    void Brush_Mm_Set(bool on) override;
    bool Is_Brush_Mm() const override { return paint.Shape().is_in_mm; }
    void Fill_In_Space_Set(bool on) override;
    bool Is_Fill_In_Space() const override { return fill_settings.is_in_space; }
    void Fill_Corners_Set(bool on) override;
    bool Is_Fill_Corners() const override { return fill_settings.is_over_corners; }
    void Fill_By_Tolerance_Set(bool on) override;
    bool Is_Fill_By_Tolerance() const override { return fill_settings.is_by_tolerance; }
    void Fill_Tolerance_Ask() override;
    void Tool_Accept() override;
    void Tool_Cancel() override;
    void Measurements_Remove() override { measure.Remove_All(); }

    // What the pictures tell.
    Pixel_Rect Press(const Tool_Spot& spot, Tool_Hand hand);
    Pixel_Rect Move(const Tool_Spot& spot);
    void Release();
    void Hover(const Tool_Spot& spot) { In_Hand().Hover(spot); }
    Brush_Footprint Outline(const Tool_Spot& spot) const { return In_Hand().Outline(spot); }
    std::vector<Shown_Path> Paths(const Plane_Cut& cut) const;

    /** Ends a stroke, also one that was begun without the brush; a marker that is being dragged stays in hand. */
    void Stroke_End();
    /** Ends whatever is being done by a button. */
    void Settle();
    /** @return true: there was something to take over, drop, take back or make larger */
    bool Accept() { return In_Hand().Accept(); }
    bool Cancel() { return In_Hand().Cancel(); }
    bool Step_Back() { return In_Hand().Step_Back(); }
    bool Step(int step) { return In_Hand().Step(step); }
    std::optional<Tool_Slider> Slider(const Plane_Cut& cut) const { return In_Hand().Slider(cut); }
    void Slide(double share) { In_Hand().Slide(share); }
    void Follow(Changes changes);
    /** The TAG of a region that is growing: it is seen though it is hidden. */
    std::optional<std::uint8_t> Preview_Tag() const;
    /** A picture's TAGs with what is seen before it is taken over. @param tags of the picture
     *  @return the same, or what lives until the next call */
    std::span<const std::uint8_t> With_Preview(const Plane_Cut& cut, std::span<const std::uint8_t> tags) const;
    const Measure_Tool& Measurements() const { return measure; }
    /** What the brush is, beyond its size: ", in the band, ball". */
    std::string Brush_Note() const;

  private:
    Image_Tool& Of(Tool_Kind kind);
    Image_Tool& In_Hand() { return Of(now); }
    const Image_Tool& In_Hand() const { return const_cast<Tool_Box*>(this)->Of(now); }
    /** The volume tells how large its voxels are. */
    bool Is_Mm_Known() const;
    /** What fills go by is something else. */
    void Fill_Changed();
    /** The brush is another one. */
    void Brush_Changed(const std::string& told);

    Tool_Host host;
    Paint_Tool paint{host};
    Marker_Tool marker{host};
    Fill_Settings fill_settings;
    Fill_Tool fill{host, fill_settings};
    Growth_Tool growth{host, fill_settings};
    Polygon_Tool polygon{host, Polygon_Kind::Corners};
    Polygon_Tool lasso{host, Polygon_Kind::Lasso};
    Measure_Tool measure{host};
    mutable std::vector<std::uint8_t> previewed;
    Tool_Kind now = Tool_Kind::Paint;
    Image_Tool* held = nullptr;  // acts by a button that is down
};

}  // namespace workbench
