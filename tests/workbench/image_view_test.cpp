// What the image's window tells of the voxel under a mouse at rest.
#include "workbench/image_view.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

#include "tests/support/import_hook.h"

using namespace workbench;

namespace {

constexpr int SIDE = 100;                 // voxels of the slice
constexpr RECT PLACE = {0, 0, 416, 400};  // four screen pixels for each, and room for the slider
constexpr POINT POINTER = {303, 101};

/** What the view is told, and what it tells. */
class Image_Watcher : public Image_User {
  public:
    Image_Content Content() const override {
        Image_Content content;
        content.source = {SIDE, SIDE, levels, false, 1.0F, 0.0F, tags, false};
        content.slice = slice;
        content.slice_nb = 9;
        return content;
    }
    void Slice_Go(int wanted) override { slice = wanted; }
    Pixel_Rect Tool_Press(const Slice_Point&, Tool_Hand) override { return {}; }
    Pixel_Rect Tool_Move(const Slice_Point&) override { return {}; }
    void Tool_Release() override {}
    Brush_Footprint Tool_Outline(const Slice_Point&) const override { return {}; }
    std::vector<Shown_Path> Tool_Paths() const override { return {}; }
    void Pick(int, int) override {}
    void Hover(int x, int y) override {
        ++told;
        over = {x, y};
    }
    void Hover_End() override { over = {-1, -1}; }
    void Cross_Move(int x, int y) override { cross = {x, y}; }
    void Window_Drag(float, float) override {}

    int told = 0;
    POINT over = {-1, -1};
    POINT cross = {-1, -1};
    int slice = 3;

  private:
    std::vector<std::int32_t> levels = std::vector<std::int32_t>(std::size_t{SIDE} * SIDE, 5);
    std::vector<std::uint8_t> tags = std::vector<std::uint8_t>(std::size_t{SIDE} * SIDE);
};

/** A window that holds the view. */
class View_Holder : public Window_Base {
  public:
    View_Holder() { Create(nullptr, WS_POPUP | WS_VISIBLE, L"holder"); }
};

POINT pointer_now;  // on the screen
BOOL WINAPI Cursor_Pos(POINT* point) {
    *point = pointer_now;
    return TRUE;
}

class Image_Rest : public ::testing::Test {
  protected:
    void SetUp() override {
        ASSERT_TRUE(hook.Is_Set());
        ASSERT_TRUE(view.Make(holder.Handle()));
        view.Place(PLACE);
        view.Refresh();
        pointer_now = POINTER;
        ::ClientToScreen(view.Handle(), &pointer_now);
        ::SendMessageW(view.Handle(), WM_MOUSEMOVE, 0, MAKELPARAM(POINTER.x, POINTER.y));
        Expect_Told(1);
    }
    /** The voxel that stands under the pointer was told, and nothing else after it. */
    void Expect_Told(int least) {
        EXPECT_GE(user.told, least);
        const Slice_Point at = view.Layout().To_Slice(POINTER.x, POINTER.y);
        EXPECT_EQ(user.over.x, static_cast<LONG>(std::floor(at.x)));
        EXPECT_EQ(user.over.y, static_cast<LONG>(std::floor(at.y)));
        user.told = 0;
    }
    const Import_Hook hook{"", "user32.dll", "GetCursorPos", reinterpret_cast<void*>(&Cursor_Pos)};
    const Look look;
    Image_Watcher user;
    const View_Holder holder;
    Image_View view{look, user};
};

TEST_F(Image_Rest, is_told_the_voxel_under_it_when_the_zoom_changes) {
    const POINT before = user.over;
    view.Zoom_Set(1.0);
    Expect_Told(1);
    EXPECT_NE(user.over.x, before.x) << "the picture shrank below the pointer";
}

TEST_F(Image_Rest, is_told_the_voxel_that_the_wheel_keeps_under_it) {
    const POINT before = user.over;
    view.Wheel(4 * WHEEL_DELTA, true, pointer_now);
    Expect_Told(1);
    EXPECT_EQ(user.over.x, before.x);
    EXPECT_EQ(user.over.y, before.y);
    view.Wheel(-2 * WHEEL_DELTA, true, pointer_now);
    Expect_Told(1);
}

TEST_F(Image_Rest, is_told_the_voxel_under_it_when_the_window_grows) {
    const POINT before = user.over;
    view.Place({0, 0, 816, 800});
    Expect_Told(1);
    EXPECT_NE(user.over.x, before.x);
}

TEST_F(Image_Rest, is_told_anew_when_another_slice_is_shown) {
    ++user.slice;
    view.Refresh();
    Expect_Told(1);
}

TEST_F(Image_Rest, takes_the_cross_hair_along_with_control_and_shift) {
    ::SendMessageW(view.Handle(), WM_LBUTTONDOWN, MK_LBUTTON | MK_CONTROL | MK_SHIFT, MAKELPARAM(POINTER.x, POINTER.y));
    EXPECT_EQ(user.cross.x, user.over.x);
    EXPECT_EQ(user.cross.y, user.over.y);
    ::SendMessageW(view.Handle(), WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(2, 398));
    EXPECT_EQ(user.cross.x, 0);
    EXPECT_EQ(user.cross.y, SIDE - 1);
    ::SendMessageW(view.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(2, 398));
    ::SendMessageW(view.Handle(), WM_MOUSEMOVE, 0, MAKELPARAM(POINTER.x, POINTER.y));
    EXPECT_EQ(user.cross.x, 0) << "the button is up";
    // With Shift alone the image is moved, with Control alone a TAG is picked.
    ::SendMessageW(view.Handle(), WM_LBUTTONDOWN, MK_LBUTTON | MK_SHIFT, MAKELPARAM(POINTER.x, POINTER.y));
    ::SendMessageW(view.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(POINTER.x, POINTER.y));
    EXPECT_EQ(user.cross.x, 0);
}

}  // namespace
