/** Filling from a click. */
#pragma once

#include "workbench/tools/fill_settings.h"
#include "workbench/tools/tool.h"
#include "workbench/tools/tool_host.h"

namespace workbench {

/** Gives the current TAG to what hangs together with the voxel that is clicked, by its levels. One step. */
class Fill_Tool : public Image_Tool {
  public:
    /** @param both outlive the tool */
    Fill_Tool(const Tool_Host& tool_host, const Fill_Settings& fill_settings)
        : host(tool_host), settings(fill_settings) {}

    std::string Hint() const override;
    Pixel_Rect Press(const Tool_Spot& spot, Tool_Hand hand) override;

  private:
    const Tool_Host& host;
    const Fill_Settings& settings;
};

}  // namespace workbench
