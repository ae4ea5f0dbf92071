#include "database/tool_db_list.h"

#include <algorithm>
#include <limits>
#include <new>

#include "database/db_panel_geometry.h"
#include "database/host_classes.h"
#include "database/tool_db_edit.h"
#include "database/tool_db_fct.h"
#include "host/kit_common.h"
#include "panels/protocol/host_variables.h"
#include "panels/protocol/widget_place.h"

namespace {

constexpr unsigned int STYLE_TREE_BOX = 0x40;  ///< filled, without a border: the tree is cut at its edge
constexpr unsigned int STYLE_DISABLED = 0x3;   ///< both bits: the slider does not react
constexpr float VERTICAL_STEP = DB_ROW_HEIGHT;
constexpr float HORIZONTAL_STEP = DB_INDENTATION;
constexpr float VERTICAL_MAXIMUM_AT_FIRST = 100.0F;
constexpr float HORIZONTAL_MAXIMUM_AT_FIRST = 300.0F;
constexpr int DRAG_STEP_EDIT = 12;  ///< pixels that a drag in a zone scrolls per motion
constexpr int DRAG_STEP_BROWSE = 3;

constexpr const char* WARNING_LINE[] = {
    "Please make sure you know what you are doing!",
    "Pressing: \"Update DB\" will reset all changes made here.",
};

/** Which line the next drawing shows; one for all panels. */
int warning_toggle = 0;

void Dress(Tools& widget, const Pixel_Rectangle& place, const Boxs& host) {
    Widget_Place(widget, place);
    widget.Take_Look(host);
}

/** Gives a slider its place and its first range; the position stays, the next drawing of the tree limits it. */
void Place_Slider(Sliders& slider, const Pixel_Rectangle& place, const Boxs& host, float maximum) {
    const float position = slider.value;
    slider.minimum = 0.0F;
    slider.maximum = maximum;
    Dress(slider, place, host);
    slider.Init(host.window);
    slider.value = position;
}

bool Is_Disabled(const Sliders& slider) {
    return (slider.style & STYLE_DISABLED) == STYLE_DISABLED;
}

bool Is_Over(Boxs& box) {
    return box.Select(MOUSE_ASK) != 0;
}

/** UPDATE_STRUCTURE, UPDATE_SELECTION and the level bit of a dimension; 0 for another one. */
unsigned __int64 Changed_Flags(int mode) {
    unsigned __int64 flags = 0;
    With_Classes(mode, [&](auto classes) { flags = UPDATE_STRUCTURE | UPDATE_SELECTION | decltype(classes)::LEVEL; });
    return flags;
}

void Records_Free(DB_Rows& rows) {
    DB_List_Forget(rows.list_pt);
    DB_Edit_Forget(rows.list_pt);
    DB_List_Array_Free(&rows.nb, &rows.list_pt);
}

/** Null without memory. */
std::shared_ptr<DB_Rows> Records_Make() {
    try {
        return std::make_shared<DB_Rows>();
    } catch (const std::bad_alloc&) {
        return nullptr;
    }
}

}  // namespace

DB_Rows::~DB_Rows() {
    Records_Free(*this);
}

Tool_DB_List::Tool_DB_List() : rows(Records_Make()) {
    panel_box.style = STYLE_FRAMED_BOX;
    list_box.style = STYLE_TREE_BOX;
    for (Labels& label : warning) {
        label.style = STYLE_FLAT;
    }
    vertical.style = STYLE_SLIDER_VERTICAL;
    vertical.step = VERTICAL_STEP;
    horizontal.style = STYLE_SCROLL_BAR;
    horizontal.step = HORIZONTAL_STEP;
    select_all.Set_Name("Select All");
    select_none.Set_Name("Select None");
}

Tool_DB_List::~Tool_DB_List() {
    List_Free(this);
}

Tool_DB_List::Tool_DB_List(const Tool_DB_List& other) = default;
Tool_DB_List& Tool_DB_List::operator=(const Tool_DB_List& other) = default;

