#include "panels/tool_brush.h"

#include <gtest/gtest.h>

#include <array>
#include <cmath>
#include <memory>
#include <random>

#include "tests/panels/brush_scene.h"

namespace {

constexpr unsigned int GREY = 0xAAAAAA;
constexpr unsigned int COLOR_1 = 0xC08040;
constexpr unsigned int COLOR_2 = 0x10E020;
constexpr int NO_BRUSH = 99;  ///< an index without a button: no button carries the current mark

std::vector<std::string> Lines_Of(const std::vector<Panel_Message>& messages) {
    std::vector<std::string> texts;
    for (const Panel_Message& one : messages) {
        texts.push_back(std::to_string(one.level) + " " + one.text);
    }
    return texts;
}

class Brush_Panel : public testing::Test {
  protected:
    Brush_Panel() {
        Variable_Set("$BRUSH_CUR", NO_BRUSH);
        stage.Point_At(0, 0);
    }

    void Lay_Out() {
        Boxs box = stage.Host_Box(host_x, host_y, host_width, host_height);
        EXPECT_EQ(panel.Resize(&box), 1);
    }
    /** Layout, first notification and nothing left to be noticed. */
    void Bring_Up() {
        Lay_Out();
        panel.Update(UPDATE_ALL);
        panel.Update(UPDATE_TAG_CUR);
        Quiet();
    }
    void Quiet() {
        stage.Take_Messages();
        Widget_Counters_Reset();
        Variable_Look_Ups_Reset();
    }
    int Column_Width(int shown) const { return (host_width - 2 * BRUSH_SPACE) / shown; }
    void Point_At_Button(int i, int shown) const {
        stage.Point_At(host_x + BRUSH_SPACE + i * Column_Width(shown) + Column_Width(shown) / 2,
                       host_y + host_height / 2);
    }
    static unsigned int Painted() {
        const Widget_Counters counters = Widget_Counters_Get();
        return counters.draws + counters.adjusts + counters.clears;
    }
    /** Colour of a button's ground in its plain, hover, pressed and current look. */
    std::array<unsigned int, 4> Grounds() const {
        Buttons plain;
        plain.Take_Look(stage.Host_Box(0, 0, 10, 10));
        plain.width = 4;
        plain.height = 4;
        plain.Init(nullptr);
        return {plain.image[0][0], plain.image[1][0], plain.image[2][0], plain.image[3][0]};
    }
    /** How many pixels of a button in the window differ from its disc and outline by the rule. */
    int Wrong_Pixels(int i, const std::vector<int>& size, unsigned int color, unsigned int ground) const {
        const std::vector<std::uint32_t> shown = stage.Read();
        const int nb = std::min(static_cast<int>(size.size()), 8);
        const int w = Column_Width(nb);
        const int h = host_height - 2 * BRUSH_SPACE;
        const int margin = 2 * BORDER + 4;
        const auto largest = static_cast<float>(2 * *std::max_element(size.begin(), size.begin() + nb) + 1);
        const float k = std::max(largest / static_cast<float>(w - margin), largest / static_cast<float>(h - margin));
        const float radius = static_cast<float>(size[static_cast<std::size_t>(i)]) / k;
        const int square = static_cast<int>(radius * radius);
        const auto in_disc = [&](int x, int y) {
            const int dx = std::abs(x - w / 2);
            const int dy = std::abs(y - h / 2);
            return dx < w / 2 && dy < h / 2 && dx * dx + dy * dy <= square;
        };
        int wrong = 0;
        for (int y = 0; y < h; y++) {
            for (int x = 0; x < w; x++) {
                bool touches = false;
                for (int step = 0; step < 9; step++) {
                    touches = touches || in_disc(x + step % 3 - 1, y + step / 3 - 1);
                }
                const unsigned int expected = in_disc(x, y) ? color : touches ? 0 : ground;
                wrong += shown[stage.Index(host_x + BRUSH_SPACE + i * w + x, host_y + BRUSH_SPACE + y)] != expected;
            }
        }
        return wrong;
    }
    void Expect_Discs(const std::vector<int>& size, unsigned int color, const std::string& when) const {
        for (int i = 0; i < static_cast<int>(size.size()); i++) {
            EXPECT_EQ(Wrong_Pixels(i, size, color, Grounds()[0]), 0) << when << ", brush " << i;
        }
    }

