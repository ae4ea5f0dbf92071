#include "workbench/model/settings.h"

#include <gtest/gtest.h>

#include <csignal>
#include <fstream>
#include <iterator>
#include <random>

#if !defined(_WIN32)
#include <sys/resource.h>
#endif

#include "workbench/model/image_memory.h"

using namespace workbench;

namespace {

Settings Example() {
    Settings settings;
    settings.window = {-7, 20, 1300, 800, true};
    settings.peaks_window = {700, 30, 1100, 560, false};
    settings.enlarged_window = {60, -5, 820, 410, false};
    settings.list_window = {-900, 40, 500, 300, false};
    settings.facts_window = {11, 12, 13, 14, false};
    settings.statistics_window = {21, 22, 23, 24, false};
    settings.is_light = true;
    settings.is_overlay_shown = false;
    settings.overlay_opacity = 70;
    settings.views = {View_Arrangement::Four, 2, true};
    settings.is_linear = true;
    settings.are_labels_shared = true;
    settings.is_trace_shown = true;
    settings.is_database_shown = true;
    settings.database_view = 2;
    settings.database_width = 444;
    settings.folded = 0b10010;
    settings.is_wheel_turned = true;
    settings.image_memory = 4096;
    settings.whole_folder = 100;
    settings.archives = {"Radiology|pacs|104|PACS|ME|5|5|30", "B|b|1|B|ME|5|5|30"};
    settings.is_sent_anonymously = true;
    settings.archive_secret = std::string(64, 'a');
    settings.recent = {"C:\\data\\head one.nii.gz", "C:\\data\\K\xC3\xB6pfe\\zwei.nii"};
    return settings;
}

void Expect_Same(const Settings& a, const Settings& b) {
    EXPECT_EQ(Settings_Text(a), Settings_Text(b));
}

/** A folder of the test's own, gone with it. */
class Settings_File : public ::testing::Test {
  protected:
    void SetUp() override {
        folder = std::filesystem::temp_directory_path() / ("settings_test_" + std::to_string(std::random_device{}()));
        file = folder / "deeper" / "settings.txt";
    }
    void TearDown() override {
        std::error_code ignored;
        std::filesystem::remove_all(folder, ignored);
    }
    std::filesystem::path folder;
    std::filesystem::path file;
};

TEST(Settings, text_and_back_changes_nothing) {
    int ignored = -1;
    const Settings back = Settings_Parse(Settings_Text(Example()), &ignored);
    EXPECT_EQ(ignored, 0);
    Expect_Same(back, Example());
    EXPECT_EQ(back.window.left, -7);
    EXPECT_TRUE(back.window.is_maximized);
    EXPECT_EQ(back.peaks_window.height, 560);
    EXPECT_EQ(back.enlarged_window.top, -5);
    EXPECT_EQ(back.list_window.left, -900);
    EXPECT_EQ(back.facts_window.top, 12);
    EXPECT_EQ(back.statistics_window.width, 23);
    EXPECT_TRUE(back.is_light);
    EXPECT_EQ(back.folded, 0b10010U);
    EXPECT_TRUE(back.is_wheel_turned);
    EXPECT_EQ(back.overlay_opacity, 70);
    EXPECT_EQ(back.views, (Views_Shown{View_Arrangement::Four, 2, true}));
    EXPECT_TRUE(back.is_linear);
    EXPECT_TRUE(back.are_labels_shared);
    EXPECT_EQ(back.recent.size(), 2U);
    EXPECT_EQ(back.archives, Example().archives);
    EXPECT_TRUE(back.is_sent_anonymously);
    EXPECT_EQ(back.archive_secret, Example().archive_secret);
}

TEST(Settings, nothing_gives_the_defaults) {
    Expect_Same(Settings_Parse(""), Settings{});
    EXPECT_FALSE(Settings_Parse("").is_light);
    EXPECT_TRUE(Settings_Parse("").is_overlay_shown);
    EXPECT_FALSE(Settings_Parse("").is_wheel_turned);
    EXPECT_EQ(Settings_Parse("").window.width, 0);
    EXPECT_EQ(Settings_Parse("").overlay_opacity, 45);
    EXPECT_EQ(Settings_Parse("").views, Views_Shown());
    EXPECT_FALSE(Settings_Parse("").is_linear);
    EXPECT_FALSE(Settings_Parse("").are_labels_shared);
}

TEST(Settings, three_planes_of_earlier_versions_are_three_views) {
    EXPECT_EQ(Settings_Parse("three_planes 1\n").views.arrangement, View_Arrangement::Three);
    EXPECT_EQ(Settings_Parse("three_planes 0\n").views.arrangement, View_Arrangement::One);
}

TEST(Settings, views_are_known_ones_or_none) {
    for (const char* const text : {"views 2 0", "views 5 0", "views 3", "views 3 3", "views 3 -1", "views 4 x"}) {
        int ignored = 0;
        EXPECT_EQ(Settings_Parse(text, &ignored).views, Views_Shown()) << text;
        EXPECT_EQ(ignored, 1) << text;
    }
    EXPECT_EQ(Settings_Parse("views 1 2\nlinked_views 1\n").views, (Views_Shown{View_Arrangement::One, 2, true}));
}

TEST(Settings, a_damaged_line_costs_only_itself) {
    int ignored = 0;
    const Settings settings = Settings_Parse(
        "workbench settings\ntheme purple\nwindow 1 2 3\nwindow 1 2 300 x\nwindow 1 2 0 5\ndatabase_width 99999999999\n"
        "database_view -1\nfolded_panels 256\nimage_memory -1\nwhole_folder -1\nenlarged_wheel_turned 2\ntag_colours "
        "yes\ntag_opacity "
        "101\nthree_planes "
        "2\nnonsense\nrecent "
        "\n\r\ndatabase 1\r\ntheme light\n",
        &ignored);
    EXPECT_EQ(ignored, 15);
    EXPECT_EQ(settings.image_memory, 0);
    EXPECT_EQ(settings.whole_folder, 256);
    EXPECT_FALSE(settings.is_wheel_turned);
    EXPECT_TRUE(settings.is_database_shown);
    EXPECT_TRUE(settings.is_light);
    EXPECT_EQ(settings.window.width, 0);
    EXPECT_EQ(settings.database_width, 0);
    EXPECT_EQ(settings.folded, 0U);
    EXPECT_TRUE(settings.recent.empty());
}

TEST(Settings, any_bytes_are_survived_and_what_comes_out_is_in_range) {
    std::mt19937 random(20);
    const std::string good = Settings_Text(Example());
    for (int run = 0; run < 3000; ++run) {
        std::string text = good;
        for (int hits = 1 + static_cast<int>(random() % 8); hits > 0 && !text.empty(); --hits) {
            switch (random() % 3) {
                case 0:
                    text[random() % text.size()] = static_cast<char>(random() % 256);
                    break;
                case 1:
                    text.resize(random() % text.size());
                    break;
                default:
                    text.insert(random() % text.size(), 1 + random() % 5, static_cast<char>(random() % 256));
            }
        }
        const Settings settings = Settings_Parse(text);
        EXPECT_GE(settings.database_view, 0);
        EXPECT_LE(settings.database_view, DATABASE_VIEW_MAX);
        EXPECT_LE(settings.folded, FOLDED_MAX);
        EXPECT_LE(settings.recent.size(), RECENT_MAX);
        Expect_Same(Settings_Parse(Settings_Text(settings)), settings);
    }
}

TEST(Settings, images_may_take_a_third_of_the_machine_unless_more_or_less_was_chosen) {
    constexpr std::uint64_t mib = std::uint64_t{1} << 20U;
    EXPECT_EQ(Image_Memory_Of(0, 12000 * mib), 4000 * mib);
    EXPECT_EQ(Image_Memory_Of(100, 12000 * mib), 100 * mib);
    EXPECT_EQ(Image_Memory_Of(IMAGE_MEMORY_MAX, 0), std::uint64_t{IMAGE_MEMORY_MAX} * mib);
    EXPECT_EQ(Image_Memory_Of(0, 0), 2048 * mib) << "the machine does not say";
}

TEST(Settings, recent_files_stand_once_and_the_last_one_first) {
    std::vector<std::string> recent;
    for (int file = 0; file < 12; ++file) {
        Recent_Add(recent, "file " + std::to_string(file));
    }
    EXPECT_EQ(recent.size(), RECENT_MAX);
    EXPECT_EQ(recent.front(), "file 11");
    Recent_Add(recent, "file 8");
    EXPECT_EQ(recent.size(), RECENT_MAX);
    EXPECT_EQ(recent.front(), "file 8");
    EXPECT_EQ(std::count(recent.begin(), recent.end(), "file 8"), 1);
    Recent_Add(recent, "two\nlines");
    Recent_Add(recent, "");
    EXPECT_EQ(recent.front(), "file 8");
}

TEST_F(Settings_File, a_file_is_written_with_its_folder_and_read_back) {
    Expect_Same(Settings_Load(file), Settings{});
    ASSERT_TRUE(Settings_Save(file, Example()));
    Expect_Same(Settings_Load(file), Example());
    ASSERT_TRUE(Settings_Save(file, Settings{}));
    Expect_Same(Settings_Load(file), Settings{});
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(file.parent_path()), {}), 1);
}

