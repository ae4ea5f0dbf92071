// The example with all panels, started as a program of its own, clicked like a user clicks, and asked by its title.
#include <gtest/gtest.h>
#include <windows.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

namespace {

constexpr DWORD START_MOST = 120000;  // milliseconds on a busy machine
constexpr DWORD PAUSE = 50;

struct Child {
    HWND window;
    RECT place;
};

class Full_Host : public testing::Test {
  protected:
    Full_Host() {
        STARTUPINFOA start = {};
        start.cb = sizeof start;
        std::string command = "full_host.exe --check";
        is_started = ::CreateProcessA(nullptr, command.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr, &start,
                                      &process) != FALSE;
        for (DWORD waited = 0; is_started && waited < START_MOST && main_window == nullptr; waited += PAUSE) {
            ::Sleep(PAUSE);
            ::EnumThreadWindows(process.dwThreadId, Take_Main, reinterpret_cast<LPARAM>(&main_window));
        }
    }
    ~Full_Host() override {
        if (is_started) {
            ::TerminateProcess(process.hProcess, 1);  // no more than a name for an ended one
            ::CloseHandle(process.hThread);
            ::CloseHandle(process.hProcess);
        }
    }
    static BOOL CALLBACK Take_Main(HWND window, LPARAM taken) {
        char name[32] = {};
        ::GetClassNameA(window, name, sizeof name);
        if (std::strcmp(name, "Full_Host") == 0 && ::IsWindowVisible(window) != FALSE) {
            *reinterpret_cast<HWND*>(taken) = window;
        }
        return TRUE;
    }
    std::string Title() const {
        std::string text(400, '\0');
        text.resize(static_cast<std::size_t>(::GetWindowTextA(main_window, text.data(), 400)));
        return text;
    }
    /** Waits: the host sends changes on after the message. */
    bool Says(const std::string& part) const {
        for (DWORD waited = 0; waited < START_MOST / 4; waited += PAUSE) {
            if (Title().find(part) != std::string::npos) {
                return true;
            }
            ::Sleep(PAUSE);
        }
        return false;
    }
    /** The windows of the panels: of each column from the top. */
    std::vector<Child> Panels() const {
        std::vector<Child> children;
        for (HWND child = ::GetWindow(main_window, GW_CHILD); child != nullptr;
             child = ::GetWindow(child, GW_HWNDNEXT)) {
            Child one = {child, {}};
            ::GetWindowRect(child, &one.place);
            children.push_back(one);
        }
        std::ranges::sort(children, [](const Child& a, const Child& b) {
            return a.place.left != b.place.left ? a.place.left < b.place.left : a.place.top < b.place.top;
        });
        return children;
    }
    /** A press and a release at a part of the window's width, so many pixels above its lower edge.
     *  Posted, as input is: the host sends changes on between two messages. */
    static void Click(const Child& child, double across, int above) {
        const auto x = static_cast<int>(across * (child.place.right - child.place.left));
        const int y = child.place.bottom - child.place.top - above;
        ::PostMessageA(child.window, WM_MOUSEMOVE, 0, MAKELPARAM(x, y));
        ::PostMessageA(child.window, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(x, y));
        ::PostMessageA(child.window, WM_LBUTTONUP, 0, MAKELPARAM(x, y));
    }
    PROCESS_INFORMATION process = {};
    bool is_started = false;
    HWND main_window = nullptr;
};

TEST_F(Full_Host, answers_clicks_in_every_panel_and_owes_its_panels_nothing) {
    ASSERT_NE(main_window, nullptr);
    const std::vector<Child> panels = Panels();
    ASSERT_EQ(panels.size(), 7U);
    const Child tag = panels[0];
    const Child brush = panels[1];
    const Child propagate = panels[2];
    const Child marker = panels[3];
    const Child histogram = panels[4];
    const Child classes = panels[5];
    const Child files = panels[6];
    EXPECT_TRUE(Says("TAG 0, marker 0, brush 0, frame 1, 20 selected, no fit")) << Title();

    const auto in_row = [](const Child& child, int row) {  // of two rows of buttons, the lower one is 0
        const int height = child.place.bottom - child.place.top;
        return height / 4 + row * height / 2;
    };
    Click(tag, 0.1, in_row(tag, 1));
    EXPECT_TRUE(Says("TAG 4,")) << Title();
    Click(marker, 0.8, in_row(marker, 0));
    EXPECT_TRUE(Says("marker 3,")) << Title();
    Click(brush, 0.9, (brush.place.bottom - brush.place.top) / 2);
    EXPECT_TRUE(Says("brush 3,")) << Title();
    Click(propagate, 0.87, 17);  // "Up"
    EXPECT_TRUE(Says("frame 2,")) << Title();
    Click(propagate, 0.87, 17);
    EXPECT_TRUE(Says("frame 3,")) << Title();

    ::PostMessageA(histogram.window, WM_CHAR, 'f', 0);
    EXPECT_TRUE(Says("2 peaks at ")) << Title();

    Click(classes, 0.75, 16);  // "Select None"
    EXPECT_TRUE(Says(" 0 selected")) << Title();
    Click(files, 0.25, 16);  // "Select All"
    EXPECT_TRUE(Says("20 selected")) << Title();

    ::PostMessageA(main_window, WM_CLOSE, 0, 0);
    ASSERT_EQ(::WaitForSingleObject(process.hProcess, START_MOST), WAIT_OBJECT_0);
    DWORD mistakes = 99;
    ::GetExitCodeProcess(process.hProcess, &mistakes);
    EXPECT_EQ(mistakes, 0U) << "the contract checks found nothing";
}

}  // namespace
