#include "database/db_list.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr DB_Source HERE{"some/view.cpp", 321};
constexpr int ROWS_MOST = 65535;

char* Heap_Text(const char* text) {
    auto* const copy = static_cast<char*>(std::malloc(std::strlen(text) + 1));
    std::strcpy(copy, text);
    return copy;
}

/** An array of records that grows by DB_List_Append. */
struct Rows {
    int nb = 0;
    DB_List* list_pt = nullptr;
    Rows() = default;
    ~Rows() { DB_List_Array_Free(&nb, &list_pt); }
    Rows(const Rows&) = delete;
    Rows& operator=(const Rows&) = delete;

    DB_List& Add(int level, std::uint16_t flag, std::uint16_t state = 0) {
        DB_List* const record = DB_List_Append(&nb, &list_pt, HERE);
        record->level = static_cast<std::uint16_t>(level);
        record->flag = flag;
        record->state = state;
        return *record;
    }
    std::vector<int> Checks() const {
        std::vector<int> checks;
        for (int i = 0; i < nb; ++i) {
            checks.push_back(list_pt[i].state);
        }
        return checks;
    }
};

// ---------------- growing and freeing

TEST(DB_List_Append, new_records_are_cleared_and_counted_and_the_older_ones_kept) {
    Rows rows;
    const DB_List cleared{};
    for (int i = 0; i < 1000; ++i) {
        DB_List* const record = DB_List_Append(&rows.nb, &rows.list_pt, HERE);
        ASSERT_EQ(record, rows.list_pt + i);
        ASSERT_EQ(rows.nb, i + 1);
        ASSERT_EQ(record->flag | record->state | record->row | record->modality | record->level, 0);
        ASSERT_EQ(record->child_nb | record->index | record->desc_nb | record->parent | record->column_nb, 0);
        ASSERT_EQ(record->object, cleared.object);
        ASSERT_EQ(record->color, 0U);
        ASSERT_EQ(record->title, nullptr);
        ASSERT_EQ(record->name, nullptr);
        ASSERT_EQ(record->icon, nullptr);
        ASSERT_EQ(record->column_x, nullptr);
        ASSERT_EQ(record->column_color, nullptr);
        ASSERT_EQ(record->column_label, nullptr);
        ASSERT_EQ(record->column_value, nullptr);
        record->row = static_cast<std::uint16_t>(i * 7);
    }
    for (int i = 0; i < rows.nb; ++i) {
        ASSERT_EQ(rows.list_pt[i].row, static_cast<std::uint16_t>(i * 7));
    }
}

TEST(DB_List_Append, array_moves_at_powers_of_two_only) {
    Rows rows;
    const DB_List* before = nullptr;
    for (int i = 0; i < 70000; ++i) {
        DB_List_Append(&rows.nb, &rows.list_pt, HERE);
        if ((i & (i - 1)) != 0) {
            ASSERT_EQ(rows.list_pt, before) << i;
        }
        before = rows.list_pt;
    }
}

TEST(DB_List_Append, goes_on_beyond_the_rows_that_a_tree_can_number) {
    Rows rows;
    for (int i = 0; i < ROWS_MOST + 3; ++i) {
        ASSERT_NE(DB_List_Append(&rows.nb, &rows.list_pt, HERE), nullptr);
    }
    EXPECT_EQ(rows.nb, ROWS_MOST + 3);
}

TEST(DB_List_Append, does_not_begin_a_new_array_in_place_of_a_lost_one) {
    int nb = 5;
    DB_List* list_pt = nullptr;
    EXPECT_EQ(DB_List_Append(&nb, &list_pt, HERE), nullptr);
    EXPECT_EQ(nb, 5);
    EXPECT_EQ(list_pt, nullptr);
}

TEST(DB_List_Text_Copy, null_and_empty_texts_give_null) {
    char some = 'x';
    char* field = &some;
    EXPECT_TRUE(DB_List_Text_Copy(&field, nullptr, "title", HERE));
    EXPECT_EQ(field, nullptr);
    field = &some;
    EXPECT_TRUE(DB_List_Text_Copy(&field, "", "title", HERE));
    EXPECT_EQ(field, nullptr);
}

