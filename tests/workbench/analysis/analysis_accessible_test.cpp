// The window of the peak analysis, for screen readers.
#include "base/gdi_handles.h"

#include <gtest/gtest.h>
#include <oleacc.h>

#include <algorithm>
#include <cmath>
#include <numeric>

#include "histogram/histo_peaks.h"
#include "histogram/tool_histo.h"
#include "tests/support/own_window.h"
#include "tests/workbench/automation_client.h"
#include "tests/workbench/heard_window.h"
#include "workbench/accessible_snapshot.h"
#include "workbench/analysis/analysis_window.h"

using namespace workbench;

namespace {

constexpr int BINS = 400;
constexpr int CONTROL_BUTTON = 50000;
constexpr int CONTROL_DATA_ITEM = 50029;

class Analysis_Accessible : public testing::Test {
  protected:
    Analysis_Accessible()
        : window(look, {[this] { return &panel; }, [] {}, [](const std::vector<Peak_Row>&) {}, [](const wchar_t*) {},
                        [this] { return source; }, [] { return 1.0; }, [](const std::string&) {},
                        [this] { return source; }}) {
        auto* record = new Histo_Record();
        record->nb_bins = BINS;
        record->bin_width = 1.0F;
        record->counts = new std::uint32_t[BINS]();
        for (int i = 0; i < BINS; ++i) {
            for (const double centre : {100.0, 280.0}) {
                record->counts[i] += static_cast<std::uint32_t>(4000.0 * std::exp(-std::pow((i - centre) / 25.0, 2)));
            }
        }
        panel.data->Record_Free();
        panel.data->record = record;
        window.Open(nullptr);
    }
    static HWND Handle() { return Own_Window(L"Kit_Analysis"); }
    static std::vector<Accessible_Part> Rows() {
        const auto told = Accessible_Snapshot_Ask(Handle());
        std::vector<Accessible_Part> rows;
        if (told) {
            std::ranges::copy_if(told->parts, std::back_inserter(rows),
                                 [](const Accessible_Part& part) { return part.role == ROLE_SYSTEM_ROW; });
        }
        return rows;
    }
    Look look;
    Tool_Histo panel;
    std::string source = "frames 1 to 181";
    Analysis_Window window;
};

TEST_F(Analysis_Accessible, a_client_hears_the_buttons_and_the_list) {
    const std::vector<Heard_Element> heard = Automation_Client::Read(Handle());
    ASSERT_FALSE(heard.empty());
    EXPECT_EQ(heard[0].name, L"Peak analysis");
    for (const wchar_t* name : {L"Fit Gaussians", L"Derivative method", L"Peaks to TAG bands", L"Copy table"}) {
        const auto found = std::ranges::find(heard, std::wstring(name), &Heard_Element::name);
        ASSERT_NE(found, heard.end()) << name;
        EXPECT_EQ(found->control_type, CONTROL_BUTTON);
    }
    const Heard_Window again(Handle());
    LONG list = 0;
    for (LONG child = 1; child <= again.Count(); ++child) {
        list = again.Name(child) == L"Peaks wanted:" ? child : list;
    }
    ASSERT_NE(list, 0);
    EXPECT_EQ(again.Role(list), ROLE_SYSTEM_COMBOBOX);
    EXPECT_EQ(again.Value(list), L"8");
}

TEST_F(Analysis_Accessible, every_row_of_the_table_can_be_read) {
    EXPECT_TRUE(Rows().empty());
    window.Fit_Gaussian();
    ASSERT_EQ(window.Table().rows.size(), 2U);
    const std::vector<Accessible_Part> rows = Rows();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_TRUE(rows[0].name.starts_with(L"Peak 1, Centre (GLI) 100.")) << "100.5, the middle of a bin";
    EXPECT_NE(rows[0].name.find(L", Height "), std::wstring::npos);
    EXPECT_NE(rows[0].name.find(L", Share 50.0 %"), std::wstring::npos);
    EXPECT_TRUE(rows[1].name.starts_with(L"Peak 2, Centre (GLI) 280."));
    const std::vector<Heard_Element> heard = Automation_Client::Read(Handle());
    EXPECT_EQ(std::ranges::count(heard, CONTROL_DATA_ITEM, &Heard_Element::control_type), 2);
    EXPECT_EQ(std::ranges::count(heard, rows[1].name, &Heard_Element::name), 1);
}

TEST_F(Analysis_Accessible, peaks_of_another_selection_are_told_as_such) {
    window.Fit_Gaussian();
    EXPECT_FALSE(window.Is_Stale());
    const auto told = [] {
        const auto parts = Accessible_Snapshot_Ask(Handle())->parts;
        return std::ranges::any_of(parts, [](const Accessible_Part& part) {
            return part.name.starts_with(L"Of frames 1 to 181, not of what is counted now.");
        });
    };
    EXPECT_FALSE(told());
    source = "frame 7";
    window.Source_Refresh();
    EXPECT_TRUE(window.Is_Stale());
    EXPECT_TRUE(told());
    source = "frames 1 to 181";
    window.Source_Refresh();
    EXPECT_FALSE(window.Is_Stale()) << "back at the selection that they belong to";
    source = "frame 7";
    window.Fit_Gaussian();
    EXPECT_FALSE(window.Is_Stale()) << "a fit of the new selection";
    EXPECT_EQ(window.Full_Text().find("frame 7\nPixels\t"), 0U) << window.Full_Text().substr(0, 60);
}

TEST_F(Analysis_Accessible, rows_are_told_where_they_are_painted) {
    window.Fit_Gaussian();
    const std::vector<Accessible_Part> rows = Rows();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].place.bottom, rows[1].place.top);
    ::UpdateWindow(Handle());
    const Window_DC dc(Handle());
    for (const Accessible_Part& row : rows) {
        RECT place = row.place;
        ::MapWindowPoints(nullptr, Handle(), reinterpret_cast<POINT*>(&place), 2);
        const COLORREF ground = ::GetPixel(dc.Get(), place.left, place.top + 1);
        int written = 0;
        for (int x = place.left; x < place.right; ++x) {
            written += ::GetPixel(dc.Get(), x, (place.top + place.bottom) / 2) != ground ? 1 : 0;
        }
        EXPECT_GT(written, 20) << "text crosses the middle of the place";
    }
}

