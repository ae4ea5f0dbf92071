#include "panels/tool_marker.h"

#include "host/kit_common.h"
#include "panels/label_panel.h"
#include "panels/protocol/host_variables.h"
#include "panels/protocol/tool_panel.h"

static_assert(Tool_Panel<Tool_Marker>);

namespace {

constexpr int MARKER_TRACE_LEVEL = TRACE_LEVEL - 1;  // unlike the other panels: kept on purpose, hosts filter by level
constexpr int COPY_FAILED_LINE = 236;                // hosts know the message by it
constexpr const char* SOURCE = KIT_SOURCE_ROOT "/panels/tool_marker.cpp";

int Count_Now() {
    return Host_Count("$MARKER_NB");
}

/** @return false when the label array is missing */
bool Labels_Show(Label_Grid& grid, int count, Label_Change& change) {
    const auto* labels = Host_Pointer<const char* const>("$MARKER_LABEL");
    if (labels == nullptr) {
        return false;
    }
    for (int marker = 0; marker < grid.Button_Nb(count); marker++) {
        Label_Caption_Show(grid.Button(marker), Label_Caption_Of(labels[marker], marker), change);
    }
    return true;
}

/** The enable byte becomes the check mark as it is, not reduced to 0 or 1, and a change draws the whole button: kept on
 *  purpose. @return false when the array is missing */
bool Enable_Show(Label_Grid& grid, int count, Label_Change& change) {
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
bool Colors_Show(Label_Grid& grid, int count, Label_Change& change) {
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

Tool_Marker::Tool_Marker() : grid(MARKER_CAPACITY) {}
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

    grid.Resize(host, count);
    for (int marker = grid.Button_Nb(count) - 1; marker >= 0; marker--) {
        if (!grid.Button_Place(marker, count)) {
            continue;
        }
        Buttons& button = grid.Button(marker);
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
        button.Init(host.window);
    }
    grid.Rest_Hide(count);
    grid.Editor_Resize(host);
    return 1;
}

int Tool_Marker::Height(unsigned short rows) {
    Error_Fct(hwnd, MARKER_TRACE_LEVEL, "in Tool_Marker::Height()");
    return Label_Panel_Height(Label_Dimensions_Read(), rows);
}

void Tool_Marker::Draw() {
    Error_Fct(hwnd, MARKER_TRACE_LEVEL, "in Tool_Marker::Draw()");
    grid.Draw(Count_Now());
}

int Tool_Marker::Click(int up_down) {
    Error_Fct(hwnd, MARKER_TRACE_LEVEL, "in Tool_Marker::Click(up_down=0x%08x)", static_cast<unsigned int>(up_down));
    return Label_Click(*this, grid, current, Count_Now(), up_down, grid.Editor_Window());
}

int Tool_Marker::Motion(int up_down) {
    return Label_Motion(*this, grid, Count_Now(), up_down);
}

int Tool_Marker::Scroll(int val) {
    Error_Fct(hwnd, MARKER_TRACE_LEVEL, "in Tool_Marker::Scroll(val=%d)", val);
    return Label_Scroll(*this, grid, Count_Now(), val);
}

int Tool_Marker::Keyboard(int key) {
    Error_Fct(hwnd, MARKER_TRACE_LEVEL, "in Tool_Marker::Keyboard(key=0x%08x)", static_cast<unsigned int>(key));
    int label_nb = 0;  // asked for and not used; hosts that count look-ups see it
    auto** label_array = static_cast<char***>(Fct_Variable_Get("$MARKER_LABEL", &label_nb, nullptr, nullptr, 0));
    if (label_array == nullptr || *label_array == nullptr || !grid.Editor_Has_Keyboard()) {
        return 0;
    }
    char* text = grid.Edit_Key(key);
    if (text == nullptr) {
        return 1;
    }
    const int count = Count_Now();
    const int marker = grid.Edited();
    // The table may have shrunk below the edited marker meanwhile.
    const bool is_taken = text[0] != 0 && marker < grid.Button_Nb(count);
    if (is_taken && !Label_Replace(&(*label_array)[marker], text)) {
        Error_Fct(hwnd, MESSAGE_MEMORY, "line %-4d of %s \nmemory error in strdup (var=%s)", COPY_FAILED_LINE, SOURCE,
                  "(*Marker_Label_Pt)[ID_Label_Cur]");
        return 0;  // the button stays behind the closed editor: kept on purpose
    }
    grid.Edit_Close(count, is_taken ? text : nullptr);
    Fct_Update(UPDATE_TAG_LABEL, nullptr, nullptr, nullptr);
    return 1;
}

void Tool_Marker::Leave() {
    Label_Leave(grid, Count_Now());
}

void Tool_Marker::Update(unsigned __int64 flags) {
    Error_Fct(hwnd, MARKER_TRACE_LEVEL, "in Tool_Marker::Update()");
    const int count = Count_Now();
    Label_Change change;
    if (Has_Any(flags, UPDATE_TAG_CUR)) {
        current = Host_Count("$MARKER_CUR");
        Label_Current_Show(grid, grid.Button_Nb(count), current, change);
    }
    if (Has_Any(flags, UPDATE_TAG_LABEL) && !Labels_Show(grid, count, change)) {
        return;
    }
    if (Has_Any(flags, UPDATE_TAG_ENABLE) && !Enable_Show(grid, count, change)) {
        return;
    }
    if (Has_Any(flags, UPDATE_TAG_TABLE) && !Colors_Show(grid, count, change)) {
        return;
    }
    grid.Paint(count, change);
}
