#include "workbench/model/display_order.h"

#include <gtest/gtest.h>

#include <string>

#include <numeric>

using namespace volumes;
using namespace workbench;

namespace {

Affine Diagonal(double x, double y, double z) {
    Affine affine{};
    affine[0][0] = x;
    affine[1][1] = y;
    affine[2][2] = z;
    return affine;
}

TEST(Display_Order, shows_the_patients_right_at_the_left_and_the_front_at_the_top) {
    const Display_Order order = Display_Order_Of(Diagonal(1, 1, 1));
    EXPECT_TRUE(order.flip_x);
    EXPECT_TRUE(order.flip_y);
    EXPECT_EQ(order.left, 'R');
    EXPECT_EQ(order.right, 'L');
    EXPECT_EQ(order.top, 'A');
    EXPECT_EQ(order.bottom, 'P');
}

TEST(Display_Order, leaves_axes_that_run_the_other_way_already) {
    const Display_Order order = Display_Order_Of(Diagonal(-2, -2, 1));
    EXPECT_FALSE(order.flip_x);
    EXPECT_FALSE(order.flip_y);
    EXPECT_EQ(order.left, 'R');
    EXPECT_EQ(order.top, 'A');
}

TEST(Display_Order, names_the_sides_of_other_planes) {
    Affine sagittal{};
    sagittal[1][0] = -1;  // columns run to the back
    sagittal[2][1] = 1;   // rows run to the top
    sagittal[0][2] = 1;
    const Display_Order order = Display_Order_Of(sagittal);
    EXPECT_EQ(order.left, 'A');
    EXPECT_EQ(order.right, 'P');
    EXPECT_EQ(order.top, 'S');
    EXPECT_EQ(order.bottom, 'I');
    EXPECT_FALSE(order.flip_x);
    EXPECT_TRUE(order.flip_y);
}

TEST(Display_Order, survives_an_affine_of_zeros) {
    const Display_Order order = Display_Order_Of(Affine{});
    EXPECT_EQ(order.left, 'R');
    EXPECT_EQ(order.top, 'A');
}

TEST(Slices_Turn, moves_every_pixel_to_its_mirrored_place_in_its_own_slice) {
    constexpr int nx = 5;
    constexpr int ny = 3;
    constexpr int nz = 2;
    for (const bool flip_x : {false, true}) {
        for (const bool flip_y : {false, true}) {
            std::vector<int> values(nx * ny * nz);
            std::iota(values.begin(), values.end(), 0);
            const std::vector<int> before = values;
            Display_Order order;
            order.flip_x = flip_x;
            order.flip_y = flip_y;
            Slices_Turn(std::span(values), nx, ny, order);
            for (int z = 0; z < nz; ++z) {
                for (int y = 0; y < ny; ++y) {
                    for (int x = 0; x < nx; ++x) {
                        const int from_x = flip_x ? nx - 1 - x : x;
                        const int from_y = flip_y ? ny - 1 - y : y;
                        EXPECT_EQ(values[static_cast<std::size_t>((z * ny + y) * nx + x)],
                                  before[static_cast<std::size_t>((z * ny + from_y) * nx + from_x)]);
                    }
                }
            }
            Slices_Turn(std::span(values), nx, ny, order);
            EXPECT_EQ(values, before);
        }
    }
}

TEST(Display_Order, chosen_letters_go_to_the_sides_of_the_picture_as_it_is) {
    Display_Order order;
    order.flip_x = order.flip_y = true;  // as an image is shown whose file says nothing
    EXPECT_TRUE(Letters_Set("las", order));
    EXPECT_EQ(std::string({order.left, order.right, order.top, order.bottom}), "LRAP");
    order.flip_x = order.flip_y = false;
    EXPECT_TRUE(Letters_Set("SPR", order));
    EXPECT_EQ(std::string({order.left, order.right, order.top, order.bottom}), "ISAP");
    for (const char* const wrong : {"", "LA", "LASP", "LRA", "LLS", "L S", "XYZ"}) {
        EXPECT_FALSE(Letters_Set(wrong, order)) << wrong;
    }
    EXPECT_EQ(order.left, 'I') << "nothing changes when the text is wrong";
}

}  // namespace
