#include "database/tool_db_fct_paint.h"

#include <cstdio>
#include <map>
#include <set>
#include <string>

#include "tests/database/tree_fixture.h"
#include "tests/kits/common/failing_memory.h"
#include "tests/support/gdi_recorder.h"
#include "tests/support/import_hook.h"

namespace {

constexpr int ICON_SIZE = 16;

/** A picture file of one colour 0x00RRGGBB in the present folder; gone at the end. */
class Icon_File {
  public:
    Icon_File(const std::string& name, std::uint32_t color) : path(name) {
        std::vector<unsigned char> bytes(18, 0);
        bytes[2] = 2;
        bytes[12] = bytes[14] = ICON_SIZE;
        bytes[16] = 32;
        bytes[17] = 0x28;
        for (int i = 0; i < ICON_SIZE * ICON_SIZE; ++i) {
            for (const unsigned int shift : {0U, 8U, 16U}) {
                bytes.push_back(static_cast<unsigned char>(color >> shift));
            }
            bytes.push_back(255);
        }
        std::FILE* const file = std::fopen(path.c_str(), "wb");
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    }
    ~Icon_File() {
        if (!path.empty()) {
            std::remove(path.c_str());
        }
    }
    Icon_File(Icon_File&& other) noexcept : path(std::exchange(other.path, {})) {}
    Icon_File(const Icon_File&) = delete;
    Icon_File& operator=(const Icon_File&) = delete;

  private:
    std::string path;
};

/** A text that was drawn. */
struct Drawn_Text {
    std::wstring text;
    COLORREF color;
    int x;
    int base_line;  ///< of the window's axis
    bool bold;
};

/** Writes down the texts and lines that the drawing asks for while it lives. One at a time. The replaced functions are
 *  this program's own, so their originals are called by address. */
class Drawing_Recorder {
  public:
    Drawing_Recorder()
        : text("", "gdi32.dll", "ExtTextOutW", reinterpret_cast<void*>(&Text)),
          move("", "gdi32.dll", "MoveToEx", reinterpret_cast<void*>(&Move)),
          line("", "gdi32.dll", "LineTo", reinterpret_cast<void*>(&Line)) {
        EXPECT_TRUE(text.Is_Set() && move.Is_Set() && line.Is_Set());
        now = this;
    }
    ~Drawing_Recorder() { now = nullptr; }
    Drawing_Recorder(const Drawing_Recorder&) = delete;
    Drawing_Recorder& operator=(const Drawing_Recorder&) = delete;

    std::vector<Drawn_Text> texts;
    std::vector<POINT> starts;
    std::vector<POINT> ends;

  private:
    template <typename Function>
    static Function* Original(const Import_Hook& hook, Function*) {
        return reinterpret_cast<Function*>(hook.Original());
    }
    static BOOL WINAPI Text(HDC dc, int x, int y, UINT options, const RECT* rect, const wchar_t* string, UINT nb,
                            const INT* distances) {
        TEXTMETRICA metrics = {};
        ::GetTextMetricsA(dc, &metrics);
        now->texts.push_back({std::wstring(string, nb), ::GetTextColor(dc), x, y - static_cast<int>(metrics.tmAscent),
                              metrics.tmWeight >= FW_BOLD});
        EXPECT_EQ(::GetBkMode(dc), TRANSPARENT);
        return Original(now->text, &Text)(dc, x, y, options, rect, string, nb, distances);
    }
    static BOOL WINAPI Move(HDC dc, int x, int y, POINT* before) {
        now->starts.push_back({x, y});
        return Original(now->move, &Move)(dc, x, y, before);
    }
    static BOOL WINAPI Line(HDC dc, int x, int y) {
        now->ends.push_back({x, y});
        return Original(now->line, &Line)(dc, x, y);
    }

