#include "panels/label_grid.h"

#include <gtest/gtest.h>

#include <string>

#include "kits/common/text_conversion.h"
#include "tests/panels/label_scene.h"

namespace {

class Grid : public Label_Fixture {
  protected:
    void Lay_Out(Label_Grid& grid, int count) {
        const Boxs box = Place();
        grid.Resize(box, count, [](Buttons& button, int) { button.style = STYLE_GRID_BUTTON; });
        Take_Counters();
    }
    static int Visible_Nb(Label_Grid& grid, int capacity) {
        int nb = 0;
        for (int i = 0; i < capacity; i++) {
            nb += grid.Is_Visible(grid.Button(i)) ? 1 : 0;
        }
        return nb;
    }
};

}  // namespace

TEST_F(Grid, a_new_grid_has_no_visible_button_and_no_edit) {
    Label_Widgets widgets = Label_Grid::Widgets_Make(12);
    Label_Grid grid(widgets);
    EXPECT_EQ(grid.Fitting(5), 5);
    EXPECT_EQ(grid.Fitting(13), 12);
    EXPECT_EQ(grid.Button_Nb(65535), 12);
    EXPECT_EQ(Visible_Nb(grid, 12), 0);
    EXPECT_FALSE(grid.Is_Editing());
    EXPECT_FALSE(grid.Editor_Has_Keyboard());
}

TEST_F(Grid, every_layout_takes_the_buttons_without_a_place_out_of_sight) {
    Label_Widgets widgets = Label_Grid::Widgets_Make(12);
    Label_Grid grid(widgets);
    Lay_Out(grid, 12);
    EXPECT_EQ(Visible_Nb(grid, 12), 12);
    for (const int count : {11, 8, 7, 4, 3, 0}) {
        Lay_Out(grid, 12);
        grid.Relayout(count);
        EXPECT_EQ(Visible_Nb(grid, 12), count / 4 * 4) << "relayout " << count;
        Lay_Out(grid, count);
        EXPECT_EQ(Visible_Nb(grid, 12), count / 4 * 4) << "resize " << count;
        Lay_Out(grid, 12);
        grid.Scroll_Apply(count);
        EXPECT_EQ(Visible_Nb(grid, 12), count / 4 * 4) << "scroll " << count;
    }
}

TEST_F(Grid, buttons_at_both_ends_of_the_closed_range_are_visible) {
    Label_Widgets widgets = Label_Grid::Widgets_Make(4);
    Label_Grid grid(widgets);
    Lay_Out(grid, 4);
    const Label_Model model(Place(), 4);
    const int first = model.top - 1;
    const int last = model.top + 1 + model.height - Label_Model::ROW;
    for (const int y : {first, last}) {
        grid.Button(0).y = static_cast<short>(y);
        EXPECT_TRUE(grid.Is_Visible(grid.Button(0))) << y;
    }
    for (const int y : {first - 1, last + 1, static_cast<int>(LABEL_NOWHERE)}) {
        grid.Button(0).y = static_cast<short>(y);
        EXPECT_FALSE(grid.Is_Visible(grid.Button(0))) << y;
    }
}

TEST_F(Grid, a_change_paints_every_visible_button_in_its_way_and_no_other) {
    Label_Widgets widgets = Label_Grid::Widgets_Make(48);
    Label_Grid grid(widgets);
    Lay_Out(grid, 48);
    const auto visible = static_cast<unsigned int>(Visible_Nb(grid, 48));
    ASSERT_EQ(visible, 20U);
    const struct {
        unsigned int mask, draws, adjusts, clears, inits;
    } cases[] = {{0, 0, 0, 0, 0},
                 {1, 0, visible, 0, 0},
                 {2, visible, 0, 0, 0},
                 {3, visible, 0, 0, 0},
                 {6, visible, 0, visible, 0},
                 {10, visible, 0, 0, visible},
                 {16, 1, 0, 0, 0},
                 {17, 1, 0, 0, 0},
                 {31, visible + 1, 0, visible, visible}};
    for (const auto& one : cases) {
        Label_Change change;
        change.Add(one.mask);
        Take_Counters();
        grid.Paint(48, change);
        const Widget_Counters painted = Take_Counters();
        EXPECT_EQ(painted.draws, one.draws) << one.mask;
        EXPECT_EQ(painted.adjusts, one.adjusts) << one.mask;
        EXPECT_EQ(painted.clears, one.clears) << one.mask;
        EXPECT_EQ(painted.inits, one.inits) << one.mask;
    }
}

TEST_F(Grid, a_cleared_background_has_the_panel_colour) {
    Label_Widgets widgets = Label_Grid::Widgets_Make(8);
    Label_Grid grid(widgets);
    Lay_Out(grid, 8);
    grid.Button(5).Set_Color(250, 10, 10);
    grid.Button(5).style |= STYLE_EDITED;  // not drawn, so the background stays to be seen
    Label_Change change;
    change.Add(Label_Change::REDRAW | Label_Change::BACKGROUND);
    grid.Paint(8, change);
    EXPECT_EQ(Pixel(grid.Button(5).x + 9, grid.Button(5).y + 9), 0x5A646EU);
}

