#include "database/tool_db_edit.h"

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "tests/database/edit_calls.h"

namespace {

// ---------------- traces

TEST_F(Tool_DB_Edit_Test, every_event_operation_traces_its_name) {
    Make_Study();
    Draw();
    messages.Take();
    Point_At_Tree(320, 300);
    Locate();
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{{TRACE_LEVEL, "in DB_Edit_Locate()"}}));
    Click(LEFT_PRESS);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{{TRACE_LEVEL, "in DB_Edit_Click_DB(up_down=0x00000012)"},
                                                           {TRACE_LEVEL, "in DB_Edit_Locate()"}}));
    Key(KEY_DELETE);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{{TRACE_LEVEL, "in DB_Edit_Key_DB(key=0x0000082e)"},
                                                           {TRACE_LEVEL, "in DB_Edit_Locate()"}}));
    Motion(HOVER);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{{TRACE_LEVEL, "in DB_Edit_Motion_DB(up_down=0x00000000)"},
                                                           {TRACE_LEVEL, "in DB_Edit_Locate()"}}));
}

TEST_F(Tool_DB_Edit_Test, without_a_device_context_the_operation_is_named_and_nothing_changes) {
    Make_Study();
    Draw();
    Press_On("c", Edit_Zone::Parent_Handle);
    const DB_Tree_Point before = db_drag.current;
    box.window = nullptr;
    messages.Take();
    const auto failure = [](const char* label) {
        return Panel_Message{TRACE_LEVEL, "Y_setup(" + std::string(label) + ") GetDC failed"};
    };
    EXPECT_EQ(Draw(), 0);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{failure("tool_db_edit::DB_Edit_Draw")}));
    EXPECT_EQ(list_pt[Find("c")].row, 1) << "the rows are still those of the last drawing";
    EXPECT_EQ(Locate(), 0);
    EXPECT_EQ(messages.Take().back(), failure("tool_db_edit::DB_Edit_Locate"));
    EXPECT_EQ(Click(LEFT_PRESS), 1);
    EXPECT_EQ(Click(RELEASE), 1);
    EXPECT_TRUE(db_drag.active);
    EXPECT_EQ(Key(KEY_DELETE), 0);
    messages.Take();
    EXPECT_EQ(Motion(LEFT_DRAG), 0);
    EXPECT_EQ(messages.Take()[1], failure("tool_db_edit::DB_Edit_Motion"));
    EXPECT_EQ(db_drag.current.x, before.x);
    EXPECT_EQ(db_drag.current.y, before.y);
    EXPECT_EQ(DB_Edit_Drag(&box, nb, list_pt, &horizontal, &vertical), 0);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{failure("tool_db_edit::DB_Edit_Drag")}));
    DB_Draw_Circle(&box, 50, 50, 6, 0, 0);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{failure("tool_db_edit::DB_Draw_Circle")}));
    DB_Draw_Expand(&box, list_pt, &horizontal, &vertical, 0, 1);
    EXPECT_EQ(messages.Take(), (std::vector<Panel_Message>{failure("tool_db_edit::DB_Draw_Expand")}));
    EXPECT_EQ(Text(), "root(a(b,c(d,e),f),g)");
}

// ---------------- zones

TEST_F(Tool_DB_Edit_Test, the_pointer_finds_every_zone_of_a_scrolled_diagram) {
    Make_Study();
    messages.Listen(false);
    box.height = 180;
    Draw();
    vertical.value = 37.0F;
    horizontal.value = 61.0F;
    Draw();
    ASSERT_EQ(vertical.value, 37.0F);
    std::map<int, int> seen;
    for (int y = box.y; y < box.y + box.height; y += 2) {
        for (int x = box.x; x < box.x + box.width; x += 2) {
            Point_At(x, y);
            const Edit_Hit hit = Edit_Hit_At(nb, list_pt, {x - Left(), Top() - y});
            const int code = Locate();
            ASSERT_EQ(code, hit.code) << x << ", " << y;
            seen[code]++;
        }
    }
    EXPECT_GT(seen.size(), 12U);
    EXPECT_GT(seen[Edit_Code(Find("a"), Edit_Zone::Toggle)], 8);
}

TEST_F(Tool_DB_Edit_Test, a_press_on_a_toggle_hides_and_shows_children_and_draws_the_sliders) {
    Make_Study();
    Draw();
    const int a = Find("a");
    Take_Counters();
    EXPECT_EQ(Press_On("a", Edit_Zone::Toggle), 1);
    EXPECT_EQ(list_pt[a].flag & DB_FLAG_EXPANDED, 0);
    EXPECT_EQ(list_pt[Find("b")].row, 0) << "the first child stays";
    EXPECT_EQ(list_pt[Find("c")].row, DB_ROW_NONE);
    EXPECT_EQ(list_pt[Find("g")].row, 1);
    const Widget_Counters counters = Take_Counters();
    EXPECT_EQ(counters.clears, 2U);
    EXPECT_FALSE(db_drag.active);
    EXPECT_EQ(Press_On("a", Edit_Zone::Toggle), 1);
    EXPECT_NE(list_pt[a].flag & DB_FLAG_EXPANDED, 0);
    EXPECT_EQ(list_pt[Find("g")].row, 4);
}

