// The enlarged window by its messages: zoom, pan, selectors, life. Pens, fingers, export and the long random session
// have their own files.
#include "histogram/tool_histo_blow.h"

#include <cmath>

#include "histogram/blow_place.h"
#include "host/kit_graph.h"
#include "tests/histogram/blow_stage.h"
#include "tests/support/import_hook.h"

namespace {

using Lines_Of = std::vector<std::string>;
using Blow_Window = Blow_Stage;

float Level_At(int x) {
    const Blow_View& view = histo_blow.view;
    return view.X().at.origin + static_cast<float>(x - histo_blow.area.x) * view.X().at.scale;
}
float Count_At(int y) {
    const Blow_View& view = histo_blow.view;
    return view.Y().at.origin + static_cast<float>(y - histo_blow.area.y) * view.Y().at.scale;
}

}  // namespace

// ---------------- opening

TEST_F(Blow_Window, opens_unzoomed_with_everything_laid_out) {
    Open();
    ASSERT_NE(Window(), nullptr);
    EXPECT_EQ(histo_blow.panel, &*panel);
    EXPECT_EQ(histo_blow.width, CLIENT_WIDTH);
    EXPECT_EQ(histo_blow.height, CLIENT_HEIGHT);
    EXPECT_FALSE(histo_blow.view.Is_Zoomed());
    EXPECT_FALSE(histo_blow.dragging);
    EXPECT_EQ(histo_blow.frame_width, ::GetSystemMetrics(SM_CXFRAME) + 4);
    EXPECT_EQ(histo_blow.frame_height, ::GetSystemMetrics(SM_CYFRAME) + 4);
    EXPECT_EQ(histo_blow.caption_height, ::GetSystemMetrics(SM_CYCAPTION));
    EXPECT_NE(::IsWindowVisible(Window()), 0);
    EXPECT_NE(::IsWindowEnabled(Window()), 0);

    const Boxs& plot = histo_blow.plot;
    EXPECT_EQ(plot.x, 1);
    EXPECT_EQ(plot.y, 1);
    EXPECT_EQ(plot.width, CLIENT_WIDTH - 2);
    EXPECT_EQ(plot.height, CLIENT_HEIGHT - 2);
    EXPECT_EQ(plot.border, 2);
    const Buttons& reset = histo_blow.reset_button;
    EXPECT_EQ(reset.x, 1 + SPACE_PIXELS);
    EXPECT_EQ(reset.y + reset.height, CLIENT_HEIGHT - 1 - SPACE_PIXELS) << "one space below the box's upper edge";
    EXPECT_EQ(reset.width, (CLIENT_WIDTH - 2 - 3 * SPACE_PIXELS) / 2);
    EXPECT_EQ(reset.height, BUTTON_HEIGHT);
    EXPECT_EQ(histo_blow.export_button.x, reset.x + reset.width + SPACE_PIXELS);
    EXPECT_EQ(histo_blow.export_button.width, reset.width);
    EXPECT_STREQ(reset.name, "Reset Zoom");
    EXPECT_STREQ(histo_blow.export_button.name, "Export");
    EXPECT_STREQ(histo_blow.tag_select.name, "Display TAG      ");
    EXPECT_STREQ(histo_blow.cursor_select.name, "Display Cursor ");
    EXPECT_EQ(histo_blow.tag_select.y + histo_blow.tag_select.height, reset.y - SPACE_PIXELS);
    EXPECT_LE(histo_blow.area.y + histo_blow.area.height, histo_blow.tag_select.y) << "nothing under the controls";
}

TEST_F(Blow_Window, the_full_view_is_all_bins_and_a_margin) {
    Open();
    const Blow_View& view = histo_blow.view;
    const float span = 99.0F * 2.0F;  // 100 bins of 2 from 10
    EXPECT_FLOAT_EQ(view.Visible_X().start, 10.0F - 0.05F * span);
    EXPECT_FLOAT_EQ(view.Visible_X().end, 10.0F + 1.05F * span);
    EXPECT_FLOAT_EQ(view.Visible_Y().start, -100.0F);
    EXPECT_FLOAT_EQ(view.Visible_Y().end, 1100.0F);
}

TEST_F(Blow_Window, opened_before_the_first_histogram_it_makes_room_for_the_titles_when_they_come) {
    Press_Blow(*panel);
    Client_Size_Set(CLIENT_WIDTH, CLIENT_HEIGHT);
    Settle();
    const Pixel_Rectangle untitled = histo_blow.area;
    Give_Record(*panel);
    std::snprintf(panel->x_label, sizeof panel->x_label, "Pixel Intensity");
    std::snprintf(panel->y_label, sizeof panel->y_label, "Nb of Pixels");
    Send(DATA);
    const Pixel_Rectangle titled = histo_blow.area;
    const Plot_Area wanted =
        Plot_Window_Area(histo_blow.plot, "Pixel Intensity", "Nb of Pixels",
                         histo_blow.plot.y + histo_blow.plot.height - histo_blow.tag_select.y + SPACE_PIXELS);
    EXPECT_EQ(titled.y, wanted.bottom);
    EXPECT_EQ(titled.height, wanted.height);
    EXPECT_GT(titled.y, untitled.y);
    EXPECT_EQ(histo_blow.view.Y().pixels, titled.height) << "the view follows";
    Send(WM_SIZE, 0, MAKELPARAM(CLIENT_WIDTH, CLIENT_HEIGHT));
    EXPECT_EQ(histo_blow.area.y, titled.y) << "and jumps no more";
    panel->x_label[0] = panel->y_label[0] = 0;
    Send(DATA);
    EXPECT_EQ(histo_blow.area.y, untitled.y) << "titles that go";
}

