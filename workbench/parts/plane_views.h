/** The views of the planes that the volume's slices do not lie in, and the cross-hair that ties all views together. No
 *  window.
 */
#pragma once

#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/model/image_user.h"
#include "workbench/model/session.h"
#include "workbench/model/volume_planes.h"

namespace workbench {

/** A marker wherever it lies. */
struct Placed_Marker {
    int index = 0;
    Shown_Voxel voxel;
    std::uint32_t color = 0;  ///< 0x00BBGGRR
    std::wstring name;
    bool is_current = false;
};

/** What the views need of the application. */
struct Plane_Host {
    std::function<int()> slice;         ///< the shown one
    std::function<void(int)> slice_go;  ///< shows another
    std::function<std::string()>
        sides;  ///< how the patient lies as the user said it, where the file does not; else empty
    std::function<Image_Content()> ground;  ///< what the slices' own view shows: window, TAG colours, range
    std::function<std::vector<Placed_Marker>()> markers;
    std::function<Pixel_Rect(const Plane_Cut& cut, const Slice_Point& at, Tool_Hand hand)> tool_press;
    std::function<Pixel_Rect(const Plane_Cut& cut, const Slice_Point& at)> tool_move;
    std::function<void()> tool_release;
    std::function<Brush_Footprint(const Plane_Cut& cut, const Slice_Point& at)> tool_outline;
    std::function<std::vector<Shown_Path>(const Plane_Cut& cut)> tool_paths;
    /** TAGs of a picture with what is seen before it is taken over; what is answered lives until the next call. */
    std::function<std::span<const std::uint8_t>(const Plane_Cut& cut, std::span<const std::uint8_t> tags)> tool_preview;
    /** Labels that those of the work are compared with, one per voxel; none: they are not. */
    std::function<std::span<const std::uint8_t>()> compared = [] { return std::span<const std::uint8_t>(); };
    std::function<std::optional<Tool_Slider>(const Plane_Cut& cut)> tool_slider = [](const Plane_Cut&) {
        return std::optional<Tool_Slider>();
    };
    std::function<void(double share)> tool_slide = [](double) {};
    std::function<void(bool is_taken)> tool_end = [](bool) {};
    std::function<void()> stroke_end;  ///< the picture becomes another one
    std::function<void(const Shown_Voxel&)> pick;
    /** @param by the view whose pointer it is; @param cut its picture @param at the middle of a pixel of it */
    std::function<void(const Image_User& by, const Plane_Cut& cut, const Slice_Point& at)> hover;
    std::function<void(const Image_User& by)> hover_end;
    std::function<void(float dx, float dy)> window_drag;
    std::function<void()> moved;  ///< the cross-hair: all views show it anew
};

class Plane_Views {
  public:
    static constexpr int VIEW_NB = 2;

    /** @param work must outlive this */
    Plane_Views(const Session& work, Plane_Host application);
    Plane_Views(const Plane_Views&) = delete;
    Plane_Views& operator=(const Plane_Views&) = delete;
    ~Plane_Views() = default;

    /** Another volume is shown, or how its patient lies is known: the cross-hair goes to its middle when it is another
     *  one. */
    void Volume_Look();
    /** The user of a view. @param view 0 or 1 */
    Image_User& User(int view) { return panes[static_cast<std::size_t>(view)]; }
    const Plane_Geometry& Geometry_Of(int view) const { return panes[static_cast<std::size_t>(view)].geometry; }
    Plane Plane_Of(int view) const { return panes[static_cast<std::size_t>(view)].plane; }
    /** Of the pictures that the slices themselves are. */
    std::array<Plane_Geometry::Axis, 3> Slice_Axes() const { return Plane_Geometry_Of_Slices({}, {1, 1, 1}).axes; }
    /** The plane that the slices themselves lie in. */
    Plane Slice_Plane() const { return slice_plane; }
    /** Where the view stands in its plane. */
    int Depth(int view) const { return panes[static_cast<std::size_t>(view)].Depth(); }
    /** The voxel under the cross-hair; its slice is the shown one. Only with a volume. */
    Shown_Voxel Cross() const;
    /** Takes it to the voxel that lies nearest. */
    void Cross_Set(const Shown_Voxel& voxel);
    /** What the slices' own view draws. */
    Image_Cross Cross_In_Slice() const { return {cross_x, cross_y}; }

  private:
    /** One of the views. */
    class Pane : public Image_User {
      public:
        explicit Pane(Plane_Views& views) : owner(views) {}
        Image_Content Content() const override;
        void Slice_Go(int depth) override;
        Pixel_Rect Tool_Press(const Slice_Point& at, Tool_Hand hand) override;
        Pixel_Rect Tool_Move(const Slice_Point& at) override;
        void Tool_Release() override { owner.host.tool_release(); }
        Brush_Footprint Tool_Outline(const Slice_Point& at) const override;
        std::vector<Shown_Path> Tool_Paths() const override;
        std::optional<Tool_Slider> Slider() const override;
        void Slide(double share) override { owner.host.tool_slide(share); }
        void Slider_End(bool is_taken) override { owner.host.tool_end(is_taken); }
        void Pick(int x, int y) override;
        void Hover(int x, int y) override;
        void Hover_End() override { owner.host.hover_end(*this); }
        void Cross_Move(int x, int y) override { owner.Cross_Set(Voxel_Near(x, y)); }
        void Window_Drag(float dx, float dy) override { owner.host.window_drag(dx, dy); }

        int Depth() const;

        Plane plane = Plane::Coronal;
        Plane_Geometry geometry;

      private:
        Plane_Cut Cut() const { return {geometry, Depth()}; }
        bool Has_Picture() const { return owner.session.Has_Volume() && owner.serial == owner.session.Serial(); }
        Shown_Voxel Voxel_At(int x, int y) const { return geometry.To_Voxel({x, y, Depth()}); }
        /** The same for a pixel outside: that of the nearest side. */
        Shown_Voxel Voxel_Near(int x, int y) const;
        void Tags_Copy(const Pixel_Rect& part) const;

        Plane_Views& owner;
        // The picture as it was made last; grey levels do not change while a volume is shown.
        mutable std::vector<std::int32_t> levels;
        mutable std::vector<std::uint8_t> tags;
        mutable std::vector<std::uint8_t> compared;
        mutable std::uint64_t copied_serial = 0;
        mutable std::array<Plane_Geometry::Axis, 3> copied_axes;
        mutable int copied_depth = -1;
    };

    const Session& session;
    Plane_Host host;
    std::array<Pane, VIEW_NB> panes{Pane(*this), Pane(*this)};
    Plane slice_plane = Plane::Axial;
    std::uint64_t serial = 0;  // of the volume that the cross-hair lies in
    int cross_x = 0;
    int cross_y = 0;
};

}  // namespace workbench
