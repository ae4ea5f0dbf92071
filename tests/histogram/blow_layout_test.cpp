// The controls of the enlarged window over all sizes and scalings.
#include "histogram/blow_layout.h"

#include <gtest/gtest.h>

namespace {

constexpr int PLOT_MARGIN_BOTTOM = 35;  // pixels besides 3 m that axis numbers and titles take

Blow_Metrics Metrics(int width, int height, int percent, int select_nb) {
    return {width, height, 30 * percent / 100, 4 * percent / 100, 13 * percent / 100, select_nb};
}

bool Inside(const Pixel_Rectangle& inner, const Pixel_Rectangle& outer) {
    return inner.x >= outer.x && inner.y >= outer.y && inner.x + inner.width <= outer.x + outer.width &&
           inner.y + inner.height <= outer.y + outer.height;
}

bool Apart(const Pixel_Rectangle& a, const Pixel_Rectangle& b) {
    return a.x + a.width <= b.x || b.x + b.width <= a.x || a.y + a.height <= b.y || b.y + b.height <= a.y;
}

/** Rows that are left for data. */
int Data_Height(const Blow_Layout& layout) {
    const int m = std::min(layout.plot.width / 50, layout.plot.height / 50);
    return layout.plot.height - (3 * m + PLOT_MARGIN_BOTTOM) - (2 * m + layout.top_reserved);
}

}  // namespace

TEST(Blow_Layout, controls_stay_in_the_box_and_apart_at_every_size_and_scaling) {
    for (const int percent : {100, 150, 200}) {
        for (int width = 300 * percent / 100; width <= 3840; width += 97) {
            for (int height = 200 * percent / 100; height <= 2160; height += 151) {
                for (int select_nb = 2; select_nb <= BLOW_SELECT_MAX; ++select_nb) {
                    const Blow_Layout layout = Blow_Layout_Make(Metrics(width, height, percent, select_nb));
                    std::vector<Pixel_Rectangle> controls = {layout.reset_button, layout.export_button};
                    controls.insert(controls.end(), layout.select.begin(), layout.select.begin() + select_nb);
                    for (std::size_t i = 0; i < controls.size(); ++i) {
                        ASSERT_TRUE(Inside(controls[i], layout.plot)) << width << "x" << height << " " << i;
                        ASSERT_GE(controls[i].width, 90 * percent / 100) << width << "x" << height << " " << i;
                        ASSERT_GE(controls[i].y, layout.plot.y + layout.plot.height - layout.top_reserved);
                        for (std::size_t k = 0; k < i; ++k) {
                            ASSERT_TRUE(Apart(controls[i], controls[k])) << width << "x" << height << " " << i;
                        }
                    }
                    ASSERT_GE(layout.select_font, 10);
                    ASSERT_GT(Data_Height(layout), 0) << width << "x" << height << " " << percent << " " << select_nb;
                }
            }
        }
    }
}

TEST(Blow_Layout, a_wide_window_has_all_selectors_in_one_row_below_the_buttons) {
    const Blow_Layout layout = Blow_Layout_Make(Metrics(800, 400, 100, 3));
    EXPECT_EQ(layout.plot.width, 798);
    EXPECT_EQ(layout.plot.height, 398);
    EXPECT_EQ(layout.reset_button.width, (798 - 12) / 2);
    EXPECT_EQ(layout.reset_button.x, 5);
    EXPECT_EQ(layout.export_button.x, 5 + 393 + 4);
    EXPECT_EQ(layout.reset_button.y + layout.reset_button.height, 399 - 4);
    for (const Pixel_Rectangle& select : layout.select) {
        EXPECT_EQ(select.y + select.height, layout.reset_button.y - 4);
        EXPECT_EQ(select.height, 30);
    }
    EXPECT_EQ(layout.select[1].x, layout.select[0].x + layout.select[0].width + 4);
    EXPECT_EQ(layout.top_reserved, 4 + 30 + 4 + 30 + 4);
    EXPECT_EQ(layout.select_font, 13);
    EXPECT_EQ(layout.select_arrow, 20);
}

TEST(Blow_Layout, a_narrow_window_has_more_rows) {
    const Blow_Layout layout = Blow_Layout_Make(Metrics(300, 900, 100, 3));
    EXPECT_LT(layout.select[1].y, layout.select[0].y);
    EXPECT_LT(layout.select[2].y, layout.select[1].y);
    EXPECT_EQ(layout.select[0].width, 298 - 8);
}

TEST(Blow_Layout, selectors_stack_only_where_their_part_of_the_row_cannot_hold_their_texts) {
    // The longest caption takes 7.3 letter heights, and the choice gets as much room.
    const auto texts = [](int font) { return font * 146 / 10 + 16; };
    for (const int percent : {100, 150, 200}) {
        for (const int select_nb : {2, 3}) {
            for (int width = 300 * percent / 100; width < 1600; width += 13) {
                const Blow_Metrics metrics = Metrics(width, 4000, percent, select_nb);
                const Blow_Layout layout = Blow_Layout_Make(metrics);
                const int slot = (width - 2 - (select_nb + 1) * metrics.space) / select_nb;
                const bool is_one_row = layout.select[0].y == layout.select[static_cast<std::size_t>(select_nb - 1)].y;
                ASSERT_EQ(is_one_row, slot >= texts(metrics.font_height))
                    << width << " " << percent << " " << select_nb;
                ASSERT_GE(layout.select[0].width - 2 * layout.select_arrow, texts(layout.select_font)) << width;
            }
        }
    }
    // Arrows give way to texts, down to none.
    EXPECT_EQ(Blow_Layout_Make(Metrics(690, 900, 100, 3)).select_arrow, 9);
    EXPECT_EQ(Blow_Layout_Make(Metrics(660, 900, 100, 3)).select_arrow, 0);
}

TEST(Blow_Layout, letters_of_the_axes_fit_into_the_margin) {
    EXPECT_EQ(Blow_Axis_Font(13, 54, 250), 13);
    EXPECT_EQ(Blow_Axis_Font(26, 54, 250), 13);
    EXPECT_EQ(Blow_Axis_Font(13, 46, 250), 11);
    EXPECT_EQ(Blow_Axis_Font(13, 54, 60), 10) << "the title has no room beside a low area";
    EXPECT_EQ(Blow_Axis_Font(13, 10, 5), 8) << "smaller ones cannot be read";
    EXPECT_EQ(Blow_Axis_Font(0, 54, 250), 0) << "the library's own";
    EXPECT_EQ(Blow_Axis_Font(0, 40, 250), 9);
}

TEST(Blow_Layout, the_smallest_window_keeps_rows_for_data_at_every_scaling) {
    for (const int percent : {100, 150, 200}) {
        const Blow_Layout layout = Blow_Layout_Make(Metrics(300, 200, percent, 3));
        EXPECT_GE(Data_Height(layout), 16) << percent;
        EXPECT_GE(layout.select[0].height, layout.select_font + 4) << percent;
        EXPECT_EQ(layout.reset_button.height, 30 * percent / 100);
    }
}

TEST(Blow_Layout, a_client_area_without_extent_leaves_nothing_negative) {
    for (const int size : {0, 1, 2, 5, 20}) {
        const Blow_Layout layout = Blow_Layout_Make(Metrics(size, size, 200, 3));
        EXPECT_GE(layout.plot.width, 0);
        EXPECT_GE(layout.plot.height, 0);
        EXPECT_GE(layout.reset_button.width, 0);
        EXPECT_GE(layout.select[2].width, 0);
        EXPECT_GE(layout.top_reserved, 0);
    }
}
