#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "tests/soak/soak_host.h"

#include <cstdlib>
#include <cstring>
#include <utility>

#include "kits/widgets/select_drop_list.h"
#include "tests/support/own_window.h"

namespace {

constexpr const char* EXPORT_NAME = "soak_test.csv";
constexpr int PANEL_NB = 8;
constexpr int EDITOR = 6;
constexpr UINT DATA = 0x400;
constexpr UINT CURSOR = 0x401;

int held_buttons = 0;
int wanted_item = 0;
int dialog_ticks = 0;

HWND Enlarged_Window() {
    return Own_Window(L"Histogram");
}

/** The user of the rename dialog: types, saves, and closes it when that did not end it. */
void CALLBACK Dialog_User(HWND, UINT, UINT_PTR, DWORD) {
    const HWND dialog = Own_Window({}, L"Class Rename");
    if (dialog == nullptr) {
        return;
    }
    RECT client = {};
    ::GetClientRect(dialog, &client);
    const LPARAM button = MAKELPARAM(client.right / 4, client.bottom - SPACE_DIM - BUTTON_DIM_BIG / 2);
    switch (dialog_ticks++) {
        case 0:
            ::UpdateWindow(dialog);
            ::SendMessageA(dialog, WM_KEYDOWN, 'X', 1);
            break;
        case 1:
            ::SendMessageA(dialog, WM_LBUTTONDOWN, MK_LBUTTON, button);
            ::SendMessageA(dialog, WM_LBUTTONUP, 0, button);
            break;
        default:
            ::SendMessageA(dialog, WM_CLOSE, 0, 0);
            break;
    }
}

std::vector<std::uint32_t> Hills(int shift) {
    std::vector<std::uint32_t> counts;
    for (int bin = 0; bin < 400; bin++) {
        const int a = 90 - std::abs(bin - 100 - shift);
        const int b = 70 - std::abs(bin - 290 + shift);
        counts.push_back(static_cast<std::uint32_t>(5 + (a > 0 ? a * a / 20 : 0) + (b > 0 ? b * b / 20 : 0)));
    }
    return counts;
}

template <class Element>
Element* Array(const char* name, Variable_Type type, int nb) {
    return static_cast<Element*>(Variable_Define_Array(name, type, nb));
}

}  // namespace

// ---------------- data

