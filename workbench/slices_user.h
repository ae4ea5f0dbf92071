/** What the pictures of the image show, and what the mouse does in them. */
#pragma once

#include <functional>
#include <optional>
#include <vector>

#include "workbench/host_variables.h"
#include "workbench/model/image_user.h"
#include "workbench/model/label_attributes.h"
#include "workbench/model/settings.h"
#include "workbench/model/workspace.h"
#include "workbench/parts/plane_views.h"
#include "workbench/status_line.h"
#include "workbench/tools/tool_box.h"
#include "workbench/volume_objects.h"

namespace workbench {

class Segmentation_Control;
class Segmentation_Services;
class Tag_Control;
class View_Control;

/** What it works on. All outlive it. */
struct Slices_Parts {
    Workspace& work;
    Host_Variables& variables;
    Label_Attributes& labels;
    Volume_Objects& objects;
    const Settings& settings;
    Tool_Box& tools;
    Tag_Control& tags;
    View_Control& view;
    const Segmentation_Control& segmentation;
    const Segmentation_Services& segmentation_services;
    Plane_Views& planes;
    Status_Line& status_line;
};

/** Answers the view of the slices, and the other planes through Plane_Services. */
class Slices_User : public Image_User {
  public:
    explicit Slices_User(const Slices_Parts& parts) : of(parts) {}

    Image_Content Content() const override { return Content_Of(of.work.slice); }
    void Slice_Go(int slice) override;
    Pixel_Rect Tool_Press(const Slice_Point& at, Tool_Hand hand) override;
    Pixel_Rect Tool_Move(const Slice_Point& at) override;
    void Tool_Release() override { of.tools.Release(); }
    Brush_Footprint Tool_Outline(const Slice_Point& at) const override;
    std::vector<Shown_Path> Tool_Paths() const override;
    std::optional<Tool_Slider> Slider() const override;
    void Slide(double share) override { of.tools.Slide(share); }
    void Slider_End(bool is_taken) override { is_taken ? of.tools.Tool_Accept() : of.tools.Tool_Cancel(); }
    void Pick(int x, int y) override { Voxel_Pick({x, y, of.work.slice}); }
    void Hover(int x, int y) override;
    void Hover_End() override { View_Left(*this); }
    void Cross_Move(int x, int y) override { of.planes.Cross_Set({x, y, of.work.slice}); }
    void Window_Drag(float dx, float dy) override;

    /** What the view of the slices would show of another one; valid while none changes. */
    Image_Content Content_Of(int slice) const;
    Plane_Host Plane_Services();
    /** The voxel under the mouse, in whatever view. */
    const std::optional<Shown_Voxel>& Hovered() const { return hovered; }
    /** Tells of the pixel under the mouse as it is now. */
    void Voxel_Show();

  private:
    /** What the image is tinted with: the band of the current TAG, or the bands of all. */
    std::vector<Range_Overlay> Ranges_Now() const;
    Tag_Overlay Overlay_Now() const;
    /** Where the slice's labels differ from those that they are compared with. */
    void Differences_Add(Image_Content& content, int slice) const;
    std::vector<Placed_Marker> Placed_Markers() const;
    /** A point of the shown slice. */
    Tool_Spot Spot(const Slice_Point& at) const { return {{of.work.session.Slice_Pictures(), of.work.slice}, at}; }
    void Voxel_Pick(const Shown_Voxel& voxel);
    void Voxel_Hover(const Image_User& by, const Shown_Voxel& voxel);
    void View_Left(const Image_User& by);

    Slices_Parts of;
    std::optional<Shown_Voxel> hovered;      // under the mouse
    const Image_User* hovered_by = nullptr;  // the view that has told it
};

}  // namespace workbench
