/** Tools: what the buttons do in the pictures of a volume. Each has a state of its own while it acts; none knows
 *  another, a window, or the application. */
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "workbench/model/change.h"
#include "workbench/model/image_user.h"
#include "workbench/model/painting.h"
#include "workbench/model/view_geometry.h"
#include "workbench/model/volume_planes.h"

namespace workbench {

/** Where a tool is used: a point of one of the pictures. */
struct Tool_Spot {
    Plane_Cut cut;
    Slice_Point at;  ///< pixels of the picture; outside it only while a button is held

    int X() const;
    int Y() const;
    bool Is_Inside() const { return cut.geometry.Has(X(), Y()); }
    /** The voxel there, or the nearest one of the picture. */
    Shown_Voxel Voxel() const;
};

class Image_Tool {
  public:
    virtual ~Image_Tool() = default;
    /** One line about what the buttons do. UTF-8 */
    virtual std::string Hint() const = 0;
    /** Whether it acts by this hand; the brush does by all that a tool leaves. */
    virtual bool Is_For(Tool_Hand hand) const { return hand == Tool_Hand::Left; }

    /** @return pixels of the picture whose TAGs may have changed, here and in Move */
    virtual Pixel_Rect Press(const Tool_Spot& spot, Tool_Hand hand) = 0;
    /** While it is pressed; the picture may have become another one. */
    virtual Pixel_Rect Move(const Tool_Spot&) { return {}; }
    /** After a press, once. */
    virtual void Release() {}
    /** The pointer goes over a picture, and nothing is pressed. */
    virtual void Hover(const Tool_Spot&) {}

    /** Takes over what is begun. @return false: nothing is */
    virtual bool Accept() { return false; }
    /** Drops what is begun. @return false: nothing is */
    virtual bool Cancel() { return false; }
    /** Takes the last part of what is begun back. @return false: there is none */
    virtual bool Step_Back() { return false; }
    /** Larger or smaller, of what is begun. @return false: nothing is */
    virtual bool Step(int) { return false; }
    /** What is chosen by a slider in this picture; no value: nothing. */
    virtual std::optional<Tool_Slider> Slider(const Plane_Cut&) const { return std::nullopt; }
    /** @param share of the slider, 0 .. 1 */
    virtual void Slide(double) {}
    /** Something has changed that was not its own doing. */
    virtual void Follow(Changes) {}

    /** What a press would touch, relative to the pixel; empty: there is no outline. */
    virtual Brush_Footprint Outline(const Tool_Spot&) const { return {}; }
    /** Adds the lines that it draws over a picture. */
    virtual void Paths_Add(const Plane_Cut&, std::vector<Shown_Path>&) const {}
};

}  // namespace workbench
