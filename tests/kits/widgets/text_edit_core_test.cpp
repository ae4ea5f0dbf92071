// The editing model against a plain one: a vector of whole characters.
#include "kits/widgets/text_edit_core.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstring>
#include <random>
#include <string>
#include <vector>

namespace {

constexpr int BUFFER_SIZE = 64;

/** A buffer between two guard bytes, and an edit of it. */
struct Edited {
    explicit Edited(const char* start) {
        storage.fill('#');
        std::strcpy(storage.data() + 1, start);
    }
    Text_Edit At(int caret, int anchor) { return {storage.data() + 1, BUFFER_SIZE, caret, anchor}; }
    std::string Text() const { return storage.data() + 1; }
    bool Guards_Hold() const { return storage.front() == '#' && storage.back() == '#'; }
    std::array<char, BUFFER_SIZE + 2> storage{};
};

/** What an editor does, said with characters instead of bytes. */
struct Plain_Model {
    std::vector<std::string> characters;
    std::size_t caret = 0;
    std::size_t anchor = 0;

    std::string Text() const { return Bytes(0, characters.size()); }
    std::string Bytes(std::size_t from, std::size_t to) const {
        std::string bytes;
        for (std::size_t i = from; i < to; ++i) {
            bytes += characters[i];
        }
        return bytes;
    }
    int Offset(std::size_t character) const { return static_cast<int>(Bytes(0, character).size()); }
    bool Erase_Selection() {
        const auto [low, high] = std::minmax(caret, anchor);
        const auto begin = characters.begin();
        characters.erase(begin + static_cast<std::ptrdiff_t>(low), begin + static_cast<std::ptrdiff_t>(high));
        const bool erased = low != high;
        caret = anchor = low;
        return erased;
    }
    void Move(std::size_t to, bool select) {
        caret = to;
        anchor = select ? anchor : to;
    }
    void Insert(const std::vector<std::string>& inserted) {
        Erase_Selection();
        for (const std::string& one : inserted) {
            if (Text().size() + one.size() > BUFFER_SIZE - 1) {
                break;
            }
            characters.insert(characters.begin() + static_cast<std::ptrdiff_t>(caret), one);
            anchor = ++caret;
        }
    }
};

// Characters of the code page under test. In the Western one every byte is one, also where neighbours look like UTF-8.
#if defined(_WIN32)
const std::vector<std::string> ALPHABET = {"a", "b", " ", "Z", "~", "\xC3", "\xA9", "\xDF", "\x96", "\xE2", "\x82"};
constexpr const char* EURO = "\x80";
constexpr const char* ACUTE = "\xE9";
#else
const std::vector<std::string> ALPHABET = {"a", "b", " ", "Z", "~", "\xC3\xA9", "\xE2\x82\xAC", "\xF0\x9F\xA7\xA0"};
constexpr const char* EURO = "\xE2\x82\xAC";
constexpr const char* ACUTE = "\xC3\xA9";
#endif

}  // namespace

