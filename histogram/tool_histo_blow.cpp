// What the enlarged window shows and how its controls answer. Messages are taken apart in tool_histo_blow_input.cpp.
#include "histogram/tool_histo_blow.h"

#include <algorithm>
#include <array>
#include <cstdio>
#include <cstring>

#include "histogram/blow_layout.h"
#include "histogram/histo_peak.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_export.h"
#include "histogram/tool_histo_plot.h"
#include "host/kit_common.h"
#include "host/kit_graph.h"
#include "kits/widgets/widgets_host.h"
#include "panels/protocol/host_variables.h"
#include "panels/protocol/widget_place.h"

Histo_Blow_State histo_blow;

namespace {

constexpr int MODE_TRACE_LEVEL = 14;
constexpr int MODE_TRACE_FLAG = 4;  // the host's trace flag from which the handlers are traced
constexpr int MOTION_LEVEL = 10;
constexpr int ZOOM_LEVEL = 11;

constexpr std::array<unsigned char, 3> PLOT_COLOR = {32, 34, 38};
constexpr std::array<unsigned char, 3> CONTROL_COLOR = {74, 78, 86};

// The trailing blanks belong to the labels.
constexpr const char* PEAK_LABEL = "Display Peak    ";
constexpr const char* TAG_LABEL = "Display TAG      ";
constexpr const char* CURSOR_LABEL = "Display Cursor ";

// A segment has no curve to sum up, so it is only shown or not.
constexpr std::array<const char*, 2> SWITCH_CHOICES = {"Off", "On"};
constexpr std::array<const char*, 3> PEAK_CHOICES = {"Off", "Composite", "Individual"};

/** The handlers' own trace. */
template <class... Arguments>
void Trace_Mode(const char* format, Arguments... arguments) {
    if (Flag_Trace >= MODE_TRACE_FLAG) {
        if constexpr (sizeof...(arguments) == 0) {
            Error_Fct(hwnd, MODE_TRACE_LEVEL, "%s", format);
        } else {
            Error_Fct(hwnd, MODE_TRACE_LEVEL, format, arguments...);
        }
    }
}

/** The host's font for one kind of text. The names are copied: the host may replace its texts while the window is open.
 */
struct Window_Font {
    std::array<char, 64> name{};
    std::array<char, 16> weight{};
    int height = 0;

    void Read(const char* name_variable, const char* weight_variable, const char* scale_variable) {
        Copy(name, name_variable);
        Copy(weight, weight_variable);
        height = Host_Dimension(scale_variable);
    }
    void Give(Tools& widget) const {
        widget.font_name = name[0] != 0 ? name.data() : nullptr;
        widget.font_weight = weight.data();
        widget.font_scale = static_cast<short>(height);
    }

  private:
    template <std::size_t size>
    static void Copy(std::array<char, size>& out, const char* variable) {
        const char* text = Host_Pointer<const char>(variable);
        std::snprintf(out.data(), size, "%s", text != nullptr ? text : "");
    }
};
Window_Font title_font;
Window_Font tool_font;

/** The titles of the axes, for which the present layout was made: a plot without them has more room. */
struct Axis_Titles {
    std::array<char, HISTO_LABEL_SIZE> x{};
    std::array<char, HISTO_LABEL_SIZE> y{};

