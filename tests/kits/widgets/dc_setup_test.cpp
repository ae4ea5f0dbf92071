#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/kit_common.h"
#include "host/kit_widgets.h"
#include "kits/common/messages.h"
#include "kits/widgets/device.h"
#include "tests/kits/widgets/test_window.h"

namespace {

struct Message {
    HWND window;
    int level;
    std::string text;
};

/** Keeps every message while it lives. */
class Message_Log {
  public:
    Message_Log() { Message_Receiver_Add(Receive, this, true); }
    ~Message_Log() { Message_Receiver_Remove(Receive, this); }
    Message_Log(const Message_Log&) = delete;
    Message_Log& operator=(const Message_Log&) = delete;
    std::vector<Message> messages;

  private:
    static void Receive(void* context, HWND window, int level, const char* text) {
        static_cast<Message_Log*>(context)->messages.push_back({window, level, text});
    }
};

}  // namespace

TEST(Y_Setup, up_maps_client_row_7_of_100_to_row_92) {
    const Test_Window window(50, 100, Window_Axis::Up);
    HDC dc = Y_setup(window.Get(), "test");
    ASSERT_NE(dc, nullptr);
    EXPECT_EQ(Dc_To_Device(dc, {4, 92}), (Point{4, 7}));
    EXPECT_EQ(Dc_To_Device(dc, {0, 0}), (Point{0, 99}));
    EXPECT_EQ(Y_release(window.Get(), dc), 1);
}

TEST(Y_Setup, down_maps_rows_to_themselves) {
    const Test_Window window(50, 100, Window_Axis::Down);
    HDC dc = Y_setup(window.Get(), "test");
    ASSERT_NE(dc, nullptr);
    EXPECT_EQ(Dc_To_Device(dc, {4, 92}), (Point{4, 92}));
    EXPECT_EQ(Y_release(window.Get(), dc), 1);
}

TEST(Y_Setup, takes_the_client_height_afresh) {
    Test_Window window(50, 100, Window_Axis::Up);
    window.Resize(50, 30);
    HDC dc = Y_setup(window.Get(), "test");
    EXPECT_EQ(Dc_To_Device(dc, {0, 0}), (Point{0, 29}));
    Y_release(window.Get(), dc);
}

TEST(Y_Setup, nests_and_restores_the_globals) {
    const Test_Window outer(50, 100, Window_Axis::Up);
    const Test_Window inner(50, 60, Window_Axis::Down);
    EXPECT_EQ(Y_Window, nullptr);
    HDC outer_dc = Y_setup(outer.Get(), "outer");
    EXPECT_EQ(Y_Window, outer.Get());
    EXPECT_EQ(Y_DC, outer_dc);
    HDC inner_dc = Y_setup(inner.Get(), "inner");
    EXPECT_EQ(Y_Window, inner.Get());
    EXPECT_EQ(Y_DC, inner_dc);
    HDC same_window = Y_setup(inner.Get(), "again");
    EXPECT_EQ(Y_release(inner.Get(), same_window), 1);
    EXPECT_EQ(Y_release(inner.Get(), inner_dc), 1);
    EXPECT_EQ(Y_Window, outer.Get());
    EXPECT_EQ(Y_DC, outer_dc);
    EXPECT_EQ(Dc_To_Device(outer_dc, {0, 0}), (Point{0, 99}));
    EXPECT_EQ(Y_release(outer.Get(), outer_dc), 1);
    EXPECT_EQ(Y_Window, nullptr);
    EXPECT_EQ(Y_DC, nullptr);
}

TEST(Y_Setup, failure_is_reported_with_the_label_and_leaves_the_globals) {
    const Test_Window main_window(20, 20, Window_Axis::Up);
    hwnd = main_window.Get();
    const Message_Log log;
    EXPECT_EQ(Y_setup(nullptr, "tool_db_fct: DB_List_Draw"), nullptr);
    hwnd = nullptr;
    ASSERT_EQ(log.messages.size(), 1U);
    EXPECT_EQ(log.messages[0].level, 16);
    EXPECT_EQ(log.messages[0].text, "Y_setup(tool_db_fct: DB_List_Draw) GetDC failed");
    EXPECT_EQ(log.messages[0].window, main_window.Get());
    EXPECT_EQ(Y_Window, nullptr);
    EXPECT_EQ(Y_DC, nullptr);
}

TEST(Y_Release, of_something_else_is_reported) {
    const Test_Window window(50, 100, Window_Axis::Up);
    const Test_Window main_window(20, 20, Window_Axis::Up);
    hwnd = main_window.Get();
    const Message_Log log;
    EXPECT_EQ(Y_release(window.Get(), nullptr), 0);
    ASSERT_EQ(log.messages.size(), 1U);
    EXPECT_EQ(log.messages[0].level, 16);
    EXPECT_EQ(log.messages[0].text, "Y_release() Failed!");
    EXPECT_EQ(log.messages[0].window, main_window.Get()) << "of the host, not of the box";
    hwnd = nullptr;
    HDC dc = Y_setup(window.Get(), "test");
    EXPECT_EQ(Y_release(nullptr, dc), 0);
    EXPECT_EQ(Y_DC, dc);
    EXPECT_EQ(Y_release(window.Get(), dc), 1);
}

TEST(Y_Setup, draws_into_the_back_buffer_while_there_is_one) {
    const Test_Window window(50, 100, Window_Axis::Up);
    Window_Buffer_Begin(window.Get());
    HDC dc = Y_setup(window.Get(), "test");
    EXPECT_EQ(Dc_To_Device(dc, {4, 92}), (Point{4, 7}));
    const std::vector<std::uint32_t> red(5 * 5, 0xFFFF0000U);
    Dc_Blend(dc, {10, 10, 5, 5}, red.data());
    EXPECT_EQ(Y_release(window.Get(), dc), 1);
    EXPECT_EQ(window.Read().At(12, 12), Test_Window::MARKER);
    Window_Buffer_End(window.Get());
    EXPECT_EQ(window.Read().At(12, 12), 0xFF0000U);
    EXPECT_EQ(window.Read().At(9, 12), Test_Window::MARKER);
}

TEST(Y_CreateFont, refuses_sizes_without_meaning) {
    EXPECT_EQ(Y_Create_Font(nullptr, "Arial", "", 0), nullptr);
    EXPECT_EQ(Y_Create_Font(nullptr, "Arial", "", -4), nullptr);
    EXPECT_EQ(Y_Create_Font(nullptr, "Arial", "", 100000), nullptr);
}
