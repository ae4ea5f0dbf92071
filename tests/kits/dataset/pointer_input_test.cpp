#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "kits/dataset/dataset_host.h"

namespace {

constexpr unsigned int TOUCH = 0x0240;
constexpr unsigned int UPDATE = 0x0245;
constexpr unsigned int DOWN = 0x0246;
constexpr unsigned int UP = 0x0247;

/** A pen and fingers that the test holds. */
struct Hand {
    bool is_pen = true;
    unsigned int asked_pointer = 0;
    Pen_State pen;
    std::vector<Touch_Point> fingers;
};

int Hand_Pen(void* context, unsigned int pointer, Pen_State* state) {
    auto& hand = *static_cast<Hand*>(context);
    hand.asked_pointer = pointer;
    *state = hand.pen;
    return hand.is_pen ? 1 : 0;
}

int Hand_Touch(void* context, std::uintptr_t, std::intptr_t, Touch_Point* point, int most) {
    const auto& hand = *static_cast<Hand*>(context);
    int nb = 0;
    for (const Touch_Point& finger : hand.fingers) {
        if (nb < most) {
            point[nb++] = finger;
        }
    }
    return nb;
}

HWND Window(std::uintptr_t number) {
    return reinterpret_cast<HWND>(number);
}

class Pointer_Input : public testing::Test {
  protected:
    void SetUp() override {
        const Pointer_System system = {Hand_Pen, Hand_Touch, &hand};
        Pointer_System_Set(&system);
    }
    void TearDown() override { Pointer_System_Set(nullptr); }

    const Gesture_Record* Fingers(std::vector<Touch_Point> fingers, HWND window = Window(1)) {
        hand.fingers = std::move(fingers);
        return Fct_Pointer_Touch(window, TOUCH, 0, 0);
    }

    Hand hand;
};

Touch_Point At(std::uint32_t finger, float x, float y) {
    return {finger, x, y, true};
}
Touch_Point Lifted(std::uint32_t finger) {
    return {finger, 0.0F, 0.0F, false};
}

}  // namespace

TEST_F(Pointer_Input, a_pen_gives_its_screen_position_and_buttons) {
    hand.pen = {-20, 300, true, false, false};
    const Pointer_Record* record = Fct_Pointer_Pen(Window(1), DOWN, 0x00050007, 0);
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(hand.asked_pointer, 7U) << "the low word";
    EXPECT_EQ(record->x, -20);
    EXPECT_EQ(record->y, 300);
    EXPECT_EQ(record->buttons, 0x10);
    hand.pen.barrel = true;
    EXPECT_EQ(Fct_Pointer_Pen(Window(1), UPDATE, 7, 0)->buttons, 0x40);
    hand.pen.eraser = true;
    EXPECT_EQ(Fct_Pointer_Pen(Window(1), UPDATE, 7, 0)->buttons, 0x20);
    hand.pen.contact = false;
    EXPECT_EQ(Fct_Pointer_Pen(Window(1), UP, 7, 0)->buttons, 0);
}

TEST_F(Pointer_Input, other_messages_and_pointers_give_no_pen) {
    EXPECT_EQ(Fct_Pointer_Pen(Window(1), 0x0200, 7, 0), nullptr);
    EXPECT_EQ(Fct_Pointer_Pen(Window(1), TOUCH, 7, 0), nullptr);
    hand.is_pen = false;
    EXPECT_EQ(Fct_Pointer_Pen(Window(1), DOWN, 7, 0), nullptr);
}

TEST_F(Pointer_Input, the_system_without_pen_and_touch_gives_nothing) {
    Pointer_System_Set(nullptr);
    EXPECT_EQ(Fct_Pointer_Pen(nullptr, DOWN, 1, 0), nullptr);
    EXPECT_EQ(Fct_Pointer_Touch(nullptr, TOUCH, 2, 0), nullptr);
    const Pointer_System nothing;
    Pointer_System_Set(&nothing);
    EXPECT_EQ(Fct_Pointer_Pen(nullptr, DOWN, 1, 0), nullptr);
    EXPECT_EQ(Fct_Pointer_Touch(nullptr, TOUCH, 2, 0), nullptr);
}

TEST_F(Pointer_Input, a_gesture_begins_with_the_first_change_of_two_fingers) {
    EXPECT_EQ(Fingers({At(1, 100, 100)}), nullptr);
    EXPECT_EQ(Fingers({At(1, 110, 100)}), nullptr) << "one finger is no gesture";
    EXPECT_EQ(Fingers({At(2, 300, 300)}), nullptr) << "the second one only sets the start";
    EXPECT_EQ(Fingers({At(1, 110, 100), At(2, 300, 300)}), nullptr) << "nothing has changed";
    const Gesture_Record* record = Fingers({At(1, 120, 95), At(2, 310, 295)});
    ASSERT_NE(record, nullptr);
    EXPECT_FLOAT_EQ(record->fx, 1.0F);
    EXPECT_FLOAT_EQ(record->fy, 1.0F);
    EXPECT_FLOAT_EQ(record->dx, 10.0F);
    EXPECT_FLOAT_EQ(record->dy, -5.0F);
    EXPECT_EQ(Fct_Pointer_Touch(Window(1), 0x0200, 0, 0), nullptr);
}

