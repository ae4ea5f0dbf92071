#include "workbench/volumes/value_outliers.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

using namespace volumes;

namespace {

Value_Range Range_Of(const std::vector<double>& values) {
    Value_Clusters clusters;
    for (const double value : values) {
        clusters.Take(value);
    }
    return Value_Range_Find(clusters.All());
}

std::vector<double> Ramp(int count) {
    std::vector<double> values;
    for (int i = 0; i < count; ++i) {
        values.push_back(i - 3.0);
    }
    return values;
}

TEST(Value_Outliers, a_plain_image_has_none) {
    const Value_Range range = Range_Of(Ramp(1000));
    EXPECT_EQ(range.lowest, -3);
    EXPECT_EQ(range.highest, 996);
    EXPECT_EQ(range.outlier_nb, 0U);
}

TEST(Value_Outliers, a_mark_for_no_value_may_be_most_of_the_image) {
    std::vector<double> values = Ramp(100);
    values.insert(values.end(), 5000, 1e300);
    const Value_Range range = Range_Of(values);
    EXPECT_EQ(range.lowest, -3);
    EXPECT_EQ(range.highest, 96);
    EXPECT_EQ(range.outlier_nb, 5000U);
    EXPECT_EQ(range.outlier_lowest, 1e300);
    EXPECT_EQ(range.outlier_highest, 1e300);
}

TEST(Value_Outliers, marks_on_both_sides_go_one_after_the_other) {
    std::vector<double> values = Ramp(100);
    constexpr double most = std::numeric_limits<double>::max();
    values.insert(values.end(), {most, -most, -1e30, 2147483647.0});
    const Value_Range range = Range_Of(values);
    EXPECT_EQ(range.lowest, -3);
    EXPECT_EQ(range.highest, 96);
    EXPECT_EQ(range.outlier_nb, 4U);
    EXPECT_EQ(range.outlier_lowest, -most);
    EXPECT_EQ(range.outlier_highest, most);
}

TEST(Value_Outliers, a_few_broken_values_of_many_are_outside) {
    std::vector<double> values = Ramp(3000);
    values.insert(values.end(), {1e9, 1.1e9});
    EXPECT_EQ(Range_Of(values).outlier_nb, 2U);
    EXPECT_EQ(Range_Of(values).highest, 2996);
}

TEST(Value_Outliers, two_kinds_of_true_values_both_stay) {
    std::vector<double> values = Ramp(100);
    for (int i = 0; i < 100; ++i) {
        values.push_back(1e9 + i);
    }
    EXPECT_EQ(Range_Of(values).outlier_nb, 0U);
    EXPECT_EQ(Range_Of({0, 0, 0, 1e30}).outlier_nb, 0U) << "two values only: nothing is flattened";
}

TEST(Value_Outliers, a_bright_spot_within_the_scale_stays) {
    std::vector<double> values = Ramp(100);
    values.push_back(300000.0);
    EXPECT_EQ(Range_Of(values).outlier_nb, 0U);
}

TEST(Value_Outliers, two_near_values_do_not_make_the_others_far) {
    EXPECT_EQ(Range_Of({-1000.5, 3071.25, 12.125, 13.0}).outlier_nb, 0U);
}

TEST(Value_Outliers, nothing_and_one_value) {
    EXPECT_EQ(Value_Range_Find({}).outlier_nb, 0U);
    EXPECT_EQ(Range_Of({5}).lowest, 5);
    EXPECT_EQ(Range_Of({5}).highest, 5);
    EXPECT_EQ(Range_Of({-0.0, 0.0}).highest, 0);
}

}  // namespace
