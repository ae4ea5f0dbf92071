// Fields with text are called by what stands before them.
#include <gtest/gtest.h>

#include <string>

#include "tests/support/own_window.h"
#include "tests/workbench/heard_window.h"
#include "workbench/list_window.h"
#include "workbench/prompt_dialog.h"
#include "workbench/text_dialog.h"

using namespace workbench;

namespace {

/** What was heard of the field of a dialog, which is then given up. */
struct Dialog_Listener {
    static constexpr UINT INTERVAL = 20;  // milliseconds
    static inline std::wstring title, name, value;

    explicit Dialog_Listener(const wchar_t* of_title) {
        title = of_title;
        name.clear();
        value.clear();
        timer = ::SetTimer(nullptr, 0, INTERVAL, [](HWND, UINT, UINT_PTR, DWORD) {
            const HWND dialog = Own_Window(L"#32770", title);
            const HWND field = dialog != nullptr ? ::FindWindowExW(dialog, nullptr, L"Edit", nullptr) : nullptr;
            if (field != nullptr) {
                {
                    const Heard_Window heard(field);
                    name = heard.Name(CHILDID_SELF);
                    value = heard.Value(CHILDID_SELF);
                }
                ::SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            }
        });
    }
    ~Dialog_Listener() { ::KillTimer(nullptr, timer); }
    Dialog_Listener(const Dialog_Listener&) = delete;
    Dialog_Listener& operator=(const Dialog_Listener&) = delete;
    UINT_PTR timer;
};

TEST(Field_Names, a_question_names_its_field) {
    const Dialog_Listener listener(L"Title of the prompt");
    Prompt(nullptr, L"Title of the prompt", L"Largest number:", L"12");
    EXPECT_EQ(Dialog_Listener::name, L"Largest number:");
    EXPECT_EQ(Dialog_Listener::value, L"12");
}

TEST(Field_Names, a_text_to_read_is_named_by_its_title) {
    const Look look;
    const Dialog_Listener listener(L"Title of the text");
    Text_Show(nullptr, L"Title of the text", L"one\ntwo", look.Font());
    EXPECT_EQ(Dialog_Listener::name, L"Title of the text");
    EXPECT_EQ(Dialog_Listener::value, L"one\r\ntwo");
}

TEST(List_Window, it_comes_back_where_it_was) {
    const Look look;
    List_Window window(look);
    window.Place_Set({}, 0);
    window.Open(nullptr, L"Files not opened", L"a.dcm\n");
    EXPECT_GT(window.Place_Now().width, 0);
    ::SetWindowPos(window.Handle(), nullptr, 40, 50, 410, 320, SWP_NOZORDER);
    ::SendMessageW(window.Handle(), WM_CLOSE, 0, 0);
    ASSERT_EQ(window.Handle(), nullptr);
    window.Open(nullptr, L"Files not opened", L"a.dcm\n");
    RECT box = {};
    ::GetWindowRect(window.Handle(), &box);
    EXPECT_EQ(box.left, 40);
    EXPECT_EQ(box.top, 50);
    EXPECT_EQ(box.right - box.left, 410);
    EXPECT_EQ(box.bottom - box.top, 320);
    // Kept from another start, on a screen that is no longer there.
    List_Window other(look);
    other.Place_Set({90000, 50, 410, 320, false}, 0);
    other.Open(nullptr, L"What was read", L"b.dcm\n");
    ::GetWindowRect(other.Handle(), &box);
    EXPECT_LT(box.right, 40000);
}

TEST(Field_Names, a_list_is_named_by_its_windows_title_also_when_that_changes) {
    const Look look;
    List_Window window(look);
    const auto heard_name = [&] {
        const HWND field = ::FindWindowExW(window.Handle(), nullptr, L"Edit", nullptr);
        return Heard_Window(field).Name(CHILDID_SELF);
    };
    window.Open(nullptr, L"Files not opened", L"a.dcm\n");
    EXPECT_EQ(heard_name(), L"Files not opened");
    window.Open(nullptr, L"Other files", L"b.dcm\n");
    EXPECT_EQ(heard_name(), L"Other files");
}

}  // namespace
