#include "histogram/tool_histo.h"

#include <gtest/gtest.h>
#include <windows.h>

#include <map>
#include <optional>

#include "histogram/tool_histo_blow.h"
#include "histogram/tool_histo_compute.h"
#include "histogram/tool_histo_paint.h"
#include "tests/histogram/histo_stage.h"

namespace {

constexpr int PRESS = MOUSE_PRESS | MOUSE_LEFT;
constexpr int DRAG = MOUSE_DRAG | MOUSE_LEFT;
constexpr int BUTTON_COLUMN = 262;
constexpr int VALUATOR_COLUMN = 244;
constexpr int PLOT_COLUMN = 60;
constexpr int MIDDLE_ROW = 70;

using Lines = std::vector<std::string>;

class Histo_Panel : public testing::Test {
  protected:
    Histo_Panel() {
        panel.emplace();
        stage.Lay_Out(*panel);
        stage.Take_Messages();
    }
    int Press_At(int column, int row) {
        stage.Point_Row(column, row);
        return panel->Click(PRESS);
    }
    void Open_Window() {
        Press_At(BUTTON_COLUMN, MIDDLE_ROW);
        Posted();
        stage.Take_Messages();
        Widget_Counters_Reset();
    }
    /** Takes the window's posted messages. @return how many of each of the two */
    static std::pair<int, int> Posted() {
        std::pair<int, int> nb;
        MSG message;
        while (::PeekMessageA(&message, histo_blow.window, 0x400, 0x401, PM_REMOVE) != 0) {
            (message.message == 0x400 ? nb.first : nb.second) += 1;
        }
        return nb;
    }
    static bool Class_Exists(WNDCLASSA* found = nullptr) {
        WNDCLASSA window_class = {};
        const bool exists = ::GetClassInfoA(::GetModuleHandleA(nullptr), "Histogram", &window_class) != 0;
        if (found != nullptr) {
            *found = window_class;
        }
        return exists;
    }

    Histo_Scene scene;
    Histo_Stage stage{Window_Axis::Down};
    std::optional<Tool_Histo> panel;
};

}  // namespace

// ---------------- layout

TEST_F(Histo_Panel, three_columns_fill_the_host_box) {
    EXPECT_EQ(panel->x, 10);
    EXPECT_EQ(panel->y, 8);
    EXPECT_EQ(panel->width, 224);
    EXPECT_EQ(panel->height, 121);
    EXPECT_EQ(panel->scale_valuator.x, 237);
    EXPECT_EQ(panel->scale_valuator.y, 8);
    EXPECT_EQ(panel->scale_valuator.width, 15);
    EXPECT_EQ(panel->scale_valuator.height, 121);
    EXPECT_EQ(panel->blow_button.x, 255);
    EXPECT_EQ(panel->blow_button.y, 8);
    EXPECT_EQ(panel->blow_button.width, 15);
    EXPECT_EQ(panel->blow_button.height, 121);
    EXPECT_STREQ(panel->blow_button.name, "Blow");
    EXPECT_EQ(panel->blow_button.current, 0);
    EXPECT_EQ(panel->window, stage.Window());
    EXPECT_EQ(panel->blow_button.window, stage.Window());
    EXPECT_EQ(panel->scale_valuator.window, stage.Window());
}

TEST_F(Histo_Panel, takes_the_look_of_the_host_box) {
    for (const Tools* widget : {static_cast<const Tools*>(&*panel), static_cast<const Tools*>(&panel->blow_button),
                                static_cast<const Tools*>(&panel->scale_valuator)}) {
        EXPECT_EQ(widget->color.red, 90);
        EXPECT_EQ(widget->color.green, 100);
        EXPECT_EQ(widget->color.blue, 110);
        EXPECT_EQ(widget->border, Histo_Stage::EDGE);
    }
}

TEST_F(Histo_Panel, a_layout_resets_the_magnification) {
    panel->scale = 0.25F;
    panel->scale_valuator.value = 0.25F;
    Boxs box = stage.Place();
    EXPECT_EQ(panel->Resize(&box), 1);
    EXPECT_EQ(panel->scale, 1.0F);
    EXPECT_EQ(panel->scale_valuator.value, 1.0F);
    EXPECT_EQ(panel->scale_valuator.minimum, 0.001F);
    EXPECT_EQ(panel->scale_valuator.maximum, 1.0F);
    EXPECT_EQ(stage.Take_Lines(), Lines{"16 in Tool_Histo::Resize()"});
}

