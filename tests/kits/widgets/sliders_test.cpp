// Scroll bars: where the thumb stands, and what presses, drags and the wheel do to the value.
#include <cmath>
#include <limits>

#include "kits/widgets/painter.h"
#include "kits/widgets/slider_geometry.h"
#include "kits/widgets/theme.h"
#include "tests/kits/widgets/shown_window.h"

namespace {

constexpr int BAR_LEFT = 30;
constexpr int BAR_TOP = 20;
constexpr int BAR_LENGTH = 200;
constexpr int BAR_THICKNESS = 16;

/** A slider of 300 pixels of contents in a view of 100: values 0 to 200, the thumb a third of the track. */
struct Scene {
    Shown_Window window;
    Sliders slider;
    bool vertical;

    Scene(Window_Axis axis, bool is_vertical) : window(300, 260, axis), vertical(is_vertical) {
        slider.style = vertical ? STYLE_SLIDER_VERTICAL : STYLE_SCROLL_BAR;
        window.Place(slider, BAR_LEFT, BAR_TOP, vertical ? BAR_THICKNESS : BAR_LENGTH,
                     vertical ? BAR_LENGTH : BAR_THICKNESS);
        slider.maximum = 200.0F;
        slider.step = 20.0F;
        slider.Larg_Adjust(100.0F, 300.0F);
        slider.Init(window.Handle());
    }
    /** Puts the pointer at a distance from the slider's visual top or left end. */
    void Pointer(int along, int across = BAR_THICKNESS / 2) const {
        if (vertical) {
            window.Pointer(BAR_LEFT + across, BAR_TOP + along);
        } else {
            window.Pointer(BAR_LEFT + along, BAR_TOP + across);
        }
    }
    Rgb Pixel(int along) const {
        return vertical ? window.Pixel(BAR_LEFT + BAR_THICKNESS / 2, BAR_TOP + along)
                        : window.Pixel(BAR_LEFT + along, BAR_TOP + BAR_THICKNESS / 2);
    }
    /** First pixel of the painted thumb's face from the visual start, -1 without a thumb. */
    int Painted_Thumb(Rgb face) const {
        const Window_Picture shown = window.Shown();
        for (int along = 0; along < BAR_LENGTH; ++along) {
            const int middle = BAR_THICKNESS / 2;
            if ((vertical ? shown.At(BAR_LEFT + middle, BAR_TOP + along)
                          : shown.At(BAR_LEFT + along, BAR_TOP + middle)) == face) {
                return along;
            }
        }
        return -1;
    }
};

class Sliders_Test : public testing::TestWithParam<std::tuple<Window_Axis, bool>> {
  protected:
    Scene scene{std::get<0>(GetParam()), std::get<1>(GetParam())};
    Sliders& slider = scene.slider;
};

INSTANTIATE_TEST_SUITE_P(All, Sliders_Test,
                         testing::Combine(testing::Values(Window_Axis::Up, Window_Axis::Down), testing::Bool()));

}  // namespace

TEST(Slider_Geometry, value_and_pixel_are_inverse_at_every_place) {
    const Slider_Range range{-3.0F, 517.0F};
    for (const int track : {20, 97, 400}) {
        const int thumb = Slider_Thumb_Length(track, 0.3F);
        for (int offset = 0; offset <= track - thumb; ++offset) {
            const float value = Slider_Value_At(track, thumb, offset, -1000.0F, range);
            ASSERT_EQ(offset, Slider_Thumb_Offset(track, thumb, value, range)) << track;
        }
        EXPECT_EQ(range.minimum, Slider_Value_At(track, thumb, -50, 100.0F, range));
        EXPECT_EQ(range.maximum, Slider_Value_At(track, thumb, track + 50, 100.0F, range));
    }
}

