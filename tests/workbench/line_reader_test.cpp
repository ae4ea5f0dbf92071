#include "workbench/model/line_reader.h"

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

using namespace workbench;

namespace {

TEST(Line_Reader, takes_words_numbers_and_texts_in_their_order) {
    Line_Reader reader(R"(tag  12 -3.5e2 "a ""b" end)");
    EXPECT_EQ(reader.Word(), "tag");
    EXPECT_EQ(reader.Number(12), 12U);
    EXPECT_EQ(reader.Real(), -350.0F);
    EXPECT_EQ(reader.Text(), "a ");
    EXPECT_EQ(reader.Text(), "b");
    EXPECT_TRUE(reader.Is_Next("en"));
    EXPECT_FALSE(reader.Take("en"));
    EXPECT_TRUE(reader.Take("end"));
    reader.End();
    EXPECT_EQ(reader.Error(), "");
}

TEST(Line_Reader, the_first_thing_that_is_wrong_is_kept) {
    Line_Reader reader("13 x");
    EXPECT_EQ(reader.Number(12), 0U);
    EXPECT_EQ(reader.Real(), 0.0F);
    reader.Expect("y");
    EXPECT_EQ(reader.Error(), "a number is expected");
    Line_Reader word("x");
    word.Expect("y");
    EXPECT_EQ(word.Error(), "\"y\" is expected");
    Line_Reader more("x y");
    more.Expect("x");
    more.End();
    EXPECT_EQ(more.Error(), "there is more than expected");
}

TEST(Line_Reader, numbers_that_are_none_are_refused) {
    for (const char* text : {"", "-1", "1x", "0x10", "99999999999999999999999", "1.5"}) {
        Line_Reader reader(text);
        reader.Number(100);
        EXPECT_EQ(reader.Error(), "a number is expected") << text;
    }
    for (const char* text : {"", "nan", "inf", "-inf", "1e99", "1,5", "-", "1.5.5"}) {
        Line_Reader reader(text);
        reader.Real();
        EXPECT_EQ(reader.Error(), "a number is expected") << text;
    }
}

TEST(Line_Reader, texts_that_are_broken_are_refused) {
    for (const char* text : {"", "a", "\"", "\"a", "\"a\\\"", "\"\\", "\"\\x4", "\"\\x"}) {
        Line_Reader reader(text);
        reader.Text();
        EXPECT_FALSE(reader.Error().empty()) << text;
    }
    for (const char* text : {R"("\n")", R"("\xZZ")", R"("\x4 ")"}) {
        Line_Reader reader(text);
        reader.Text();
        EXPECT_EQ(reader.Error(), "a character after \\ means nothing") << text;
    }
}

TEST(Line_Reader, every_text_comes_back_from_between_its_quotation_marks) {
    std::mt19937 random(3);
    for (int run = 0; run < 2000; ++run) {
        std::string text;
        for (auto left = random() % 20; left > 0; --left) {
            constexpr char special[] = {'"', '\\', ' ', '\t', '\n', '\0', 'x', '4'};
            text += random() % 2 == 0 ? special[random() % sizeof special] : static_cast<char>(random() % 256);
        }
        const std::string quoted = Quoted_Text(text);
        EXPECT_EQ(quoted.find('\n'), std::string::npos);
        Line_Reader reader(quoted);
        EXPECT_EQ(reader.Text(), text);
        reader.End();
        EXPECT_EQ(reader.Error(), "");
    }
}

TEST(Line_Reader, control_characters_are_written_so_that_they_can_be_seen) {
    EXPECT_EQ(Quoted_Text("a\t\x7F\xC3\xA4 \"\\"), "\"a\\x09\\x7F\xC3\xA4 \\\"\\\\\"");
}

TEST(Line_Reader, lines_end_with_either_kind_of_end) {
    std::string_view text = "one\r\n\ntwo\n three";
    std::vector<std::string_view> lines;
    while (!text.empty()) {
        lines.push_back(Line_Take(text));
    }
    EXPECT_EQ(lines, (std::vector<std::string_view>{"one", "", "two", " three"}));
    EXPECT_EQ(Line_Take(text), "");
}

TEST(Line_Reader, utf8_is_told_from_other_bytes) {
    for (const char* text : {"", "plain", "Gro\xC3\x9F", "\xE8\x82\x9D", "\xF0\x9F\xA7\xA0", "\xF4\x8F\xBF\xBF"}) {
        EXPECT_TRUE(Is_Utf8(text)) << text;
    }
    for (const char* text : {"\xE4", "\xC3", "\xC3(", "\xC0\x80", "\xE0\x80\x80", "\xED\xA0\x80", "\xF4\x90\x80\x80",
                             "\xF8\x88\x80\x80\x80", "\x80", "a\xE8\x82"}) {
        EXPECT_FALSE(Is_Utf8(text)) << text;
    }
}

}  // namespace