TEST(DB_List_Text_Copy, copies_the_whole_text) {
    char text[] = "a title";
    char* field = nullptr;
    EXPECT_TRUE(DB_List_Text_Copy(&field, text, "title", HERE));
    text[0] = 'b';
    EXPECT_STREQ(field, "a title");
    std::free(field);
}

TEST(DB_List_Array_Free, frees_texts_and_columns_and_leaves_an_empty_list) {
    Rows rows;  // the sanitizers see what is forgotten or freed twice
    for (int i = 0; i < 10; ++i) {
        DB_List& record = rows.Add(0, DB_FLAG_LEAF);
        record.title = i % 2 == 0 ? Heap_Text("title") : nullptr;
        record.name = i % 3 == 0 ? Heap_Text("name") : nullptr;
        record.icon = "icon folder.tga";  // not freed
        if (i % 4 == 0) {
            record.column_nb = 2;
            record.column_x = static_cast<std::int32_t*>(std::calloc(2, sizeof(std::int32_t)));
            record.column_color = static_cast<std::uint32_t*>(std::calloc(2, sizeof(std::uint32_t)));
            record.column_label = static_cast<char**>(std::calloc(2, sizeof(char*)));
            record.column_value = static_cast<char**>(std::calloc(2, sizeof(char*)));
            record.column_label[0] = Heap_Text("label");
            record.column_value[1] = Heap_Text("value");
        } else if (i % 4 == 1) {
            record.column_nb = 3;  // columns that were never filled
        }
    }
    DB_List_Array_Free(&rows.nb, &rows.list_pt);
    EXPECT_EQ(rows.nb, 0);
    EXPECT_EQ(rows.list_pt, nullptr);
    DB_List_Array_Free(&rows.nb, &rows.list_pt);
    EXPECT_EQ(rows.nb, 0);
    EXPECT_EQ(rows.list_pt, nullptr);
}

TEST(DB_List_Array_Free, without_an_array_only_the_count_is_reset) {
    int nb = 12;
    DB_List* list_pt = nullptr;
    DB_List_Array_Free(&nb, &list_pt);
    EXPECT_EQ(nb, 0);
    EXPECT_EQ(list_pt, nullptr);
}

TEST(DB_List_Array_Free, with_a_count_of_0_the_array_stays) {
    int nb = 0;
    DB_List record{};
    DB_List* list_pt = &record;
    DB_List_Array_Free(&nb, &list_pt);
    EXPECT_EQ(nb, 0);
    EXPECT_EQ(list_pt, &record);
}

// ---------------- check marks and last children

TEST(DB_List_Set_State, branch_is_partly_checked_with_one_of_two_leaves) {
    const int expected[4][3] = {{0, 0, 0}, {1, 2, 0}, {1, 0, 2}, {2, 2, 2}};
    for (const auto& checks : expected) {
        Rows rows;
        rows.Add(0, DB_FLAG_EXPANDED);
        rows.Add(1, DB_FLAG_LEAF, static_cast<std::uint16_t>(checks[1]));
        rows.Add(1, DB_FLAG_LEAF, static_cast<std::uint16_t>(checks[2]));
        DB_List_Set_State(rows.nb, rows.list_pt);
        EXPECT_EQ(rows.Checks(), std::vector<int>(checks, checks + 3));
    }
}

TEST(DB_List_Set_State, branch_without_leaves_ends_checked) {
    Rows rows;
    rows.Add(0, DB_FLAG_EXPANDED);
    rows.Add(1, DB_FLAG_EXPANDED);
    DB_List_Set_State(rows.nb, rows.list_pt);
    EXPECT_EQ(rows.Checks(), (std::vector<int>{2, 2}));
}

TEST(DB_List_Set_State, other_state_bits_stay_and_a_partial_leaf_is_unchecked) {
    Rows rows;
    rows.Add(0, DB_FLAG_EXPANDED, 0x8003);
    rows.Add(1, DB_FLAG_LEAF, DB_STATE_NO_ACCESS | 1);
    rows.Add(1, DB_FLAG_LEAF, DB_STATE_NO_ACCESS | 3);
    DB_List_Set_State(rows.nb, rows.list_pt);
    EXPECT_EQ(rows.Checks(), (std::vector<int>{0x8001, 0x10, 0x12}));
}

