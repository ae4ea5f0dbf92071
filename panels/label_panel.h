/** Operations that the TAG and the marker panel have in common, over their grid. Internal to the two panels. */
#pragma once

#include <limits>

#include "host/kit_dataset.h"
#include "panels/label_grid.h"

/** The interface dimensions now. */
Label_Dimensions Label_Dimensions_Read();

/** @param current receives the picked label
 *  @param editor_window handed to the editor when a right press opens it; null keeps the editor's own
 *  @return the picked label, -1 for none */
template <class Panel>
int Label_Click(Panel& panel, Label_Grid grid, int& current, int count, int up_down, HWND editor_window) {
    constexpr int right_press_code = MOUSE_PRESS | MOUSE_RIGHT;
    // Contract: hosts name label 0 themselves (of TAGs the background) and count on a right press to pick it.
    constexpr int first_editable = 1;
    constexpr int current_mask = 0xFF;
    if ((up_down & MOUSE_PRESS) == 0) {
        return Label_Grid::NONE;  // a release, whichever buttons are still held
    }
    if (up_down == right_press_code && count > first_editable) {
        if (const int index = grid.Button_Hit(first_editable, count, up_down); index != Label_Grid::NONE) {
            grid.Edit_Open(index, count, editor_window);
            return Label_Grid::NONE;
        }
    }
    grid.Edit_Cancel(count, true);
    if (grid.Slider_Take(up_down)) {
        grid.Scroll_Apply(count);
        panel.Draw();
        return Label_Grid::NONE;
    }
    const int picked = grid.Button_Hit(0, count, up_down);
    if (picked != Label_Grid::NONE) {
        current = picked & current_mask;
    }
    return picked;
}

/** @return 1 when the slider moved, else 0 */
template <class Panel>
int Label_Motion(Panel& panel, Label_Grid grid, int count, int up_down) {
    grid.Hover(count, up_down);
    if (!grid.Slider_Take(up_down)) {
        return 0;
    }
    grid.Edit_Cancel(count, false);
    grid.Scroll_Apply(count);
    panel.Draw();
    return 1;
}

/** Contract: hosts pass the wheel on also while the pointer is elsewhere; its position is not tested. @return 1 */
template <class Panel>
int Label_Scroll(Panel& panel, Label_Grid grid, int count, int val) {
    grid.Edit_Cancel(count, false);
    grid.Scroll(val == std::numeric_limits<int>::min() ? std::numeric_limits<int>::max() : -val);
    grid.Scroll_Apply(count);
    panel.Draw();
    return 1;
}

inline void Label_Leave(Label_Grid grid, int count) {
    grid.Edit_Cancel(count, true);
    grid.Leave(count);
}

// ---- captions, colours

/** A caption as panels build it, before a button cuts it. */
struct Label_Caption {
    char text[80] = {};
};
/** The label, or the number where the label is null. */
Label_Caption Label_Caption_Of(const char* label, int index);
/** Gives a button another caption; an equal one is left alone. */
void Label_Caption_Show(Buttons& button, const Label_Caption& caption, Label_Change& change);

/** @param color 0x00BBGGRR; the high byte does not count */
void Label_Color_Set(Buttons& button, std::uint32_t color);
/** Gives a button another colour; an equal one is left alone. */
void Label_Color_Show(Buttons& button, std::uint32_t color, Label_Change& change);

/** Marks one button as current among the first `button_nb`. */
void Label_Current_Show(Label_Grid& grid, int button_nb, int current, Label_Change& change);

// ---- host's labels

/** How a label that could not be copied is reported. */
struct Label_Copy_Failure {
    int line;
    const char* source;      ///< path
    const char* expression;  ///< names the label
};

/** Replaces a label by a copy of the text on the C runtime's heap; the old one is freed.
 *  @return false without memory: the label is null then, and that was reported */
bool Label_Replace(char** label, const char* text, const Label_Copy_Failure& failure);

/** Feeds a key to the open editor. A finished edit ends with Fct_Update, in which the host may destroy the panel:
 *  nothing of it is touched afterwards.
 *  @param count_now the table's count, asked when the edit is finished: it may have shrunk below the label meanwhile
 *  @param store (int label, const char* text) takes a text that is not empty over; false: it could not, and the button
 *  stays behind the closed editor. Contract: hosts bring it back by the next Resize or Leave.
 *  @return 1 when an editor took the key, else 0 */
template <class Count, class Store>
int Label_Keyboard(Label_Grid grid, int key, Count count_now, Store store) {
    if (!grid.Editor_Has_Keyboard()) {
        return 0;
    }
    char* text = grid.Edit_Key(key);
    if (text == nullptr) {
        return 1;
    }
    const int count = count_now();
    const int label = grid.Edited();
    const bool is_taken = text[0] != 0 && label < grid.Button_Nb(count);
    if (is_taken && !store(label, text)) {
        return 0;
    }
    grid.Edit_Close(count, is_taken ? text : nullptr);
    Fct_Update(UPDATE_TAG_LABEL, nullptr, nullptr, nullptr);
    return 1;
}
