#include "histogram/tool_histo_cursor.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "histogram/tool_histo_paint.h"
#include "tests/histogram/histo_stage.h"

namespace {

class Histo_Cursor_Line : public testing::TestWithParam<Window_Axis> {
  protected:
    Histo_Cursor_Line() {
        stage.Lay_Out(panel);
        std::vector<std::uint32_t> counts;
        for (std::uint32_t bin = 0; bin < 64; ++bin) {
            counts.push_back(bin * 37 % 50);
        }
        Histo_Record_Give(panel, {-10.0F, 2.0F}, counts);
        scene.Tags(3);
        scene.Tag_Color(1, 200, 30, 60);
        panel.Set(1, 1, 10.0, 50.0);
        panel.Draw();
        painted = stage.Read();
        grey = &scene.Add_Frame();
        color = &scene.Add_Frame();
        color->frame.color = true;
    }
    static int Column_Of(int bin) {
        return Histo_Stage::PLOT_LEFT +
               static_cast<int>(static_cast<float>(bin) * (static_cast<float>(Histo_Stage::PLOT_WIDTH) / 64.0F));
    }
    /** The window is the painted one with the columns bin - 1 and bin of the plot inverted. */
    void Expect_Line(int column) const {
        const std::vector<std::uint32_t> now = stage.Read();
        for (int row = 0; row < Histo_Stage::HEIGHT; ++row) {
            for (int x = 0; x < Histo_Stage::WIDTH; ++x) {
                const std::uint32_t before = painted[Histo_Stage::At(x, row)];
                const std::uint32_t after = now[Histo_Stage::At(x, row)];
                const bool in_columns = x == column || x == column - 1;
                const int depth = row - Histo_Stage::PLOT_TOP;
                if (in_columns && depth >= 0 && depth < Histo_Stage::PLOT_HEIGHT) {
                    ASSERT_EQ(after, before ^ 0xFFFFFFU) << x << ", " << row;
                } else if (in_columns && (depth == -1 || depth == Histo_Stage::PLOT_HEIGHT)) {
                    // A line of two pixels has round ends: the free pixel above and below may take part.
                    ASSERT_TRUE(after == before || after == (before ^ 0xFFFFFFU)) << x << ", " << row;
                } else {
                    ASSERT_EQ(after, before) << x << ", " << row;
                }
            }
        }
    }

    Histo_Scene scene;
    Histo_Stage stage{GetParam()};
    Tool_Histo panel;
    std::vector<std::uint32_t> painted;
    Scene_Object* grey = nullptr;
    Scene_Object* color = nullptr;
};

INSTANTIATE_TEST_SUITE_P(In, Histo_Cursor_Line, testing::Values(Window_Axis::Down, Window_Axis::Up),
                         [](const auto& axis) { return axis.param == Window_Axis::Up ? "up" : "down"; });

}  // namespace

TEST_P(Histo_Cursor_Line, stands_at_the_bin_of_the_grey_level_under_the_mouse) {
    for (const int level : {-10, -9, -8, 20, 21, 22, 117}) {
        scene.Mouse_Over(*grey, level);
        EXPECT_EQ(Histo_Cursor(panel), 1);
        const int column = Column_Of((level + 10) / 2);
        EXPECT_EQ(panel.cursor_position, column);
        Expect_Line(column);
    }
}

TEST_P(Histo_Cursor_Line, levels_outside_the_grid_stand_at_its_ends) {
    scene.Mouse_Over(*grey, -2000000000);
    EXPECT_EQ(Histo_Cursor(panel), 1);
    EXPECT_EQ(panel.cursor_position, Column_Of(0));
    Expect_Line(Column_Of(0));
    scene.Mouse_Over(*grey, 0x7FFFFFFD);
    EXPECT_EQ(Histo_Cursor(panel), 1);
    EXPECT_EQ(panel.cursor_position, Column_Of(63));
    Expect_Line(Column_Of(63));
}

TEST_P(Histo_Cursor_Line, the_first_line_after_a_repaint_erases_one_outside_the_window) {
    scene.Mouse_Away();
    EXPECT_EQ(panel.cursor_position, -1);
    EXPECT_EQ(Histo_Cursor(panel), 0);
    EXPECT_EQ(panel.cursor_position, 0);
    EXPECT_EQ(stage.Read(), painted);
}

TEST_P(Histo_Cursor_Line, a_thousand_moves_leave_no_trace) {
    std::mt19937 random(3);
    for (int move = 0; move < 1000; ++move) {
        switch (random() % 4) {
            case 0:
                scene.Mouse_Over(*grey, SAMPLE_OUTSIDE);
                break;
            case 1:
                scene.Mouse_Away();
                break;
            default:
                scene.Mouse_Over(*grey, static_cast<int>(random() % 200) - 40);
        }
        Histo_Cursor(panel);
    }
    scene.Mouse_Away();
    EXPECT_EQ(Histo_Cursor(panel), 0);
    EXPECT_EQ(stage.Read(), painted);
}

