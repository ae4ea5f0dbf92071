#include "workbench/volumes/slice_stack.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>

using namespace volumes;

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::SizeIs;
using Kind = Slice_Stack::Kind;
using Warned = Stack_Warning::Kind;

/** An axial slice of 100 x 100 pixels of 1 mm. */
Stack_Slice Axial(double x, double y, double z, const Slice_Moment& moment = {}) {
    Stack_Slice slice;
    slice.place = {true, true, {x, y, z}, {1, 0, 0}, {0, 1, 0}};
    slice.moment = moment;
    slice.size = {100, 100};
    return slice;
}

Stack_Slice Turned(Stack_Slice slice, double degrees) {
    const double angle = degrees / 180 * 3.14159265358979323846;
    slice.place.along_row = {std::cos(angle), 0, std::sin(angle)};
    return slice;
}

std::vector<Stack_Slice> Column(const std::vector<double>& depths) {
    std::vector<Stack_Slice> slices;
    for (const double depth : depths) {
        slices.push_back(Axial(0, 0, depth));
    }
    return slices;
}

std::vector<Warned> Kinds(const Stack_Plan& plan) {
    std::vector<Warned> kinds;
    for (const Stack_Warning& warning : plan.warnings) {
        kinds.push_back(warning.kind);
    }
    return kinds;
}

TEST(Slice_Stack, puts_slices_in_order_along_their_normal) {
    const Stack_Plan plan = Slices_Stack(Column({6, 2, 4}));
    ASSERT_THAT(plan.stacks, SizeIs(1));
    EXPECT_THAT(plan.warnings, IsEmpty());
    EXPECT_EQ(plan.stacks[0].kind, Kind::Regular);
    EXPECT_THAT(plan.stacks[0].order, ElementsAre(1, 2, 0));
    EXPECT_EQ(plan.stacks[0].distance, 2);
    EXPECT_THAT(plan.stacks[0].step, ElementsAre(0, 0, 2));
}

TEST(Slice_Stack, takes_a_column_of_the_other_side_for_a_normal_that_points_down) {
    std::vector<Stack_Slice> slices = Column({6, 4, 2});
    for (Stack_Slice& slice : slices) {
        slice.place.along_column = {0, -1, 0};
    }
    const Stack_Plan plan = Slices_Stack(slices);
    EXPECT_THAT(plan.stacks[0].order, ElementsAre(0, 1, 2));
    EXPECT_THAT(plan.stacks[0].step, ElementsAre(0, 0, -2));
    EXPECT_EQ(plan.stacks[0].distance, 2);
}

TEST(Slice_Stack, keeps_the_tilt_and_tells_its_angle) {
    std::vector<Stack_Slice> slices;
    for (int at = 0; at < 4; ++at) {
        slices.push_back(Axial(0, at * 3.0, at * 3.0));
    }
    const Stack_Plan plan = Slices_Stack(slices);
    ASSERT_THAT(plan.stacks, SizeIs(1));
    EXPECT_EQ(plan.stacks[0].kind, Kind::Tilted);
    EXPECT_THAT(plan.stacks[0].step, ElementsAre(0, 3, 3));
    EXPECT_EQ(plan.stacks[0].distance, 3);
    EXPECT_EQ(plan.stacks[0].error, 0);
    ASSERT_THAT(Kinds(plan), ElementsAre(Warned::Tilted));
    EXPECT_NEAR(plan.warnings[0].amount, 45, 1e-9);
    EXPECT_THAT(Stack_Warning_Text(plan.warnings[0], false),
                HasSubstr("begins a stack of slices tilted by 45 degrees"));
}

TEST(Slice_Stack, tells_which_slice_lies_furthest_off_an_even_grid) {
    const Stack_Plan plan = Slices_Stack(Column({0, 1, 2, 4}));
    EXPECT_EQ(plan.stacks[0].kind, Kind::Uneven);
    ASSERT_THAT(Kinds(plan), ElementsAre(Warned::Uneven));
    EXPECT_EQ(plan.warnings[0].slice, 2);
    EXPECT_NEAR(plan.warnings[0].amount, 2.0 / 3, 1e-12);
    EXPECT_EQ(Stack_Warning_Text(plan.warnings[0], true),
              "has frames at uneven distances (frame 3): they are shown up to 0.667 mm from where they lie");
    EXPECT_THAT(Slices_Stack(Column({0, 1.05, 2, 3})).warnings, IsEmpty()) << "a twentieth of the distance";
}

