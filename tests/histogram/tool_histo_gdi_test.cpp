// What the histogram panel takes of the device is given back after every operation, also when a device context cannot
// be had. The module is watched from outside, so the panel is used as a host uses it.
#include <gtest/gtest.h>
#include <windows.h>

#include <functional>
#include <random>

#include "tests/histogram/histo_stage.h"
#include "tests/support/gdi_recorder.h"
#include "tests/support/own_window.h"

namespace {

constexpr int PRESS = MOUSE_PRESS | MOUSE_LEFT;
constexpr int DRAG = MOUSE_DRAG | MOUSE_LEFT;

void Expect_Balance(const char* module, const std::vector<std::function<void()>>& steps) {
    constexpr int refusals = 6;  // device contexts that are refused in turn, one per pass
    const Gdi_Recorder recorder(module);
    int watched = 0;
    for (int refused = 0; refused <= refusals; ++refused) {
        for (std::size_t i = 0; i < steps.size(); ++i) {
            Gdi_Recorder::Forget();
            Gdi_Recorder::Get_DC_Fail(refused);
            steps[i]();
            Gdi_Recorder::Get_DC_Fail(0);
            EXPECT_EQ(Gdi_Recorder::Unbalanced(), "") << module << ", step " << i << ", refused " << refused;
            watched += Gdi_Recorder::Watched_Nb();
        }
    }
    EXPECT_GT(watched, 0) << module;
}

}  // namespace

TEST(Histo_Gdi, every_operation_gives_back_what_it_takes) {
    for (const Window_Axis axis : {Window_Axis::Down, Window_Axis::Up}) {
        Histo_Scene scene;
        scene.Tags(3);
        scene.Tag_Color(1, 255, 0, 0);
        std::vector<std::uint32_t> counts;
        for (std::uint32_t bin = 0; bin < 4000; ++bin) {
            counts.push_back(bin * 7919U % 1000U);
        }
        scene.Add_Color({}, counts);
        Scene_Object& grey = scene.Add_Frame();
        Histo_Stage stage(axis);
        Tool_Histo panel;
        stage.Lay_Out(panel);
        panel.Set(3, 1, 10.0, 2000.0, 2, 3000.0, 3500.0, 2, 5.0, 1.0);
        panel.Draw();  // what the library keeps for the process is made here
        int moves = 0;
        const std::vector<std::function<void()>> steps = {
            [&] { stage.Lay_Out(panel); },
            [&] { panel.Update(UPDATE_SELECTION | UPDATE_LEVEL_2D); },
            [&] { panel.Draw(); },
            [&] {
                scene.Mouse_Over(grey, 500 + 100 * ++moves);
                panel.Update(UPDATE_MOUSE_FRAME);
            },
            [&] {
                Variable_Set("$GLI_COLOR_COMPONENT", moves % 5);
                panel.Update(UPDATE_COLOR_COMPONENT);
            },
            [&] {
                stage.Point_Row(244, 70);
                panel.Click(PRESS);
                panel.Motion(DRAG);
                panel.Motion(0);
            },
            [&] { panel.Scroll(1); },
            [&] { panel.Leave(); },
            [&] { panel.Update(UPDATE_ALL); },
        };
        Expect_Balance("Kit_Panels.dll", steps);
        Expect_Balance("Kit_Widgets.dll", steps);
    }
}

TEST(Histo_Gdi, the_enlarged_window_gives_back_what_it_takes) {
    Histo_Scene scene;
    Histo_Stage stage(Window_Axis::Down);
    Variable_Define_Scalar("$INTERFACE_SPACE_DIM", VARIABLE_SIGNED_16, 4);
    Variable_Define_Scalar("$INTERFACE_BUTTON_DIM_BIG", VARIABLE_SIGNED_16, 30);
    scene.Tags(3);
    scene.Tag_Color(1, 255, 0, 0);
    std::vector<std::uint32_t> counts;
    for (std::uint32_t bin = 0; bin < 3000; ++bin) {
        counts.push_back(bin * 7919U % 1000U);
    }
    Scene_Object& grey = scene.Add_Grey({}, counts);
    Tool_Histo panel;
    stage.Lay_Out(panel);
    panel.Update(UPDATE_SELECTION | UPDATE_LEVEL_2D);
    panel.Fit_Derivative(5);
    panel.Set(2, 1, 10.0, 2000.0, 2, 2500.0, 2800.0);
    stage.Point_Row(262, 70);
    panel.Click(PRESS);
    HWND window = Own_Window(L"Histogram");
    ASSERT_NE(window, nullptr);
    const auto place = [](int column, int row) { return MAKELPARAM(column, row); };
    const auto send = [&](UINT message, WPARAM wparam, LPARAM lparam) {
        ::SendMessageA(window, message, wparam, lparam);
    };
    const auto wheel = [&](int delta, int column, int row) {
        POINT point = {column, row};
        ::ClientToScreen(window, &point);
        send(WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(delta)), place(point.x, point.y));
    };
    int moves = 0;
    const std::vector<std::function<void()>> steps = {
        [&] {
            ::InvalidateRect(window, nullptr, TRUE);
            ::UpdateWindow(window);
        },
        [&] { send(0x400, 0, 0); },
        [&] {  // every selector one on, by the wheel
            for (int column = 20; column < 780; column += 100) {
                wheel(-120, column, 50);
            }
        },
        [&] {
            scene.Mouse_Over(grey, 500 + 100 * ++moves);
            send(0x401, 0, 0);
        },
        [&] {
            send(WM_LBUTTONDOWN, MK_LBUTTON, place(200, 150));
            send(WM_MOUSEMOVE, MK_LBUTTON, place(300, 200));
            send(WM_MOUSEMOVE, MK_LBUTTON, place(400, 250));
            send(WM_LBUTTONUP, 0, place(400, 250));
        },
        [&] { wheel(120, 300, 200); },
        [&] { send(WM_SIZE, 0, place(700, 300)); },
        [&] {  // reset
            send(WM_LBUTTONDOWN, MK_LBUTTON, place(60, 15));
            send(WM_LBUTTONUP, 0, place(60, 15));
        },
        [&] { send(WM_MOUSELEAVE, 0, 0); },
    };
    for (const std::function<void()>& step : steps) {
        step();  // what the library keeps for the process is made here
    }
    steps[0]();  // and the picture of the last size, which redraws share
    // The library makes fonts that its callers own and delete, so it is out of balance by itself.
    Expect_Balance("Kit_Panels.dll", steps);
    Expect_Balance("Kit_Graph.dll", steps);

    // Many in any order.
    constexpr int event_nb = 3000;
    std::mt19937 random(20261121);
    const Gdi_Recorder recorder("Kit_Panels.dll");
    for (int event = 0; event < event_nb; ++event) {
        steps[std::uniform_int_distribution<std::size_t>(0, steps.size() - 1)(random)]();
    }
    EXPECT_EQ(Gdi_Recorder::Unbalanced(), "");
    EXPECT_GT(Gdi_Recorder::Watched_Nb(), event_nb);
}

TEST(Histo_Gdi, nothing_is_deleted_twice_when_the_last_panel_goes) {
    const Gdi_Recorder recorder("Kit_Panels.dll");
    {
        const Tool_Histo first;
        const Tool_Histo copy(first);
        Gdi_Recorder::Forget();
    }
    EXPECT_EQ(Gdi_Recorder::Unbalanced(), "") << "the system deletes the brush with the window's class";
}
