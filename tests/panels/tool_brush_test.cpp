#include "tests/panels/brush_fixture.h"

#include <algorithm>
#include <memory>
#include <random>
#include <string>
#include <vector>

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