TEST_F(Analysis_Accessible, rows_without_room_are_told_without_a_place) {
    window.Fit_Derivative(20);
    ::SetWindowPos(Handle(), nullptr, 0, 0, 900, 240, SWP_NOMOVE | SWP_NOZORDER);
    const std::vector<Accessible_Part> rows = Rows();
    ASSERT_EQ(rows.size(), window.Table().rows.size());
    ASSERT_GE(rows.size(), 2U);
    EXPECT_EQ(rows.front().state & STATE_SYSTEM_OFFSCREEN, 0);
    EXPECT_NE(rows.back().state & STATE_SYSTEM_OFFSCREEN, 0);
    EXPECT_FALSE(rows.back().name.empty());
}

TEST_F(Analysis_Accessible, quality_and_log_can_be_read) {
    window.Fit_Gaussian();
    const auto told = Accessible_Snapshot_Ask(Handle());
    ASSERT_TRUE(told);
    const auto log = std::ranges::find(told->parts, std::wstring(L"Fit log"), &Accessible_Part::name);
    ASSERT_NE(log, told->parts.end());
    EXPECT_FALSE(log->value.empty());
    EXPECT_TRUE(std::ranges::any_of(told->parts, [](const Accessible_Part& part) {
        return part.role == ROLE_SYSTEM_STATICTEXT && part.name.find(L"of the counts 0.99") != std::wstring::npos;
    }));
}

TEST_F(Analysis_Accessible, a_button_can_be_pressed_through_it) {
    const Heard_Window heard(Handle());
    for (LONG child = 1; child <= heard.Count(); ++child) {
        if (heard.Name(child) == L"Fit Gaussians") {
            EXPECT_EQ(heard.object->accDoDefaultAction(Heard_Window::Child(child)), S_OK);
        }
    }
    MSG message = {};
    while (::PeekMessageW(&message, Handle(), 0, 0, PM_REMOVE) != 0) {
        ::DispatchMessageW(&message);
    }
    EXPECT_EQ(window.Table().rows.size(), 2U);
}

TEST_F(Analysis_Accessible, what_is_left_of_a_closed_window_answers_nothing) {
    const Heard_Window heard(Handle());
    ASSERT_EQ(heard.result, S_OK);
    window.Close();
    LONG count = 0;
    EXPECT_EQ(heard.object->get_accChildCount(&count), CO_E_OBJNOTCONNECTED);
}

TEST_F(Analysis_Accessible, the_table_counts_the_component_that_was_analysed) {
    auto& record = *panel.data->record;
    record.flags = HISTO_COLOR;
    for (std::uint32_t** counts :
         {&record.counts_component0, &record.counts_red, &record.counts_green, &record.counts_blue}) {
        *counts = new std::uint32_t[BINS]();
    }
    for (int i = 0; i < BINS; ++i) {
        record.counts_red[i] = static_cast<std::uint32_t>(900.0 * std::exp(-std::pow((i - 200) / 25.0, 2)));
    }
    panel.color_component = 1;
    window.Fit_Derivative(1);
    const auto& rows = window.Table().rows;
    ASSERT_EQ(rows.size(), 1U);
    std::vector<Histo_Peak_Info> peaks(1);
    ASSERT_EQ(Histo_Peaks(panel, peaks.data(), 1), 1);
    EXPECT_GT(peaks[0].area_pixels, 0.0);
    EXPECT_EQ(rows[0].area, peaks[0].area_pixels);
    const double pixels = std::accumulate(record.counts_red, record.counts_red + BINS, 0.0);
    EXPECT_NEAR(rows[0].share, rows[0].area / pixels, 1e-12);
}

}  // namespace