    /** Takes the shown panel's titles over. @return true when they differ from those before */
    bool Follow() {
        const Axis_Titles before = *this;
        const Tool_Histo* panel = histo_blow.panel;
        std::snprintf(x.data(), x.size(), "%s", panel != nullptr ? panel->x_label : "");
        std::snprintf(y.data(), y.size(), "%s", panel != nullptr ? panel->y_label : "");
        return std::strcmp(x.data(), before.x.data()) != 0 || std::strcmp(y.data(), before.y.data()) != 0;
    }
};
Axis_Titles titles;

/** The record on show, null when there is nothing to plot. */
const Histo_Record* Shown_Record() {
    const Tool_Histo* panel = histo_blow.panel;
    return panel != nullptr && panel->data != nullptr && panel->data->Has_Counts() ? panel->data->record : nullptr;
}

/** Brings the limits of zoom and pan in line with the data and the window. @return false: there is nothing to zoom */
bool View_Refresh() {
    const Histo_Record* record = Shown_Record();
    if (record == nullptr || histo_blow.area.Is_Empty()) {
        return false;
    }
    histo_blow.view.Full_View_Set(*record, histo_blow.area);
    return true;
}

bool Has_Peak_Select() {
    return histo_blow.peak_select.item_nb > 0;
}

Histo_Plot_Scene Scene_Now() {
    Histo_Plot_Scene scene;
    scene.box = histo_blow.plot;
    scene.font_height = tool_font.height;
    scene.area = histo_blow.area;
    scene.x = histo_blow.view.Visible_X();
    scene.y = histo_blow.view.Visible_Y();
    scene.tag = histo_blow.display_tag != 0;
    scene.peak = Has_Peak_Select() ? histo_blow.display_peak : HISTO_PEAK_OFF;
    return scene;
}

bool Is_In_Plot(int x, int y) {
    const Boxs& plot = histo_blow.plot;
    return x >= plot.x && x < plot.x + plot.width && y >= plot.y && y < plot.y + plot.height;
}

// ---- layout

void Select_Place(Selects& select, const Blow_Layout& layout, std::size_t slot) {
    tool_font.Give(select);
    select.font_scale = static_cast<short>(layout.select_font);
    select.Set_Color(PLOT_COLOR[0], PLOT_COLOR[1], PLOT_COLOR[2]);
    select.border = histo_blow.plot.border;
    select.arrow = static_cast<short>(layout.select_arrow);
    Widget_Place(select, layout.select[slot]);
    select.Init(histo_blow.window);
}

void Button_Place(Buttons& button, const char* caption, const Pixel_Rectangle& rectangle) {
    title_font.Give(button);
    button.Set_Color(CONTROL_COLOR[0], CONTROL_COLOR[1], CONTROL_COLOR[2]);
    button.border = histo_blow.plot.border;
    button.Set_Name("%s", caption);
    Widget_Place(button, rectangle);
    button.Init(histo_blow.window);
}

void Lay_Out() {
    title_font.Read("$INTERFACE_TITLE_FONT_NAME", "$INTERFACE_TITLE_FONT_WEIGHT", "$INTERFACE_TITLE_FONT_SCALE");
    tool_font.Read("$INTERFACE_TOOL_FONT_NAME", "$INTERFACE_TOOL_FONT_WEIGHT", "$INTERFACE_TOOL_FONT_SCALE");
    Blow_Metrics metrics;
    metrics.client_width = histo_blow.width;
    metrics.client_height = histo_blow.height;
    metrics.button_height = std::max<int>(Host_Dimension("$INTERFACE_BUTTON_DIM_BIG"), 0);
    metrics.space = std::max<int>(Host_Dimension("$INTERFACE_SPACE_DIM"), 0);
    metrics.font_height = tool_font.height;
    metrics.select_nb = Has_Peak_Select() ? 3 : 2;
    const Blow_Layout layout = Blow_Layout_Make(metrics);

    Boxs& plot = histo_blow.plot;
    plot.style = STYLE_FRAMED_BOX;
    plot.border = static_cast<unsigned short>(std::max<int>(Host_Dimension("$INTERFACE_BORDER_DIM"), 0));
    plot.Set_Color(PLOT_COLOR[0], PLOT_COLOR[1], PLOT_COLOR[2]);
    tool_font.Give(plot);
    Widget_Place(plot, layout.plot);
    plot.window = histo_blow.window;
    const Plot_Area area = Plot_Window_Area(plot, titles.x.data(), titles.y.data(), layout.top_reserved);
    const int free_above = plot.y + plot.height - layout.top_reserved - (area.bottom + area.height);
    plot.font_scale =
        static_cast<short>(Blow_Axis_Font(tool_font.height, area.left - plot.x, area.height + 2 * free_above));
    histo_blow.area = {area.left, area.bottom, area.width, area.height};
    plot.Init(histo_blow.window);
    Button_Place(histo_blow.reset_button, "Reset Zoom", layout.reset_button);
    Button_Place(histo_blow.export_button, "Export", layout.export_button);
    Select_Place(histo_blow.tag_select, layout, 0);
    Select_Place(histo_blow.cursor_select, layout, 1);
    if (Has_Peak_Select()) {
        Select_Place(histo_blow.peak_select, layout, 2);
    }
}

template <std::size_t nb>
void Choices_Set(Selects& select, const char* label, const std::array<const char*, nb>& choices, int current) {
    select.Set_Name("%s", label);
    if (select.Grow(nb, 0) == 0) {
        return;
    }
    for (std::size_t i = 0; i < nb; ++i) {
        std::snprintf(select.item[i].text, sizeof select.item[i].text, "%s", choices[i]);
    }
    select.current = static_cast<short>(current);
}

/** Gives the selector of the peaks the choices that fit the panel's peaks. @return true when it came, went or changed
 */
bool Peak_Select_Follow() {
    const Tool_Histo* panel = histo_blow.panel;
    const Histo_Peak* first = panel != nullptr && panel->data != nullptr ? panel->data->peak_first : nullptr;
    Selects& select = histo_blow.peak_select;
    const bool segments = first != nullptr && first->type == PEAK_SEGMENT;
    const auto wanted = static_cast<int>(first == nullptr ? 0 : segments ? SWITCH_CHOICES.size() : PEAK_CHOICES.size());
    if (wanted == select.item_nb) {
        return false;
    }
    if (wanted == 0) {
        select.Grow(0, 0);
        return true;
    }
    histo_blow.display_peak = std::min(histo_blow.display_peak, wanted - 1);
    if (segments) {
        Choices_Set(select, PEAK_LABEL, SWITCH_CHOICES, histo_blow.display_peak);
    } else {
        Choices_Set(select, PEAK_LABEL, PEAK_CHOICES, histo_blow.display_peak);
    }
    return true;
}

/** "Export" works only while there is something to export. */
void Export_Button_Follow(bool has_record) {
    const unsigned int style = has_record ? STYLE_BUTTON : STYLE_INACTIVE;
    if (histo_blow.export_button.style != style) {
        histo_blow.export_button.style = style;
        histo_blow.export_button.Init(histo_blow.window);
    }
}

// ---- controls

bool Any_Button_Held() {
    return getbutton(1) != 0 || getbutton(2) != 0 || getbutton(4) != 0;
}

/** A drop list or a dialog may have taken the release: a rectangle that nobody holds any more is let go. */
void Drag_Drop_Unheld() {
    if (!Any_Button_Held()) {
        Histo_Blow_Drag_Drop();
    }
}

void Reset_Press() {
    Histo_Blow_Button_Press(histo_blow.reset_button);
    histo_blow.view.Reset();
    histo_blow.dragging = false;
    Histo_Blow_Redraw();
    Local_Drag_Clear(Scene_Now());
    Histo_Blow_Button_Release(histo_blow.reset_button);
}

void Export_Press() {
    static bool asking = false;
    if (asking || histo_blow.panel == nullptr) {
        return;
    }
    asking = true;
    // The dialog belongs to the application's main window; this window must not take clicks beside it.
    const HWND window = histo_blow.window;
    Histo_Blow_Enable(window, false);
    Histo_Export(*histo_blow.panel, histo_blow.export_button);
    if (histo_blow.window == window) {
        Histo_Blow_Enable(window, true);
    }
    asking = false;
}

/** @return true when the press fell on the selector */
bool Select_Press(Selects& select, int& display, int up_down) {
    const HWND window = histo_blow.window;
    if (select.item_nb <= 0) {
        return false;
    }
    const bool is_hit = select.Select(up_down) != 0;
    // While the drop list was open other messages were handled: the panel may be gone, and the window with it.
    if (histo_blow.window != window) {
        return true;
    }
    const int choice = select.Read();
    if (!is_hit || choice < 0 || choice >= select.item_nb) {
        return is_hit;
    }
    select.current = static_cast<short>(choice);
    select.Adjust();
    display = choice;
    Histo_Blow_Redraw();
    return true;
}

int Control_Press(int up_down) {
    if (histo_blow.reset_button.Select(up_down) != 0) {
        Reset_Press();
        return 1;
    }
    bool taken = false;
    if (histo_blow.export_button.Select(up_down) != 0) {
        Export_Press();
        taken = true;
    } else {
        taken = Select_Press(histo_blow.cursor_select, histo_blow.display_cursor, up_down) ||
                Select_Press(histo_blow.tag_select, histo_blow.display_tag, up_down) ||
                Select_Press(histo_blow.peak_select, histo_blow.display_peak, up_down);
    }
    if (taken && histo_blow.window != nullptr) {
        Drag_Drop_Unheld();
    }
    return taken ? 1 : 0;
}

int Drag_End() {
    if (!histo_blow.dragging) {
        return 0;
    }
    histo_blow.dragging = false;
    Local_Drag_Clear(Scene_Now());
    if (!View_Refresh() || !histo_blow.view.Zoom_Rectangle(histo_blow.drag)) {
        return 1;
    }
    const Blow_View& view = histo_blow.view;
    Error_Fct(hwnd, ZOOM_LEVEL, "org: %.2f/%.2f  scale: %.2f/%.2f", static_cast<double>(view.X().at.origin),
              static_cast<double>(view.Y().at.origin), static_cast<double>(view.X().at.scale),
              static_cast<double>(view.Y().at.scale));
    Histo_Blow_Redraw();
    Local_Drag_Clear(Scene_Now());
    return 1;
}

/** Turns a selector by the wheel. @return true when the pointer is over it */
bool Select_Scroll(Selects& select, int& display, int notches) {
    if (select.item_nb <= 0 || select.Select(MOUSE_ASK) == 0) {
        return false;
    }
    display = select.Scroll(-notches);
    return true;
}

}  // namespace