Soak_Host::Soak_Host(unsigned int seed) : random(seed) {
    const std::pair<const char*, int> dimensions[] = {{"$INTERFACE_SPACE_DIM", SPACE_DIM},
                                                      {"$INTERFACE_BORDER_DIM", BORDER_DIM},
                                                      {"$INTERFACE_CURSOR_DIM", CURSOR_DIM},
                                                      {"$INTERFACE_BUTTON_DIM_SML", BUTTON_DIM_SML},
                                                      {"$INTERFACE_BUTTON_DIM_BIG", BUTTON_DIM_BIG},
                                                      {"$INTERFACE_LIST_DIM_SML", LIST_DIM_SML},
                                                      {"$INTERFACE_LIST_DIM_ARROW", LIST_DIM_ARROW},
                                                      {"$INTERFACE_TITLE_DIM_SML", TITLE_DIM_SML},
                                                      {"$INTERFACE_VAL_DIM_SML", VAL_DIM_SML},
                                                      {"$INTERFACE_TOOL_FONT_SCALE", 13},
                                                      {"$INTERFACE_TITLE_FONT_SCALE", 15}};
    for (const auto& [name, pixels] : dimensions) {
        Variable_Define_Scalar(name, VARIABLE_SIGNED_16, pixels);
    }
    Variable_Define_Scalar("$INTERFACE_LOCK_FOCUS", VARIABLE_UNSIGNED_8, 0);
    Variable_Define_Text("$DEFAULT_ICON_PATH", "icons");
    Variable_Define_Text("$DEFAULT_FILE_PATH", "");
    Variable_Define_Text("$FILE_EXTENSION_EXCEL", "*.csv");
    Variable_Define_Text("$FILE_EXTENSION_ALL", "*.*");
    Variable_Define_Array("$FRAME_CUR", VARIABLE_POINTER, WINDOW_NUMBER_MAX);
    for (int i = 0; i < FRAME_NB; i++) {
        Scene_Object& one = i % 2 == 0 ? scene.Add_Color({}, Hills(i)) : scene.Add_Grey({}, Hills(i));
        one.frame.sample = 100 + 10 * i;
    }
    scene.window.class_b = 2;
    Labels_Make();
    Variable_Define_Scalar("$BRUSH_CUR", VARIABLE_UNSIGNED_16, 0);
    Brush_Host::Sizes({2, 3, 9, 20});
    masks.emplace(4, 10);
    constexpr Place places[PANEL_NB] = {
        {Window_Axis::Down, 300, 160}, {Window_Axis::Down, 300, 160}, {Window_Axis::Down, 160, 60},
        {Window_Axis::Up, 300, 70},    {Window_Axis::Down, 300, 150}, {Window_Axis::Up, 300, 220},
        {Window_Axis::Up, 500, 260},   {Window_Axis::Up, 300, 220},
    };
    for (const Place& place : places) {
        windows.push_back(std::make_unique<Panel_Window>(place.axis, place.width, place.height));
    }
    Input_Source input;
    input.button = [](int) { return held_buttons; };
    input.key = [](int) { return 0; };
    Input_Source_Set(input);
    Drop_List_Runner_Set([](const Drop_List_Request&) { return wanted_item; });
    Request_Listener listener;
    listener.context = this;
    listener.update = [](void* self, unsigned long long flags, void*, void*) {
        static_cast<Soak_Host*>(self)->Deliver(flags);
    };
    listener.change_child = [](void* self, Quorel_Window*, Quorel_2D*, Quorel_2D*) {
        static_cast<Soak_Host*>(self)->Deliver(UPDATE_FRAME_CUR);
    };
    listener.save_file_name = [](void*, const char*, const char*, const char*, const char*, char* buffer) {
        std::strcpy(buffer, EXPORT_NAME);
        return 1;
    };
    Request_Listener_Set(listener);
    propagate.Set([](void*, void*) { return 1; });
    Home();
}

Soak_Host::~Soak_Host() {
    if (Enlarged_Window() != nullptr) {
        ::SendMessageA(Enlarged_Window(), WM_CLOSE, 0, 0);
    }
    Request_Listener_Set({});
    Drop_List_Runner_Set(nullptr);
    Input_Source_Set({});
    Window_Frame_Set(&scene.window, nullptr);
    ::DeleteFileA(EXPORT_NAME);
}

/** TAGs and markers as at the beginning. The arrays stay where they are: panels know their places. */
void Soak_Host::Labels_Make() {
    scene.Tags(LABEL_NB);
    Variable_Define_Scalar("$TAG_CUR", VARIABLE_UNSIGNED_16, 1);
    Variable_Define_Scalar("$MARKER_NB", VARIABLE_UNSIGNED_16, LABEL_NB);
    Variable_Define_Scalar("$MARKER_CUR", VARIABLE_UNSIGNED_16, 1);
    for (const char* name : {"$TAG_ENABLE", "$TAG_SELECT", "$TAG_LOCK", "$MARKER_ENABLE"}) {
        std::memset(Array<std::uint8_t>(name, VARIABLE_UNSIGNED_8, LABEL_NB), 1, LABEL_NB);
    }
    auto* color = Array<std::uint32_t>("$MARKER_COLOR", VARIABLE_UNSIGNED_32, LABEL_NB);
    Array<char*>("$MARKER_LABEL", VARIABLE_TEXT, LABEL_NB);
    for (int i = 0; i < LABEL_NB; i++) {
        color[i] = 0x302010U + static_cast<std::uint32_t>(i) * 0x020305U;
        scene.Tag_Color(i, 5 * i, 250 - 3 * i, 7 * i % 256);
    }
}