TEST_F(Blow_Window, a_press_on_blow_restores_a_minimised_window) {
    Open();
    ::ShowWindow(Window(), SW_MINIMIZE);
    ASSERT_NE(::IsIconic(Window()), 0);
    Press_Blow(*panel);
    EXPECT_EQ(::IsIconic(Window()), 0);
    EXPECT_NE(::IsWindowVisible(Window()), 0);
}

namespace {

Blow_Place Stands() {
    RECT box = {};
    ::GetWindowRect(histo_blow.window, &box);
    return {box.left, box.top, box.right - box.left, box.bottom - box.top};
}

/** A host that names an owner and a place. */
class Placed_Blow_Window : public Blow_Stage {
  protected:
    Placed_Blow_Window() {
        kept = static_cast<std::int32_t*>(Variable_Define_Array("$HISTO_WINDOW_PLACE", VARIABLE_SIGNED_32, 4));
        Variable_Define_Pointer("$HISTO_WINDOW_OWNER", stage.Window());
        RECT work = {};
        ::SystemParametersInfoA(SPI_GETWORKAREA, 0, &work, 0);
        screen = {work.left, work.top, work.right - work.left, work.bottom - work.top};
    }
    ~Placed_Blow_Window() override {
        panel.reset();
        Variable_Undefine("$HISTO_WINDOW_PLACE");
        Variable_Undefine("$HISTO_WINDOW_OWNER");
    }
    Blow_Place Kept() const { return {kept[0], kept[1], kept[2], kept[3]}; }
    void Keep(const Blow_Place& place) const {
        kept[0] = place.left;
        kept[1] = place.top;
        kept[2] = place.width;
        kept[3] = place.height;
    }

    std::int32_t* kept = nullptr;
    Blow_Place screen;
};

}  // namespace

TEST_F(Blow_Window, without_an_owner_and_a_place_it_has_its_first_size_and_belongs_to_nobody) {
    Press_Blow(*panel);
    EXPECT_EQ(Stands().width, 800);
    EXPECT_EQ(Stands().height, 400);
    EXPECT_EQ(::GetWindow(Window(), GW_OWNER), nullptr);
}

TEST_F(Placed_Blow_Window, opens_beside_the_owner_that_the_host_names) {
    RECT box = {};
    ::GetWindowRect(stage.Window(), &box);
    Press_Blow(*panel);
    EXPECT_EQ(::GetWindow(Window(), GW_OWNER), stage.Window());
    const Blow_Place owner = {box.left, box.top, box.right - box.left, box.bottom - box.top};
    EXPECT_EQ(Stands(), Blow_Place_Beside(owner, screen));
    EXPECT_EQ(Kept(), Stands()) << "the host knows at once";
}

TEST_F(Placed_Blow_Window, comes_back_where_it_stood_last) {
    Press_Blow(*panel);
    ::SetWindowPos(Window(), nullptr, 37, 23, 640, 333, SWP_NOZORDER);
    EXPECT_EQ(Kept(), (Blow_Place{37, 23, 640, 333}));
    Send(WM_CLOSE);
    Press_Blow(*panel);
    EXPECT_EQ(Stands(), (Blow_Place{37, 23, 640, 333}));
}

TEST_F(Placed_Blow_Window, the_smallest_and_the_largest_window_are_no_place) {
    Keep({40, 30, 600, 300});
    Press_Blow(*panel);
    ::ShowWindow(Window(), SW_MAXIMIZE);
    EXPECT_EQ(Kept(), (Blow_Place{40, 30, 600, 300}));
    ::ShowWindow(Window(), SW_MINIMIZE);
    EXPECT_EQ(Kept(), (Blow_Place{40, 30, 600, 300}));
}

TEST_F(Placed_Blow_Window, a_place_on_a_screen_that_is_gone_is_moved_onto_one_that_is_there) {
    Keep({screen.left + screen.width + 5000, -7000, 600, 300});
    Press_Blow(*panel);
    EXPECT_EQ(Stands(), (Blow_Place{screen.left + screen.width - 600, screen.top, 600, 300}));
}

TEST_F(Placed_Blow_Window, opens_without_an_owner_when_that_is_gone) {
    const HWND gone = ::CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    ::DestroyWindow(gone);
    Variable_Define_Pointer("$HISTO_WINDOW_OWNER", gone);
    Press_Blow(*panel);
    ASSERT_NE(Window(), nullptr);
    EXPECT_EQ(::GetWindow(Window(), GW_OWNER), nullptr);
}

