// The system's dialog for a file name, answered by a second thread as a user would.
#include <gtest/gtest.h>
#include <windows.h>

#include <atomic>
#include <cstdio>
#include <cstring>
#include <string>
#include <thread>
#include <vector>

#include "kits/dataset/dataset_host.h"
#include "tests/support/own_window.h"

namespace {

constexpr int NAME_BOX = 0x47C;
constexpr DWORD STEP_MS = 50;
constexpr int STEPS_MAX = 300;

/** The open dialog of that title; null when none comes in time. */
HWND Wait_For_Dialog(const char* title) {
    for (int i = 0; i < STEPS_MAX; ++i) {
        ::Sleep(STEP_MS);
        const HWND dialog = Own_Window(L"#32770", std::wstring(title, title + std::strlen(title)));
        if (dialog != nullptr && ::IsWindowVisible(dialog) != FALSE) {
            ::Sleep(500);
            return dialog;
        }
    }
    return nullptr;
}

std::string Initial_Name(HWND dialog) {
    char text[MAX_PATH] = "";
    ::SendMessageA(::GetDlgItem(dialog, NAME_BOX), WM_GETTEXT, sizeof(text), reinterpret_cast<LPARAM>(text));
    return text;
}

struct Answer {
    int result;
    std::string path;
    std::string initial_name;
};

/** Opens the dialog and presses a button after typing a name (null: leaves the name alone). */
Answer Ask(const char* title, const char* initial_name, const char* typed, int button) {
    Answer answer;
    std::thread user([&] {
        const HWND dialog = Wait_For_Dialog(title);
        EXPECT_NE(dialog, nullptr);
        if (dialog == nullptr) {
            return;
        }
        answer.initial_name = Initial_Name(dialog);
        if (typed != nullptr) {
            ::SendMessageA(::GetDlgItem(dialog, NAME_BOX), WM_SETTEXT, 0, reinterpret_cast<LPARAM>(typed));
        }
        ::PostMessageA(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
    });
    std::vector<char> buffer(FILE_NAME_SIZE, '#');
    answer.result =
        Fct_Save_FileName(title, "DB Files\0*.csv\0All Files\0*.*\0", initial_name, "csv", buffer.data(), 0);
    user.join();
    answer.path = buffer.data();
    return answer;
}

std::string Folder() {
    char folder[MAX_PATH] = "";
    ::GetTempPathA(MAX_PATH, folder);
    return folder;
}

}  // namespace

TEST(Save_File_Dialog, gives_the_typed_path_with_the_default_extension) {
    const std::string typed = Folder() + "kit_typed";
    const Answer answer = Ask("Typed name", "histogram", typed.c_str(), IDOK);
    EXPECT_NE(answer.result, 0);
    EXPECT_EQ(answer.path, typed + ".csv");
    EXPECT_NE(answer.initial_name.find("histogram"), std::string::npos);
}

TEST(Save_File_Dialog, cancelled_gives_zero) {
    const Answer answer = Ask("Cancelled", "histogram", nullptr, IDCANCEL);
    EXPECT_EQ(answer.result, 0);
    EXPECT_EQ(answer.path, "");
}

TEST(Save_File_Dialog, opens_although_the_initial_name_is_impossible) {
    const Answer answer = Ask("Impossible name", "C:\\a<b>|c?*\"\\", nullptr, IDCANCEL);
    EXPECT_EQ(answer.result, 0);
}

TEST(Save_File_Dialog, keeps_the_current_folder) {
    char before[MAX_PATH] = "";
    char after[MAX_PATH] = "";
    ::GetCurrentDirectoryA(MAX_PATH, before);
    const std::string typed = Folder() + "kit_folder.csv";
    EXPECT_NE(Ask("Folder", "", typed.c_str(), IDOK).result, 0);
    ::GetCurrentDirectoryA(MAX_PATH, after);
    EXPECT_STREQ(before, after);
}

TEST(Save_File_Dialog, asks_before_it_overwrites) {
    const std::string existing = Folder() + "kit_existing.csv";
    std::FILE* file = std::fopen(existing.c_str(), "w");
    ASSERT_NE(file, nullptr);
    std::fclose(file);
    std::atomic<bool> over = false;
    std::atomic<bool> asked = false;
    std::thread second_user([&] {
        // The question is the second dialog; it is answered with no, then the first one is cancelled.
        const HWND dialog = Wait_For_Dialog("Existing");
        while (!over && !asked) {
            ::Sleep(STEP_MS);
            const HWND question = ::GetLastActivePopup(dialog);
            if (question != nullptr && question != dialog && ::GetDlgItem(question, IDNO) != nullptr) {
                asked = true;
                ::PostMessageA(question, WM_COMMAND, IDNO, 0);
                ::Sleep(500);
                ::PostMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
            }
        }
    });
    const Answer answer = Ask("Existing", "", existing.c_str(), IDOK);
    over = true;
    second_user.join();
    EXPECT_TRUE(asked);
    EXPECT_EQ(answer.result, 0);
    std::remove(existing.c_str());
}