/** Class tree, files and what the window shows anew. */
void Soak_Host::Data_Make() {
    for (int i = 0; i < LABEL_NB; i++) {
        Variable_Set_Array_Text("$TAG_LABEL", i, "label");
        Variable_Set_Array_Text("$MARKER_LABEL", i, "marker");
    }
    classes.emplace(8);
    files.emplace();
    File_Scene_Fill(*files);
    Variable_Define_Pointer("$WINDOW_CUR", &scene.window);
    Window_Frame_Set(&scene.window, &scene.objects[0]->object);
    scene.Mouse_Away();
    Variable_Set("$GLI_COLOR_COMPONENT", 0);
    Brush_Host::Sizes({2, 3, 9, 20});
    for (auto& one : scene.objects) {
        one->Select(true);
    }
}

// ---------------- panels

template <class Operation>
void Soak_Host::Every_Panel(Operation operation) {
    operation(0, tag);
    operation(1, marker);
    operation(2, brush);
    operation(3, propagate);
    operation(4, histo);
    operation(5, browser);
    operation(EDITOR, editor);
    operation(7, file_view);
}

void Soak_Host::Deliver(unsigned long long flags) {
    if (delivering) {
        return;
    }
    delivering = true;
    Every_Panel([flags](int, auto& panel) { panel.Update(flags); });
    delivering = false;
}

Boxs Soak_Host::Box(int panel) const {
    const HWND window = windows[static_cast<std::size_t>(panel)]->Get();
    RECT client = {};
    ::GetClientRect(window, &client);
    Boxs box;
    box.style = panel < 2 ? STYLE_FRAMED_BOX | STYLE_SHOW_CHECK : STYLE_FRAMED_BOX;
    box.x = 5;
    box.y = 5;
    box.width = static_cast<short>(client.right - 10);
    box.height = static_cast<short>(client.bottom - 10);
    box.border = 1;
    box.Set_Color(90, 100, 110);
    box.window = window;
    return box;
}

void Soak_Host::Lay_Out_All() {
    Every_Panel([this](int number, auto& panel) {
        Boxs box = Box(number);
        panel.Resize(&box);
        panel.Update(~0ULL);
        panel.Draw();
    });
}

void Soak_Host::Home() {
    held_buttons = 0;
    if (Enlarged_Window() != nullptr) {
        ::SendMessageA(Enlarged_Window(), WM_CLOSE, 0, 0);
    }
    Pump();
    Every_Panel([](int, auto& panel) { panel.Leave(); });
    browser.Motion(HOVER);
    editor.Motion(HOVER);
    file_view.Motion(HOVER);
    Data_Make();
    histo.Set(0);
    Lay_Out_All();
    histo.Fit_Derivative(4);
    Pump();
}

void Soak_Host::Warm_Up() {
    constexpr int step = 40;
    Rename_Event();
    Copies_Event();
    for (int cut = 0; cut < 50; cut += 2) {
        Every_Panel([&](int number, auto& panel) {
            Boxs box = Box(number);
            box.width = static_cast<short>(box.width - box.width * cut / 100);
            panel.Resize(&box);
            panel.Update(~0ULL);
            panel.Draw();
        });
    }
    Home();
    histo.Fit_Gaussian();
    histo.Write(EXPORT_NAME);
    windows[4]->Point_At(270, 75);
    histo.Click(LEFT_PRESS);
    for (int width = 200; width <= 800; width += step) {
        for (int height = 120; height <= 520; height += step) {
            ::SetWindowPos(Enlarged_Window(), nullptr, 0, 0, width, height, SWP_NOMOVE | SWP_NOZORDER);
            ::InvalidateRect(Enlarged_Window(), nullptr, TRUE);
            ::UpdateWindow(Enlarged_Window());
        }
    }
    Rename_Event();  // owned by the enlarged window now
    Home();
    Rename_Event();
    Home();
}

void Soak_Host::Pump() {
    MSG message;
    while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
        ::DispatchMessageA(&message);
    }
}

// ---------------- events

unsigned long long Soak_Host::Flags() {
    unsigned long long flags = 0;
    for (int i = Below(4); i >= 0; i--) {
        flags |= 1ULL << Below(64);
    }
    return One_In(8) ? ~0ULL : flags;
}

