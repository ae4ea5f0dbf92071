/** Placing and moving markers. */
#pragma once

#include "workbench/tools/tool.h"
#include "workbench/tools/tool_host.h"

namespace workbench {

/** The left button places the current marker, or moves the one that it hits. */
class Marker_Tool : public Image_Tool {
  public:
    /** @param tool_host outlives the tool */
    explicit Marker_Tool(const Tool_Host& tool_host) : host(tool_host) {}

    std::string Hint() const override { return "The left button places the current marker, or moves the one it hits"; }
    Pixel_Rect Press(const Tool_Spot& spot, Tool_Hand hand) override;
    Pixel_Rect Move(const Tool_Spot& spot) override;
    void Release() override;

  private:
    void Drag_To(const Shown_Voxel& voxel);

    const Tool_Host& host;
    int dragged = -1;  // marker; -1: none
    Marker before;     // its place when it was taken hold of
};

}  // namespace workbench