    int host_x = 7;
    int host_y = 5;
    int host_width = 206;
    int host_height = 50;
    const std::vector<int> sizes = {2, 3, 9, 20};
    Brush_Host host;
    Brush_Masks masks{4, 25};
    Panel_Stage stage{220, 70, Window_Axis::Down};
    Tool_Brush panel;
};

}  // namespace

// ---------------- placing

TEST_F(Brush_Panel, a_new_panel_asks_for_nothing_and_draws_nothing) {
    Variable_Look_Ups_Reset();
    Widget_Counters_Reset();
    Tool_Brush fresh;
    EXPECT_EQ(fresh.Read(), 0);
    EXPECT_EQ(Variable_Look_Ups(nullptr), 0U);
    EXPECT_EQ(Painted(), 0U);
    EXPECT_TRUE(stage.Take_Messages().empty());
}

TEST_F(Brush_Panel, the_height_is_a_list_and_eight_pixels_between_two_spaces) {
    Quiet();
    EXPECT_EQ(panel.Height(), BRUSH_LIST_DIM + 8 + 2 * BRUSH_SPACE);
    EXPECT_EQ(Lines_Of(stage.Take_Messages()), std::vector<std::string>{"16 in Tool_Brush::Height()"});
    Variable_Set("$INTERFACE_SPACE_DIM", -2);
    EXPECT_EQ(panel.Height(), BRUSH_LIST_DIM + 8 - 4);
}

TEST_F(Brush_Panel, every_pixel_picks_the_button_that_stands_there) {
    for (int nb : {1, 2, 3, 4, 7, 8}) {
        Brush_Host::Sizes(std::vector<int>(static_cast<std::size_t>(nb), 5));
        Lay_Out();
        const int w = Column_Width(nb);
        for (int y : {0, host_y + BRUSH_SPACE - 1, host_y + BRUSH_SPACE, host_y + host_height - BRUSH_SPACE - 1,
                      host_y + host_height - BRUSH_SPACE}) {
            const bool in_row = y >= host_y + BRUSH_SPACE && y < host_y + host_height - BRUSH_SPACE;
            for (int x = 0; x < stage.width; x++) {
                stage.Point_At(x, y);
                const int offset = x - host_x - BRUSH_SPACE;
                const bool hit = in_row && offset >= 0 && offset / w < nb;
                ASSERT_EQ(panel.Click(BRUSH_PRESS), hit ? 1 : 0) << nb << ": " << x << ", " << y;
                if (hit) {
                    ASSERT_EQ(panel.Read(), offset / w);
                }
            }
        }
    }
}

TEST_F(Brush_Panel, laying_out_traces_itself_then_colour_then_outline) {
    Quiet();
    Lay_Out();
    EXPECT_EQ(Lines_Of(stage.Take_Messages()),
              (std::vector<std::string>{"16 in Tool_Brush::Resize(dim=206x50)", "17 in Tool_Brush::Set_Color()",
                                        "17 in Tool_Brush::Set_Border()"}));
}

TEST_F(Brush_Panel, laying_out_looks_up_two_variables_that_decide_nothing) {
    Variable_Look_Ups_Reset();
    Lay_Out();
    EXPECT_EQ(Variable_Look_Ups("$BRUSH_CUR"), 1U);
    EXPECT_EQ(Variable_Look_Ups("$INTERFACE_LIST_DIM_SML"), 1U);
    panel.Draw();
    const auto before = stage.Read();
    Variable_Set("$INTERFACE_LIST_DIM_SML", 400);
    stage.Wipe();
    Lay_Out();
    panel.Draw();
    EXPECT_EQ(stage.Read(), before);
}

TEST_F(Brush_Panel, without_brushes_no_button_is_placed) {
    Variable_Set("$BRUSH_NB", 0);
    Lay_Out();
    panel.Draw();
    for (int x = 0; x < stage.width; x++) {
        stage.Point_At(x, host_y + host_height / 2);
        ASSERT_EQ(panel.Click(BRUSH_PRESS), 0);
    }
    EXPECT_EQ(panel.Motion(0), 0);
    panel.Leave();
    panel.Update(~0ULL);
}

