#include <gtest/gtest.h>

#include <string>

#include "kits/common/block_cache.h"
#include "kits/common/messages.h"
#include "tests/kits/common/failing_memory.h"

namespace {

char received[256];
int received_nb = 0;

/** Takes no memory itself. */
void Receive(void*, HWND, int, const char* text) {
    std::size_t i = 0;
    for (; text[i] != 0 && i + 1 < sizeof(received); ++i) {
        received[i] = text[i];
    }
    received[i] = 0;
    ++received_nb;
}

void Receive_Too(void*, HWND, int, const char*) {}

Matrix_NxM Filled(unsigned int columns, unsigned int rows) {
    Matrix_NxM matrix(columns, rows, 8);
    for (unsigned int i = 0; i < rows && matrix.Rows() == rows; ++i) {
        for (unsigned int j = 0; j < columns; ++j) {
            matrix[static_cast<int>(i)][j] = i == j ? 4.0 : 1.0 / (1 + i + 2 * j);
        }
    }
    return matrix;
}

}  // namespace

TEST(Without_Memory, a_vector_is_empty_and_survives_every_operation) {
    Vector_N other(100, 8);
    const int failed = Fail_Each_Allocation([&] {
        Vector_N vector(100, 8);
        EXPECT_EQ(vector.Size() == 0, Failing_Allocation::Happened());
        vector[5] = 1.0;
        vector += other;
        const Vector_N copy(vector);
        vector = other;
        other += copy;
    });
    EXPECT_GE(failed, 4);
    EXPECT_EQ(other.Size(), 100U);
}

TEST(Without_Memory, a_matrix_is_marked_invalid) {
    const int failed = Fail_Each_Allocation([] {
        Matrix_NxM matrix(30, 30, 8);
        EXPECT_EQ(matrix.Invalid(0) != 0, Failing_Allocation::Happened());
        EXPECT_EQ(matrix.Rows() == 0, Failing_Allocation::Happened());
    });
    EXPECT_EQ(failed, 2);
}

TEST(Without_Memory, a_copied_matrix_is_marked_invalid) {
    const Matrix_NxM original = Filled(30, 30);
    EXPECT_EQ(Fail_Each_Allocation([&] {
                  Matrix_NxM copy(original);
                  EXPECT_EQ(copy.Invalid(0) != 0, Failing_Allocation::Happened());
              }),
              2);
}

TEST(Without_Memory, results_of_matrix_operations_are_marked_invalid) {
    const Matrix_NxM square = Filled(200, 200);
    const Matrix_NxM tall = Filled(60, 900);
    const Matrix_NxM wide = ~tall;
    // Work memory of a product comes from the stack while it is small, so only the result must be there.
    EXPECT_GE(Fail_Each_Allocation([&] {
                  Matrix_NxM inverse = !square;
                  EXPECT_EQ(inverse.Invalid(0) != 0, Failing_Allocation::Happened());
              }),
              3);
    EXPECT_GE(Fail_Each_Allocation([&] {
                  Matrix_NxM product = wide * tall;
                  EXPECT_EQ(product.Invalid(0) != 0, Failing_Allocation::Happened());
              }),
              2);
    EXPECT_GE(Fail_Each_Allocation([&] {
                  Matrix_NxM product = square * square;
                  EXPECT_EQ(product.Invalid(0) != 0, Failing_Allocation::Happened());
              }),
              2);
    EXPECT_EQ(Fail_Each_Allocation([&] {
                  Matrix_NxM transposed = ~tall;
                  EXPECT_EQ(transposed.Invalid(0) != 0, Failing_Allocation::Happened());
              }),
              2);
    Vector_N ones(60, 8);
    EXPECT_EQ(Fail_Each_Allocation([&] {
                  const Vector_N product = tall * ones;
                  EXPECT_EQ(product.Size() == 0, Failing_Allocation::Happened());
              }),
              2);
}

