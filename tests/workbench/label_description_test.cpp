#include "workbench/model/label_description.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <random>
#include <string>

#include "workbench/model/label_map.h"
#include "workbench/model/line_reader.h"
#include "workbench/model/marker_table.h"

using namespace workbench;

namespace {

constexpr Label_Extent EXTENT = {100, 200, 300};

Label_Description Example() {
    Label_Description description;
    description.tags = {{0, 0xAAAAAA, true, true, false, {}, {}, "Background"},
                        {2, 0xF0CE60, true, true, false, 95.0F, {}, "White \"matter\""},
                        {17, 0x4C37B1, false, true, true, -12.5F, 0.1F, {}}};
    description.markers = {{2, 0xFF4B4B, Label_Voxel{90, 60, 108}, "Genu"}, {3, 0x3CC8FF, {}, "M4"}};
    return description;
}

Label_Description_Reading Read(const std::string& text) {
    return Label_Description_Parse(text, EXTENT);
}

Label_Description_Reading Read_Lines(const std::string& lines) {
    return Read("label description 1\n" + lines);
}

TEST(Label_Description, the_text_is_as_documented) {
    EXPECT_EQ(Label_Description_Text(Example()),
              "label description 1\n"
              "# tag NUMBER COLOUR SHOWN SELECTED LOCKED LOWER UPPER NAME\n"
              "tag 0 #AAAAAA 1 1 0 - - \"Background\"\n"
              "tag 2 #F0CE60 1 1 0 95 - \"White \\\"matter\\\"\"\n"
              "tag 17 #4C37B1 0 1 1 -12.5 0.1 -\n"
              "# marker NUMBER COLOUR FRAME COLUMN ROW NAME\n"
              "marker 2 #FF4B4B 90 60 108 \"Genu\"\n"
              "marker 3 #3CC8FF - - - \"M4\"\n");
}

TEST(Label_Description, text_and_back_changes_nothing) {
    const Label_Description_Reading reading = Read(Label_Description_Text(Example()));
    EXPECT_EQ(reading.refused, "");
    EXPECT_EQ(reading.left_out, 0) << reading.first_left_out;
    EXPECT_EQ(reading.description, Example());
}

// Names of all kinds of characters, every finite threshold.
class Random_Description {
  public:
    explicit Random_Description(unsigned int seed) : random(seed) {}

    Label_Description Make() {
        Label_Description description;
        for (const int number : Numbers(TAG_MAX)) {
            description.tags.push_back({number, Color(), Coin(), Coin(), Coin(), Limit(), Limit(), Name()});
        }
        for (const int number : Numbers(MARKER_NB)) {
            Marker_Description marker = {number, Color(), {}, Name()};
            if (Coin()) {
                marker.place = Label_Voxel{Below(EXTENT.frames), Below(EXTENT.columns), Below(EXTENT.rows)};
            }
            description.markers.push_back(marker);
        }
        return description;
    }

