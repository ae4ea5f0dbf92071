#include "workbench/model/contact_sheet.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>

using namespace workbench;

namespace {

int Width(const Pixel_Rect& place) {
    return place.right - place.left;
}
int Height(const Pixel_Rect& place) {
    return place.bottom - place.top;
}

TEST(Contact_Sheet, every_place_stands_in_the_sheet_and_none_covers_another) {
    for (const int slices : {1, 2, 7, 24, 181}) {
        Sheet_Request request{40, 30, 1.0, slices, {50, 60, 500, 20, 80}, 16};
        const Sheet_Layout sheet = Sheet_Layout_Make(request);
        ASSERT_EQ(sheet.slices.size(), static_cast<std::size_t>(slices));
        ASSERT_EQ(sheet.names.size(), 5U);
        std::vector<Pixel_Rect> all = sheet.slices;
        all.insert(all.end(), sheet.swatches.begin(), sheet.swatches.end());
        all.insert(all.end(), sheet.names.begin(), sheet.names.end());
        for (std::size_t one = 0; one < all.size(); ++one) {
            EXPECT_EQ(Rect_Common(all[one], {0, 0, sheet.width, sheet.height}), all[one]) << slices << " " << one;
            for (std::size_t other = 0; other < one; ++other) {
                EXPECT_TRUE(Rect_Common(all[one], all[other]).Is_Empty()) << slices << " " << one << " " << other;
            }
        }
    }
}

TEST(Contact_Sheet, slices_have_their_true_shape_and_as_many_pixels_as_there_are) {
    EXPECT_EQ(Width(Sheet_Layout_Make({40, 30, 1.0, 6, {}, 16}).slices[0]), 40);
    EXPECT_EQ(Height(Sheet_Layout_Make({40, 30, 1.0, 6, {}, 16}).slices[0]), 30);
    EXPECT_EQ(Height(Sheet_Layout_Make({40, 30, 3.0, 6, {}, 16}).slices[0]), 90) << "high pixels";
    EXPECT_EQ(Width(Sheet_Layout_Make({40, 30, 0.5, 6, {}, 16}).slices[0]), 80) << "wide pixels";
}

TEST(Contact_Sheet, stays_within_its_greatest_size) {
    const Sheet_Layout sheet = Sheet_Layout_Make({512, 512, 1.0, 600, {}, 16});
    EXPECT_LE(sheet.width, SHEET_MOST);
    EXPECT_LE(sheet.height, SHEET_MOST);
    EXPECT_GT(Width(sheet.slices[0]), 200);
    const Sheet_Layout flat = Sheet_Layout_Make({1, 20000, 1e9, 1, {}, 16});
    EXPECT_LE(flat.height, SHEET_MOST);
    EXPECT_EQ(Width(flat.slices[0]), 1);
}

TEST(Contact_Sheet, a_slice_is_drawn_into_its_place_only) {
    volumes::Picture sheet{20, 10, std::vector<std::uint32_t>(200, 0x111111)};
    const std::vector<std::uint32_t> slice = {1, 2, 3, 4};
    Sheet_Slice_Put(sheet, {4, 2, 8, 6}, slice, 2, 2);
    for (int y = 0; y < 10; ++y) {
        for (int x = 0; x < 20; ++x) {
            const bool is_inside = x >= 4 && x < 8 && y >= 2 && y < 6;
            const std::uint32_t expected =
                is_inside ? static_cast<std::uint32_t>((x - 4) / 2 + (y - 2) / 2 * 2 + 1) : 0x111111U;
            EXPECT_EQ(sheet.pixels[static_cast<std::size_t>(y * 20 + x)], expected) << x << " " << y;
        }
    }
}

TEST(Contact_Sheet, letters_lighten_what_they_stand_on_and_are_cut_to_their_place) {
    volumes::Picture sheet{6, 3, std::vector<std::uint32_t>(18, 0x400040)};
    const volumes::Picture letters{4, 2, {0, 0xFFFFFF, 0x505050, 0xFFFFFF, 0, 0, 0, 0}};
    Sheet_Letters_Put(sheet, {1, 1, 4, 3}, letters);
    EXPECT_EQ(sheet.pixels[6 + 1], 0x400040U);
    EXPECT_EQ(sheet.pixels[6 + 2], 0xFFFFFFU);
    EXPECT_EQ(sheet.pixels[6 + 3], 0x505050U);
    EXPECT_EQ(sheet.pixels[6 + 4], 0x400040U) << "beyond its place";
    Sheet_Letters_Put(sheet, {5, 2, 9, 4}, letters);  // reaches over the corner
    EXPECT_EQ(sheet.pixels[17], 0x400040U);
    Sheet_Fill(sheet, {4, -1, 9, 1}, 0xABCDEF);
    EXPECT_EQ(sheet.pixels[3], 0x400040U);
    EXPECT_EQ(sheet.pixels[5], 0xABCDEFU);
}

}  // namespace
