#include "kits/dataset/requests.h"

#include "kits/common/contract.h"
#include "kits/dataset/dataset_host.h"

namespace {

Request_Listener listener;

bool Is_Window(const Quorel_Window* window) {
    return window != nullptr && window != All_Windows();
}

void** Window_Frame_Slot(const Quorel_Window* window) {
    int nb = 0;
    auto** frames = static_cast<void**>(Variable_Array("$FRAME_CUR", VARIABLE_POINTER, &nb));
    return frames != nullptr && window->Class_B_Get() < nb ? frames + window->Class_B_Get() : nullptr;
}

}  // namespace

const Request_Listener& Listener() {
    return listener;
}

void Request_Listener_Set(const Request_Listener& new_listener) {
    listener = new_listener;
}

// Each request works on a copy: the listener may be replaced while it is being called.

void Fct_Update(unsigned __int64 flags, void* a, void* b, Region_2D* /*region*/) {
    Contract_Check_Update(flags);
    const Request_Listener now = listener;
    if (now.update == nullptr) {
        return Contract_Report(CONTRACT_LISTENER, "Fct_Update");
    }
    now.update(now.context, flags, a, b);
}

void Fct_Redraw(unsigned __int64 flags, void* a, void* b, Region_2D* /*region*/) {
    const Request_Listener now = listener;
    if (now.redraw != nullptr) {
        now.redraw(now.context, flags, a, b);
    }
}

void Fct_Change_Child(Quorel_Window* window, Quorel_2D* new_frame, Quorel_2D* old_frame) {
    if (!Is_Window(window) || new_frame == nullptr || reinterpret_cast<std::uintptr_t>(new_frame) == ALL_OBJECTS) {
        return;
    }
    Window_Frame_Set(window, new_frame);
    const Request_Listener now = listener;
    if (now.change_child != nullptr) {
        now.change_child(now.context, window, new_frame, old_frame);
    }
}

Quorel_2D* Window_Frame(const Quorel_Window* window) {
    void** slot = Is_Window(window) ? Window_Frame_Slot(window) : nullptr;
    return slot != nullptr ? static_cast<Quorel_2D*>(*slot) : nullptr;
}

void Window_Frame_Set(Quorel_Window* window, Quorel_2D* frame) {
    if (!Is_Window(window)) {
        return;
    }
    void** slot = Window_Frame_Slot(window);
    if (slot == nullptr && window->Class_B_Get() < WINDOW_NUMBER_MAX &&
        Variable_Define_Array("$FRAME_CUR", VARIABLE_POINTER, WINDOW_NUMBER_MAX) != nullptr) {
        slot = Window_Frame_Slot(window);
    }
    if (slot == nullptr) {
        return;
    }
    *slot = frame;
    window->volume = frame != nullptr ? frame->Parent_Get_Pt() : nullptr;
}
