#include "database/edit_diagram.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>
#include <set>
#include <string>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/database/tree_scene.h"

namespace {

/** The rows as a person would tell them: recursively, from the levels and the expanded bits alone. */
class Plain_Diagram {
  public:
    explicit Plain_Diagram(Tree_Scene& of) : scene(of), row(static_cast<std::size_t>(of.Nb()), -1) {
        if (scene.Nb() > 0) {
            Place(0, 0);
        }
    }
    int Row(int record) const { return row[static_cast<std::size_t>(record)]; }
    int Row_Nb() const { return next_row; }
    int Level_Nb() const { return level_nb; }
    std::vector<int> Children(int record) const {
        std::vector<int> found;
        for (int i = record + 1; i < scene.Nb() && scene[i].level > scene[record].level; ++i) {
            if (scene[i].level == scene[record].level + 1) {
                found.push_back(i);
            }
        }
        return found;
    }

  private:
    /** Gives a node its row, and its subtree the rows from there on. */
    void Place(int record, int at) {
        row[static_cast<std::size_t>(record)] = at;
        next_row = std::max(next_row, at + 1);
        level_nb = std::max(level_nb, scene[record].level + 1);
        const std::vector<int> children = Children(record);
        for (std::size_t i = 0; i < children.size(); ++i) {
            if (i == 0) {
                Place(children[i], at);
            } else if ((scene[record].flag & DB_FLAG_EXPANDED) != 0) {
                Place(children[i], next_row);
            }
        }
    }