    static inline Drawing_Recorder* now = nullptr;
    Import_Hook text;
    Import_Hook move;
    Import_Hook line;
};

using Tree_Paint_Test = Tree_Fixture;

// ---------------- drawing

TEST_F(Tree_Paint_Test, draw_numbers_the_rows) {
    Make_Branch(3);
    tree[2].row = 9;
    EXPECT_EQ(Draw(), 1);
    EXPECT_EQ(tree[0].row, 0);
    EXPECT_EQ(tree[3].row, 3);
    tree[0].flag = 0;
    EXPECT_EQ(Draw(), 1);
    EXPECT_EQ(tree[3].row, DB_ROW_NONE);
}

TEST_F(Tree_Paint_Test, draw_numbers_also_the_rows_below_the_box) {
    Make_Flat(100);
    Draw();
    EXPECT_EQ(tree[99].row, 99);
}

TEST_F(Tree_Paint_Test, without_records_only_the_ground_is_drawn) {
    window.Wipe();
    EXPECT_EQ(DB_List_Draw(&box, 5, nullptr, &horizontal, &vertical), 0);
    EXPECT_EQ(Pixel(BOX_X, BOX_Y), Ground());
    EXPECT_EQ(Pixel(BOX_X + BOX_WIDTH - 1, BOX_Y + BOX_HEIGHT - 1), Ground());
    EXPECT_EQ(DB_List_Text_Pos(&box, 5, nullptr), 0);
    EXPECT_EQ(DB_List_Click(&box, LEFT_PRESS, 5, nullptr, &horizontal, &vertical), 0);
    EXPECT_EQ(DB_List_Select_Range(&box, 2, 5, nullptr, &horizontal, &vertical), 1);
}

TEST_F(Tree_Paint_Test, a_text_at_the_right_edge_is_cut_by_it_and_by_nothing_else) {
    for (const char* title : {"jjjj", "WWWW", "ffff", "/////", "AVAV"}) {
        DB_List_Forget(tree.Pt());
        tree.rows.clear();
        tree.Add(0, title, "jfW/A");
        Tidy();
        const int width = Measured(Tree_Font::Regular, title);
        const int begin = SPACE_DIM + TREE_TEXT_START;
        box.width = BOX_WIDTH;
        window.Wipe();
        Draw();
        const Window_Picture whole = Pixels();
        for (const int at : {begin, begin + width, begin + width + Measured(Tree_Font::Regular, TREE_SEPARATOR)}) {
            for (int right = at - 2; right <= at + 2; ++right) {
                box.width = static_cast<short>(right);
                window.Wipe();
                Draw();
                const Window_Picture cut = Pixels();
                for (int row = 0; row < HEIGHT; ++row) {
                    for (int x = BOX_X; x < BOX_X + right; ++x) {
                        ASSERT_EQ(cut.At(x, row), whole.At(x, row)) << title << " cut at " << right << ": " << x;
                    }
                }
            }
        }
        box.width = BOX_WIDTH;
    }
}

TEST_F(Tree_Paint_Test, a_text_is_asked_for_as_long_as_a_letter_of_it_may_reach_into_the_box) {
    tree.Add(0, "title", "name");
    Tidy();
    Draw();
    const auto drawn = [this](short width, const wchar_t* text) {
        box.width = width;
        Drawing_Recorder recorder;
        Draw();
        return std::count_if(recorder.texts.begin(), recorder.texts.end(),
                             [text](const Drawn_Text& one) { return one.text == text; });
    };
    const int title = SPACE_DIM + TREE_TEXT_START;
    const int name = title + Measured(Tree_Font::Regular, "title") + Measured(Tree_Font::Regular, TREE_SEPARATOR);
    for (const auto& [begin, text] : {std::pair{title, L"title"}, {name, L"name"}}) {
        for (int beyond = -3; beyond <= 3; ++beyond) {
            EXPECT_EQ(drawn(static_cast<short>(begin - beyond), text), 1) << beyond;
        }
    }
    EXPECT_EQ(drawn(1, L"name"), 0) << "far beyond the edge nothing is asked for";
}

TEST_F(Tree_Paint_Test, nothing_is_painted_outside_the_box) {
    for (int i = 0; i < 60; ++i) {
        tree.Add(i % 12, "a title that is wide enough to leave the box", "and a name beyond it");
    }
    Tidy();
    window.Wipe();
    vertical.value = 40.0F;
    horizontal.value = 33.0F;
    Draw();
    const Window_Picture picture = Pixels();
    int painted = 0;
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < WIDTH; ++x) {
            const bool inside = x >= BOX_X && x < BOX_X + BOX_WIDTH && y >= BOX_Y && y < BOX_Y + BOX_HEIGHT;
            if (!inside) {
                ASSERT_EQ(picture.At(x, window.Row(y)), Panel_Window::MARKER) << x << ", " << y;
            } else {
                ASSERT_NE(picture.At(x, window.Row(y)), Panel_Window::MARKER) << x << ", " << y;
                painted += picture.At(x, window.Row(y)) != Ground() ? 1 : 0;
            }
        }
    }
    EXPECT_GT(painted, 1000);
}