#if !defined(_WIN32)
// A limit on the size of files stands in for a full disk.
TEST_F(Settings_File, when_writing_fails_the_file_stays_as_it_was_where_file_sizes_can_be_limited) {
    ASSERT_TRUE(Settings_Save(file, Example()));
    Settings longer = Example();
    longer.recent.emplace_back(600, 'x');
    rlimit former{};
    ASSERT_EQ(::getrlimit(RLIMIT_FSIZE, &former), 0);
    const auto former_handler = std::signal(SIGXFSZ, SIG_IGN);
    const rlimit small{500, former.rlim_max};
    ASSERT_EQ(::setrlimit(RLIMIT_FSIZE, &small), 0);
    const bool is_saved = Settings_Save(file, longer);
    ::setrlimit(RLIMIT_FSIZE, &former);
    std::signal(SIGXFSZ, former_handler);
    EXPECT_FALSE(is_saved);
    Expect_Same(Settings_Load(file), Example());
}
#endif

TEST_F(Settings_File, a_folder_in_the_files_place_and_a_huge_file_give_the_defaults) {
    std::filesystem::create_directories(file);
    Expect_Same(Settings_Load(file), Settings{});
    EXPECT_FALSE(Settings_Save(file / "x" / ".." / ".." / "settings.txt", Example()));
    const std::filesystem::path huge = folder / "huge.txt";
    std::ofstream(huge) << "theme light\n" << std::string(2U << 20U, ' ');
    Expect_Same(Settings_Load(huge), Settings{});
}

TEST(Settings, a_window_comes_back_onto_the_screen) {
    const Window_Place screen = {0, 0, 1280, 720, false};
    const Window_Place lost = Place_Inside({3000, -500, 800, 600, true}, screen);
    EXPECT_EQ(lost.left, 480);
    EXPECT_EQ(lost.top, 0);
    EXPECT_EQ(lost.width, 800);
    EXPECT_TRUE(lost.is_maximized);
    const Window_Place large = Place_Inside({10, 10, 4000, 3000, false}, screen);
    EXPECT_EQ(large.left, 0);
    EXPECT_EQ(large.width, 1280);
    EXPECT_EQ(large.height, 720);
}

}  // namespace
