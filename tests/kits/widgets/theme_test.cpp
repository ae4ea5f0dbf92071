#include "kits/widgets/theme.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <limits>

#include "kits/widgets/widgets_host.h"
#include "workbench/model/color_contrast.h"

using namespace workbench;

namespace {

/** How far apart two colours are in brightness. */
int Apart(Rgb a, Rgb b) {
    return std::abs(Brightness(a) - Brightness(b));
}

void Expect_Readable(const Theme& theme) {
    EXPECT_GE(Contrast_Ratio(theme.text, theme.panel), CONTRAST_TEXT);
    EXPECT_GE(Contrast_Ratio(theme.text, theme.face), CONTRAST_TEXT);
    EXPECT_GE(Contrast_Ratio(theme.text, theme.face_hover), CONTRAST_GRAPHIC);  // arrows only
    EXPECT_GE(Contrast_Ratio(theme.text, theme.face_pressed), CONTRAST_GRAPHIC);
    EXPECT_GE(Contrast_Ratio(theme.field_text, theme.field), CONTRAST_TEXT);
    EXPECT_GE(Contrast_Ratio(theme.accent_text, theme.accent), CONTRAST_TEXT);
    EXPECT_GE(Contrast_Ratio(theme.accent, theme.field), CONTRAST_GRAPHIC);
    EXPECT_GE(Contrast_Ratio(theme.text_grey, theme.panel), CONTRAST_GRAPHIC);  // inactive: need not reach that of text
    EXPECT_GE(Contrast_Ratio(theme.text_grey, theme.field), CONTRAST_GRAPHIC);
    EXPECT_GE(Contrast_Ratio(theme.line_strong, theme.panel), CONTRAST_GRAPHIC);
    EXPECT_GE(Apart(theme.face, theme.face_hover), 14);
    EXPECT_GE(Apart(theme.face_hover, theme.face_pressed), 14);
    EXPECT_GE(Apart(theme.face, theme.field), 30);
    EXPECT_GE(Apart(theme.line_strong, theme.panel), 70);
}

}  // namespace

TEST(Theme, both_themes_are_readable) {
    Library_Theme_Set(Library_Theme::Light);
    Expect_Readable(Theme_Now());
    const Rgb light_panel = Theme_Now().panel;
    Library_Theme_Set(Library_Theme::Dark);
    Expect_Readable(Theme_Now());
    EXPECT_NE(Theme_Now().panel, light_panel);
}

TEST(Theme, parts_on_a_ground_of_the_other_theme_have_its_colours) {
    Library_Theme_Set(Library_Theme::Light);
    const Theme& light = Theme_Now();
    Library_Theme_Set(Library_Theme::Dark);
    const Theme& dark = Theme_Now();
    for (const Library_Theme theme : {Library_Theme::Light, Library_Theme::Dark}) {
        Library_Theme_Set(theme);
        EXPECT_EQ(&Theme_On(dark.panel), &dark);
        EXPECT_EQ(&Theme_On(0x000000), &dark);
        EXPECT_EQ(&Theme_On(light.panel), &light);
        EXPECT_EQ(&Theme_On(0xFFFFFF), &light);
        EXPECT_EQ(&Theme_On(0x8C8C8C), &Theme_Now()) << "a ground between the two";
    }
}

TEST(Theme, contrast_is_readable_on_every_colour_and_never_black) {
    for (int red = 0; red <= 255; red += 17) {
        for (int green = 0; green <= 255; green += 17) {
            for (int blue = 0; blue <= 255; blue += 17) {
                const Rgb ground = Rgb_Make(red, green, blue);
                EXPECT_GE(Contrast_Ratio(Contrast_Color(ground), ground), CONTRAST_TEXT) << std::hex << ground;
                EXPECT_NE(Contrast_Color(ground), 0U);
            }
        }
    }
}

TEST(Theme, mix_and_components) {
    EXPECT_EQ(Rgb_Make(300, -5, 16), 0xFF0010U);
    EXPECT_EQ(Rgb_Of(Colors{1, 2, 3, 99}), 0x010203U);
    EXPECT_EQ(Mix(0x000000, 0xFFFFFF, 0), 0x000000U);
    EXPECT_EQ(Mix(0x000000, 0xFFFFFF, 100), 0xFFFFFFU);
    EXPECT_EQ(Mix(0x204060, 0x406080, 50), 0x305070U);
}

TEST(Theme, scale_acts_on_the_librarys_own_measures) {
    const int height = Library_Font_Height();
    Library_Scale_Set(2.0F);
    EXPECT_EQ(BORDER, 2);
    EXPECT_EQ(SPACE, 6);
    EXPECT_EQ(Library_Font_Height(), 2 * height);
    Library_Scale_Set(std::numeric_limits<float>::quiet_NaN());
    EXPECT_GE(BORDER, 1);
    Library_Scale_Set(0.0F);
    EXPECT_GE(SPACE, 1);
    Library_Scale_Set(1.0F);
    EXPECT_EQ(BORDER, 1);
    EXPECT_EQ(SPACE, 3);
    EXPECT_EQ(Library_Font_Height(), height);
}