/** Sweeps every pixel row: the record whose icon stands there is the record that a click there takes. */
TEST_F(Tree_Paint_Test, what_is_clicked_is_what_is_painted) {
    constexpr int record_nb = 60;
    std::vector<Icon_File> files;
    std::deque<std::string> names;
    std::map<std::uint32_t, int> record_of;
    tree.Make_Random(3, record_nb, 3, 4);
    for (int i = 0; i < record_nb; ++i) {
        const auto color = static_cast<std::uint32_t>(0x400000 + i * 0x10203);
        files.emplace_back(names.emplace_back("icon sweep " + std::to_string(i) + ".tga"), color);
        tree[i].icon = names.back().c_str();
        tree[i].level = 0;  // all icons in one column; the structure is in flags and sizes
        record_of[color] = i;
    }
    const int icon_x = BOX_X + SPACE_DIM + 20 + 3;
    int rows_seen = 0;
    for (const int position : {0, 18, 36, 7, 100, 131, 300}) {
        vertical.value = static_cast<float>(position);
        Draw();
        const int top = Tree_Pixels(vertical.value);
        const Window_Picture picture = Pixels();
        for (int y = BOX_Y; y < BOX_Y + BOX_HEIGHT; ++y) {
            const std::uint32_t color = picture.At(icon_x, window.Row(y));
            Point_At(BOX_X + SPACE_DIM + 100, y);
            db_drag = {};
            Click(LEFT_PRESS);
            const int clicked = Tree_Row_Find(tree.Nb(), tree.Pt(), db_drag.anchor_row);
            if (color != Ground()) {
                ASSERT_EQ(record_of.count(color), 1U) << y;
                ASSERT_TRUE(db_drag.active);
                ASSERT_EQ(record_of[color], clicked) << "position " << position << " pixel row " << y;
                rows_seen++;
            } else if (db_drag.active && clicked >= 0) {
                // Bare ground: the two pixels between icons, or a row above the first one that is drawn.
                const int in_row = top + BOX_Y + BOX_HEIGHT - y - Tree_Row_Middle(db_drag.anchor_row);
                ASSERT_TRUE(in_row < -8 || in_row > 7 || db_drag.anchor_row < top / DB_ROW_HEIGHT)
                    << "position " << position << " pixel row " << y;
            }
        }
    }
    EXPECT_GT(rows_seen, 5 * 9 * ICON_SIZE);
}

TEST_F(Tree_Paint_Test, texts_stay_inside_their_rows) {
    for (int i = 0; i < 4; ++i) {
        tree.Add(0, i % 2 == 0 ? "g|\xC4jpqy" : nullptr, i % 2 == 0 ? "g|jpqy" : nullptr);
    }
    Tidy();
    Draw();
    const Window_Picture picture = Pixels();
    int inked = 0;
    for (int y = BOX_Y; y < BOX_Y + BOX_HEIGHT; ++y) {
        bool ink = false;
        for (int x = BOX_X + SPACE_DIM + 60 + SPACE_DIM; x < BOX_X + BOX_WIDTH; ++x) {
            ink = ink || picture.At(x, window.Row(y)) != Ground();
        }
        if (ink) {
            inked++;
            const int row = Tree_Row_At(BOX_Y + BOX_HEIGHT - y);
            EXPECT_TRUE(row == 0 || row == 2) << "pixel row " << y;
        }
    }
    EXPECT_GT(inked, 2 * 9);
}

