#include <gtest/gtest.h>

#include <cstring>

#include "kits/widgets/painter.h"
#include "kits/widgets/widgets_host.h"

namespace {
int Only_Right(int button) {
    return button == 2 ? 5 : 0;
}
int Only_Shift(int key) {
    return key == 0x10 ? -1 : 0;
}
int Clipboard_Out(char* out, int size) {
    std::strncpy(out, "copied", static_cast<std::size_t>(size));
    return 6;
}
const char* clipboard_in = nullptr;
int Clipboard_In(const char* text) {
    clipboard_in = text;
    return 1;
}
}  // namespace

TEST(Input, the_applications_source_answers) {
    Input_Source_Set({Only_Right, Only_Shift, Clipboard_Out, Clipboard_In});
    EXPECT_EQ(getbutton(2), 1);
    EXPECT_EQ(getbutton(1), 0);
    EXPECT_EQ(getkey(0x10), 1);
    EXPECT_EQ(getkey(0x11), 0);
    char text[16] = {};
    EXPECT_EQ(Input_Clipboard_Get(text, sizeof text), 6);
    EXPECT_STREQ(text, "copied");
    EXPECT_EQ(Input_Clipboard_Get(nullptr, 16), 0);
    EXPECT_EQ(Input_Clipboard_Set("x"), 1);
    EXPECT_STREQ(clipboard_in, "x");
    Input_Source_Set({});
    EXPECT_EQ(getbutton(2), 0);
    EXPECT_EQ(getkey(0x10), 0);
}

TEST(Input, the_systems_clipboard_keeps_a_text_and_cuts_it_to_the_room) {
    ASSERT_EQ(Input_Clipboard_Set("Left kidney"), 1);
    char text[32] = {};
    EXPECT_EQ(Input_Clipboard_Get(text, sizeof text), 11);
    EXPECT_STREQ(text, "Left kidney");
    char small[5] = {};
    EXPECT_EQ(Input_Clipboard_Get(small, sizeof small), 4);
    EXPECT_STREQ(small, "Left");
}

TEST(Input, key_being_handled) {
    Key_In_Hand_Set(KEY_HOME);
    EXPECT_EQ(Key_In_Hand(), KEY_HOME);
    Key_In_Hand_Set(0);
    EXPECT_EQ(Key_In_Hand(), 0);
}

TEST(Input, counters_count_and_reset) {
    Widget_Counters_Reset();
    Count_Init();
    Count_Draw();
    Count_Draw();
    Count_Adjust();
    Count_Clear();
    const Widget_Counters counters = Widget_Counters_Get();
    EXPECT_EQ(counters.inits, 1U);
    EXPECT_EQ(counters.draws, 2U);
    EXPECT_EQ(counters.adjusts, 1U);
    EXPECT_EQ(counters.clears, 1U);
    Widget_Counters_Reset();
    EXPECT_EQ(Widget_Counters_Get().draws, 0U);
}
