#include "panels/tool_propagate.h"

#include <algorithm>
#include <climits>
#include <cstdio>
#include <exception>
#include <new>
#include <string>

#include "host/kit_common.h"
#include "panels/protocol/host_variables.h"
#include "panels/protocol/widget_place.h"
#include "panels/tool_propagate_geometry.h"

namespace {

constexpr int TRACE_FROM = 6;  ///< value of Flag_Trace from which most entry traces are made
constexpr int KEY_MASK = 0xFFFF;

bool Traced() {
    return Flag_Trace >= TRACE_FROM;
}

Quorel_Window* Focused_Window() {
    return Host_Pointer<Quorel_Window>("$WINDOW_CUR");
}

/** Keys that the list applies. */
bool Is_List_Key(int key) {
    switch (key) {
        case KEY_PAGE_UP:
        case KEY_PAGE_DOWN:
        case KEY_END:
        case KEY_HOME:
        case KEY_LEFT:
        case KEY_RIGHT:
        case KEY_INSERT:
        case KEY_DELETE:
            return true;
        default:
            return false;
    }
}

/** Holds the focus and shows the wait cursor for as long as it lives. */
class Propagation_Hold {
  public:
    Propagation_Hold()
        : lock(static_cast<unsigned char*>(Fct_Variable_Get("$INTERFACE_LOCK_FOCUS", nullptr, nullptr, nullptr, 0))) {
        if (lock != nullptr) {
            *lock = 1;
        }
        Set_Curs_Wait(nullptr);
    }
    ~Propagation_Hold() {
        if (lock != nullptr) {
            *lock = 0;
        }
        Reset_Curs_Wait(nullptr);
    }
    Propagation_Hold(const Propagation_Hold&) = delete;
    Propagation_Hold& operator=(const Propagation_Hold&) = delete;

  private:
    unsigned char* lock;
};

/** What a run of the host's function ended with. */
struct Propagation_End {
    int result = 0;
    bool failed = false;    ///< by an exception, which goes no farther
    std::string complaint;  ///< what the exception said; empty: nothing
};

Propagation_End Run_Held(int (*propagation)(void*, void*), Quorel_2D* shown, Quorel_2D* target) {
    const Propagation_Hold hold;
    try {
        return {propagation(shown, target), false, {}};
    } catch (const std::exception& exception) {
        try {
            return {0, true, std::string(": ") + exception.what()};
        } catch (const std::bad_alloc&) {  // the text needs memory
            return {0, true, {}};
        }
    } catch (...) {
        return {0, true, {}};
    }
}

}  // namespace

Tool_Propagate::Tool_Propagate()
    : frame_nb(0), frame_cur(nullptr), volume(nullptr), propagation(nullptr), window_told(nullptr) {
    frame.style = STYLE_FRAMED_BOX;
    list.style = STYLE_FLAT_INACTIVE;
    list.Set_Name(" Frame: ");
    up.style = STYLE_INACTIVE;
    up.Set_Name("Up");
    down.style = STYLE_INACTIVE;
    down.Set_Name("Down");
}

Tool_Propagate::~Tool_Propagate() = default;
Tool_Propagate::Tool_Propagate(const Tool_Propagate& other) = default;
Tool_Propagate& Tool_Propagate::operator=(const Tool_Propagate& other) = default;

int Tool_Propagate::Set(int (*fct)(void*, void*)) {
    // Contract: hosts search logs of this module for this line; it names the brush panel.
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Brush::Set()");
    propagation = fct;
    return 1;
}

int Tool_Propagate::Propagate(int direction) {
    const int item = list.current;
    if ((direction > 0 && item == frame_nb - 1) || (direction < 0 && item == 0)) {
        return 0;
    }
    list.current = static_cast<short>(static_cast<std::int64_t>(item) + direction);
    list.Adjust();
    Quorel_Window* const window = Focused_Window();
    if (window == nullptr || volume == nullptr) {
        return 0;
    }
    // The host may call Update before Fct_Change_Child returns; the function gets what was shown before all the same.
    Quorel_2D* const shown = frame_cur;
    Quorel_2D* const stepped = volume;
    Quorel_2D* const target = volume->Child_Get_Pt(list.current);
    const Panel_Watch watch(life);
    if (target != nullptr) {
        Fct_Change_Child(window, target, shown);
        if (!watch.Is_Alive()) {
            return 0;
        }
    }
    if (propagation == nullptr) {
        // Contract: hosts without a function step through the volume by the buttons: the warning follows the move.
        Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x05WARNING:\x02 No function associated with propagate");
        return 0;
    }
    if (target == nullptr || volume == nullptr) {
        return 0;  // no frame to go on to, or the host closed what the window shows
    }
    const unsigned int told_before = told;
    const Propagation_End end = Run_Held(propagation, shown, target);
    if (watch.Is_Alive()) {
        Take_Run(window, stepped, told_before, target);
    }
    if (end.failed) {
        Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x05WARNING:\x02 The propagation ended by an error%s",
                  end.complaint.c_str());
    }
    return end.result;
}

