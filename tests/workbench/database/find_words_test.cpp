#include "workbench/database/find_words.h"

#include <gtest/gtest.h>

using namespace workbench;

namespace {

TEST(Find_Words, every_word_must_occur) {
    const Find_Words words("scan two");
    EXPECT_TRUE(words.Match("the second scan of two"));
    EXPECT_TRUE(words.Match("two scans"));
    EXPECT_FALSE(words.Match("scan one"));
    EXPECT_FALSE(words.Match("two"));
}

TEST(Find_Words, english_letters_match_either_case) {
    EXPECT_TRUE(Find_Words("mR").Match("brain_Mr.dcm"));
    EXPECT_TRUE(Find_Words("[").Match("a[b"));
    EXPECT_FALSE(Find_Words("[").Match("a{b"));
    EXPECT_TRUE(Find_Words("\xC4").Match("\xC4"));
    EXPECT_FALSE(Find_Words("\xE4").Match("\xC4"));
}

TEST(Find_Words, without_words_nothing_matches) {
    for (const char* typed : {"", " ", " \t "}) {
        EXPECT_TRUE(Find_Words(typed).Is_Empty());
        EXPECT_FALSE(Find_Words(typed).Match("anything"));
    }
    EXPECT_FALSE(Find_Words().Match(""));
}

TEST(Find_Words, blanks_around_words_do_not_count) {
    EXPECT_TRUE(Find_Words("  a \t b  ").Match("ab"));
    EXPECT_FALSE(Find_Words("a b").Match("a"));
}

}  // namespace
