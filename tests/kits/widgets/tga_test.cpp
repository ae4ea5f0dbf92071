#include "kits/widgets/tga.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes Header(int type, int width, int height, int bits, int descriptor) {
    Bytes bytes(18, 0);
    bytes[2] = static_cast<std::uint8_t>(type);
    bytes[12] = static_cast<std::uint8_t>(width & 0xFF);
    bytes[13] = static_cast<std::uint8_t>(width >> 8);
    bytes[14] = static_cast<std::uint8_t>(height & 0xFF);
    bytes[15] = static_cast<std::uint8_t>(height >> 8);
    bytes[16] = static_cast<std::uint8_t>(bits);
    bytes[17] = static_cast<std::uint8_t>(descriptor);
    return bytes;
}

void Append(Bytes& bytes, const Bytes& more) {
    bytes.insert(bytes.end(), more.begin(), more.end());
}

constexpr int TOP_DOWN = 0x20;

}  // namespace

TEST(Tga, plain_24_bit_picture_is_opaque_and_counts_from_the_bottom) {
    Bytes file = Header(2, 2, 2, 24, 0);
    Append(file, {1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12});
    Tga_Picture picture;
    ASSERT_TRUE(Tga_Read(file, &picture));
    EXPECT_EQ(picture.width, 2);
    EXPECT_EQ(picture.height, 2);
    EXPECT_EQ(picture.pixels, (std::vector<std::uint32_t>{0xFF090807U, 0xFF0C0B0AU, 0xFF030201U, 0xFF060504U}));
}

TEST(Tga, rows_from_the_top_and_columns_from_the_right) {
    Bytes file = Header(2, 2, 2, 24, TOP_DOWN | 0x10);
    Append(file, {1, 0, 0, 2, 0, 0, 3, 0, 0, 4, 0, 0});
    Tga_Picture picture;
    ASSERT_TRUE(Tga_Read(file, &picture));
    EXPECT_EQ(picture.pixels, (std::vector<std::uint32_t>{0xFF000002U, 0xFF000001U, 0xFF000004U, 0xFF000003U}));
}

TEST(Tga, runs_and_raw_packets_of_32_bits) {
    Bytes file = Header(10, 3, 2, 32, TOP_DOWN | 8);
    Append(file, {0x83, 1, 2, 3, 128, 0x01, 4, 5, 6, 255, 7, 8, 9, 0});
    Tga_Picture picture;
    ASSERT_TRUE(Tga_Read(file, &picture));
    EXPECT_EQ(picture.pixels, (std::vector<std::uint32_t>{0x80030201U, 0x80030201U, 0x80030201U, 0x80030201U,
                                                          0xFF060504U, 0x00090807U}));
}

TEST(Tga, no_opacity_at_all_means_opaque) {
    Bytes file = Header(2, 1, 1, 32, TOP_DOWN);
    Append(file, {1, 2, 3, 0});
    Tga_Picture picture;
    ASSERT_TRUE(Tga_Read(file, &picture));
    EXPECT_EQ(picture.pixels[0], 0xFF030201U);
}

TEST(Tga, comment_and_colour_map_are_skipped) {
    Bytes file = Header(2, 1, 1, 24, TOP_DOWN);
    file[0] = 3;
    file[1] = 1;
    file[5] = 2;   // two entries
    file[7] = 24;  // of three bytes
    Append(file, {99, 99, 99, 0, 0, 0, 0, 0, 0, 1, 2, 3});
    Tga_Picture picture;
    ASSERT_TRUE(Tga_Read(file, &picture));
    EXPECT_EQ(picture.pixels[0], 0xFF030201U);
}

TEST(Tga, every_cut_of_a_file_is_refused) {
    for (const int type : {2, 10}) {
        Bytes file = Header(type, 3, 2, 32, TOP_DOWN);
        if (type == 2) {
            Append(file, Bytes(24, 5));
        } else {
            Append(file, {0x83, 1, 2, 3, 128, 0x01, 4, 5, 6, 255, 7, 8, 9, 0});
        }
        Tga_Picture picture;
        ASSERT_TRUE(Tga_Read(file, &picture));
        for (std::size_t size = 0; size < file.size(); size++) {
            const Bytes cut(file.begin(), file.begin() + static_cast<std::ptrdiff_t>(size));
            EXPECT_FALSE(Tga_Read(cut, &picture)) << type << " " << size;
            EXPECT_TRUE(picture.pixels.empty());
        }
    }
}

TEST(Tga, other_forms_are_refused) {
    Tga_Picture picture;
    for (const int type : {0, 1, 3, 9, 11, 32}) {
        Bytes file = Header(type, 1, 1, 24, 0);
        Append(file, {1, 2, 3});
        EXPECT_FALSE(Tga_Read(file, &picture)) << type;
    }
    for (const int bits : {0, 8, 15, 16, 25, 31, 33, 64}) {
        Bytes file = Header(2, 1, 1, bits, 0);
        Append(file, Bytes(16, 1));
        EXPECT_FALSE(Tga_Read(file, &picture)) << bits;
    }
}

TEST(Tga, empty_and_huge_sizes_are_refused) {
    Tga_Picture picture;
    for (const auto& [width, height] : {std::pair{0, 4}, {4, 0}, {4097, 1}, {1, 4097}, {65535, 65535}}) {
        Bytes file = Header(10, width, height, 24, 0);
        Append(file, Bytes(64, 0xFF));
        EXPECT_FALSE(Tga_Read(file, &picture)) << width << "x" << height;
    }
}

TEST(Tga, a_run_beyond_the_picture_is_refused) {
    Bytes file = Header(10, 3, 1, 24, TOP_DOWN);
    Append(file, {0x83, 1, 2, 3});
    Tga_Picture picture;
    EXPECT_FALSE(Tga_Read(file, &picture));
}