    Tree_Scene& scene;
    std::vector<int> row;
    int next_row = 0;
    int level_nb = 0;
};

/** @param with_only_child the last node gets one child */
void Make_Study(Tree_Scene& scene, bool with_only_child = false) {
    scene.Add(0);  // 0
    scene.Add(1);  // 1  row 0
    scene.Add(2);  // 2  row 0
    scene.Add(2);  // 3  row 1
    scene.Add(3);  // 4  row 1
    scene.Add(3);  // 5  row 2
    scene.Add(2);  // 6  row 3
    scene.Add(1);  // 7  row 4
    if (with_only_child) {
        scene.Add(2);
    }
    scene.Finish();
}

std::vector<int> Rows_Of(Tree_Scene& scene) {
    std::vector<int> rows;
    for (int i = 0; i < scene.Nb(); ++i) {
        rows.push_back(scene[i].row);
    }
    return rows;
}

constexpr int NONE = DB_ROW_NONE;

TEST(Edit_Rows, a_first_child_stands_right_of_its_parent_and_every_other_node_begins_a_row) {
    Tree_Scene scene;
    Make_Study(scene);
    const Edit_Extent extent = Edit_Rows_Assign(scene.Nb(), scene.Pt());
    EXPECT_EQ(Rows_Of(scene), (std::vector<int>{0, 0, 0, 1, 1, 2, 3, 4}));
    EXPECT_EQ(extent.row_nb, 5);
    EXPECT_EQ(extent.level_nb, 4);
}

TEST(Edit_Rows, a_collapsed_node_still_shows_its_first_child_and_what_hangs_on_it) {
    Tree_Scene scene;
    Make_Study(scene);
    scene[1].flag &= static_cast<std::uint16_t>(~DB_FLAG_EXPANDED);
    Edit_Rows_Assign(scene.Nb(), scene.Pt());
    EXPECT_EQ(Rows_Of(scene), (std::vector<int>{0, 0, 0, NONE, NONE, NONE, NONE, 1}));
    scene[1].flag |= DB_FLAG_EXPANDED;
    scene[3].flag &= static_cast<std::uint16_t>(~DB_FLAG_EXPANDED);
    const Edit_Extent extent = Edit_Rows_Assign(scene.Nb(), scene.Pt());
    EXPECT_EQ(Rows_Of(scene), (std::vector<int>{0, 0, 0, 1, 1, NONE, 2, 3}));
    EXPECT_EQ(extent.row_nb, 4);
}

TEST(Edit_Rows, a_collapsed_root_stays_with_its_first_child) {
    Tree_Scene scene;
    Make_Study(scene);
    scene[0].flag &= static_cast<std::uint16_t>(~DB_FLAG_EXPANDED);
    Edit_Rows_Assign(scene.Nb(), scene.Pt());
    EXPECT_EQ(Rows_Of(scene), (std::vector<int>{0, 0, 0, 1, 1, 2, 3, NONE}));
}

TEST(Edit_Rows, no_records_take_no_rows) {
    EXPECT_EQ(Edit_Rows_Assign(0, nullptr).row_nb, 0);
    EXPECT_EQ(Edit_Rows_Assign(7, nullptr).row_nb, 0) << "the count of a failed creation";
    EXPECT_FALSE(Edit_Hit_At(7, nullptr, {5, 5}).on_node);
}

TEST(Edit_Rows, rows_from_65535_on_are_not_drawn) {
    Tree_Scene scene;
    scene.Add(0);
    for (int i = 0; i < 70000; ++i) {
        scene.Add(1);
    }
    scene.Finish();
    const Edit_Extent extent = Edit_Rows_Assign(scene.Nb(), scene.Pt());
    EXPECT_EQ(extent.row_nb, DB_ROW_NONE);
    EXPECT_EQ(scene[1].row, 0);
    EXPECT_EQ(scene[65535].row, 65534);
    EXPECT_EQ(scene[65536].row, DB_ROW_NONE);
    EXPECT_EQ(scene[70000].row, DB_ROW_NONE);
    EXPECT_EQ(Edit_Hit_At(scene.Nb(), scene.Pt(), {EDIT_CELL_WIDTH + 100, 65534 * EDIT_CELL_HEIGHT + 30}).code, 655350);
    EXPECT_FALSE(Edit_Hit_At(scene.Nb(), scene.Pt(), {EDIT_CELL_WIDTH + 100, 65535 * EDIT_CELL_HEIGHT + 30}).on_node);
}

TEST(Edit_Rows, damaged_subtree_sizes_and_parents_are_bounded) {
    Tree_Scene scene;
    Make_Study(scene);
    scene[3].parent = 60000;
    scene[7].parent = 1;
    scene[1].flag = 0;
    scene[6].desc_nb = 65535;
    EXPECT_LE(Edit_Rows_Assign(scene.Nb(), scene.Pt()).row_nb, 8);
}

TEST(Edit_Rows, random_trees_agree_with_a_plain_recursion) {
    for (unsigned int seed = 1; seed <= 300; ++seed) {
        Tree_Scene scene;
        scene.Make_Random(seed, 1 + static_cast<int>(seed * 7 % 90), 9, 1 + seed % 4);
        for (int i = 1; i < scene.Nb(); ++i) {
            if (scene[i].level == 0) {
                scene.rows.resize(static_cast<std::size_t>(i));  // the class tree has one root
            }
        }
        const Plain_Diagram plain(scene);
        const Edit_Extent extent = Edit_Rows_Assign(scene.Nb(), scene.Pt());
        for (int i = 0; i < scene.Nb(); ++i) {
            ASSERT_EQ(scene[i].row, plain.Row(i) < 0 ? NONE : plain.Row(i)) << "seed " << seed << ", record " << i;
        }
        ASSERT_EQ(extent.row_nb, plain.Row_Nb());
        ASSERT_EQ(extent.level_nb, plain.Level_Nb());
    }
}

// ---------------- zones

/** The zones by their description, for one point, looking at every record. */
Edit_Hit Plain_Hit(Tree_Scene& scene, int x, int y) {
    for (int i = 0; i < scene.Nb(); ++i) {
        const DB_List& node = scene[i];
        if (node.row == NONE || (x + 8) / 330 != node.level || (y - 5) / 50 != node.row) {
            continue;
        }
        const int cx = x - 330 * node.level;
        const int cy = y - 50 * node.row;
        const bool middle = cy >= 20 && cy <= 40;
        if (middle && cx >= -10 && cx <= 10 && i > 0) {
            return {true, 10 * i + 1};
        }
        if (middle && cx >= 240 && cx <= 260 && node.child_nb > 0) {
            return {true, 10 * i + 2};
        }
        if (middle && cx >= 280 && cx <= 300 && node.child_nb > 1) {
            return {true, 10 * i + 3};
        }
        if (cx <= 250 && cy <= 50) {
            return {true, 10 * i};
        }
    }
    return {};
}

TEST(Edit_Zones, every_point_of_the_diagram_has_the_zone_that_is_described) {
    Tree_Scene scene;
    Make_Study(scene, true);
    for (const bool collapsed : {false, true}) {
        scene[1].flag = collapsed ? 0 : DB_FLAG_EXPANDED;
        Edit_Rows_Assign(scene.Nb(), scene.Pt());
        std::map<int, int> seen;
        for (int y = -60; y < 320; ++y) {
            for (int x = -40; x < 4 * EDIT_CELL_WIDTH + 40; ++x) {
                const Edit_Hit hit = Edit_Hit_At(scene.Nb(), scene.Pt(), {x, y});
                const Edit_Hit plain = Plain_Hit(scene, x, y);
                ASSERT_EQ(hit.code, plain.code) << x << ", " << y;
                ASSERT_EQ(hit.on_node, plain.on_node) << x << ", " << y;
                seen[hit.code]++;
            }
        }
        for (int i = 0; i < scene.Nb(); ++i) {
            const bool shown = scene[i].row != NONE;
            EXPECT_EQ(seen.count(10 * i + 1), shown && i > 0 ? 1U : 0U) << i;
            EXPECT_EQ(seen.count(10 * i + 2), shown && scene[i].child_nb > 0 ? 1U : 0U) << i;
            EXPECT_EQ(seen.count(10 * i + 3), shown && scene[i].child_nb > 1 ? 1U : 0U) << i;
        }
        EXPECT_EQ(seen[12], 21 * 21);
    }
}

TEST(Edit_Zones, handles_lie_in_their_own_zones) {
    Tree_Scene scene;
    Make_Study(scene);
    Edit_Rows_Assign(scene.Nb(), scene.Pt());
    for (int i = 0; i < scene.Nb(); ++i) {
        for (const Edit_Zone zone : {Edit_Zone::Parent_Handle, Edit_Zone::Children_Handle, Edit_Zone::Toggle}) {
            if (!Has_Edit_Zone(i, scene[i], zone)) {
                continue;
            }
            const DB_Tree_Point middle = Edit_Zone_Point(scene[i], zone);
            const int radius = zone == Edit_Zone::Toggle ? EDIT_TOGGLE_RADIUS : EDIT_HANDLE_RADIUS;
            for (int dy = -radius; dy <= radius; ++dy) {
                for (int dx = -radius; dx <= radius; ++dx) {
                    const DB_Tree_Point at = {middle.x + dx, middle.y + dy};
                    ASSERT_EQ(Edit_Hit_At(scene.Nb(), scene.Pt(), at).code, Edit_Code(i, zone)) << dx << ", " << dy;
                }
            }
        }
    }
}

TEST(Edit_Zones, the_body_of_record_0_reads_0_and_is_told_from_no_node) {
    Tree_Scene scene;
    Make_Study(scene);
    Edit_Rows_Assign(scene.Nb(), scene.Pt());
    EXPECT_EQ(Edit_Hit_At(scene.Nb(), scene.Pt(), {100, 20}).code, 0);
    EXPECT_TRUE(Edit_Hit_At(scene.Nb(), scene.Pt(), {100, 20}).on_node);
    EXPECT_EQ(Edit_Hit_At(scene.Nb(), scene.Pt(), {100, 90}).code, 0);
    EXPECT_FALSE(Edit_Hit_At(scene.Nb(), scene.Pt(), {100, 90}).on_node);
}

TEST(Edit_Zones, codes_name_record_and_zone) {
    EXPECT_EQ(Edit_Code(12, Edit_Zone::Toggle), 123);
    EXPECT_EQ(Edit_Code_Record(123), 12);
    EXPECT_EQ(Edit_Code_Zone(123), Edit_Zone::Toggle);
}

// ---------------- lines

/** Every pixel of some lines. Lines are level or upright. */
std::set<std::pair<int, int>> Pixels_Of(const std::vector<Edit_Line>& lines) {
    std::set<std::pair<int, int>> pixels;
    for (const Edit_Line& line : lines) {
        EXPECT_TRUE(line.from.x == line.to.x || line.from.y == line.to.y);
        for (int x = std::min(line.from.x, line.to.x); x <= std::max(line.from.x, line.to.x); ++x) {
            for (int y = std::min(line.from.y, line.to.y); y <= std::max(line.from.y, line.to.y); ++y) {
                pixels.insert({x, y});
            }
        }
    }
    return pixels;
}

TEST(Edit_Connectors, join_every_shown_child_to_its_parent_and_nothing_else) {
    for (unsigned int seed = 1; seed <= 40; ++seed) {
        Tree_Scene scene;
        scene.Make_Random(seed, 25, 5, 1 + seed % 3);
        for (int i = 1; i < scene.Nb(); ++i) {
            if (scene[i].level == 0) {
                scene.rows.resize(static_cast<std::size_t>(i));
            }
        }
        Edit_Rows_Assign(scene.Nb(), scene.Pt());
        const Plain_Diagram plain(scene);
        std::vector<Edit_Line> wanted;
        for (int i = 0; i < scene.Nb(); ++i) {
            if (plain.Row(i) < 0) {
                continue;
            }
            const int left = 330 * scene[i].level;
            int lowest = -1;
            for (const int child : plain.Children(i)) {
                if (plain.Row(child) < 0) {
                    continue;
                }
                const int y = 50 * plain.Row(child) + 30;
                wanted.push_back({{left + (lowest < 0 ? 250 : 290), y}, {left + 330, y}});
                lowest = y;
            }
            if (lowest > 50 * plain.Row(i) + 30) {
                wanted.push_back({{left + 290, 50 * plain.Row(i) + 30}, {left + 290, lowest}});
            }
        }
        std::vector<Edit_Line> drawn;
        Edit_Lines lines;
        for (Edit_Walk walk(scene.Nb(), scene.Pt()); !walk.At_End(); walk.Next()) {
            Edit_Line line[Edit_Lines::PER_NODE];
            const int nb = lines.Of(walk, line);
            drawn.insert(drawn.end(), line, line + nb);
        }
        ASSERT_EQ(Pixels_Of(drawn), Pixels_Of(wanted)) << "seed " << seed;
    }
}

TEST(Edit_Connectors, pieces_of_a_long_branch_do_not_overlap) {
    Tree_Scene scene;
    scene.Add(0);
    for (int i = 0; i < 4000; ++i) {
        scene.Add(1);
    }
    scene.Finish();
    Edit_Lines lines;
    long length = 0;
    for (Edit_Walk walk(scene.Nb(), scene.Pt()); !walk.At_End(); walk.Next()) {
        Edit_Line line[Edit_Lines::PER_NODE];
        if (lines.Of(walk, line) == Edit_Lines::PER_NODE) {
            length += line[0].to.y - line[0].from.y;
        }
    }
    EXPECT_EQ(length, 3999L * EDIT_CELL_HEIGHT);
}

TEST(Edit_Connectors, levels_beyond_those_that_are_remembered_stay_within_bounds) {
    Tree_Scene scene;
    for (int level = 0; level < 5000; ++level) {
        scene.Add(level);
    }
    scene.Add(4999);
    scene.Finish();
    Edit_Lines lines;
    int last = -1;
    for (Edit_Walk walk(scene.Nb(), scene.Pt()); !walk.At_End(); walk.Next()) {
        Edit_Line line[Edit_Lines::PER_NODE];
        last = lines.Of(walk, line);
    }
    EXPECT_EQ(last, 2);
}

// ---------------- sizes

TEST(Edit_Sizes, of_the_sliders_follow_rows_and_levels) {
    EXPECT_EQ(Edit_Height_Extent(7, 300).total, 355);
    EXPECT_FALSE(Edit_Height_Extent(7, 354).fits);
    EXPECT_TRUE(Edit_Height_Extent(7, 355).fits);
    EXPECT_EQ(Edit_Height_Extent(7, 300).Maximum(), 55);
    EXPECT_EQ(Edit_Width_Extent(3, 6, 500).total, 1002);
    EXPECT_FALSE(Edit_Width_Extent(3, 6, 1001).fits);
    EXPECT_TRUE(Edit_Width_Extent(3, 6, 1002).fits);
}

TEST(Edit_Marks_Test, a_node_is_highlighted_by_its_body_or_its_dragged_handle) {
    Edit_Marks marks;
    EXPECT_FALSE(marks.Is_Node_Highlighted(0)) << "0 is no zone";
    marks.highlighted = 30;
    marks.dragged = {11, 41, 51};
    EXPECT_TRUE(marks.Is_Node_Highlighted(3));
    EXPECT_TRUE(marks.Is_Node_Highlighted(4));
    EXPECT_FALSE(marks.Is_Node_Highlighted(2));
    EXPECT_TRUE(marks.Is_Dragged(51));
    EXPECT_FALSE(marks.Is_Dragged(31));
}

}  // namespace
