#include "workbench/name_tip.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>
#include <vector>

#include "base/gdi_handles.h"

using namespace workbench;

namespace {

int Eight_Per_Letter(const std::wstring& name) {
    return 8 * static_cast<int>(name.size());
}

Accessible_Part Part(const wchar_t* name, RECT place, int level = 0) {
    Accessible_Part part;
    part.name = name;
    part.place = place;
    part.level = level;
    return part;
}

TEST(Part_Cut_At, is_the_part_under_the_point_when_its_name_has_no_room_beside_its_mark) {
    const std::vector<Accessible_Part> parts = {Part(L"Skull", {0, 0, 80, 20}), Part(L"Hippocampus", {80, 0, 160, 20})};
    EXPECT_EQ(Part_Cut_At(parts, {10, 5}, &Eight_Per_Letter), nullptr) << "40 of 60 pixels";
    EXPECT_EQ(Part_Cut_At(parts, {90, 5}, &Eight_Per_Letter), &parts[1]) << "88 of 60 pixels";
    EXPECT_EQ(Part_Cut_At(parts, {90, 25}, &Eight_Per_Letter), nullptr) << "beside it";
    const std::vector<Accessible_Part> just = {Part(L"12345678", {0, 0, 84, 20})};
    EXPECT_EQ(Part_Cut_At(just, {5, 5}, &Eight_Per_Letter), nullptr) << "64 of 64 pixels";
}

TEST(Part_Cut_At, counts_the_lines_before_the_rows_of_a_tree) {
    const std::vector<Accessible_Part> rows = {Part(L"Thalamus", {0, 0, 140, 20}, 2),
                                               Part(L"Thalamus", {0, 20, 140, 40}, 4)};
    EXPECT_EQ(Part_Cut_At(rows, {5, 5}, &Eight_Per_Letter), nullptr);
    EXPECT_EQ(Part_Cut_At(rows, {5, 25}, &Eight_Per_Letter), &rows[1]);
}

class Name_Tip : public ::testing::Test {
  protected:
    void SetUp() override {
        window = ::CreateWindowExW(0, L"STATIC", L"", WS_POPUP | WS_VISIBLE, 0, 0, 300, 100, nullptr, nullptr, nullptr,
                                   nullptr);
        ASSERT_NE(window, nullptr);
        Name_Tip_Set(window, look, [this] {
            ++asked;
            return std::vector<Accessible_Part>{Part(L"A name that is far too long", {0, 0, 60, 20}),
                                                Part(L"A", {0, 20, 60, 40})};
        });
    }
    void TearDown() override {
        Name_Tip_Forget(window);
        ::DestroyWindow(window);
    }
    /** Lets the program go on for a while, or until the tip is there. */
    static void Go_On(UINT ms, bool until_tip) {
        const ULONGLONG end = ::GetTickCount64() + ms;
        while (::GetTickCount64() < end && !(until_tip && Name_Tip_Window() != nullptr)) {
            MSG message;
            while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
                ::DispatchMessageW(&message);
            }
            ::Sleep(5);
        }
    }
    /** The name stands in the tip in the text's colour, on another ground. */
    void Expect_Readable(HWND tip) const {
        ::UpdateWindow(tip);
        RECT client = {};
        ::GetClientRect(tip, &client);
        const Window_DC dc(tip);
        EXPECT_EQ(::GetPixel(dc.Get(), 3, 3), look.heading);
        int of_text = 0;
        for (int y = 2; y < client.bottom - 2; ++y) {
            for (int x = 2; x < client.right - 2; ++x) {
                // The strokes are smoothed: nearer to the text's colour than to the ground is what can be seen.
                const int away = std::abs(GetGValue(::GetPixel(dc.Get(), x, y)) - GetGValue(look.heading));
                of_text += 4 * away > 3 * std::abs(GetGValue(look.text) - GetGValue(look.heading)) ? 1 : 0;
            }
        }
        EXPECT_GT(of_text, 100) << "strokes of two dozen letters";
    }
    const Look look;
    HWND window = nullptr;
    int asked = 0;
};

TEST_F(Name_Tip, tells_a_cut_name_in_full_when_the_mouse_rests_and_goes_when_it_moves) {
    Name_Tip_Follow(window, {10, 10});
    EXPECT_EQ(Name_Tip_Window(), nullptr) << "not at once";
    EXPECT_EQ(asked, 0) << "a moving mouse costs nothing";
    Go_On(10000, true);
    ASSERT_NE(Name_Tip_Window(), nullptr);
    wchar_t text[100] = {};
    ::GetWindowTextW(Name_Tip_Window(), text, 100);
    EXPECT_STREQ(text, L"A name that is far too long");
    const HWND shown = Name_Tip_Window();
    Expect_Readable(shown);
    Name_Tip_Follow(window, {10, 10});
    EXPECT_EQ(Name_Tip_Window(), shown) << "the mouse has not moved";
    Name_Tip_Follow(window, {12, 10});
    EXPECT_EQ(Name_Tip_Window(), nullptr);
    EXPECT_FALSE(::IsWindow(shown));
}

TEST_F(Name_Tip, a_name_that_is_whole_has_none_and_a_press_keeps_it_away) {
    Name_Tip_Follow(window, {10, 30});
    Go_On(2 * NAME_TIP_REST_MS, true);
    EXPECT_EQ(Name_Tip_Window(), nullptr);
    EXPECT_EQ(asked, 1);
    Name_Tip_Follow(window, {10, 10});
    Name_Tip_Hide();
    Go_On(2 * NAME_TIP_REST_MS, true);
    EXPECT_EQ(Name_Tip_Window(), nullptr);
    EXPECT_EQ(asked, 1);
}

TEST_F(Name_Tip, goes_with_its_window) {
    Name_Tip_Follow(window, {10, 10});
    Go_On(10000, true);
    EXPECT_NE(Name_Tip_Window(), nullptr);
    Name_Tip_Forget(window);
    EXPECT_EQ(Name_Tip_Window(), nullptr);
    Name_Tip_Follow(window, {11, 10});
    Go_On(2 * NAME_TIP_REST_MS, true);
    EXPECT_EQ(Name_Tip_Window(), nullptr) << "nobody knows what stands in it";
}

}  // namespace