// ---- handlers

void Histo_Blow_Begin(HWND window) {
    histo_blow.window = window;
    histo_blow.dragging = false;
    histo_blow.view.Reset();
    Window_Axis_Set(window, Window_Axis::Up);
    Choices_Set(histo_blow.tag_select, TAG_LABEL, SWITCH_CHOICES, histo_blow.display_tag);
    Choices_Set(histo_blow.cursor_select, CURSOR_LABEL, SWITCH_CHOICES, histo_blow.display_cursor);
    Histo_Plot_Marks_Forget();
}

void Histo_Blow_Button_Press(Buttons& button) {
    button.current = 1;
    button.Adjust();
}

void Histo_Blow_Button_Release(Buttons& button) {
    button.current = 0;
    if (histo_blow.window != nullptr) {
        button.Deselect();
        button.Adjust();
    }
}

void Histo_Blow_Controls_Leave() {
    histo_blow.reset_button.Deselect();
    histo_blow.export_button.Deselect();
    histo_blow.tag_select.Deselect();
    histo_blow.cursor_select.Deselect();
    histo_blow.peak_select.Deselect();
}

void Histo_Blow_End() {
    // The controls outlive the window: none may be lit up when it opens again.
    Histo_Blow_Controls_Leave();
    // The handle goes first, so that the panel draws its button released.
    const HWND window = histo_blow.window;
    histo_blow.window = nullptr;
    histo_blow.dragging = false;
    Tool_Histo* panel = histo_blow.panel;
    histo_blow.panel = nullptr;
    Histo_Plot_Marks_Forget();
    Histo_Plot_Picture_Free();
    Window_Forget(window);
    if (panel != nullptr) {
        panel->Draw();
    }
}

