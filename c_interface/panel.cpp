#include "c_interface/panel.h"

#include <algorithm>
#include <utility>

#include "host/kit_common.h"
#include "kits/dataset/dataset_host.h"

namespace c_interface {

namespace {

constexpr int SIZE_MOST = 32767;  // rectangles of panels are 16 bits wide
constexpr int DARK_GREY = 70;
constexpr int LIGHT_GREY = 214;
constexpr std::uint32_t BUTTONS_ALL = KIT_BUTTON_LEFT | KIT_BUTTON_MIDDLE | KIT_BUTTON_RIGHT;
// What Resize does not read: marks, greying, frames, masks, rows.
constexpr std::uint64_t UPDATE_LAID_OUT = UPDATE_ALL | UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK |
                                          UPDATE_TAG_CUR | UPDATE_BRUSH | UPDATE_FRAME_CUR;
constexpr std::uint64_t UPDATE_FIRST = UPDATE_LAID_OUT | UPDATE_STRUCTURE | UPDATE_SELECTION | UPDATE_LEVEL_1D |
                                       UPDATE_LEVEL_2D | UPDATE_LEVEL_3D | UPDATE_HISTO_DATA;

void Rectangle_Check(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    Require(x >= -SIZE_MOST && x <= SIZE_MOST && y >= -SIZE_MOST && y <= SIZE_MOST, KIT_ERROR_ARGUMENT,
            "x or y is beyond 32767");
    Require(width >= 1 && width <= SIZE_MOST && height >= 1 && height <= SIZE_MOST, KIT_ERROR_ARGUMENT,
            "width or height is not from 1 to 32767");
}

Window_Axis Axis_Of(const kit_panel_settings& settings) {
    if (settings.own_window == 0) {
        return settings.axis_up != 0 ? Window_Axis::Up : Window_Axis::Down;
    }
    switch (settings.kind) {
        case KIT_PANEL_PROPAGATE:
        case KIT_PANEL_CLASSES:
        case KIT_PANEL_FILES:
            return Window_Axis::Up;
        default:
            return Window_Axis::Down;
    }
}

/** Shows at once what is drawn meanwhile into a window of ours; a host's window is the host's to buffer. */
class Buffered {
  public:
    explicit Buffered(const Panel& panel) : window(panel.Is_Own_Window() ? panel.Window() : nullptr) {
        if (window != nullptr) {
            Window_Buffer_Begin(window);
        }
    }
    ~Buffered() {
        if (window != nullptr) {
            Window_Buffer_End(window);
        }
    }
    Buffered(const Buffered&) = delete;
    Buffered& operator=(const Buffered&) = delete;