TEST_F(Histo_Panel, starts_without_record_and_ranges) {
    const Tool_Histo fresh;
    EXPECT_EQ(fresh.cursor_position, -1);
    EXPECT_EQ(fresh.data->record, nullptr);
    EXPECT_EQ(fresh.data->peak_first, nullptr);
    EXPECT_EQ(fresh.range_nb, 0);
    EXPECT_EQ(fresh.scale, 1.0F);
}

TEST_F(Histo_Panel, accepts_any_height) {
    for (const int height : {0, 1, 400, 65535}) {
        EXPECT_EQ(panel->Height(static_cast<unsigned short>(height)), height);
        EXPECT_EQ(stage.Take_Lines(), Lines{"16 in Tool_Histo::Height()"});
    }
}

TEST_F(Histo_Panel, handles_no_key) {
    EXPECT_EQ(panel->Keyboard(KEY_ENTER), 0);
    EXPECT_EQ(stage.Take_Lines(), Lines{"16 in Tool_Histo::Keyboard(key=0x0000000d)"});
}

TEST_F(Histo_Panel, leaving_says_nothing) {
    panel->Leave();
    EXPECT_EQ(stage.Take_Lines(), Lines{});
}

TEST_F(Histo_Panel, draws_box_button_and_valuator_without_a_record) {
    Widget_Counters_Reset();
    panel->Draw();
    EXPECT_EQ(stage.Take_Lines(), Lines{"16 in Tool_Histo::Draw()"});
    EXPECT_EQ(Widget_Counters_Get().draws, 3U);
}

TEST_F(Histo_Panel, draws_the_plot_last) {
    Histo_Record_Give(*panel, {}, {1, 2, 3});
    panel->Draw();
    EXPECT_EQ(stage.Take_Lines(), (Lines{"16 in Tool_Histo::Draw()", "16 in Histo_Paint()"}));
}

// ---------------- Set

TEST_F(Histo_Panel, keeps_ranges_as_16_bit_tags_and_floats) {
    EXPECT_EQ(panel->Set(2, 3, -1.5, 2.25, 65537, 0.1, 1e6), 1);
    EXPECT_EQ(panel->range_nb, 2);
    EXPECT_EQ(panel->range_tag[0], 3);
    EXPECT_EQ(panel->range_min[0], -1.5F);
    EXPECT_EQ(panel->range_max[0], 2.25F);
    EXPECT_EQ(panel->range_tag[1], 1);
    EXPECT_EQ(panel->range_min[1], 0.1F);
    EXPECT_EQ(panel->range_max[1], 1e6F);
    EXPECT_EQ(stage.Take_Lines(), Lines{"16 in Tool_Histo::Set()"});
}

TEST_F(Histo_Panel, refuses_more_than_32_ranges_and_negative_counts) {
    ASSERT_EQ(panel->Set(1, 7, 1.0, 2.0), 1);
    for (const int n : {33, 0xFFFF, -1, 0x8000}) {
        EXPECT_EQ(panel->Set(n), 0) << n;
        EXPECT_EQ(panel->range_nb, 1);
        EXPECT_EQ(panel->range_tag[0], 7);
    }
    EXPECT_EQ(panel->Set(0), 1);
    EXPECT_EQ(panel->range_nb, 0);
}

TEST_F(Histo_Panel, reads_its_count_as_16_bits) {
    EXPECT_EQ(panel->Set(0x10001, 9, 1.0, 2.0), 1);
    EXPECT_EQ(panel->range_nb, 1);
    EXPECT_EQ(panel->range_tag[0], 9);
}

TEST_F(Histo_Panel, takes_32_ranges) {
#define FOUR(t) t, 1.0, 2.0, (t) + 1, 1.0, 2.0, (t) + 2, 1.0, 2.0, (t) + 3, 1.0, 2.0
    EXPECT_EQ(panel->Set(32, FOUR(0), FOUR(4), FOUR(8), FOUR(12), FOUR(16), FOUR(20), FOUR(24), FOUR(28)), 1);
#undef FOUR
    EXPECT_EQ(panel->range_nb, 32);
    EXPECT_EQ(panel->range_tag[31], 31);
}

// ---------------- valuator

