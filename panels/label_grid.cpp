#include "panels/label_grid.h"

#include <algorithm>
#include <new>
#include <string>

#include "kits/widgets/widgets_host.h"
#include "panels/label_panel.h"
#include "panels/protocol/host_variables.h"
#include "panels/protocol/widget_place.h"

namespace {

constexpr int KEY_CODE_MASK = 0xFFFF;

std::shared_ptr<Buttons[]> Buttons_Make(int nb) {
    try {
        return std::make_shared<Buttons[]>(static_cast<std::size_t>(nb));
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace

Label_Widgets Label_Grid::Widgets_Make(int button_nb) {
    Label_Widgets widgets;
    widgets.capacity = button_nb;
    widgets.buttons = Buttons_Make(button_nb);
    widgets.slider.style = STYLE_SLIDER_HIDDEN;
    widgets.editor.style = STYLE_EDIT_IDLE;
    for (int index = 0; widgets.buttons != nullptr && index < button_nb; index++) {
        widgets.buttons[index].y = LABEL_NOWHERE;
    }
    return widgets;
}

Label_Grid::Label_Grid(Label_Widgets& widgets)
    : frame(widgets.frame),
      grid_box(widgets.grid_box),
      buttons(widgets.buttons),
      slider(widgets.slider),
      editor(widgets.editor),
      edited(widgets.edited),
      visible_top(widgets.visible_top),
      visible_bottom(widgets.visible_bottom),
      row_height(widgets.row_height),
      capacity(widgets.capacity) {}

int Label_Grid::Fitting(int count) const {
    return std::min(count, capacity);
}

// ---- layout

void Label_Grid::Slider_Set(const Label_Slider& scroll) {
    slider.style = scroll.needed ? STYLE_SLIDER_VERTICAL : STYLE_SLIDER_HIDDEN;
    slider.maximum = scroll.maximum;
    slider.value = scroll.value;
    if (scroll.needed) {
        slider.step = static_cast<float>(row_height);
        slider.Larg_Adjust(static_cast<float>(slider.height), scroll.content);
    }
}

void Label_Grid::Frame_Resize(const Boxs& host, int count) {
    frame.style = STYLE_FRAMED_BOX;
    frame.Take_Look(host);
    Widget_Place(frame, Widget_Rectangle(host));
    frame.Init(host.window);

    const Label_Dimensions dimensions = Label_Dimensions_Read();
    const Label_Layout layout =
        Label_Layout_Make(dimensions, {host.x, host.y, host.width, host.height, host.border}, Fitting(count));
    row_height = dimensions.Row_Height();

    Widget_Place(slider, layout.slider);
    slider.color = host.color;
    slider.minimum = 0.0F;
    Slider_Set(layout.scroll);
    slider.Init(host.window);

    grid_box.style = STYLE_FRAMED_BOX | (host.style & STYLE_SHOW_CHECK);
    grid_box.color = host.color;
    Widget_Place(grid_box, layout.grid);
    grid_box.Init(host.window);
    visible_top = layout.visible_top;
    visible_bottom = layout.visible_bottom;
}

void Label_Grid::Button_Dress(Buttons& button, const Boxs& host) {
    button.font_name = host.font_name;
    button.font_weight = host.font_weight;
    button.font = host.font;
    button.font_scale = host.font_scale;
    button.border = host.border;
}

void Label_Grid::Button_Place(Buttons& button, const Label_Cell& cell) const {
    Widget_Place(button, Label_Button(Widget_Rectangle(grid_box), cell, row_height, slider.value));
}

void Label_Grid::Editor_Resize(const Boxs& host) {
    editor.style = STYLE_EDIT_IDLE;
    editor.Take_Look(host);
    editor.x = 0;
    editor.y = 0;
    editor.position = 0;
    editor.width = Label_To_Short(grid_box.width / LABEL_COLUMN_NB);
    editor.height = Label_To_Short(row_height);
    editor.Init(host.window);
}

void Label_Grid::Relayout(int count) {
    const Label_Dimensions dimensions = Label_Dimensions_Read();
    row_height = dimensions.Row_Height();
    Slider_Set(Label_Slider_Make(dimensions, frame.height, slider.height, Fitting(count)));
    slider.Init(nullptr);
    Buttons_Lay_Out(count, [this](Buttons& button, int index, const Label_Cell& cell) {
        const bool is_behind_editor = Is_Editing() && index == edited;
        if (button.y == LABEL_NOWHERE && !is_behind_editor && (button.style & STYLE_INACTIVE) == STYLE_EDITED) {
            button.style &= ~STYLE_EDITED;  // its edit ended while the table did not have it
        }
        Button_Place(button, cell);
    });
}

// ---- painting

namespace {

/** Collects what many widgets paint and shows it at once: one copy to the screen instead of one for each. */
class Collected {
  public:
    explicit Collected(HWND of_window) : window(of_window) { Window_Buffer_Begin(window); }
    ~Collected() { Window_Buffer_End(window); }
    Collected(const Collected&) = delete;
    Collected& operator=(const Collected&) = delete;

  private:
    HWND window;
};

}  // namespace

void Label_Grid::Draw(int count) {
    const Collected collected(frame.window);
    frame.Draw();
    slider.Draw();
    for (int index = 0; index < Button_Nb(count); index++) {
        if (Is_Visible(buttons[index])) {
            buttons[index].Draw();
        }
    }
}

void Label_Grid::Paint(int count, const Label_Change& change) {
    if (change.mask == 0) {
        return;
    }
    if (change.Has(Label_Change::SLIDER)) {
        slider.Draw();
    }
    for (int index = 0; index < Button_Nb(count); index++) {
        Buttons& button = buttons[index];
        if (!Is_Visible(button)) {
            continue;
        }
        if (change.Has(Label_Change::INIT)) {
            button.Init(nullptr);
        }
        if (change.Has(Label_Change::BACKGROUND)) {
            button.Clear(frame.color);
        }
        if (change.Has(Label_Change::REDRAW)) {
            button.Draw();
        } else if (change.Is_Mark_Only()) {
            button.Adjust();
        }
    }
}

// ---- events

void Label_Grid::Scroll_Apply(int count) {
    Buttons_Lay_Out(count, [this](Buttons& button, int, const Label_Cell& cell) {
        button.y = Label_Button_Y(slider.y, cell, row_height, slider.value);
    });
}

bool Label_Grid::Slider_Take(int up_down) {
    if (slider.Select(up_down) == 0) {
        return false;
    }
    slider.value = slider.Read();
    return true;
}

int Label_Grid::Button_Hit(int first, int count, int up_down) {
    for (int index = first; index < Button_Nb(count); index++) {
        if (Is_Visible(buttons[index]) && buttons[index].Select(up_down) != 0) {
            return index;
        }
    }
    return NONE;
}

void Label_Grid::Hover(int count, int up_down) {
    for (int index = 0; index < Button_Nb(count); index++) {
        if (Is_Visible(buttons[index])) {
            buttons[index].Select(up_down);
        }
    }
    editor.Select(up_down, 0, 0);
}

void Label_Grid::Leave(int count) {
    for (int index = 0; index < Button_Nb(count); index++) {
        if (Is_Visible(buttons[index])) {
            buttons[index].Deselect();
        }
    }
    slider.Deselect();
}

// ---- editing

Buttons* Label_Grid::Edited_Button(int count) {
    return edited < Button_Nb(count) ? &buttons[edited] : nullptr;
}

void Label_Grid::Edit_Open(int index, int count, HWND window) {
    Edit_Cancel(count, true);
    Buttons& button = buttons[index];
    editor.x = button.x;
    editor.y = button.y;
    editor.style = STYLE_EDIT_OPEN;
    editor.Init(window);
    editor.Set_Name("%s", button.name);
    editor.Read("%s", editor.name);
    editor.Draw();
    edited = static_cast<std::uint16_t>(index);
    button.style |= STYLE_EDITED;
}

void Label_Grid::Edit_Cancel(int count, bool redraw) {
    if (!Is_Editing()) {
        return;
    }
    editor.Input(KEY_ESCAPE);
    editor.style = STYLE_EDIT_IDLE;
    if (Buttons* button = Edited_Button(count)) {
        button->style &= ~STYLE_EDITED;
        if (redraw && Is_Visible(*button)) {
            button->Draw();
        }
    }
}

char* Label_Grid::Edit_Key(int key) {
    editor.Input(key & KEY_CODE_MASK);
    char* text = editor.Update();
    if (text != nullptr) {
        editor.style = STYLE_EDIT_IDLE;
    }
    return text;
}

void Label_Grid::Edit_Close(int count, char* text) {
    Buttons* button = Edited_Button(count);
    if (button == nullptr) {
        return;
    }
    if (text != nullptr) {
        button->Set_Name("%s", text);
        text[std::char_traits<char>::length(button->name)] = 0;  // captions are cut between characters
    }
    button->style &= ~STYLE_EDITED;
    if (Is_Visible(*button)) {
        button->Draw();
    }
}
