#include "tests/support/panel_fixture.h"

#include <algorithm>
#include <ostream>
#include <utility>

std::ostream& operator<<(std::ostream& out, const Panel_Message& message) {
    return out << message.level << " \"" << message.text << '"';
}

// ------------------------------------------------------------------------------------------------------------ messages

std::vector<Panel_Message> Message_Recorder::Take() {
    return std::exchange(messages, {});
}

std::vector<Panel_Message> Message_Recorder::Take_Reports() {
    constexpr int first_trace = 10;
    std::vector<Panel_Message> reports = Take();
    std::erase_if(reports, [](const Panel_Message& message) { return message.level >= first_trace; });
    return reports;
}

void Message_Recorder::Receive(void* context, HWND /*window*/, int level, const char* text) {
    auto* self = static_cast<Message_Recorder*>(context);
    if (self->listening) {
        self->messages.push_back({level, text});
    }
}

// ------------------------------------------------------------------------------------------------------------ requests

Request_Recorder::Request_Recorder() {
    Request_Listener listener;
    listener.context = this;
    listener.update = [](void* context, unsigned long long flags, void* a, void* b) {
        static_cast<Request_Recorder*>(context)->Receive({Panel_Request::Kind::Update, flags, a, b, nullptr});
    };
    listener.redraw = [](void* context, unsigned long long flags, void* a, void* b) {
        static_cast<Request_Recorder*>(context)->Receive({Panel_Request::Kind::Redraw, flags, a, b, nullptr});
    };
    listener.change_child = [](void* context, Quorel_Window* at, Quorel_2D* to, Quorel_2D* from) {
        static_cast<Request_Recorder*>(context)->Receive({Panel_Request::Kind::Change_Child, 0, at, to, from});
    };
    Request_Listener_Set(listener);
}

Request_Recorder::~Request_Recorder() {
    Request_Listener_Set({});
}

void Request_Recorder::Answer_At_Once(std::function<void(unsigned long long)> update) {
    answer = std::move(update);
    queued = false;
}

void Request_Recorder::Answer_Queued(std::function<void(unsigned long long)> update) {
    answer = std::move(update);
    queued = true;
}

void Request_Recorder::Deliver() {
    for (const unsigned long long flags : std::exchange(queue, {})) {
        if (answer) {
            answer(flags);
        }
    }
}

std::vector<Panel_Request> Request_Recorder::Take() {
    return std::exchange(requests, {});
}

std::vector<unsigned long long> Request_Recorder::Take_Updates() {
    std::vector<unsigned long long> flags;
    for (const Panel_Request& request : Take()) {
        if (request.kind == Panel_Request::Kind::Update) {
            flags.push_back(request.flags);
        }
    }
    return flags;
}

void Request_Recorder::Receive(const Panel_Request& request) {
    requests.push_back(request);
    if (request.kind == Panel_Request::Kind::Change_Child && on_change_child) {
        on_change_child(request);
    }
    if (request.kind != Panel_Request::Kind::Update || !answer) {
        return;
    }
    if (queued) {
        queue.push_back(request.flags);
    } else if (!answering) {
        answering = true;
        answer(request.flags);
        answering = false;
    }
}

// -------------------------------------------------------------------------------------------------------------- window

Panel_Window::Panel_Window(Window_Axis of_axis, int of_width, int of_height)
    : window(Stage_Window_Make(of_width, of_height)), axis(of_axis), width(of_width), height(of_height) {
    Window_Axis_Set(window, axis);
    Wipe();
}

Panel_Window::~Panel_Window() {
    Window_Forget(window);
    Stage_Window_End(window);
}

void Panel_Window::Point_At(int x, int y) const {
    int row = Row(y);
    Stage_Window_To_Screen(window, &x, &row);
    YCursor_X = x;
    YCursor_Y = row;
}

// ------------------------------------------------------------------------------------------------------------- fixture

Panel_Fixture::Panel_Fixture(Window_Axis axis, int width, int height) : window(axis, width, height) {
    Widget_Counters_Reset();
}

Panel_Fixture::~Panel_Fixture() {
    for (const std::string& name : defined) {
        Variable_Undefine(name.c_str());
    }
}

Boxs Panel_Fixture::Host_Box(int x, int y, int box_width, int box_height) const {
    Boxs box;
    box.style = STYLE_FRAMED_BOX;
    box.x = static_cast<short>(x);
    box.y = static_cast<short>(y);
    box.width = static_cast<short>(box_width);
    box.height = static_cast<short>(box_height);
    box.Set_Color(90, 100, 110);
    box.window = window.Get();
    return box;
}

void Panel_Fixture::Scalar(const char* name, Variable_Type type, double value) {
    defined.emplace_back(name);
    Variable_Define_Scalar(name, type, value);
}

void Panel_Fixture::Define_Dimensions() {
    const std::pair<const char*, int> dimensions[] = {
        {"$INTERFACE_SPACE_DIM", SPACE_DIM},           {"$INTERFACE_BORDER_DIM", BORDER_DIM},
        {"$INTERFACE_CURSOR_DIM", CURSOR_DIM},         {"$INTERFACE_BUTTON_DIM_SML", BUTTON_DIM_SML},
        {"$INTERFACE_BUTTON_DIM_BIG", BUTTON_DIM_BIG}, {"$INTERFACE_LIST_DIM_SML", LIST_DIM_SML},
        {"$INTERFACE_LIST_DIM_ARROW", LIST_DIM_ARROW}, {"$INTERFACE_TITLE_DIM_SML", TITLE_DIM_SML},
        {"$INTERFACE_VAL_DIM_SML", VAL_DIM_SML}};
    for (const auto& [name, pixels] : dimensions) {
        Scalar(name, VARIABLE_SIGNED_16, pixels);
    }
}

Widget_Counters Panel_Fixture::Take_Counters() const {
    const Widget_Counters counters = Widget_Counters_Get();
    Widget_Counters_Reset();
    return counters;
}
