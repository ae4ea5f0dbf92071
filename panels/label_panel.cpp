#include "panels/label_panel.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/kit_common.h"
#include "panels/protocol/host_variables.h"

Label_Dimensions Label_Dimensions_Read() {
    return {Host_Dimension("$INTERFACE_BORDER_DIM"), Host_Dimension("$INTERFACE_BUTTON_DIM_SML"),
            Host_Dimension("$INTERFACE_CURSOR_DIM"), Host_Dimension("$INTERFACE_SPACE_DIM"), SPACE};
}

Label_Caption Label_Caption_Of(const char* label, int index) {
    Label_Caption caption;
    if (label != nullptr) {
        std::snprintf(caption.text, sizeof caption.text, "%s", label);
    } else {
        std::snprintf(caption.text, sizeof caption.text, "%d", index);
    }
    return caption;
}

void Label_Caption_Show(Buttons& button, const Label_Caption& caption, Label_Change& change) {
    // A caption longer than a button holds always differs: it is drawn again each time, which does no harm.
    if (std::strcmp(caption.text, button.name) != 0) {
        button.Set_Name("%s", caption.text);
        change.Add(Label_Change::REDRAW);
    }
}

void Label_Color_Set(Buttons& button, std::uint32_t color) {
    button.Set_Color(static_cast<unsigned char>(color & 0xFFU), static_cast<unsigned char>((color >> 8U) & 0xFFU),
                     static_cast<unsigned char>((color >> 16U) & 0xFFU));
}

void Label_Color_Show(Buttons& button, std::uint32_t color, Label_Change& change) {
    constexpr std::uint32_t color_mask = 0xFFFFFF;
    if (button.color.get() != (color & color_mask)) {
        Label_Color_Set(button, color);
        change.Add(Label_Change::INIT | Label_Change::REDRAW);
    }
}

void Label_Current_Show(Label_Grid& grid, int button_nb, int current, Label_Change& change) {
    for (int index = 0; index < button_nb; index++) {
        const unsigned short mark = index == current ? 1 : 0;
        if (grid.Button(index).current != mark) {
            grid.Button(index).current = mark;
            change.Add(Label_Change::MARK);
        }
    }
}

bool Label_Replace(char** label, const char* text, const Label_Copy_Failure& failure) {
    std::free(*label);
    *label = nullptr;
    const std::size_t size = std::strlen(text) + 1;
    auto* copy = static_cast<char*>(std::malloc(size));
    if (copy == nullptr) {
        Error_Fct(hwnd, MESSAGE_MEMORY, "line %-4d of %s \nmemory error in strdup (var=%s)", failure.line,
                  failure.source, failure.expression);
        return false;
    }
    std::memcpy(copy, text, size);
    *label = copy;
    return true;
}