TEST_F(Placed_Blow_Window, ends_with_its_owner_and_can_be_opened_again) {
    const HWND owner = ::CreateWindowExA(0, "STATIC", "", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr);
    Variable_Define_Pointer("$HISTO_WINDOW_OWNER", owner);
    Open();
    ::DestroyWindow(owner);
    EXPECT_EQ(Window(), nullptr);
    EXPECT_EQ(panel->blow_button.current, 0);
    Press_Blow(*panel);
    EXPECT_NE(Window(), nullptr);
}

TEST_F(Placed_Blow_Window, a_place_of_too_few_numbers_or_another_type_is_not_used) {
    Variable_Define_Pointer("$HISTO_WINDOW_OWNER", nullptr);
    const auto* three = static_cast<std::int32_t*>(Variable_Define_Array("$HISTO_WINDOW_PLACE", VARIABLE_SIGNED_32, 3));
    Press_Blow(*panel);
    EXPECT_EQ(three[2], 0);
    Send(WM_CLOSE);
    const auto* floats = static_cast<float*>(Variable_Define_Array("$HISTO_WINDOW_PLACE", VARIABLE_FLOAT, 4));
    Press_Blow(*panel);
    EXPECT_EQ(Stands().width, 800);
    EXPECT_EQ(floats[2], 0.0F);
}

namespace {

struct Axis_Call {
    char axis = 0;
    Boxs box;
    std::string title;
    Blow_Range range;
};
std::vector<Axis_Call> axis_calls;

int Axis_X(HDC, const Boxs& box, const Plot_Area&, const char* title, float from, float to) {
    axis_calls.push_back({'x', box, title, {from, to}});
    return 1;
}
int Axis_Y(HDC, const Boxs& box, const Plot_Area&, const char* title, float from, float to) {
    axis_calls.push_back({'y', box, title, {from, to}});
    return 1;
}

}  // namespace

TEST_F(Blow_Window, axes_get_the_plot_box_as_laid_out_and_are_asked_for_whatever_the_counts_are) {
    Open();
    const Import_Hook hook_x("", "Kit_Graph.dll", "_Z18Plot_Window_Axes_XP5HDC__RK4BoxsRK9Plot_AreaPKcff",
                             reinterpret_cast<void*>(Axis_X));
    const Import_Hook hook_y("", "Kit_Graph.dll", "_Z18Plot_Window_Axes_YP5HDC__RK4BoxsRK9Plot_AreaPKcff",
                             reinterpret_cast<void*>(Axis_Y));
    ASSERT_TRUE(hook_x.Is_Set() && hook_y.Is_Set());
    const std::vector<std::uint32_t> hill = {1, 5, 9, 5, 1};
    for (const auto& counts : {hill, std::vector<std::uint32_t>(5, 0), std::vector<std::uint32_t>(1, 7)}) {
        Histo_Record_Give(*panel, {10.0F, 2.0F}, counts);
        axis_calls.clear();
        Send(DATA);
        ASSERT_EQ(axis_calls.size(), 2U);
        EXPECT_EQ(axis_calls[0].axis, 'x');
        EXPECT_EQ(axis_calls[1].axis, 'y');
        for (const Axis_Call& call : axis_calls) {
            EXPECT_EQ(call.box.x, histo_blow.plot.x);
            EXPECT_EQ(call.box.y, histo_blow.plot.y);
            EXPECT_EQ(call.box.width, CLIENT_WIDTH - 2);
            EXPECT_EQ(call.box.height, CLIENT_HEIGHT - 2);
            EXPECT_EQ(call.box.font_scale, histo_blow.plot.font_scale);
        }
        EXPECT_EQ(axis_calls[0].range.start, histo_blow.view.Visible_X().start);
        EXPECT_EQ(axis_calls[1].range.end, histo_blow.view.Visible_Y().end);
    }
    panel->data->Record_Empty();
    axis_calls.clear();
    Send(DATA);
    EXPECT_TRUE(axis_calls.empty()) << "without a record nothing is plotted";
}

TEST_F(Blow_Window, closing_releases_the_button_of_the_panel) {
    Open();
    panel->Draw();
    EXPECT_EQ(panel->blow_button.current, 1);
    Widget_Counters_Reset();
    Send(WM_CLOSE);
    EXPECT_EQ(Window(), nullptr);
    EXPECT_EQ(panel->blow_button.current, 0);
    EXPECT_GT(Widget_Counters_Get().draws, 0U) << "the panel was drawn";
}

TEST_F(Blow_Window, opened_again_it_is_unzoomed_and_keeps_the_selectors) {
    Open();
    Next_On(histo_blow.tag_select);
    Zoom_Middle();
    ASSERT_TRUE(histo_blow.view.Is_Zoomed());
    Press(400, 100);
    Send(WM_CLOSE);
    held = 0;
    Open();
    EXPECT_FALSE(histo_blow.view.Is_Zoomed());
    EXPECT_FALSE(histo_blow.dragging);
    EXPECT_EQ(histo_blow.display_tag, 1);
    EXPECT_EQ(histo_blow.tag_select.current, 1);
}

TEST_F(Blow_Window, a_panel_that_goes_takes_the_window_with_it) {
    Open();
    const HWND window = Window();
    Press(400, 100);
    panel.reset();
    EXPECT_EQ(::IsWindow(window), 0);
    EXPECT_EQ(Window(), nullptr);
    EXPECT_EQ(histo_blow.panel, nullptr);
}

