#include <gtest/gtest.h>

#include "kits/common/messages.h"

namespace {

struct Expected_Run {
    Message_Style style;
    const char* text;
};

void Expect_Runs(const char* text, const std::vector<Expected_Run>& expected) {
    const std::vector<Message_Run> runs = Message_Runs(text);
    ASSERT_EQ(runs.size(), expected.size()) << testing::PrintToString(Message_Plain(text));
    std::string plain;
    for (std::size_t i = 0; i < runs.size(); ++i) {
        EXPECT_EQ(runs[i].style, expected[i].style) << i;
        EXPECT_EQ(runs[i].text, expected[i].text) << i;
        plain += runs[i].text;
    }
    EXPECT_EQ(Message_Plain(text), plain);
}

using enum Message_Style;

}  // namespace

TEST(Message_Runs, of_a_plain_text_are_one) {
    Expect_Runs("in Tool_Tag::Draw()", {{Plain, "in Tool_Tag::Draw()"}});
    Expect_Runs("", {});
    Expect_Runs(nullptr, {});
}

TEST(Message_Runs, set_a_warning_apart) {
    Expect_Runs("\xF1\x05WARNING:\x02 No function associated with propagate",
                {{Warning, "WARNING:"}, {Plain, " No function associated with propagate"}});
}

TEST(Message_Runs, set_a_strong_part_apart) {
    Expect_Runs(
        "Computing Peak Fit: \x01"
        "12\x02 peaks ...",
        {{Plain, "Computing Peak Fit: "}, {Strong, "12"}, {Plain, " peaks ..."}});
    Expect_Runs(
        "\xF1\x05WARNING:\x02 Unable to find less than \x01"
        "3\x02 peaks",
        {{Warning, "WARNING:"}, {Plain, " Unable to find less than "}, {Strong, "3"}, {Plain, " peaks"}});
}

TEST(Message_Runs, keep_the_indent_before_a_strong_text) {
    Expect_Runs(
        "\xF1\x09\x01"
        "C:\\out.csv",
        {{Indented, ""}, {Strong, "C:\\out.csv"}});
    Expect_Runs("\xF1\x09 Permission denied", {{Indented, " Permission denied"}});
}

TEST(Message_Runs, take_an_unknown_style_as_plain) {
    Expect_Runs(
        "a\xF1\x03"
        "b\x02"
        "c",
        {{Plain, "abc"}});
    Expect_Runs("\xF1\x05w\xF1\x03p", {{Warning, "w"}, {Plain, "p"}});
}

TEST(Message_Runs, leave_a_letter_alone_that_looks_like_a_lead_byte) {
    // The letter n with a tilde of the Western code page.
    Expect_Runs(
        "Espa\xF1"
        "a",
        {{Plain,
          "Espa\xF1"
          "a"}});
    Expect_Runs("ba\xF1\nx", {{Plain, "ba\xF1\nx"}});
    Expect_Runs("end\xF1", {{Plain, "end\xF1"}});
}

TEST(Message_Runs, never_show_a_style_byte) {
    const std::string plain = Message_Plain("\xF1\x05\x01\x02\x02\x01\xF1\x09t\x01\x02\xF1\x05");
    EXPECT_EQ(plain, "t");
}

TEST(Message_Runs, are_not_empty_but_for_an_indent_before_another_style) {
    Expect_Runs(
        "\xF1\x09\x02"
        "abc",
        {{Plain, "abc"}});
    Expect_Runs(
        "\xF1\x09\xF1\x09"
        "abc",
        {{Indented, "abc"}});
    Expect_Runs(
        "\xF1\x09\x01\xF1\x09"
        "abc",
        {{Indented, "abc"}});
    Expect_Runs("a\xF1\x09", {{Plain, "a"}});
    Expect_Runs("a\xF1\x09\x02", {{Plain, "a"}});
    Expect_Runs("a\xF1\x09\x01", {{Plain, "a"}});
    Expect_Runs(
        "\xF1\x09\xF1\x05"
        "w",
        {{Indented, ""}, {Warning, "w"}});
    Expect_Runs(
        "\xF1\x09"
        "a\x02\xF1\x09"
        "b",
        {{Indented, "a"}, {Indented, "b"}});
}