// ---------------- discs

TEST_F(Brush_Panel, discs_and_outlines_stand_in_the_plain_the_hover_and_the_pressed_look) {
    Bring_Up();
    panel.Draw();
    Expect_Discs(sizes, COLOR_1, "plain");
    for (int i = 0; i < 4; i++) {
        Point_At_Button(i, 4);
        EXPECT_EQ(panel.Motion(0), 0);
        EXPECT_EQ(Wrong_Pixels(i, sizes, COLOR_1, Grounds()[1]), 0) << "hover " << i;
        EXPECT_EQ(panel.Motion(BRUSH_PRESS), 0);
        EXPECT_EQ(Wrong_Pixels(i, sizes, COLOR_1, Grounds()[2]), 0) << "pressed " << i;
        panel.Leave();
        EXPECT_EQ(Wrong_Pixels(i, sizes, COLOR_1, Grounds()[0]), 0) << "left " << i;
    }
}

TEST_F(Brush_Panel, discs_follow_any_sizes_and_any_place) {
    const std::vector<std::vector<int>> cases = {
        {0}, {1}, {0, 0}, {1, 5}, {255, 3, 128}, {65535, 1, 40000}, {7, 7, 7, 7, 7, 7, 7, 7}};
    for (const auto& one : cases) {
        for (int height : {13, 16, 37, 50}) {
            host_height = height;
            Brush_Host::Sizes(one);
            stage.Wipe();
            Lay_Out();
            panel.Draw();
            Expect_Discs(one, COLOR_1, "height " + std::to_string(height));
        }
    }
}

TEST_F(Brush_Panel, a_brush_of_size_0_shows_one_pixel_in_a_ring_of_eight) {
    Brush_Host::Sizes({0, 30});
    Lay_Out();
    panel.Draw();
    const auto shown = stage.Read();
    const int x = host_x + BRUSH_SPACE + Column_Width(2) / 2;
    const int y = host_y + BRUSH_SPACE + (host_height - 2 * BRUSH_SPACE) / 2;
    for (int dy = -2; dy <= 2; dy++) {
        for (int dx = -2; dx <= 2; dx++) {
            const int distance = std::max(std::abs(dx), std::abs(dy));
            const unsigned int expected = distance == 0 ? COLOR_1 : distance == 1 ? 0 : Grounds()[0];
            EXPECT_EQ(shown[stage.Index(x + dx, y + dy)], expected) << dx << ", " << dy;
        }
    }
}

TEST_F(Brush_Panel, tag_0_is_grey_and_others_show_the_high_bytes) {
    const std::array<unsigned int, 3> expected = {GREY, COLOR_1, COLOR_2};
    for (int tag : {0, 1, 2, 0}) {
        Variable_Set("$TAG_CUR", tag);
        Lay_Out();
        panel.Draw();
        Expect_Discs(sizes, expected[static_cast<std::size_t>(tag)], "TAG " + std::to_string(tag));
    }
}

TEST_F(Brush_Panel, a_missing_colour_table_gives_black_discs_until_it_is_there) {
    for (const char* name : {"$TAG_RED", "$TAG_GRN", "$TAG_BLU"}) {
        Variable_Undefine(name);
        Lay_Out();
        panel.Draw();
        Expect_Discs(sizes, 0, name);
        Variable_Define_Array(name, VARIABLE_UNSIGNED_16, 3);
        Brush_Host::Tag_Color(1, 0xC0FF, 0x8001, 0x40AA);
        Lay_Out();
        panel.Draw();
        Expect_Discs(sizes, COLOR_1, name);
    }
}

TEST_F(Brush_Panel, a_button_without_room_beyond_the_margin_stays_empty) {
    host_height = 2 * BRUSH_SPACE + 2 * BORDER + 4;
    Lay_Out();
    panel.Draw();
    const auto shown = stage.Read();
    for (int y = 0; y < host_height - 2 * BRUSH_SPACE; y++) {
        for (int x = 0; x < 4 * Column_Width(4); x++) {
            ASSERT_EQ(shown[stage.Index(host_x + BRUSH_SPACE + x, host_y + BRUSH_SPACE + y)], Grounds()[0]);
        }
    }
}

