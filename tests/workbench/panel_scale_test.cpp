#include "workbench/model/panel_scale.h"

#include <gtest/gtest.h>

#include <cmath>

using namespace volumes;
using namespace workbench;

namespace {

Volume Volume_Of(double low, double high, std::int32_t steps) {
    Volume volume;
    volume.intercept = low;
    volume.slope = (high - low) / steps;
    volume.level_max = steps;
    return volume;
}

TEST(Panel_Scale, images_of_whole_grey_values_are_told_as_they_are) {
    EXPECT_EQ(Panel_Scale_Of(Volume_Of(0, 255, 255)).exponent, 0);
    EXPECT_EQ(Panel_Scale_Of(Volume_Of(-1024, 3071, 4095)).exponent, 0);
    EXPECT_EQ(Panel_Scale_Of(Volume_Of(0, 3, 3)).exponent, 0) << "few whole values";
    EXPECT_EQ(Panel_Scale_Of(Volume_Of(0, 800, 65535)).exponent, 0);
    EXPECT_EQ(Panel_Scale_Of(Volume()).exponent, 0) << "one value";
    EXPECT_EQ(Panel_Scale_Of(Volume_Of(0, 255, 255)).Text(), "");
}

TEST(Panel_Scale, small_grey_values_are_told_in_a_finer_unit) {
    const Panel_Scale diffusion = Panel_Scale_Of(Volume_Of(0, 0.003, 65535));
    EXPECT_EQ(diffusion.exponent, 6);
    EXPECT_EQ(diffusion.To_Panel(0.003), 3000);
    EXPECT_EQ(diffusion.To_Grey(3000), 0.003);
    EXPECT_EQ(diffusion.Text(), "\xC3\x97 10\xE2\x81\xBB\xE2\x81\xB6");
    EXPECT_EQ(Panel_Scale_Of(Volume_Of(0, 1, 255)).exponent, 3);
    EXPECT_EQ(Panel_Scale_Of(Volume_Of(-0.02, 0.01, 65535)).exponent, 6) << "the larger end counts";
}

TEST(Panel_Scale, huge_grey_values_are_told_in_a_coarser_unit) {
    EXPECT_EQ(Panel_Scale_Of(Volume_Of(0, 3e7, 65535)).exponent, -3);
    EXPECT_EQ(Panel_Scale_Of(Volume_Of(0, 100000, 100000)).exponent, -3) << "no threshold could be set at it";
}

TEST(Panel_Scale, every_range_is_told_between_a_hundred_and_a_hundred_thousand) {
    for (double high = 1e-28; high < 1e28; high *= 1.7) {
        const Panel_Scale scale = Panel_Scale_Of(Volume_Of(0, high, 65535));
        EXPECT_LT(scale.To_Panel(high), 100000.0) << high;
        EXPECT_GE(scale.To_Panel(high), 99.99) << high;
    }
}

}  // namespace
