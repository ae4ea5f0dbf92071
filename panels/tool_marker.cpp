#include "panels/tool_marker.h"

#include "host/kit_common.h"
#include "panels/label_grid.h"
#include "panels/label_panel.h"
#include "panels/protocol/host_variables.h"
#include "panels/protocol/tool_panel.h"

static_assert(Tool_Panel<Tool_Marker>);

namespace {

// Contract: hosts that filter traces by their level tell this panel's from those of the others by it.
constexpr int MARKER_TRACE_LEVEL = TRACE_LEVEL - 1;
// Contract: hosts know the message by its line.
constexpr Label_Copy_Failure COPY_FAILURE = {236, KIT_SOURCE_ROOT "/panels/tool_marker.cpp",
                                             "(*Marker_Label_Pt)[ID_Label_Cur]"};

int Count_Now() {
    return Host_Count("$MARKER_NB");
}

/** @return false when the label array is missing */
bool Labels_Show(Label_Grid& grid, Label_Change& change) {
    const int count = Count_Now();
    const auto* labels = Host_Pointer<const char* const>("$MARKER_LABEL");
    if (labels == nullptr) {
        return false;
    }
    for (int marker = 0; marker < grid.Button_Nb(count); marker++) {
        Label_Caption_Show(grid.Button(marker), Label_Caption_Of(labels[marker], marker), change);
    }
    return true;
}

/** Contract: hosts with more than two enable values see each change drawn: the byte is the check mark, not reduced to 0
 *  or 1, and the whole button is drawn. @return false when the array is missing */
bool Enable_Show(Label_Grid& grid, Label_Change& change) {
    const int count = Count_Now();
    const auto* enable = Host_Pointer<const std::uint8_t>("$MARKER_ENABLE");
    if (enable == nullptr) {
        return false;
    }
    for (int marker = 0; marker < grid.Button_Nb(count); marker++) {
        if (grid.Button(marker).checked != enable[marker]) {
            grid.Button(marker).checked = enable[marker];
            change.Add(Label_Change::REDRAW);
        }
    }
    return true;
}

/** @return false when the colour array is missing */
bool Colors_Show(Label_Grid& grid, Label_Change& change) {
    const int count = Count_Now();
    const auto* colors = Host_Pointer<const std::uint32_t>("$MARKER_COLOR");
    if (colors == nullptr) {
        return false;
    }
    for (int marker = 0; marker < grid.Button_Nb(count); marker++) {
        Label_Color_Show(grid.Button(marker), colors[marker], change);
    }
    return true;
}

}  // namespace

Tool_Marker::Tool_Marker() : widgets(Label_Grid::Widgets_Make(MARKER_CAPACITY)) {}
Tool_Marker::~Tool_Marker() = default;
Tool_Marker::Tool_Marker(const Tool_Marker& other) = default;
Tool_Marker& Tool_Marker::operator=(const Tool_Marker& other) = default;

int Tool_Marker::Read() {
    return current;
}

int Tool_Marker::Resize(Boxs* box) {
    Error_Fct(hwnd, MARKER_TRACE_LEVEL, "in Tool_Marker::Resize(dim=%dx%d)", box->width, box->height);
    const Boxs host = *box;  // may be the panel's own frame
    const int count = Count_Now();
    const int announced = Host_Count("$MARKER_CUR");
    const auto* colors = Host_Pointer<const std::uint32_t>("$MARKER_COLOR");
    const auto* labels = Host_Pointer<const char* const>("$MARKER_LABEL");
    const auto* enable = Host_Pointer<const std::uint8_t>("$MARKER_ENABLE");

    Label_Grid(widgets).Resize(host, count, [&](Buttons& button, int marker) {
        Label_Grid::Button_Dress(button, host);
        button.current = marker == announced ? 1 : 0;
        if (colors != nullptr) {
            Label_Color_Set(button, colors[marker]);
        }
        button.Set_Name("%s", Label_Caption_Of(labels != nullptr ? labels[marker] : nullptr, marker).text);
        button.style = STYLE_GRID_BUTTON;
        if ((host.style & STYLE_SHOW_CHECK) != 0) {
            button.style |= STYLE_SHOW_CHECK;
            button.checked = enable != nullptr && enable[marker] != 0 ? 1 : 0;
        }
    });
    return 1;
}

int Tool_Marker::Height(unsigned short rows) {
    Error_Fct(hwnd, MARKER_TRACE_LEVEL, "in Tool_Marker::Height()");
    return Label_Panel_Height(Label_Dimensions_Read(), rows);
}

void Tool_Marker::Draw() {
    Error_Fct(hwnd, MARKER_TRACE_LEVEL, "in Tool_Marker::Draw()");
    Label_Grid(widgets).Draw(Count_Now());
}

int Tool_Marker::Click(int up_down) {
    Error_Fct(hwnd, MARKER_TRACE_LEVEL, "in Tool_Marker::Click(up_down=0x%08x)", static_cast<unsigned int>(up_down));
    return Label_Click(*this, Label_Grid(widgets), current, Count_Now(), up_down, widgets.editor.window);
}

int Tool_Marker::Motion(int up_down) {
    return Label_Motion(*this, Label_Grid(widgets), Count_Now(), up_down);
}

int Tool_Marker::Scroll(int val) {
    Error_Fct(hwnd, MARKER_TRACE_LEVEL, "in Tool_Marker::Scroll(val=%d)", val);
    return Label_Scroll(*this, Label_Grid(widgets), Count_Now(), val);
}

int Tool_Marker::Keyboard(int key) {
    Error_Fct(hwnd, MARKER_TRACE_LEVEL, "in Tool_Marker::Keyboard(key=0x%08x)", static_cast<unsigned int>(key));
    int label_nb = 0;  // asked for and not used; hosts that count look-ups see it
    auto** label_array = static_cast<char***>(Fct_Variable_Get("$MARKER_LABEL", &label_nb, nullptr, nullptr, 0));
    if (label_array == nullptr || *label_array == nullptr) {
        return 0;
    }
    return Label_Keyboard(Label_Grid(widgets), key, Count_Now, [labels = *label_array](int marker, const char* text) {
        return Label_Replace(&labels[marker], text, COPY_FAILURE);
    });
}

void Tool_Marker::Leave() {
    Label_Leave(Label_Grid(widgets), Count_Now());
}

void Tool_Marker::Update(unsigned __int64 flags) {
    Error_Fct(hwnd, MARKER_TRACE_LEVEL, "in Tool_Marker::Update()");
    Label_Grid grid(widgets);
    // Contract: hosts change the count in what a step calls: every step looks it up.
    Label_Change change;
    if (Has_Any(flags, UPDATE_TAG_CUR)) {
        current = Host_Count("$MARKER_CUR");
        Label_Current_Show(grid, grid.Button_Nb(Count_Now()), current, change);
    }
    if (Has_Any(flags, UPDATE_TAG_LABEL) && !Labels_Show(grid, change)) {
        return;
    }
    if (Has_Any(flags, UPDATE_TAG_ENABLE) && !Enable_Show(grid, change)) {
        return;
    }
    if (Has_Any(flags, UPDATE_TAG_TABLE) && !Colors_Show(grid, change)) {
        return;
    }
    if (change.mask != 0) {
        grid.Paint(Count_Now(), change);
    }
}