void Soak_Host::Point(int panel) {
    const auto& window = *windows[static_cast<std::size_t>(panel)];
    RECT client = {};
    ::GetClientRect(window.Get(), &client);
    window.Point_At(Below(client.right + 10) - 5, Below(client.bottom + 10) - 5);
}

template <class Panel>
void Soak_Host::Panel_Event(int number, Panel& panel, int key) {
    // Right presses in the editor open the dialog, which has an event of its own.
    constexpr int codes[] = {RELEASE, LEFT_PRESS, LEFT_PRESS, RIGHT_PRESS, MOUSE_PRESS, 1};
    constexpr int moves[] = {HOVER, HOVER, LEFT_DRAG, 1};
    Point(number);
    switch (Below(24)) {
        case 0:
        case 1:
        case 2:
        case 3:
        case 4:
        case 5:
        case 6: {
            const int code = codes[Below(static_cast<int>(std::size(codes)))];
            wanted_item = Below(FRAME_NB);
            panel.Click(number == EDITOR && code == RIGHT_PRESS ? LEFT_PRESS : code);
            kind[Click]++;
            break;
        }
        case 7:
        case 8:
        case 9:
        case 10:
        case 11:
        case 12:
            panel.Motion(moves[Below(static_cast<int>(std::size(moves)))]);
            kind[Motion]++;
            break;
        case 13:
        case 14:
        case 15:
            panel.Scroll(Below(7) - 3);
            kind[Scroll]++;
            break;
        case 16:
        case 17:
        case 18:
        case 19:
            panel.Keyboard(key);
            kind[Keyboard]++;
            break;
        case 20:
            panel.Leave();
            kind[Leave]++;
            break;
        case 21:
            panel.Draw();
            kind[Draw]++;
            break;
        case 22:
            if (One_In(4)) {
                Boxs box = Box(number);
                box.width = static_cast<short>(box.width - Below(box.width / 2));
                panel.Resize(&box);
                kind[Resize]++;
                break;
            }
            [[fallthrough]];
        default:
            panel.Update(Flags());
            kind[Update]++;
            break;
    }
}

void Soak_Host::Change_Event() {
    kind[Host_Change]++;
    switch (Below(9)) {
        case 0:
            Variable_Set("$TAG_CUR", Below(LABEL_NB));
            Deliver(UPDATE_TAG_CUR);
            break;
        case 1:
            Variable_Set("$MARKER_CUR", Below(LABEL_NB));
            Deliver(UPDATE_TAG_CUR);
            break;
        case 2:
            scene.Tag_Color(Below(LABEL_NB), Below(256), Below(256), Below(256));
            Deliver(UPDATE_TAG_TABLE);
            break;
        case 3:
            Brush_Host::Sizes({1 + Below(20), 1 + Below(20), 1 + Below(20), 1 + Below(20)});
            Variable_Set("$BRUSH_CUR", Below(4));
            Deliver(UPDATE_BRUSH);
            break;
        case 4:
            Window_Frame_Set(&scene.window, &scene.objects[static_cast<std::size_t>(Below(FRAME_NB))]->object);
            Deliver(UPDATE_FRAME_CUR | UPDATE_LEVEL_2D);
            break;
        case 5:
            scene.objects[static_cast<std::size_t>(Below(FRAME_NB))]->Select(One_In(2));
            Deliver(UPDATE_SELECTION | UPDATE_LEVEL_2D);
            break;
        case 6:
            scene.Mouse_Over(*scene.objects[static_cast<std::size_t>(Below(FRAME_NB))], Below(420));
            Deliver(UPDATE_MOUSE_FRAME);
            break;
        case 7:
            Variable_Set("$GLI_COLOR_COMPONENT", Below(5));
            Deliver(UPDATE_COLOR_COMPONENT);
            break;
        default:
            if (One_In(20)) {
                Data_Make();  // the editor takes the class tree apart; the host loads it again
                Deliver(UPDATE_STRUCTURE | UPDATE_WINDOW_CUR | UPDATE_LEVEL_2D);
            }
            break;
    }
}