  private:
    HWND window;
};

}  // namespace

Panel::Panel(const kit_panel_settings& wanted, std::unique_ptr<Panel_Work> panel_work)
    : Object(KIND), settings(wanted), work(std::move(panel_work)) {
    Require(wanted.window != nullptr, KIT_ERROR_ARGUMENT, "window is null");
    Rectangle_Check(wanted.x, wanted.y, wanted.width, wanted.height);
    Require(wanted.font_height >= 0 && wanted.font_height <= 1000, KIT_ERROR_ARGUMENT,
            "font_height is not from 0 to 1000");
    if (hwnd == nullptr) {
        hwnd = static_cast<HWND>(wanted.window);  // messages name it
    }
    if (wanted.own_window == 0) {
        window = static_cast<HWND>(wanted.window);
        Window_Axis_Set(window, Axis_Of(wanted));
    }
}

Panel::~Panel() {
    work.reset();
    if (is_own && window != nullptr) {
        Child_Window_End(window);
    }
}

void Panel::Window_Make() {
    if (settings.own_window != 0) {
        window = Child_Window_Make(static_cast<HWND>(settings.window), settings.x, settings.y, settings.width,
                                   settings.height, handle);
        Require(window != nullptr, KIT_ERROR_SYSTEM, "no child window could be made");
        is_own = true;
        Window_Axis_Set(window, Axis_Of(settings));
    }
    Lay_Out();
    if (window != nullptr) {
        const Buffered buffered(*this);
        work->Update(UPDATE_FIRST);
        work->Draw();
    }
}

void Panel::Window_Lost() {
    Window_Forget(window);
    window = nullptr;
    is_laid_out = false;
}

void Panel::Window_Hide() const {
    if (is_own && window != nullptr) {
        Child_Window_Hide(window);
    }
}

void Panel::Place(std::int32_t x, std::int32_t y, std::int32_t width, std::int32_t height) {
    Rectangle_Check(x, y, width, height);
    settings.x = x;
    settings.y = y;
    settings.width = width;
    settings.height = height;
    if (is_own) {
        Child_Window_Move(window, x, y, width, height);
    }
    Lay_Out();
}

void Panel::Lay_Out() {
    int x = settings.x;
    int y = settings.y;
    int width = settings.width;
    int height = settings.height;
    if (is_own && Client_Size(window, &width, &height)) {
        x = 0;
        y = 0;
        if (width < 1 || height < 1) {
            return;  // nothing to see until it has a size again
        }
    }
    Boxs box;
    box.style = STYLE_FRAMED_BOX | STYLE_SHOW_CHECK;
    box.x = static_cast<short>(x);
    box.y = static_cast<short>(y);
    box.width = static_cast<short>(std::min(width, SIZE_MOST));
    box.height = static_cast<short>(std::min(height, SIZE_MOST));
    const bool is_given = settings.red != 0 || settings.green != 0 || settings.blue != 0;
    const int grey = Session::The().settings.theme == KIT_THEME_LIGHT ? LIGHT_GREY : DARK_GREY;
    box.color.red = static_cast<unsigned short>(is_given ? settings.red : grey);
    box.color.green = static_cast<unsigned short>(is_given ? settings.green : grey);
    box.color.blue = static_cast<unsigned short>(is_given ? settings.blue : grey);
    box.border = settings.border;
    box.font_scale = static_cast<short>(settings.font_height);
    box.window = window;
    const Buffered buffered(*this);
    work->Resize(&box);
    is_laid_out = true;
    work->Update(UPDATE_LAID_OUT);
}

void Panel::Lay_Out_Again() {
    if (is_laid_out) {
        Lay_Out();
        Paint();
    }
}

void Panel::Paint() {
    const Buffered buffered(*this);
    work->Draw();
}

void Panel::Update(std::uint64_t flags) {
    if (is_laid_out) {
        const Buffered buffered(*this);
        work->Update(flags);
    }
}

int Panel::Wheel_Notches(int delta) {
    return wheel.Add(delta);
}

int Panel::Click(int up_down) {
    const int result = work->Click(up_down);
    Session& session = Session::The();
    int picked = -1;
    switch (settings.kind) {
        case KIT_PANEL_TAG:
        case KIT_PANEL_MARKER:
            picked = result;
            if (picked >= 0) {
                Variable_Set(settings.kind == KIT_PANEL_TAG ? "$TAG_CUR" : "$MARKER_CUR", picked);
                session.Announce(UPDATE_TAG_CUR);
            }
            break;
        case KIT_PANEL_BRUSH:
            picked = result != 0 ? work->Read() : -1;
            if (picked >= 0) {
                Variable_Set("$BRUSH_CUR", picked);
                session.Announce(UPDATE_BRUSH);
            }
            break;
        default:
            return result != 0 ? 1 : 0;
    }
    if (picked >= 0) {
        session.Tell({.kind = KIT_EVENT_PICKED, .panel = handle, .index = picked});
    }
    return picked >= 0 ? 1 : 0;
}

int Panel::Input(const kit_input& input) {
    Require(input.kind >= KIT_INPUT_PRESS && input.kind <= KIT_INPUT_LEAVE, KIT_ERROR_ARGUMENT,
            "no such kind of input");
    Require((input.buttons & ~BUTTONS_ALL) == 0, KIT_ERROR_ARGUMENT, "buttons is no sum of KIT_BUTTON_ bits");
    const int held = static_cast<int>(input.buttons);
    YCursor_X = input.x;
    YCursor_Y = input.y;
    const Buffered buffered(*this);
    switch (input.kind) {
        case KIT_INPUT_PRESS:
            return Click(MOUSE_PRESS | held);
        case KIT_INPUT_RELEASE:
            return Click(held);
        case KIT_INPUT_MOTION:
            return work->Motion(held != 0 ? held | MOUSE_DRAG : 0) != 0 ? 1 : 0;
        case KIT_INPUT_WHEEL:
            return work->Scroll(std::clamp(input.value, -SIZE_MOST, SIZE_MOST)) != 0 ? 1 : 0;
        case KIT_INPUT_KEY: {
            Key_In_Hand_Set(input.value);
            const int used = work->Keyboard(input.value);
            Key_In_Hand_Set(0);
            return used != 0 ? 1 : 0;
        }
        default:
            work->Leave();
            return 1;
    }
}

Panel& Panel_Of_Handle(kit_handle handle) {
    auto& panel = Object_Of<Panel>(handle);
    Require(panel.Is_Laid_Out() && panel.Window() != nullptr, KIT_ERROR_STATE, "the panel's window is gone");
    return panel;
}

void Panels_Lay_Out(std::uint32_t kind) {
    const Handle_Table& handles = Session::The().handles;
    for (const kit_handle handle : handles.All(Kind::Panel)) {
        if (auto* const panel = static_cast<Panel*>(handles.Find(handle));
            panel != nullptr && panel->Panel_Kind() == kind) {
            panel->Lay_Out_Again();
        }
    }
}

}  // namespace c_interface

using namespace c_interface;