TEST_F(Blow_Window, two_panels_share_one_window_that_shows_the_first) {
    Open();
    auto second = std::make_unique<Tool_Histo>();
    stage.Lay_Out(*second);
    const HWND window = Window();
    Press_Blow(*second);
    EXPECT_EQ(Window(), window) << "only raised";
    EXPECT_EQ(histo_blow.panel, &*panel);
    second.reset();
    EXPECT_EQ(::IsWindow(window), 0) << "any panel's end closes it";
    EXPECT_EQ(panel->blow_button.current, 0) << "the panel that it showed was drawn";
}

// ---------------- wheel

TEST_F(Blow_Window, small_wheel_deltas_add_up_to_one_notch) {
    Open();
    Flag_Trace = 4;
    const int x = histo_blow.area.x + 100;
    const int y = histo_blow.area.y + 50;
    Wheel(40, x, y);
    Wheel(40, x, y);
    EXPECT_EQ(Lines("Scroll"), Lines_Of{});
    EXPECT_FALSE(histo_blow.view.Is_Zoomed());
    Wheel(40, x, y);
    EXPECT_EQ(Lines("Scroll"), Lines_Of{"14 Mode Histo: Histo_Blow_Scroll()"});
    EXPECT_TRUE(histo_blow.view.Is_Zoomed());
    EXPECT_EQ(histo_blow.wheel.Rest(), 0);
    for (const int delta : {-40, -40, -40}) {
        Wheel(delta, x, y);
    }
    EXPECT_EQ(Lines("Scroll").size(), 1U);
    EXPECT_EQ(histo_blow.wheel.Rest(), 0);
    Wheel(300, x, y);
    EXPECT_EQ(Lines("Scroll").size(), 1U) << "two notches at once";
    EXPECT_EQ(histo_blow.wheel.Rest(), 60);
}

TEST_F(Blow_Window, a_notch_forward_widens_about_the_pointer_and_a_notch_back_narrows) {
    Open();
    Zoom_Middle();
    const int x = histo_blow.area.x + 200;
    const int y = histo_blow.area.y + 80;
    for (const int direction : {1, -1}) {
        const float scale_x = histo_blow.view.X().at.scale;
        const float scale_y = histo_blow.view.Y().at.scale;
        const float level = Level_At(x);
        const float count = Count_At(y);
        Mark_Set();
        Wheel(120 * direction, x, y);
        const float factor = direction > 0 ? 1.1F : 0.9F;
        EXPECT_FLOAT_EQ(histo_blow.view.X().at.scale, scale_x * factor);
        EXPECT_FLOAT_EQ(histo_blow.view.Y().at.scale, scale_y * factor);
        EXPECT_NEAR(Level_At(x), level, 0.001F);
        EXPECT_NEAR(Count_At(y), count, 0.01F);
        EXPECT_TRUE(Mark_Gone()) << "redrawn";
    }
}

TEST_F(Blow_Window, the_wheel_outside_the_plot_box_zooms_nothing) {
    Open();
    Wheel(-120, 0, 200);
    EXPECT_FALSE(histo_blow.view.Is_Zoomed());
    Wheel(-120, 400, -20);  // below the window: counts as y 0
    EXPECT_FALSE(histo_blow.view.Is_Zoomed());
    Wheel(-120, 1, 1);
    EXPECT_TRUE(histo_blow.view.Is_Zoomed()) << "the box's first pixel";
}

TEST_F(Blow_Window, the_wheel_turns_the_selector_under_it_against_its_direction) {
    Open();
    const auto over = [](const Selects& select, int delta) {
        Wheel(delta, select.x + select.width / 2, select.y + select.height / 2);
    };
    over(histo_blow.tag_select, -120);
    EXPECT_EQ(histo_blow.display_tag, 1);
    EXPECT_EQ(histo_blow.tag_select.current, 1);
    EXPECT_EQ(histo_blow.display_cursor, 0);
    over(histo_blow.tag_select, 120);
    EXPECT_EQ(histo_blow.display_tag, 0);
    over(histo_blow.cursor_select, -120);
    EXPECT_EQ(histo_blow.display_cursor, 1);
    EXPECT_TRUE(histo_blow.view.Is_Zoomed()) << "the selectors lie on the plot box, which zooms too";
}

TEST_F(Blow_Window, a_wheel_click_for_the_cursor_leaves_the_repaint_to_the_next_motion) {
    Open();
    panel->data->Record_Empty();  // without data the zoom does not redraw either
    Send(DATA);
    for (Selects* select : {&histo_blow.cursor_select, &histo_blow.tag_select}) {
        Mark_Set();
        Wheel(-120, select->x + select->width / 2, select->y + select->height / 2);
        EXPECT_EQ(Mark_Gone(), select == &histo_blow.tag_select);
    }
}

// ---------------- drag