TEST_F(Brush_Panel, any_host_box_and_any_library_border_are_survived) {
    const short usual = BORDER;
    for (int border : {-32768, -40, -3, 0, 1, 9, 32767}) {
        BORDER = static_cast<short>(border);
        for (int width = -20; width < 90; width += 11) {
            for (int height = -20; height < 40; height += 3) {
                host_width = width;
                host_height = height;
                Lay_Out();
                panel.Draw();
                panel.Update(UPDATE_ALL);
            }
        }
        for (int space : {-32768, -5, 32767}) {
            Variable_Set("$INTERFACE_SPACE_DIM", space);
            host_width = 30;
            host_height = 30;
            Lay_Out();
            panel.Draw();
        }
        Variable_Set("$INTERFACE_SPACE_DIM", BRUSH_SPACE);
    }
    BORDER = usual;
}

// ---------------- masks

TEST_F(Brush_Panel, the_first_notification_builds_every_mask) {
    Lay_Out();
    panel.Update(UPDATE_BRUSH);
    for (int i = 0; i < 4; i++) {
        EXPECT_EQ(masks.Wrong(i, sizes[static_cast<std::size_t>(i)]), 0) << i;
    }
}

TEST_F(Brush_Panel, a_changed_size_rebuilds_the_masks_lays_out_and_draws) {
    Bring_Up();
    Brush_Host::Sizes({2, 3, 10, 20});
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(Lines_Of(stage.Take_Messages()),
              (std::vector<std::string>{"16 in Tool_Brush::Update()", "17 in Tool_Brush::Init()",
                                        "16 in Tool_Brush::Resize(dim=206x50)", "17 in Tool_Brush::Set_Color()",
                                        "17 in Tool_Brush::Set_Border()", "16 in Tool_Brush::Draw()"}));
    EXPECT_EQ(masks.Wrong(2, 10), 0);
    Expect_Discs({2, 3, 10, 20}, COLOR_1, "after the change");
    const auto updated = stage.Read();
    stage.Wipe();
    Lay_Out();
    panel.Draw();
    EXPECT_EQ(stage.Read(), updated) << "an update shows what a fresh layout and drawing show";
}

TEST_F(Brush_Panel, every_single_size_is_compared) {
    Bring_Up();
    for (std::size_t i = 0; i < 4; i++) {
        std::vector<int> changed = sizes;
        changed[i]++;
        Brush_Host::Sizes(changed);
        masks.Dirty();
        panel.Update(UPDATE_BRUSH);
        EXPECT_EQ(masks.Wrong(static_cast<int>(i), changed[i]), 0) << i;
        Brush_Host::Sizes(sizes);
        panel.Update(UPDATE_BRUSH);
    }
}

TEST_F(Brush_Panel, a_changed_number_rebuilds) {
    Bring_Up();
    Brush_Host::Sizes({2, 3, 9});
    masks.Dirty();
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(masks.Wrong(2, 9), 0);
    EXPECT_TRUE(masks.Untouched(3));
    Expect_Discs({2, 3, 9}, COLOR_1, "three");
}

TEST_F(Brush_Panel, unchanged_brushes_rebuild_nothing_and_draw_nothing) {
    Bring_Up();
    masks.Dirty();
    Brush_Host::Sizes(sizes);  // another array with the same contents
    for (int i = 0; i < 5; i++) {
        panel.Update(UPDATE_BRUSH);
    }
    EXPECT_EQ(stage.Take_Messages(), std::vector<Panel_Message>(5, {16, "in Tool_Brush::Update()"}));
    EXPECT_EQ(Painted(), 0U);
    EXPECT_EQ(Widget_Counters_Get().inits, 0U);
    for (int i = 0; i < 4; i++) {
        EXPECT_TRUE(masks.Untouched(i));
    }
}