TEST(Slider_Geometry, thumb_has_a_shortest_length_and_never_exceeds_the_track) {
    EXPECT_EQ(SLIDER_THUMB_MIN, Slider_Thumb_Length(400, 0.0001F));
    EXPECT_EQ(7, Slider_Thumb_Length(7, 0.0F));
    EXPECT_EQ(400, Slider_Thumb_Length(400, 1.0F));
    EXPECT_EQ(0, Slider_Thumb_Length(-5, 0.5F));
}

TEST(Slider_Geometry, visible_part_survives_totals_without_sense) {
    const float no_number = std::numeric_limits<float>::quiet_NaN();
    for (const float total : {0.0F, -4.0F, no_number}) {
        EXPECT_EQ(1.0F, Slider_Visible_Part(10.0F, total));
    }
    EXPECT_EQ(1.0F, Slider_Visible_Part(-10.0F, -4.0F));
    EXPECT_EQ(1.0F, Slider_Visible_Part(11.0F, 10.0F));
    EXPECT_EQ(0.0F, Slider_Visible_Part(-1.0F, 10.0F));
    EXPECT_EQ(0.25F, Slider_Visible_Part(2.5F, 10.0F));
}

TEST_P(Sliders_Test, value_zero_is_painted_at_the_visual_start_and_the_maximum_at_the_end) {
    slider.Draw();
    const Rgb face = Theme_Now().face;
    EXPECT_EQ(1, scene.Painted_Thumb(face));  // behind the thumb's own line
    slider.value = 200.0F;
    slider.Draw();
    EXPECT_EQ(BAR_LENGTH - 67 + 1, scene.Painted_Thumb(face));
    slider.value = 100.0F;
    slider.Adjust();
    EXPECT_EQ(67 + 1, scene.Painted_Thumb(face));  // (200 - 67) / 2, rounded
}

TEST_P(Sliders_Test, drag_keeps_the_point_that_was_grabbed_under_the_pointer) {
    slider.value = 100.0F;
    scene.Pointer(67 + 10);
    EXPECT_NE(0, slider.Select(LEFT_PRESS));
    EXPECT_NE(0, slider.Select(LEFT_DRAG));
    EXPECT_EQ(100.0F, slider.Read());  // grabbing alone moves nothing, not even to the nearest pixel
    scene.Pointer(67 + 10 + 30, 100);  // the pointer may leave the bar sideways
    EXPECT_NE(0, slider.Select(LEFT_DRAG));
    slider.Draw();
    EXPECT_EQ(67 + 30 + 1, scene.Painted_Thumb(Theme_Now().face_pressed));
    EXPECT_NEAR(97.0F / 133.0F * 200.0F, slider.Read(), 0.001F);
    scene.Pointer(-500);
    EXPECT_NE(0, slider.Select(LEFT_DRAG));
    EXPECT_EQ(0.0F, slider.Read());
    scene.Pointer(900);
    EXPECT_NE(0, slider.Select(LEFT_DRAG));
    EXPECT_EQ(200.0F, slider.Read());
}

TEST_P(Sliders_Test, drag_ends_with_the_first_motion_without_a_held_button) {
    scene.Pointer(5);
    ASSERT_NE(0, slider.Select(LEFT_PRESS));
    scene.Pointer(50);
    EXPECT_EQ(0, slider.Select(0));
    EXPECT_EQ(0.0F, slider.Read());
    scene.Pointer(80);
    EXPECT_EQ(0, slider.Select(LEFT_DRAG));  // not taken up again
    EXPECT_EQ(0.0F, slider.Read());
}

TEST_P(Sliders_Test, hover_and_drags_from_elsewhere_are_not_taken) {
    scene.Pointer(5);
    EXPECT_EQ(0, slider.Select(0));
    EXPECT_EQ(0, slider.Select(LEFT_DRAG));
    EXPECT_EQ(0.0F, slider.Read());
    EXPECT_NE(0, slider.Select(MOUSE_ASK));
    scene.Pointer(-1);
    EXPECT_EQ(0, slider.Select(MOUSE_ASK));
    EXPECT_EQ(0, slider.Select(LEFT_PRESS));
}