TEST(Text_Edit_Core, ten_thousand_random_keys_agree_with_a_plain_model) {
    std::mt19937 random(20260);
    const auto below = [&](std::size_t limit) { return static_cast<std::size_t>(random()) % limit; };
    Edited edited("");
    Plain_Model model;
    int caret = 0;
    int anchor = 0;
    std::size_t longest = 0;
    for (int i = 0; i < 10000; ++i) {
        Text_Edit edit = edited.At(caret, anchor);
        const bool select = below(3) == 0;
        const auto [low, high] = std::minmax(model.caret, model.anchor);
        const bool has_selection = low != high;
        switch (below(10)) {
            case 0:
            case 1:
            case 2: {
                const std::string& one = ALPHABET[below(ALPHABET.size())];
                edit.Insert(one);
                model.Insert({one});
                break;
            }
            case 3: {
                std::vector<std::string> several(below(12));
                std::string joined;
                for (std::string& one : several) {
                    joined += one = ALPHABET[below(ALPHABET.size())];
                }
                if (!several.empty()) {
                    model.Insert(several);
                }
                edit.Insert(joined);
                break;
            }
            case 4:
                edit.Left(select);
                model.Move(!select && has_selection ? low : model.caret - (model.caret > 0 ? 1U : 0U), select);
                break;
            case 5:
                edit.Right(select);
                model.Move(!select && has_selection ? high : std::min(model.caret + 1, model.characters.size()),
                           select);
                break;
            case 6: {
                const bool home = below(2) == 0;
                home ? edit.Home(select) : edit.End(select);
                model.Move(home ? 0 : model.characters.size(), select);
                break;
            }
            case 7: {
                const bool done = edit.Backspace();
                const bool can = has_selection || model.caret > 0;
                if (!has_selection && can) {
                    model.anchor = model.caret - 1;
                }
                model.Erase_Selection();
                ASSERT_EQ(can, done);
                break;
            }
            case 8: {
                const bool done = edit.Delete();
                const bool can = has_selection || model.caret < model.characters.size();
                if (!has_selection && can) {
                    model.anchor = model.caret + 1;
                }
                model.Erase_Selection();
                ASSERT_EQ(can, done);
                break;
            }
            default: {
                const std::size_t to = below(model.characters.size() + 1);
                edit.Move_To(model.Offset(to), select);
                model.Move(to, select);
                break;
            }
        }
        caret = edit.Caret();
        anchor = edit.Anchor();
        longest = std::max(longest, model.Text().size());
        ASSERT_EQ(model.Text(), edited.Text()) << i;
        ASSERT_EQ(model.Offset(model.caret), caret) << i;
        ASSERT_EQ(model.Offset(model.anchor), anchor) << i;
        const auto [first, last] = std::minmax(model.caret, model.anchor);
        ASSERT_EQ(model.Bytes(first, last), std::string(edit.Selected())) << i;
        ASSERT_TRUE(edited.Guards_Hold()) << i;
    }
    EXPECT_GE(longest, BUFFER_SIZE - 4U);  // the session came to the buffer's end
}

TEST(Text_Edit_Core, places_from_outside_move_back_to_a_whole_character) {
    const int length = static_cast<int>(std::strlen(EURO));
    Edited edited(("a" + std::string(EURO) + "b").c_str());
    EXPECT_EQ(1, edited.At(length, length - 1).Caret());
    EXPECT_EQ(length > 2 ? 1 : 0, edited.At(length, length - 1).Anchor());
    EXPECT_EQ(1 + length, edited.At(1 + length, 0).Caret());
    EXPECT_EQ(2 + length, edited.At(4000, -7).Caret());
    EXPECT_EQ(0, edited.At(4000, -7).Anchor());
}

TEST(Text_Edit_Core, text_that_the_caller_cut_is_edited_from_its_new_end) {
    Edited edited("0123456789");
    edited.storage[1 + 4] = 0;
    Text_Edit edit = edited.At(10, 10);
    EXPECT_EQ(4, edit.Caret());
    edit.Insert("x");
    EXPECT_EQ("0123x", edited.Text());
}

TEST(Text_Edit_Core, buffer_without_an_end_gets_one) {
    Edited edited("");
    std::fill_n(edited.storage.begin() + 1, BUFFER_SIZE, 'q');
    EXPECT_EQ(BUFFER_SIZE - 1, edited.At(0, 0).Length());
    EXPECT_TRUE(edited.Guards_Hold());
}

TEST(Text_Edit_Core, too_long_an_insertion_is_cut_at_a_whole_character) {
    Edited edited("");
    Text_Edit edit = edited.At(0, 0);
    const int length = static_cast<int>(std::strlen(EURO));
    std::string many;
    for (int i = 0; i < 2 * BUFFER_SIZE; ++i) {
        many += EURO;
    }
    edit.Insert("x");
    const int room = BUFFER_SIZE - 2;
    EXPECT_TRUE(edit.Insert(many));
    EXPECT_EQ(1 + room / length * length, edit.Length());
    EXPECT_FALSE(edit.Insert(EURO));
    EXPECT_EQ(room % length > 0, edit.Insert(std::string(static_cast<std::size_t>(room % length), 'y')));
    EXPECT_FALSE(edit.Insert("!"));
    EXPECT_EQ(BUFFER_SIZE - 1, edit.Length());
    EXPECT_TRUE(edited.Guards_Hold());
}

TEST(Text_Edit_Core, pasted_lines_become_one_line_without_control_characters) {
    Edited edited("");
    Text_Edit edit = edited.At(0, 0);
    edit.Insert("one\r\ntwo\tthree\x07\x7F\nfour\r\n");
    EXPECT_EQ("one two three four", edited.Text());
}

