// Inverses of matrices that are zero but near their diagonal. Their numbers are made when somebody reads them.
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <thread>
#include <vector>

#include "host/kit_common.h"

namespace {

struct Shape {
    unsigned int order;
    unsigned int lower;
    unsigned int upper;
};
constexpr Shape SHAPES[] = {{24, 0, 0},   {24, 1, 1},  {25, 3, 0},   {40, 0, 5},   {61, 2, 9},
                            {90, 11, 11}, {90, 14, 2}, {200, 1, 30}, {300, 17, 23}};

bool Is_Inside(const Shape& shape, unsigned int row, unsigned int column) {
    return column + shape.lower >= row && column <= row + shape.upper;
}

/** Random elements in the band. Where it is as wide on both sides the diagonal is nothing special, so that rows must be
 * exchanged; elsewhere the condition would grow with every row. */
Matrix_NxM Banded(const Shape& shape, unsigned int seed) {
    std::mt19937 random(seed);
    std::uniform_real_distribution<double> values(-1.0, 1.0);
    const double diagonal = shape.lower == shape.upper && shape.lower > 0 ? 0.0 : 8.0;
    Matrix_NxM matrix(shape.order, shape.order, 8);
    for (unsigned int row = 0; row < shape.order; ++row) {
        for (unsigned int column = 0; column < shape.order; ++column) {
            if (Is_Inside(shape, row, column)) {
                matrix[static_cast<int>(row)][column] = values(random);
            }
        }
        matrix[static_cast<int>(row)][row] += row % 2 == 0 ? diagonal : -diagonal;
    }
    return matrix;
}

Vector_N Counted(unsigned int nb) {
    Vector_N vector(nb, 8);
    for (unsigned int i = 0; i < nb; ++i) {
        vector[static_cast<int>(i)] = 1.0 + 0.25 * (i % 7);
    }
    return vector;
}

double Largest(const Vector_N& vector) {
    double largest = 0.0;
    for (unsigned int i = 0; i < vector.Size(); ++i) {
        largest = std::max(largest, std::abs(vector[static_cast<int>(i)]));
    }
    return largest;
}

/** Solves by elimination with the largest pivot, in extended precision. */
std::vector<long double> Solved_Plainly(const Matrix_NxM& matrix, const Vector_N& right) {
    const std::size_t n = matrix.Rows();
    std::vector<std::vector<long double>> a(n, std::vector<long double>(n + 1));
    for (std::size_t row = 0; row < n; ++row) {
        std::copy_n(matrix[static_cast<int>(row)], n, a[row].begin());
        a[row][n] = right[static_cast<int>(row)];
    }
    for (std::size_t k = 0; k < n; ++k) {
        std::size_t pivot = k;
        for (std::size_t row = k + 1; row < n; ++row) {
            pivot = std::abs(a[row][k]) > std::abs(a[pivot][k]) ? row : pivot;
        }
        std::swap(a[k], a[pivot]);
        for (std::size_t row = 0; row < n; ++row) {
            const long double factor = a[row][k] / a[k][k];
            for (std::size_t column = k; row != k && factor != 0 && column <= n; ++column) {
                a[row][column] -= factor * a[k][column];
            }
        }
    }
    std::vector<long double> solution(n);
    for (std::size_t k = 0; k < n; ++k) {
        solution[k] = a[k][n] / a[k][k];
    }
    return solution;
}

double Distance_From_Identity(const Matrix_NxM& matrix) {
    double largest = 0.0;
    for (unsigned int row = 0; row < matrix.Rows(); ++row) {
        for (unsigned int column = 0; column < matrix.Columns(); ++column) {
            const double off = matrix[static_cast<int>(row)][column] - (row == column ? 1.0 : 0.0);
            largest = std::isnan(off) ? off : std::max(largest, std::abs(off));
        }
    }
    return largest;
}

void Expect_Equal(const Matrix_NxM& a, const Matrix_NxM& b) {
    ASSERT_EQ(a.Rows(), b.Rows());
    ASSERT_EQ(a.Columns(), b.Columns());
    for (unsigned int row = 0; row < a.Rows(); ++row) {
        for (unsigned int column = 0; column < a.Columns(); ++column) {
            ASSERT_EQ(a[static_cast<int>(row)][column], b[static_cast<int>(row)][column]) << row << ' ' << column;
        }
    }
}

constexpr Shape PEAKS{90, 8, 8};

/** The inverse of `matrix`, its numbers read. */
Matrix_NxM Read_Inverse(const Matrix_NxM& matrix) {
    Matrix_NxM inverse = !matrix;
    EXPECT_NE(inverse[0], nullptr);
    return inverse;
}

}  // namespace