TEST(Without_Memory, the_inverse_of_a_band_is_invalid_or_complete) {
    Matrix_NxM band(60, 60, 8);
    for (int i = 0; i < 60; ++i) {
        band[i][i] = 2.0;
        band[i][(i + 1) % 60] = i + 1 < 60 ? 1.0 : 0.0;
    }
    const Vector_N ones = [] {
        Vector_N vector(60, 8);
        vector[59] = 2.0;
        return vector;
    }();
    EXPECT_GE(Fail_Each_Allocation([&] {
                  Matrix_NxM inverse = !band;
                  if (inverse.Invalid(0) != 0) {
                      EXPECT_TRUE(Failing_Allocation::Happened());
                      return;
                  }
                  const bool had_failed = Failing_Allocation::Happened();
                  EXPECT_EQ(inverse[59][59], 0.5);
                  EXPECT_EQ(inverse[58][59], -0.25);
                  EXPECT_EQ(Failing_Allocation::Happened(), had_failed) << "reading takes no memory";
                  const Vector_N solution = inverse * ones;
                  EXPECT_TRUE(solution.Size() == 0 ? Failing_Allocation::Happened() : solution[58] == -0.5);
              }),
              5);
}

TEST(Without_Memory, large_matrices_are_marked_invalid_or_live_in_a_kept_block) {
    Block_Cache_Empty();
    const auto make = [] {
        Matrix_NxM matrix(300, 300, 8);
        EXPECT_EQ(matrix.Invalid(0) != 0, Failing_Allocation::Happened());
    };
    {
        Failing_Allocation second(2);
        make();  // nothing is kept: the block fails
        EXPECT_TRUE(Failing_Allocation::Happened());
    }
    static_cast<void>(Matrix_NxM(300, 300, 8));
    {
        Failing_Allocation second(2);
        make();  // the one before left its block
        EXPECT_FALSE(Failing_Allocation::Happened());
    }
    Block_Cache_Empty();
}

TEST(Without_Memory, short_messages_need_none) {
    ASSERT_EQ(Message_Receiver_Add(Receive, nullptr, true), 1);
    received_nb = 0;
    EXPECT_EQ(Fail_Each_Allocation([] {
                  Error_Fct(nullptr, 1, "line %-4d of %s \nmemory error in %ls (%.2f)", 244, "panels/tool_tag.cpp",
                            L"strdup", 0.5);
                  EXPECT_STREQ(received, "line 244  of panels/tool_tag.cpp \nmemory error in strdup (0.50)");
              }),
              0);
    EXPECT_EQ(received_nb, 1);
    Message_Receiver_Remove(Receive, nullptr);
}

TEST(Without_Memory, long_messages_are_cut_and_still_arrive) {
    ASSERT_EQ(Message_Receiver_Add(Receive, nullptr, true), 1);
    const std::string text(5000, 'x');
    const std::string front = text.substr(0, sizeof(received) - 1);
    received_nb = 0;
    const int failed = Fail_Each_Allocation([&] {
        Error_Fct(nullptr, 1, "%s|%ls|%5000d|%2000s", text.c_str(), L"wide", 5, "");
        EXPECT_EQ(received, front);
    });
    EXPECT_GE(failed, 1);
    EXPECT_EQ(received_nb, failed + 1);
    Message_Receiver_Remove(Receive, nullptr);
}

TEST(Without_Memory, a_receiver_is_refused) {
    constexpr int receiver_nb = 40;
    const int failed = Fail_Each_Allocation([] {
        int refused = 0;
        for (int i = 0; i < receiver_nb; ++i) {
            refused += Message_Receiver_Add(Receive_Too, &received[i]) == 0 ? 1 : 0;
        }
        EXPECT_EQ(refused, Failing_Allocation::Happened() ? 1 : 0);
        for (int i = 0; i < receiver_nb; ++i) {
            Message_Receiver_Remove(Receive_Too, &received[i]);
        }
    });
    EXPECT_GE(failed, 1);
}
