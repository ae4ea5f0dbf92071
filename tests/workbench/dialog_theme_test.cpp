// Prompts have the colours of the theme.
#include "base/gdi_handles.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/own_window.h"
#include "workbench/model/theme_colors.h"
#include "workbench/prompt_dialog.h"
#include "workbench/window_theme.h"

using namespace workbench;

namespace {

constexpr const wchar_t* TITLE = L"Title of the prompt";

/** What a control is drawn with, 0x00RRGGBB. */
struct Colors {
    std::uint32_t ground = 0;
    std::uint32_t behind_text = 0;
    std::uint32_t text = 0;
};

std::uint32_t Color_Of(COLORREF color) {
    return static_cast<std::uint32_t>(GetRValue(color)) << 16U | static_cast<std::uint32_t>(GetGValue(color)) << 8U |
           GetBValue(color);
}

/** Asks the dialog as the system does. */
Colors Colors_Of(HWND dialog, HWND control, UINT message) {
    const Window_DC dc(control);
    const auto brush = reinterpret_cast<HBRUSH>(
        ::SendMessageW(dialog, message, reinterpret_cast<WPARAM>(dc.Get()), reinterpret_cast<LPARAM>(control)));
    LOGBRUSH description = {};
    ::GetObjectW(brush, sizeof description, &description);
    return {Color_Of(description.lbColor), Color_Of(::GetBkColor(dc.Get())), Color_Of(::GetTextColor(dc.Get()))};
}

class Dialog_Theme : public testing::Test {
  public:
    void TearDown() override { Windows_Theme_Set(false); }

  protected:
    /** Shows a prompt, looks at it, and gives it up. */
    void Look_At_Prompt() {
        asked.clear();
        const UINT_PTR timer = ::SetTimer(nullptr, 0, 20, [](HWND, UINT, UINT_PTR, DWORD) {
            const HWND dialog = Own_Window(L"#32770", TITLE);
            const HWND field = dialog != nullptr ? ::FindWindowExW(dialog, nullptr, L"Edit", nullptr) : nullptr;
            if (field != nullptr) {
                asked = {Colors_Of(dialog, dialog, WM_CTLCOLORDLG), Colors_Of(dialog, field, WM_CTLCOLORSTATIC),
                         Colors_Of(dialog, field, WM_CTLCOLORBTN), Colors_Of(dialog, field, WM_CTLCOLOREDIT),
                         Colors_Of(dialog, field, WM_CTLCOLORLISTBOX)};
                ::SendMessageW(dialog, WM_COMMAND, IDCANCEL, 0);
            }
        });
        EXPECT_FALSE(Prompt(nullptr, TITLE, L"Largest number:", L"12"));
        ::KillTimer(nullptr, timer);
    }
    static inline std::vector<Colors> asked;
};

TEST_F(Dialog_Theme, the_dark_one_colours_prompts) {
    Windows_Theme_Set(true);
    Look_At_Prompt();
    ASSERT_EQ(asked.size(), 5U);
    const Theme_Colors& colors = Theme_Colors_Of(true);
    const std::uint32_t grounds[] = {colors.ground, colors.ground, colors.ground, colors.heading, colors.heading};
    for (std::size_t at = 0; at < asked.size(); ++at) {
        SCOPED_TRACE(at);
        EXPECT_EQ(asked[at].ground, grounds[at]);
        EXPECT_EQ(asked[at].behind_text, grounds[at]);
        EXPECT_EQ(asked[at].text, colors.text);
    }
}

TEST_F(Dialog_Theme, the_light_one_leaves_them_to_the_system) {
    Windows_Theme_Set(true);
    Windows_Theme_Set(false);
    Look_At_Prompt();
    ASSERT_EQ(asked.size(), 5U);
    for (const Colors& colors : asked) {
        EXPECT_NE(colors.text, Theme_Colors_Of(true).text);
    }
}

}  // namespace
