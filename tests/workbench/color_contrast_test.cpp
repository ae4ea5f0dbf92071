#include "workbench/model/color_contrast.h"

#include <gtest/gtest.h>

using namespace workbench;

namespace {

TEST(Color_Contrast, black_and_white_are_the_ends) {
    EXPECT_DOUBLE_EQ(Relative_Luminance(0x000000), 0.0);
    EXPECT_NEAR(Relative_Luminance(0xFFFFFF), 1.0, 1e-12);
    EXPECT_NEAR(Contrast_Ratio(0x000000, 0xFFFFFF), 21.0, 1e-9);
    EXPECT_DOUBLE_EQ(Contrast_Ratio(0x3D8BEA, 0x3D8BEA), 1.0);
}

TEST(Color_Contrast, the_primaries_have_their_luminances) {
    EXPECT_NEAR(Relative_Luminance(0xFF0000), 0.2126, 1e-12);
    EXPECT_NEAR(Relative_Luminance(0x00FF00), 0.7152, 1e-12);
    EXPECT_NEAR(Relative_Luminance(0x0000FF), 0.0722, 1e-12);
}

TEST(Color_Contrast, well_known_greys_have_their_ratios_to_white) {
    // The lightest grey that passes for text on white, the next lighter one, and the lightest for marks.
    EXPECT_NEAR(Contrast_Ratio(0x767676, 0xFFFFFF), 4.54, 0.005);
    EXPECT_LT(Contrast_Ratio(0x777777, 0xFFFFFF), CONTRAST_TEXT);
    EXPECT_NEAR(Contrast_Ratio(0x949494, 0xFFFFFF), 3.03, 0.005);
    EXPECT_NEAR(Contrast_Ratio(0xFF0000, 0xFFFFFF), 4.00, 0.005);
    EXPECT_NEAR(Contrast_Ratio(0x0000FF, 0xFFFFFF), 8.59, 0.005);
}

TEST(Color_Contrast, the_order_does_not_count) {
    EXPECT_DOUBLE_EQ(Contrast_Ratio(0x123456, 0xFEDCBA), Contrast_Ratio(0xFEDCBA, 0x123456));
}

}  // namespace
