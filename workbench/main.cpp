// Start of the program: command line, window, message loop.
#include <windows.h>

#include <shellapi.h>

#include <memory>
#include <string>
#include <vector>

#include "workbench/application.h"
#include "workbench/crash_report.h"
#include "workbench/process_limits.h"
#include "workbench/wide_text.h"

using namespace workbench;

namespace {

constexpr int STATUS_WRONG_USE = 2;
constexpr int STATUS_FAILURE = 1;

std::vector<std::string> Arguments() {
    int count = 0;
    wchar_t** values = ::CommandLineToArgvW(::GetCommandLineW(), &count);
    std::vector<std::string> arguments;
    for (int at = 1; values != nullptr && at < count; ++at) {
        arguments.push_back(Utf8_Of_Wide(values[at]));
    }
    ::LocalFree(static_cast<HLOCAL>(values));
    return arguments;
}

/** Says something without a window of the application: to the caller's console, or in a box where there is none. */
void Say(const std::string& text, DWORD stream, UINT icon) {
    HANDLE out = ::GetStdHandle(stream);
    if ((out == nullptr || out == INVALID_HANDLE_VALUE) && ::AttachConsole(ATTACH_PARENT_PROCESS) != 0) {
        out = ::CreateFileW(L"CONOUT$", GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    }
    DWORD written = 0;
    if (out == nullptr || out == INVALID_HANDLE_VALUE ||
        ::WriteFile(out, text.data(), static_cast<DWORD>(text.size()), &written, nullptr) == 0) {
        ::MessageBoxW(nullptr, Wide_Of_Utf8(text).c_str(), L"Workbench", MB_OK | icon);
    }
}

int Run(int show) {
    const Command_Line line = Command_Line_Parse(Arguments());
    if (!line.error.empty()) {
        Say("workbench: " + line.error + "\n", STD_ERROR_HANDLE, MB_ICONERROR);
        return STATUS_WRONG_USE;
    }
    if (line.help) {
        Say(Command_Line_Help(), STD_OUTPUT_HANDLE, MB_ICONINFORMATION);
        return 0;
    }
    const auto application = std::make_unique<Application>(line);
    if (!application->Start(show)) {
        Say("workbench: the system refuses to make a window; is there a display?\n", STD_ERROR_HANDLE, MB_ICONERROR);
        return STATUS_FAILURE;
    }
    return application->Run();
}

}  // namespace

int WINAPI WinMain(HINSTANCE, HINSTANCE, LPSTR, int show) {
    Library_Search_Narrow();
    Process_Limits_Set();
    // Exceptions pass: where they are not handled, crash_report.cpp still sees the stack that threw them. As long as
    // the settings, and so the folder for reports, are not known, it says what happened.
    Crash_Report_Install({}, WORKBENCH_VERSION);
    return Run(show);
}
