#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <random>

#include "host/kit_common.h"

namespace {

std::mt19937 Generator(unsigned int seed) {
    return std::mt19937(seed);
}

Matrix_NxM Random_Matrix(unsigned int columns, unsigned int rows, unsigned int seed) {
    auto generator = Generator(seed);
    std::uniform_real_distribution<double> values(-1.0, 1.0);
    Matrix_NxM matrix(columns, rows, 8);
    for (unsigned int row = 0; row < rows; ++row) {
        for (unsigned int column = 0; column < columns; ++column) {
            matrix[static_cast<int>(row)][column] = values(generator);
        }
    }
    return matrix;
}

/** A matrix whose rows are filled between moving limits only, as derivatives of narrow peaks are. */
Matrix_NxM Banded_Matrix(unsigned int columns, unsigned int rows, unsigned int half_width, unsigned int seed) {
    Matrix_NxM matrix = Random_Matrix(columns, rows, seed);
    for (unsigned int row = 0; row < rows; ++row) {
        for (unsigned int column = 0; column < columns; ++column) {
            const double centre = static_cast<double>(row) * columns / rows;
            if (std::abs(centre - column) > half_width) {
                matrix[static_cast<int>(row)][column] = 0.0;
            }
        }
    }
    return matrix;
}

/** The sums of the definition, in extended precision. */
Matrix_NxM Plain_Product(const Matrix_NxM& left, const Matrix_NxM& right) {
    Matrix_NxM product(right.Columns(), left.Rows(), 8);
    for (unsigned int row = 0; row < left.Rows(); ++row) {
        for (unsigned int column = 0; column < right.Columns(); ++column) {
            long double sum = 0.0L;
            for (unsigned int i = 0; i < left.Columns(); ++i) {
                sum += static_cast<long double>(left[static_cast<int>(row)][i]) * right[static_cast<int>(i)][column];
            }
            product[static_cast<int>(row)][column] = static_cast<double>(sum);
        }
    }
    return product;
}

double Largest_Difference(const Matrix_NxM& a, const Matrix_NxM& b) {
    double largest = 0.0;
    for (unsigned int row = 0; row < a.Rows(); ++row) {
        for (unsigned int column = 0; column < a.Columns(); ++column) {
            const double difference = std::abs(a[static_cast<int>(row)][column] - b[static_cast<int>(row)][column]);
            largest = std::isnan(difference) ? difference : std::max(largest, difference);
        }
    }
    return largest;
}

double Distance_From_Identity(const Matrix_NxM& matrix) {
    Matrix_NxM identity(matrix.Columns(), matrix.Rows(), 8);
    for (unsigned int i = 0; i < matrix.Rows(); ++i) {
        identity[static_cast<int>(i)][i] = 1.0;
    }
    return Largest_Difference(matrix, identity);
}

}  // namespace

TEST(Matrix, takes_columns_first_and_stores_contiguous_rows) {
    Matrix_NxM matrix(3, 2, 8);
    EXPECT_EQ(matrix.Columns(), 3U);
    EXPECT_EQ(matrix.Rows(), 2U);
    EXPECT_EQ(matrix[1] - matrix[0], 3);
    EXPECT_EQ(matrix.Invalid(0), 0);
    for (int i = 0; i < 6; ++i) {
        EXPECT_EQ(matrix[0][i], 0.0);
    }
}

TEST(Matrix, copies_are_deep_and_keep_the_mark) {
    Matrix_NxM singular(2, 2, 8);
    Matrix_NxM invalid = !singular;
    Matrix_NxM copy = invalid;
    EXPECT_NE(copy.Invalid(0), 0);
    Matrix_NxM original = Random_Matrix(4, 4, 1);
    copy = original;
    EXPECT_EQ(copy.Invalid(0), 0);
    const double before = copy[2][3];
    original[2][3] = 99.0;
    EXPECT_EQ(copy[2][3], before);
    const Matrix_NxM& same = copy;
    copy = same;
    EXPECT_EQ(copy[2][3], before);
}

