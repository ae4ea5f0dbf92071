// libFuzzer: any stream of events, sizes and changes of host variables on the TAG, marker, brush and propagate panels.
#include <cstring>
#include <vector>

#include "kits/widgets/select_drop_list.h"
#include "panels/tool_brush.h"
#include "panels/tool_marker.h"
#include "panels/tool_propagate.h"
#include "panels/tool_tag.h"
#include "tests/fuzzing/input_bytes.h"
#include "tests/support/panel_stage.h"

namespace {

constexpr int WINDOW_WIDTH = 300;
constexpr int WINDOW_HEIGHT = 200;
constexpr int ARRAY_MOST = 300;
constexpr int STEPS_MOST = 60;
constexpr int RADIUS_MOST = 6;
constexpr int BRUSHES_MOST = 9;

/** What the panels read, with room for every count that a stream may set. */
void Variables_Define() {
    for (const char* name : {"$INTERFACE_SPACE_DIM", "$INTERFACE_BORDER_DIM", "$INTERFACE_CURSOR_DIM",
                             "$INTERFACE_BUTTON_DIM_SML", "$INTERFACE_LIST_DIM_SML", "$INTERFACE_LIST_DIM_ARROW",
                             "$INTERFACE_TITLE_DIM_SML", "$INTERFACE_BUTTON_DIM_BIG"}) {
        Variable_Define_Scalar(name, VARIABLE_SIGNED_16, 14);
    }
    for (const char* name : {"$TAG_NB", "$TAG_CUR", "$MARKER_NB", "$MARKER_CUR", "$BRUSH_NB", "$BRUSH_CUR"}) {
        Variable_Define_Scalar(name, VARIABLE_UNSIGNED_16, 8);
    }
    for (const char* name : {"$TAG_ENABLE", "$TAG_SELECT", "$TAG_LOCK", "$MARKER_ENABLE"}) {
        Variable_Define_Array(name, VARIABLE_UNSIGNED_8, ARRAY_MOST);
    }
    for (const char* name : {"$TAG_RED", "$TAG_GRN", "$TAG_BLU"}) {
        Variable_Define_Array(name, VARIABLE_UNSIGNED_16, ARRAY_MOST);
    }
    Variable_Define_Array("$MARKER_COLOR", VARIABLE_UNSIGNED_32, ARRAY_MOST);
    Variable_Define_Array("$TAG_THRESHOLD_MIN", VARIABLE_FLOAT, ARRAY_MOST);
    Variable_Define_Array("$TAG_LABEL", VARIABLE_TEXT, ARRAY_MOST);
    Variable_Define_Array("$MARKER_LABEL", VARIABLE_TEXT, ARRAY_MOST);
    Variable_Define_Array("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, ARRAY_MOST);
    Variable_Define_Scalar("$BRUSH_RADIUS", VARIABLE_UNSIGNED_16, RADIUS_MOST);
    Variable_Define_Scalar("$INTERFACE_LOCK_FOCUS", VARIABLE_UNSIGNED_8, 0);
    constexpr std::size_t row_nb = 2 * RADIUS_MOST + 1;
    static std::vector<unsigned char> bytes(ARRAY_MOST * row_nb * row_nb);
    static std::vector<unsigned char*> rows;      // of every brush, one after the other
    static std::vector<unsigned char**> brushes;  // the first row of each
    for (std::size_t row = 0; row < ARRAY_MOST * row_nb; ++row) {
        rows.push_back(bytes.data() + row * row_nb);
    }
    for (std::size_t brush = 0; brush < ARRAY_MOST; ++brush) {
        brushes.push_back(rows.data() + brush * row_nb);
    }
    Variable_Define_Array_At("$BRUSH_PT", VARIABLE_POINTER, ARRAY_MOST, brushes.data());
}

void Change_Variable(Input_Bytes& input) {
    switch (input.Below(7)) {
        case 0:
            Variable_Set("$TAG_NB", input.Below(ARRAY_MOST));
            break;
        case 1:
            Variable_Set("$TAG_CUR", input.Below(ARRAY_MOST));  // a host owes arrays as long as its numbers
            break;
        case 2:
            Variable_Set("$MARKER_NB", input.Below(ARRAY_MOST));
            break;
        case 3:
            Variable_Set("$BRUSH_NB", input.Below(BRUSHES_MOST));
            break;
        case 4: {
            auto* sizes = static_cast<unsigned short*>(Variable_Array("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, nullptr));
            sizes[input.Below(BRUSHES_MOST)] = static_cast<unsigned short>(input.Below(RADIUS_MOST + 1));
            break;
        }
        case 5:
            Variable_Set_Array_Text("$TAG_LABEL", input.Below(ARRAY_MOST), input.Text(60).c_str());
            break;
        default: {
            auto* flags = static_cast<unsigned char*>(Variable_Array("$TAG_LOCK", VARIABLE_UNSIGNED_8, nullptr));
            flags[input.Below(ARRAY_MOST)] ^= 1;
        }
    }
}

Boxs Host_Box(const Panel_Stage& stage, Input_Bytes& input) {
    Boxs box = stage.Host_Box(input.Below(40), input.Below(40), input.Below(WINDOW_WIDTH), input.Below(WINDOW_HEIGHT));
    box.style |= (input.Take<std::uint8_t>() & 1) != 0 ? STYLE_SHOW_CHECK : 0;
    box.border = static_cast<unsigned short>(input.Below(6));
    return box;
}

template <class Panel>
void Step(Panel& panel, const Panel_Stage& stage, Input_Bytes& input) {
    stage.Point_At(input.Below(WINDOW_WIDTH), input.Below(WINDOW_HEIGHT));
    switch (input.Below(9)) {
        case 0: {
            Boxs box = Host_Box(stage, input);
            panel.Resize(&box);
            break;
        }
        case 1:
            panel.Draw();
            break;
        case 2:
            panel.Click(input.Take<std::uint8_t>() & 0x77);
            break;
        case 3:
            panel.Motion(input.Take<std::uint8_t>() & 0x71);
            break;
        case 4:
            panel.Scroll(input.Take<std::int8_t>());
            break;
        case 5:
            panel.Keyboard(input.Take<std::uint16_t>() & 0xFFF);
            break;
        case 6:
            panel.Leave();
            break;
        case 7:
            panel.Update(input.Take<std::uint64_t>());
            break;
        default:
            Change_Variable(input);
    }
}

template <class Panel>
void Stream(Panel& panel, Input_Bytes& input) {
    Panel_Stage stage(WINDOW_WIDTH, WINDOW_HEIGHT,
                      (input.Take<std::uint8_t>() & 1) != 0 ? Window_Axis::Up : Window_Axis::Down);
    Boxs box = Host_Box(stage, input);
    panel.Resize(&box);
    for (int step = 0; step < STEPS_MOST && !input.At_End(); ++step) {
        Step(panel, stage, input);
        if (step % 16 == 0) {
            Panel copy(panel);
            Step(copy, stage, input);
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    static const bool is_defined = [] {
        Variables_Define();
        return true;
    }();
    Require(is_defined);
    Drop_List_Runner_Set([](const Drop_List_Request&) { return -1; });  // a list that nobody picks from
    Input_Bytes input(data, size);
    switch (input.Below(4)) {
        case 0: {
            Tool_Tag panel(input.Take<std::uint16_t>());
            Stream(panel, input);
            break;
        }
        case 1: {
            Tool_Marker panel;
            Stream(panel, input);
            break;
        }
        case 2: {
            Tool_Brush panel;
            Stream(panel, input);
            break;
        }
        default: {
            Tool_Propagate panel;
            Stream(panel, input);
        }
    }
    return 0;
}
