#include "panels/brush_mask.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <vector>

namespace {

constexpr unsigned char GUARD = 0xCD;

/** Mask memory with guard bytes before and after every row. */
class Mask {
  public:
    explicit Mask(int in_radius) : radius(in_radius), side(2 * in_radius + 1), bytes(Stride() * Count(), GUARD) {
        for (int y = 0; y < side; y++) {
            row.push_back(bytes.data() + Stride() * static_cast<std::size_t>(y) + 1);
        }
    }
    Brush_Mask_Rows Rows() const { return row; }
    unsigned char At(int y, int x) const { return row[static_cast<std::size_t>(y)][x]; }
    bool Guards_Hold() const {
        for (std::size_t y = 0; y < Count(); y++) {
            if (bytes[y * Stride()] != GUARD || bytes[(y + 1) * Stride() - 1] != GUARD) {
                return false;
            }
        }
        return true;
    }
    void Dirty() {
        for (unsigned char* one : row) {
            std::fill(one, one + side, static_cast<unsigned char>(7));
        }
    }
    int radius;
    int side;
    std::vector<unsigned char*> row;

  private:
    std::size_t Stride() const { return static_cast<std::size_t>(side) + 2; }
    std::size_t Count() const { return static_cast<std::size_t>(side); }
    std::vector<unsigned char> bytes;
};

/** The square of a size in 16 bits with a sign, counted by hand. */
long Wrapped_Square(long size) {
    long square = size * size % 65536;
    return square >= 32768 ? square - 65536 : square;
}

/** What a pixel of a mask is by definition. */
int Plain_Pixel(long size, long radius, long y, long x) {
    const long dy = y - radius;
    const long dx = x - radius;
    if (size < 2) {
        return dx == 0 && dy == 0 ? 1 : 0;
    }
    return dx * dx + dy * dy < Wrapped_Square(size) ? 1 : 0;
}

int Wrong_Pixels(const Mask& mask, int size) {
    int wrong = 0;
    for (int y = 0; y < mask.side; y++) {
        for (int x = 0; x < mask.side; x++) {
            wrong += mask.At(y, x) != Plain_Pixel(size, mask.radius, y, x) ? 1 : 0;
        }
    }
    return wrong;
}

int Covered(const Mask& mask) {
    int covered = 0;
    for (int y = 0; y < mask.side; y++) {
        for (int x = 0; x < mask.side; x++) {
            covered += mask.At(y, x);
        }
    }
    return covered;
}

void Build(Mask& mask, int size) {
    Brush_Mask_Clear(mask.Rows());
    Brush_Mask_Fill(mask.Rows(), static_cast<std::uint16_t>(size));
}

}  // namespace

class Every_Size_In_A_Mask : public testing::TestWithParam<int> {};

TEST_P(Every_Size_In_A_Mask, covers_the_pixels_of_the_definition_and_no_other_byte) {
    Mask mask(GetParam());
    for (int size = 0; size <= 300; size++) {
        mask.Dirty();
        Build(mask, size);
        ASSERT_EQ(Wrong_Pixels(mask, size), 0) << "size " << size;
        ASSERT_TRUE(mask.Guards_Hold()) << "size " << size;
    }
}
INSTANTIATE_TEST_SUITE_P(Radius, Every_Size_In_A_Mask, testing::Values(0, 1, 2, 5, 16, 33, 100, 181, 182, 190));

TEST(Brush_Mask, far_sizes_wrap_like_any_other) {
    Mask mask(185);
    for (int size : {361, 362, 363, 400, 511, 512, 513, 1000, 4096, 32767, 32768, 65535}) {
        Build(mask, size);
        EXPECT_EQ(Wrong_Pixels(mask, size), 0) << "size " << size;
    }
}

TEST(Brush_Mask, sizes_0_and_1_cover_the_centre_alone) {
    for (int size : {0, 1}) {
        Mask mask(4);
        Build(mask, size);
        EXPECT_EQ(Covered(mask), 1);
        EXPECT_EQ(mask.At(4, 4), 1);
    }
}

TEST(Brush_Mask, a_point_at_the_very_distance_is_outside) {
    Mask mask(8);
    Build(mask, 5);
    EXPECT_EQ(mask.At(8, 8 + 4), 1);
    EXPECT_EQ(mask.At(8, 8 + 5), 0);
    EXPECT_EQ(mask.At(8 + 3, 8 + 4), 0);  // 9 + 16 is the square itself
    EXPECT_EQ(mask.At(8 + 3, 8 + 3), 1);
}

TEST(Brush_Mask, sizes_from_182_to_256_cover_nothing_and_257_a_small_disc) {
    Mask mask(200);
    Build(mask, 181);
    EXPECT_EQ(mask.At(200, 200 + 180), 1);
    EXPECT_EQ(mask.At(200, 200 + 181), 0);
    for (int size = 182; size <= 256; size++) {
        Build(mask, size);
        ASSERT_EQ(Covered(mask), 0) << "size " << size;
    }
    Build(mask, 257);  // 513: reaches 22
    EXPECT_EQ(mask.At(200, 200 + 22), 1);
    EXPECT_EQ(mask.At(200, 200 + 23), 0);
}

TEST(Brush_Mask, is_the_same_in_all_four_quarters) {
    Mask mask(40);
    Build(mask, 37);
    for (int y = 0; y < mask.side; y++) {
        for (int x = 0; x < mask.side; x++) {
            ASSERT_EQ(mask.At(y, x), mask.At(80 - y, x));
            ASSERT_EQ(mask.At(y, x), mask.At(y, 80 - x));
        }
    }
}

TEST(Brush_Mask, a_brush_larger_than_the_mask_is_cut_at_it) {
    Mask mask(3);
    Build(mask, 100);
    EXPECT_EQ(Covered(mask), 49);
    EXPECT_TRUE(mask.Guards_Hold());
}

TEST(Brush_Mask, filling_leaves_other_bytes_alone) {
    Mask mask(6);
    Brush_Mask_Clear(mask.Rows());
    mask.row[0][0] = 9;
    Brush_Mask_Fill(mask.Rows(), 4);
    EXPECT_EQ(mask.At(0, 0), 9);
}

TEST(Brush_Mask, a_missing_row_or_an_even_number_of_rows_is_no_mask) {
    Mask mask(2);
    EXPECT_TRUE(Brush_Mask_Complete(mask.Rows()));
    EXPECT_FALSE(Brush_Mask_Complete(mask.Rows().first(4)));
    EXPECT_FALSE(Brush_Mask_Complete({}));
    for (std::size_t missing = 0; missing < 5; missing++) {
        std::vector<unsigned char*> row = mask.row;
        row[missing] = nullptr;
        EXPECT_FALSE(Brush_Mask_Complete(row)) << missing;
    }
}
