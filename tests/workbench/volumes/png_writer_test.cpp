#include "workbench/volumes/png_writer.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <random>
#include <string>

#define ZLIB_CONST
#include <zlib.h>

using namespace volumes;

namespace {

namespace fs = std::filesystem;

Picture Random_Picture(int width, int height) {
    std::mt19937 random(9);
    Picture picture{width, height, {}};
    for (int at = 0; at < width * height; ++at) {
        picture.pixels.push_back(static_cast<std::uint32_t>(random()) & 0xFFFFFFU);
    }
    return picture;
}

std::uint32_t Number_At(const std::vector<std::uint8_t>& bytes, std::size_t at) {
    return (std::uint32_t{bytes[at]} << 24U) | (std::uint32_t{bytes[at + 1]} << 16U) |
           (std::uint32_t{bytes[at + 2]} << 8U) | bytes[at + 3];
}

/** Takes a file apart as its format says, and checks the chunks; every row filter that is used is undone. */
Picture Decoded(const std::vector<std::uint8_t>& file) {
    Picture picture;
    std::vector<std::uint8_t> packed;
    EXPECT_EQ(std::string(file.begin(), file.begin() + 8), "\x89PNG\r\n\x1A\n");
    std::string names;
    std::size_t at = 8;
    while (at + 12 <= file.size()) {
        const std::size_t length = Number_At(file, at);
        const std::string name(file.begin() + static_cast<std::ptrdiff_t>(at) + 4,
                               file.begin() + static_cast<std::ptrdiff_t>(at) + 8);
        EXPECT_EQ(Number_At(file, at + 8 + length),
                  static_cast<std::uint32_t>(::crc32(0, &file[at + 4], static_cast<uInt>(length + 4))))
            << name;
        names += name;
        if (name == "IHDR") {
            picture.width = static_cast<int>(Number_At(file, at + 8));
            picture.height = static_cast<int>(Number_At(file, at + 12));
            EXPECT_EQ((std::vector<std::uint8_t>{8, 2, 0, 0, 0}),
                      std::vector<std::uint8_t>(&file[at + 16], &file[at + 16] + 5));
        } else if (name == "IDAT") {
            packed.insert(packed.end(), &file[at + 8], &file[at + 8] + length);
        }
        at += length + 12;
    }
    EXPECT_EQ(at, file.size());
    EXPECT_EQ(names, "IHDRIDATIEND");
    const auto row = static_cast<std::size_t>(picture.width) * 3;
    std::vector<std::uint8_t> rows((row + 1) * static_cast<std::size_t>(picture.height));
    auto size = static_cast<uLongf>(rows.size());
    EXPECT_EQ(::uncompress(rows.data(), &size, packed.data(), static_cast<uLong>(packed.size())), Z_OK);
    EXPECT_EQ(size, rows.size());
    std::vector<std::uint8_t> above(row);
    for (std::size_t begin = 0; begin < rows.size(); begin += row + 1) {
        EXPECT_TRUE(rows[begin] == 0 || rows[begin] == 2);
        for (std::size_t x = 0; x < row; ++x) {
            above[x] = static_cast<std::uint8_t>(rows[begin + 1 + x] + (rows[begin] == 2 ? above[x] : 0));
        }
        for (std::size_t x = 0; x < row; x += 3) {
            picture.pixels.push_back((std::uint32_t{above[x]} << 16U) | (std::uint32_t{above[x + 1]} << 8U) |
                                     above[x + 2]);
        }
    }
    return picture;
}

TEST(Png_Encode, every_pixel_comes_back) {
    for (const auto& [width, height] : {std::pair{1, 1}, {7, 3}, {200, 150}}) {
        const Picture picture = Random_Picture(width, height);
        const Picture back = Decoded(Png_Encode(picture));
        EXPECT_EQ(back.width, width);
        EXPECT_EQ(back.height, height);
        EXPECT_EQ(back.pixels, picture.pixels);
    }
}

TEST(Png_Encode, what_is_even_takes_little_room) {
    const Picture picture{512, 512, std::vector<std::uint32_t>(std::size_t{512} * 512, 0x102030)};
    EXPECT_LT(Png_Encode(picture).size(), 5000U);
}

TEST(Png_Write, writes_the_file_or_tells_why_not) {
    const fs::path file = fs::temp_directory_path() / ("picture_" + std::to_string(std::random_device{}()) + ".png");
    const Picture picture = Random_Picture(5, 4);
    EXPECT_EQ(Png_Write(file, picture), "");
    std::ifstream in(file, std::ios::binary);
    const std::vector<std::uint8_t> bytes((std::istreambuf_iterator<char>(in)), {});
    in.close();
    EXPECT_EQ(bytes, Png_Encode(picture));
    fs::remove(file);
    EXPECT_NE(Png_Write(file.parent_path() / "no folder of this name" / "picture.png", picture), "");
}

}  // namespace
