// What a host does with the panels through the C interface.
#include <cmath>

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
        kit_histogram histogram = {};
        histogram.size = sizeof histogram;
        std::uint32_t counts[64] = {};
        std::uint32_t bins = 0;
        ASSERT_EQ(kit_volume_histogram(volume, 1, &histogram, counts, 64, &bins), KIT_OK);
        for (std::uint32_t bin = 0; bin < bins; ++bin) {
            const int level =
                static_cast<int>(histogram.origin + (static_cast<float>(bin) + 0.5F) * histogram.bin_width);
            EXPECT_EQ(counts[bin], level >= 11 && level <= 16 ? 1U : 0U) << level;
        }
    }
    settings.on_row = [](void*, std::int32_t, std::int32_t, void*) { return std::int32_t{0}; };
    EXPECT_EQ(kit_volume_create(&settings, &by_row), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(by_row, 0U);
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
