// Keeps Wine's services and its desktop alive between test programs. They stay for as long as one program with a
// window runs; without one, every test pays seconds to start them and its output stays open in their hands.
#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

namespace {
constexpr UINT LIFE_MS = 20U * 60U * 1000U;  // then it ends by itself: nothing is left running for ever
constexpr DWORD SETTLE_MS = 3000;            // the desktop and its services come up within this time
}  // namespace

// The argument names a file to create once the services stand.
int main(int argc, char** argv) {
    HWND window = ::CreateWindowExA(0, "STATIC", "hold", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
    if (window == nullptr || ::SetTimer(window, 1, LIFE_MS, nullptr) == 0) {
        return 1;
    }
    ::Sleep(SETTLE_MS);
    if (argc > 1) {
        HANDLE file = ::CreateFileA(argv[1], GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, FILE_ATTRIBUTE_NORMAL, nullptr);
        if (file != INVALID_HANDLE_VALUE) {
            ::CloseHandle(file);
        }
    }
    MSG message;
    while (::GetMessageA(&message, nullptr, 0, 0) > 0) {
        if (message.message == WM_TIMER && message.hwnd == window) {
            break;
        }
        ::DispatchMessageA(&message);
    }
    return 0;
}
