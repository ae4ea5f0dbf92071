#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

#include "host/kit_widgets.h"
#include "kits/common/messages.h"
#include "kits/common/text_conversion.h"
#include "kits/dataset/dataset_host.h"
#include "kits/widgets/icons.h"
#include "tests/kits/widgets/test_window.h"

namespace {

constexpr int ICON_SIZE = 16;

/** A 16 x 16 icon file in the present folder: white, opaque, its upper left pixel red; gone at the end. */
class Icon_File {
  public:
    explicit Icon_File(const char* name) : path(name) {
        std::vector<unsigned char> bytes(18, 0);
        bytes[2] = 2;
        bytes[12] = bytes[14] = ICON_SIZE;
        bytes[16] = 32;
        bytes[17] = 0x28;
        bytes.resize(18 + ICON_SIZE * ICON_SIZE * 4, 255);
        bytes[18] = bytes[19] = 0;
        std::FILE* file = std::fopen(path.c_str(), "wb");
        std::fwrite(bytes.data(), 1, bytes.size(), file);
        std::fclose(file);
    }
    ~Icon_File() { std::remove(path.c_str()); }
    Icon_File(const Icon_File&) = delete;
    Icon_File& operator=(const Icon_File&) = delete;

  private:
    std::string path;
};

class Icons_Test : public testing::TestWithParam<Window_Axis> {
  protected:
    Test_Window window{60, 50, GetParam()};
    Boxs box;
    void SetUp() override {
        box.Init(window.Get());
        Variable_Define_Text("$DEFAULT_ICON_PATH", ".");
    }
    void TearDown() override { Variable_Undefine("$DEFAULT_ICON_PATH"); }
    int Device_Row(int y) const { return GetParam() == Window_Axis::Up ? 49 - y : y; }
};

}  // namespace

TEST_P(Icons_Test, stands_with_its_left_edge_at_x_and_its_middle_line_at_y) {
    const Icon_File file("icon test middle.tga");
    HDC dc = Y_setup(window.Get(), "test");
    Icon_Draw_Image(box, 7, 20, "program", "icon test middle.tga");
    Y_release(window.Get(), dc);
    const Window_Picture picture = window.Read();
    const int top = Device_Row(20) - ICON_SIZE / 2;
    for (int y = 0; y < 50; y++) {
        for (int x = 0; x < 60; x++) {
            const bool inside = Rect{7, top, ICON_SIZE, ICON_SIZE}.Has_Point({x, y});
            const std::uint32_t expected = !inside ? Test_Window::MARKER : x == 7 && y == top ? 0xFF0000U : 0xFFFFFFU;
            ASSERT_EQ(picture.At(x, y), expected) << x << "," << y;
        }
    }
}

TEST_P(Icons_Test, tools_icon_is_tinted_and_needs_no_set_up) {
    const Icon_File file("icon test tint.tga");
    box.Icon("icon test tint.tga", 230, 100, 50, 7, 20);
    EXPECT_EQ(window.Read().At(15, Device_Row(20)), 0xE66432U);
    EXPECT_EQ(Y_DC, nullptr);
}

TEST_P(Icons_Test, is_found_beside_the_program_too) {
    const Icon_File file("icon test program.tga");
    Variable_Undefine("$DEFAULT_ICON_PATH");
    Icon_Draw_Image(box, 7, 20, "./program.exe", "icon test program.tga");
    EXPECT_EQ(window.Read().At(15, Device_Row(20)), 0xFFFFFFU);
}

TEST_P(Icons_Test, leaf_line_goes_up_and_right_and_on_only_to_a_sibling) {
    HDC dc = Y_setup(window.Get(), "test");
    Icon_Lead_Leaf(box, 0, 10, 30, 11, 29);
    Icon_Lead_Leaf(box, 1, 30, 50, 11, 29);
    Y_release(window.Get(), dc);
    const Window_Picture picture = window.Read();
    const int middle = Device_Row(20);
    const auto ink = [&](int x, int y) { return picture.At(x, y) != Test_Window::MARKER; };
    EXPECT_TRUE(ink(17, middle));
    EXPECT_TRUE(ink(29, middle));
    EXPECT_FALSE(ink(16, middle));
    EXPECT_TRUE(ink(17, middle - 8));  // upwards, in the visual sense
    EXPECT_FALSE(ink(17, middle + 1));
    EXPECT_TRUE(ink(37, middle + 8));
    EXPECT_FALSE(ink(17, middle + 10));
    EXPECT_FALSE(ink(17, middle - 10));
}