TEST(Matrix, transposes_every_shape) {
    for (const auto& [columns, rows] : {std::pair{1U, 1U}, {3U, 5U}, {17U, 33U}, {64U, 1U}, {1U, 100U}, {130U, 47U}}) {
        const Matrix_NxM matrix = Random_Matrix(columns, rows, 7);
        const Matrix_NxM transposed = ~matrix;
        ASSERT_EQ(transposed.Columns(), rows);
        ASSERT_EQ(transposed.Rows(), columns);
        for (unsigned int row = 0; row < rows; ++row) {
            for (unsigned int column = 0; column < columns; ++column) {
                ASSERT_EQ(transposed[static_cast<int>(column)][row], matrix[static_cast<int>(row)][column]);
            }
        }
    }
}

TEST(Matrix, products_agree_with_the_plain_sums) {
    for (const auto& [rows, inner, columns] :
         {std::tuple{1U, 1U, 1U}, {3U, 4U, 5U}, {48U, 48U, 48U}, {25U, 700U, 31U}, {100U, 3U, 90U}}) {
        const Matrix_NxM left = Random_Matrix(inner, rows, 11);
        const Matrix_NxM right = Random_Matrix(columns, inner, 12);
        Matrix_NxM product = left * right;
        EXPECT_EQ(product.Invalid(0), 0);
        ASSERT_EQ(product.Rows(), rows);
        ASSERT_EQ(product.Columns(), columns);
        EXPECT_LT(Largest_Difference(product, Plain_Product(left, right)), 1e-14 * inner);
    }
}

TEST(Matrix, products_with_blocks_of_zeros_agree_with_the_plain_sums) {
    for (const unsigned int half_width : {0U, 1U, 6U, 20U}) {
        const Matrix_NxM banded = Banded_Matrix(90, 500, half_width, 21);
        EXPECT_LT(Largest_Difference(~banded * banded, Plain_Product(~banded, banded)), 1e-12);
        const Matrix_NxM dense = Random_Matrix(90, 90, 22);
        EXPECT_LT(Largest_Difference(dense * ~banded, Plain_Product(dense, ~banded)), 1e-12);
        EXPECT_LT(Largest_Difference(banded * dense, Plain_Product(banded, dense)), 1e-12);
    }
    const Matrix_NxM zero(60, 60, 8);
    EXPECT_EQ(Largest_Difference(zero * Random_Matrix(60, 60, 23), zero), 0.0);
}

TEST(Matrix, a_single_value_among_zeros_is_not_lost) {
    for (unsigned int at = 0; at < 100; at += 7) {
        Matrix_NxM left(100, 100, 8);
        Matrix_NxM right(100, 100, 8);
        left[static_cast<int>(99 - at)][at] = 2.0;
        right[static_cast<int>(at)][(at * 3) % 100] = 3.0;
        const Matrix_NxM product = left * right;
        EXPECT_EQ(product[static_cast<int>(99 - at)][(at * 3) % 100], 6.0);
    }
}

TEST(Matrix, rows_and_columns_of_different_filling_share_a_group) {
    // Filled from the left up to an end that falls from row to row, and the same from the top.
    Matrix_NxM left = Random_Matrix(200, 200, 61);
    Matrix_NxM right = Random_Matrix(200, 200, 62);
    for (int row = 0; row < 200; ++row) {
        for (int column = 0; column < 200; ++column) {
            if (column > (200 - row) / 2 || column < 20 - row) {
                left[row][column] = 0.0;
                right[column][row] = 0.0;
            }
        }
    }
    EXPECT_LT(Largest_Difference(left * right, Plain_Product(left, right)), 1e-12);
}

TEST(Matrix, blocks_of_zeros_and_sizes_that_fill_no_group) {
    for (unsigned int columns = 1; columns < 60; columns += 1) {
        const Matrix_NxM banded = Banded_Matrix(columns, 160 + columns, 1, 70 + columns);
        EXPECT_LT(Largest_Difference(~banded * banded, Plain_Product(~banded, banded)), 1e-12) << columns;
        const Matrix_NxM wide = Banded_Matrix(160 + columns, columns, 9, 170 + columns);
        EXPECT_LT(Largest_Difference(wide * banded, Plain_Product(wide, banded)), 1e-12) << columns;
    }
}