TEST_F(Brush_Panel, a_mask_with_a_missing_row_or_no_rows_is_left_alone) {
    masks.row[1][30] = nullptr;
    masks.table[2] = nullptr;
    Lay_Out();
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(masks.Wrong(0, 2), 0);
    EXPECT_TRUE(masks.Untouched(1));
    EXPECT_TRUE(masks.Untouched(2));
    EXPECT_EQ(masks.Wrong(3, 20), 0);
}

TEST_F(Brush_Panel, all_masks_are_cleared_before_the_first_brush_is_set) {
    masks.table[1] = masks.table[0];  // two brushes in one mask
    Brush_Host::Sizes({20, 2});
    Lay_Out();
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(masks.Wrong(0, 20), 0);
}

TEST_F(Brush_Panel, a_missing_table_leaves_the_masks_alone_and_is_tried_again) {
    Lay_Out();
    Variable_Undefine("$BRUSH_PT");
    panel.Update(UPDATE_BRUSH);
    EXPECT_TRUE(masks.Untouched(0));
    Variable_Define_Array_At("$BRUSH_PT", VARIABLE_POINTER, 4, masks.table.data());
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(masks.Wrong(3, 20), 0);
    Variable_Undefine("$BRUSH_SIZE");
    masks.Dirty();
    panel.Update(~0ULL);
    Lay_Out();
    panel.Draw();
    EXPECT_TRUE(masks.Untouched(3));
}

TEST_F(Brush_Panel, brushes_beyond_eight_get_masks_and_no_button) {
    Brush_Masks many(11, 6);
    std::vector<int> eleven = {1, 2, 3, 4, 5, 6, 7, 8, 2, 3, 200};
    Brush_Host::Sizes(eleven);
    Lay_Out();
    panel.Update(UPDATE_ALL);
    for (int i = 0; i < 11; i++) {
        EXPECT_EQ(many.Wrong(i, eleven[static_cast<std::size_t>(i)]), 0) << i;
    }
    panel.Draw();
    Expect_Discs({1, 2, 3, 4, 5, 6, 7, 8}, COLOR_1, "the scale is that of the eight shown");
    stage.Point_At(host_x + BRUSH_SPACE + 8 * Column_Width(8) - 1, host_y + host_height / 2);
    EXPECT_EQ(panel.Click(BRUSH_PRESS), 1);
    EXPECT_EQ(panel.Read(), 7);
    eleven[10] = 5;
    Brush_Host::Sizes(eleven);
    many.Dirty();
    panel.Update(UPDATE_BRUSH);
    EXPECT_TRUE(many.Untouched(10)) << "sizes without a button are not compared";
}

// ---------------- events

TEST_F(Brush_Panel, a_release_is_ignored_and_traced) {
    Bring_Up();
    Point_At_Button(2, 4);
    EXPECT_EQ(panel.Click(0), 0);
    EXPECT_EQ(Lines_Of(stage.Take_Messages()), std::vector<std::string>{"16 in Tool_Brush::Click(up_down=0x00000000)"});
    for (const int still_held : {0x10, 0x20, 0x40, 0x50, 0x70}) {
        EXPECT_EQ(panel.Click(still_held), 0) << still_held;
    }
    EXPECT_EQ(panel.Read(), NO_BRUSH);
    EXPECT_EQ(Painted(), 0U);
}

TEST_F(Brush_Panel, a_pick_answers_1_moves_the_mark_and_leaves_the_host_s_variable_alone) {
    Bring_Up();
    panel.Draw();
    const auto corner = [this](int i) {
        return stage.Read()[stage.Index(host_x + BRUSH_SPACE + i * Column_Width(4), host_y + BRUSH_SPACE)];
    };
    Quiet();
    Point_At_Button(2, 4);
    EXPECT_EQ(panel.Click(BRUSH_PRESS), 1);
    EXPECT_EQ(Lines_Of(stage.Take_Messages()), std::vector<std::string>{"16 in Tool_Brush::Click(up_down=0x00000012)"});
    EXPECT_EQ(panel.Read(), 2);
    EXPECT_EQ(corner(2), Grounds()[3]);
    Point_At_Button(1, 4);
    EXPECT_EQ(panel.Click(0x42), 1);
    EXPECT_EQ(panel.Read(), 1);
    EXPECT_EQ(corner(1), Grounds()[3]);
    EXPECT_NE(corner(2), Grounds()[3]);
    EXPECT_EQ(Variable_Number("$BRUSH_CUR", -1), NO_BRUSH);
}

