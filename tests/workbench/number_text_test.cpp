#include "workbench/model/number_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>
#include <vector>

using namespace workbench;

namespace {

TEST(Number_Text, has_three_digits_at_least_and_never_rounds_before_the_point) {
    EXPECT_EQ(Number_Text(0.00073412), "0.000734");
    EXPECT_EQ(Number_Text(-0.0049), "-0.00490");
    EXPECT_EQ(Number_Text(0.5), "0.500");
    EXPECT_EQ(Number_Text(37.94), "37.9");
    EXPECT_EQ(Number_Text(117.6), "118");
    EXPECT_EQ(Number_Text(12345.678), "12346");
    EXPECT_EQ(Number_Text(123.456, 5), "123.46");
    EXPECT_EQ(Number_Text(4.5777e-8), "4.58e-8");
    EXPECT_EQ(Number_Text(-2.5e20), "-2.50e20");
    EXPECT_EQ(Number_Text(0.09996), "0.100") << "rounding that carries";
    EXPECT_EQ(Number_Text(9.999, 1), "10.0");
}

TEST(Number_Text, leaves_whole_numbers_as_they_are) {
    EXPECT_EQ(Number_Text(0.0), "0");
    EXPECT_EQ(Number_Text(-0.0), "0");
    EXPECT_EQ(Number_Text(7.0), "7");
    EXPECT_EQ(Number_Text(-1024.0), "-1024");
    EXPECT_EQ(Number_Text(7.0, 6), "7");
    EXPECT_EQ(Number_Text(181.0 * 217.0 * 181.0), "7109137");
}

TEST(Number_Text, tells_what_is_no_number) {
    EXPECT_EQ(Number_Text(std::nan("")), "none");
    EXPECT_EQ(Number_Text(std::numeric_limits<double>::infinity()), "infinite");
    EXPECT_EQ(Number_Text(-std::numeric_limits<double>::infinity()), "-infinite");
}

TEST(Number_Text, is_as_near_as_its_digits_whatever_the_magnitude) {
    std::mt19937 random(1);
    std::uniform_real_distribution<double> exponent(-40.0, 40.0);
    for (int i = 0; i < 20000; ++i) {
        const double value = (i % 2 == 0 ? 1.0 : -1.0) * std::pow(10.0, exponent(random));
        const std::string text = Number_Text(value);
        EXPECT_NEAR(std::strtod(text.c_str(), nullptr), value, std::abs(value) * 5.1e-3) << text;
        EXPECT_LE(text.size(), 17U) << text;
    }
}

TEST(Number_Text, in_steps_tells_one_step_from_the_next) {
    EXPECT_EQ(Number_Text_In_Steps(117.0, 1.0), "117");
    EXPECT_EQ(Number_Text_In_Steps(0.0030000001, 0.003 / 65535), "0.00300000");
    EXPECT_EQ(Number_Text_In_Steps(0.502, 1.0 / 255), "0.502");
    EXPECT_EQ(Number_Text_In_Steps(1e-12, 1.0 / 255), "0") << "less than half a step";
    EXPECT_EQ(Number_Text_In_Steps(-1e-12, 1.0 / 255), "0") << "and no minus sign";
    EXPECT_EQ(Number_Text_In_Steps(1234.25, 0.5), "1234.2") << "one decimal tells half from whole";
    EXPECT_EQ(Number_Text_In_Steps(2.5, 0.0), "2.50");
}

TEST(With_Error, the_error_has_two_digits_and_the_value_is_as_exact) {
    EXPECT_EQ(With_Error(85.2512, 1.234), "85.3 \xC2\xB1 1.2");
    EXPECT_EQ(With_Error(28.194, 1.04), "28.2 \xC2\xB1 1.0");
    EXPECT_EQ(With_Error(246840.3, 4987.0), "246800 \xC2\xB1 5000");
    EXPECT_EQ(With_Error(15912.0, 251.0), "15910 \xC2\xB1 250");
    EXPECT_EQ(With_Error(1802.4, 77.6), "1802 \xC2\xB1 78");
    EXPECT_EQ(With_Error(12.3456, 0.00012), "12.34560 \xC2\xB1 0.00012");
    EXPECT_EQ(With_Error(0.00071234, 0.0000124), "0.000712 \xC2\xB1 0.000012");
}

TEST(With_Error, the_value_has_three_digits_at_least) {
    EXPECT_EQ(With_Error(0.9134, 0.1511), "0.913 \xC2\xB1 0.151");
    EXPECT_EQ(With_Error(12.0, 9.96), "12.0 \xC2\xB1 10.0") << "rounding that carries";
    EXPECT_EQ(With_Error(0.0004, 110000.0), "0.000400 \xC2\xB1 110000") << "an error beyond its value does not hide it";
    EXPECT_EQ(With_Error(12.3456, 0.0), "12.35");
    EXPECT_EQ(With_Error(12.3456, NAN), "12.35");
    EXPECT_EQ(With_Error(3.0e20, 1.5e18), "3.00e20 \xC2\xB1 1.50e18");
}

TEST(Frames_Text, joins_what_follows_one_another) {
    EXPECT_EQ(Frames_Text(std::vector{7}), "frame 7");
    EXPECT_EQ(Frames_Text(std::vector{1, 2, 3}), "frames 1 to 3");
    EXPECT_EQ(Frames_Text(std::vector{3, 5, 6, 7, 9, 12, 13}), "frames 3, 5 to 7, 9 and 12 to 13");
}

TEST(Power_Text, is_written_with_raised_digits) {
    EXPECT_EQ(Power_Text(-6), "10\xE2\x81\xBB\xE2\x81\xB6");
    EXPECT_EQ(Power_Text(13), "10\xC2\xB9\xC2\xB3");
}

}  // namespace
