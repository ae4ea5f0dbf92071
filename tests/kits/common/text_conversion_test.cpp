#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "kits/common/text_conversion.h"

namespace {

// One letter beyond ASCII in the code page of the system under test.
#if defined(_WIN32)
constexpr const char* LETTER = "\xE9";
#else
constexpr const char* LETTER = "\xC3\xA9";
#endif
constexpr wchar_t WIDE_LETTER = 0xE9;

}  // namespace

TEST(Wide_Text, has_the_characters_of_the_code_page) {
    wchar_t out[16];
    std::fill(std::begin(out), std::end(out), L'#');
    EXPECT_EQ(Char_2_Wchar((std::string("a") + LETTER + "b").c_str(), out, 16), 3);
    EXPECT_EQ(std::wstring(out), (std::wstring{L'a', WIDE_LETTER, L'b'}));
    EXPECT_EQ(out[4], L'#') << "nothing is written behind the end";
}

TEST(Wide_Text, is_cut_to_the_room_with_its_zero) {
    wchar_t out[5];
    std::fill(std::begin(out), std::end(out), L'#');
    EXPECT_EQ(Char_2_Wchar("abcdef", out, 4), 3);
    EXPECT_EQ(std::wstring(out), L"abc");
    EXPECT_EQ(out[4], L'#');
    EXPECT_EQ(Char_2_Wchar("abc", out, 4), 3);
    EXPECT_EQ(Char_2_Wchar("abc", out, 1), 0);
    EXPECT_EQ(out[0], 0);
}

TEST(Wide_Text, of_nothing_is_empty) {
    wchar_t out[4] = {L'#', L'#', L'#', 0};
    EXPECT_EQ(Char_2_Wchar(nullptr, out, 4), 0);
    EXPECT_EQ(out[0], 0);
    EXPECT_EQ(Char_2_Wchar("", out, 4), 0);
    EXPECT_EQ(Char_2_Wchar("a", nullptr, 4), 0);
    out[0] = L'#';
    EXPECT_EQ(Char_2_Wchar("a", out, 0), 0);
    EXPECT_EQ(Char_2_Wchar("a", out, -1), 0);
    EXPECT_EQ(out[0], L'#');
}

#if defined(_WIN32)
TEST(Characters, of_a_double_byte_page_take_two_bytes_after_a_lead_byte) {
    constexpr unsigned int japanese = 932;
    EXPECT_EQ(Character_Bytes_In(japanese, "\x83\x5C"), 2) << "its second byte is a backslash elsewhere";
    EXPECT_EQ(Character_Bytes_In(japanese, "\xB1\xB2"), 1) << "half width";
    EXPECT_EQ(Character_Bytes_In(japanese, "\x83"), 0) << "cut off";
    EXPECT_EQ(Character_Bytes_In(japanese, "a"), 1);
    EXPECT_EQ(Character_Bytes_In(japanese, ""), 0);
    constexpr unsigned int western = 1252;
    EXPECT_EQ(Character_Bytes_In(western, "\xDF\x96"), 1);
    constexpr unsigned int utf8 = 65001;
    EXPECT_EQ(Character_Bytes_In(utf8, "\xE2\x82\xAC"), 3);
}
#endif

#if !defined(_WIN32)
TEST(Wide_Text, drops_a_character_that_the_end_cuts_off) {
    wchar_t out[16];
    for (const char* broken : {"ab\xC3", "ab\xE2\x82", "ab\xF0\x9F\x98"}) {
        EXPECT_EQ(Char_2_Wchar(broken, out, 16), 2);
        EXPECT_EQ(std::wstring(out), L"ab");
    }
}

TEST(Wide_Text, shows_bytes_that_are_no_character) {
    wchar_t out[16];
    EXPECT_EQ(Char_2_Wchar("a\xFF\x80z", out, 16), 4);
    EXPECT_EQ(std::wstring(out), L"a\xFFFD\xFFFDz");
    EXPECT_EQ(Char_2_Wchar("\xC3z", out, 16), 2);
    EXPECT_EQ(out[1], L'z');
}

TEST(Wide_Text, takes_characters_of_every_length) {
    wchar_t out[16];
    EXPECT_EQ(Char_2_Wchar("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80", out, 16), 4);
    EXPECT_EQ(std::wstring(out), (std::wstring{L'a', 0xE9, 0x20AC, 0x1F600}));
}
#endif
