#include "database/text_widths.h"

#include <gtest/gtest.h>

#include <cstring>
#include <map>

#include "database/tree_rows.h"
#include "tests/database/tree_scene.h"
#include "tests/kits/common/failing_memory.h"

namespace {

constexpr int SPACE = 6;

/** Regular texts have 7 pixels a character, bold ones 10. Counts how often each text was measured. */
class Counting_Measurer final : public Text_Measurer {
  public:
    int Width(Tree_Font font, const char* text) override {
        calls++;
        measured[text]++;
        return static_cast<int>(std::strlen(text)) * (font == Tree_Font::Bold ? 10 : 7);
    }
    Fonts Fonts_Get() const override { return {&fonts[first], &fonts[first + 1]}; }

    int calls = 0;
    std::map<const char*, int> measured;
    int first = 0;

  private:
    int fonts[4] = {};
};

int Measure(Tree_Scene& tree, Text_Width_Lists& lists, Counting_Measurer& measurer) {
    return Tree_Width_Measure(tree.Nb(), tree.Pt(), SPACE, lists.Of(tree.Nb(), tree.Pt(), measurer.Fonts_Get()),
                              measurer);
}

/** Gives a record columns whose arrays live as long as this object. */
struct Column_Store {
    std::deque<std::vector<std::int32_t>> x;
    std::deque<std::vector<char*>> texts;
    void Give(Tree_Scene& tree, int record, const std::vector<const char*>& labels,
              const std::vector<const char*>& values) {
        DB_List& row = tree[record];
        row.column_nb = static_cast<std::uint16_t>(labels.size());
        row.column_x = x.emplace_back(labels.size(), -1).data();
        row.column_label = Texts(tree, labels);
        row.column_value = Texts(tree, values);
    }
    char** Texts(Tree_Scene& tree, const std::vector<const char*>& given) {
        std::vector<char*>& kept = texts.emplace_back();
        for (const char* text : given) {
            kept.push_back(tree.Keep(text));
        }
        return kept.data();
    }
};

TEST(Tree_Width, is_that_of_the_widest_row) {
    Tree_Scene tree;
    tree.Add(0);
    tree.Add(1, "title");  // ": " counts also without a name
    tree.Add(2, nullptr, "name");
    tree.Add(1, "title", "name");
    tree.Finish();
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    EXPECT_EQ(Measure(tree, lists, measurer), 2 * SPACE + 60 + 20 + 5 * 7 + 2 * 7 + 4 * 10);
    tree[3].name = nullptr;
    EXPECT_EQ(Measure(tree, lists, measurer), 2 * SPACE + 60 + 2 * 20 + 4 * 10);
    tree[2].name = nullptr;
    EXPECT_EQ(Measure(tree, lists, measurer), 2 * SPACE + 60 + 20 + 5 * 7 + 2 * 7);
}

TEST(Tree_Width, is_nothing_without_records) {
    Tree_Scene tree;
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    EXPECT_EQ(Measure(tree, lists, measurer), 0);
}

TEST(Tree_Width, columns_stand_right_of_the_widest_row_that_has_columns) {
    Tree_Scene tree;
    Column_Store store;
    tree.Add(0, "a title that is wide but has no columns", "and a name");
    tree.Add(1, "ab", "c");
    tree.Add(1, "abc", "d");
    tree.Finish();
    store.Give(tree, 1, {"size", "x"}, {"12", "y"});
    store.Give(tree, 2, {"sizes"}, {"1"});
    const int start = 2 * SPACE + 60 + 20 + 3 * 7 + 2 * 7 + 10;
    const int first = 4 * 7 + 2 * 7 + 2 * 10;  // "size: 12", wider than "sizes: 1"
    const int second = 7 + 2 * 7 + 10;
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    const int width = Measure(tree, lists, measurer);
    EXPECT_EQ(tree[1].column_x[0], start + 20);
    EXPECT_EQ(tree[1].column_x[1], start + 20 + 20 + first);
    EXPECT_EQ(tree[2].column_x[0], start + 20);
    const int without_columns = 2 * SPACE + 60 + 39 * 7 + 2 * 7 + 10 * 10;
    EXPECT_EQ(width, std::max(without_columns, start + 20 + 20 + first + 20 + second));
    tree[0].title = nullptr;
    tree[0].name = nullptr;
    EXPECT_EQ(Measure(tree, lists, measurer), start + 20 + 20 + first + 20 + second);
}

TEST(Tree_Width, columns_without_places_or_texts_do_no_harm) {
    Tree_Scene tree;
    tree.Add(0, "a");
    tree.Finish();
    tree[0].column_nb = 3;
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    EXPECT_EQ(Measure(tree, lists, measurer), 2 * SPACE + 60 + 7 + 14 + 20 + 3 * (20 + 14));
}

TEST(Text_Widths, no_text_is_measured_twice) {
    Tree_Scene tree;
    Column_Store store;
    for (int i = 0; i < 300; ++i) {
        tree.Add(i % 7, "title", "name");
    }
    tree.Finish();
    store.Give(tree, 20, {"size", "x"}, {"12", "y"});
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    const int width = Measure(tree, lists, measurer);
    EXPECT_EQ(measurer.calls, 2 * 300 + 4 + 1);
    for (int round = 0; round < 3; ++round) {
        EXPECT_EQ(Measure(tree, lists, measurer), width);
    }
    EXPECT_EQ(measurer.calls, 2 * 300 + 4 + 1);
    for (const auto& [text, times] : measurer.measured) {
        EXPECT_EQ(times, 1) << text;
    }
}

TEST(Text_Widths, a_new_text_is_measured_and_no_other) {
    Tree_Scene tree;
    tree.Add(0, "one", "two");
    tree.Add(0, "three", "four");
    tree.Finish();
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    Measure(tree, lists, measurer);
    measurer.calls = 0;
    tree[1].name = tree.Keep("something longer");
    EXPECT_EQ(Measure(tree, lists, measurer), 2 * SPACE + 60 + 35 + 14 + 160);
    EXPECT_EQ(measurer.calls, 1);
}

TEST(Text_Widths, other_fonts_are_measured_anew) {
    Tree_Scene tree;
    tree.Add(0, "one", "two");
    tree.Finish();
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    Measure(tree, lists, measurer);
    measurer.first = 1;
    measurer.calls = 0;
    Measure(tree, lists, measurer);
    EXPECT_EQ(measurer.calls, 3);
}

TEST(Text_Widths, a_list_of_another_length_is_measured_anew) {
    Tree_Scene tree;
    tree.rows.reserve(2);
    tree.Add(0, "one", "two");
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    Measure(tree, lists, measurer);
    tree.Add(0, "three", "four");
    measurer.calls = 0;
    Measure(tree, lists, measurer);
    EXPECT_EQ(measurer.calls, 4);
}

TEST(Text_Widths, columns_that_came_later_are_measured_each_time_and_right) {
    Tree_Scene tree;
    Column_Store store;
    tree.Add(0, "one", "two");
    tree.Add(0, "three", "four");
    tree.Finish();
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    Measure(tree, lists, measurer);
    store.Give(tree, 1, {"size"}, {"12"});  // the last record: there are no places behind it
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(Measure(tree, lists, measurer), 2 * SPACE + 60 + 35 + 14 + 40 + 20 + 20 + 28 + 14 + 20);
    }
}