int Histo_Blow_Resize(HWND window, int client_width, int client_height) {
    Trace_Mode("Mode Histo: Histo_Blow_Resize(wind=%08x,dim=%dx%d)",
               static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(window)), client_width, client_height);
    constexpr int largest = 32767;
    histo_blow.hidden = client_width <= 0 || client_height <= 0;
    if (!histo_blow.hidden) {
        histo_blow.width = static_cast<std::int16_t>(std::min(client_width, largest));
        histo_blow.height = static_cast<std::int16_t>(std::min(client_height, largest));
        Peak_Select_Follow();
        titles.Follow();
        Lay_Out();
        View_Refresh();
    }
    return 1;
}

int Histo_Blow_Redraw() {
    const HWND window = histo_blow.window;
    if (window == nullptr || histo_blow.hidden) {
        return 0;
    }
    const bool select_changed = Peak_Select_Follow();
    if (titles.Follow() || select_changed) {
        Lay_Out();
    }
    const bool has_record = Shown_Record() != nullptr;
    Export_Button_Follow(has_record);
    View_Refresh();
    Window_Buffer_Begin(window);
    histo_blow.plot.Draw();
    Histo_Plot_Marks_Forget();
    const Histo_Plot_Scene scene = Scene_Now();
    if (has_record) {
        Histo_Plot_Draw(*histo_blow.panel, scene);
    }
    histo_blow.reset_button.Draw();
    histo_blow.export_button.Draw();
    histo_blow.tag_select.Draw();
    histo_blow.cursor_select.Draw();
    if (Has_Peak_Select()) {
        histo_blow.peak_select.Draw();
    }
    // A press on a control has begun a rectangle without extent, which is nothing to see.
    const Blow_Drag& drag = histo_blow.drag;
    if (histo_blow.dragging && (drag.x_start != drag.x_end || drag.y_start != drag.y_end)) {
        Local_Drag_Draw(scene, drag);
    }
    Histo_Blow_Cursor();
    Window_Buffer_End(window);
    return 1;
}

