// Mistakes of a host: a status and a sentence each, and nothing changed.
#include <cstring>
#include <thread>

#include "tests/c_interface/interface_stage.h"

namespace {

class Handles_And_Errors : public Interface_Stage {};

TEST_F(Handles_And_Errors, a_handle_that_was_given_back_stays_dead) {
    const kit_handle panel = Panel(KIT_PANEL_TAG);
    ASSERT_EQ(kit_panel_destroy(panel), KIT_OK);
    EXPECT_EQ(kit_panel_destroy(panel), KIT_ERROR_HANDLE);
    const kit_handle next = Panel(KIT_PANEL_TAG);  // in the same place of the table
    EXPECT_NE(next, panel);
    EXPECT_EQ(kit_panel_draw(panel), KIT_ERROR_HANDLE);
    EXPECT_EQ(kit_panel_draw(next), KIT_OK);
}

TEST_F(Handles_And_Errors, a_handle_of_another_kind_is_told_from_a_dead_one) {
    const kit_handle volume = Volume();
    EXPECT_EQ(kit_panel_draw(volume), KIT_ERROR_KIND);
    EXPECT_EQ(kit_file_destroy(volume), KIT_ERROR_KIND);
    EXPECT_EQ(kit_class_destroy(volume), KIT_ERROR_KIND);
    const kit_handle tag = Panel(KIT_PANEL_TAG);
    EXPECT_EQ(kit_histogram_fit(tag, KIT_FIT_GAUSSIAN, 0), KIT_ERROR_KIND);
    EXPECT_EQ(kit_panel_draw(0), KIT_ERROR_HANDLE);
    EXPECT_EQ(kit_panel_draw(~kit_handle{0}), KIT_ERROR_HANDLE);
}

TEST_F(Handles_And_Errors, each_handle_keeps_its_own_last_error) {
    const kit_handle one = Panel(KIT_PANEL_TAG);
    const kit_handle other = Panel(KIT_PANEL_TAG);
    kit_histogram_fit(one, KIT_FIT_GAUSSIAN, 0);
    EXPECT_EQ(Error(one), "kit_histogram_fit: the panel is no histogram");
    EXPECT_EQ(Error(other), "");
    kit_tag_pick(99);
    EXPECT_EQ(Error(0), "kit_tag_pick: index is not below the count");
}

TEST_F(Handles_And_Errors, a_struct_without_its_size_is_refused) {
    kit_panel_settings settings = Panel_Settings(KIT_PANEL_TAG);
    settings.size = 0;
    kit_handle panel = 7;
    EXPECT_EQ(kit_panel_create(&settings, &panel), KIT_ERROR_SIZE);
    EXPECT_EQ(panel, 0U);
    settings.size = sizeof settings - 4;
    EXPECT_EQ(kit_panel_create(&settings, &panel), KIT_ERROR_SIZE);
    settings.size = 0x7FFFFFFF;
    EXPECT_EQ(kit_panel_create(&settings, &panel), KIT_ERROR_SIZE);
}

TEST_F(Handles_And_Errors, a_struct_of_a_later_version_is_taken_as_far_as_it_is_known) {
    struct Later {
        kit_label label;
        std::uint64_t added;
    };
    Later labels[4] = {};
    for (Later& one : labels) {
        one.label.size = sizeof one;
        one.label.red = 200;
        one.added = ~std::uint64_t{0};
    }
    ASSERT_EQ(kit_tags_set(&labels[0].label, 4), KIT_OK);
    ASSERT_EQ(kit_tag_get(3, &labels[0].label), KIT_OK);
    EXPECT_EQ(labels[0].label.red, 200);
    EXPECT_EQ(labels[0].label.size, sizeof(Later));
    EXPECT_EQ(labels[0].added, ~std::uint64_t{0});
}

TEST_F(Handles_And_Errors, null_is_an_error_and_nothing_worse) {
    const kit_handle panel = Panel(KIT_PANEL_BRUSH);
    EXPECT_EQ(kit_start(nullptr), KIT_ERROR_STATE);
    EXPECT_EQ(kit_panel_create(nullptr, nullptr), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(kit_panel_input(panel, nullptr, nullptr), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(kit_panel_height(panel, 1, nullptr), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(kit_tags_set(nullptr, 4), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(kit_brushes_set(nullptr, 1), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(kit_variable_number(nullptr, nullptr), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(kit_tag_text(0, nullptr, 5, nullptr), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(kit_tag_text(0, nullptr, 0, nullptr), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(kit_volume_create(nullptr, nullptr), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(kit_answer_text("x"), KIT_ERROR_STATE);
    kit_panel_settings settings = Panel_Settings(KIT_PANEL_TAG);
    settings.window = nullptr;
    kit_handle made = 0;
    EXPECT_EQ(kit_panel_create(&settings, &made), KIT_ERROR_ARGUMENT);
}

TEST_F(Handles_And_Errors, too_little_room_writes_nothing) {
    char text[4] = {'a', 'b', 'c', 0};
    std::uint32_t needed = 0;
    EXPECT_EQ(kit_variable_text("$INTERFACE_TOOL_FONT_NAME", text, sizeof text, &needed), KIT_ERROR_ROOM);
    EXPECT_STREQ(text, "abc");
    EXPECT_EQ(needed, 6U);
}

TEST_F(Handles_And_Errors, another_thread_is_refused) {
    kit_status status = KIT_OK;
    kit_status error_status = KIT_OK;
    std::thread other([&] {
        status = kit_tag_pick(0);
        error_status = kit_error_text(0, nullptr, 0, nullptr);
    });
    other.join();
    EXPECT_EQ(status, KIT_ERROR_THREAD);
    EXPECT_EQ(error_status, KIT_ERROR_THREAD);
}

TEST_F(Handles_And_Errors, a_call_back_may_call_everything_but_the_end) {
    const kit_handle volume = Volume();
    const kit_handle panel = Panel(KIT_PANEL_TAG);
    std::int32_t calls = 0;
    on_event = [&](const kit_event& event) {
        if (event.kind == KIT_EVENT_PICKED && ++calls == 1) {
            EXPECT_EQ(kit_stop(), KIT_ERROR_STATE);
            EXPECT_EQ(kit_volume_destroy(volume), KIT_OK);
            EXPECT_EQ(kit_panel_destroy(panel), KIT_OK);
            kit_label labels[4] = {};
            for (kit_label& label : labels) {
                label.size = sizeof label;
            }
            EXPECT_EQ(kit_tags_set(labels, 4), KIT_OK);
        }
        return 0;
    };
    ASSERT_EQ(Input(panel, KIT_INPUT_PRESS, 250, 45, KIT_BUTTON_LEFT), KIT_OK);
    EXPECT_EQ(calls, 1);
    EXPECT_EQ(kit_panel_draw(panel), KIT_ERROR_HANDLE);
}

TEST_F(Handles_And_Errors, a_call_back_that_makes_events_for_ever_comes_to_an_end) {
    const kit_handle panel = Panel(KIT_PANEL_TAG);
    int calls = 0;
    on_event = [&](const kit_event& event) {
        if (event.kind == KIT_EVENT_PICKED) {
            ++calls;
            Input(panel, KIT_INPUT_PRESS, 250, 45, KIT_BUTTON_LEFT);
        }
        return 0;
    };
    Input(panel, KIT_INPUT_PRESS, 250, 45, KIT_BUTTON_LEFT);
    EXPECT_GT(calls, 1);
    EXPECT_LE(calls, 5000);
}

TEST_F(Handles_And_Errors, the_end_kills_every_handle_and_a_new_start_begins_anew) {
    const kit_handle panel = Panel(KIT_PANEL_MARKER);
    const kit_handle volume = Volume();
    kit_handle file = 0;
    kit_file_create("x.nii", volume, &file);
    kit_tag_pick(3);
    ASSERT_EQ(kit_stop(), KIT_OK);
    EXPECT_EQ(kit_panel_draw(panel), KIT_ERROR_STATE);
    EXPECT_EQ(kit_stop(), KIT_ERROR_STATE);
    SetUp();
    EXPECT_EQ(kit_panel_draw(panel), KIT_ERROR_HANDLE);
    EXPECT_EQ(kit_volume_show(volume, 0), KIT_ERROR_HANDLE);
    EXPECT_EQ(kit_file_destroy(file), KIT_ERROR_HANDLE);
    std::uint32_t picked = 9;
    EXPECT_EQ(kit_tag_picked(&picked), KIT_OK);
    EXPECT_EQ(picked, 0U);
}

TEST(Start, a_host_of_another_version_is_refused) {
    kit_settings settings = {};
    settings.size = sizeof settings;
    settings.abi_version = KIT_ABI_VERSION + 0x10000;
    EXPECT_EQ(kit_start(&settings), KIT_ERROR_ARGUMENT);
    settings.abi_version = KIT_ABI_VERSION + 1;
    EXPECT_EQ(kit_start(&settings), KIT_ERROR_ARGUMENT);
    EXPECT_EQ(kit_panels_abi_version(), KIT_ABI_VERSION);
    EXPECT_STREQ(kit_status_text(KIT_ERROR_TEXT), "the text cannot be expressed");
    EXPECT_STREQ(kit_status_text(99), "no status of this interface");
    EXPECT_STREQ(kit_status_text(INT32_MIN), "no status of this interface");
    EXPECT_EQ(kit_tag_pick(0), KIT_ERROR_STATE);
}

}  // namespace
