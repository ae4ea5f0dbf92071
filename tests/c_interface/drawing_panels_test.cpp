// The histogram and database panels through the C interface.
#include <cstdio>
#include <fstream>
#include <numeric>

#include "tests/c_interface/interface_stage.h"

namespace {

class Drawing_Panels_Through_C : public Interface_Stage {};

TEST_F(Drawing_Panels_Through_C, selected_slices_are_counted_and_fitted) {
    const kit_handle panel = Panel(KIT_PANEL_HISTOGRAM);
    EXPECT_EQ(kit_histogram_fit(panel, KIT_FIT_GAUSSIAN, 0), KIT_ERROR_STATE);
    const kit_handle volume = Volume();
    ASSERT_EQ(kit_volume_show(volume, 0), KIT_OK);
    ASSERT_EQ(kit_volume_select(volume, -1, 1), KIT_OK);
    kit_histogram histogram = {};
    histogram.size = sizeof histogram;
    std::uint32_t bins = 0;
    ASSERT_EQ(kit_histogram_read(panel, &histogram, nullptr, 0, &bins), KIT_OK) << Error(panel);
    std::vector<std::uint32_t> counts(bins);
    ASSERT_EQ(kit_histogram_read(panel, nullptr, counts.data(), bins, nullptr), KIT_OK);
    std::vector<std::uint32_t> expected(256);
    for (const std::uint8_t pixel : pixels) {
        ++expected[pixel];
    }
    for (std::uint32_t bin = 0; bin < bins; ++bin) {
        const float level = histogram.origin + (static_cast<float>(bin) + 0.5F) * histogram.bin_width;
        EXPECT_EQ(counts[bin], expected[static_cast<std::size_t>(level)]) << level;
    }
    ASSERT_EQ(kit_histogram_fit(panel, KIT_FIT_GAUSSIAN, 0), KIT_OK);
    std::uint32_t nb = 0;
    ASSERT_EQ(kit_histogram_peaks(panel, nullptr, 0, &nb), KIT_OK);
    ASSERT_GE(nb, 2U);
    std::vector<kit_peak> peaks(nb);
    peaks[0].size = sizeof(kit_peak);
    ASSERT_EQ(kit_histogram_peaks(panel, peaks.data(), nb, nullptr), KIT_OK);
    EXPECT_NEAR(peaks.front().centre, 60.0, 4.0);
    EXPECT_NEAR(peaks.back().centre, 180.0, 4.0);
    EXPECT_EQ(peaks.back().size, sizeof(kit_peak));
    EXPECT_EQ(kit_histogram_peaks(panel, peaks.data(), nb - 1, nullptr), KIT_ERROR_ROOM);
}

TEST_F(Drawing_Panels_Through_C, a_masked_slice_is_counted_by_the_panel_where_its_mask_is) {
    const kit_handle panel = Panel(KIT_PANEL_HISTOGRAM);
    const kit_handle volume = Volume();
    kit_volume_show(volume, 0);
    kit_volume_select(volume, 0, 1);
    const auto counted = [&] {
        std::uint32_t bins = 0;
        EXPECT_EQ(kit_histogram_read(panel, nullptr, nullptr, 0, &bins), KIT_OK) << Error(panel);
        std::vector<std::uint32_t> counts(bins);
        EXPECT_EQ(kit_histogram_read(panel, nullptr, counts.data(), bins, nullptr), KIT_OK);
        return std::accumulate(counts.begin(), counts.end(), 0U);
    };
    EXPECT_EQ(counted(), 64U * 64U);
    std::vector<std::uint8_t> mask(std::size_t{64} * 64);
    std::fill_n(mask.begin(), 100, std::uint8_t{1});
    ASSERT_EQ(kit_volume_mask_set(volume, 0, mask.data(), 0), KIT_OK);
    EXPECT_EQ(counted(), 100U);
}

TEST_F(Drawing_Panels_Through_C, an_export_is_written_where_the_host_says) {
    const kit_handle panel = Panel(KIT_PANEL_HISTOGRAM);
    const kit_handle volume = Volume();
    kit_volume_show(volume, 1);
    kit_volume_select(volume, 1, 1);
    const char path[] = "c_interface_export.csv";
    ASSERT_EQ(kit_histogram_export(panel, path), KIT_OK) << Error(panel);
    std::ifstream file(path);
    std::string line;
    EXPECT_TRUE(std::getline(file, line));
    file.close();
    std::remove(path);
    EXPECT_EQ(kit_histogram_export(panel, "no/such/folder/x.csv"), KIT_ERROR_SYSTEM);
}

TEST_F(Drawing_Panels_Through_C, classes_move_and_lose_their_parents_in_order) {
    Panel(KIT_PANEL_CLASSES, 3);
    kit_handle organ = 0;
    kit_handle first = 0;
    kit_handle second = 0;
    ASSERT_EQ(kit_class_create(3, "Organ", "Brain", nullptr, 0, &organ), KIT_OK);
    ASSERT_EQ(kit_class_create(3, "Part", "Left", nullptr, organ, &first), KIT_OK);
    ASSERT_EQ(kit_class_create(3, "Part", "Right", nullptr, organ, &second), KIT_OK);
    ASSERT_EQ(kit_class_move(first, organ, 1), KIT_OK);
    kit_handle parent = 0;
    std::int32_t position = 0;
    ASSERT_EQ(kit_class_place(first, &parent, &position), KIT_OK);
    EXPECT_EQ(parent, organ);
    EXPECT_EQ(position, 1);
    EXPECT_EQ(kit_class_move(organ, second, 0), KIT_ERROR_ARGUMENT);
    ASSERT_EQ(kit_class_destroy(organ), KIT_OK);
    ASSERT_EQ(kit_class_place(first, &parent, &position), KIT_OK);
    EXPECT_EQ(parent, 0U);
    EXPECT_EQ(position, 1);
    char name[20] = "";
    EXPECT_EQ(kit_class_name(second, name, sizeof name, nullptr), KIT_OK);
    EXPECT_STREQ(name, "Right");
}

TEST_F(Drawing_Panels_Through_C, the_file_view_selects_slices) {
    const kit_handle volume = Volume();
    kit_handle file = 0;
    ASSERT_EQ(kit_volume_show(volume, 0), KIT_OK);
    ASSERT_EQ(kit_file_create("data/head.nii", volume, &file), KIT_OK);
    kit_panel_settings settings = Panel_Settings(KIT_PANEL_FILES);
    settings.axis_up = 1;
    kit_handle panel = 0;
    ASSERT_EQ(kit_panel_create(&settings, &panel), KIT_OK);
    // "Select All" stands in the lower left corner.
    std::int32_t used = 0;
    bool is_selected = false;
    for (int y = 190; y > 0 && !is_selected; y -= 8) {
        ASSERT_EQ(Input(panel, KIT_INPUT_PRESS, 60, y, KIT_BUTTON_LEFT, 0, &used), KIT_OK);
        Input(panel, KIT_INPUT_RELEASE, 60, y);
        std::int32_t selected = 0;
        kit_volume_selected(volume, 2, &selected);
        is_selected = selected == 1;
    }
    EXPECT_TRUE(is_selected);
    EXPECT_GT(Heard_Nb(KIT_EVENT_UPDATE), 0);
    ASSERT_EQ(kit_volume_destroy(volume), KIT_OK);
    EXPECT_EQ(kit_panel_draw(panel), KIT_OK);
    EXPECT_EQ(kit_file_destroy(file), KIT_OK);
}

TEST_F(Drawing_Panels_Through_C, everything_that_panels_read_is_there_from_the_start) {
    for (std::uint32_t kind = KIT_PANEL_TAG; kind <= KIT_PANEL_FILES; ++kind) {
        const kit_handle panel = Panel(kind, kind == KIT_PANEL_CLASSES ? 2 : 0);
        EXPECT_EQ(kit_panel_draw(panel), KIT_OK);
        EXPECT_EQ(kit_panel_update(panel, ~std::uint64_t{0}), KIT_OK);
        std::int32_t height = 0;
        EXPECT_EQ(kit_panel_height(panel, 2, &height), KIT_OK);
        EXPECT_GT(height, 0);
    }
    std::uint32_t count = 9;
    ASSERT_EQ(kit_contract_check(&count), KIT_OK);
    char text[200] = "";
    kit_contract_text(0, text, sizeof text, nullptr);
    EXPECT_EQ(count, 0U) << text;
}

#if defined(_WIN32)  // elsewhere there is no file of the module that could be named
TEST_F(Drawing_Panels_Through_C, the_module_says_its_version) {
    char line[200] = "";
    ASSERT_EQ(kit_module_version(line, sizeof line, nullptr), KIT_OK);
    EXPECT_NE(std::string(line).find("Kit_Panels.dll"), std::string::npos) << line;
}
#endif

}  // namespace
