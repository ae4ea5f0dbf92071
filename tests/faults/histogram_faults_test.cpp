// The histogram panel and its enlarged window with calls that can fail failing one by one.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdio>
#include <cstring>
#include <optional>

#include "tests/faults/fault_run.h"
#include "tests/histogram/histo_stage.h"
#include "tests/support/own_window.h"

namespace {

constexpr int PRESS = MOUSE_PRESS | MOUSE_LEFT;
constexpr int DRAG = MOUSE_DRAG | MOUSE_LEFT;
constexpr const char* FILE_NAME = "histogram_faults_test.csv";
constexpr int BINS = 600;
constexpr int SAMPLE = 300;
constexpr UINT DATA = 0x400;
constexpr UINT CURSOR = 0x401;
constexpr int CLIENT_WIDTH = 500;
constexpr int CLIENT_HEIGHT = 260;

std::vector<std::uint32_t> Hills() {
    std::vector<std::uint32_t> counts;
    for (int bin = 0; bin < BINS; bin++) {
        const int a = 200 - std::abs(bin - 150);
        const int b = 150 - std::abs(bin - 420);
        counts.push_back(static_cast<std::uint32_t>(10 + (a > 0 ? a * a / 20 : 0) + (b > 0 ? b * b / 20 : 0)));
    }
    return counts;
}

class Histo_Faults : public testing::Test {
  protected:
    Histo_Faults() {
        Variable_Define_Scalar("$INTERFACE_SPACE_DIM", VARIABLE_SIGNED_16, 4);
        Variable_Define_Scalar("$INTERFACE_BORDER_DIM", VARIABLE_SIGNED_16, 2);
        Variable_Define_Scalar("$INTERFACE_BUTTON_DIM_BIG", VARIABLE_SIGNED_16, 30);
        Variable_Define_Text("$DEFAULT_FILE_PATH", "");
        Variable_Define_Text("$FILE_EXTENSION_EXCEL", "*.csv");
        Variable_Define_Text("$FILE_EXTENSION_ALL", "*.*");
        Input_Source input;
        input.button = [](int) { return 0; };
        Input_Source_Set(input);
        Request_Listener listener;
        listener.context = this;
        listener.save_file_name = [](void*, const char*, const char*, const char*, const char*, char* buffer) {
            std::strcpy(buffer, FILE_NAME);
            return 1;
        };
        Request_Listener_Set(listener);
        scene.Tags(3);
        scene.Tag_Color(1, 255, 0, 0);
        scene.Tag_Color(2, 0, 0, 255);
        color = &scene.Add_Color({}, Hills());
        scene.Add_Grey({}, Hills());
    }
    ~Histo_Faults() override {
        panel.reset();
        Input_Source_Set({});
        Request_Listener_Set({});
        std::remove(FILE_NAME);
    }

    void Home() {
        scene.Mouse_Away();
        Variable_Set("$GLI_COLOR_COMPONENT", 0);
        stage.Point_Row(0, 0);
    }
    void Show() {
        stage.Lay_Out(*panel);
        panel->Set(2, 1, 10.0, 200.0, 2, 350.0, 500.0);
        panel->Update(UPDATE_SELECTION | UPDATE_LEVEL_2D | UPDATE_COLOR_COMPONENT);
        stage.Wipe();
        panel->Draw();
        stage.Take_Messages();
    }
    Fault_Subject Subject() {
        Fault_Subject subject;
        subject.build = [this] {
            Home();
            panel.emplace();
            Show();
        };
        subject.settle = [this] {
            Close();
            Home();
            if (!panel) {
                panel.emplace();
            }
            panel->Leave();
            Show();
        };
        subject.picture = [this] { return Window_Picture{stage.width, stage.height, stage.Read()}; };
        subject.end = [this] {
            Close();
            panel.reset();
        };
        return subject;
    }