TEST(Matrix, zero_times_infinity_is_not_skipped) {
    Matrix_NxM left(60, 60, 8);
    Matrix_NxM right(60, 60, 8);
    right[50][50] = std::numeric_limits<double>::infinity();
    EXPECT_TRUE(std::isnan((left * right)[0][50]));
    EXPECT_EQ((left * right)[0][0], 0.0);
    EXPECT_TRUE(std::isnan((right * left)[50][0]));
    right[50][50] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_TRUE(std::isnan((left * right)[0][50]));
}

TEST(Matrix, a_product_of_shapes_that_do_not_fit_is_invalid) {
    const Matrix_NxM left(3, 2, 8);
    const Matrix_NxM right(3, 2, 8);
    EXPECT_NE((left * right).Invalid(0), 0);
    EXPECT_EQ((left * Vector_N(2, 8)).Size(), 0U);
}

TEST(Matrix, times_vector_gives_one_element_per_row) {
    const Matrix_NxM matrix = Random_Matrix(7, 13, 31);
    Vector_N vector(7, 8);
    for (int i = 0; i < 7; ++i) {
        vector[i] = i - 2.5;
    }
    const Vector_N product = matrix * vector;
    ASSERT_EQ(product.Size(), 13U);
    for (int row = 0; row < 13; ++row) {
        double sum = 0.0;
        for (int column = 0; column < 7; ++column) {
            sum += matrix[row][column] * vector[column];
        }
        EXPECT_NEAR(product[row], sum, 1e-14);
    }
}

TEST(Matrix, inverses_of_random_systems_are_inverses) {
    for (const unsigned int order : {1U, 2U, 3U, 6U, 24U, 75U, 300U}) {
        for (unsigned int seed = 0; seed < 5; ++seed) {
            const Matrix_NxM matrix = Random_Matrix(order, order, 100 * order + seed);
            Matrix_NxM inverse = !matrix;
            ASSERT_EQ(inverse.Invalid(0), 0);
            EXPECT_LT(Distance_From_Identity(inverse * matrix), 1e-7) << order;
            EXPECT_LT(Distance_From_Identity(matrix * inverse), 1e-7) << order;
        }
    }
}

TEST(Matrix, pivots_where_the_diagonal_is_zero) {
    Matrix_NxM swap(2, 2, 8);
    swap[0][1] = 2.0;
    swap[1][0] = 4.0;
    Matrix_NxM inverse = !swap;
    ASSERT_EQ(inverse.Invalid(0), 0);
    EXPECT_EQ(inverse[0][1], 0.25);
    EXPECT_EQ(inverse[1][0], 0.5);
    EXPECT_EQ(inverse[0][0], 0.0);
}

TEST(Matrix, an_all_zero_column_or_row_makes_the_inverse_invalid) {
    for (const unsigned int order : {1U, 2U, 3U, 30U, 150U}) {
        for (unsigned int at = 0; at < order; at += order / 3 + 1) {
            Matrix_NxM column_zero = Random_Matrix(order, order, order + at);
            for (unsigned int row = 0; row < order; ++row) {
                column_zero[static_cast<int>(row)][at] = 0.0;
            }
            EXPECT_NE((!column_zero).Invalid(0), 0) << order << ' ' << at;
            // The normal equations of a derivative that is zero everywhere.
            EXPECT_NE((!(~column_zero * column_zero)).Invalid(0), 0) << order << ' ' << at;
        }
    }
}

TEST(Matrix, there_is_no_tolerance_for_nearly_singular_systems) {
    Matrix_NxM tiny(2, 2, 8);
    tiny[0][0] = 1e-150;
    tiny[1][1] = 1e-150;
    Matrix_NxM inverse = !tiny;
    EXPECT_EQ(inverse.Invalid(0), 0);
    EXPECT_DOUBLE_EQ(inverse[0][0], 1e150);
}

