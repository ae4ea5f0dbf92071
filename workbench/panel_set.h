/** The tool panels at the left of the window, each with what hosts it. */
#pragma once

#include <array>
#include <functional>

#include "histogram/tool_histo.h"
#include "panels/tool_brush.h"
#include "panels/tool_marker.h"
#include "panels/tool_propagate.h"
#include "panels/tool_tag.h"
#include "workbench/commands/command_actions.h"
#include "workbench/commands/pane.h"
#include "workbench/host_variables.h"
#include "workbench/hosted_histogram.h"
#include "workbench/tool_area.h"

namespace workbench {

/** What the panels tell when they are clicked. */
struct Panel_Clicks {
    std::function<void(int)> tag;
    std::function<void(int)> brush;
    std::function<void(int)> marker;
    std::function<void()> histogram;
};

class Panel_Set {
  public:
    /** Both outlive it. */
    Panel_Set(Look& shared_look, Host_Variables& host_variables);
    Panel_Set(const Panel_Set&) = delete;
    Panel_Set& operator=(const Panel_Set&) = delete;

    bool Make(HWND parent) { return area.Make(parent); }
    /** Puts the panels into the column. Once, after Make and when the settings are known. */
    void Add(Panel_Clicks clicks);
    /** The column is laid out anew, for example after a change of the look. */
    void Lay_Out();

    Tool_Area& Area() { return area; }
    const Tool_Area& Area() const { return area; }
    /** The window of one of the tool panels; only after Add. */
    Panel_Host& Host(Pane pane) { return *hosts[static_cast<std::size_t>(Tool_Of(pane))]; }
    /** The text at the right of a panel's heading. */
    void Note_Set(Pane pane, const std::wstring& note) { area.Note_Set(&Host(pane), note); }
    /** Names for screen readers. */
    void Accessible_Names();
    /** The wheel over the column or a panel of it. @return false: it is elsewhere */
    bool Wheel(POINT screen, int delta);

    /** Has a TAG's button in view. */
    void Tag_Scroll_To(int tag);
    /** Another number of TAGs is offered. */
    void Tag_Rows_Show();
    void Tag_Options_Set(Tag_Mark check_mark, bool is_threshold_mode);
    void Propagation_Set(int (*function)(void* from, void* to)) { propagate_panel.Set(function); }
    /** @return pixels carried */
    int Propagate(int direction);

    Tool_Histo& Histogram() { return histogram_panel; }
    const Tool_Histo& Histogram() const { return histogram_panel; }
    Hosted_Histogram& Histogram_Hosted() { return hosted_histogram; }
    /** Opens the enlarged histogram, or brings it to the front. */
    void Histogram_Enlarge();
    /** Magnifies so that one overfull bin, as the air around a head makes, does not flatten the rest; not when the user
     *  has chosen a magnification. */
    void Histogram_Scale_Suggest();
    /** +1 magnifies the counts. */
    void Histogram_Scale_Step(int step);

  private:
    Look& look;
    Host_Variables& variables;
    Tool_Tag tag_panel;
    Tool_Marker marker_panel;
    Tool_Brush brush_panel;
    Tool_Propagate propagate_panel;
    Tool_Histo histogram_panel;
    Panel_Of<Tool_Tag> hosted_tag;
    Panel_Of<Tool_Marker> hosted_marker;
    Panel_Of<Tool_Brush> hosted_brush;
    Panel_Of<Tool_Propagate> hosted_propagate;
    Hosted_Histogram hosted_histogram;
    Tool_Area area;
    std::array<Panel_Host*, 5> hosts{};  // owned by the area, in the order of Pane
    int tag_rows_shown = 0;              // by how many TAGs the panel was laid out
};

}  // namespace workbench