TEST(DB_List_Set_State, last_child_bit_is_set_and_never_cleared) {
    Rows rows;
    rows.Add(0, DB_FLAG_EXPANDED);
    rows.Add(1, DB_FLAG_EXPANDED);
    rows.Add(2, DB_FLAG_LEAF);
    rows.Add(1, DB_FLAG_LEAF);
    rows.Add(0, DB_FLAG_LEAF);
    DB_List_Set_State(rows.nb, rows.list_pt);
    const bool last[] = {false, false, true, true, true};
    for (int i = 0; i < rows.nb; ++i) {
        EXPECT_EQ((rows.list_pt[i].flag & DB_FLAG_LAST) != 0, last[i]) << i;
    }
    DB_List_Set_State(4, rows.list_pt);  // without the last root the first is the last one
    EXPECT_NE(rows.list_pt[0].flag & DB_FLAG_LAST, 0);
    EXPECT_NE(rows.list_pt[4].flag & DB_FLAG_LAST, 0);
    DB_List_Set_State(rows.nb, rows.list_pt);
    EXPECT_NE(rows.list_pt[0].flag & DB_FLAG_LAST, 0);
}

TEST(DB_List_Set_State, nothing_happens_without_an_array) {
    DB_List_Set_State(7, nullptr);
    DB_List_Set_State(0, nullptr);
}

TEST(DB_List_Set_State, deep_levels_share_one_entry) {
    Rows rows;
    for (int level = 0; level < 200; ++level) {
        rows.Add(level, DB_FLAG_EXPANDED);
    }
    rows.Add(200, DB_FLAG_LEAF, DB_STATE_CHECKED);
    rows.Add(150, DB_FLAG_LEAF);
    DB_List_Set_State(rows.nb, rows.list_pt);
    EXPECT_EQ(rows.list_pt[201].state, DB_STATE_NONE);
    EXPECT_NE(rows.list_pt[201].flag & DB_FLAG_LAST, 0);
    // The entry of the deepest level keeps the unchecked leaf, for its other leaf too; so does every branch above.
    for (int i = 0; i <= 200; ++i) {
        EXPECT_EQ(rows.list_pt[i].state, DB_STATE_PARTIAL) << i;
        EXPECT_EQ((rows.list_pt[i].flag & DB_FLAG_LAST) != 0, i < 99) << i;
    }
}

/** A well-formed tree: levels rise by one at most. @param most_level the deepest level */
void Fill_Randomly(Rows& rows, int nb, int most_level, std::mt19937& random) {
    const auto below = [&random](int n) { return static_cast<int>(random() % static_cast<unsigned int>(n)); };
    int level = 0;
    for (int i = 0; i < nb; ++i) {
        rows.Add(level, DB_FLAG_EXPANDED);
        const int move = below(10);
        if (i > 0 || move > 0) {
            level = move < 5 ? level + 1 : below(3) == 0 ? below(level + 1) : std::max(level - below(3), 0);
        }
        level = std::min(level, most_level);
    }
    for (int i = 0; i < nb; ++i) {
        const bool has_children = i + 1 < nb && rows.list_pt[i + 1].level > rows.list_pt[i].level;
        if (!has_children && below(8) != 0) {  // some branches have no leaves at all
            rows.list_pt[i].flag = DB_FLAG_LEAF;
            rows.list_pt[i].state = static_cast<std::uint16_t>(below(4) | (below(5) == 0 ? DB_STATE_NO_ACCESS : 0));
        } else {
            rows.list_pt[i].state = static_cast<std::uint16_t>(below(4));
        }
    }
}

/** What a subtree's leaves say, found by descending. */
struct Below {
    bool checked = false;    // a leaf is
    bool unchecked = false;  // a leaf is not
    int end = 0;             // the record after the subtree
};

Below Descend(const Rows& rows, int i, std::vector<int>& check, std::vector<bool>& last) {
    const DB_List& record = rows.list_pt[i];
    Below below;
    if ((record.flag & DB_FLAG_LEAF) != 0) {
        below.checked = (record.state & 2) != 0;
        below.unchecked = !below.checked;
    }
    int next = i + 1;
    int last_child = -1;
    while (next < rows.nb && rows.list_pt[next].level > record.level) {
        last_child = next;
        const Below child = Descend(rows, next, check, last);
        below.checked = below.checked || child.checked;
        below.unchecked = below.unchecked || child.unchecked;
        next = child.end;
    }
    if (last_child >= 0) {
        last[static_cast<std::size_t>(last_child)] = true;
    }
    check[static_cast<std::size_t>(i)] = !below.unchecked ? 2 : below.checked ? 1 : 0;
    below.end = next;
    return below;
}