void Soak_Host::Window_Event() {
    kind[Enlarged]++;
    const HWND window = Enlarged_Window();
    if (window == nullptr) {
        windows[4]->Point_At(270, 75);
        histo.Click(LEFT_PRESS);
        return;
    }
    RECT client = {};
    ::GetClientRect(window, &client);
    const int column = Below(client.right + 1);
    const int row = Below(client.bottom + 1);
    const LPARAM place = MAKELPARAM(column, row);
    wanted_item = Below(3);
    switch (Below(14)) {
        case 0:
        case 1:
            held_buttons = 1;
            ::SendMessageA(window, WM_LBUTTONDOWN, MK_LBUTTON, place);
            break;
        case 2:
        case 3:
            held_buttons = 0;
            ::SendMessageA(window, WM_LBUTTONUP, 0, place);
            break;
        case 4:
        case 5:
        case 6:
        case 7:
            ::SendMessageA(window, WM_MOUSEMOVE, held_buttons != 0 ? MK_LBUTTON : 0, place);
            break;
        case 8: {
            POINT point = {column, row};
            ::ClientToScreen(window, &point);
            const int delta = (Below(5) - 2) * 60;
            ::SendMessageA(window, WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(delta)),
                           MAKELPARAM(point.x, point.y));
            break;
        }
        case 9:
            ::SendMessageA(window, One_In(2) ? DATA : CURSOR, 0, 0);
            break;
        case 10:
            ::InvalidateRect(window, nullptr, TRUE);
            ::UpdateWindow(window);
            break;
        case 11:
            ::SendMessageA(window, WM_MOUSELEAVE, 0, 0);
            break;
        case 12:
            if (One_In(10)) {
                ::SetWindowPos(window, nullptr, 0, 0, 200 + Below(600), 120 + Below(400), SWP_NOMOVE | SWP_NOZORDER);
            }
            break;
        default:
            if (One_In(50)) {
                held_buttons = 0;
                ::SendMessageA(window, WM_CLOSE, 0, 0);
            } else {
                ::SendMessageA(window, WM_KEYDOWN, VK_HOME, 1);
            }
            break;
    }
}

void Soak_Host::Analysis_Event() {
    kind[Analysis]++;
    switch (Below(4)) {
        case 0:
            histo.Fit_Derivative(static_cast<unsigned char>(Below(8)));
            break;
        case 1:
            histo.Fit_Gaussian();
            break;
        case 2:
            histo.Set(2, Below(LABEL_NB), 10.0, 100.0, Below(LABEL_NB), 150.0, 300.0);
            break;
        default:
            histo.Write(EXPORT_NAME);
            break;
    }
}

void Soak_Host::Rename_Event() {
    kind[Rename]++;
    editor.horizontal.value = 0.0F;
    editor.vertical.value = 0.0F;
    editor.Draw();
    windows[EDITOR]->Point_At(editor.list_box.x + 60, editor.list_box.y + editor.list_box.height - 30);
    dialog_ticks = 0;
    const UINT_PTR timer = ::SetTimer(nullptr, 0, USER_TIMER_MINIMUM, Dialog_User);
    editor.Click(RIGHT_PRESS);
    ::KillTimer(nullptr, timer);
}

void Soak_Host::Copies_Event() {
    kind[Copy]++;
    Every_Panel([](int, auto& panel) {
        auto copy(panel);
        panel = copy;
    });
}

void Soak_Host::Event() {
    constexpr int keys[] = {'a',     '7',      KEY_ENTER, KEY_ESCAPE, KEY_BACKSPACE, KEY_HOME,
                            KEY_END, KEY_LEFT, 0xFFFF,    KEY_TAB,    KEY_DELETE};
    if (One_In(5000)) {
        Rename_Event();
    } else if (One_In(500)) {
        Analysis_Event();
    } else if (One_In(1000)) {
        Copies_Event();
    } else if (One_In(12)) {
        Change_Event();
    } else if (One_In(12)) {
        Window_Event();
    } else {
        const int wanted = Below(PANEL_NB);
        const int key = keys[Below(static_cast<int>(std::size(keys)))];
        Every_Panel([&](int number, auto& panel) {
            if (number == wanted) {
                Panel_Event(number, panel, key);
            }
        });
    }
    if (One_In(50)) {
        Pump();
    }
}