TEST_F(Brush_Panel, a_pick_repaints_marks_only) {
    Bring_Up();
    Point_At_Button(0, 4);
    panel.Click(BRUSH_PRESS);
    Point_At_Button(3, 4);
    panel.Motion(0);
    Widget_Counters_Reset();
    panel.Click(BRUSH_PRESS);
    EXPECT_EQ(Widget_Counters_Get().adjusts, 2U);
    EXPECT_EQ(Widget_Counters_Get().draws, 1U) << "the pressed look";
}

TEST_F(Brush_Panel, motion_answers_0_although_buttons_change_their_look) {
    Bring_Up();
    panel.Draw();
    const auto before = stage.Read();
    Widget_Counters_Reset();
    Point_At_Button(1, 4);
    EXPECT_EQ(panel.Motion(0), 0);
    EXPECT_NE(stage.Read(), before);
    EXPECT_EQ(Widget_Counters_Get().draws, 1U);
    panel.Leave();
    EXPECT_EQ(stage.Read(), before);
    Widget_Counters_Reset();
    panel.Leave();
    EXPECT_EQ(Painted(), 0U);
    EXPECT_TRUE(Lines_Of(stage.Take_Messages()).size() == 1) << "Draw alone is traced";
}

TEST_F(Brush_Panel, keys_and_wheel_do_nothing) {
    Bring_Up();
    Point_At_Button(1, 4);
    for (int key : {13, 27, 97, 0x821, 0x825, 0x827, -1}) {
        EXPECT_EQ(panel.Keyboard(key), 0);
    }
    for (int notches : {-3, 0, 1, 100}) {
        EXPECT_EQ(panel.Scroll(notches), 1);
    }
    EXPECT_EQ(Painted(), 0U);
    EXPECT_TRUE(stage.Take_Messages().empty());
    EXPECT_EQ(Variable_Look_Ups(nullptr), 0U);
}

TEST_F(Brush_Panel, drawing_sets_the_mark_of_the_current_brush_and_clears_no_other) {
    Bring_Up();
    const auto marked = [this](int i) {
        return stage.Read()[stage.Index(host_x + BRUSH_SPACE + i * Column_Width(4), host_y + BRUSH_SPACE)] ==
               Grounds()[3];
    };
    Variable_Set("$BRUSH_CUR", 2);
    panel.Draw();
    EXPECT_TRUE(marked(2));
    Variable_Set("$BRUSH_CUR", 3);
    panel.Draw();
    EXPECT_TRUE(marked(2));
    EXPECT_TRUE(marked(3));
    EXPECT_FALSE(marked(0));
    EXPECT_EQ(panel.Read(), NO_BRUSH) << "drawing announces nothing";
    EXPECT_EQ(stage.Take_Messages(), std::vector<Panel_Message>(2, {16, "in Tool_Brush::Draw()"}));
    Widget_Counters_Reset();
    panel.Draw();
    EXPECT_EQ(Widget_Counters_Get().draws, 5U) << "frame and four buttons";
}

// ---------------- notifications

