#include "workbench/model/enlarged_keys.h"

#include <gtest/gtest.h>

#include <array>

#include "host/kit_widgets.h"

using namespace workbench;

namespace {

using Kind = Enlarged_Act::Kind;

constexpr std::array<Enlarged_Control, 5> CONTROLS = {{{"Reset Zoom", 4, 4, 390, 30},
                                                       {"Export", 400, 4, 390, 30},
                                                       {"Display TAG      ", 4, 40, 200, 24},
                                                       {"Display Cursor ", 210, 40, 200, 24},
                                                       {"Display Peak    ", 420, 40, 200, 24}}};
constexpr Enlarged_View VIEW = {800, 400, CONTROLS};

/** What the wheel's turns do to a range of data that takes the window's whole width or height. */
struct Range {
    double start = 0.0;
    double size = 1.0;
    void Turn(int notches, double at) {
        const double factor = 1.0 + notches / 10.0;
        start += (size - size * factor) * at;
        size *= factor;
    }
};

struct Seen {
    Range x;
    Range y;  // upwards
};

Seen After(int key) {
    Seen seen;
    for (const Enlarged_Act& act : Enlarged_Key_Acts(key, VIEW)) {
        EXPECT_EQ(act.kind, Kind::Wheel);
        seen.x.Turn(act.notches, act.x / 800.0);
        seen.y.Turn(act.notches, 1.0 - act.y / 400.0);
    }
    return seen;
}

TEST(Enlarged_Keys, plus_and_minus_undo_one_another) {
    EXPECT_NEAR(After('+').x.size, 0.8, 1e-12);
    EXPECT_NEAR(After('+').y.size, 0.8, 1e-12);
    EXPECT_NEAR(After('-').x.size, 1.25, 1e-12);
    EXPECT_NEAR(After('+').x.start, 0.1, 1e-12);
    EXPECT_NEAR(After('-').x.start, -0.125, 1e-12);
    EXPECT_NEAR(After('+').y.start, 0.0, 0.002) << "the foot of the counts stays in view";
    EXPECT_NEAR(After('-').y.start, 0.0, 0.002);
}

TEST(Enlarged_Keys, arrows_move_by_a_tenth_and_zoom_nothing) {
    struct Case {
        int key;
        double x;
        double y;
    };
    for (const Case& one :
         {Case{KEY_RIGHT, 0.1, 0.0}, Case{KEY_LEFT, -0.1, 0.0}, Case{KEY_UP, 0.0, 0.1}, Case{KEY_DOWN, 0.0, -0.1}}) {
        const Seen seen = After(one.key);
        EXPECT_NEAR(seen.x.start, one.x, 1e-12) << one.key;
        EXPECT_NEAR(seen.y.start, one.y, 1e-12) << one.key;
        EXPECT_EQ(seen.x.size, 1.0) << one.key;
        EXPECT_EQ(seen.y.size, 1.0) << one.key;
    }
}

TEST(Enlarged_Keys, the_view_becomes_smaller_first) {
    // A view that shows all would not grow, and then be halved.
    for (const int key : {int{'-'}, KEY_RIGHT, KEY_LEFT, KEY_UP, KEY_DOWN}) {
        const auto acts = Enlarged_Key_Acts(key, VIEW);
        ASSERT_EQ(acts.size(), 2U) << key;
        EXPECT_LT(acts[0].notches, 0) << key;
        EXPECT_GT(acts[1].notches, 0) << key;
    }
}

TEST(Enlarged_Keys, the_wheel_turns_below_the_controls) {
    for (const int height : {400, 110}) {
        for (const int key : {int{'+'}, int{'-'}, KEY_RIGHT, KEY_LEFT, KEY_UP, KEY_DOWN}) {
            for (const Enlarged_Act& act : Enlarged_Key_Acts(key, {800, height, CONTROLS})) {
                EXPECT_GE(act.y, 64) << key;
                EXPECT_LT(act.y, height) << key;
                EXPECT_GE(act.x, 0) << key;
                EXPECT_LT(act.x, 800) << key;
            }
        }
    }
}

TEST(Enlarged_Keys, letters_and_home_press_their_controls) {
    struct Case {
        int key;
        int x;
        int y;
    };
    for (const Case& one : {Case{KEY_HOME, 199, 19}, Case{'e', 595, 19}, Case{'E', 595, 19}, Case{'t', 104, 52},
                            Case{'c', 310, 52}, Case{'p', 520, 52}}) {
        const auto acts = Enlarged_Key_Acts(one.key, VIEW);
        ASSERT_EQ(acts.size(), 1U) << one.key;
        EXPECT_EQ(acts[0], (Enlarged_Act{Kind::Press, 0, one.x, one.y})) << one.key;
    }
}

TEST(Enlarged_Keys, without_its_control_a_key_means_nothing) {
    EXPECT_TRUE(Enlarged_Key_Acts('p', {800, 400, std::span(CONTROLS).first(4)}).empty());
    EXPECT_TRUE(Enlarged_Key_Acts(KEY_HOME, {800, 400, {}}).empty());
}

TEST(Enlarged_Keys, escape_closes_and_other_keys_mean_nothing) {
    const auto acts = Enlarged_Key_Acts(KEY_ESCAPE, VIEW);
    ASSERT_EQ(acts.size(), 1U);
    EXPECT_EQ(acts[0].kind, Kind::Close);
    for (const int key : {int{'x'}, int{' '}, KEY_ENTER, KEY_DELETE, KEY_END, 0}) {
        EXPECT_TRUE(Enlarged_Key_Acts(key, VIEW).empty()) << key;
    }
}

}  // namespace