TEST_F(Tool_DB_Edit_Test, other_presses_on_a_body_do_nothing) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    for (const int code : {LEFT_PRESS, MOUSE_PRESS | MOUSE_MIDDLE, LEFT_PRESS | MOUSE_RIGHT}) {
        EXPECT_EQ(Press_On("b", Edit_Zone::Body, code), 1);
        EXPECT_FALSE(db_drag.active);
    }
    EXPECT_EQ(typed_name.asked, "never");
    EXPECT_EQ(calls.Take(), Calls{});
}

// ---------------- dimensions

template <class Dimension>
class Every_Dimension : public Edit_Scene<Dimension> {
  protected:
    Every_Dimension() : Edit_Scene<Dimension>(EDIT_WIDTH, EDIT_HEIGHT) { typed_name = {}; }
};
using Dimensions = testing::Types<Scene_1D, Scene_2D, Scene_3D>;
TYPED_TEST_SUITE(Every_Dimension, Dimensions);

TYPED_TEST(Every_Dimension, tells_the_host_by_its_own_flags) {
    this->Make_Study();
    ASSERT_EQ(this->Draw(), 1);
    Tree_Calls calls;
    calls.Name_All(this->objects);
    const std::string update = "0x40" + std::string(TypeParam::DIMENSION == 1   ? "1"
                                                    : TypeParam::DIMENSION == 2 ? "2"
                                                                                : "4");
    const std::string redraw = TypeParam::DIMENSION == 3 ? "0x3fff0000" : "0x3fff";
    this->Press_On("d", Edit_Zone::Parent_Handle);
    EXPECT_EQ(this->Release_On("a", Edit_Zone::Children_Handle), 2);
    EXPECT_EQ(calls.Take(), Together({{"remove(c, 0)", "insert(a, 3, d)"}, Told("a", update, redraw)}));
    this->Build();
    calls.Take();
    EXPECT_EQ(this->Delete_On("g"), 1);
    EXPECT_EQ(calls.Take(), Together({{"on(root, 0x50, 8, 268435456)", "remove(root, 1)"},
                                      {"update(" + update + ", -, -, -)", "redraw(" + redraw + ", -, -, -)"}}));
    this->Build();
    calls.Take();
    typed_name.typed = "other";
    typed_name.answer = 1;
    this->Press_On("b", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(calls.Take(), Together({{"name(b, other)"}, Told("b", update, redraw)}));
    EXPECT_EQ(this->Text(), "root(a(b,c(e),f,d))");
}

TEST_F(Tool_DB_Edit_Test, another_dimension_changes_and_shows_nothing) {
    Make_Study();
    Draw();
    mode = DB_MODE_EDIT;
    Tree_Calls calls;
    Take_Counters();
    Press_On("b", Edit_Zone::Parent_Handle);
    EXPECT_FALSE(db_drag.active);
    EXPECT_EQ(Release_On("c", Edit_Zone::Children_Handle), 1);
    Press_On("a", Edit_Zone::Toggle);
    Press_On("b", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(Delete_On("c"), 0);
    EXPECT_EQ(Motion(HOVER), 0);
    EXPECT_EQ(Draw(), 0);
    EXPECT_EQ(Take_Counters().draws, 0U);
    EXPECT_EQ(calls.Take(), Calls{});
    EXPECT_EQ(typed_name.asked, "never");
}

TEST_F(Tool_DB_Edit_Test, records_without_an_object_or_without_an_array_are_harmless) {
    Make_Study();
    Draw();
    Tree_Calls calls;
    list_pt[Find("c")].object = nullptr;
    Draw();
    Press_On("c", Edit_Zone::Parent_Handle);
    EXPECT_EQ(Release_On("a", Edit_Zone::Children_Handle), 2);
    Press_On("b", Edit_Zone::Parent_Handle);
    EXPECT_EQ(Release_On("c", Edit_Zone::Children_Handle), 2);
    EXPECT_EQ(Delete_On("c"), 0);
    Press_On("c", Edit_Zone::Body, RIGHT_PRESS);
    EXPECT_EQ(calls.Take(), Calls{});
    DB_List* const kept = std::exchange(list_pt, nullptr);
    EXPECT_EQ(Draw(), 0);
    EXPECT_EQ(Locate(), 0);
    EXPECT_EQ(Click(LEFT_PRESS), 1);
    EXPECT_EQ(Click(RELEASE), 1);
    EXPECT_EQ(Key(KEY_DELETE), 0);
    EXPECT_EQ(Motion(LEFT_DRAG), 0);
    list_pt = kept;
}

}  // namespace