TEST_F(Pointer_Input, spreading_fingers_zoom_in_and_closing_ones_out) {
    Fingers({At(1, 100, 100), At(2, 200, 300)});
    const Gesture_Record* record = Fingers({At(1, 100, 100), At(2, 205, 290)});
    ASSERT_NE(record, nullptr);
    EXPECT_FLOAT_EQ(record->fx, 1.05F);
    EXPECT_FLOAT_EQ(record->fy, 0.95F);
    EXPECT_FLOAT_EQ(record->dx, 2.5F);
    EXPECT_FLOAT_EQ(record->dy, -5.0F);
}

TEST_F(Pointer_Input, a_fast_zoom_comes_in_small_steps_that_add_up) {
    Fingers({At(1, 0, 0), At(2, 100, 400)});
    double product_x = 1.0;
    double product_y = 1.0;
    int record_nb = 0;
    for (const Gesture_Record* record = Fingers({At(1, 0, 0), At(2, 300, 100)}); record != nullptr;
         record = Fingers({At(1, 0, 0), At(2, 300, 100)})) {
        // What a window accepts.
        EXPECT_GE(record->fx, 0.09);
        EXPECT_LE(record->fx, 1.1);
        EXPECT_GE(record->fy, 0.09);
        EXPECT_LE(record->fy, 1.1);
        product_x *= static_cast<double>(record->fx);
        product_y *= static_cast<double>(record->fy);
        if (++record_nb == 100) {
            break;
        }
    }
    EXPECT_NEAR(product_x, 3.0, 1e-3);
    EXPECT_NEAR(product_y, 0.25, 1e-3);
    EXPECT_LT(record_nb, 30);
}

TEST_F(Pointer_Input, fingers_close_together_along_an_axis_do_not_zoom_there) {
    Fingers({At(1, 100, 100), At(2, 300, 101)});
    const Gesture_Record* record = Fingers({At(1, 100, 100), At(2, 300, 130)});
    ASSERT_NE(record, nullptr);
    EXPECT_EQ(record->fy, 1.0F);
    EXPECT_FLOAT_EQ(record->dy, 14.5F);
    record = Fingers({At(1, 100, 100), At(2, 300, 100)});
    EXPECT_EQ(record->fy, 1.0F) << "fingers on one line are no zoom to nothing";
    EXPECT_TRUE(std::isfinite(record->fx));
}

TEST_F(Pointer_Input, lifting_a_finger_ends_the_gesture) {
    Fingers({At(1, 100, 100), At(2, 300, 300)});
    EXPECT_NE(Fingers({At(1, 101, 100)}), nullptr);
    EXPECT_EQ(Fingers({Lifted(2)}), nullptr);
    EXPECT_EQ(Fingers({At(1, 500, 500)}), nullptr);
    EXPECT_EQ(Fingers({At(3, 800, 800)}), nullptr) << "a new pair starts anew, without a jump";
    const Gesture_Record* record = Fingers({At(3, 802, 800)});
    ASSERT_NE(record, nullptr);
    EXPECT_FLOAT_EQ(record->dx, 1.0F);
}

TEST_F(Pointer_Input, a_third_finger_takes_no_part) {
    Fingers({At(1, 100, 100), At(2, 300, 300), At(3, 900, 900)});
    EXPECT_EQ(Fingers({At(3, 0, 0)}), nullptr);
    EXPECT_EQ(Fingers({Lifted(3)}), nullptr);
    EXPECT_NE(Fingers({At(1, 102, 100)}), nullptr);
}

TEST_F(Pointer_Input, another_window_starts_a_gesture_of_its_own) {
    Fingers({At(1, 100, 100), At(2, 300, 300)});
    EXPECT_EQ(Fingers({At(1, 150, 100), At(2, 300, 300)}, Window(2)), nullptr);
    EXPECT_NE(Fingers({At(1, 151, 100)}, Window(2)), nullptr);
}

TEST_F(Pointer_Input, broken_positions_are_ignored) {
    Fingers({At(1, 100, 100), At(2, 300, 300)});
    EXPECT_EQ(Fingers({At(1, NAN, 100), At(2, INFINITY, 300)}), nullptr);
    const Gesture_Record* record = Fingers({At(1, 102, 100)});
    ASSERT_NE(record, nullptr);
    EXPECT_FLOAT_EQ(record->dx, 1.0F);
}