TEST_P(Sliders_Test, press_beside_the_thumb_pages_by_the_visible_amount) {
    scene.Pointer(150);
    EXPECT_NE(0, slider.Select(LEFT_PRESS));
    EXPECT_NEAR(100.0F, slider.Read(), 0.001F);
    EXPECT_EQ(0, slider.Select(0));
    scene.Pointer(190);
    slider.Select(LEFT_PRESS);
    slider.Select(LEFT_PRESS);
    EXPECT_EQ(200.0F, slider.Read());
    scene.Pointer(3);
    slider.Select(LEFT_PRESS);
    EXPECT_NEAR(100.0F, slider.Read(), 0.001F);
    scene.Pointer(190);
    EXPECT_EQ(0, slider.Select(LEFT_DRAG));  // a page is no drag
}

TEST_P(Sliders_Test, a_slider_that_does_not_react_ignores_the_wheel_too) {
    slider.value = 20.0F;
    for (const unsigned int inactive : {STYLE_SLIDER_HIDDEN, STYLE_SLIDER_VERTICAL | STYLE_INACTIVE}) {
        slider.style = inactive;
        EXPECT_EQ(20.0F, slider.Scroll(1));
        EXPECT_EQ(20.0F, slider.value);
    }
}

TEST_P(Sliders_Test, wheel_steps_are_clamped_and_kept_without_painting) {
    Widget_Counters_Reset();
    EXPECT_EQ(60.0F, slider.Scroll(3));
    EXPECT_EQ(60.0F, slider.value);
    EXPECT_EQ(0.0F, slider.Scroll(-4));
    EXPECT_EQ(200.0F, slider.Scroll(2000000000));
    EXPECT_EQ(0U, Widget_Counters_Get().draws + Widget_Counters_Get().adjusts);
}

TEST_P(Sliders_Test, maximum_below_the_minimum_leaves_the_panels_value_alone) {
    slider.maximum = slider.value = -4.0F;
    slider.Init(nullptr);
    slider.Draw();
    slider.Adjust();
    EXPECT_EQ(-4.0F, slider.value);
    EXPECT_EQ(1, scene.Painted_Thumb(Theme_Now().face));
    EXPECT_EQ(-4.0F, slider.Scroll(-1));
    scene.Pointer(150);
    EXPECT_NE(0, slider.Select(LEFT_PRESS));
    EXPECT_EQ(-4.0F, slider.Read());
    EXPECT_EQ(0, slider.Select(0));
    scene.Pointer(5);
    slider.Select(LEFT_PRESS);
    scene.Pointer(60);
    EXPECT_NE(0, slider.Select(LEFT_DRAG));
    EXPECT_EQ(-4.0F, slider.Read());
}

TEST_P(Sliders_Test, equal_ends_have_one_value) {
    slider.minimum = slider.maximum = 30.0F;
    slider.value = 45.0F;
    slider.Init(nullptr);
    EXPECT_EQ(30.0F, slider.value);
    slider.value = 7.0F;
    slider.Adjust();
    EXPECT_EQ(30.0F, slider.value);
    slider.value = 7.0F;
    EXPECT_EQ(30.0F, slider.Scroll(2));
}

TEST_P(Sliders_Test, position_pushed_beyond_the_range_returns_at_the_next_init_or_adjust) {
    slider.value = -12.0F;
    slider.Init(nullptr);
    EXPECT_EQ(0.0F, slider.value);
    slider.value = 212.0F;
    slider.Adjust();
    EXPECT_EQ(200.0F, slider.value);
    slider.value = std::numeric_limits<float>::quiet_NaN();
    slider.Init(nullptr);
    EXPECT_EQ(0.0F, slider.value);
}