TEST_F(Histo_Panel, a_press_on_the_valuator_takes_its_value_without_painting) {
    Histo_Record_Give(*panel, {}, {1, 2, 3});
    EXPECT_EQ(Press_At(VALUATOR_COLUMN, MIDDLE_ROW), 1);
    EXPECT_LT(panel->scale, 1.0F);
    EXPECT_GE(panel->scale, 0.001F);
    EXPECT_EQ(panel->scale, panel->scale_valuator.value);
    EXPECT_EQ(stage.Take_Lines(), Lines{"16 in Tool_Histo::Click(up_down=0x00000012)"});
}

TEST_F(Histo_Panel, dragging_the_valuator_paints) {
    Histo_Record_Give(*panel, {}, {1, 2, 3});
    Press_At(VALUATOR_COLUMN, MIDDLE_ROW);
    const float pressed = panel->scale;
    stage.Take_Messages();
    stage.Point_Row(VALUATOR_COLUMN, MIDDLE_ROW + 30);
    EXPECT_EQ(panel->Motion(DRAG), 1);
    EXPECT_NE(panel->scale, pressed);
    EXPECT_EQ(stage.Take_Lines(), Lines{"16 in Histo_Paint()"});
    EXPECT_EQ(panel->Motion(0), 0) << "released";
    EXPECT_EQ(stage.Take_Lines(), Lines{});
}

TEST_F(Histo_Panel, the_wheel_moves_the_valuator_against_its_direction) {
    Histo_Record_Give(*panel, {}, {1, 2, 3});
    EXPECT_EQ(panel->Scroll(2), 1);
    EXPECT_FLOAT_EQ(panel->scale, 0.9F);
    EXPECT_EQ(stage.Take_Lines(), (Lines{"16 in Tool_Histo::Scroll()", "16 in Histo_Paint()"}));
    EXPECT_EQ(panel->Scroll(-1), 1);
    EXPECT_FLOAT_EQ(panel->scale, 0.95F);
    EXPECT_EQ(panel->Scroll(1000), 1);
    EXPECT_EQ(panel->scale, 0.001F);
}

TEST_F(Histo_Panel, a_release_and_a_press_elsewhere_are_not_handled) {
    stage.Point_Row(BUTTON_COLUMN, MIDDLE_ROW);
    EXPECT_EQ(panel->Click(0), 0);
    EXPECT_EQ(Press_At(PLOT_COLUMN, MIDDLE_ROW), 0);
    EXPECT_EQ(histo_blow.window, nullptr);
    EXPECT_EQ(panel->scale, 1.0F);
}

TEST_F(Histo_Panel, a_code_without_a_press_is_a_release_whatever_buttons_are_still_held) {
    for (const int held : {MOUSE_LEFT, MOUSE_MIDDLE, MOUSE_RIGHT, MOUSE_LEFT | MOUSE_RIGHT, MOUSE_DRAG | MOUSE_LEFT}) {
        stage.Point_Row(BUTTON_COLUMN, MIDDLE_ROW);
        EXPECT_EQ(panel->Click(held), 0) << held;
        EXPECT_EQ(histo_blow.window, nullptr) << held;
        stage.Point_Row(VALUATOR_COLUMN, MIDDLE_ROW);
        EXPECT_EQ(panel->Click(held), 0) << held;
        EXPECT_EQ(panel->scale, 1.0F) << held;
    }
}

// ---------------- enlarged window

