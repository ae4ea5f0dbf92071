#include "kits/graph/axis_layout.h"

#include <gtest/gtest.h>

#include <cstdlib>

namespace {

constexpr int LINE_HEIGHT = 15;

Axis_Request Request(int width, int height, float from, float to, const char* title) {
    Axis_Request request;
    const int m = std::min(width / 50, height / 50);
    request.box = {5, 7, 5 + width, 7 + height};
    request.area = {5 + 2 * m + 40, 7 + 2 * m, 5 + width - 2 * m - 10, 7 + height - 3 * m - 35};
    request.title = title;
    request.from = from;
    request.to = to;
    request.line_height = LINE_HEIGHT;
    request.width = [](const std::string& text) { return static_cast<int>(text.size()) * 7; };
    return request;
}

bool Overlap(const Plot_Rect& a, const Plot_Rect& b) {
    return a.left < b.right && b.left < a.right && a.top < b.bottom && b.top < a.bottom;
}

bool Inside(const Plot_Rect& inner, const Plot_Rect& outer) {
    return inner.left >= outer.left && inner.right <= outer.right && inner.top >= outer.top &&
           inner.bottom <= outer.bottom;
}

/** Nothing outside the box, nothing in the data's rectangle, no text on another. */
void Expect_Clean(const Axis_Layout& layout, const Axis_Request& request) {
    for (const Plot_Rect& line : layout.lines) {
        EXPECT_TRUE(Inside(line, request.box));
        EXPECT_FALSE(Overlap(line, request.area));
    }
    for (std::size_t i = 0; i < layout.labels.size(); i++) {
        const Plot_Rect& rect = layout.labels[i].rect;
        EXPECT_TRUE(Inside(rect, request.box)) << layout.labels[i].text;
        EXPECT_FALSE(Overlap(rect, request.area)) << layout.labels[i].text;
        for (std::size_t j = 0; j < i; j++) {
            EXPECT_FALSE(Overlap(rect, layout.labels[j].rect)) << layout.labels[i].text << layout.labels[j].text;
        }
    }
}

}  // namespace

TEST(Axis_Layout, texts_never_overlap_nor_leave_the_box_nor_cover_the_data) {
    constexpr float ranges[][2] = {{0, 255},      {-1024, 3071}, {0, 1},          {0.001F, 0.0012F},
                                   {-1e9F, 2e9F}, {0, 123456},   {99999, 100001}, {-3e-7F, 3e38F}};
    for (int width = 60; width <= 1600; width += 77) {
        for (int height = 50; height <= 900; height += 83) {
            for (const auto& range : ranges) {
                for (const char* title : {"", "Grey level", "A rather long title of a small plot"}) {
                    const Axis_Request request = Request(width, height, range[0], range[1], title);
                    if (request.area.Width() <= 0 || request.area.Height() <= 0) {
                        continue;
                    }
                    Expect_Clean(Axis_Layout_X(request), request);
                    Expect_Clean(Axis_Layout_Y(request), request);
                }
            }
        }
    }
}

TEST(Axis_Layout, usual_plots_have_numbers_and_titles) {
    const Axis_Request request = Request(600, 400, 0, 255, "GLI");
    const Axis_Layout x = Axis_Layout_X(request);
    const Axis_Layout y = Axis_Layout_Y(request);
    EXPECT_GE(x.labels.size(), 6U);
    EXPECT_GE(y.labels.size(), 6U);
    EXPECT_EQ(x.labels[0].text, "GLI");
    EXPECT_FALSE(x.labels[0].upwards);
    EXPECT_EQ(y.labels[0].text, "GLI");
    EXPECT_TRUE(y.labels[0].upwards);
    EXPECT_EQ(x.tick_at.size(), x.labels.size() - 1);
    EXPECT_EQ(y.tick_at.size(), y.labels.size() - 1);
}

TEST(Axis_Layout, the_upright_title_stands_midway_between_the_edge_and_the_numbers) {
    for (const int width : {300, 800, 3800}) {
        const Axis_Request request = Request(width, width / 2, 0.0F, 3.0e6F, "Pixels");
        const Axis_Layout layout = Axis_Layout_Y(request);
        const auto title = std::find_if(layout.labels.begin(), layout.labels.end(),
                                        [](const Plot_Label& label) { return label.upwards; });
        ASSERT_NE(title, layout.labels.end());
        int numbers_left = request.area.left;
        for (const Plot_Label& label : layout.labels) {
            numbers_left = label.upwards ? numbers_left : std::min(numbers_left, label.rect.left);
        }
        const int before = title->rect.left - request.box.left;
        const int behind = numbers_left - title->rect.right;
        EXPECT_GT(before, 0) << width;
        EXPECT_NEAR(before, behind, 3) << width;
    }
}

