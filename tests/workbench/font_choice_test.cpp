#include "workbench/font_choice.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "tests/support/import_hook.h"
#include "workbench/look.h"

using namespace workbench;

namespace {

/** Notes which faces are asked about. */
struct Face_Recorder {
    std::vector<std::pair<std::wstring, std::size_t>> missing;
    std::vector<std::wstring> asked;
    std::size_t operator()(const wchar_t* face) {
        asked.emplace_back(face);
        const auto found = std::ranges::find(missing, std::wstring(face), [](const auto& one) { return one.first; });
        return found != missing.end() ? found->second : 100;
    }
};

constexpr const wchar_t* FACES[] = {L"One", L"Two", L"Three"};

TEST(Face_Choose, takes_the_first_face_that_has_all_letters_and_asks_no_further) {
    Face_Recorder recorder{{{L"One", 3}, {L"Two", 0}, {L"Three", 0}}, {}};
    EXPECT_STREQ(Face_Choose(3, FACES, std::ref(recorder)), L"Two");
    EXPECT_EQ(recorder.asked, (std::vector<std::wstring>{L"One", L"Two"}));
}

TEST(Face_Choose, takes_the_one_that_lacks_the_fewest_when_none_has_all) {
    Face_Recorder recorder{{{L"One", 4}, {L"Two", 1}, {L"Three", 1}}, {}};
    EXPECT_STREQ(Face_Choose(5, FACES, std::ref(recorder)), L"Two");
    EXPECT_EQ(recorder.asked.size(), 3U);
}

TEST(Face_Choose, keeps_the_usual_font_when_no_other_is_better) {
    Face_Recorder recorder{{{L"One", 5}}, {}};
    EXPECT_EQ(Face_Choose(5, FACES, std::ref(recorder)), nullptr);
    EXPECT_EQ(Face_Choose(0, FACES, std::ref(recorder)), nullptr);
    EXPECT_EQ(recorder.asked.size(), 3U) << "nothing is asked when nothing is missing";
}

/** A bitmap of one colour. */
class Drawn_Line : public ::testing::Test {
  protected:
    static constexpr int WIDTH = 160;
    static constexpr int HEIGHT = 24;
    void SetUp() override {
        BITMAPINFO info = {};
        info.bmiHeader.biSize = sizeof info.bmiHeader;
        info.bmiHeader.biWidth = WIDTH;
        info.bmiHeader.biHeight = -HEIGHT;
        info.bmiHeader.biPlanes = 1;
        info.bmiHeader.biBitCount = 32;
        void* bits = nullptr;
        bitmap = Gdi_Bitmap(::CreateDIBSection(dc.Get(), &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        ASSERT_TRUE(bitmap);
        pixels = {static_cast<const std::uint32_t*>(bits), std::size_t{WIDTH} * HEIGHT};
        selected.emplace(dc.Get(), bitmap.Get());
    }
    /** Pixels darker or brighter than a grey level. */
    std::ptrdiff_t Dark() const {
        ::GdiFlush();
        return std::ranges::count_if(pixels, [](std::uint32_t pixel) { return ((pixel >> 8U) & 0xFFU) < 60; });
    }
    std::ptrdiff_t Bright() const {
        ::GdiFlush();
        return std::ranges::count_if(pixels, [](std::uint32_t pixel) { return ((pixel >> 8U) & 0xFFU) > 200; });
    }
    const Memory_DC dc{nullptr};
    Gdi_Bitmap bitmap;
    std::optional<Selected_Object> selected;
    std::span<const std::uint32_t> pixels;
    const Look look;
    const RECT area = {4, 0, WIDTH, HEIGHT};
};

TEST_F(Drawn_Line, over_an_image_stands_out_from_bright_and_from_dark_ground) {
    for (const COLORREF ground : {RGB(255, 255, 255), RGB(0, 0, 0), RGB(128, 128, 128)}) {
        Fill(dc.Get(), {0, 0, WIDTH, HEIGHT}, ground);
        const std::ptrdiff_t bright_before = Bright();
        const std::ptrdiff_t dark_before = Dark();
        Draw_Line_Shadowed(dc.Get(), area, L"Slice 91 / 181", look.Font(), DT_LEFT);
        // Strokes are one pixel thin and smoothed: only their middles have the full colour. The shadow is three pixels
        // wide.
        if (ground != RGB(255, 255, 255)) {
            EXPECT_GT(Bright() - bright_before, 50);
        }
        if (ground != RGB(0, 0, 0)) {
            EXPECT_GT(Dark() - dark_before, 300);
        }
    }
}

TEST_F(Drawn_Line, letters_that_every_face_has_need_no_other_font) {
    Gdi_Font made;
    EXPECT_EQ(Font_For(dc.Get(), look.Font(), L"Größe 12, naïve", made), look.Font());
    EXPECT_FALSE(made);
}

TEST_F(Drawn_Line, letters_that_the_font_lacks_are_counted_and_another_font_lacks_fewer) {
    EXPECT_EQ(Letters_Missing(dc.Get(), look.Font(), L"abc"), 0U);
    const std::wstring unknown = L"a\xE123\xE124";  // of nobody's alphabet
    const std::size_t missing = Letters_Missing(dc.Get(), look.Font(), unknown);
    EXPECT_EQ(missing, 2U);
    Gdi_Font made;
    const HFONT font = Font_For(dc.Get(), look.Font(), unknown, made);
    EXPECT_TRUE(font == look.Font() || Letters_Missing(dc.Get(), font, unknown) < missing);
    LOGFONTW usual = {};
    LOGFONTW other = {};
    ::GetObjectW(look.Font(), sizeof usual, &usual);
    ::GetObjectW(font, sizeof other, &other);
    EXPECT_EQ(other.lfHeight, usual.lfHeight);
}

std::wstring face_in_use;  // of the last text that was drawn

/** A system on which only the second East Asian face of ours has signs for Chinese. */
DWORD WINAPI Glyphs_Of_System(HDC dc, const wchar_t* text, int count, WORD* glyphs, DWORD) {
    LOGFONTW font = {};
    ::GetObjectW(::GetCurrentObject(dc, OBJ_FONT), sizeof font, &font);
    for (int at = 0; at < count; ++at) {
        const bool has = text[at] < 0x2E80 || std::wstring(font.lfFaceName) == L"Microsoft JhengHei UI";
        glyphs[at] = has ? static_cast<WORD>(text[at]) : WORD{0xFFFF};
    }
    return static_cast<DWORD>(count);
}
int WINAPI Draw_Text_Recorded(HDC dc, const wchar_t*, int, RECT*, UINT) {
    LOGFONTW font = {};
    ::GetObjectW(::GetCurrentObject(dc, OBJ_FONT), sizeof font, &font);
    face_in_use = font.lfFaceName;
    return 1;
}

TEST_F(Drawn_Line, an_east_asian_name_is_drawn_in_a_face_that_has_its_letters) {
    const Import_Hook glyphs("", "gdi32.dll", "GetGlyphIndicesW", reinterpret_cast<void*>(&Glyphs_Of_System));
    const Import_Hook draw("", "user32.dll", "DrawTextW", reinterpret_cast<void*>(&Draw_Text_Recorded));
    ASSERT_TRUE(glyphs.Is_Set() && draw.Is_Set());
    Draw_Line(dc.Get(), area, L"head \x5934\x90E8", look.Font(), 0, DT_LEFT);
    EXPECT_EQ(face_in_use, L"Microsoft JhengHei UI");
    Draw_Line(dc.Get(), area, L"head", look.Font(), 0, DT_LEFT);
    EXPECT_EQ(face_in_use, L"Arial");
}

}  // namespace