TEST_F(Brush_Panel, of_all_64_flags_four_are_read) {
    constexpr int BIT_ALL = 60;
    constexpr int BIT_BRUSH = 23;
    constexpr int BIT_TAG_CUR = 22;
    constexpr int BIT_TAG_TABLE = 38;
    for (int bit = 0; bit < 64; bit++) {
        Variable_Set("$BRUSH_CUR", NO_BRUSH);
        Variable_Set("$TAG_CUR", 1);
        Brush_Host::Sizes(sizes);
        Bring_Up();
        Brush_Host::Tag_Color(2, 0x10FF, 0xE0FF, bit << 8);
        Variable_Set("$BRUSH_CUR", 1);
        Variable_Set("$TAG_CUR", 2);
        Brush_Host::Sizes({2, 3, 9, 21});
        Quiet();
        panel.Update(1ULL << bit);
        const bool brush = bit == BIT_ALL || bit == BIT_BRUSH;
        const bool color = brush || bit == BIT_TAG_CUR || bit == BIT_TAG_TABLE;
        EXPECT_EQ(panel.Read(), brush ? 1 : NO_BRUSH) << bit;
        const auto messages = Lines_Of(stage.Take_Messages());
        ASSERT_FALSE(messages.empty());
        EXPECT_EQ(messages[0], "16 in Tool_Brush::Update()");
        EXPECT_EQ(std::count(messages.begin(), messages.end(), "17 in Tool_Brush::Init()"), brush ? 1 : 0) << bit;
        EXPECT_EQ(std::count(messages.begin(), messages.end(), "17 in Tool_Brush::Set_Color()"), bit == BIT_ALL ? 2
                                                                                                 : color        ? 1
                                                                                                                : 0)
            << bit;
        if (!color) {
            EXPECT_EQ(messages.size(), 1U) << bit;
            EXPECT_EQ(Painted(), 0U) << bit;
            EXPECT_EQ(Variable_Look_Ups(nullptr), 0U) << bit;
        }
    }
    Quiet();
    panel.Update(0);
    EXPECT_EQ(Painted(), 0U);
}

TEST_F(Brush_Panel, the_announced_brush_moves_the_mark_by_two_adjustments) {
    Bring_Up();
    Variable_Set("$BRUSH_CUR", 3);
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(panel.Read(), 3);
    EXPECT_EQ(Widget_Counters_Get().adjusts, 1U) << "the former index had no button";
    Variable_Set("$BRUSH_CUR", 0);
    panel.Update(UPDATE_ALL);
    EXPECT_EQ(panel.Read(), 0);
    EXPECT_EQ(Widget_Counters_Get().adjusts, 3U);
    Quiet();
    panel.Update(UPDATE_BRUSH);
    EXPECT_EQ(Painted(), 0U);
}

TEST_F(Brush_Panel, an_announced_index_without_a_button_is_kept_and_marks_nothing) {
    for (int index : {4, 7, 8, 9, 300, 65535}) {
        Bring_Up();
        Variable_Set("$BRUSH_CUR", index);
        panel.Update(UPDATE_BRUSH);
        EXPECT_EQ(panel.Read(), index);
        panel.Draw();
        Expect_Discs(sizes, COLOR_1, "index " + std::to_string(index));
    }
}

TEST_F(Brush_Panel, only_a_change_of_tag_is_remembered_as_one) {
    Lay_Out();
    panel.Update(UPDATE_BRUSH);
    const auto recoloured = [this](unsigned __int64 flags) {
        Quiet();
        panel.Update(flags);
        const auto messages = stage.Take_Messages();
        return std::count(messages.begin(), messages.end(), Panel_Message{17, "in Tool_Brush::Set_Color()"});
    };
    EXPECT_EQ(recoloured(UPDATE_TAG_CUR), 1) << "laying out in that colour does not count";
    EXPECT_EQ(recoloured(UPDATE_TAG_CUR), 0);
    Variable_Set("$TAG_CUR", 2);
    EXPECT_EQ(recoloured(UPDATE_ALL), 1) << "everything recolours without remembering";
    EXPECT_EQ(recoloured(UPDATE_TAG_TABLE), 1);
    EXPECT_EQ(recoloured(UPDATE_TAG_CUR), 1);
    EXPECT_EQ(recoloured(UPDATE_TAG_CUR), 0);
    EXPECT_EQ(recoloured(UPDATE_TAG_CUR | UPDATE_TAG_TABLE), 1);
    Variable_Set("$TAG_CUR", 1);
    EXPECT_EQ(recoloured(UPDATE_TAG_CUR | UPDATE_ALL), 2);
}

TEST_F(Brush_Panel, a_new_colour_shows_at_once_and_keeps_the_outline) {
    Bring_Up();
    panel.Draw();
    Variable_Set("$TAG_CUR", 2);
    panel.Update(UPDATE_TAG_CUR);
    Expect_Discs(sizes, COLOR_2, "another TAG");
    Brush_Host::Tag_Color(2, 0x77FF, 0x0000, 0xFFFF);
    panel.Update(UPDATE_TAG_TABLE);
    Expect_Discs(sizes, 0x7700FF, "another colour");
    Variable_Set("$TAG_CUR", 0);
    panel.Update(UPDATE_TAG_CUR);
    Expect_Discs(sizes, GREY, "background");
    const auto updated = stage.Read();
    stage.Wipe();
    Lay_Out();
    panel.Draw();
    EXPECT_EQ(stage.Read(), updated);
}

