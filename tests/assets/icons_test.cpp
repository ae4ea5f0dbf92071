// The icons as they stand beside the programs.
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "kits/widgets/tga.h"

namespace {

const std::vector<std::string> NAMES = {
    "class Anatomy", "class Bone",       "class Frame",       "class Images", "class Lesion", "class Organ",
    "class Series",  "class Signal",     "class Study",       "class Tissue", "class Vessel", "class Volume",
    "icon anchor",   "icon check green", "icon check yellow", "icon cine",    "icon folder",  "icon image",
    "icon scout",    "icon volume",      "modality ct",       "modality mr",  "modality nm",  "modality ot",
    "modality ph",   "modality rx",      "modality us",       "modality xa",
};
constexpr int SIDE = 16;  // pixels

Tga_Picture Read(const std::string& name) {
    std::ifstream file("icons/" + name + ".tga", std::ios::binary);
    const std::vector<char> bytes((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    Tga_Picture picture;
    Tga_Read({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()}, &picture);
    return picture;
}

/** A component of a pixel laid over a grey ground. */
double Over(std::uint32_t pixel, unsigned int shift, double ground) {
    const double opacity = static_cast<double>(pixel >> 24U) / 255.0;
    return opacity * static_cast<double>((pixel >> shift) & 0xFFU) + (1.0 - opacity) * ground;
}

double Brightness(std::uint32_t pixel, double ground) {
    return 0.299 * Over(pixel, 16, ground) + 0.587 * Over(pixel, 8, ground) + 0.114 * Over(pixel, 0, ground);
}

TEST(Icons, every_icon_is_there_and_of_one_size) {
    for (const std::string& name : NAMES) {
        const Tga_Picture picture = Read(name);
        EXPECT_EQ(picture.width, SIDE) << name;
        EXPECT_EQ(picture.height, SIDE) << name;
    }
}

TEST(Icons, the_folder_has_no_others) {
    std::size_t files = 0;
    for (const auto& entry : std::filesystem::directory_iterator("icons")) {
        files += entry.is_regular_file() ? 1U : 0U;
    }
    EXPECT_EQ(files, NAMES.size());
}

TEST(Icons, each_stands_out_from_a_dark_a_middle_and_a_light_row) {
    for (const std::string& name : NAMES) {
        const Tga_Picture picture = Read(name);
        for (const double ground : {56.0, 140.0, 235.0}) {
            int clear = 0;  // pixels that differ strongly from the ground
            for (const std::uint32_t pixel : picture.pixels) {
                clear += std::abs(Brightness(pixel, ground) - ground) > 50.0 ? 1 : 0;
            }
            EXPECT_GE(clear, 14) << name << " on " << ground;
        }
    }
}

TEST(Icons, stand_upright) {
    // The folder's tab is at its upper left.
    const Tga_Picture folder = Read("icon folder");
    ASSERT_EQ(folder.pixels.size(), std::size_t{SIDE} * SIDE);
    EXPECT_NE(folder.pixels[std::size_t{4} * SIDE + 3] >> 24U, 0U);
    EXPECT_EQ(folder.pixels[std::size_t{4} * SIDE + 12] >> 24U, 0U);
}

TEST(Icons, no_two_look_alike) {
    for (std::size_t a = 0; a < NAMES.size(); ++a) {
        for (std::size_t b = a + 1; b < NAMES.size(); ++b) {
            const Tga_Picture first = Read(NAMES[a]);
            const Tga_Picture second = Read(NAMES[b]);
            ASSERT_EQ(first.pixels.size(), second.pixels.size());
            int different = 0;
            for (std::size_t at = 0; at < first.pixels.size(); ++at) {
                double distance = 0.0;
                for (const unsigned int shift : {0U, 8U, 16U}) {
                    distance += std::abs(Over(first.pixels[at], shift, 140.0) - Over(second.pixels[at], shift, 140.0));
                }
                different += distance > 60.0 ? 1 : 0;
            }
            EXPECT_GE(different, 10) << NAMES[a] << " and " << NAMES[b];
        }
    }
}

}  // namespace
