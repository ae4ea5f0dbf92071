#include "workbench/model/theme_colors.h"

#include <gtest/gtest.h>

#include "workbench/model/color_contrast.h"

using namespace workbench;

namespace {

TEST(Theme_Colors, everything_can_be_read_in_both_themes) {
    for (const bool is_dark : {true, false}) {
        const auto pairs = Theme_Pairs(Theme_Colors_Of(is_dark));
        ASSERT_GT(pairs.size(), 10U);
        for (const Theme_Pair& pair : pairs) {
            EXPECT_GE(Contrast_Ratio(pair.ink, pair.ground), pair.is_text ? CONTRAST_TEXT : CONTRAST_GRAPHIC)
                << (is_dark ? "dark: " : "light: ") << pair.use;
        }
    }
}

TEST(Theme_Colors, the_themes_are_dark_and_light) {
    EXPECT_LT(Relative_Luminance(Theme_Colors_Of(true).ground), 0.1);
    EXPECT_GT(Relative_Luminance(Theme_Colors_Of(false).ground), 0.5);
}

}  // namespace
