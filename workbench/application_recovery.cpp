// What keeps work that is not saved gets of the application.
#include <windows.h>

#include "workbench/application.h"
#include "workbench/crash_report.h"

namespace workbench {

namespace {

constexpr UINT_PTR RECOVERY_TIMER = 41;

}  // namespace

Recovery_Host Application::Recovery_Services() {
    Recovery_Host host;
    host.now_ms = [] { return std::uint64_t{::GetTickCount64()}; };
    host.look_after = [this](int ms) {
        // A procedure of its own: it is called in every message loop, also those of dialogs and menus.
        ::SetTimer(window.Handle(), RECOVERY_TIMER, static_cast<UINT>(ms), [](HWND, UINT, UINT_PTR, DWORD) {
            if (Application* const application = The()) {
                application->recovery.Look();
            }
        });
    };
    host.open = [this](std::span<const std::filesystem::path> paths) { Open_Paths(paths); };
    host.go = [this](int volume) { Volume_Go(volume); };
    host.take = [this](const Label_Description& description) { Labels_Adopt(description); };
    host.note = [](const std::string& text) { Activity_Note(text); };
    return host;
}

}  // namespace workbench