int Histo_Blow_Draw() {
    Trace_Mode("Mode Histo: Histo_Blow_Draw()");
    return Histo_Blow_Redraw();
}

void Histo_Blow_Cursor() {
    if (histo_blow.display_cursor != 0 && !histo_blow.hidden && Shown_Record() != nullptr &&
        !histo_blow.area.Is_Empty()) {
        Histo_Plot_Cursor(*histo_blow.panel, Scene_Now());
    }
}

int Histo_Blow_Click(int up_down, int x, int y) {
    Trace_Mode("Mode Histo: Histo_Blow_Click(up_down=%08X)", static_cast<unsigned int>(up_down));
    if (up_down == 0) {
        return Drag_End();
    }
    const bool inside = Is_In_Plot(x, y);
    // Buttons and selectors lie inside the plot box: a press on them begins a rectangle too, too small to zoom.
    if (inside) {
        if (histo_blow.dragging) {
            Local_Drag_Clear(Scene_Now());
        }
        histo_blow.drag = {x, x, y, y};
        histo_blow.dragging = true;
    }
    return Control_Press(up_down) != 0 || inside ? 1 : 0;
}

void Histo_Blow_Drag_Drop() {
    if (histo_blow.dragging) {
        histo_blow.dragging = false;
        Local_Drag_Clear(Scene_Now());
    }
}

int Histo_Blow_Key(int /*key*/, int /*x*/, int /*y*/) {
    Trace_Mode("Mode Histo: Histo_Blow_Key()");
    return 0;
}

int Histo_Blow_Motion(int up_down, int x, int y) {
    Trace_Mode("Mode Histo: Histo_Blow_Motion()");
    Error_Fct(hwnd, MOTION_LEVEL, "Mode Histo: Histo_Blow_Motion()");
    if (histo_blow.dragging && Is_In_Plot(x, y)) {
        histo_blow.drag.x_end = x;
        histo_blow.drag.y_end = y;
        Local_Drag_Draw(Scene_Now(), histo_blow.drag);
    }
    histo_blow.reset_button.Select(up_down);
    histo_blow.export_button.Select(up_down);
    for (Selects* select : {&histo_blow.tag_select, &histo_blow.cursor_select, &histo_blow.peak_select}) {
        if (select->item_nb > 0) {
            select->Select(up_down);
        }
    }
    return 1;
}

int Histo_Blow_Scroll(int notches, int x, int y) {
    Trace_Mode("Mode Histo: Histo_Blow_Scroll()");
    if (Is_In_Plot(x, y) && View_Refresh()) {
        histo_blow.view.Zoom_Wheel(notches, x, y);
        Histo_Blow_Redraw();
    }
    // The cursor's picture follows with the next motion of the image mouse, not here.
    Select_Scroll(histo_blow.cursor_select, histo_blow.display_cursor, notches);
    if (Select_Scroll(histo_blow.tag_select, histo_blow.display_tag, notches)) {
        Histo_Blow_Redraw();
    }
    if (Select_Scroll(histo_blow.peak_select, histo_blow.display_peak, notches)) {
        Histo_Blow_Redraw();
    }
    return 1;
}

int Histo_Blow_Pinch(const Gesture_Record& gesture) {
    if (!View_Refresh() || !histo_blow.view.Zoom_Pinch(gesture)) {
        return 0;
    }
    return Histo_Blow_Redraw();
}