TEST_F(Tree_Paint_Test, the_base_line_lies_four_pixels_below_the_middle_line) {
    const Drawing_Recorder recorder;
    const std::vector<Drawn_Text>& drawn_texts = recorder.texts;
    tree.Add(0, "Folder", "a");
    tree.Add(1, nullptr, "b");
    tree.Add(1, "Leaf");
    Tidy();
    Draw();
    ASSERT_EQ(drawn_texts.size(), 6U);
    const wchar_t* const texts[] = {L"Folder", L": ", L"a", L"b", L"Leaf", L": "};
    const int rows[] = {0, 0, 0, 1, 2, 2};
    const bool bold[] = {false, false, true, true, false, false};
    for (std::size_t i = 0; i < drawn_texts.size(); ++i) {
        EXPECT_EQ(drawn_texts[i].text, texts[i]);
        EXPECT_EQ(drawn_texts[i].base_line, BOX_Y + BOX_HEIGHT - Tree_Row_Middle(rows[i]) - 4) << i;
        EXPECT_EQ(drawn_texts[i].bold, bold[i]) << i;
    }
    EXPECT_EQ(drawn_texts[0].x, BOX_X + SPACE_DIM + 60 + SPACE_DIM);
    EXPECT_EQ(drawn_texts[3].x, BOX_X + SPACE_DIM + 20 + 60 + SPACE_DIM);
    EXPECT_GT(drawn_texts[1].x, drawn_texts[0].x);
    EXPECT_GT(drawn_texts[2].x, drawn_texts[1].x);
}

TEST_F(Tree_Paint_Test, colors_tell_locked_checked_and_no_access_rows) {
    const Drawing_Recorder recorder;
    const std::vector<Drawn_Text>& drawn_texts = recorder.texts;
    struct Case {
        std::uint16_t flag, state;
        COLORREF name;
    };
    const Case cases[] = {
        {0, 0, 0xFF0000}, {0, 1, 0xFF0000},    {0, 2, 0},           {0, 0x10, 128},
        {0, 0x12, 128},   {0x10, 0, 0xFF0000}, {0x10, 2, 0xFF0000}, {0x10, 0x10, 0xFF0000},
    };
    for (const Case& each : cases) {
        tree.Add(0, "t", "n");
        tree[tree.Nb() - 1].color = each.state == 1 ? 0x123456 : 0;
    }
    tree.Finish();
    for (int i = 0; i < tree.Nb(); ++i) {
        tree[i].flag |= cases[i].flag;
        tree[i].state = cases[i].state;
    }
    Draw();
    ASSERT_EQ(drawn_texts.size(), 3U * std::size(cases));
    for (std::size_t i = 0; i < std::size(cases); ++i) {
        EXPECT_EQ(drawn_texts[3 * i].color, i == 1 ? 0x123456U : 65535U) << i;
        EXPECT_EQ(drawn_texts[3 * i + 1].color, drawn_texts[3 * i].color) << "the separator is the title's";
        EXPECT_EQ(drawn_texts[3 * i + 2].color, cases[i].name) << i;
    }
}

TEST_F(Tree_Paint_Test, check_icons_need_the_bare_mark) {
    const Icon_File green("icon check green.tga", 0x00C000);
    const Icon_File yellow("icon check yellow.tga", 0xC0C000);
    struct Case {
        std::uint16_t flag, state;
        std::uint32_t shown;
    };
    const Case cases[] = {{0, 0, 0},    {0, 1, 0xC0C000},    {0, 2, 0x00C000}, {0x10, 2, 0},
                          {0, 0x12, 0}, {0x10, 1, 0xC0C000}, {0, 0x11, 0},     {0x10, 0x11, 0}};
    for (const Case& each : cases) {
        tree.Add(0);
        static_cast<void>(each);
    }
    tree.Finish();
    for (int i = 0; i < tree.Nb(); ++i) {
        tree[i].flag |= cases[i].flag;
        tree[i].state = cases[i].state;
    }
    Draw();
    const Window_Picture picture = Pixels();
    for (int i = 0; i < tree.Nb(); ++i) {
        const int y = BOX_Y + BOX_HEIGHT - Tree_Row_Middle(i);
        EXPECT_EQ(picture.At(BOX_X + SPACE_DIM + 40 + 5, window.Row(y)),
                  cases[i].shown != 0 ? cases[i].shown : Ground())
            << i;
    }
}

TEST_F(Tree_Paint_Test, an_item_s_icon_begins_where_its_lead_cell_ends) {
    const Icon_File icon(DB_ICON_DEFAULT, 0x804020);
    tree.Add(0);
    tree.Add(1);
    Tidy();
    Draw();
    for (int row = 0; row < 2; ++row) {
        const int x = BOX_X + SPACE_DIM + 20 * row + 20;
        const int y = BOX_Y + BOX_HEIGHT - Tree_Row_Middle(row) + 4;  // beside the lead's line
        EXPECT_NE(Pixel(x - 1, y), 0x804020U);
        EXPECT_EQ(Pixel(x, y), 0x804020U);
        EXPECT_EQ(Pixel(x + ICON_SIZE - 1, y), 0x804020U);
        EXPECT_NE(Pixel(x + ICON_SIZE, y), 0x804020U);
    }
}