TEST_F(Grid, the_editor_takes_the_place_and_the_caption_of_the_button) {
    Label_Widgets widgets = Label_Grid::Widgets_Make(8);
    Label_Grid grid(widgets);
    Lay_Out(grid, 8);
    grid.Button(5).Set_Name("five");
    grid.Edit_Open(5, 8, nullptr);
    EXPECT_TRUE(grid.Is_Editing());
    EXPECT_TRUE(grid.Editor_Has_Keyboard());
    EXPECT_EQ(grid.Edited(), 5);
    EXPECT_EQ(grid.Button(5).style & STYLE_EDITED, STYLE_EDITED);
    EXPECT_EQ(grid.Edit_Key(KEY_END), nullptr);
    EXPECT_EQ(grid.Edit_Key('x'), nullptr);
    char* text = grid.Edit_Key(KEY_ENTER);
    ASSERT_NE(text, nullptr);
    EXPECT_STREQ(text, "fivex");
    EXPECT_FALSE(grid.Is_Editing());
    grid.Edit_Close(8, text);
    EXPECT_STREQ(grid.Button(5).name, "fivex");
    EXPECT_EQ(grid.Button(5).style & STYLE_EDITED, 0U);
}

TEST_F(Grid, closing_keeps_the_caption_when_there_is_no_text_and_cuts_a_long_one_in_place) {
    Label_Widgets widgets = Label_Grid::Widgets_Make(8);
    Label_Grid grid(widgets);
    Lay_Out(grid, 8);
    grid.Button(5).Set_Name("five");
    grid.Edit_Open(5, 8, nullptr);
    grid.Edit_Close(8, nullptr);
    EXPECT_STREQ(grid.Button(5).name, "five");
    std::string text(50, 'y');
    grid.Edit_Close(8, text.data());
    EXPECT_STREQ(text.c_str(), std::string(39, 'y').c_str());
    EXPECT_STREQ(grid.Button(5).name, std::string(39, 'y').c_str());
}

TEST_F(Grid, a_text_is_cut_where_the_caption_is_cut_between_characters) {
    Label_Widgets widgets = Label_Grid::Widgets_Make(8);
    Label_Grid grid(widgets);
    Lay_Out(grid, 8);
    // Of two bytes, so that byte 39 falls inside the twentieth.
    const auto expect_cut_between = [&grid](const char* character) {
        std::string text;
        for (int i = 0; i < 25; i++) {
            text += character;
        }
        const std::string whole = text.substr(0, 38);
        grid.Edit_Open(5, 8, nullptr);
        grid.Edit_Close(8, text.data());
        EXPECT_EQ(grid.Button(5).name, whole);
        EXPECT_EQ(text.c_str(), whole);
        grid.Edit_Cancel(8, false);
    };
#if defined(_WIN32)
    constexpr unsigned int utf8 = 65001;
    constexpr unsigned int japanese = 932;
    Code_Page_Set(japanese);
    expect_cut_between("\x83\x5C");
    Code_Page_Set(utf8);
    expect_cut_between("\xC3\xA4");
    Code_Page_Set(0);
#else
    expect_cut_between("\xC3\xA4");
#endif
}

TEST_F(Grid, cancelling_keeps_greying_and_touches_no_button_beyond_the_table) {
    Label_Widgets widgets = Label_Grid::Widgets_Make(8);
    Label_Grid grid(widgets);
    Lay_Out(grid, 8);
    grid.Edit_Open(5, 8, nullptr);
    grid.Button(5).style |= STYLE_INACTIVE;
    grid.Edit_Cancel(8, true);
    EXPECT_EQ(grid.Button(5).style & STYLE_INACTIVE, STYLE_GREYED);
    grid.Button(5).style = STYLE_GRID_BUTTON;
    grid.Edit_Open(5, 8, nullptr);
    grid.Edit_Cancel(4, true);
    EXPECT_FALSE(grid.Is_Editing());
    EXPECT_EQ(grid.Button(5).style, STYLE_GRID_BUTTON | STYLE_EDITED);
}

TEST_F(Grid, a_button_that_comes_into_sight_is_hidden_by_an_open_edit_alone) {
    Label_Widgets widgets = Label_Grid::Widgets_Make(8);
    Label_Grid grid(widgets);
    Lay_Out(grid, 8);
    grid.Edit_Open(7, 8, nullptr);
    grid.Button(6).style |= STYLE_INACTIVE;
    grid.Button(0).style |= STYLE_EDITED;  // as a label that could not be stored leaves it
    grid.Relayout(4);
    grid.Relayout(8);
    EXPECT_EQ(grid.Button(7).style & STYLE_INACTIVE, STYLE_EDITED) << "its editor is open";
    EXPECT_EQ(grid.Button(6).style & STYLE_INACTIVE, STYLE_INACTIVE) << "greyed";
    EXPECT_EQ(grid.Button(0).style & STYLE_INACTIVE, STYLE_EDITED) << "was in its place all the time";
    grid.Relayout(4);
    grid.Edit_Cancel(4, false);
    grid.Relayout(8);
    EXPECT_EQ(grid.Button(7).style & STYLE_INACTIVE, 0U);
}

TEST_F(Grid, a_copy_shares_the_buttons_and_has_its_own_editor_and_slider) {
    Label_Widgets widgets = Label_Grid::Widgets_Make(48);
    Label_Grid grid(widgets);
    Lay_Out(grid, 48);
    Label_Widgets copied(widgets);
    Label_Grid copy(copied);
    EXPECT_EQ(&copy.Button(3), &grid.Button(3));
    copy.Edit_Open(3, 48, nullptr);
    EXPECT_FALSE(grid.Is_Editing());
    copy.Edit_Cancel(48, false);
    const short y = grid.Button(3).y;
    copy.Scroll(-1);
    grid.Scroll_Apply(48);
    EXPECT_EQ(grid.Button(3).y, y) << "its own value";
}
