/** Polygon and lasso: a drawn line whose inside is painted or erased. */
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "workbench/tools/tool.h"
#include "workbench/tools/tool_host.h"

namespace workbench {

/** The pixels whose middles lie inside a closed line; where lines cross, even and odd decide. A middle on a left or
 *  upper side counts, one on a right or lower side does not.
 *  @return rows of the picture, cut to it */
Brush_Footprint Polygon_Pixels(const std::vector<Slice_Point>& points, int width, int height);

enum class Polygon_Kind {
    Corners,  ///< clicks set corners; Accept, or a click on the first one, closes it
    Lasso,    ///< drawn with the button down; closed by its release
};

/** A line that is being drawn. */
struct Drawn_Polygon {
    Plane_Cut cut;
    std::uint64_t serial = 0;  ///< of the volume
    bool is_erasing = false;
    std::vector<Slice_Point> points;
    std::optional<std::size_t> dragged;  ///< corner
    std::optional<Slice_Point> pointer;  ///< over the picture
};

/** The left button paints the inside with the current TAG, the right one erases it; one step. */
class Polygon_Tool : public Image_Tool {
  public:
    /** @param tool_host outlives the tool */
    Polygon_Tool(const Tool_Host& tool_host, Polygon_Kind polygon_kind) : host(tool_host), kind(polygon_kind) {}

    std::string Hint() const override;
    bool Is_For(Tool_Hand hand) const override { return hand != Tool_Hand::Pen; }
    Pixel_Rect Press(const Tool_Spot& spot, Tool_Hand hand) override;
    Pixel_Rect Move(const Tool_Spot& spot) override;
    void Release() override;
    void Hover(const Tool_Spot& spot) override;
    bool Accept() override;
    bool Cancel() override;
    bool Step_Back() override;
    void Follow(Changes changes) override;
    void Paths_Add(const Plane_Cut& cut, std::vector<Shown_Path>& paths) const override;

  private:
    bool Is_On(const Plane_Cut& cut) const;
    /** The corner at a place, if there is one. */
    std::optional<std::size_t> Corner_At(const Slice_Point& at) const;
    void Close();

    const Tool_Host& host;
    Polygon_Kind kind;
    std::optional<Drawn_Polygon> drawn;
};

}  // namespace workbench