/** After a run: the panel stands where the run went, unless an Update meanwhile told of another frame of that window,
 * or of none. */
void Tool_Propagate::Take_Run(Quorel_Window* window, Quorel_2D* stepped, unsigned int told_before, Quorel_2D* target) {
    if (volume == nullptr) {
        return;
    }
    const bool is_same_window = window_told == window;
    if (told == told_before || !is_same_window) {
        frame_cur = target;
        ++told;  // for the run that this step is part of
    }
    if (Focused_Window() != nullptr) {  // else the window may be gone, without a word
        Refresh_Item(is_same_window ? volume : stepped, window);
    }
}

int Tool_Propagate::Resize(Boxs* box) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Propagate::Resize(dim=%dx%d)", box->width, box->height);
    const int space = Host_Dimension("$INTERFACE_SPACE_DIM");
    const int list_height = Host_Dimension("$INTERFACE_LIST_DIM_SML");
    const short arrow = Host_Dimension("$INTERFACE_LIST_DIM_ARROW");
    Host_Dimension("$INTERFACE_BUTTON_DIM_BIG");  // looked up and not used

    const Pixel_Rectangle host = Widget_Rectangle(*box);
    const Propagate_Layout layout = Propagate_Layout_Make(host, space, list_height);

    frame.style = STYLE_FRAMED_BOX;
    frame.Set_Name("Propagate");
    Widget_Place(frame, host);
    frame.Take_Look(*box);
    frame.Init(box->window);

    down.style = Propagate_Has_Previous(frame_nb, list.current) ? STYLE_BUTTON : STYLE_INACTIVE;
    Widget_Place(down, layout.down);
    down.Take_Look(*box);
    down.Init(box->window);

    list.style = frame_nb != 0 ? STYLE_FLAT : STYLE_FLAT_INACTIVE;
    list.arrow = arrow;
    Widget_Place(list, layout.list);
    list.Take_Look(*box);
    list.Init(box->window);

    up.style = Propagate_Has_Next(frame_nb, list.current) ? STYLE_BUTTON : STYLE_INACTIVE;
    Widget_Place(up, layout.up);
    up.Take_Look(*box);
    up.Init(box->window);
    return 1;
}

int Tool_Propagate::Height() {
    if (Traced()) {
        Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Propagate::Height()");
    }
    Host_Dimension("$INTERFACE_TOOL_FONT_SCALE");  // looked up and not used
    return Propagate_Height(Host_Dimension("$INTERFACE_SPACE_DIM"), Host_Dimension("$INTERFACE_LIST_DIM_SML"),
                            Host_Dimension("$INTERFACE_TITLE_DIM_SML"));
}

void Tool_Propagate::Draw() {
    if (Traced()) {
        Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Propagate::Draw()");
    }
    frame.Draw();
    list.Draw();
    up.Draw();
    down.Draw();
}

int Tool_Propagate::Click(int up_down) {
    if (Traced()) {
        Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Propagate::Click(up_down=0x%08x)", static_cast<unsigned int>(up_down));
    }
    if ((up_down & MOUSE_PRESS) == 0) {
        return 0;  // a release, whichever buttons are still held
    }
    const Panel_Watch watch(life);
    const bool list_took_it = list.Select(up_down) != 0;  // its drop list runs a message loop
    if (!watch.Is_Alive()) {
        return 1;
    }
    if (list_took_it) {
        const int item = list.Read();
        if (item >= 0) {
            list.current = static_cast<short>(item);
            list.Adjust();
            Show_Frame_Of_Item();
        }
        return 1;
    }
    if (up.Select(up_down) != 0) {
        Propagate(1);
        return 1;
    }
    if (down.Select(up_down) != 0) {
        Propagate(-1);
        return 1;
    }
    return 0;
}

int Tool_Propagate::Motion(int up_down) {
    list.Select(up_down);
    up.Select(up_down);
    down.Select(up_down);
    return 0;
}

