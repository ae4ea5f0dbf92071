/** A started C interface over small made data, with a window for panels; ended afterwards. */
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "c_interface/kit_panels.h"
#include "tests/support/panel_window.h"

/** What the call-back heard. */
struct Heard {
    std::uint32_t kind;
    kit_handle panel;
    kit_handle object;
    std::uint64_t flags;
    std::int32_t level;
    std::int32_t index;
    std::int32_t from;
    std::string text;
};

class Interface_Stage : public testing::Test {
  protected:
    void SetUp() override {
        kit_settings settings = {};
        settings.size = sizeof settings;
        settings.abi_version = KIT_ABI_VERSION;
        settings.on_event = On_Event;
        settings.context = this;
        settings.contract_checks = 1;
        ASSERT_EQ(kit_start(&settings), KIT_OK);
    }
    void TearDown() override {
        on_event = nullptr;
        EXPECT_EQ(kit_stop(), KIT_OK);
    }

    kit_panel_settings Panel_Settings(std::uint32_t kind, std::int32_t option = 0) {
        kit_panel_settings settings = {};
        settings.size = sizeof settings;
        settings.kind = kind;
        settings.option = option;
        settings.window = window.Get();
        settings.width = 400;
        settings.height = 200;
        return settings;
    }
    kit_handle Panel(std::uint32_t kind, std::int32_t option = 0) {
        const kit_panel_settings settings = Panel_Settings(kind, option);
        kit_handle panel = 0;
        EXPECT_EQ(kit_panel_create(&settings, &panel), KIT_OK) << Error();
        return panel;
    }
    /** Grey levels in two heaps around 60 and 180 in every slice. */
    kit_handle Volume(int slices = 3) {
        pixels.clear();
        std::uint32_t random = 7;
        for (int at = 0; at < 64 * 64 * slices; ++at) {
            int sum = 0;
            for (int part = 0; part < 8; ++part) {
                random = random * 1664525U + 1013904223U;
                sum += static_cast<int>(random >> 28);
            }
            pixels.push_back(static_cast<std::uint8_t>(sum + (at % 3 == 0 ? 120 : 0)));
        }
        kit_volume_settings settings = {};
        settings.size = sizeof settings;
        settings.pixel = KIT_PIXEL_UNSIGNED_8;
        settings.width = 64;
        settings.height = 64;
        settings.slices = slices;
        settings.pixels = pixels.data();
        settings.name = "Head";
        kit_handle volume = 0;
        EXPECT_EQ(kit_volume_create(&settings, &volume), KIT_OK) << Error();
        return volume;
    }
    /** The counts of a slice, one for each level 0 to 255. */
    static std::vector<std::uint32_t> Counts_By_Level(kit_handle volume, int slice) {
        kit_histogram histogram = {};
        histogram.size = sizeof histogram;
        std::vector<std::uint32_t> counts(300);
        std::uint32_t bins = 0;
        EXPECT_EQ(kit_volume_histogram(volume, slice, &histogram, counts.data(), 300, &bins), KIT_OK) << Error(volume);
        std::vector<std::uint32_t> by_level(256);
        for (std::uint32_t bin = 0; bin < bins; ++bin) {
            const float level = histogram.origin + (static_cast<float>(bin) + 0.5F) * histogram.bin_width;
            by_level[static_cast<std::size_t>(level)] += counts[bin];
        }
        return by_level;
    }
    /** An event at a pixel of the window, counted from its upper left corner. */
    kit_status Input(kit_handle panel, std::uint32_t kind, int x, int y, std::uint32_t buttons = 0, int value = 0,
                     std::int32_t* used = nullptr) {
        Panel_Window_To_Screen(window.Get(), &x, &y);
        const kit_input input = {sizeof(kit_input), kind, x, y, buttons, value};
        return kit_panel_input(panel, &input, used);
    }
    /** The key events of a text. */
    void Type(kit_handle panel, const std::string& text) {
        for (const char key : text) {
            Input(panel, KIT_INPUT_KEY, 1, 1, 0, key);
        }
    }
    static std::string Error(kit_handle handle = 0) {
        char text[400] = "";
        kit_error_text(handle, text, sizeof text, nullptr);
        return text;
    }
    int Heard_Nb(std::uint32_t kind) const { return static_cast<int>(std::ranges::count(heard, kind, &Heard::kind)); }
    const Heard* Last(std::uint32_t kind) const {
        const auto found =
            std::find_if(heard.rbegin(), heard.rend(), [&](const Heard& one) { return one.kind == kind; });
        return found != heard.rend() ? &*found : nullptr;
    }

    Panel_Window window{Window_Axis::Down, 400, 200};
    std::vector<Heard> heard;
    std::function<std::int32_t(const kit_event&)> on_event;
    std::vector<std::uint8_t> pixels;

  private:
    static std::int32_t On_Event(void* context, const kit_event* event) {
        auto& stage = *static_cast<Interface_Stage*>(context);
        stage.heard.push_back({event->kind, event->panel, event->object, event->flags, event->level, event->index,
                               event->from, event->text != nullptr ? event->text : ""});
        return stage.on_event ? stage.on_event(*event) : 0;
    }
};