TEST(Matrix, an_inverse_that_is_not_finite_is_invalid) {
    Matrix_NxM denormal(1, 1, 8);
    denormal[0][0] = 1e-310;
    EXPECT_NE((!denormal).Invalid(0), 0);
    Matrix_NxM not_a_number = Random_Matrix(4, 4, 41);
    not_a_number[2][1] = std::numeric_limits<double>::quiet_NaN();
    EXPECT_NE((!not_a_number).Invalid(0), 0);
    Matrix_NxM infinite = Random_Matrix(4, 4, 42);
    infinite[0][0] = std::numeric_limits<double>::infinity();
    EXPECT_NE((!infinite).Invalid(0), 0);
}

TEST(Matrix, only_square_matrices_have_an_inverse) {
    EXPECT_NE((!Random_Matrix(3, 2, 51)).Invalid(0), 0);
}

TEST(Matrix, the_mark_is_kept_until_it_is_cleared) {
    Matrix_NxM invalid = !Matrix_NxM(2, 2, 8);
    EXPECT_NE(invalid.Invalid(0), 0);
    EXPECT_NE(invalid.Invalid(0), 0);
    EXPECT_NE(invalid.Invalid(1), 0);
    EXPECT_EQ(invalid.Invalid(0), 0);
}

TEST(Matrix, the_mark_is_handed_on) {
    const Matrix_NxM invalid = !Matrix_NxM(2, 2, 8);
    EXPECT_NE((invalid * Matrix_NxM(2, 2, 8)).Invalid(0), 0);
    EXPECT_NE((Matrix_NxM(2, 2, 8) * invalid).Invalid(0), 0);
    EXPECT_NE((~invalid).Invalid(0), 0);
    EXPECT_NE((!invalid).Invalid(0), 0);
}

TEST(Matrix, the_empty_system_is_valid) {
    const Matrix_NxM empty(0, 0, 8);
    EXPECT_EQ((!empty).Invalid(0), 0);
    EXPECT_EQ((~empty).Invalid(0), 0);
    EXPECT_EQ((empty * empty).Invalid(0), 0);
    EXPECT_EQ((empty * Vector_N(0, 8)).Size(), 0U);
    const Matrix_NxM no_columns(0, 5, 8);
    EXPECT_EQ((~no_columns * no_columns).Invalid(0), 0);
    EXPECT_EQ((no_columns * ~no_columns).Rows(), 5U);
    EXPECT_EQ((no_columns * ~no_columns)[4][4], 0.0);
    const Vector_N zero = no_columns * Vector_N(0, 8);
    ASSERT_EQ(zero.Size(), 5U);
    EXPECT_EQ(zero[4], 0.0);
}

TEST(Matrix, one_that_is_too_large_for_memory_is_invalid_and_usable) {
    Matrix_NxM huge(0xFFFFFFFFU, 0xFFFFFFFFU, 8);
    EXPECT_NE(huge.Invalid(0), 0);
    EXPECT_EQ(huge.Columns(), 0U);
    EXPECT_NE(huge.Invalid(1), 0);
    EXPECT_NE(huge.Invalid(0), 0) << "what could not be made stays so";
    Matrix_NxM copy = huge;
    EXPECT_NE(copy.Invalid(1), 0);
    EXPECT_NE(copy.Invalid(0), 0);
    EXPECT_NE((!huge).Invalid(0), 0);
    EXPECT_NE((huge * huge).Invalid(0), 0);
    EXPECT_EQ((huge * Vector_N(0, 8)).Size(), 0U);
}

TEST(Matrix, solves_least_squares_like_a_peak_fit_does) {
    // y = 3 + 2 x, through the normal equations.
    Matrix_NxM design(2, 50, 8);
    Vector_N data(50, 8);
    for (int i = 0; i < 50; ++i) {
        design[i][0] = 1.0;
        design[i][1] = i;
        data[i] = 3.0 + 2.0 * i;
    }
    const Matrix_NxM transposed = ~design;
    const Vector_N solution = !(transposed * design) * transposed * data;
    EXPECT_NEAR(solution[0], 3.0, 1e-10);
    EXPECT_NEAR(solution[1], 2.0, 1e-11);
}
