#include "workbench/model/color_sight.h"

#include <gtest/gtest.h>

#include <cmath>

#include "workbench/model/tag_table.h"

using namespace workbench;

namespace {

struct Published {
    Lab first;
    Lab second;
    double distance;
};

// The test data that Sharma, Wu and Dalal published with "The CIEDE2000 color-difference formula" (2005).
constexpr Published PUBLISHED[] = {
    {{50.0000, 2.6772, -79.7751}, {50.0000, 0.0000, -82.7485}, 2.0425},
    {{50.0000, 3.1571, -77.2803}, {50.0000, 0.0000, -82.7485}, 2.8615},
    {{50.0000, 2.8361, -74.0200}, {50.0000, 0.0000, -82.7485}, 3.4412},
    {{50.0000, -1.3802, -84.2814}, {50.0000, 0.0000, -82.7485}, 1.0000},
    {{50.0000, -1.1848, -84.8006}, {50.0000, 0.0000, -82.7485}, 1.0000},
    {{50.0000, -0.9009, -85.5211}, {50.0000, 0.0000, -82.7485}, 1.0000},
    {{50.0000, 0.0000, 0.0000}, {50.0000, -1.0000, 2.0000}, 2.3669},
    {{50.0000, -1.0000, 2.0000}, {50.0000, 0.0000, 0.0000}, 2.3669},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0009}, 7.1792},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0010}, 7.1792},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0011}, 7.2195},
    {{50.0000, 2.4900, -0.0010}, {50.0000, -2.4900, 0.0012}, 7.2195},
    {{50.0000, -0.0010, 2.4900}, {50.0000, 0.0009, -2.4900}, 4.8045},
    {{50.0000, -0.0010, 2.4900}, {50.0000, 0.0010, -2.4900}, 4.8045},
    {{50.0000, -0.0010, 2.4900}, {50.0000, 0.0011, -2.4900}, 4.7461},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 0.0000, -2.5000}, 4.3065},
    {{50.0000, 2.5000, 0.0000}, {73.0000, 25.0000, -18.0000}, 27.1492},
    {{50.0000, 2.5000, 0.0000}, {61.0000, -5.0000, 29.0000}, 22.8977},
    {{50.0000, 2.5000, 0.0000}, {56.0000, -27.0000, -3.0000}, 31.9030},
    {{50.0000, 2.5000, 0.0000}, {58.0000, 24.0000, 15.0000}, 19.4535},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 3.1736, 0.5854}, 1.0000},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 3.2972, 0.0000}, 1.0000},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 1.8634, 0.5757}, 1.0000},
    {{50.0000, 2.5000, 0.0000}, {50.0000, 3.2592, 0.3350}, 1.0000},
    {{60.2574, -34.0099, 36.2677}, {60.4626, -34.1751, 39.4387}, 1.2644},
    {{63.0109, -31.0961, -5.8663}, {62.8187, -29.7946, -4.0864}, 1.2630},
    {{61.2901, 3.7196, -5.3901}, {61.4292, 2.2480, -4.9620}, 1.8731},
    {{35.0831, -44.1164, 3.7933}, {35.0232, -40.0716, 1.5901}, 1.8645},
    {{22.7233, 20.0904, -46.6940}, {23.0331, 14.9730, -42.5619}, 2.0373},
    {{36.4612, 47.8580, 18.3852}, {36.2715, 50.5065, 21.2231}, 1.4146},
    {{90.8027, -2.0831, 1.4410}, {91.1528, -1.6435, 0.0447}, 1.4441},
    {{90.9257, -0.5406, -0.9208}, {88.6381, -0.8985, -0.7239}, 1.5381},
    {{6.7747, -0.2908, -2.4247}, {5.8714, -0.0985, -2.2286}, 0.6377},
    {{2.0776, 0.0795, -1.1350}, {0.9033, -0.0636, -0.5514}, 0.9082},
};

TEST(Color_Sight, the_distance_agrees_with_the_published_pairs) {
    for (const Published& pair : PUBLISHED) {
        EXPECT_NEAR(Color_Distance(pair.first, pair.second), pair.distance, 0.00006)
            << pair.first.a << " " << pair.second.a;
        EXPECT_NEAR(Color_Distance(pair.second, pair.first), pair.distance, 0.00006);
    }
}

TEST(Color_Sight, screen_colours_have_their_published_lab_values) {
    const auto expect = [](std::uint32_t color, double l, double a, double b) {
        const Lab lab = Lab_Of(color);
        EXPECT_NEAR(lab.l, l, 0.01) << std::hex << color;
        EXPECT_NEAR(lab.a, a, 0.02) << std::hex << color;
        EXPECT_NEAR(lab.b, b, 0.02) << std::hex << color;
    };
    expect(0xFFFFFF, 100.0, 0.0, 0.0);
    expect(0x000000, 0.0, 0.0, 0.0);
    expect(0xFF0000, 53.24, 80.09, 67.20);
    expect(0x00FF00, 87.73, -86.18, 83.18);
    expect(0x0000FF, 32.30, 79.19, -107.86);
}

// Columns of the published matrices, brought back to sRGB: what is seen of a pure colour.
TEST(Color_Sight, pure_colours_are_seen_as_published) {
    EXPECT_EQ(Seen_Color(0xFF0000, Sight::Protanopia), 0x6D5F00U);
    EXPECT_EQ(Seen_Color(0x00FF00, Sight::Protanopia), 0xFFE500U);
    EXPECT_EQ(Seen_Color(0x0000FF, Sight::Protanopia), 0x0059FFU);
    EXPECT_EQ(Seen_Color(0xFF0000, Sight::Deuteranopia), 0xA39000U);
    EXPECT_EQ(Seen_Color(0x00FF00, Sight::Deuteranopia), 0xEFD63AU);
    EXPECT_EQ(Seen_Color(0x0000FF, Sight::Deuteranopia), 0x003DFBU);
    EXPECT_EQ(Seen_Color(0xFF0000, Sight::Tritanopia), 0xFF000FU);
    EXPECT_EQ(Seen_Color(0x00FF00, Sight::Tritanopia), 0x00F7D9U);
    EXPECT_EQ(Seen_Color(0x0000FF, Sight::Tritanopia), 0x006B96U);
}