TEST(Matrix_Band, an_unread_inverse_times_a_vector_solves) {
    for (const Shape& shape : SHAPES) {
        for (unsigned int seed = 0; seed < 4; ++seed) {
            const Matrix_NxM matrix = Banded(shape, 10 * shape.order + seed);
            const Vector_N right = Counted(shape.order);
            Matrix_NxM inverse = !matrix;
            ASSERT_EQ(inverse.Invalid(0), 0);
            const Vector_N solution = inverse * right;
            ASSERT_EQ(solution.Size(), shape.order);
            const std::vector<long double> plain = Solved_Plainly(matrix, right);
            for (unsigned int i = 0; i < shape.order; ++i) {
                ASSERT_NEAR(solution[static_cast<int>(i)], static_cast<double>(plain[i]), 1e-8 * Largest(solution))
                    << shape.order << ' ' << shape.lower << ' ' << shape.upper << ' ' << i;
            }
        }
    }
}

TEST(Matrix_Band, an_inverse_that_is_read_is_the_inverse) {
    for (const Shape& shape : SHAPES) {
        const Matrix_NxM matrix = Banded(shape, 20 * shape.order);
        const Matrix_NxM inverse = Read_Inverse(matrix);
        EXPECT_LT(Distance_From_Identity(matrix * inverse), 1e-7) << shape.order;
        EXPECT_LT(Distance_From_Identity(inverse * matrix), 1e-7) << shape.order;
        EXPECT_LT(Distance_From_Identity(!matrix * matrix), 1e-7) << "an unread one in a product " << shape.order;
        const Vector_N right = Counted(shape.order);
        const Vector_N solved = !matrix * right;
        const Vector_N multiplied = inverse * right;
        for (unsigned int i = 0; i < shape.order; ++i) {
            ASSERT_NEAR(solved[static_cast<int>(i)], multiplied[static_cast<int>(i)], 1e-8 * Largest(solved));
        }
    }
}

TEST(Matrix_Band, an_unread_inverse_outlives_a_change_of_its_source_and_its_end) {
    const Matrix_NxM expected = Read_Inverse(Banded(PEAKS, 5));
    Matrix_NxM matrix = Banded(PEAKS, 5);
    const Matrix_NxM inverse = !matrix;
    matrix[40][40] = 1000.0;
    matrix = Matrix_NxM(2, 2, 8);
    Expect_Equal(inverse, expected);
    const Matrix_NxM of_temporary = !Banded(PEAKS, 5);
    Expect_Equal(of_temporary, expected);
}

TEST(Matrix_Band, copies_of_an_unread_inverse_are_deep) {
    const Matrix_NxM matrix = Banded(PEAKS, 6);
    const Matrix_NxM expected = Read_Inverse(matrix);
    Matrix_NxM inverse = !matrix;
    Matrix_NxM copy = inverse;
    Expect_Equal(copy, expected);
    copy = !matrix;
    Matrix_NxM assigned = copy;
    Expect_Equal(assigned, expected);
    copy[3][4] = 77.0;
    Expect_Equal(inverse, expected);
    Expect_Equal(assigned, expected);
    assigned = !matrix;
    Expect_Equal(assigned, expected);
    const Matrix_NxM moved = std::move(assigned);
    Expect_Equal(moved, expected);
}

TEST(Matrix_Band, a_matrix_may_become_its_own_inverse_square_and_transpose) {
    const Matrix_NxM matrix = Banded(PEAKS, 7);
    const Matrix_NxM inverse = Read_Inverse(matrix);
    Matrix_NxM own = matrix;
    own = !own;
    own = ~own;
    Expect_Equal(own, ~inverse);
    own = !matrix;
    own = own * own;
    Expect_Equal(own, inverse * inverse);
    own = !matrix;
    own = own * ~own;
    Expect_Equal(own, inverse * ~inverse);
    own = !matrix;
    const Matrix_NxM& same = own;
    own = same;
    Expect_Equal(own, inverse);
    own = !!matrix;
    EXPECT_LT(Distance_From_Identity(own * inverse), 1e-6);
}

TEST(Matrix_Band, what_is_written_into_an_inverse_counts_in_its_products) {
    const Matrix_NxM matrix = Banded(PEAKS, 8);
    const Vector_N right = Counted(PEAKS.order);
    Matrix_NxM inverse = !matrix;
    const Vector_N before = inverse * right;
    inverse[10][20] += 5.0;
    const Vector_N after = inverse * right;
    EXPECT_NEAR(after[10], before[10] + 5.0 * right[20], 1e-8 * Largest(before));
    EXPECT_NEAR(after[11], before[11], 1e-8 * Largest(before));
}

