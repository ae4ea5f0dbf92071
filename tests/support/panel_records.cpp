#include "tests/support/panel_records.h"

#include <algorithm>
#include <new>
#include <ostream>
#include <utility>

std::ostream& operator<<(std::ostream& out, const Panel_Message& message) {
    return out << message.level << " \"" << message.text << '"';
}

// ---------------- messages

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
    if (!self->listening) {
        return;
    }
    try {
        self->messages.push_back({level, text});
    } catch (const std::bad_alloc&) {  // a test makes allocations fail: the message is lost, not the panel
    }
}

// ---------------- requests

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
    try {
        requests.push_back(request);
    } catch (const std::bad_alloc&) {
    }
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