TEST_F(Tree_Paint_Test, lines_are_blue) {
    for (const int level : {0, 1, 0}) {
        tree.Add(level);
    }
    Tidy();
    tree[0].flag = 0;  // collapsed: its lead cell leaves a gap to the next one, which the line bridges
    Draw();
    EXPECT_EQ(Pixel(BOX_X + SPACE_DIM + 7, BOX_Y + BOX_HEIGHT - Tree_Row_Middle(0) - 9), 0x0000FFU);
}

TEST_F(Tree_Paint_Test, the_anchor_stands_above_the_first_row) {
    const Icon_File anchor("icon anchor.tga", 0x804020);
    Make_Flat(40);
    Draw();
    const int x = BOX_X + SPACE_DIM + 5;
    EXPECT_EQ(Pixel(x, BOX_Y + BOX_HEIGHT - 1), 0x804020U);
    EXPECT_EQ(Pixel(x, BOX_Y + BOX_HEIGHT - 10), 0x804020U);
    EXPECT_NE(Pixel(x, BOX_Y + BOX_HEIGHT - 11), 0x804020U);
    vertical.value = 18.0F;
    Draw();
    EXPECT_NE(Pixel(x, BOX_Y + BOX_HEIGHT - 1), 0x804020U);
}

TEST_F(Tree_Paint_Test, lines_go_past_rows_whose_ancestors_go_on) {
    for (const int level : {0, 1, 2, 1, 0}) {
        tree.Add(level);
    }
    Tidy();
    const Drawing_Recorder recorder;
    const std::vector<POINT>& moves = recorder.starts;
    const std::vector<POINT>& line_ends = recorder.ends;
    Draw();
    using Lines = std::multiset<std::pair<int, int>>;  // column of the line, row
    Lines connectors;
    Lines joints;  // from a row's own lead to the next sibling
    for (std::size_t i = 0; i < moves.size(); ++i) {
        EXPECT_EQ(moves[i].x, line_ends[i].x);
        const int column = moves[i].x - BOX_X - SPACE_DIM;
        if (line_ends[i].y > moves[i].y) {
            const int row = Tree_Row_At(BOX_Y + BOX_HEIGHT - line_ends[i].y + 9);
            EXPECT_EQ(line_ends[i].y - moves[i].y, 18 + 2);  // from two pixels below the row to the row above
            connectors.insert({column, row});
        } else {
            joints.insert({column, Tree_Row_At(BOX_Y + BOX_HEIGHT - moves[i].y)});
        }
    }
    EXPECT_EQ(connectors, (Lines{{7, 1}, {7, 2}, {27, 2}, {7, 3}}));
    EXPECT_EQ(joints, (Lines{{7, 0}, {27, 1}}));
}

TEST_F(Tree_Paint_Test, lines_between_siblings_have_no_gaps) {
    tree.Make_Random(8, 120, 3, 3);
    for (int seed_row = 0; seed_row < 5; ++seed_row) {
        vertical.value = static_cast<float>(seed_row * 150);
        Draw();
        const int top = Tree_Pixels(vertical.value);
        const Window_Picture picture = Pixels();
        const std::vector<int> order = Displayed_Records(tree.rows);
        int checked = 0;
        for (std::size_t row = 0; row < order.size(); ++row) {
            const DB_List& record = tree[order[row]];
            std::size_t next = row + 1;
            while (next < order.size() && tree[order[next]].level > record.level) {
                ++next;
            }
            if (next == order.size() || tree[order[next]].level != record.level) {
                continue;
            }
            const int x = BOX_X + SPACE_DIM + 7 + 20 * record.level;
            for (int y = Tree_Row_Middle(static_cast<int>(row)); y <= Tree_Row_Middle(static_cast<int>(next)); ++y) {
                const int at = BOX_Y + BOX_HEIGHT + top - y;
                // rows above the first one are not drawn
                if (at >= BOX_Y && y >= (top / DB_ROW_HEIGHT + 1) * DB_ROW_HEIGHT) {
                    ASSERT_NE(picture.At(x, window.Row(at)), Ground()) << "rows " << row << " to " << next;
                    ++checked;
                }
            }
        }
        EXPECT_GT(checked, 100);
    }
}