void Tool_DB_List::List_Free(Tool_DB_List* list) {
    if (list == nullptr) {
        return;
    }
    DB_Drag_Forget(&list->list_box);
    if (list->rows != nullptr && list->rows.use_count() == 1) {
        Records_Free(*list->rows);
    } else {
        list->rows = Records_Make();  // a copy of the panel, or an operation that is running, keeps the records
    }
}

int Tool_DB_List::Resize(Boxs* box) {
    DB_Metrics metrics;
    metrics.space = Host_Dimension("$INTERFACE_SPACE_DIM");
    metrics.slider_width = Host_Dimension("$INTERFACE_VAL_DIM_SML");
    metrics.button_height = Host_Dimension("$INTERFACE_BUTTON_DIM_SML");
    metrics.margin = box->border;
    const Pixel_Rectangle panel = Widget_Rectangle(*box);
    const DB_Layout layout = DB_Layout_Make(panel, metrics);

    Dress(panel_box, panel, *box);
    panel_box.Init(box->window);
    Dress(list_box, layout.list, *box);
    list_box.Init(box->window);
    Boxs* const zone[] = {&top_zone, &bottom_zone, &left_zone, &right_zone};
    const Pixel_Rectangle* const zone_place[] = {&layout.top_zone, &layout.bottom_zone, &layout.left_zone,
                                                 &layout.right_zone};
    for (int i = 0; i < 4; ++i) {
        Dress(*zone[i], *zone_place[i], *box);
        zone[i]->Init(box->window);
    }

    Dress(select_all, layout.select_all, *box);
    select_all.Init(box->window);
    Dress(select_none, layout.select_none, *box);
    select_none.Init(box->window);

    Dress(warning[0], layout.warning_title, *box);
    warning[0].Set_Name(" Warning!");
    warning[0].Set_Color(255, 255, 0);
    warning[0].font_scale = DB_Font_Scale_Larger(box->font_scale);
    warning[0].Init(box->window);
    Dress(warning[1], layout.warning_line, *box);
    warning[1].Set_Color(0, 1, 0);
    warning[1].Init(box->window);

    Place_Slider(vertical, layout.vertical, *box, VERTICAL_MAXIMUM_AT_FIRST);
    Place_Slider(horizontal, layout.horizontal, *box, HORIZONTAL_MAXIMUM_AT_FIRST);
    return 1;
}

int Tool_DB_List::Height(unsigned short row_nb) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_DB_List::Height()");
    return DB_Panel_Height(row_nb, Host_Dimension("$INTERFACE_SPACE_DIM"), Host_Dimension("$INTERFACE_BUTTON_DIM_SML"),
                           Host_Dimension("$INTERFACE_BORDER_DIM"));
}

void Tool_DB_List::Tree_Draw() {
    if (db_drag.left_in == &list_box) {
        db_drag.left_in = nullptr;  // drawn over
    }
    if (Is_Editor()) {
        DB_Edit_Draw(mode, &list_box, Nb(), List_Pt(), &horizontal, &vertical);
    } else {
        DB_List_Draw(&list_box, Nb(), List_Pt(), &horizontal, &vertical);
    }
}

void Tool_DB_List::Sliders_Draw() {
    vertical.Draw();
    horizontal.Draw();
}

void Tool_DB_List::Draw() {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_DB_List::Draw()");
    panel_box.Draw();
    if (Is_Editor()) {
        Tree_Draw();
        warning[0].Draw();
        warning[1].Set_Name("%s", WARNING_LINE[warning_toggle]);
        warning_toggle = 1 - warning_toggle;
        warning[1].Draw();
    } else {
        select_all.Draw();
        select_none.Draw();
        Tree_Draw();
    }
    Sliders_Draw();
}

int Tool_DB_List::Click(int up_down) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_DB_List::Click(up_down=0x%08x)", static_cast<unsigned int>(up_down));
    const std::shared_ptr<DB_Rows> kept = rows;  // lives on when the host rebuilds or destroys the panel meanwhile
    if (Is_Over(list_box)) {
        Tree_Click(up_down);
        return 1;
    }
    const bool is_press = (up_down & MOUSE_PRESS) != 0;
    const int event = is_press ? up_down : 0;  // a release, whichever buttons are still held
    if (Slider_Takes(vertical, event) || Slider_Takes(horizontal, event)) {
        return 1;
    }
    if (Is_Editor() || !is_press) {
        return 0;
    }
    if (select_all.Select(up_down) != 0) {
        Select_Every(select_all, DB_STATE_CHECKED);
        return 1;
    }
    if (select_none.Select(up_down) != 0) {
        Select_Every(select_none, DB_STATE_NONE);
        return 1;
    }
    return 0;
}