TEST(Color_Sight, greys_stay_greys_for_every_sight) {
    for (const Sight sight : SIGHTS) {
        for (std::uint32_t level = 0; level < 256; level += 5) {
            const std::uint32_t grey = level * 0x010101U;
            const std::uint32_t seen = Seen_Color(grey, sight);
            for (const unsigned int shift : {0U, 8U, 16U}) {
                EXPECT_NEAR(static_cast<int>((seen >> shift) & 0xFFU), static_cast<int>(level), 1) << Sight_Name(sight);
            }
        }
    }
}

TEST(Color_Sight, the_missing_receptor_merges_its_colours) {
    // Equal to one who lacks the receptor, far apart to normal sight.
    EXPECT_GT(Color_Distance(0xB05A5A, 0x7A7A58, Sight::Normal), 15.0);
    EXPECT_LT(Color_Distance(0xB05A5A, 0x7A7A58, Sight::Deuteranopia),
              Color_Distance(0xB05A5A, 0x7A7A58, Sight::Normal) / 2);
    // Red is dark without the receptor for long waves.
    EXPECT_LT(Lab_Of(Seen_Color(0xFF0000, Sight::Protanopia)).l, Lab_Of(0xFF0000).l - 10.0);
    EXPECT_GT(Lab_Of(Seen_Color(0xFF0000, Sight::Deuteranopia)).l, Lab_Of(0xFF0000).l);
    // Without the receptor for short waves blue and green come near each other.
    EXPECT_LT(Color_Distance(0x00A0C8, 0x00B09A, Sight::Tritanopia), Color_Distance(0x00A0C8, 0x00B09A, Sight::Normal));
}

TEST(Color_Sight, alike_pairs_are_found_once_and_the_closest_comes_first) {
    const std::uint32_t colors[] = {0xFF0000, 0x0000FF, 0xFE0203, 0xFFFFFF, 0xF7F7FF};
    const auto pairs = Alike_Pairs(colors);
    ASSERT_EQ(pairs.size(), 2U);
    EXPECT_EQ(pairs[0].first, 0);
    EXPECT_EQ(pairs[0].second, 2);
    EXPECT_EQ(pairs[1].first, 3);
    EXPECT_EQ(pairs[1].second, 4);
    EXPECT_LE(pairs[0].distance, pairs[1].distance);
    EXPECT_TRUE(Alike_Pairs({}).empty());
    EXPECT_TRUE(Alike_Pairs({colors, 1}).empty());
}

TEST(Color_Sight, the_worst_sight_is_named) {
    // Red and a dark olive: alike only without a receptor.
    const std::uint32_t colors[] = {Seen_Color(0xA04020, Sight::Deuteranopia), 0xA04020};
    const auto pairs = Alike_Pairs(colors, 100.0);
    ASSERT_EQ(pairs.size(), 1U);
    EXPECT_EQ(pairs[0].sight, Sight::Deuteranopia);
    EXPECT_LT(pairs[0].distance, Color_Distance(colors[0], colors[1], Sight::Normal));
}

TEST(Color_Sight, a_suggestion_is_clear_of_all_others) {
    std::vector<std::uint32_t> colors;
    for (int tag = 1; tag < TAG_DEFAULT_NB; ++tag) {
        const Tag_Entry entry = Tag_Default(tag);
        colors.push_back((static_cast<std::uint32_t>(entry.red) << 16U) |
                         (static_cast<std::uint32_t>(entry.green) << 8U) | entry.blue);
    }
    colors[5] = colors[4];
    const auto before = Alike_Pairs(colors);
    ASSERT_FALSE(before.empty());
    EXPECT_EQ(before[0].distance, 0.0);
    const auto suggestion = Color_Suggest(colors, 5);
    ASSERT_TRUE(suggestion.has_value());
    colors[5] = *suggestion;
    for (const Alike_Pair& pair : Alike_Pairs(colors)) {
        EXPECT_NE(pair.first, 5);
        EXPECT_NE(pair.second, 5);
    }
}

TEST(Color_Sight, without_room_there_is_no_suggestion) {
    const std::uint32_t colors[] = {0x808080, 0x808080};
    EXPECT_FALSE(Color_Suggest(colors, 1, 1000.0).has_value());
    EXPECT_FALSE(Color_Suggest(colors, 2).has_value());
    EXPECT_FALSE(Color_Suggest(colors, -1).has_value());
}

TEST(Color_Sight, the_named_tags_can_be_told_apart_by_normal_sight) {
    for (int first = 1; first < 16; ++first) {
        for (int second = first + 1; second < 16; ++second) {
            const Tag_Entry a = Tag_Default(first);
            const Tag_Entry b = Tag_Default(second);
            const auto packed = [](const Tag_Entry& entry) {
                return (static_cast<std::uint32_t>(entry.red) << 16U) |
                       (static_cast<std::uint32_t>(entry.green) << 8U) | entry.blue;
            };
            EXPECT_GE(Color_Distance(packed(a), packed(b), Sight::Normal), TAG_DISTANCE_LEAST)
                << first << " " << second;
        }
    }
}

}  // namespace