TEST_P(Histo_Cursor_Line, a_mouse_outside_the_image_leaves_none) {
    for (const int outside : {0x7FFFFFFE, 0x7FFFFFFF}) {
        scene.Mouse_Over(*grey, 20);
        Histo_Cursor(panel);
        EXPECT_NE(stage.Read(), painted);
        scene.Mouse_Over(*grey, outside);
        EXPECT_EQ(Histo_Cursor(panel), 1);
        EXPECT_EQ(panel.cursor_position, 0);
        EXPECT_EQ(stage.Read(), painted);
    }
}

TEST_P(Histo_Cursor_Line, a_mouse_over_no_frame_leaves_none) {
    scene.Mouse_Over(*grey, 20);
    Histo_Cursor(panel);
    scene.Mouse_Away();
    EXPECT_EQ(Histo_Cursor(panel), 0);
    EXPECT_EQ(panel.cursor_position, 0);
    EXPECT_EQ(stage.Read(), painted);
}

TEST_P(Histo_Cursor_Line, asks_the_frame_for_its_value_at_the_mouse) {
    scene.mouse[0] = 3.5F;
    scene.mouse[1] = 7.25F;
    grey->object.slice[0] = 12;
    scene.Mouse_Over(*grey, 20);
    Histo_Cursor(panel);
    EXPECT_EQ(grey->frame.asked_x, 3.5F);
    EXPECT_EQ(grey->frame.asked_y, 7.25F);
    EXPECT_EQ(grey->frame.asked_slice, 12);
}

TEST_P(Histo_Cursor_Line, a_colour_level_is_a_bin_number_of_its_own) {
    // Red 10, green 61, blue 33. The weighted mean: 3 + 3 + 35.
    const int sample = 10 | 61 << 8 | 33 << 16;
    const std::pair<int, int> expected[] = {{0, 61}, {1, 10}, {2, 61}, {3, 33}, {4, 41}, {5, 61}, {255, 61}};
    scene.Mouse_Over(*color, sample);
    for (const auto& [component, bin] : expected) {
        panel.color_component = static_cast<unsigned char>(component);
        EXPECT_EQ(Histo_Cursor(panel), 1);
        EXPECT_EQ(panel.cursor_position, Column_Of(bin)) << "component " << component;
        Expect_Line(Column_Of(bin));
    }
    scene.Mouse_Over(*color, 255 << 8);
    panel.color_component = 2;
    EXPECT_EQ(Histo_Cursor(panel), 1);
    EXPECT_EQ(panel.cursor_position, Column_Of(63)) << "at most the last bin";
}

TEST_P(Histo_Cursor_Line, each_term_of_the_weighted_mean_is_an_integer_division) {
    // 99 x 30 / 100 = 29, 99 x 11 / 100 = 10, 99 x 59 / 100 = 58: 97, not 99.
    panel.color_component = 4;
    scene.Mouse_Over(*color, 99 | 99 << 8 | 99 << 16);
    EXPECT_EQ(Histo_Cursor_Bin_Find(panel).level, 97.0F);
}

TEST_P(Histo_Cursor_Line, without_counts_or_bins_there_is_nothing_to_mark) {
    stage.Take_Messages();
    scene.Mouse_Over(*grey, 20);
    panel.data->record->nb_bins = 0;
    EXPECT_EQ(Histo_Cursor(panel), 0);
    panel.data->Record_Empty();
    EXPECT_EQ(Histo_Cursor(panel), 0);
    panel.data->Record_Free();
    EXPECT_EQ(Histo_Cursor(panel), 0);
    EXPECT_EQ(stage.Take_Lines(), std::vector<std::string>{});
    EXPECT_EQ(stage.Read(), painted);
    EXPECT_EQ(panel.cursor_position, -1);
}

TEST_P(Histo_Cursor_Line, traces_once) {
    stage.Take_Messages();
    scene.Mouse_Over(*grey, 20);
    Histo_Cursor(panel);
    EXPECT_EQ(stage.Take_Lines(), std::vector<std::string>{"16 in Histo_Cursor()"});
}

TEST_P(Histo_Cursor_Line, without_a_device_context_the_line_stays_where_it_is) {
    scene.Mouse_Over(*grey, 20);
    Histo_Cursor(panel);
    const int position = panel.cursor_position;
    const HWND window = panel.window;
    panel.window = nullptr;
    scene.Mouse_Over(*grey, 80);
    EXPECT_EQ(Histo_Cursor(panel), 1);
    EXPECT_EQ(panel.cursor_position, position);
    panel.window = window;
    Expect_Line(position);
}