TEST_F(Tree_Paint_Test, trees_deeper_than_the_lines_are_drawn_without_harm) {
    for (int i = 0; i < 130; ++i) {
        tree.Add(i, "t", "n");
    }
    tree.Add(0);
    Tidy();
    tree[40].level = 60000;
    horizontal.value = 2000.0F;
    vertical.value = 1800.0F;
    EXPECT_EQ(Draw(), 1);
}

TEST_F(Tree_Paint_Test, tabs_leave_room_of_three_average_characters) {
    tree.Add(0, nullptr, "ab");
    tree.Add(0, nullptr, "a\tb");
    tree.Add(0, nullptr, "\t");
    Tidy();
    const int all = DB_List_Text_Pos(&box, 3, tree.Pt());
    const int tab = DB_List_Text_Pos(&box, 1, &tree[2]) - DB_List_Text_Pos(&box, 1, &tree[0]);
    const int plain = DB_List_Text_Pos(&box, 1, &tree[0]);
    EXPECT_EQ(DB_List_Text_Pos(&box, 1, &tree[1]), all);
    EXPECT_EQ(all - plain, tab + plain - 2 * SPACE_DIM - 60);
    const HDC dc = Y_setup(window.Get(), "test");
    TEXTMETRICA metrics = {};
    SIZE size = {};
    SIZE letter = {};
    {
        const Selected_Object selected(dc, Tree_Fonts::For(box).Get(Tree_Font::Bold));
        ::GetTextMetricsA(dc, &metrics);
        ::GetTextExtentPoint32A(dc, "\t", 1, &size);
        ::GetTextExtentPoint32A(dc, "a", 1, &letter);
    }
    Y_release(window.Get(), dc);
    EXPECT_EQ(DB_List_Text_Pos(&box, 1, &tree[2]), 2 * SPACE_DIM + 60 + size.cx + 3 * metrics.tmAveCharWidth);

    const Drawing_Recorder recorder;
    const std::vector<Drawn_Text>& drawn_texts = recorder.texts;
    Draw();
    ASSERT_EQ(drawn_texts.size(), 3U);  // nothing for the tab alone
    EXPECT_EQ(drawn_texts[1].text, L"a");
    EXPECT_EQ(drawn_texts[2].text, L"b");
    EXPECT_EQ(drawn_texts[2].x - drawn_texts[1].x, letter.cx + size.cx + 3 * static_cast<int>(metrics.tmAveCharWidth));
}

TEST_F(Tree_Paint_Test, columns_are_drawn_at_their_places) {
    tree.Add(0, "t", "n");
    Tidy();
    std::int32_t x[2] = {};
    std::uint32_t color[2] = {0x112233, 0};
    char* label[2] = {tree.Keep("size"), tree.Keep("date")};
    char* value[2] = {tree.Keep("12"), tree.Keep("today")};
    tree[0].column_nb = 2;
    tree[0].column_x = x;
    tree[0].column_color = color;
    tree[0].column_label = label;
    tree[0].column_value = value;
    tree[0].flag |= DB_FLAG_LOCKED;
    tree[0].state = DB_STATE_CHECKED;
    box.width = 350;
    const Drawing_Recorder recorder;
    const std::vector<Drawn_Text>& drawn_texts = recorder.texts;
    Draw();
    ASSERT_EQ(drawn_texts.size(), 9U);
    EXPECT_EQ(drawn_texts[3].text, L"size");
    EXPECT_EQ(drawn_texts[3].x, BOX_X + x[0]);
    EXPECT_EQ(drawn_texts[3].color, 0x112233U);
    EXPECT_FALSE(drawn_texts[3].bold);
    EXPECT_EQ(drawn_texts[4].text, L": ");
    EXPECT_EQ(drawn_texts[5].text, L"12");
    EXPECT_EQ(drawn_texts[5].color, 0U);  // the value's colour does not look at the lock
    EXPECT_TRUE(drawn_texts[5].bold);
    EXPECT_EQ(drawn_texts[6].x, BOX_X + x[1]);
    EXPECT_EQ(drawn_texts[6].color, 65535U);
    const int separator = Measured(Tree_Font::Regular, ": ");
    EXPECT_EQ(x[1] - x[0], 20 + Measured(Tree_Font::Regular, "size") + separator + Measured(Tree_Font::Bold, "12"));
    EXPECT_EQ(DB_List_Text_Pos(&box, 1, tree.Pt()),
              x[1] + 20 + Measured(Tree_Font::Regular, "date") + separator + Measured(Tree_Font::Bold, "today"));
    DB_List_Forget(tree.Pt());
    tree[0].column_nb = 0;
}

