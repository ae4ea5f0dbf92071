#include <gtest/gtest.h>

#include <utility>

#include "host/kit_common.h"

TEST(Vector, is_zero_at_creation) {
    const Vector_N vector(1000, 8);
    ASSERT_EQ(vector.Size(), 1000U);
    for (int i = 0; i < 1000; ++i) {
        ASSERT_EQ(vector[i], 0.0);
    }
}

TEST(Vector, adds_element_by_element) {
    Vector_N a(3, 8);
    Vector_N b(3, 8);
    for (int i = 0; i < 3; ++i) {
        a[i] = i;
        b[i] = 10 * i + 0.5;
    }
    EXPECT_EQ(&(a += b), &a);
    EXPECT_EQ(a[0], 0.5);
    EXPECT_EQ(a[1], 11.5);
    EXPECT_EQ(a[2], 22.5);
}

TEST(Vector, adding_a_shorter_one_leaves_the_rest_alone) {
    Vector_N longer(3, 8);
    Vector_N shorter(1, 8);
    longer[2] = 7.0;
    shorter[0] = 1.0;
    longer += shorter;
    EXPECT_EQ(longer[0], 1.0);
    EXPECT_EQ(longer[2], 7.0);
    shorter += longer;
    EXPECT_EQ(shorter.Size(), 1U);
    EXPECT_EQ(shorter[0], 2.0);
}

TEST(Vector, copies_are_deep) {
    Vector_N original(2, 8);
    original[1] = 5.0;
    Vector_N copy(original);
    Vector_N assigned(9, 8);
    assigned = original;
    original[1] = 6.0;
    EXPECT_EQ(copy[1], 5.0);
    EXPECT_EQ(assigned[1], 5.0);
    EXPECT_EQ(assigned.Size(), 2U);
    const Vector_N& same = assigned;
    assigned = same;
    EXPECT_EQ(assigned[1], 5.0);
}

TEST(Vector, a_moved_from_one_is_empty_and_usable) {
    Vector_N first(2, 8);
    first[0] = 3.0;
    Vector_N second(std::move(first));
    EXPECT_EQ(second[0], 3.0);
    EXPECT_EQ(first.Size(), 0U);  // NOLINT(bugprone-use-after-move): this is what the test is about
    first += second;
    first = second;
    EXPECT_EQ(first[0], 3.0);
}

TEST(Vector, elements_outside_are_spare) {
    Vector_N vector(2, 8);
    vector[2] = 9.0;
    vector[-1] = 9.0;
    EXPECT_EQ(vector[2], 0.0);
    EXPECT_EQ(vector[0], 0.0);
    EXPECT_EQ(vector[1], 0.0);
    Vector_N empty(0, 8);
    empty[0] = 1.0;
    EXPECT_EQ(empty.Size(), 0U);
}
