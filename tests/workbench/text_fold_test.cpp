#include "workbench/model/text_fold.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <string>
#include <vector>

using namespace workbench;

namespace {

using Rows = std::vector<std::wstring>;

int Letters(std::wstring_view text) {
    return static_cast<int>(text.size());
}

TEST(Text_Fold, a_text_breaks_between_words) {
    EXPECT_EQ(Text_Fold(L"the work is kept", 9, 9, Letters), (Rows{L"the work", L"is kept"}));
    EXPECT_EQ(Text_Fold(L"the work is kept", 8, 8, Letters), (Rows{L"the work", L"is kept"}));
    EXPECT_EQ(Text_Fold(L"short", 9, 9, Letters), Rows{L"short"});
    EXPECT_EQ(Text_Fold(L"", 9, 9, Letters), Rows{L""});
}

TEST(Text_Fold, a_long_path_breaks_behind_its_slashes) {
    EXPECT_EQ(Text_Fold(L"in C:\\data\\patients\\head.nii now", 14, 14, Letters),
              (Rows{L"in", L"C:\\data\\", L"patients\\", L"head.nii now"}));
    EXPECT_EQ(Text_Fold(L"/data/patients", 7, 7, Letters), (Rows{L"/data/", L"patient", L"s"}));
}

TEST(Text_Fold, the_first_row_may_have_no_room) {
    EXPECT_EQ(Text_Fold(L"something else", 3, 10, Letters), (Rows{L"", L"something", L"else"}));
}

TEST(Text_Fold, every_row_gets_on_and_no_letter_is_cut_in_two) {
    EXPECT_EQ(Text_Fold(L"abc", 0, 0, Letters), (Rows{L"a", L"b", L"c"}));
    const std::wstring pair = {wchar_t{0xD83D}, wchar_t{0xDE00}};
    EXPECT_EQ(Text_Fold(L"a" + pair, 2, 2, Letters), (Rows{L"a", pair}));
    EXPECT_EQ(Text_Fold(pair + pair, 1, 1, Letters), (Rows{pair, pair}));
}

TEST(Text_Fold, rows_have_the_room_and_nothing_but_blanks_is_lost) {
    const std::wstring text =
        L"The image of head (C:\\data\\very long folder name\\head.nii) is not there as it was; the "
        L"work on it is kept, and is offered again at the next start.";
    const auto without_blanks = [](std::wstring of) {
        std::erase(of, L' ');
        return of;
    };
    for (int width = 1; width < 160; ++width) {
        for (const int first_width : {0, width / 2, width}) {
            std::wstring all;
            for (const std::wstring& row : Text_Fold(text, first_width, width, Letters)) {
                EXPECT_LE(Letters(row), width);
                all += row;
            }
            EXPECT_EQ(without_blanks(all), without_blanks(text)) << width;
        }
    }
}

TEST(Text_Fold, the_lines_of_a_text_stay) {
    EXPECT_EQ(Text_Folded(L"one two\n\nthree\n", 4), L"one\ntwo\n\nthre\ne\n");
}

}  // namespace