// ---------------- device contexts and balance

TEST_F(Tree_Paint_Test, without_a_device_context_nothing_changes_and_the_operation_says_so) {
    Make_Flat(30);
    Draw();
    tree[3].row = 99;
    vertical.value = 18.0F;
    db_drag.active = true;
    db_drag.owner = &box;
    db_drag.band_shown = true;
    db_drag.current = {7, 8};
    box.window = nullptr;
    const auto failed = [&](const char* operation) {
        std::vector<std::string> texts;
        for (const Panel_Message& message : messages.Take()) {
            if (message.text.find("Click") == std::string::npos || message.text.find("Y_setup") == 0) {
                EXPECT_EQ(message.level, TRACE_LEVEL);
                texts.push_back(message.text);
            }
        }
        EXPECT_EQ(texts, std::vector<std::string>{std::string("Y_setup(tool_db_fct: ") + operation + ") GetDC failed"});
    };
    messages.Take();
    EXPECT_EQ(Draw(), 1);
    failed("DB_List_Draw");
    EXPECT_EQ(tree[3].row, 99);
    EXPECT_EQ(vertical.value, 18.0F);
    EXPECT_EQ(DB_List_Text_Pos(&box, tree.Nb(), tree.Pt()), 0);
    failed("DB_List_Text_Pos");
    EXPECT_EQ(Click(RELEASE), 0);
    failed("DB_List_Click");
    EXPECT_TRUE(db_drag.active);
    EXPECT_EQ(Motion(LEFT_DRAG), 0);
    failed("DB_List_Motion");
    EXPECT_EQ(db_drag.current.x, 7);
    DB_List_Draw_Box(&box, &horizontal, &vertical);
    failed("DB_List_Draw_Box");
    EXPECT_TRUE(db_drag.band_shown);
}

TEST_F(Tree_Paint_Test, a_motion_that_draws_no_band_says_so) {
    Make_Branch(30);
    Draw();
    Point_At_Row(3);
    Click(LEFT_PRESS);
    Point_At_Row(5);
    const short width = box.width;
    box.width = 0;
    EXPECT_EQ(Motion(LEFT_DRAG), 0) << "no pixels";
    box.width = width;
    {
        Gdi_Recorder recorder("Kit_Widgets.dll");
        Gdi_Recorder::Get_DC_Fail(2);
        EXPECT_EQ(Motion(LEFT_DRAG), 0) << "where the pointer is can be asked, and nothing drawn";
        Gdi_Recorder::Get_DC_Fail(0);
    }
    EXPECT_FALSE(db_drag.band_shown);
    EXPECT_EQ(Motion(LEFT_DRAG), 1);
    EXPECT_TRUE(db_drag.band_shown);
    Click(RELEASE);
}

TEST_F(Tree_Paint_Test, every_device_context_may_fail) {
    Make_Branch(30);
    Draw();
    int failures = 0;
    for (int n = 1; n <= 12; ++n) {
        Gdi_Recorder recorder("Kit_Widgets.dll");
        Gdi_Recorder::Get_DC_Fail(n);
        messages.Take();
        horizontal.value = 0.0F;
        Draw();
        Point_At_Row(3);
        Click(LEFT_PRESS);
        Point_At_Row(5);
        Motion(LEFT_DRAG);
        if (Click(RELEASE) != 0) {
            Select_Range();
        }
        for (const Panel_Message& message : messages.Take()) {
            failures += message.text.find("GetDC failed") != std::string::npos ? 1 : 0;
        }
        Gdi_Recorder::Get_DC_Fail(0);
        db_drag = {};
    }
    EXPECT_GE(failures, 8);
    Draw();
    EXPECT_EQ(tree[3].row, 3);
}

