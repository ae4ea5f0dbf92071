#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "kits/dataset/dataset_host.h"

namespace {

class Frames : public testing::Test {
  protected:
    void SetUp() override {
        for (std::size_t i = 0; i < levels.size(); ++i) {
            levels[i] = static_cast<std::int32_t>(i);
        }
    }

    static int At(const Quorel_2D_Frame& frame, float x, float y, int slice, int time) {
        const float position[2] = {x, y};
        const int slice_index[2] = {slice, time};
        return frame.Sample(position, slice_index);
    }

    std::vector<std::int32_t> levels = std::vector<std::int32_t>(4 * 3 * 2 * 5);
};

}  // namespace

TEST_F(Frames, a_sample_is_the_stored_level_of_the_pixel) {
    const Level_Frame frame(levels.data(), 4, 3, 2, 5, 2.0F, 1.0F, false);
    EXPECT_EQ(frame.width, 4);
    EXPECT_EQ(frame.height, 3);
    EXPECT_EQ(frame.slices, 2);
    EXPECT_EQ(frame.times, 5);
    EXPECT_EQ(At(frame, 0, 0, 0, 0), 0);
    EXPECT_EQ(At(frame, 3.99F, 2.99F, 0, 0), 11);
    EXPECT_EQ(At(frame, 1.5F, 2.0F, 1, 0), 12 + 9);
    EXPECT_EQ(At(frame, 3, 2, 1, 4), 119);
    const float position[2] = {2.0F, 1.0F};
    EXPECT_EQ(frame.Sample(position, nullptr), 6) << "the first slice without indices";
}

TEST_F(Frames, positions_and_slices_outside_are_outside) {
    const Level_Frame frame(levels.data(), 4, 3, 2, 5, 1.0F, 0.0F, false);
    const float not_a_number = std::numeric_limits<float>::quiet_NaN();
    const float infinity = std::numeric_limits<float>::infinity();
    for (const auto& [x, y] : {std::pair{-0.01F, 0.0F},
                               {4.0F, 0.0F},
                               {0.0F, -1.0F},
                               {0.0F, 3.0F},
                               {not_a_number, 0.0F},
                               {0.0F, not_a_number},
                               {infinity, 0.0F},
                               {0.0F, -infinity},
                               {1e30F, 1e30F}}) {
        EXPECT_GE(At(frame, x, y, 0, 0), SAMPLE_OUTSIDE) << x << ' ' << y;
    }
    EXPECT_GE(At(frame, 0, 0, -1, 0), SAMPLE_OUTSIDE);
    EXPECT_GE(At(frame, 0, 0, 2, 0), SAMPLE_OUTSIDE);
    EXPECT_GE(At(frame, 0, 0, 0, 5), SAMPLE_OUTSIDE);
    EXPECT_GE(At(frame, 0, 0, 0, -1), SAMPLE_OUTSIDE);
    EXPECT_GE(frame.Sample(nullptr, nullptr), SAMPLE_OUTSIDE);
}

TEST_F(Frames, a_frame_of_impossible_size_is_empty) {
    for (const auto& [width, height] : {std::pair{0, 3}, {4, -1}, {65536, 1}, {1, 1000000}}) {
        const Level_Frame frame(levels.data(), width, height, 1, 1, 1.0F, 0.0F, false);
        EXPECT_EQ(frame.width, 0);
        EXPECT_GE(At(frame, 0, 0, 0, 0), SAMPLE_OUTSIDE);
    }
    const Level_Frame nothing(nullptr, 4, 3, 1, 1, 1.0F, 0.0F, false);
    EXPECT_GE(At(nothing, 0, 0, 0, 0), SAMPLE_OUTSIDE);
    const Quorel_2D_Frame base;
    EXPECT_GE(At(base, 0, 0, 0, 0), SAMPLE_OUTSIDE);
}

TEST_F(Frames, a_colour_sample_is_the_packed_colour) {
    const std::int32_t packed = 0x0030FF10;
    const Level_Frame frame(&packed, 1, 1, 1, 1, 1.0F, 0.0F, true);
    EXPECT_TRUE(frame.color);
    EXPECT_EQ(At(frame, 0, 0, 0, 0), packed);
}

TEST_F(Frames, stored_values_become_grey_levels_by_slope_and_intercept) {
    Level_Frame grey(levels.data(), 4, 3, 1, 1, 0.5F, -1024.0F, false);
    Level_Frame color(levels.data(), 4, 3, 1, 1, 0.5F, -1024.0F, true);
    Quorel_2D_Frame plain;
    Quorel_2D object;
    EXPECT_EQ(Fct_GLI_2_Float(nullptr, 7), 7.0F);
    EXPECT_EQ(Fct_GLI_2_Float(&object, 7), 7.0F) << "no image";
    object.frame = &plain;
    EXPECT_EQ(Fct_GLI_2_Float(&object, 7), 7.0F);
    object.frame = &color;
    EXPECT_EQ(Fct_GLI_2_Float(&object, 7), 7.0F);
    object.frame = &grey;
    EXPECT_EQ(Fct_GLI_2_Float(&object, 2000), -24.0F);
    EXPECT_EQ(Fct_GLI_2_Float(&object, -2), -1025.0F);
    grey.slope = 1.0F;
    grey.intercept = 0.0F;
    EXPECT_EQ(Fct_GLI_2_Float(&object, INT32_MAX), 2147483648.0F);
}