    // The enlarged window.
    static HWND Window() { return Own_Window(L"Histogram"); }
    void Open() {
        stage.Point_Row(262, 70);
        panel->Click(PRESS);
    }
    /** Open, of a known size, painted. */
    void Open_And_Settle() {
        Open();
        Size_Set();
        Settle();
    }
    static void Size_Set() {
        RECT outer = {0, 0, CLIENT_WIDTH, CLIENT_HEIGHT};
        ::AdjustWindowRectEx(&outer, WS_OVERLAPPEDWINDOW, FALSE, 0x10);
        ::SetWindowPos(Window(), nullptr, 0, 0, outer.right - outer.left, outer.bottom - outer.top,
                       SWP_NOMOVE | SWP_NOZORDER);
    }
    static void Settle() {
        MSG message;
        while (::PeekMessageA(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
            ::DispatchMessageA(&message);
        }
        if (Window() != nullptr) {
            ::UpdateWindow(Window());
        }
    }
    static void Close() {
        if (Window() != nullptr) {
            ::SendMessageA(Window(), WM_CLOSE, 0, 0);
        }
        Settle();
    }
    static LRESULT Send(UINT message, WPARAM wparam = 0, LPARAM lparam = 0) {
        return ::SendMessageA(Window(), message, wparam, lparam);
    }
    static void Paint() {
        ::InvalidateRect(Window(), nullptr, TRUE);
        ::UpdateWindow(Window());
    }
    static void Wheel(int delta, int column, int row) {
        POINT point = {column, row};
        ::ClientToScreen(Window(), &point);
        Send(WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(delta)), MAKELPARAM(point.x, point.y));
    }
    static void Turn_Selectors(int notches) {
        for (int column = 20; column < CLIENT_WIDTH; column += 60) {
            Wheel(notches * WHEEL_DELTA, column, 50);
        }
    }
    static void Click_At(int column, int row) {
        Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(column, row));
        if (Window() != nullptr) {
            Send(WM_LBUTTONUP, 0, MAKELPARAM(column, row));
        }
    }
    /** The window stays open from run to run: opening it takes long. */
    Fault_Subject Blow_Subject() {
        Fault_Subject subject;
        subject.build = [this] {
            Home();
            if (!panel) {
                panel.emplace();
                Show();
            }
            Home_Window();
        };
        subject.settle = [this] {
            Home();
            Show();
            Home_Window();
        };
        subject.picture = [] {
            return Window_Picture{CLIENT_WIDTH, CLIENT_HEIGHT,
                                  Panel_Window_Read(Window(), CLIENT_WIDTH, CLIENT_HEIGHT)};
        };
        subject.end = [] {};
        return subject;
    }
    /** The open window of a known size with fresh peaks, nothing zoomed, every selector at its first choice. */
    void Home_Window() {
        if (Window() == nullptr) {
            Open();
        }
        panel->Fit_Derivative(4);
        Size_Set();
        Send(WM_MOUSELEAVE);
        Turn_Selectors(4);
        Click_At(60, 15);
        Send(WM_MOUSELEAVE);
        Settle();
        Paint();
    }

    Histo_Scene scene;
    Scene_Object* color = nullptr;
    Histo_Stage stage{Window_Axis::Down};
    std::optional<Tool_Histo> panel;
};

}  // namespace