int Tool_Propagate::Scroll(int val) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Propagate::Scroll()");
    if (list.Select(MOUSE_ASK) == 0) {
        return 1;
    }
    list.Scroll(-std::max(val, -INT_MAX));
    Refresh_Buttons();
    Show_Frame_Of_Item();
    return 1;
}

int Tool_Propagate::Keyboard(int key) {
    if (Traced()) {
        Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Propagate::Keyboard(key=0x%08x)", static_cast<unsigned int>(key));
    }
    if (!Is_List_Key(key & KEY_MASK) || list.Select(MOUSE_ASK) == 0) {
        return 0;
    }
    list.Scroll(0);  // the list knows the key; the buttons follow with the host's next Update only
    Show_Frame_Of_Item();
    return 1;
}

void Tool_Propagate::Leave() {
    list.Deselect();
    up.Deselect();
    down.Deselect();
}

void Tool_Propagate::Update(unsigned __int64 flags) {
    if (Traced()) {
        Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Propagate::Update(flag:%016llx)", static_cast<unsigned long long>(flags));
    }
    if (!Has_Any(flags, UPDATE_ALL | UPDATE_FRAME_CUR) && !Has_All(flags, UPDATE_STRUCTURE | UPDATE_LEVEL_2D)) {
        return;
    }
    Take_Frame();
    Refresh_List();
    Refresh_Buttons();
}

/** Takes over what the focused window shows. */
void Tool_Propagate::Take_Frame() {
    Quorel_2D** frames = Host_Pointer<Quorel_2D*>("$FRAME_CUR");
    Quorel_Window* const window = Focused_Window();
    window_told = window;
    ++told;
    // Without a function there is nothing to propagate: the panel shows no frames.
    if (propagation == nullptr || frames == nullptr || window == nullptr || frames[window->Class_B_Get()] == nullptr) {
        frame_nb = 0;
        frame_cur = nullptr;
        volume = nullptr;
        return;
    }
    frame_cur = frames[window->Class_B_Get()];
    volume = frame_cur->Parent_Get_Pt();
    if (volume == nullptr) {
        frame_nb = 0;
        return;
    }
    const int nb = volume->Child_Get_Nb();
    const bool items_missing = nb > 0 && list.item_nb == 0;  // there was no memory for them
    if (nb != frame_nb || items_missing) {
        Take_Volume_Size(nb);
    }
    Refresh_Item(volume, window);
}

/** Gives the list one item per frame. */
void Tool_Propagate::Take_Volume_Size(int nb) {
    frame_nb = nb;
    list.Grow(nb, 0);
    for (int k = 0; k < list.item_nb; k++) {
        std::snprintf(list.item[k].text, sizeof list.item[k].text, "%d", k + 1);
    }
    list.style = STYLE_FLAT;
    list.Init(nullptr);
    list.Draw();
}

/** The list's current item becomes the frame that the window shows, 0 when it shows none of this volume. */
void Tool_Propagate::Refresh_Item(const Quorel_2D* frames_of, Quorel_Window* window) {
    list.current = static_cast<short>(std::max(frames_of->Child_Get_Cur(window), 0));
    list.Adjust();
}

/** A jump: the focused window shows the frame of the list's current item. The host is called: it may destroy the panel.
 */
void Tool_Propagate::Show_Frame_Of_Item() {
    Quorel_Window* const window = Focused_Window();
    Quorel_2D* const target = volume != nullptr ? volume->Child_Get_Pt(list.current) : nullptr;
    if (window != nullptr && target != nullptr) {
        Fct_Change_Child(window, target, frame_cur);
    }
}

void Tool_Propagate::Refresh_List() {
    const unsigned int style = frame_nb > 0 ? STYLE_FLAT : STYLE_FLAT_INACTIVE;
    if (list.style == style) {
        return;
    }
    list.style = style;
    if (frame_nb > 0) {
        list.Init(nullptr);
    } else {
        list.Clear(frame.color);
    }
    list.Draw();
}

void Tool_Propagate::Refresh_Buttons() {
    Refresh_Button(up, Propagate_Has_Next(frame_nb, list.current));
    Refresh_Button(down, Propagate_Has_Previous(frame_nb, list.current));
}

void Tool_Propagate::Refresh_Button(Buttons& button, bool active) {
    const unsigned int style = active ? STYLE_BUTTON : STYLE_INACTIVE;
    if (button.style == style) {
        return;
    }
    button.style = style;
    if (!active) {
        button.Clear(frame.color);
    }
    button.Draw();
}
