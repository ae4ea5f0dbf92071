// Without a window system: panels live in windows of the host's, and what waits is told at the next call.
#include "c_interface/panel.h"

namespace c_interface {

HWND Child_Window_Make(HWND /*parent*/, int /*x*/, int /*y*/, int /*width*/, int /*height*/, kit_handle /*handle*/) {
    return nullptr;
}

void Child_Window_End(HWND /*window*/) {}

void Child_Window_Hide(HWND /*window*/) {}

void Child_Window_Move(HWND /*window*/, int /*x*/, int /*y*/, int /*width*/, int /*height*/) {}

bool Client_Size(HWND /*window*/, int* /*width*/, int* /*height*/) {
    return false;
}

void Settle_Later() {}

void Settle_Later_End() {}

int Window_Message(Panel& /*panel*/, std::uint32_t /*message*/, std::uint64_t /*wparam*/, std::int64_t /*lparam*/) {
    return -1;
}

}  // namespace c_interface