TEST_F(Blow_Window, a_drag_zooms_to_its_rectangle_and_reports_the_view) {
    Open();
    const Pixel_Rectangle area = histo_blow.area;
    const float full = histo_blow.view.X().at.scale;
    const float full_y = histo_blow.view.Y().at.scale;
    const float left = Level_At(area.x + 100);
    const float bottom = Count_At(area.y + 30);
    Mark_Set();
    Drag(area.x + 300, area.y + 90, area.x + 100, area.y + 30);
    EXPECT_TRUE(histo_blow.view.Is_Zoomed());
    EXPECT_FLOAT_EQ(histo_blow.view.X().at.origin, left);
    EXPECT_FLOAT_EQ(histo_blow.view.Y().at.origin, bottom);
    EXPECT_FLOAT_EQ(histo_blow.view.X().at.scale, full * 200.0F / static_cast<float>(area.width));
    EXPECT_FLOAT_EQ(histo_blow.view.Y().at.scale, full_y * 60.0F / static_cast<float>(area.height));
    EXPECT_TRUE(Mark_Gone());
    char expected[200];
    std::snprintf(expected, sizeof expected, "11 org: %.2f/%.2f  scale: %.2f/%.2f",
                  static_cast<double>(histo_blow.view.X().at.origin),
                  static_cast<double>(histo_blow.view.Y().at.origin), static_cast<double>(histo_blow.view.X().at.scale),
                  static_cast<double>(histo_blow.view.Y().at.scale));
    EXPECT_EQ(Lines("org:"), Lines_Of{expected});
}

TEST_F(Blow_Window, a_drag_below_ten_pixels_in_one_direction_does_not_zoom) {
    Open();
    const Pixel_Rectangle area = histo_blow.area;
    const auto drag_by = [&](int dx, int dy) {
        Drag(area.x + 20, area.y + 20, area.x + 20 + dx, area.y + 20 + dy);
        return histo_blow.view.Is_Zoomed();
    };
    EXPECT_FALSE(drag_by(300, 9));
    EXPECT_FALSE(drag_by(9, 100));
    EXPECT_FALSE(histo_blow.dragging);
    EXPECT_EQ(Lines("org:"), Lines_Of{});
    EXPECT_TRUE(drag_by(10, 10));
}

TEST_F(Blow_Window, the_corners_follow_only_inside_the_plot_box) {
    Open();
    Press(200, 100);
    EXPECT_TRUE(histo_blow.dragging);
    EXPECT_EQ(histo_blow.drag.x_end, 200);
    EXPECT_EQ(histo_blow.drag.y_end, 100);
    Move(300, 150);
    Move(-40, 150);
    Move(300, CLIENT_HEIGHT + 7);
    EXPECT_EQ(histo_blow.drag.x_end, 300);
    EXPECT_EQ(histo_blow.drag.y_end, 150);
    EXPECT_EQ(::GetCapture(), Window()) << "the release may come outside";
    Release(-40, 150);
    EXPECT_FALSE(histo_blow.dragging);
    EXPECT_TRUE(histo_blow.view.Is_Zoomed());
    EXPECT_EQ(::GetCapture(), nullptr);
}

TEST_F(Blow_Window, a_drag_that_loses_the_mouse_is_dropped) {
    Open();
    const auto picture = [] { return Panel_Window_Read(Window(), CLIENT_WIDTH, CLIENT_HEIGHT); };
    const auto before = picture();
    Press(200, 100);
    Move(400, 200);
    ::SetCapture(stage.Window());
    EXPECT_FALSE(histo_blow.dragging);
    EXPECT_EQ(picture(), before) << "erased";
    ::ReleaseCapture();
    Release(400, 200);
    EXPECT_FALSE(histo_blow.view.Is_Zoomed());
}

TEST_F(Blow_Window, a_second_press_without_a_release_keeps_the_drag) {
    Open();
    Press(200, 100);
    Move(250, 120);
    Press(300, 130);
    EXPECT_TRUE(histo_blow.dragging) << "the window took the mouse from itself";
    EXPECT_EQ(histo_blow.drag.x_start, 300);
    EXPECT_EQ(::GetCapture(), Window());
    Move(400, 200);
    Release(400, 200);
    EXPECT_TRUE(histo_blow.view.Is_Zoomed());
}

TEST_F(Blow_Window, a_press_outside_the_plot_box_begins_no_drag) {
    Open();
    Press(0, 100);
    EXPECT_FALSE(histo_blow.dragging);
    Release(0, 100);
}

TEST_F(Blow_Window, a_release_while_another_button_is_held_is_a_press) {
    Open();
    Press(200, 100);
    Move(400, 200);
    held |= MOUSE_RIGHT;
    Release(400, 200);
    EXPECT_TRUE(histo_blow.dragging) << "the drag begins anew there";
    EXPECT_EQ(histo_blow.drag.x_start, 400);
    EXPECT_FALSE(histo_blow.view.Is_Zoomed());
    held = 0;
    Release(500, 300);
    EXPECT_FALSE(histo_blow.dragging);
    EXPECT_FALSE(histo_blow.view.Is_Zoomed());
}

TEST_F(Blow_Window, a_press_on_a_button_begins_a_drag_too) {
    Open();
    const Selects& select = histo_blow.tag_select;
    const int x = select.x + select.width - 2;
    const int y = select.y + 2;
    Press(x, y);
    EXPECT_TRUE(histo_blow.dragging);
    Release(x, y);
    EXPECT_FALSE(histo_blow.dragging);
    EXPECT_FALSE(histo_blow.view.Is_Zoomed());
}