TEST_F(Histo_Panel, the_button_opens_the_window_once) {
    EXPECT_EQ(Press_At(BUTTON_COLUMN, MIDDLE_ROW), 1);
    const HWND window = histo_blow.window;
    ASSERT_NE(window, nullptr);
    EXPECT_EQ(histo_blow.panel, &*panel);
    EXPECT_EQ(panel->blow_button.current, 1);
    char text[80] = {};
    ::GetClassNameA(window, text, sizeof text);
    EXPECT_STREQ(text, "Histogram");
    ::GetWindowTextA(window, text, sizeof text);
    EXPECT_STREQ(text, "Histogram Graph");
    constexpr LONG_PTR looks = WS_CAPTION | WS_SYSMENU | WS_THICKFRAME | WS_MINIMIZEBOX | WS_MAXIMIZEBOX | WS_VISIBLE;
    EXPECT_EQ(::GetWindowLongPtrA(window, GWL_STYLE) & looks, looks);
    EXPECT_EQ(::GetWindowLongPtrA(window, GWL_EXSTYLE) & 0x10, 0x10);
    EXPECT_EQ(::GetWindowLongPtrA(window, GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
    RECT place = {};
    ::GetWindowRect(window, &place);
    EXPECT_EQ(place.right - place.left, 800);
    EXPECT_EQ(place.bottom - place.top, 400);
    EXPECT_TRUE(::IsWindowEnabled(window));

    ::EnableWindow(window, FALSE);
    ::ShowWindow(window, SW_HIDE);
    EXPECT_EQ(Press_At(BUTTON_COLUMN, MIDDLE_ROW), 1);
    EXPECT_EQ(histo_blow.window, window);
    EXPECT_TRUE(::IsWindowEnabled(window));
    EXPECT_TRUE(::IsWindowVisible(window));
    EXPECT_EQ(::GetWindowLongPtrA(window, GWL_EXSTYLE) & WS_EX_TOPMOST, WS_EX_TOPMOST);
    RECT again = {};
    ::GetWindowRect(window, &again);
    EXPECT_TRUE(::EqualRect(&place, &again));
}

TEST_F(Histo_Panel, the_class_has_its_ground_cursor_and_redraw_styles) {
    WNDCLASSA found = {};
    ASSERT_TRUE(Class_Exists(&found));
    EXPECT_EQ(found.style & (CS_HREDRAW | CS_VREDRAW), static_cast<UINT>(CS_HREDRAW | CS_VREDRAW));
    EXPECT_EQ(found.hCursor, ::LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW)));
    LOGBRUSH brush = {};
    ASSERT_NE(::GetObjectA(found.hbrBackground, sizeof brush, &brush), 0);
    EXPECT_EQ(brush.lbStyle, static_cast<UINT>(BS_SOLID));
    EXPECT_EQ(brush.lbColor, 0xAAAAAAU);
}

TEST_F(Histo_Panel, the_class_goes_with_the_last_panel_and_comes_back_with_the_next) {
    WNDCLASSA found = {};
    ASSERT_TRUE(Class_Exists(&found));
    {
        const Tool_Histo second;
        const Tool_Histo copy(second);
        Tool_Histo assigned;
        assigned = copy;
        EXPECT_TRUE(Class_Exists());
    }
    EXPECT_TRUE(Class_Exists()) << "one panel lives";
    EXPECT_EQ(::GetObjectType(found.hbrBackground), static_cast<DWORD>(OBJ_BRUSH));
    panel.reset();
    EXPECT_FALSE(Class_Exists());
    EXPECT_EQ(::GetObjectType(found.hbrBackground), 0U);
    panel.emplace();
    EXPECT_TRUE(Class_Exists());
}

TEST_F(Histo_Panel, closing_the_window_draws_the_panel_with_its_button_released) {
    Open_Window();
    ::DestroyWindow(histo_blow.window);
    EXPECT_EQ(histo_blow.window, nullptr);
    EXPECT_EQ(panel->blow_button.current, 0);
    const Lines lines = stage.Take_Lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "16 in Tool_Histo::Draw()"), 1);
}

TEST_F(Histo_Panel, the_end_of_any_panel_closes_the_window_and_draws_the_one_that_it_showed) {
    std::optional<Tool_Histo> other(std::in_place);
    Open_Window();
    other.reset();
    EXPECT_EQ(histo_blow.window, nullptr);
    EXPECT_EQ(panel->blow_button.current, 0);
    const Lines lines = stage.Take_Lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "16 in Tool_Histo::Draw()"), 1);
}

TEST_F(Histo_Panel, the_end_of_the_shown_panel_draws_nothing) {
    Histo_Record_Give(*panel, {}, {1, 2, 3});
    Open_Window();
    panel.reset();
    EXPECT_EQ(histo_blow.window, nullptr);
    EXPECT_EQ(histo_blow.panel, nullptr);
    const Lines lines = stage.Take_Lines();
    EXPECT_EQ(std::count(lines.begin(), lines.end(), "16 in Tool_Histo::Draw()"), 0);
}

TEST_F(Histo_Panel, drawing_and_layout_show_whether_the_window_exists) {
    Open_Window();
    panel->blow_button.current = 0;
    panel->Draw();
    EXPECT_EQ(panel->blow_button.current, 1);
    Tool_Histo second;
    stage.Lay_Out(second);
    EXPECT_EQ(second.blow_button.current, 1);
}

// ---------------- Update