TEST(DB_List_Set_State, random_trees_agree_with_descending_them) {
    std::mt19937 random(7);
    for (const int nb : {1, 2, 3, 5, 10, 30, 100, 300, 1000, 3000, 10000, ROWS_MOST}) {
        for (int round = 0; round < (nb > 5000 ? 2 : 20); ++round) {
            Rows rows;
            Fill_Randomly(rows, nb, 98, random);
            std::vector<int> check(static_cast<std::size_t>(nb));
            std::vector<bool> last(static_cast<std::size_t>(nb));
            int last_root = 0;
            for (int i = 0; i < nb;) {
                last_root = i;
                i = Descend(rows, i, check, last).end;
            }
            last[static_cast<std::size_t>(last_root)] = true;
            const std::vector<int> before = rows.Checks();
            DB_List_Set_State(rows.nb, rows.list_pt);
            for (int i = 0; i < nb; ++i) {
                const auto place = static_cast<std::size_t>(i);
                ASSERT_EQ(rows.list_pt[i].state, check[place] | (before[place] & ~3)) << i << " of " << nb;
                ASSERT_EQ((rows.list_pt[i].flag & DB_FLAG_LAST) != 0, last[place]) << i << " of " << nb;
            }
        }
    }
}

/** The rule, entry by entry. */
void Set_State_Plainly(int nb, DB_List* list_pt) {
    std::array<bool, 100> all;
    std::array<bool, 100> none;
    std::array<bool, 100> first;
    all.fill(true);
    none.fill(true);
    first.fill(true);
    for (int i = nb - 1; i >= 0; --i) {
        const auto level = static_cast<std::size_t>(std::min<int>(list_pt[i].level, 99));
        if ((list_pt[i].flag & 2) != 0) {
            for (std::size_t l = 0; l <= level; ++l) {
                ((list_pt[i].state & 2) != 0 ? none : all)[l] = false;
            }
        }
        const int check = all[level] ? 2 : none[level] ? 0 : 1;
        list_pt[i].state = static_cast<std::uint16_t>((list_pt[i].state & ~3) | check);
        if (first[level]) {
            list_pt[i].flag |= 4;
            first[level] = false;
        }
        if (level != 99) {
            for (std::size_t l = level + 1; l <= 99; ++l) {
                first[l] = true;
            }
            for (std::size_t l = level; l <= 98; ++l) {
                all[l] = true;
                none[l] = true;
            }
        }
    }
}

TEST(DB_List_Set_State, any_levels_agree_with_the_rule_entry_by_entry) {
    std::mt19937 random(11);
    for (int round = 0; round < 300; ++round) {
        Rows ours;
        const int nb = round < 290 ? static_cast<int>(random() % 400U) : ROWS_MOST;
        const int most_level = round % 3 == 0 ? 65535 : round % 3 == 1 ? 130 : 101;
        if (round % 2 == 0) {
            Fill_Randomly(ours, nb, most_level, random);
        } else {  // not even a tree
            for (int i = 0; i < nb; ++i) {
                const int level = random() % 4U == 0 ? 60 + static_cast<int>(random() % 60U)
                                                     : static_cast<int>(random() % 65536U) % (most_level + 1);
                ours.Add(level, random() % 2U == 0 ? DB_FLAG_LEAF : DB_FLAG_EXPANDED,
                         static_cast<std::uint16_t>(random() % 32U));
            }
        }
        std::vector<DB_List> plain(ours.list_pt, ours.list_pt + nb);
        Set_State_Plainly(nb, plain.data());
        DB_List_Set_State(nb, ours.list_pt);
        for (int i = 0; i < nb; ++i) {
            ASSERT_EQ(ours.list_pt[i].state, plain[static_cast<std::size_t>(i)].state) << i << " round " << round;
            ASSERT_EQ(ours.list_pt[i].flag, plain[static_cast<std::size_t>(i)].flag) << i << " round " << round;
        }
    }
}

}  // namespace
