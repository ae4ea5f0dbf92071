// The widgets that a node of the class tree editor is made of: where they stand and what they say.
#include <windows.h>

#include <string>
#include <utility>
#include <vector>

#include "tests/database/edit_scene.h"
#include "tests/database/widget_calls.h"

namespace {

constexpr int WIDTH = 980;
constexpr int HEIGHT = 420;

class Edit_Label_Test : public Edit_Scene<Scene_2D> {
  protected:
    Edit_Label_Test() : Edit_Scene(WIDTH, HEIGHT) {}
};

TEST_F(Edit_Label_Test, a_node_says_title_and_name_behind_two_blanks) {
    Make_Study();
    Object_Of("b")->Name_Set(nullptr);
    Widget_Calls calls;
    Draw();
    const std::vector<Widget_Call> boxes = calls.Of("Boxs::Draw");
    const std::vector<Widget_Call> labels = calls.Of("Labels::Draw");
    const char* const titles[] = {"  root", "  a", "  b", "  c", "  f", "  g"};
    const char* const names[] = {"  Nroot", "  Na", "  ", "  Nc", "  Nf", "  Ng"};
    ASSERT_EQ(boxes.size(), std::size(titles));
    ASSERT_EQ(labels.size(), std::size(names));
    for (std::size_t i = 0; i < boxes.size(); ++i) {
        EXPECT_STREQ(boxes[i].state.name, titles[i]);
        EXPECT_STREQ(labels[i].state.name, names[i]);
        EXPECT_EQ(labels[i].state.color.get(), static_cast<unsigned long>(RGB(100, 100, 0)));
    }
}

TEST_F(Edit_Label_Test, a_node_stands_in_its_cell_and_its_name_inside_it_with_the_boxs_margin) {
    Make_Study();
    struct Case {
        unsigned short border;
        int margin;
        int left;
    };
    for (const Case& each : {Case{0, 2, 6}, {1, 2, 6}, {2, 2, 6}, {3, 3, 6}, {4, 4, 8}, {7, 7, 14}}) {
        box.border = each.border;
        Widget_Calls calls;
        Draw();
        const std::vector<Widget_Call> boxes = calls.Of("Boxs::Init");
        const std::vector<Widget_Call> labels = calls.Of("Labels::Init");
        ASSERT_EQ(boxes.size(), 6U);
        ASSERT_EQ(labels.size(), 6U);
        const int level[] = {0, 1, 2, 2, 2, 1};
        const int row[] = {0, 0, 0, 1, 3, 4};
        for (std::size_t i = 0; i < boxes.size(); ++i) {
            const Tools& node = boxes[i].state;
            EXPECT_EQ(node.style, STYLE_FRAMED_BOX);
            EXPECT_EQ(node.x, BOX_X + SPACE_DIM + 330 * level[i]);
            EXPECT_EQ(node.y, box.y + box.height - 50 - 50 * row[i]);
            EXPECT_EQ(node.width, 250);
            EXPECT_EQ(node.height, 40);
            EXPECT_EQ(node.border, each.border);
            EXPECT_EQ(node.color.get(), box.color.get());
            const Tools& name = labels[i].state;
            EXPECT_EQ(name.x, node.x + each.left) << "border " << each.border;
            EXPECT_EQ(name.y, node.y + each.margin) << "border " << each.border;
            EXPECT_EQ(name.x + name.width, node.x + 250 - each.margin) << "border " << each.border;
            EXPECT_EQ(name.border, each.border);
            EXPECT_GT(name.height, 0);
            EXPECT_LE(name.y + name.height, node.y + 20) << "the title stands above";
        }
    }
}

TEST_F(Edit_Label_Test, titles_are_bold_and_names_are_not) {
    Make_Study();
    Widget_Calls calls;
    Draw();
    const auto weight = [](const Widget_Call& call) {
        LOGFONTA font = {};
        EXPECT_NE(::GetObjectA(call.state.font, sizeof font, &font), 0);
        return font.lfWeight;
    };
    EXPECT_GE(weight(calls.Of("Boxs::Draw").at(1)), FW_BOLD);
    EXPECT_LT(weight(calls.Of("Labels::Draw").at(1)), FW_BOLD);
}

TEST_F(Edit_Label_Test, a_press_on_a_toggle_clears_and_draws_both_sliders_behind_the_diagram) {
    Make_Study();
    Draw();
    Widget_Calls calls;
    Press_On("a", Edit_Zone::Toggle);
    ASSERT_GE(calls.calls.size(), 4U);
    const std::pair<const char*, const Tools*> last[] = {{"Tools::Clear", &horizontal},
                                                         {"Sliders::Draw", &horizontal},
                                                         {"Tools::Clear", &vertical},
                                                         {"Sliders::Draw", &vertical}};
    for (std::size_t i = 0; i < 4; ++i) {
        const Widget_Call& call = calls.calls[calls.calls.size() - 4 + i];
        EXPECT_EQ(call.operation, last[i].first) << i;
        EXPECT_EQ(call.widget, last[i].second) << i;
    }
}

TEST_F(Edit_Label_Test, a_second_press_during_a_drag_leaves_nothing_of_its_lines) {
    Make_Study();
    const auto drag_to_the_root = [this] {
        Point_At_Tree(100, 200);
        Motion(LEFT_DRAG);
        return Pixels();
    };
    Draw();
    Press_On("a", Edit_Zone::Parent_Handle);
    const Window_Picture expected = drag_to_the_root();
    db_drag.active = false;
    Draw();
    Press_On("a", Edit_Zone::Parent_Handle);
    Point_At_Tree(620, 60);  // across the node itself
    Motion(LEFT_DRAG);
    Press_On("a", Edit_Zone::Parent_Handle, RIGHT_PRESS);
    EXPECT_EQ(drag_to_the_root(), expected);
}

}  // namespace