TEST(Axis_Layout, the_upright_title_leaves_the_frame_of_its_box_free) {
    Axis_Request request = Request(800, 400, 0.0F, 3.0e6F, "Pixels");
    const auto title_left = [&] {
        const Axis_Layout layout = Axis_Layout_Y(request);
        const auto title = std::find_if(layout.labels.begin(), layout.labels.end(),
                                        [](const Plot_Label& label) { return label.upwards; });
        return title != layout.labels.end() ? title->rect.left : -1;
    };
    const int unframed = title_left();
    request.frame = 2;
    EXPECT_EQ(title_left(), unframed + 1) << "midway between frame and numbers";
    request.frame = 1000;
    EXPECT_LT(title_left(), request.area.left) << "a frame that leaves no room";
}

TEST(Axis_Layout, ticks_stand_at_their_values) {
    Axis_Request request = Request(600, 400, 0, 100, "");
    request.area = {60, 20, 560, 320};
    const Axis_Layout x = Axis_Layout_X(request);
    const double pixels_per_tick = 500.0 / static_cast<double>(x.tick_at.size() - 1);
    for (std::size_t i = 0; i < x.tick_at.size(); i++) {
        EXPECT_NEAR(x.tick_at[i], 60 + pixels_per_tick * static_cast<double>(i), 1.0);
    }
    const Axis_Layout y = Axis_Layout_Y(request);
    EXPECT_NEAR(y.tick_at.front(), 319, 1);  // the lowest value stands at the bottom
    EXPECT_NEAR(y.tick_at.back(), 20, 1);
}

TEST(Axis_Layout, wide_numbers_are_shortened_rather_than_lost) {
    const Axis_Request request = Request(300, 200, 0, 90000, "Pixels");
    const Axis_Layout y = Axis_Layout_Y(request);
    ASSERT_GE(y.labels.size(), 2U);
    EXPECT_EQ(y.labels.back().text.back(), 'k');
}

namespace {
std::vector<Plot_Label> Numbers_Of(const Axis_Layout& layout, const Axis_Request& request) {
    std::vector<Plot_Label> numbers = layout.labels;
    std::erase_if(numbers, [&](const Plot_Label& label) { return label.text == request.title; });
    return numbers;
}
}  // namespace

TEST(Axis_Layout, two_numbers_stand_wherever_two_have_room) {
    for (const auto& [from, to] : {std::pair{3.0F, 8.0F}, {4.0F, 9.5F}, {0.9F, 4.2F}, {-3.0F, 1.0F}, {12.0F, 19.0F}}) {
        for (int length = 20; length <= 120; ++length) {
            // A number is at most four characters, 28 pixels and a gap of 8; it may reach beyond the area's ends.
            Axis_Request x = Request(600, 400, from, to, "");
            x.area = {60, 20, 60 + length, 320};
            if (length >= 60) {
                EXPECT_GE(Numbers_Of(Axis_Layout_X(x), x).size(), 2U) << from << " to " << to << ", " << length;
            }
            Axis_Request y = Request(600, 400, from, to, "");
            y.area = {60, 20, 560, 20 + length};
            if (length >= 2 * LINE_HEIGHT + 8) {
                EXPECT_GE(Numbers_Of(Axis_Layout_Y(y), y).size(), 2U) << from << " to " << to << ", " << length;
            }
        }
    }
}

TEST(Axis_Layout, a_turned_title_is_as_long_as_its_turned_letters) {
    Axis_Request request = Request(600, 400, 0, 255, "Pixels");
    request.width_upwards = [](const std::string& text) { return static_cast<int>(text.size()) * 9; };
    const Axis_Layout layout = Axis_Layout_Y(request);
    ASSERT_TRUE(layout.labels[0].upwards);
    EXPECT_EQ(layout.labels[0].rect.Height(), 6 * 9);
    request.width_upwards = [](const std::string&) { return 1000; };
    for (const Plot_Label& label : Axis_Layout_Y(request).labels) {
        EXPECT_FALSE(label.upwards) << "it would leave the box";
    }
}

TEST(Axis_Layout, numbers_are_centred_under_their_ticks) {
    const Axis_Request request = Request(600, 400, 0, 100, "");
    const Axis_Layout x = Axis_Layout_X(request);
    for (std::size_t i = 1; i + 1 < x.labels.size(); i++) {
        EXPECT_LE(std::abs((x.labels[i].rect.left + x.labels[i].rect.right) / 2 - x.tick_at[i]), 1);
    }
}