void Tool_DB_List::Tree_Click(int up_down) {
    if (Is_Editor()) {
        const Panel_Watch watch(life);
        const int result = DB_Edit_Click_DB(mode, &list_box, up_down, Nb(), List_Pt(), &horizontal, &vertical, &watch);
        if (result == 2 && watch.Is_Alive()) {
            Show_Changed();
        }
        return;
    }
    if (DB_List_Click(&list_box, up_down, Nb(), List_Pt(), &horizontal, &vertical) != 0) {
        DB_List_Select_Range(&list_box, mode, Nb(), List_Pt(), &horizontal, &vertical);
        List_Select_To_DB(Nb(), List_Pt());
    }
}

/** After a change of the database by the editor: builds the records anew and shows them. */
void Tool_DB_List::Show_Changed() {
    const Panel_Watch watch(life);
    Update(Changed_Flags(mode));
    if (!watch.Is_Alive()) {
        return;
    }
    list_box.Draw();
    Tree_Draw();
    Sliders_Draw();
}

/** Sets the check mark of every record, branches and locked ones too: writing back skips what it must. */
void Tool_DB_List::Select_Every(Buttons& button, std::uint16_t check) {
    DB_List* const list_pt = List_Pt();
    for (int i = 0; list_pt != nullptr && i < Nb(); ++i) {
        list_pt[i].state = static_cast<std::uint16_t>((list_pt[i].state & ~DB_STATE_MASK) | check);
    }
    const Panel_Watch watch(life);
    List_Select_To_DB(Nb(), List_Pt());
    if (!watch.Is_Alive()) {
        return;
    }
    Tree_Draw();
    button.Deselect();
}

/** Feeds a slider. @return true when it took the event: the tree stands at its new position */
bool Tool_DB_List::Slider_Takes(Sliders& slider, int up_down) {
    if (slider.Select(up_down) == 0) {
        return false;
    }
    slider.value = slider.Read();
    slider.Adjust();
    Tree_Draw();
    return true;
}

int Tool_DB_List::Motion(int up_down) {
    if (db_drag.left_in == &list_box) {
        Tree_Draw();
    }
    const bool own_drag = db_drag.Is_Of(&list_box);
    const bool ended = own_drag && up_down == 0;
    if (ended) {
        db_drag.active = false;
        Tree_Draw();
    } else if (own_drag && Drag_Scroll()) {
        Tree_Draw();
        Tree_Motion(up_down);
        return 1;
    }
    if (Is_Over(list_box)) {
        Tree_Motion(up_down);
        return 1;
    }
    if (Slider_Takes(vertical, up_down) || Slider_Takes(horizontal, up_down)) {
        return 1;
    }
    if (!Is_Editor()) {
        select_all.Select(up_down);
        select_none.Select(up_down);
    }
    return ended ? 1 : 0;
}

void Tool_DB_List::Tree_Motion(int up_down) {
    if (Is_Editor()) {
        DB_Edit_Motion_DB(mode, &list_box, up_down, Nb(), List_Pt(), &horizontal, &vertical);
    } else {
        DB_List_Motion(&list_box, up_down, Nb(), List_Pt(), &horizontal, &vertical);
    }
}