TEST_F(Blow_Window, a_rectangle_without_extent_leaves_no_mark) {
    Open();
    const auto picture = [] { return Panel_Window_Read(Window(), CLIENT_WIDTH, CLIENT_HEIGHT); };
    const auto before = picture();
    Press(400, 200);
    Send(DATA);
    EXPECT_EQ(picture(), before);
    Move(500, 250);
    const auto dragged = picture();
    EXPECT_NE(dragged, before) << "the rectangle is seen";
    Send(DATA);
    EXPECT_EQ(picture(), dragged) << "also after a redraw";
    Move(400, 200);
    Release(400, 200);
    EXPECT_EQ(picture(), before) << "erased";
}

TEST_F(Blow_Window, a_drag_whose_release_went_elsewhere_is_dropped_after_a_selector) {
    Open();
    const Selects& select = histo_blow.tag_select;
    Send(WM_LBUTTONDOWN, MK_LBUTTON, Client_Place(select.x + select.width - 2, select.y + 2));  // none held any more
    EXPECT_FALSE(histo_blow.dragging);
    EXPECT_EQ(histo_blow.display_tag, 1);
}

TEST_F(Blow_Window, reset_zoom_returns_to_the_full_view) {
    Open();
    const Blow_Range full_x = histo_blow.view.Visible_X();
    Zoom_Middle();
    ASSERT_TRUE(histo_blow.view.Is_Zoomed());
    const Buttons& reset = histo_blow.reset_button;
    Mark_Set();
    Press(reset.x + 5, reset.y + 5);
    EXPECT_FALSE(histo_blow.view.Is_Zoomed());
    EXPECT_FALSE(histo_blow.dragging) << "also the drag that this press began";
    EXPECT_EQ(reset.current, 0) << "released again";
    EXPECT_EQ(reset.state, 0) << "and its pressed look is gone before the mouse moves";
    EXPECT_TRUE(Mark_Gone());
    EXPECT_EQ(histo_blow.view.Visible_X().start, full_x.start);
    EXPECT_EQ(histo_blow.view.Visible_X().end, full_x.end);
    Release(reset.x + 5, reset.y + 5);
}

// ---------------- selectors

TEST_F(Blow_Window, selectors_store_their_choice_and_redraw) {
    Open();
    Mark_Set();
    Next_On(histo_blow.cursor_select);
    EXPECT_EQ(histo_blow.display_cursor, 1);
    EXPECT_TRUE(Mark_Gone());
    Next_On(histo_blow.tag_select);
    EXPECT_EQ(histo_blow.display_tag, 1);
    Mark_Set();
    Next_On(histo_blow.tag_select);
    EXPECT_EQ(histo_blow.display_tag, 1) << "there is no further choice";
    EXPECT_FALSE(Mark_Gone());
    Previous_On(histo_blow.tag_select);
    EXPECT_EQ(histo_blow.display_tag, 0);
}

TEST_F(Blow_Window, a_drop_list_picks_and_leaves_no_drag_behind) {
    Open();
    ::PostMessageA(Window(), WM_KEYDOWN, VK_DOWN, 1);
    ::PostMessageA(Window(), WM_KEYDOWN, VK_RETURN, 1);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, Field_Of(histo_blow.tag_select));
    EXPECT_EQ(histo_blow.display_tag, 1);
    EXPECT_FALSE(histo_blow.dragging) << "the list took the release";
    EXPECT_EQ(::GetCapture(), nullptr);
}

TEST_F(Blow_Window, may_close_while_a_drop_list_is_open) {
    Open();
    ::PostMessageA(Window(), WM_CLOSE, 0, 0);
    Send(WM_LBUTTONDOWN, MK_LBUTTON, Field_Of(histo_blow.tag_select));
    EXPECT_EQ(Window(), nullptr);
    EXPECT_EQ(histo_blow.display_tag, 0);
}

TEST_F(Blow_Window, its_panel_may_go_while_a_drop_list_is_open) {
    Open();
    static std::optional<Tool_Histo>* going = nullptr;
    going = &panel;
    ::SetTimer(nullptr, 0, 10, [](HWND, UINT, UINT_PTR timer, DWORD) {
        ::KillTimer(nullptr, timer);
        going->reset();
    });
    Send(WM_LBUTTONDOWN, MK_LBUTTON, Field_Of(histo_blow.cursor_select));
    EXPECT_EQ(Window(), nullptr);
    EXPECT_EQ(histo_blow.panel, nullptr);
}

