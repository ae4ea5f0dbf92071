/** The histogram panel as the tool area hosts it. */
#pragma once

#include <functional>
#include <utility>

#include "histogram/tool_histo.h"
#include "workbench/panel_host.h"

namespace workbench {

/** Its magnification outlives a change of the layout, and nothing stays on the screen of counts that are gone. */
class Hosted_Histogram : public Panel_Of<Tool_Histo> {
  public:
    Hosted_Histogram(Tool_Histo& hosted, std::function<int(Tool_Histo&)> wanted)
        : Panel_Of<Tool_Histo>(hosted, std::move(wanted)), histogram(hosted), put_scale(hosted.scale) {}
    void Resize(Boxs* box) override;
    /** Draws the whole panel when its counts come or go: an empty histogram paints nothing by itself. */
    void Update(unsigned __int64 flags) override;
    /** The user sets the share of the largest count that reaches the top of the plot. Paints nothing. */
    void Scale_Set(float scale);
    /** The user may have used the panel's own slider. */
    void Scale_Note();
    /** Proposes a magnification for the counts of now, unless the user has set one. Paints nothing.
     *  @return whether it changed */
    bool Scale_Suggest();
    /** Another image: it may be proposed again. */
    void Scale_Release();

  private:
    bool Has_Counts() const { return histogram.data != nullptr && histogram.data->Has_Counts(); }

    void Scale_Put(float scale);

    Tool_Histo& histogram;
    bool is_scale_chosen = false;  // by the user
    float put_scale = 0.0F;        // what it was set to otherwise
};

}  // namespace workbench