TEST_F(Tree_Paint_Test, everything_taken_from_gdi_is_given_back) {
    Make_Branch(30);
    Draw();  // makes the fonts, which are kept
    const Import_Counter counter("", "gdi32.dll");
    const Import_Counter released("", "user32.dll");
    const Gdi_Recorder recorder("Kit_Widgets.dll");
    for (int i = 0; i < 3; ++i) {
        Draw();
        Point_At_Row(3);
        Click(LEFT_PRESS);
        Point_At_Row(5);
        Motion(LEFT_DRAG);
        Motion(LEFT_DRAG);
        Click(RELEASE);
        Select_Range();
    }
    std::uint64_t created = 0;
    for (const std::string& function : Import_Names("", "gdi32.dll")) {
        created += function.rfind("Create", 0) == 0 ? counter.Calls(function.c_str()) : 0;
    }
    EXPECT_GE(created, 3U * 10U);
    EXPECT_EQ(created, counter.Calls("DeleteObject") + counter.Calls("DeleteDC")) << counter.Text();
    // The widget library puts stock objects into a device context that it gives back: three.
    const std::uint64_t stock = 3 * released.Calls("ReleaseDC");
    EXPECT_GT(stock, 0U);
    EXPECT_EQ((counter.Calls("SelectObject") - stock) % 2, 0U) << counter.Text();
    EXPECT_EQ(counter.Calls("SaveDC"), counter.Calls("RestoreDC"));
    EXPECT_EQ(Gdi_Recorder::Unbalanced(), "");  // the device contexts, which the widget library gets and releases
}

TEST_F(Tree_Paint_Test, the_fonts_are_made_once) {
    Make_Flat(3);
    Draw();
    const HFONT regular = Tree_Fonts::For(box).Get(Tree_Font::Regular);
    const HFONT bold = Tree_Fonts::For(box).Get(Tree_Font::Bold);
    EXPECT_NE(regular, bold);
    EXPECT_NE(regular, ::GetStockObject(SYSTEM_FONT));
    const Import_Counter counter("Kit_Widgets.dll", "gdi32.dll");
    box.font_scale = 30;
    Draw();
    EXPECT_EQ(counter.Calls("CreateFontIndirectA"), 0U);
    EXPECT_EQ(Tree_Fonts::For(box).Get(Tree_Font::Regular), regular);
    EXPECT_EQ(Tree_Fonts::For(box).Get(Tree_Font::Bold), bold);
}

TEST_F(Tree_Paint_Test, a_second_drawing_measures_no_text) {
    Make_Branch(300);
    Draw();
    const Import_Counter counter("", "gdi32.dll");
    Draw();
    vertical.value = 90.0F;
    Draw();
    EXPECT_EQ(counter.Calls("GetTextExtentPoint32A"), 0U) << counter.Text();
    EXPECT_GT(counter.Calls("ExtTextOutW"), 0U);
    DB_List_Forget(tree.Pt());
    Draw();
    EXPECT_GT(counter.Calls("GetTextExtentPoint32A"), 0U);
}

TEST_F(Tree_Paint_Test, a_drawing_asks_for_its_box_only) {
    Make_Branch(3000);
    Draw();
    const Import_Counter counter("", "gdi32.dll");
    Draw();
    EXPECT_LE(counter.Calls("ExtTextOutW"), 3U * (BOX_HEIGHT / DB_ROW_HEIGHT + 2)) << counter.Text();
    EXPECT_LE(counter.Calls(), 400U) << counter.Text();
}

TEST_F(Tree_Paint_Test, failed_allocations_leave_a_tree_that_can_be_drawn) {
    Make_Branch(30);
    tree[2].name = tree.Keep("a\ttab");
    Draw();
    const Window_Picture whole = Pixels();
    messages.Listen(false);
    const int failed = Fail_Each_Allocation([&] {
        DB_List_Forget(tree.Pt());
        EXPECT_EQ(Draw(), 1);
    });
    messages.Listen(true);
    EXPECT_GE(failed, 3);
    EXPECT_EQ(tree[30].row, 30);
    DB_List_Forget(tree.Pt());
    EXPECT_EQ(Draw(), 1);
    EXPECT_EQ(Pixels(), whole);
}

}  // namespace