TEST(Slice_Stack, tells_of_slices_beside_the_line) {
    std::vector<Stack_Slice> slices = Column({0, 1, 2, 3, 4});
    for (int at = 0; at < 5; ++at) {
        slices[static_cast<std::size_t>(at)].place.corner[0] = at * (4 - at) * 0.1;
    }
    const Stack_Plan plan = Slices_Stack(slices);
    EXPECT_EQ(plan.stacks[0].kind, Kind::Uneven);
    ASSERT_THAT(Kinds(plan), ElementsAre(Warned::Curved));
    EXPECT_EQ(plan.warnings[0].slice, 2);
    EXPECT_NEAR(plan.warnings[0].amount, 0.4, 1e-12);
    for (Stack_Slice& slice : slices) {
        slice.pixel = {5, 5};
    }
    EXPECT_THAT(Slices_Stack(slices).warnings, IsEmpty()) << "little of a large pixel";
}

TEST(Slice_Stack, keeps_slices_together_that_are_turned_by_parts_of_a_pixel) {
    std::vector<Stack_Slice> slices = Column({0, 1, 2});
    slices[1] = Turned(slices[1], 0.02);
    EXPECT_THAT(Slices_Stack(slices).stacks, SizeIs(1));
    EXPECT_THAT(Slices_Stack(slices).warnings, IsEmpty());
    slices[1] = Turned(slices[1], 0.2);
    EXPECT_THAT(Slices_Stack(slices).stacks, SizeIs(1));
    EXPECT_THAT(Kinds(Slices_Stack(slices)), ElementsAre(Warned::Turned));
    slices[1] = Turned(slices[1], 0.5);
    EXPECT_THAT(Slices_Stack(slices).stacks, SizeIs(2));
}

TEST(Slice_Stack, keeps_slices_together_whose_pixels_differ_in_the_last_digit) {
    std::vector<Stack_Slice> slices = Column({0, 1});
    slices[1].pixel = {1.0005, 1.0005};
    EXPECT_THAT(Slices_Stack(slices).stacks, SizeIs(1));
    slices[1].pixel = {1.01, 1.01};
    EXPECT_THAT(Slices_Stack(slices).stacks, SizeIs(2));
}

TEST(Slice_Stack, makes_a_stack_of_every_direction) {
    std::vector<Stack_Slice> slices = Column({0, 1});
    slices.push_back(Turned(Axial(0, 0, 0), 90));
    const Stack_Plan plan = Slices_Stack(slices);
    ASSERT_THAT(plan.stacks, SizeIs(2));
    EXPECT_EQ(plan.stacks[0].nz, 2);
    EXPECT_THAT(plan.stacks[1].order, ElementsAre(2));
    EXPECT_THAT(plan.warnings, IsEmpty());
}

TEST(Slice_Stack, makes_a_stack_of_every_column_of_slices_beside_one_another) {
    const std::vector<Stack_Slice> slices = {Axial(0, 0, 0), Axial(100, 0, 0), Axial(0, 0, 5), Axial(100, 0, 5)};
    const Stack_Plan plan = Slices_Stack(slices);
    ASSERT_THAT(plan.stacks, SizeIs(2));
    EXPECT_THAT(plan.stacks[0].order, ElementsAre(0, 2));
    EXPECT_THAT(plan.stacks[1].order, ElementsAre(1, 3));
}

TEST(Slice_Stack, orders_times_by_position_in_time_then_acquisition_then_trigger) {
    const std::vector<Stack_Slice> slices = {Axial(0, 0, 1, {0, 2, 0}),  Axial(0, 0, 0, {0, 1, 500}),
                                             Axial(0, 0, 0, {0, 2, 0}),  Axial(0, 0, 1, {0, 1, 500}),
                                             Axial(0, 0, 1, {0, 1, 10}), Axial(0, 0, 0, {0, 1, 10})};
    const Stack_Plan plan = Slices_Stack(slices);
    ASSERT_THAT(plan.stacks, SizeIs(1));
    EXPECT_EQ(plan.stacks[0].nt, 3);
    EXPECT_THAT(plan.stacks[0].order, ElementsAre(5, 4, 1, 3, 2, 0));
    EXPECT_THAT(plan.warnings, IsEmpty());
}

