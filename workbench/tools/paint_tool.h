/** The brush. */
#pragma once

#include "workbench/tools/brush_shape.h"
#include "workbench/tools/tool.h"
#include "workbench/tools/tool_host.h"

namespace workbench {

/** Paints the current TAG, erases by the right button. */
class Paint_Tool : public Image_Tool {
  public:
    /** @param tool_host outlives the tool */
    explicit Paint_Tool(const Tool_Host& tool_host) : host(tool_host) {}

    /** Only voxels of the current TAG's band take the brush, also the one that erases. */
    void Band_Only_Set(bool on) { is_band_only = on; }
    bool Is_Band_Only() const { return is_band_only; }
    void Shape_Set(const Brush_Shape& wanted) { shape = wanted; }
    const Brush_Shape& Shape() const { return shape; }

    std::string Hint() const override { return "The left button paints"; }
    bool Is_For(Tool_Hand) const override { return true; }
    Pixel_Rect Press(const Tool_Spot& spot, Tool_Hand hand) override;
    Pixel_Rect Move(const Tool_Spot& spot) override;
    void Release() override;
    Brush_Footprint Outline(const Tool_Spot& spot) const override;

  private:
    Paint_Ink Ink(bool erase) const;

    const Tool_Host& host;
    bool is_band_only = false;
    Brush_Shape shape;
};

}  // namespace workbench