TEST_F(Histo_Panel, each_change_flag_does_what_its_row_says_and_no_more) {
    scene.Add_Grey({}, {1, 2, 3});
    Histo_Record_Give(*panel, {}, {1, 2, 3});
    Open_Window();
    struct Row {
        Lines calls;
        std::pair<int, int> posted;
    };
    const std::string compute = "16 in Histo_Compute()";
    const std::string cursor = "16 in Histo_Cursor()";
    const std::string paint = "16 in Histo_Paint()";
    const std::map<int, Row> rows = {
        {24, {{compute, cursor}, {1, 0}}}, {31, {{paint}, {1, 0}}},  {38, {{paint}, {1, 0}}},
        {22, {{paint}, {1, 0}}},           {18, {{cursor}, {0, 1}}}, {39, {{cursor, paint}, {1, 0}}},
    };
    for (int bit = 0; bit < 64; ++bit) {
        Row expected;
        if (const auto row = rows.find(bit); row != rows.end()) {
            expected = row->second;
        }
        expected.calls.insert(expected.calls.begin(), "16 in Tool_Histo::Update()");
        panel->Update(1ULL << bit);
        EXPECT_EQ(stage.Take_Lines(), expected.calls) << "bit " << bit;
        EXPECT_EQ(Posted(), expected.posted) << "bit " << bit;
        EXPECT_EQ(Widget_Counters_Get().adjusts, bit == 60 ? 1U : 0U) << "bit " << bit;
        Widget_Counters_Reset();
    }
    panel->Update(0x102);
    EXPECT_EQ(stage.Take_Lines(), (Lines{"16 in Tool_Histo::Update()", compute}));
    EXPECT_EQ(Posted(), std::make_pair(1, 0));
    panel->Update(~0ULL);
    EXPECT_EQ(stage.Take_Lines(), (Lines{"16 in Tool_Histo::Update()", compute, compute, cursor, paint, paint, paint,
                                         cursor, cursor, paint}));
    EXPECT_EQ(Posted(), std::make_pair(6, 1));
}

TEST_F(Histo_Panel, without_the_window_nothing_is_posted) {
    MSG message;
    panel->Update(~0ULL);
    EXPECT_EQ(::PeekMessageA(&message, nullptr, 0x400, 0x401, PM_REMOVE), 0);
}

TEST_F(Histo_Panel, the_colour_component_is_read_again_before_the_cursor_and_the_picture) {
    Variable_Set("$GLI_COLOR_COMPONENT", 4);
    panel->Update(0x8000000000ULL);
    EXPECT_EQ(panel->color_component, 4);
    Variable_Set("$GLI_COLOR_COMPONENT", 2);
    panel->Update(0x80000000ULL);
    EXPECT_EQ(panel->color_component, 4) << "other flags do not read it";
}

TEST_F(Histo_Panel, everything_may_have_changed_sets_the_button_by_the_window) {
    Open_Window();
    panel->blow_button.current = 0;
    panel->Update(0x1000000000000000ULL);
    EXPECT_EQ(panel->blow_button.current, 1);
    ::DestroyWindow(histo_blow.window);
    panel->blow_button.current = 1;
    panel->Update(0x1000000000000000ULL);
    EXPECT_EQ(panel->blow_button.current, 0);
}

// ---------------- copies

TEST_F(Histo_Panel, copies_share_what_was_computed_and_the_last_one_frees_it) {
    Histo_Record_Give(*panel, {}, {1, 20, 3});
    panel->Set(1, 7, 1.0, 2.0);
    std::optional<Tool_Histo> copy(*panel);
    Tool_Histo assigned;
    assigned = *panel;
    EXPECT_EQ(copy->data, panel->data);
    EXPECT_EQ(assigned.data, panel->data);
    EXPECT_EQ(copy->range_nb, 1);
    EXPECT_EQ(assigned.range_tag[0], 7);
    panel.reset();
    ASSERT_TRUE(copy->data->Has_Counts());
    EXPECT_EQ(copy->Fit_Derivative(3), 1);
    EXPECT_EQ(assigned.data->peak_nb, copy->data->peak_nb);
    copy.reset();
    EXPECT_EQ(assigned.data.use_count(), 1);
    EXPECT_EQ(assigned.data->record->counts[1], 20U);
}

TEST_F(Histo_Panel, a_panel_that_was_never_laid_out_survives_every_event) {
    Tool_Histo fresh;
    Histo_Record_Give(fresh, {}, {1, 2, 3});
    fresh.Draw();
    EXPECT_EQ(fresh.Click(PRESS), 0);
    EXPECT_EQ(fresh.Motion(DRAG), 0);
    fresh.Scroll(1);
    fresh.Leave();
    fresh.Update(~0ULL);
    EXPECT_EQ(fresh.Resize(nullptr), 1);
}