TEST(Text_Widths, lists_are_kept_apart_and_forgotten_one_by_one) {
    Tree_Scene a;
    a.Add(0, "one", "two");
    Tree_Scene b;
    b.Add(0, "three", "four");
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    Measure(a, lists, measurer);
    Measure(b, lists, measurer);
    measurer.calls = 0;
    Measure(a, lists, measurer);
    Measure(b, lists, measurer);
    EXPECT_EQ(measurer.calls, 0);
    std::strcpy(a[0].title, "ONE");  // the same place, another text: nobody can see that
    lists.Forget(a.Pt());
    Measure(a, lists, measurer);
    EXPECT_EQ(measurer.calls, 3);
    Measure(b, lists, measurer);
    EXPECT_EQ(measurer.calls, 3);
}

TEST(Text_Widths, only_some_lists_are_kept) {
    constexpr int list_nb = static_cast<int>(Text_Width_Lists::LIST_MAX) + 1;
    std::deque<Tree_Scene> trees;
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    for (int i = 0; i < list_nb; ++i) {
        trees.emplace_back().Add(0, "one", "two");
        Measure(trees.back(), lists, measurer);
    }
    measurer.calls = 0;
    Measure(trees.back(), lists, measurer);
    EXPECT_EQ(measurer.calls, 0);
    Measure(trees.front(), lists, measurer);
    EXPECT_EQ(measurer.calls, 3);
}

TEST(Text_Widths, without_memory_the_widths_are_the_same) {
    Tree_Scene tree;
    for (int i = 0; i < 10; ++i) {
        tree.Add(0, "one", "two");
    }
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    const int width = Measure(tree, lists, measurer);
    const int failed = Fail_Each_Allocation([&] {
        lists.Forget(tree.Pt());
        EXPECT_EQ(Measure(tree, lists, measurer), width);
    });
    EXPECT_EQ(failed, 2);  // the list's entry, its widths
}

TEST(Text_Widths, without_memory_the_widths_of_columns_are_the_same) {
    Tree_Scene tree;
    Column_Store columns;
    for (int i = 0; i < 10; ++i) {
        columns.Give(tree, tree.Add(0, "one", "two"), {"label"}, {"value"});
    }
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    const int width = Measure(tree, lists, measurer);
    int drawn_whole = 0;
    const int failed = Fail_Each_Allocation([&] {
        lists.Forget(tree.Pt());
        try {
            EXPECT_EQ(Measure(tree, lists, measurer), width);
            drawn_whole++;
        } catch (const std::bad_alloc&) {
            EXPECT_EQ(tree[0].column_x[0], tree[9].column_x[0]);  // as they were
        }
    });
    EXPECT_EQ(failed, 5);  // the list's entry, its widths, where those of columns begin, theirs, the columns' widths
    EXPECT_EQ(drawn_whole, 5);
}

TEST(Text_Widths, without_memory_for_columns_the_caller_is_told) {
    Tree_Scene tree;
    tree.Add(0, "one", "two");
    tree[0].column_nb = 2;
    Text_Width_Lists lists;
    Counting_Measurer measurer;
    Measure(tree, lists, measurer);
    const Failing_Allocation failing(1);
    EXPECT_THROW(Measure(tree, lists, measurer), std::bad_alloc);
}

}  // namespace
