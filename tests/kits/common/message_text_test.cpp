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

TEST(Message_Runs, Of_A_Plain_Text_Are_One) {
    Expect_Runs("in Tool_Tag::Draw()", {{Plain, "in Tool_Tag::Draw()"}});
    Expect_Runs("", {});
    Expect_Runs(nullptr, {});
}

TEST(Message_Runs, Set_A_Warning_Apart) {
    Expect_Runs("\xF1\x05WARNING:\x02 No function associated with propagate",
                {{Warning, "WARNING:"}, {Plain, " No function associated with propagate"}});
}

TEST(Message_Runs, Set_A_Strong_Part_Apart) {
    Expect_Runs(
        "Computing Peak Fit: \x01"
        "12\x02 peaks ...",
        {{Plain, "Computing Peak Fit: "}, {Strong, "12"}, {Plain, " peaks ..."}});
    Expect_Runs(
        "\xF1\x05WARNING:\x02 Unable to find less than \x01"
        "3\x02 peaks",
        {{Warning, "WARNING:"}, {Plain, " Unable to find less than "}, {Strong, "3"}, {Plain, " peaks"}});
}

TEST(Message_Runs, Keep_The_Indent_Before_A_Strong_Text) {
    Expect_Runs(
        "\xF1\x09\x01"
        "C:\\out.csv",
        {{Indented, ""}, {Strong, "C:\\out.csv"}});
    Expect_Runs("\xF1\x09 Permission denied", {{Indented, " Permission denied"}});
}

TEST(Message_Runs, Take_An_Unknown_Style_As_Plain) {
    Expect_Runs(
        "a\xF1\x03"
        "b\x02"
        "c",
        {{Plain, "abc"}});
    Expect_Runs("\xF1\x05w\xF1\x03p", {{Warning, "w"}, {Plain, "p"}});
}

TEST(Message_Runs, Leave_A_Letter_Alone_That_Looks_Like_A_Lead_Byte) {
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

TEST(Message_Runs, Never_Show_A_Style_Byte) {
    const std::string plain = Message_Plain("\xF1\x05\x01\x02\x02\x01\xF1\x09t\x01\x02\xF1\x05");
    EXPECT_EQ(plain, "t");
}

TEST(Message_Runs, Are_Not_Empty_But_For_An_Indent_Before_Another_Style) {
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