TEST(Matrix_Band, rows_are_exchanged_for_larger_pivots) {
    Matrix_NxM matrix(40, 40, 8);
    for (int i = 0; i < 40; ++i) {
        matrix[i][i] = 1e-20;
        if (i > 0) {
            matrix[i][i - 1] = 1.0 + 0.01 * i;
            matrix[i - 1][i] = -1.0;
        }
    }
    const Vector_N right = Counted(40);
    const Vector_N solution = !matrix * right;
    const std::vector<long double> plain = Solved_Plainly(matrix, right);
    for (int i = 0; i < 40; ++i) {
        ASSERT_NEAR(solution[i], static_cast<double>(plain[static_cast<std::size_t>(i)]), 1e-12 * Largest(solution));
    }
}

TEST(Matrix_Band, an_exactly_singular_band_is_invalid) {
    for (const Shape& shape : SHAPES) {
        for (unsigned int at = 0; at < shape.order; at += 9) {
            Matrix_NxM no_column = Banded(shape, at);
            Matrix_NxM no_row = Banded(shape, at);
            for (unsigned int i = 0; i < shape.order; ++i) {
                no_column[static_cast<int>(i)][at] = 0.0;
                no_row[static_cast<int>(at)][i] = 0.0;
            }
            EXPECT_NE((!no_column).Invalid(0), 0) << shape.order << ' ' << at;
            EXPECT_NE((!no_row).Invalid(0), 0) << shape.order << ' ' << at;
        }
    }
    Matrix_NxM twice(30, 30, 8);
    for (int i = 0; i < 30; ++i) {
        twice[i][i] = 1.0;
    }
    twice[12][12] = twice[12][13] = twice[13][12] = twice[13][13] = 3.0;
    EXPECT_NE((!twice).Invalid(0), 0);
}

TEST(Matrix_Band, what_is_not_finite_makes_the_inverse_invalid) {
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()}) {
        for (const auto& [row, column] : {std::pair{0, 0}, {5, 7}, {7, 5}, {89, 89}, {0, 8}, {89, 81}, {2, 70}}) {
            Matrix_NxM matrix = Banded(PEAKS, 9);
            matrix[row][static_cast<unsigned int>(column)] = bad;
            EXPECT_NE((!matrix).Invalid(0), 0) << row << ' ' << column;
        }
    }
    Matrix_NxM diagonal(40, 40, 8);
    for (int i = 0; i < 40; ++i) {
        diagonal[i][i] = i == 17 ? 1e-310 : 1.0;
    }
    EXPECT_NE((!diagonal).Invalid(0), 0) << "its inverse is not finite";
    diagonal[17][17] = 1e-305;
    Matrix_NxM inverse = !diagonal;
    EXPECT_EQ(inverse.Invalid(0), 0) << "there is no tolerance";
    EXPECT_DOUBLE_EQ(inverse[17][17], 1e305);
}

TEST(Matrix_Band, an_inverse_that_overflows_beside_its_band_is_invalid) {
    // Every element is harmless; those of the inverse grow by 1e100 with each of the large ones.
    for (const int large_nb : {2, 3, 4}) {
        Matrix_NxM matrix(40, 40, 8);
        for (int i = 0; i < 40; ++i) {
            matrix[i][i] = 1.0;
            if (i + 1 < 40) {
                matrix[i][i + 1] = i >= 10 && i < 10 + large_nb ? 1e100 : 0.0;
            }
        }
        Matrix_NxM inverse = !matrix;
        EXPECT_EQ(inverse.Invalid(0) != 0, large_nb == 4) << large_nb;
        if (large_nb < 4) {
            EXPECT_NEAR(std::log10(std::abs(inverse[10][10 + large_nb])), 100.0 * large_nb, 1e-9);
        }
    }
}

TEST(Matrix_Band, several_threads_read_one_unread_inverse) {
    const Matrix_NxM matrix = Banded({300, 8, 8}, 10);
    const Matrix_NxM expected = Read_Inverse(matrix);
    const Matrix_NxM inverse = !matrix;
    std::vector<std::thread> readers;
    for (int k = 0; k < 4; ++k) {
        readers.emplace_back([&] {
            Expect_Equal(inverse, expected);
            EXPECT_EQ((inverse * Counted(300)).Size(), 300U);
        });
    }
    for (std::thread& reader : readers) {
        reader.join();
    }
}