  private:
    int Below(int limit) { return static_cast<int>(random() % static_cast<unsigned int>(limit)); }
    bool Coin() { return Below(2) != 0; }
    std::uint32_t Color() { return static_cast<std::uint32_t>(Below(0x1000000)); }
    std::vector<int> Numbers(int count) {
        std::vector<int> numbers(static_cast<std::size_t>(count));
        std::iota(numbers.begin(), numbers.end(), 0);
        std::shuffle(numbers.begin(), numbers.end(), random);
        numbers.resize(static_cast<std::size_t>(Below(count + 1)));
        return numbers;
    }
    std::optional<float> Limit() {
        switch (Below(3)) {
            case 0:
                return std::nullopt;
            case 1:
                return static_cast<float>(Below(20000) - 10000) / 8.0F;
            default:
                return std::ldexp(static_cast<float>(random()) * (Coin() ? 1.0F : -1.0F), Below(200) - 140);
        }
    }
    std::optional<std::string> Name() {
        static const char* const pieces[] = {"\"",
                                             "\\",
                                             " ",
                                             "\t",
                                             "\n",
                                             "\r",
                                             "#",
                                             "-",
                                             "tag",
                                             "x",
                                             "\\x41",
                                             "\x7F",
                                             "\x01",
                                             "\xC3\xA4",
                                             "\xE8\x82\x9D",
                                             "\xF0\x9F\xA7\xA0"};
        if (Below(5) == 0) {
            return std::nullopt;
        }
        std::string name;
        for (int left = Below(12); left > 0; --left) {
            name += pieces[Below(static_cast<int>(std::size(pieces)))];
        }
        return name;
    }
    std::mt19937 random;
};

TEST(Label_Description, random_tables_come_back_the_same) {
    Random_Description random(11);
    for (int run = 0; run < 500; ++run) {
        const Label_Description description = random.Make();
        const std::string text = Label_Description_Text(description);
        const Label_Description_Reading reading = Read(text);
        ASSERT_EQ(reading.left_out, 0) << reading.first_left_out << "\n" << text;
        ASSERT_EQ(reading.description, description) << text;
        ASSERT_EQ(Label_Description_Text(reading.description), text);
    }
}

void Damage(std::string& text, std::mt19937& random) {
    for (unsigned int hits = 1 + random() % 8; hits > 0 && !text.empty(); --hits) {
        const std::size_t at = random() % text.size();
        switch (random() % 5) {
            case 0:
                text[at] = static_cast<char>(random() % 256);
                break;
            case 1:
                text.resize(at);
                break;
            case 2:
                text.insert(at, 1 + random() % 5, static_cast<char>(random() % 256));
                break;
            case 3:
                text.erase(at, 1 + random() % 30);
                break;
            default:
                text.insert(at, text.substr(random() % text.size(), random() % 60));
        }
    }
}

void Expect_In_Range(const Label_Description& description) {
    for (const Tag_Description& tag : description.tags) {
        EXPECT_GE(tag.number, 0);
        EXPECT_LT(tag.number, TAG_MAX);
        EXPECT_LE(tag.color, 0xFFFFFFU);
        EXPECT_TRUE(std::isfinite(tag.low.value_or(0.0F)) && std::isfinite(tag.high.value_or(0.0F)));
        EXPECT_TRUE(Is_Utf8(tag.name.value_or("")));
        EXPECT_EQ(tag.name.value_or("").find('\0'), std::string::npos);
        EXPECT_EQ(std::ranges::count(description.tags, tag.number, &Tag_Description::number), 1);
    }
    for (const Marker_Description& marker : description.markers) {
        EXPECT_GE(marker.number, 0);
        EXPECT_LT(marker.number, MARKER_NB);
        const Label_Voxel place = marker.place.value_or(Label_Voxel{});
        EXPECT_TRUE(place.frame >= 0 && place.frame < EXTENT.frames);
        EXPECT_TRUE(place.column >= 0 && place.column < EXTENT.columns);
        EXPECT_TRUE(place.row >= 0 && place.row < EXTENT.rows);
        EXPECT_EQ(std::ranges::count(description.markers, marker.number, &Marker_Description::number), 1);
    }
}

TEST(Label_Description, ten_thousand_random_damages_are_survived_and_what_comes_out_is_in_range) {
    Random_Description tables(12);
    std::mt19937 random(13);
    std::string good = Label_Description_Text(Example());
    int refused = 0;
    int partly = 0;
    for (int run = 0; run < 10000; ++run) {
        if (run % 100 == 99) {
            good = Label_Description_Text(tables.Make());
        }
        std::string text = good;
        Damage(text, random);
        const Label_Description_Reading reading = Read(text);
        Expect_In_Range(reading.description);
        EXPECT_EQ(reading.left_out == 0, reading.first_left_out.empty());
        refused += reading.refused.empty() ? 0 : 1;
        partly += reading.left_out > 0 && !reading.description.tags.empty() ? 1 : 0;
        const Label_Description_Reading again = Read(Label_Description_Text(reading.description));
        EXPECT_EQ(again.left_out, 0) << again.first_left_out;
        EXPECT_EQ(again.description, reading.description);
    }
    EXPECT_GT(refused, 100);
    EXPECT_GT(partly, 3000);
}

TEST(Label_Description, a_damaged_line_costs_only_itself) {
    const Label_Description_Reading reading = Read_Lines(
        "tag 1 #010203 1 1 0 - - \"one\"\n"
        "tag 2 #010203 1 1 0 - - \"two\n"
        "\n"
        "   \n"
        "color 3\n"
        "marker 1 #010203 99 199 299 -\r\n"
        "tag 4 #010203 1 1 0 - - \"four\"");
    EXPECT_EQ(reading.left_out, 2);
    EXPECT_EQ(reading.first_left_out, "line 3: a text is not closed");
    ASSERT_EQ(reading.description.tags.size(), 2U);
    EXPECT_EQ(reading.description.tags[1].name, "four");
    ASSERT_EQ(reading.description.markers.size(), 1U);
    EXPECT_EQ(reading.description.markers[0].place, (Label_Voxel{99, 199, 299}));
}

TEST(Label_Description, every_part_of_a_line_is_checked) {
    struct Case {
        const char* line;
        const char* error;
    };
    for (const auto& [line, error] : {
             Case{"tag 256 #010203 1 1 0 - - \"x\"", "a number is expected"},
             Case{"tag -1 #010203 1 1 0 - - \"x\"", "a number is expected"},
             Case{"tag 1 010203 1 1 0 - - \"x\"", "a colour like #F0CE60 is expected"},
             Case{"tag 1 #01020 1 1 0 - - \"x\"", "a colour like #F0CE60 is expected"},
             Case{"tag 1 #0102G3 1 1 0 - - \"x\"", "a colour like #F0CE60 is expected"},
             Case{"tag 1 #010203 2 1 0 - - \"x\"", "a number is expected"},
             Case{"tag 1 #010203 1 1 yes - - \"x\"", "a number is expected"},
             Case{"tag 1 #010203 1 1 0 nan - \"x\"", "a number is expected"},
             Case{"tag 1 #010203 1 1 0 - 1e40 \"x\"", "a number is expected"},
             Case{"tag 1 #010203 1 1 0 - - x", "a text between quotation marks is expected"},
             Case{"tag 1 #010203 1 1 0 - -", "a text between quotation marks is expected"},
             Case{"tag 1 #010203 1 1 0 - - \"x\" y", "there is more than expected"},
             Case{"tag 1 #010203 1 1 0 - - \"\xE4\"", "a name is no UTF-8"},
             Case{"tag 1 #010203 1 1 0 - - \"\\xE4\"", "a name is no UTF-8"},
             Case{"tag 1 #010203 1 1 0 - - \"\\x00\"", "a name is no UTF-8"},
             Case{"marker 8 #010203 - - - \"x\"", "a number is expected"},
             Case{"marker 1 #010203 100 0 0 \"x\"", "the marker lies outside the labels"},
             Case{"marker 1 #010203 0 200 0 \"x\"", "the marker lies outside the labels"},
             Case{"marker 1 #010203 0 0 300 \"x\"", "the marker lies outside the labels"},
             Case{"marker 1 #010203 0 0 -1 \"x\"", "a number is expected"},
             Case{"marker 1 #010203 - 0 0 \"x\"", "\"-\" is expected"},
             Case{"tags 1", "\"tag\" or \"marker\" is expected"},
         }) {
        const Label_Description_Reading reading = Read_Lines(line);
        EXPECT_EQ(reading.left_out, 1) << line;
        EXPECT_EQ(reading.first_left_out, std::string("line 2: ") + error) << line;
        EXPECT_EQ(reading.description, Label_Description{}) << line;
    }
}

TEST(Label_Description, a_name_has_a_greatest_length) {
    const auto line = [](std::size_t length) {
        return "tag 1 #010203 1 1 0 - - \"" + std::string(length, 'x') + "\"\n";
    };
    EXPECT_EQ(Read_Lines(line(LABEL_NAME_MAX)).left_out, 0);
    EXPECT_EQ(Read_Lines(line(LABEL_NAME_MAX + 1)).first_left_out, "line 2: a name is too long");
}

TEST(Label_Description, of_two_lines_about_one_number_the_first_counts) {
    const Label_Description_Reading reading = Read_Lines(
        "tag 1 #010203 1 1 0 - - \"first\"\ntag 1 #010203 1 1 0 - - \"second\"\n"
        "marker 1 #010203 - - - \"first\"\nmarker 1 #010203 - - - \"second\"\n");
    EXPECT_EQ(reading.left_out, 2);
    EXPECT_EQ(reading.first_left_out, "line 3: its number stands twice");
    EXPECT_EQ(reading.description.tags.at(0).name, "first");
    EXPECT_EQ(reading.description.markers.at(0).name, "first");
}

TEST(Label_Description, a_later_version_is_refused_as_a_whole) {
    const Label_Description_Reading reading = Read("label description 2 with more\ntag 1 #010203 1 1 0 - - \"x\"\n");
    EXPECT_EQ(reading.refused, "was written by a later version of this program");
    EXPECT_TRUE(reading.is_newer);
    EXPECT_EQ(reading.left_out, 0);
    EXPECT_EQ(reading.description, Label_Description{});
}

TEST(Label_Description, what_is_no_description_is_refused_as_a_whole) {
    for (const char* text : {"", "\n", "label descriptions 1\n", "label description\n", "label description 0\n",
                             "label description x\n", "label description 1 2\n", "label description -1\n", "tag 1"}) {
        const Label_Description_Reading reading = Read(text);
        EXPECT_EQ(reading.refused, "is no description of labels") << text;
        EXPECT_FALSE(reading.is_newer) << text;
    }
}

TEST(Label_Description, what_editors_do_to_texts_is_borne) {
    std::string text = Label_Description_Text(Example());
    for (std::size_t at = text.find('\n'); at != std::string::npos; at = text.find('\n', at + 2)) {
        text.insert(at, 1, '\r');
    }
    const Label_Description_Reading reading = Read("\xEF\xBB\xBF" + text + "\n  # a remark\n");
    EXPECT_EQ(reading.refused, "");
    EXPECT_EQ(reading.first_left_out, "line 10: \"tag\" or \"marker\" is expected") << "only a first # is a remark";
    EXPECT_EQ(reading.description, Example());
}

}  // namespace
