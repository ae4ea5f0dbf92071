// What a host does with the panels through the C interface.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "kits/dataset/dataset_host.h"
#include "tests/c_interface/interface_stage.h"

namespace {

class Panels_Through_C : public Interface_Stage {};

TEST_F(Panels_Through_C, a_click_picks_the_tag_under_it_and_the_host_hears_of_it) {
    const kit_handle panel = Panel(KIT_PANEL_TAG);
    ASSERT_EQ(Input(panel, KIT_INPUT_PRESS, 250, 45, KIT_BUTTON_LEFT), KIT_OK);
    std::uint32_t picked = 0;
    ASSERT_EQ(kit_tag_picked(&picked), KIT_OK);
    ASSERT_NE(Last(KIT_EVENT_PICKED), nullptr);
    EXPECT_EQ(Last(KIT_EVENT_PICKED)->panel, panel);
    EXPECT_EQ(Last(KIT_EVENT_PICKED)->index, static_cast<std::int32_t>(picked));
    EXPECT_EQ(picked, 2U);
    double current = 0;
    EXPECT_EQ(kit_variable_number("$TAG_CUR", &current), KIT_OK);
    EXPECT_EQ(current, 2.0);
}

TEST_F(Panels_Through_C, a_label_renamed_in_the_panel_reaches_the_host) {
    const kit_handle panel = Panel(KIT_PANEL_TAG);
    ASSERT_EQ(Input(panel, KIT_INPUT_PRESS, 250, 45, KIT_BUTTON_RIGHT), KIT_OK);
    Type(panel, "Bone\r");
    char text[40] = "";
    std::uint32_t needed = 0;
    ASSERT_EQ(kit_tag_text(2, text, sizeof text, &needed), KIT_OK);
    EXPECT_STREQ(text, "Bone");
    EXPECT_EQ(needed, 5U);
    ASSERT_NE(Last(KIT_EVENT_UPDATE), nullptr);
    EXPECT_NE(Last(KIT_EVENT_UPDATE)->flags & KIT_UPDATE_TAG_LABEL, 0U);
}

TEST_F(Panels_Through_C, tables_of_tags_come_back_as_they_were_given) {
    std::vector<kit_label> labels(12);
    for (std::size_t at = 0; at < labels.size(); ++at) {
        labels[at] = {sizeof(kit_label),
                      KIT_LABEL_ENABLED | (at == 3 ? KIT_LABEL_LOCKED : 0U),
                      "Liver",
                      -5.5F,
                      70.25F,
                      static_cast<std::uint8_t>(at * 20),
                      33,
                      44,
                      0};
    }
    Panel(KIT_PANEL_TAG);
    ASSERT_EQ(kit_tags_set(labels.data(), 12), KIT_OK);
    std::uint32_t count = 0;
    EXPECT_EQ(kit_tags_count(&count), KIT_OK);
    EXPECT_EQ(count, 12U);
    kit_label read = {};
    read.size = sizeof read;
    ASSERT_EQ(kit_tag_get(3, &read), KIT_OK);
    EXPECT_EQ(read.flags, KIT_LABEL_ENABLED | KIT_LABEL_LOCKED);
    EXPECT_EQ(read.red, 60);
    EXPECT_EQ(read.blue, 44);
    EXPECT_EQ(read.threshold_min, -5.5F);
    EXPECT_EQ(read.threshold_max, 70.25F);
    EXPECT_EQ(read.text, nullptr);
}

TEST_F(Panels_Through_C, a_table_with_one_wrong_label_changes_nothing) {
    std::vector<kit_label> labels(4, kit_label{sizeof(kit_label), 0, "x", 0, 0, 1, 1, 1, 0});
    labels[3].text = "\xFF";
    EXPECT_EQ(kit_tags_set(labels.data(), 4), KIT_ERROR_TEXT);
    std::uint32_t count = 0;
    kit_tags_count(&count);
    EXPECT_EQ(count, 8U);
    char text[40] = "?";
    EXPECT_EQ(kit_tag_text(0, text, sizeof text, nullptr), KIT_OK);
    EXPECT_STREQ(text, "");
}

TEST_F(Panels_Through_C, brushes_have_masks_as_large_as_the_largest) {
    const kit_handle panel = Panel(KIT_PANEL_BRUSH);
    const std::uint16_t sizes[] = {1, 4, 9};
    ASSERT_EQ(kit_brushes_set(sizes, 3), KIT_OK);
    std::uint32_t side = 0;
    std::uint32_t needed = 0;
    ASSERT_EQ(kit_brush_mask(1, nullptr, 0, &needed, &side), KIT_OK);
    EXPECT_EQ(side, 19U);
    std::vector<std::uint8_t> mask(needed);
    ASSERT_EQ(kit_brush_mask(1, mask.data(), needed, nullptr, nullptr), KIT_OK);
    int covered = 0;
    for (int y = -9; y <= 9; ++y) {
        for (int x = -9; x <= 9; ++x) {
            const bool is_covered = mask[static_cast<std::size_t>((y + 9) * 19 + x + 9)] != 0;
            EXPECT_EQ(is_covered, x * x + y * y < 16) << x << ' ' << y;
            covered += is_covered ? 1 : 0;
        }
    }
    EXPECT_GT(covered, 30);
    EXPECT_EQ(kit_panel_destroy(panel), KIT_OK);
}

TEST_F(Panels_Through_C, pixels_by_row_with_strides_are_the_same_as_by_call_back) {
    // Two slices of 3 x 2, rows bottom up, a byte of room between pixels' rows.
    const std::uint8_t stored[] = {4, 5, 6, 0, 1, 2, 3, 0, 14, 15, 16, 0, 11, 12, 13, 0};
    kit_volume_settings settings = {};
    settings.size = sizeof settings;
    settings.pixel = KIT_PIXEL_UNSIGNED_8;
    settings.width = 3;
    settings.height = 2;
    settings.slices = 2;
    settings.pixels = stored + 4;
    settings.row_stride = -4;
    settings.slice_stride = 8;
    kit_handle by_stride = 0;
    ASSERT_EQ(kit_volume_create(&settings, &by_stride), KIT_OK);
    settings.pixels = nullptr;
    settings.on_row = [](void* /*context*/, std::int32_t slice, std::int32_t row, void* out) {
        for (int x = 0; x < 3; ++x) {
            static_cast<std::uint8_t*>(out)[x] = static_cast<std::uint8_t>(slice * 10 + row * 3 + x + 1);
        }
        return std::int32_t{1};
    };
    kit_handle by_row = 0;
    ASSERT_EQ(kit_volume_create(&settings, &by_row), KIT_OK);
    for (const kit_handle volume : {by_stride, by_row}) {
        const auto counts = Counts_By_Level(volume, 1);
        for (std::size_t level = 0; level < counts.size(); ++level) {
            EXPECT_EQ(counts[level], level >= 11 && level <= 16 ? 1U : 0U) << level;
        }
    }
    settings.on_row = [](void*, std::int32_t, std::int32_t, void*) { return std::int32_t{0}; };
    EXPECT_EQ(kit_volume_create(&settings, &by_row), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(by_row, 0U);
}

TEST_F(Panels_Through_C, brushes_have_masks_without_a_panel_too) {
    const std::uint16_t sizes[] = {1, 5};
    ASSERT_EQ(kit_brushes_set(sizes, 2), KIT_OK);
    std::uint32_t count = 0;
    EXPECT_EQ(kit_brushes_count(&count), KIT_OK);
    EXPECT_EQ(count, 2U);
    std::uint16_t size = 0;
    EXPECT_EQ(kit_brush_size(1, &size), KIT_OK);
    EXPECT_EQ(size, 5U);
    EXPECT_EQ(kit_brush_size(2, &size), KIT_ERROR_ARGUMENT);
    std::vector<std::uint8_t> mask(121);
    ASSERT_EQ(kit_brush_mask(0, mask.data(), 121, nullptr, nullptr), KIT_OK);
    EXPECT_EQ(std::ranges::count(mask, 1), 1);
    EXPECT_EQ(mask[60], 1);
}

TEST_F(Panels_Through_C, a_mask_is_what_a_brush_panel_lays_out) {
    Panel(KIT_PANEL_BRUSH);
    for (const int largest : {1, 2, 9, 40, 181}) {
        const std::uint16_t sizes[] = {static_cast<std::uint16_t>(largest), 2, 1};
        ASSERT_EQ(kit_brushes_set(sizes, 3), KIT_OK);
        auto* const* const masks =
            static_cast<unsigned char***>(Variable_Array("$BRUSH_PT", VARIABLE_POINTER, nullptr));
        for (std::uint32_t brush = 0; brush < 3; ++brush) {
            std::uint32_t side = 0;
            std::uint32_t needed = 0;
            ASSERT_EQ(kit_brush_mask(brush, nullptr, 0, &needed, &side), KIT_OK);
            std::vector<std::uint8_t> mask(needed);
            ASSERT_EQ(kit_brush_mask(brush, mask.data(), needed, nullptr, nullptr), KIT_OK);
            for (std::uint32_t row = 0; row < side; ++row) {
                EXPECT_TRUE(std::equal(masks[brush][row], masks[brush][row] + side, mask.data() + row * side))
                    << "brush " << brush << " of " << largest << ", row " << row;
            }
        }
    }
}

/** Two slices of 2 x 1 at three times: the level says slice, time and pixel. */
class Times_Through_C : public Interface_Stage {
  protected:
    static kit_volume_settings Settings() {
        kit_volume_settings settings = {};
        settings.size = sizeof settings;
        settings.pixel = KIT_PIXEL_UNSIGNED_8;
        settings.width = 2;
        settings.height = 1;
        settings.slices = 2;
        settings.times = 3;
        return settings;
    }
    static kit_handle Made(const kit_volume_settings& settings) {
        kit_handle volume = 0;
        EXPECT_EQ(kit_volume_create(&settings, &volume), KIT_OK) << Error();
        return volume;
    }
    /** The levels that a slice counts. */
    static std::vector<int> Levels(kit_handle volume, int slice) {
        std::vector<int> levels;
        const auto counts = Counts_By_Level(volume, slice);
        for (std::size_t level = 0; level < counts.size(); ++level) {
            levels.insert(levels.end(), counts[level], static_cast<int>(level));
        }
        return levels;
    }
    static kit_handle By_Address() {
        // One time after the other, two bytes between them.
        static constexpr std::uint8_t stored[] = {10, 11, 110, 111, 0, 0, 20, 21, 120, 121, 0, 0, 30, 31, 130, 131};
        kit_volume_settings settings = Settings();
        settings.pixels = stored;
        settings.time_stride = 6;
        return Made(settings);
    }
};

TEST_F(Times_Through_C, a_slice_counts_all_its_times) {
    kit_volume_settings settings = Settings();
    settings.on_row = [](void* /*context*/, std::int32_t slice, std::int32_t /*row*/, void* out) {
        const int level = slice % 2 * 100 + (slice / 2 + 1) * 10;
        static_cast<std::uint8_t*>(out)[0] = static_cast<std::uint8_t>(level);
        static_cast<std::uint8_t*>(out)[1] = static_cast<std::uint8_t>(level + 1);
        return std::int32_t{1};
    };
    for (const kit_handle volume : {By_Address(), Made(settings)}) {
        EXPECT_EQ(Levels(volume, 0), (std::vector<int>{10, 11, 20, 21, 30, 31}));
        EXPECT_EQ(Levels(volume, 1), (std::vector<int>{110, 111, 120, 121, 130, 131}));
        std::int32_t number = 0;
        EXPECT_EQ(kit_volume_times(volume, &number), KIT_OK);
        EXPECT_EQ(number, 3);
        EXPECT_EQ(kit_volume_slices(volume, &number), KIT_OK);
        EXPECT_EQ(number, 2);
    }
}

TEST_F(Times_Through_C, panels_read_at_the_time_that_is_shown) {
    const kit_handle volume = By_Address();
    ASSERT_EQ(kit_volume_time_show(volume, 2), KIT_OK);
    std::int32_t time = 0;
    EXPECT_EQ(kit_volume_time_shown(volume, &time), KIT_OK);
    EXPECT_EQ(time, 2);
    EXPECT_EQ(kit_volume_time_show(volume, 3), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(kit_volume_time_show(volume, -1), KIT_ERROR_ARGUMENT);
    const unsigned short pass = Iterator_Init("test", nullptr);
    std::vector<int> levels;
    const float second_pixel[] = {1, 0};
    while (const Quorel_2D* const slice = Iterator_Class_2D(pass, CLASS_MASK_2D, All_Windows(), 0)) {
        levels.push_back(slice->frame->Sample(second_pixel, slice->slice));
        EXPECT_EQ(slice->frame->times, 3);
    }
    Iterator_End(pass);
    EXPECT_EQ(levels, (std::vector<int>{31, 131}));
}

TEST_F(Times_Through_C, a_masked_slice_counts_its_pixels_at_the_shown_time) {
    const kit_handle volume = By_Address();
    const std::uint8_t second[] = {0, 7};
    ASSERT_EQ(kit_volume_time_show(volume, 1), KIT_OK);
    ASSERT_EQ(kit_volume_mask_set(volume, 1, second, 0), KIT_OK);
    EXPECT_EQ(Levels(volume, 1), std::vector<int>{121});
    EXPECT_EQ(Levels(volume, 0), (std::vector<int>{10, 11, 20, 21, 30, 31}));
    ASSERT_EQ(kit_volume_time_show(volume, 2), KIT_OK);
    EXPECT_EQ(Levels(volume, 1), std::vector<int>{131});
    ASSERT_EQ(kit_volume_mask_set(volume, -1, second, 0), KIT_OK);
    EXPECT_EQ(Levels(volume, 0), std::vector<int>{31});
    ASSERT_EQ(kit_volume_mask_set(volume, -1, nullptr, 0), KIT_OK);
    EXPECT_EQ(Levels(volume, 0), (std::vector<int>{10, 11, 20, 21, 30, 31}));
    EXPECT_EQ(kit_volume_mask_set(volume, 2, second, 0), KIT_ERROR_ARGUMENT);
}

TEST_F(Times_Through_C, rows_of_a_mask_have_a_stride) {
    const std::uint8_t levels[] = {1, 2, 3, 4};
    kit_volume_settings settings = Settings();
    settings.height = 2;
    settings.slices = 1;
    settings.times = 0;  // counts as one
    settings.pixels = levels;
    const kit_handle volume = Made(settings);
    const std::uint8_t bottom_up[] = {1, 0, 9, 0, 1, 9};
    ASSERT_EQ(kit_volume_mask_set(volume, 0, bottom_up + 3, -3), KIT_OK);
    EXPECT_EQ(Levels(volume, 0), (std::vector<int>{2, 3}));
}

TEST_F(Times_Through_C, a_host_of_the_first_version_knows_no_times) {
    kit_volume_settings settings = Settings();
    settings.size = offsetof(kit_volume_settings, times);  // what follows is not the host's
    settings.times = -7;
    const std::uint8_t levels[] = {1, 2, 3, 4};
    settings.pixels = levels;
    std::int32_t times = 0;
    EXPECT_EQ(kit_volume_times(Made(settings), &times), KIT_OK);
    EXPECT_EQ(times, 1);
    settings.size = offsetof(kit_volume_settings, times) - 1;
    kit_handle volume = 0;
    EXPECT_EQ(kit_volume_create(&settings, &volume), KIT_ERROR_SIZE);
    settings.size = sizeof settings;
    EXPECT_EQ(kit_volume_create(&settings, &volume), KIT_ERROR_ARGUMENT);
    settings.times = 65535;
    settings.slices = 65535;
    EXPECT_EQ(kit_volume_create(&settings, &volume), KIT_ERROR_ARGUMENT);
}

TEST_F(Panels_Through_C, a_variable_tells_what_it_is) {
    std::uint32_t type = 0;
    std::uint32_t count = 9;
    EXPECT_EQ(kit_variable_type("$TAG_CUR", &type, &count), KIT_OK);
    EXPECT_EQ(type, static_cast<std::uint32_t>(KIT_VARIABLE_UNSIGNED_16));
    EXPECT_EQ(count, 0U);
    EXPECT_EQ(kit_variable_type("$TAG_THRESHOLD_MIN", &type, &count), KIT_OK);
    EXPECT_EQ(type, static_cast<std::uint32_t>(KIT_VARIABLE_FLOAT));
    EXPECT_EQ(count, 256U);
    EXPECT_EQ(kit_variable_type("$WINDOW_CUR", &type, nullptr), KIT_OK);
    EXPECT_EQ(type, static_cast<std::uint32_t>(KIT_VARIABLE_OBJECT));
    EXPECT_EQ(kit_variable_type("$NOT_THERE", &type, nullptr), KIT_ERROR_MISSING);
}

TEST_F(Panels_Through_C, the_propagate_panel_asks_the_host_to_carry_work_on) {
    const kit_handle volume = Volume();
    ASSERT_EQ(kit_volume_show(volume, 1), KIT_OK);
    kit_panel_settings settings = Panel_Settings(KIT_PANEL_PROPAGATE);
    settings.axis_up = 1;
    settings.height = 60;
    kit_handle panel = 0;
    ASSERT_EQ(kit_panel_create(&settings, &panel), KIT_OK);
    on_event = [&](const kit_event& event) {
        if (event.kind == KIT_EVENT_PROPAGATE) {
            EXPECT_EQ(kit_stop(), KIT_ERROR_STATE);
            EXPECT_EQ(kit_panel_destroy(panel), KIT_OK);
            EXPECT_EQ(kit_panel_draw(panel), KIT_ERROR_HANDLE);
        }
        return 1;
    };
    for (int x = 390; x > 0 && Heard_Nb(KIT_EVENT_PROPAGATE) == 0; x -= 12) {
        for (int y = 145; y < 200 && Heard_Nb(KIT_EVENT_PROPAGATE) == 0; y += 6) {
            Input(panel, KIT_INPUT_PRESS, x, y, KIT_BUTTON_LEFT);
            Input(panel, KIT_INPUT_RELEASE, x, y);
        }
    }
    ASSERT_EQ(Heard_Nb(KIT_EVENT_PROPAGATE), 1);
    const Heard asked = *Last(KIT_EVENT_PROPAGATE);
    EXPECT_EQ(asked.object, volume);
    EXPECT_EQ(asked.from, 1);
    EXPECT_EQ(std::abs(asked.index - 1), 1);
    EXPECT_EQ(kit_panel_kind(panel, nullptr), KIT_ERROR_HANDLE);
    kit_handle shown = 0;
    std::int32_t slice = -1;
    ASSERT_EQ(kit_volume_shown(&shown, &slice), KIT_OK);
    EXPECT_EQ(slice, asked.index);
}

TEST_F(Panels_Through_C, variables_are_read_and_written_by_name) {
    double number = 0;
    EXPECT_EQ(kit_variable_set_number("$GLI_HISTO_BINS_MAX", 512), KIT_OK);
    EXPECT_EQ(kit_variable_number("$GLI_HISTO_BINS_MAX", &number), KIT_OK);
    EXPECT_EQ(number, 512.0);
    EXPECT_EQ(kit_variable_set_number("$TAG_NB", 500), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(kit_variable_set_number("$NO_SUCH", 1), KIT_ERROR_MISSING);
    EXPECT_EQ(kit_variable_set_text("$REGIONAL_FILLER", "-"), KIT_OK);
    char text[8] = "";
    EXPECT_EQ(kit_variable_text("$REGIONAL_FILLER", text, sizeof text, nullptr), KIT_OK);
    EXPECT_STREQ(text, "-");
    EXPECT_EQ(kit_variable_set_text("$TAG_NB", "x"), KIT_ERROR_MISSING);
    EXPECT_EQ(kit_variable_set_text("$TAG_LABEL", "x"), KIT_ERROR_MISSING);
    const std::uint8_t locks[] = {1, 0, 1};
    EXPECT_EQ(kit_variable_set_array("$TAG_LOCK", KIT_VARIABLE_UNSIGNED_8, locks, 3), KIT_OK);
    kit_label label = {};
    label.size = sizeof label;
    EXPECT_EQ(kit_tag_get(2, &label), KIT_OK);
    EXPECT_NE(label.flags & KIT_LABEL_LOCKED, 0U);
    EXPECT_EQ(kit_variable_set_array("$TAG_LOCK", KIT_VARIABLE_FLOAT, locks, 0), KIT_ERROR_MISSING);
    EXPECT_EQ(kit_variable_set_array("$TAG_LOCK", KIT_VARIABLE_UNSIGNED_8, locks, 257), KIT_ERROR_ROOM);
}

TEST_F(Panels_Through_C, the_contract_report_names_what_a_host_asked_for_in_vain) {
    double number = 0;
    kit_variable_number("$NOT_THERE", &number);
    std::uint32_t count = 0;
    ASSERT_EQ(kit_contract_check(&count), KIT_OK);
    ASSERT_EQ(count, 1U);
    char text[80] = "";
    ASSERT_EQ(kit_contract_text(0, text, sizeof text, nullptr), KIT_OK);
    EXPECT_STREQ(text, "variable missing: $NOT_THERE");
}

}  // namespace