static_assert(KIT_BUTTON_LEFT == MOUSE_LEFT && KIT_BUTTON_MIDDLE == MOUSE_MIDDLE && KIT_BUTTON_RIGHT == MOUSE_RIGHT &&
              KIT_KEY_SPECIAL == KEY_SPECIAL);
static_assert(KIT_UPDATE_ALL == UPDATE_ALL && KIT_UPDATE_TAG_LABEL == UPDATE_TAG_LABEL &&
              KIT_UPDATE_TAG_SELECT == UPDATE_TAG_SELECT && KIT_UPDATE_TAG_ENABLE == UPDATE_TAG_ENABLE &&
              KIT_UPDATE_TAG_LOCK == UPDATE_TAG_LOCK && KIT_UPDATE_COLOR_COMPONENT == UPDATE_COLOR_COMPONENT &&
              KIT_UPDATE_TAG_TABLE == UPDATE_TAG_TABLE && KIT_UPDATE_WINDOW == UPDATE_WINDOW_CUR &&
              KIT_UPDATE_HISTOGRAM_PAINT == UPDATE_HISTO_PAINT && KIT_UPDATE_HISTOGRAM_DATA == UPDATE_HISTO_DATA &&
              KIT_UPDATE_BRUSH == UPDATE_BRUSH && KIT_UPDATE_TAG_CURRENT == UPDATE_TAG_CUR &&
              KIT_UPDATE_FRAME == UPDATE_FRAME_CUR && KIT_UPDATE_MOUSE == UPDATE_MOUSE_FRAME &&
              KIT_UPDATE_STRUCTURE == UPDATE_STRUCTURE && KIT_UPDATE_SELECTION == UPDATE_SELECTION &&
              KIT_UPDATE_LEVEL_3D == UPDATE_LEVEL_3D && KIT_UPDATE_LEVEL_2D == UPDATE_LEVEL_2D &&
              KIT_UPDATE_LEVEL_1D == UPDATE_LEVEL_1D);

extern "C" {

kit_status kit_panel_create(const kit_panel_settings* settings, kit_handle* panel) {
    return Call("kit_panel_create", 0, [&] {
        Write_To<kit_handle>(panel, 0);
        const kit_panel_settings wanted = Struct_Of(settings);
        auto work = Panel_Work_Make(wanted.kind, wanted.option);
        auto made = std::make_unique<Panel>(wanted, std::move(work));
        Panel& live = *made;
        Session& session = Session::The();
        const kit_handle handle = session.handles.Add(std::move(made));
        try {
            live.Window_Make();
        } catch (...) {
            session.handles.Take(handle);
            throw;
        }
        *panel = handle;
    });
}

kit_status kit_panel_destroy(kit_handle panel) {
    return Destroy<Panel>("kit_panel_destroy", panel);
}

kit_status kit_panel_place(kit_handle panel, int32_t x, int32_t y, int32_t width, int32_t height) {
    return Call("kit_panel_place", panel, [&] { Panel_Of_Handle(panel).Place(x, y, width, height); });
}

kit_status kit_panel_height(kit_handle panel, uint32_t rows, int32_t* height) {
    return Call("kit_panel_height", panel, [&] {
        Require(rows <= 65535, KIT_ERROR_ARGUMENT, "rows is beyond 65535");
        Write_To<int32_t>(height, Panel_Of_Handle(panel).Work().Height(static_cast<unsigned short>(rows)));
    });
}

kit_status kit_panel_draw(kit_handle panel) {
    return Call("kit_panel_draw", panel, [&] { Panel_Of_Handle(panel).Paint(); });
}

kit_status kit_panel_window(kit_handle panel, void** window) {
    return Call("kit_panel_window", panel, [&] { Write_To<void*>(window, Panel_Of_Handle(panel).Window()); });
}

kit_status kit_panel_kind(kit_handle panel, uint32_t* kind) {
    return Call("kit_panel_kind", panel, [&] { Write_To(kind, Object_Of<Panel>(panel).Panel_Kind()); });
}

kit_status kit_panel_input(kit_handle panel, const kit_input* input, int32_t* used) {
    return Call("kit_panel_input", panel, [&] {
        Panel& live = Panel_Of_Handle(panel);
        const int result = live.Input(Struct_Of(input));
        if (used != nullptr) {
            *used = result;
        }
    });
}

kit_status kit_panel_message(kit_handle panel, uint32_t message, uint64_t wparam, int64_t lparam, int32_t* used) {
    return Call("kit_panel_message", panel, [&] {
        const int result = Window_Message(Panel_Of_Handle(panel), message, wparam, lparam);
        Require(result >= 0, KIT_ERROR_SYSTEM, "there is no window system");
        if (used != nullptr) {
            *used = result;
        }
    });
}

kit_status kit_panel_update(kit_handle panel, uint64_t flags) {
    return Call("kit_panel_update", panel, [&] {
        if (panel == 0) {
            Session::The().Announce(flags);
        } else {
            Panel_Of_Handle(panel).Update(flags);
        }
    });
}

}  // extern "C"
