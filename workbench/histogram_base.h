/** The histogram panel as the tool area hosts it. */
#pragma once

#include <functional>
#include <utility>

#include "histogram/tool_histo.h"
#include "workbench/panel_host.h"

namespace workbench {

/** Its magnification outlives a change of the layout, and nothing stays on the screen of counts that are gone. */
class Histogram_Base : public Panel_Of<Tool_Histo> {
  public:
    Histogram_Base(Tool_Histo& hosted, std::function<int(Tool_Histo&)> wanted)
        : Panel_Of<Tool_Histo>(hosted, std::move(wanted)), histogram(hosted) {}
    void Resize(Boxs* box) override;
    /** Draws the whole panel when its counts come or go: an empty histogram paints nothing by itself. */
    void Update(unsigned __int64 flags) override;
    /** Share of the largest count that reaches the top of the plot. Paints nothing. */
    void Scale_Set(float scale);

  private:
    bool Has_Counts() const { return histogram.data != nullptr && histogram.data->Has_Counts(); }

    Tool_Histo& histogram;
};

}  // namespace workbench