TEST_F(Blow_Window, the_peak_selector_exists_only_while_there_are_peaks) {
    Open();
    EXPECT_EQ(histo_blow.peak_select.item_nb, 0);
    const int width_without = histo_blow.area.height;
    Peaks_Give(*panel, PEAK_GAUSS, 3);
    Send(DATA);
    const Selects& select = histo_blow.peak_select;
    ASSERT_EQ(select.item_nb, 3);
    EXPECT_STREQ(select.name, "Display Peak    ");
    EXPECT_STREQ(select.item[0].text, "Off");
    EXPECT_STREQ(select.item[1].text, "Composite");
    EXPECT_STREQ(select.item[2].text, "Individual");
    Next_On(select);
    Next_On(select);
    EXPECT_EQ(histo_blow.display_peak, 2);
    Peaks_Give(*panel, PEAK_SEGMENT, 2);
    Send(DATA);
    ASSERT_EQ(select.item_nb, 2);
    EXPECT_STREQ(select.item[1].text, "On");
    EXPECT_EQ(histo_blow.display_peak, 1) << "as far as there are choices";
    EXPECT_EQ(select.current, 1);
    panel->data->Peaks_Free();
    Send(DATA);
    EXPECT_EQ(select.item_nb, 0);
    EXPECT_EQ(histo_blow.area.height, width_without);
    Wheel(-120, select.x + select.width / 2, select.y + 2);
    EXPECT_EQ(histo_blow.display_peak, 1) << "what is not there is not turned";
}

TEST_F(Blow_Window, without_counts_export_is_inactive_and_nothing_zooms) {
    Open();
    EXPECT_EQ(histo_blow.export_button.style, STYLE_BUTTON);
    panel->data->Record_Empty();
    Send(DATA);
    EXPECT_EQ(histo_blow.export_button.style, STYLE_INACTIVE);
    Zoom_Middle();
    Wheel(-120, 400, 100);
    EXPECT_FALSE(histo_blow.view.Is_Zoomed());
    EXPECT_EQ(Histo_Blow_Pinch({0.95F, 0.95F, 0.0F, 0.0F}), 0);
    Give_Record(*panel);
    Send(DATA);
    EXPECT_EQ(histo_blow.export_button.style, STYLE_BUTTON);
}

TEST_F(Blow_Window, a_zoom_of_data_without_extent_is_forgotten_with_the_next_data) {
    Open();
    Histo_Record_Give(*panel, {0.0F, 1.0F}, {5});
    Send(DATA);
    Wheel(-120, 400, 100);
    Drag(100, 100, 300, 200);
    Give_Record(*panel);
    Send(DATA);
    EXPECT_FALSE(histo_blow.view.Is_Zoomed());
    EXPECT_GT(histo_blow.view.X().at.scale, 0.0F);
}

TEST_F(Blow_Window, a_panel_without_data_leaves_an_empty_plot) {
    panel->data.reset();
    Press_Blow(*panel);
    Settle();
    Wheel(-120, 400, 100);
    Send(CURSOR);
    Drag(100, 100, 300, 200);
    EXPECT_FALSE(histo_blow.view.Is_Zoomed());
    Send(WM_CLOSE);
}

// ---------------- messages

TEST_F(Blow_Window, new_data_redraws_and_one_redraw_serves_all_that_wait) {
    Open();
    Mark_Set();
    ::PostMessageA(Window(), DATA, 0, 0);
    ::PostMessageA(Window(), DATA, 0, 0);
    Send(DATA);
    EXPECT_TRUE(Mark_Gone());
    EXPECT_EQ(Pending(DATA), 0);
}

TEST_F(Blow_Window, messages_are_traced_from_level_eight_on) {
    Open();
    for (const int flag : {7, 8, 9}) {
        Flag_Trace = static_cast<signed char>(flag);
        EXPECT_EQ(Send(WM_KILLFOCUS), 0);
        const Lines_Of lines = Lines("WndProc_Histo_Blow");
        ASSERT_EQ(lines.size(), flag >= 8 ? 1U : 0U);
        if (flag >= 8) {
            EXPECT_EQ(lines[0].substr(0, 2), "8 ");
        }
    }
}

TEST_F(Blow_Window, a_lost_focus_gets_no_default_handling) {
    Open();
    const Import_Counter user("", "user32.dll");
    EXPECT_EQ(Send(WM_KILLFOCUS), 0);
    EXPECT_EQ(user.Calls("DefWindowProcA"), 0U);
    Send(WM_SETFOCUS);
    EXPECT_EQ(user.Calls("DefWindowProcA"), 1U);
}