/** Scrolls while a drag is held in a zone beside the tree. @return true when it scrolled */
bool Tool_DB_List::Drag_Scroll() {
    const int step = Is_Editor() ? DRAG_STEP_EDIT : DRAG_STEP_BROWSE;
    bool scrolled = false;
    const auto scroll = [&scrolled](Sliders& slider, int by) {
        slider.value += static_cast<float>(by);
        slider.Adjust();
        scrolled = true;
    };
    // The signs of the stored point differ between the directions; kept, because the feedback takes the pointer anew.
    if (!Is_Disabled(horizontal)) {
        if (Is_Over(right_zone)) {
            scroll(horizontal, step);
            db_drag.current.x -= step;
        } else if (Is_Over(left_zone)) {
            scroll(horizontal, -step);
            db_drag.current.x += step;
        }
    }
    if (!Is_Disabled(vertical)) {
        if (Is_Over(bottom_zone)) {
            scroll(vertical, step);
            db_drag.current.y += step;
        } else if (Is_Over(top_zone)) {
            scroll(vertical, -step);
            db_drag.current.y -= step;
        }
    }
    return scrolled;
}

int Tool_DB_List::Scroll(int delta) {
    Sliders* slider = nullptr;
    if (horizontal.Select(MOUSE_ASK) != 0) {
        slider = &horizontal;
    } else if (Is_Over(panel_box)) {
        slider = &vertical;
    } else {
        return 0;
    }
    slider->Scroll(-std::max(delta, -std::numeric_limits<int>::max()));
    slider->Adjust();
    Tree_Draw();
    return 1;
}

int Tool_DB_List::Keyboard(int key) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_DB_List::Keyboard(key=0x%08x)", static_cast<unsigned int>(key));
    if ((key & DB_KEY_MASK) == KEY_DELETE && Is_Editor()) {
        const std::shared_ptr<DB_Rows> kept = rows;
        const Panel_Watch watch(life);
        DB_Edit_Key_DB(mode, &list_box, key, Nb(), List_Pt(), &horizontal, &vertical, &watch);
        if (watch.Is_Alive()) {
            Show_Changed();  // whatever the editor did
        }
    }
    return 0;  // always: the host goes on handling the key
}

void Tool_DB_List::Leave() {
    select_all.Deselect();
    select_none.Deselect();
    vertical.Deselect();
    horizontal.Deselect();
}

void Tool_DB_List::Update(unsigned __int64 flags) {
    // The views' operations are the host's code where a view is the host's own, and a memory message may show a window.
    const Panel_Watch watch(life);
    if (Has_Any(flags, UPDATE_STRUCTURE)) {
        Rebuild(watch);
    }
    if (watch.Is_Alive() && Has_Any(flags, UPDATE_WINDOW_CUR)) {
        Take_Window(watch);
    }
    if (watch.Is_Alive() && Has_Any(flags, UPDATE_SELECTION) &&
        Has_Any(flags, UPDATE_LEVEL_1D | UPDATE_LEVEL_2D | UPDATE_LEVEL_3D) && Take_Selection(watch)) {
        Tree_Draw();
    }
}

void Tool_DB_List::Rebuild(const Panel_Watch& watch) {
    List_Free(this);
    vertical.value = 0.0F;
    horizontal.value = 0.0F;
    const std::shared_ptr<DB_Rows> built = rows;
    if (built != nullptr) {
        List_Create_From_DB(&built->nb, &built->list_pt, 0, 0, nullptr);
        DB_List_Set_State(built->nb, built->list_pt);
    }
    if (!watch.Is_Alive()) {
        return;
    }
    Tree_Draw();
    Sliders_Draw();
}

/** The current window changed: its kind decides whether the selection can be changed. */
void Tool_DB_List::Take_Window(const Panel_Watch& watch) {
    const Quorel_Window* const window = Host_Pointer<Quorel_Window>("$WINDOW_CUR");
    if (window == nullptr || !Take_Selection(watch)) {
        return;
    }
    const unsigned int style = window->Class_A_Get() == CLASS_WINDOW_LOCKED ? STYLE_INACTIVE : STYLE_BUTTON;
    select_all.style = style;
    select_none.style = style;
    Draw();
}

/** @return false when the panel ended meanwhile */
bool Tool_DB_List::Take_Selection(const Panel_Watch& watch) {
    const std::shared_ptr<DB_Rows> kept = rows;
    List_Select_From_DB(Nb(), List_Pt());
    if (watch.Is_Alive()) {
        DB_List_Set_State(Nb(), List_Pt());
    }
    return watch.Is_Alive();
}