INSTANTIATE_TEST_SUITE_P(Both_Axes, Icons_Test, testing::Values(Window_Axis::Up, Window_Axis::Down),
                         [](const auto& axis) { return axis.param == Window_Axis::Up ? "Up" : "Down"; });

TEST(Icons, a_file_stands_in_its_folder_or_beside_the_program) {
    EXPECT_EQ(Icon_Path("", "a.tga"), "a.tga");
    EXPECT_EQ(Icon_Path("icons", "a.tga"), "icons/a.tga");
    EXPECT_EQ(Icon_Path("icons/", "a.tga"), "icons/a.tga");
    EXPECT_EQ(Icon_Path("icons\\", "a.tga"), "icons\\a.tga");
    EXPECT_EQ(Icon_Program_Folder("program.exe"), "");
    EXPECT_EQ(Icon_Program_Folder("C:\\tools/bin\\program.exe"), "C:\\tools/bin\\");
    EXPECT_EQ(Icon_Program_Folder("tools/program.exe"), "tools/");
}

#if defined(_WIN32)
TEST(Icons, the_second_byte_of_a_character_is_no_separator) {
    constexpr unsigned int japanese = 932;
    Code_Page_Set(japanese);
    EXPECT_EQ(Icon_Path("\x83\x5C", "a.tga"), "\x83\x5C/a.tga");
    EXPECT_EQ(Icon_Path("\x83\x5C\\", "a.tga"), "\x83\x5C\\a.tga");
    EXPECT_EQ(Icon_Program_Folder("tools\\\x83\x5C.exe"), "tools\\");
    EXPECT_EQ(Icon_Program_Folder("\x83\x5C.exe"), "");
    Code_Page_Set(0);
}
#endif

TEST(Icons, unknown_file_draws_nothing_without_a_message) {
    const Test_Window window(60, 50, Window_Axis::Up);
    Boxs box;
    box.Init(window.Get());
    static int messages = 0;
    const auto count = [](void*, HWND, int, const char*) { messages++; };
    Message_Receiver_Add(count, nullptr, true);
    Icon_Draw_Image(box, 7, 20, "program", "there is no such icon.tga");
    Icon_Draw_Image(box, 7, 20, nullptr, nullptr);
    Icon_Draw_Image(box, 7, 20, "", "");
    Message_Receiver_Remove(count, nullptr);
    EXPECT_EQ(messages, 0);
    for (const std::uint32_t pixel : window.Read().pixels) {
        ASSERT_EQ(pixel, Test_Window::MARKER);
    }
}

TEST(Icons, lead_cells_of_every_kind_differ_and_empty_ones_draw_nothing) {
    std::vector<Window_Picture> pictures;
    using Lead = void (*)(const Boxs&, int, int, int, int, int);
    for (const Lead lead : {Icon_Lead_Expand, Icon_Lead_Collapse, Icon_Lead_Leaf, Icon_Lead_No_Access}) {
        for (const int flag : {0, 1}) {
            const Test_Window window(60, 50, Window_Axis::Up);
            Boxs box;
            box.Init(window.Get());
            lead(box, flag, 10, 10, 5, 25);
            lead(box, flag, 10, 30, 25, 5);
            EXPECT_EQ(window.Read().At(15, 30), Test_Window::MARKER);
            lead(box, flag, 10, 30, 11, 29);
            pictures.push_back(window.Read());
        }
    }
    for (std::size_t i = 0; i < pictures.size(); i++) {
        for (std::size_t j = 0; j < i; j++) {
            EXPECT_NE(pictures[i], pictures[j]) << i << " " << j;
        }
    }
}