TEST_P(Sliders_Test, slider_that_is_not_needed_paints_nothing_and_takes_nothing) {
    slider.style = STYLE_SLIDER_HIDDEN;
    const auto before = scene.window.Pixels();
    Widget_Counters_Reset();
    slider.Init(nullptr);
    slider.Draw();
    slider.Adjust();
    EXPECT_EQ(before, scene.window.Pixels());
    EXPECT_EQ(0U, Widget_Counters_Get().draws);
    scene.Pointer(5);
    EXPECT_EQ(0, slider.Select(LEFT_PRESS));
    EXPECT_EQ(0, slider.Select(LEFT_DRAG));
    EXPECT_EQ(0, slider.Select(MOUSE_ASK));
}

TEST_P(Sliders_Test, greyed_slider_is_painted_in_other_colours_and_takes_nothing) {
    slider.Draw();
    const auto active = scene.window.Pixels();
    slider.style |= STYLE_INACTIVE;
    slider.Init(nullptr);
    slider.Draw();
    EXPECT_NE(active, scene.window.Pixels());
    EXPECT_NE(Theme_Now().face, scene.Pixel(20));
    EXPECT_NE(scene.Pixel(20), scene.Pixel(150));  // thumb and track can still be told apart
    scene.Pointer(5);
    EXPECT_EQ(0, slider.Select(LEFT_PRESS));
    EXPECT_EQ(0.0F, slider.Read());
}

TEST_P(Sliders_Test, becoming_inactive_ends_a_drag) {
    scene.Pointer(5);
    ASSERT_NE(0, slider.Select(LEFT_PRESS));
    slider.style |= STYLE_INACTIVE;
    EXPECT_EQ(0, slider.Select(LEFT_DRAG));
    slider.style &= ~STYLE_INACTIVE;
    EXPECT_EQ(0, slider.Select(LEFT_DRAG));
}

TEST_P(Sliders_Test, hover_look_comes_and_goes_and_deselect_paints_only_a_change) {
    slider.Draw();
    scene.Pointer(5);
    slider.Select(0);
    EXPECT_EQ(Theme_Now().face_hover, scene.Pixel(20));
    Widget_Counters_Reset();
    slider.Deselect();
    EXPECT_EQ(Theme_Now().face, scene.Pixel(20));
    slider.Deselect();
    EXPECT_EQ(1U, Widget_Counters_Get().adjusts);
}

TEST_P(Sliders_Test, paints_only_its_own_rectangle) {
    const auto before = scene.window.Pixels();
    slider.border = 1;
    slider.Draw();
    const auto after = scene.window.Pixels();
    const Rect own{BAR_LEFT, BAR_TOP, slider.width, slider.height};
    int inside = 0;
    for (int y = 0; y < 260; ++y) {
        for (int x = 0; x < 300; ++x) {
            const auto at = static_cast<std::size_t>(y * 300 + x);
            if (!own.Has_Point({x, y})) {
                ASSERT_EQ(before[at], after[at]) << x << " " << y;
            } else {
                inside += before[at] != after[at] ? 1 : 0;
            }
        }
    }
    EXPECT_EQ(BAR_LENGTH * BAR_THICKNESS, inside);
}

TEST_P(Sliders_Test, without_an_area_it_is_never_hit_and_never_painted) {
    slider.width = 0;
    slider.Init(nullptr);
    slider.Draw();
    scene.Pointer(0);
    EXPECT_EQ(0, slider.Select(LEFT_PRESS));
    slider.width = -5;
    slider.height = -5;
    slider.Init(nullptr);
    slider.Draw();
    slider.Adjust();
    EXPECT_EQ(0, slider.Select(LEFT_PRESS));
    Sliders without_window;
    without_window.Draw();
    EXPECT_EQ(0, without_window.Select(LEFT_PRESS));
}

TEST_P(Sliders_Test, full_thumb_has_no_travel) {
    slider.Larg_Adjust(100.0F, 0.0F);
    slider.value = 50.0F;
    scene.Pointer(100);
    EXPECT_NE(0, slider.Select(LEFT_PRESS));
    scene.Pointer(150);
    EXPECT_NE(0, slider.Select(LEFT_DRAG));
    EXPECT_EQ(50.0F, slider.Read());
}
