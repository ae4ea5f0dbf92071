#include "workbench/report_questions.h"

#include <utility>

#include "workbench/model/json_text.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr UINT LOOK_EVERY = 15;  // milliseconds

Report_Questions* the_questions = nullptr;  // the system gives its calls no context

}  // namespace

Report_Questions::~Report_Questions() {
    if (hook != nullptr) {
        ::UnhookWindowsHookEx(hook);
    }
    if (timer != 0) {
        ::KillTimer(nullptr, timer);
    }
    if (the_questions == this) {
        the_questions = nullptr;
    }
}

void Report_Questions::Begin(const std::string& file, std::function<void()> call) {
    question = Wide_Of_Utf8(file);
    answer = std::move(call);
    the_questions = this;
    hook = ::SetWindowsHookExW(WH_GETMESSAGE, &On_Message, nullptr, ::GetCurrentThreadId());
    timer = ::SetTimer(nullptr, 0, LOOK_EVERY, &On_Time);
}

void CALLBACK Report_Questions::On_Time(HWND, UINT, UINT_PTR, DWORD) {
    if (the_questions != nullptr && ::DeleteFileW(the_questions->question.c_str()) != 0) {
        the_questions->answer();
    }
}

LRESULT CALLBACK Report_Questions::On_Message(int code, WPARAM wparam, LPARAM lparam) {
    if (code == HC_ACTION && wparam == PM_REMOVE && the_questions != nullptr) {
        the_questions->Count(*reinterpret_cast<const MSG*>(lparam));
    }
    return ::CallNextHookEx(nullptr, code, wparam, lparam);
}

void Report_Questions::Count(const MSG& message) {
    switch (message.message) {
        case WM_KEYDOWN:
        case WM_SYSKEYDOWN:
            ++keys;
            break;
        case WM_LBUTTONUP:
        case WM_MBUTTONUP:
        case WM_RBUTTONUP:
        case WM_NCLBUTTONUP:
        case WM_NCMBUTTONUP:
        case WM_NCRBUTTONUP:
            ++buttons;
            break;
        case WM_MOUSEWHEEL:
            ++wheels;
            break;
        case WM_MOUSEMOVE:
        case WM_NCMOUSEMOVE:
            break;
        default:
            return;
    }
    pointer = message.pt;
}

void Report_Questions::Input_Write(Json_Text& out) const {
    out.Number("keys", keys);
    out.Number("buttons", buttons);
    out.Number("wheels", wheels);
    out.List_Begin("pointer");
    out.Number({}, pointer.x);
    out.Number({}, pointer.y);
    out.List_End();
}

}  // namespace workbench