TEST(Slice_Stack, tells_when_the_order_of_times_is_a_guess) {
    const Stack_Plan plan = Slices_Stack(Column({0, 1, 0, 1}));
    EXPECT_EQ(plan.stacks[0].nt, 2);
    EXPECT_THAT(plan.stacks[0].order, ElementsAre(0, 1, 2, 3));
    EXPECT_THAT(Kinds(plan), ElementsAre(Warned::Time_Guessed));
    EXPECT_THAT(Stack_Warning_Text(plan.warnings[0], false), HasSubstr("does not say which is earlier"));
}

TEST(Slice_Stack, shows_a_place_that_came_twice_in_a_stack_of_its_own) {
    const Stack_Plan plan = Slices_Stack(Column({3, 2, 2, 1}));
    ASSERT_THAT(plan.stacks, SizeIs(2));
    EXPECT_THAT(plan.stacks[0].order, ElementsAre(3, 1, 0));
    EXPECT_EQ(plan.stacks[0].kind, Kind::Regular);
    EXPECT_THAT(plan.stacks[0].step, ElementsAre(0, 0, 1));
    EXPECT_THAT(plan.stacks[1].order, ElementsAre(2));
    ASSERT_THAT(Kinds(plan), ElementsAre(Warned::Unequal));
    EXPECT_EQ(plan.warnings[0].slice, 2);
    EXPECT_THAT(Stack_Warning_Text(plan.warnings[0], false), HasSubstr("do not occur equally often: it is shown as 2"));
}

TEST(Slice_Stack, keeps_times_apart_when_one_lacks_a_slice) {
    std::vector<Stack_Slice> slices;
    for (int time = 1; time <= 3; ++time) {
        for (int z = 0; z < 4; ++z) {
            if (time != 2 || z != 1) {
                slices.push_back(Axial(0, 0, z, {time, 0, 0}));
            }
        }
    }
    const Stack_Plan plan = Slices_Stack(slices);
    ASSERT_THAT(plan.stacks, SizeIs(2));
    EXPECT_EQ(plan.stacks[0].nt, 2);
    EXPECT_THAT(plan.stacks[0].order, ElementsAre(0, 1, 2, 3, 7, 8, 9, 10));
    EXPECT_THAT(plan.stacks[1].order, ElementsAre(4, 5, 6));
    EXPECT_THAT(Kinds(plan), ElementsAre(Warned::Unequal, Warned::Uneven));
}

TEST(Slice_Stack, takes_times_of_one_place_apart_however_little_they_differ) {
    const Stack_Plan plan = Slices_Stack(Column({0, 2, 0.0005, 2.0005}));
    EXPECT_EQ(plan.stacks[0].nz, 2);
    EXPECT_EQ(plan.stacks[0].nt, 2);
    std::vector<Stack_Slice> fine = Column({0, 0.01, 0.02});
    EXPECT_EQ(Slices_Stack(fine).stacks[0].nz, 3) << "slices of a microscope, whose pixel size is not said";
}

TEST(Slice_Stack, shows_a_fan_of_slices_one_after_the_other) {
    std::vector<Stack_Slice> slices;
    for (int at = 0; at < 40; ++at) {
        slices.push_back(Turned(Axial(0, 0, 0), 4.0 * at));
    }
    const Stack_Plan plan = Slices_Stack(slices);
    ASSERT_THAT(plan.stacks, SizeIs(1));
    EXPECT_EQ(plan.stacks[0].kind, Kind::Scattered);
    EXPECT_EQ(plan.stacks[0].nz, 40);
    ASSERT_THAT(Kinds(plan), ElementsAre(Warned::Scattered));
    EXPECT_THAT(Stack_Warning_Text(plan.warnings[0], true), HasSubstr("in 40 directions"));
}

TEST(Slice_Stack, assumes_directions_from_the_line_of_the_corners) {
    std::vector<Slice_Place> places(2);
    places[1].corner = {1, 2, 30};
    ASSERT_TRUE(Directions_Assume(places));
    EXPECT_THAT(Slice_Normal(places[0]), ElementsAre(0, 0, 1));
    places[1].corner = {1, 30, 2};
    ASSERT_TRUE(Directions_Assume(places));
    EXPECT_THAT(Slice_Normal(places[0]), ElementsAre(0, 1, 0));
    places[1].corner = {30, 1, 2};
    ASSERT_TRUE(Directions_Assume(places));
    EXPECT_THAT(Slice_Normal(places[0]), ElementsAre(-1, 0, 0));
    places[1].corner = places[0].corner;
    EXPECT_FALSE(Directions_Assume(places));
}

}  // namespace
