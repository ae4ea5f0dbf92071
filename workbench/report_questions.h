/** How a program that drives the application asks for its state, and learns that what it typed and clicked has arrived.
 */
#pragma once

#include <windows.h>

#include <functional>
#include <string>

namespace workbench {

class Json_Text;

/** Answers a question when a file appears, and takes that file away. It does so within menus and modal questions, too,
 *  but only when nothing else is left to do: what came before the question has been done. One object at a time, on the
 *  thread that has the windows. */
class Report_Questions {
  public:
    Report_Questions() = default;
    ~Report_Questions();
    Report_Questions(const Report_Questions&) = delete;
    Report_Questions& operator=(const Report_Questions&) = delete;
    /** @param file UTF-8; @param call may be made within any modal loop of this thread */
    void Begin(const std::string& file, std::function<void()> call);
    /** The members "keys", "buttons" and "wheels": how often keys went down, buttons went up and the wheel turned since
     *  Begin, and "pointer": where it was last heard of, screen pixels. */
    void Input_Write(Json_Text& out) const;

  private:
    static void CALLBACK On_Time(HWND window, UINT message, UINT_PTR id, DWORD time);
    static LRESULT CALLBACK On_Message(int code, WPARAM wparam, LPARAM lparam);
    void Count(const MSG& message);

    std::wstring question;
    std::function<void()> answer;
    UINT_PTR timer = 0;
    HHOOK hook = nullptr;
    long long keys = 0;
    long long buttons = 0;
    long long wheels = 0;
    POINT pointer = {-1, -1};
};

}  // namespace workbench