TEST(Text_Edit_Core, nothing_that_can_be_inserted_leaves_the_selection) {
    Edited edited("keep");
    Text_Edit edit = edited.At(4, 0);
    EXPECT_FALSE(edit.Insert("\n"));
    EXPECT_FALSE(edit.Insert(""));
    EXPECT_EQ("keep", edited.Text());
    EXPECT_TRUE(edit.Has_Selection());
}

TEST(Text_Edit_Core, words_are_jumped_over_with_their_blanks) {
    Edited edited("left  brain stem");
    Text_Edit edit = edited.At(0, 0);
    edit.Word_Right(false);
    EXPECT_EQ(6, edit.Caret());
    edit.Word_Right(true);
    EXPECT_EQ("brain ", std::string(edit.Selected()));
    edit.Word_Right(false);
    edit.Word_Right(false);
    EXPECT_EQ(16, edit.Caret());
    edit.Word_Left(false);
    EXPECT_EQ(12, edit.Caret());
    edit.Word_Left(false);
    edit.Word_Left(false);
    edit.Word_Left(false);
    EXPECT_EQ(0, edit.Caret());
}

TEST(Text_Edit_Core, code_points_are_inserted_as_whole_characters_or_refused) {
    Edited edited("");
    Text_Edit edit = edited.At(0, 0);
    for (const std::uint32_t code : {0x41U, 0xE9U, 0x20ACU}) {
        EXPECT_TRUE(edit.Insert_Code_Point(code));
    }
    for (const std::uint32_t code : {0U, 31U, 127U, 0x9FU, 0xD800U, 0xDFFFU, 0x110000U, 0xFFFFFFFFU}) {
        EXPECT_FALSE(edit.Insert_Code_Point(code)) << code;
    }
    EXPECT_EQ("A" + std::string(ACUTE) + EURO, edited.Text());
    edit.Backspace();
    EXPECT_EQ("A" + std::string(ACUTE), edited.Text());
    EXPECT_TRUE(edit.Insert_Code_Point(0x1F9E0U));
#if defined(_WIN32)
    EXPECT_EQ('A', edited.Text()[0]);
    EXPECT_EQ('?', edited.Text().back()) << "a character that the code page does not have";
#else
    EXPECT_EQ("A\xC3\xA9\xF0\x9F\xA7\xA0", edited.Text());
#endif
}

TEST(Text_Edit_Core, bytes_of_a_code_page_are_characters_of_their_own) {
    Edited edited("\xE9t\xE9");
    Text_Edit edit = edited.At(3, 3);
    edit.Backspace();
    edit.Backspace();
    EXPECT_EQ("\xE9", edited.Text());
}

TEST(Text_Edit_Core, bytes_that_look_like_utf8_are_letters_where_the_code_page_says_so) {
    Edited edited("a\xDF\x96");
    Text_Edit edit = edited.At(3, 3);
    edit.Backspace();
#if defined(_WIN32)
    EXPECT_EQ("a\xDF", edited.Text());
#else
    EXPECT_EQ("a", edited.Text());
#endif
}

TEST(Text_Edit_Core, first_character_shown_keeps_the_caret_in_view) {
    const auto ten_each = [](std::string_view text) { return static_cast<int>(text.size()) * 10; };
    const std::string text(50, 'x');
    for (const int position : {0, 7, 25, 50, 400}) {
        for (int caret = 0; caret <= 50; ++caret) {
            const int first = Text_First_Shown(text, caret, position, 105, ten_each);
            ASSERT_LE(first, caret);
            ASSERT_LE((caret - first) * 10, 105);
            ASSERT_LE(first, 40);  // ten characters fit: never fewer at the end
        }
    }
    EXPECT_EQ(7, Text_First_Shown(text, 12, 7, 105, ten_each));  // in view: nothing moves
    EXPECT_EQ(3, Text_First_Shown(text, 3, 7, 105, ten_each));
    EXPECT_EQ(11, Text_First_Shown(text, 21, 7, 105, ten_each));
    EXPECT_EQ(0, Text_First_Shown("short", 5, 3, 105, ten_each));
    EXPECT_EQ(4, Text_First_Shown("short", 4, 0, -3, ten_each));  // no room at all
}
