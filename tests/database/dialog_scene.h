/** The rename dialog on the screen, driven by messages from a timer that its own message loop serves. Windows only. */
#pragma once

#include <windows.h>

#include <cstring>
#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "database/tool_db_dialog_rename.h"
#include "tests/support/own_window.h"
#include "tests/support/panel_fixture.h"

class Dialog_Scene : public Panel_Fixture {
  public:
    using Steps = std::vector<std::function<void(HWND)>>;

    struct Size_Of_Client {
        int width;
        int height;
    };
    static Size_Of_Client Client(HWND dialog) {
        RECT client = {};
        ::GetClientRect(dialog, &client);
        return {client.right, client.bottom};
    }
    /** A point of the dialog's own axis (up) as a message has it. */
    static LPARAM Point(HWND dialog, int x, int y) { return MAKELPARAM(x, Client(dialog).height - 1 - y); }
    static int Half(HWND dialog) { return ((Client(dialog).width - 1 - 2 * SPACE_DIM) - SPACE_DIM) / 2; }
    static LPARAM On_Save(HWND dialog) {
        return Point(dialog, SPACE_DIM + Half(dialog) / 2, SPACE_DIM + BUTTON_DIM_BIG / 2);
    }
    static LPARAM On_Cancel(HWND dialog) {
        return Point(dialog, 2 * SPACE_DIM + Half(dialog) + SPACE + Half(dialog) / 2, SPACE_DIM + BUTTON_DIM_BIG / 2);
    }
    static LPARAM On_Entry(HWND dialog, int x) {
        return Point(dialog, SPACE_DIM + x, 2 * SPACE_DIM + BUTTON_DIM_BIG + BUTTON_DIM_BIG / 2);
    }
    static void Click(HWND dialog, LPARAM where) {
        ::SendMessageA(dialog, WM_LBUTTONDOWN, MK_LBUTTON, where);
        ::SendMessageA(dialog, WM_LBUTTONUP, 0, where);
    }
    static void Save(HWND dialog) { Click(dialog, On_Save(dialog)); }
    static void Show(HWND dialog) { ::UpdateWindow(dialog); }
    static void Type_Keys(HWND dialog, const char* keys) {
        for (; *keys != 0; ++keys) {
            ::SendMessageA(dialog, WM_KEYDOWN, static_cast<WPARAM>(::VkKeyScanA(*keys) & 0xFF), 1);
        }
    }

  protected:
    Dialog_Scene() : Panel_Fixture(Window_Axis::Up, 200, 100) {
        Define_Dimensions();
        Scalar("$INTERFACE_TITLE_FONT_SCALE", VARIABLE_SIGNED_16, 13);
        Scalar("$INTERFACE_TOOL_FONT_SCALE", VARIABLE_SIGNED_16, 12);
    }
    /** Runs the dialog; each step is one timer tick later than the one before. */
    int Run(Steps wanted) {
        steps = std::move(wanted);
        next_step = 0;
        const UINT_PTR timer = ::SetTimer(nullptr, 0, 15, On_Timer);
        const int result = Dialog_Rename(buffer);
        ::KillTimer(nullptr, timer);
        EXPECT_EQ(next_step, steps.size()) << "the dialog ended early";
        EXPECT_EQ(Dialog_Window(), nullptr);
        return result;
    }
    void Put(const std::string& text) { std::memcpy(buffer, text.c_str(), text.size() + 1); }

    char buffer[DIALOG_RENAME_SIZE + 8] = {};

  private:
    static HWND Dialog_Window() { return Own_Window({}, L"Class Rename"); }
    static void CALLBACK On_Timer(HWND, UINT, UINT_PTR, DWORD) {
        const HWND dialog = Dialog_Window();
        if (dialog == nullptr) {
            return;
        }
        if (next_step < steps.size()) {
            steps[next_step++](dialog);
        } else {
            ADD_FAILURE() << "the dialog stays open";
            ::EndDialog(dialog, 99);
        }
    }

    static inline Steps steps;
    static inline std::size_t next_step = 0;
};