TEST_F(Blow_Window, handlers_are_traced_from_level_four_on_and_motion_always) {
    Open();
    const HWND window = Window();
    char resize[100];
    std::snprintf(resize, sizeof resize, "14 Mode Histo: Histo_Blow_Resize(wind=%08x,dim=640x300)",
                  static_cast<unsigned int>(reinterpret_cast<std::uintptr_t>(window)));
    for (const int flag : {3, 4}) {
        Flag_Trace = static_cast<signed char>(flag);
        const auto expect = [&](const char* part, const std::string& line) {
            EXPECT_EQ(Lines(part), flag < 4 ? Lines_Of{} : Lines_Of{line});
        };
        stage.Take_Messages();
        Press(200, 100);
        expect("Histo_Blow_Click", "14 Mode Histo: Histo_Blow_Click(up_down=00000012)");
        held |= MOUSE_MIDDLE | MOUSE_RIGHT;
        Send(WM_LBUTTONDOWN, 0, Client_Place(200, 100));
        expect("Histo_Blow_Click", "14 Mode Histo: Histo_Blow_Click(up_down=00000072)");
        held = 0;
        Release(200, 100);
        expect("Histo_Blow_Click", "14 Mode Histo: Histo_Blow_Click(up_down=00000000)");
        Move(10, 10);
        EXPECT_EQ(Lines("Histo_Blow_Motion"),
                  flag < 4 ? (Lines_Of{"10 Mode Histo: Histo_Blow_Motion()"})
                           : (Lines_Of{"14 Mode Histo: Histo_Blow_Motion()", "10 Mode Histo: Histo_Blow_Motion()"}));
        Wheel(120, 200, 100);
        expect("Histo_Blow_Scroll", "14 Mode Histo: Histo_Blow_Scroll()");
        ::InvalidateRect(window, nullptr, FALSE);
        ::UpdateWindow(window);
        expect("Histo_Blow_Draw", "14 Mode Histo: Histo_Blow_Draw()");
        Send(WM_CHAR, 'a', 1);
        expect("Histo_Blow_Key", "14 Mode Histo: Histo_Blow_Key()");
        Send(WM_KEYDOWN, VK_LEFT, 1);
        expect("Histo_Blow_Key", "14 Mode Histo: Histo_Blow_Key()");
        Send(WM_KEYUP, VK_SHIFT, 1);
        EXPECT_EQ(Lines("Histo_Blow_Key"), Lines_Of{}) << "no key code, no key";
        Send(WM_SIZE, 0, MAKELPARAM(640, 300));
        expect("Histo_Blow_Resize", resize);
    }
    EXPECT_EQ(Histo_Blow_Key(KEY_ENTER, 5, 5), 0);
}

TEST_F(Blow_Window, the_system_keys_still_close_the_window) {
    Open();
    Send(WM_SYSKEYDOWN, VK_F4, 0x20000001);
    Settle();
    EXPECT_EQ(Window(), nullptr);
}

TEST_F(Blow_Window, right_and_middle_buttons_do_nothing) {
    Open();
    held = MOUSE_RIGHT;
    Send(WM_RBUTTONDOWN, MK_RBUTTON, Client_Place(200, 100));
    Send(WM_MBUTTONDOWN, MK_MBUTTON, Client_Place(200, 100));
    EXPECT_FALSE(histo_blow.dragging);
}

TEST_F(Blow_Window, controls_light_up_under_the_pointer_and_go_out_when_it_leaves) {
    Open();
    const Buttons& reset = histo_blow.reset_button;
    Move(reset.x + 5, reset.y + 5);
    EXPECT_EQ(reset.state, 1);
    Move(400, 100);
    EXPECT_EQ(reset.state, 0);
    Move(reset.x + 5, reset.y + 5);
    Send(WM_MOUSELEAVE);
    EXPECT_EQ(reset.state, 0);
}

TEST_F(Blow_Window, no_control_is_still_lit_up_when_the_window_opens_again) {
    Open();
    const auto picture = [] { return Panel_Window_Read(Window(), CLIENT_WIDTH, CLIENT_HEIGHT); };
    const auto fresh = picture();
    const Selects& select = histo_blow.tag_select;
    Move(select.x + select.width - 3, select.y + 3);
    EXPECT_NE(picture(), fresh);
    Send(WM_CLOSE);
    Open();
    EXPECT_EQ(picture(), fresh);
    Move(histo_blow.reset_button.x + 3, histo_blow.reset_button.y + 3);
    Send(WM_CLOSE);
    Open();
    EXPECT_EQ(picture(), fresh);
}

TEST_F(Blow_Window, a_minimised_window_keeps_its_layout) {
    Open();
    Zoom_Middle();
    const Pixel_Rectangle before = histo_blow.area;
    const float scale = histo_blow.view.X().at.scale;
    Send(WM_SIZE, SIZE_MINIMIZED, 0);
    EXPECT_EQ(histo_blow.area.width, before.width);
    EXPECT_EQ(histo_blow.width, CLIENT_WIDTH);
    EXPECT_EQ(Histo_Blow_Draw(), 0);
    Send(WM_SIZE, SIZE_RESTORED, MAKELPARAM(CLIENT_WIDTH, CLIENT_HEIGHT));
    EXPECT_EQ(histo_blow.view.X().at.scale, scale);
    EXPECT_EQ(Histo_Blow_Draw(), 1);
}

TEST_F(Blow_Window, every_pixel_is_painted_and_the_rim_keeps_the_class_colour) {
    Open();
    {
        const Window_DC dc(Window());
        const RECT all = {0, 0, CLIENT_WIDTH, CLIENT_HEIGHT};
        const Gdi_Brush brush(::CreateSolidBrush(RGB(0x12, 0x34, 0x56)));
        ::FillRect(dc.Get(), &all, brush.Get());
    }
    ::InvalidateRect(Window(), nullptr, TRUE);
    ::UpdateWindow(Window());
    const std::vector<std::uint32_t> pixels = Panel_Window_Read(Window(), CLIENT_WIDTH, CLIENT_HEIGHT);
    int unpainted = 0;
    for (const std::uint32_t pixel : pixels) {
        unpainted += pixel == 0x123456U ? 1 : 0;
    }
    EXPECT_EQ(unpainted, 0);
    EXPECT_EQ(pixels[0], 0xAAAAAAU);
    EXPECT_EQ(pixels[static_cast<std::size_t>(CLIENT_WIDTH) * CLIENT_HEIGHT - 1], 0xAAAAAAU);
}