TEST_F(Histo_Faults, every_operation_survives_a_sample_of_failures_because_all_take_minutes) {
    const auto over_valuator = [this](int row) { stage.Point_Row(244, row); };
    Faults_Run("Tool_Histo", Subject(),
               {
                   {"construction", [this] { panel.emplace(); }, true},
                   {"copy and assignment",
                    [this] {
                        const Tool_Histo copy(*panel);
                        *panel = copy;
                    }},
                   {"Resize", [this] { stage.Lay_Out(*panel); }},
                   {"Height", [this] { panel->Height(100); }},
                   {"Draw", [this] { panel->Draw(); }},
                   {"Set", [this] { panel->Set(1, 1, 20.0, 100.0); }},
                   {"Click on the valuator",
                    [=, this] {
                        over_valuator(70);
                        panel->Click(PRESS);
                    }},
                   {"drag of the valuator",
                    [=, this] {
                        over_valuator(90);
                        panel->Motion(DRAG);
                        panel->Motion(0);
                    },
                    false,
                    [=, this] {
                        over_valuator(70);
                        panel->Click(PRESS);
                    }},
                   {"Motion",
                    [this] {
                        stage.Point_Row(262, 70);
                        panel->Motion(0);
                    }},
                   {"Scroll",
                    [=, this] {
                        over_valuator(70);
                        panel->Scroll(1);
                    }},
                   {"Keyboard", [this] { panel->Keyboard('a'); }},
                   {"Update, selection", [this] { panel->Update(UPDATE_SELECTION | UPDATE_LEVEL_2D); }},
                   {"Update, histogram data", [this] { panel->Update(UPDATE_HISTO_DATA); }},
                   {"Update, painting", [this] { panel->Update(UPDATE_HISTO_PAINT); }},
                   {"Update, colour component", [this] { panel->Update(UPDATE_COLOR_COMPONENT); }, false,
                    [this] { Variable_Set("$GLI_COLOR_COMPONENT", 2); }},
                   {"Update, image mouse", [this] { panel->Update(UPDATE_MOUSE_FRAME); }, false,
                    [this] {
                        scene.Mouse_Over(*color, SAMPLE);
                        panel->Update(UPDATE_MOUSE_FRAME);
                        scene.Mouse_Over(*color, SAMPLE + 50);
                    }},
                   {"Update, TAGs", [this] { panel->Update(UPDATE_TAG_TABLE | UPDATE_TAG_SELECT); }},
                   {"Update, all", [this] { panel->Update(~0ULL); }},
                   {"Fit_Derivative", [this] { panel->Fit_Derivative(4); }},
                   {"Fit_Gaussian", [this] { panel->Fit_Gaussian(); }},
                   {"Write", [this] { panel->Write(FILE_NAME); }, false, [this] { panel->Fit_Derivative(4); }},
                   {"Leave", [this] { panel->Leave(); }, false,
                    [this] {
                        stage.Point_Row(262, 70);
                        panel->Motion(0);
                    }},
                   {"destruction", [this] { panel.reset(); }, false, [this] { panel->Fit_Gaussian(); }},
               });
}

TEST_F(Histo_Faults, opening_the_enlarged_window_survives_a_sample_because_all_take_minutes) {
    Faults_Run("enlarged window", Subject(),
               {
                   {"opening", [this] { Open(); }},
                   {"opening and first painting",
                    [this] {
                        Open();
                        Settle();
                    }},
                   {"opening once more", [this] { Open(); }, false, [this] { Open_And_Settle(); }},
                   {"closing", [] { Close(); }, false, [this] { Open_And_Settle(); }},
                   {"destruction of its panel", [this] { panel.reset(); }, false, [this] { Open_And_Settle(); }},
               });
}

TEST_F(Histo_Faults, every_message_to_the_enlarged_window_survives_a_sample_because_all_take_minutes) {
    Faults_Run(
        "enlarged window", Blow_Subject(),
        {
            {"WM_PAINT", [] { Paint(); }},
            {"new data", [] { Send(DATA); }},
            {"cursor", [] { Send(CURSOR); }, false,
             [this] {
                 Turn_Selectors(-1);
                 scene.Mouse_Over(*color, SAMPLE);
             }},
            {"selectors by the wheel", [] { Turn_Selectors(-1); }},
            {"painting with TAGs, peaks and cursor", [] { Paint(); }, false, [] { Turn_Selectors(-1); }},
            {"wheel over the plot", [] { Wheel(WHEEL_DELTA, 250, 180); }},
            {"press and zoom drag",
             [] {
                 Send(WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(150, 120));
                 Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(200, 160));
                 Send(WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(300, 200));
                 Send(WM_LBUTTONUP, 0, MAKELPARAM(300, 200));
             }},
            {"reset", [] { Click_At(60, 15); }, false, [] { Wheel(WHEEL_DELTA, 250, 180); }},
            {"export", [] { Click_At(CLIENT_WIDTH - 60, 15); }},
            {"WM_SIZE",
             [] {
                 ::SetWindowPos(Window(), nullptr, 0, 0, 420, 300, SWP_NOMOVE | SWP_NOZORDER);
                 Settle();
             }},
            {"WM_MOUSEMOVE over the controls",
             [] {
                 Send(WM_MOUSEMOVE, 0, MAKELPARAM(60, 15));
                 Send(WM_MOUSEMOVE, 0, MAKELPARAM(60, 50));
             }},
            {"WM_KEYDOWN", [] { Send(WM_KEYDOWN, VK_HOME, 1); }},
            {"WM_MOUSELEAVE", [] { Send(WM_MOUSELEAVE); }, false, [] { Send(WM_MOUSEMOVE, 0, MAKELPARAM(60, 15)); }},
        });
}
