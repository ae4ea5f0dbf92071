#include "workbench/model/display_window.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

using namespace volumes;
using namespace workbench;

namespace {

Volume Volume_Of(std::int32_t low, std::int32_t high) {
    Volume volume;
    volume.level_min = low;
    volume.level_max = high;
    return volume;
}

TEST(Display_Windows, the_files_own_come_before_those_of_the_ct) {
    Volume volume = Volume_Of(-1000, 3000);
    EXPECT_TRUE(Display_Windows_Of(volume, false).empty());
    volume.windows = {{"NECK", 50, 250, Window_Function::Linear}};
    EXPECT_EQ(Display_Windows_Of(volume, false).size(), 1U);
    const std::vector<Display_Window> windows = Display_Windows_Of(volume, true);
    ASSERT_EQ(windows.size(), 5U);
    EXPECT_EQ(windows[0].name, "NECK");
    EXPECT_EQ(Display_Window_Text(windows[1], 2), "Brain (CT): centre 40, width 80");
    EXPECT_EQ(Display_Window_Text(windows[3], 4), "Lung (CT): centre -600, width 1500");
    EXPECT_EQ(Display_Window_Text({"", 0.00125, 0.0025, Window_Function::Sigmoid}, 2),
              "Window 2: centre 0.00125, width 0.00250, sigmoid");
    volume.color = true;
    EXPECT_TRUE(Display_Windows_Of(volume, true).empty());
}

TEST(Display_Windows, ends_are_those_of_the_function) {
    // The standard's own example: centre 2048 and width 4096 show all of 0 .. 4095.
    const Grey_Window linear = Grey_Window_Of({"", 2048, 4096, Window_Function::Linear});
    EXPECT_EQ(linear.low, 0.0F);
    EXPECT_EQ(linear.high, 4095.0F);
    const Grey_Window exact = Grey_Window_Of({"", 2048, 4096, Window_Function::Linear_Exact});
    EXPECT_EQ(exact.low, 0.0F);
    EXPECT_EQ(exact.high, 4096.0F);
    const Grey_Window step = Grey_Window_Of({"", 100, 1, Window_Function::Linear});
    EXPECT_EQ(step.low, 99.5F);
    EXPECT_LT(step.low, step.high);
    EXPECT_TRUE(Grey_Window_Of({"", 0, 4, Window_Function::Sigmoid}).is_sigmoid);
    EXPECT_FALSE(linear.is_sigmoid);
}

TEST(Display_Windows, a_sigmoid_bends) {
    const std::vector<std::int32_t> levels = {-1000, 30, 40, 60, 1000};
    Slice_Source source;
    source.width = 5;
    source.height = 1;
    source.levels = levels;
    std::vector<std::uint32_t> out(5);
    const Grey_Window window = Grey_Window_Of({"", 40, 80, Window_Function::Sigmoid});
    Slice_Render(source, window, {}, {}, {0, 0, 5, 1}, out);
    for (std::size_t at = 0; at < levels.size(); ++at) {
        const double expected = 255.0 / (1.0 + std::exp(-4.0 * (levels[at] - 40.0) / 80.0));
        EXPECT_NEAR(static_cast<double>(out[at] & 0xFFU), expected, 1.0) << levels[at];
    }
    EXPECT_TRUE(window.Dragged(0.1F, 0.0F, 100.0F).is_sigmoid) << "a drag keeps the function";
}

TEST(Display_Windows, the_first_is_one_that_shows_something) {
    Volume volume = Volume_Of(0, 100);
    EXPECT_EQ(First_Window(volume), std::nullopt);
    volume.windows = {{"", 5000, 10, Window_Function::Linear_Exact}, {"", 50, 20, Window_Function::Linear_Exact}};
    const std::optional<Grey_Window> found = First_Window(volume);
    ASSERT_TRUE(found.has_value());
    EXPECT_EQ(found->low, 40.0F);
    EXPECT_EQ(found->high, 60.0F);
}

}  // namespace