TEST_F(Brush_Panel, recolouring_takes_a_button_out_of_its_hover_look) {
    Bring_Up();
    panel.Draw();
    Point_At_Button(1, 4);
    panel.Motion(0);
    Variable_Set("$TAG_CUR", 2);
    panel.Update(UPDATE_TAG_CUR);
    EXPECT_EQ(Wrong_Pixels(1, sizes, COLOR_2, Grounds()[0]), 0);
}

// ---------------- copies and storms

TEST_F(Brush_Panel, a_copy_shares_the_buttons_and_outlives_its_original) {
    Bring_Up();
    auto original = std::make_unique<Tool_Brush>(panel);
    auto copy = std::make_unique<Tool_Brush>(*original);
    Point_At_Button(1, 4);
    EXPECT_EQ(original->Click(BRUSH_PRESS), 1);
    EXPECT_EQ(original->Read(), 1);
    EXPECT_EQ(copy->Read(), NO_BRUSH);
    original.reset();
    stage.Wipe();
    copy->Draw();
    EXPECT_EQ(stage.Read()[stage.Index(host_x + BRUSH_SPACE + Column_Width(4), host_y + BRUSH_SPACE)], Grounds()[3])
        << "the mark that the original set";
    Tool_Brush other;
    other = *copy;
    copy.reset();
    const Tool_Brush& itself = other;
    other = itself;
    EXPECT_EQ(other.Click(BRUSH_PRESS), 1);
    Quiet();
    other.Update(UPDATE_BRUSH);
    const auto messages = stage.Take_Messages();
    EXPECT_EQ(std::count(messages.begin(), messages.end(), Panel_Message{17, "in Tool_Brush::Init()"}), 0)
        << "the copy remembers the sizes";
}

TEST_F(Brush_Panel, a_storm_of_events_in_any_order_is_survived) {
    std::mt19937 random(20);
    const auto any = [&random](int nb) { return static_cast<int>(random() % static_cast<unsigned int>(nb)); };
    Brush_Masks storm(12, 9);
    Lay_Out();
    for (int step = 0; step < 6000; step++) {
        stage.Point_At(any(stage.width), any(stage.height));
        switch (any(12)) {
            case 0: {
                Boxs box = stage.Host_Box(any(40) - 20, any(40) - 20, any(260) - 20, any(90) - 20);
                panel.Resize(&box);
                break;
            }
            case 1:
                panel.Draw();
                break;
            case 2:
            case 3:
                panel.Click(any(2) == 0 ? BRUSH_PRESS : static_cast<int>(random()));
                break;
            case 4:
                panel.Motion(any(2));
                break;
            case 5:
                panel.Update(1ULL << any(64));
                break;
            case 6:
                panel.Update(~0ULL);
                break;
            case 7:
                panel.Leave();
                break;
            case 8: {
                std::vector<int> size(static_cast<std::size_t>(any(13)));
                std::generate(size.begin(), size.end(), [&any] { return any(2) == 0 ? any(30) : any(65536); });
                Brush_Host::Sizes(size);
                break;
            }
            case 9:
                Variable_Set("$BRUSH_CUR", any(12));
                Variable_Set("$TAG_CUR", any(3));
                break;
            case 10: {
                const Tool_Brush copy(panel);
                Tool_Brush other;
                other = copy;
                break;
            }
            default:
                panel.Height();
                panel.Scroll(any(3));
                panel.Keyboard(any(0x900));
        }
    }
    for (int i = 0; i < 12; i++) {
        for (const unsigned char* one : storm.row[static_cast<std::size_t>(i)]) {
            ASSERT_EQ(one[-1], Brush_Masks::GUARD);
            ASSERT_EQ(one[storm.side], Brush_Masks::GUARD);
        }
    }
}
