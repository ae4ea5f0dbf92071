#include "workbench/panel_set.h"

#include <algorithm>
#include <utility>

#include "workbench/enlarged_frame.h"

namespace workbench {

namespace {

constexpr int HISTOGRAM_HEIGHT = 150;
constexpr int HISTOGRAM_HEIGHT_MOST = 320;
constexpr unsigned short TAG_ROWS = 4;
constexpr unsigned short MARKER_ROWS = 2;
constexpr int COLUMNS = 4;            // of the TAG panel
constexpr float SCALE_FACTOR = 1.6F;  // of one step of the magnification

}  // namespace

Panel_Set::Panel_Set(Look& shared_look, Host_Variables& host_variables)
    : look(shared_look),
      variables(host_variables),
      tag_panel(static_cast<unsigned short>(TAG_CHECK_ENABLE | TAG_GREY_SELECTION)),
      hosted_tag(tag_panel, [](Tool_Tag& panel) { return panel.Height(TAG_ROWS); }),
      hosted_marker(marker_panel, [](Tool_Marker& panel) { return panel.Height(MARKER_ROWS); }),
      hosted_brush(brush_panel, [](Tool_Brush& panel) { return panel.Height(); }),
      hosted_propagate(propagate_panel, [](Tool_Propagate& panel) { return panel.Height(); }),
      hosted_histogram(
          histogram_panel,
          [this](Tool_Histo& panel) { return panel.Height(static_cast<unsigned short>(look.Px(HISTOGRAM_HEIGHT))); }),
      area(look) {}

void Panel_Set::Add(Panel_Clicks clicks) {
    const auto put = [this](Pane pane, const wchar_t* title, Hosted_Panel& panel, Window_Axis axis,
                            std::function<void(int, int)> on_click) {
        hosts[static_cast<std::size_t>(Tool_Of(pane))] = area.Add(title, panel, axis, std::move(on_click));
    };
    const auto index = [](std::function<void(int)> take) {
        return [take = std::move(take)](int picked, int) {
            if (picked >= 0) {
                take(picked);
            }
        };
    };
    put(Pane::Tag, L"TAG", hosted_tag, Window_Axis::Down, index(std::move(clicks.tag)));
    put(Pane::Brush, L"Brush", hosted_brush, Window_Axis::Up,
        [this, take = std::move(clicks.brush)](int is_picked, int) {
            if (is_picked != 0) {
                take(brush_panel.Read());
            }
        });
    put(Pane::Frames, L"Frames", hosted_propagate, Window_Axis::Up, [](int, int) {});
    put(Pane::Marker, L"Markers", hosted_marker, Window_Axis::Down, index(std::move(clicks.marker)));
    put(Pane::Histogram, L"Histogram", hosted_histogram, Window_Axis::Down,
        [this, take = std::move(clicks.histogram)](int is_used, int) {
            // A press beside the magnification's thumb changes it without painting the plot.
            hosted_histogram.Scale_Note();
            if (is_used != 0) {
                take();
                Enlarged_Frame_Dress();
            }
        });
    area.Stretch(&Host(Pane::Histogram), look.Px(HISTOGRAM_HEIGHT_MOST));
    hosted_histogram.Scale_Release();
    tag_rows_shown = variables.Tag_Nb();
}

void Panel_Set::Lay_Out() {
    area.Lay_Out();
    for (Panel_Host* host : hosts) {
        host->Lay_Out();
    }
}

void Panel_Set::Accessible_Names() {
    Host(Pane::Tag).Accessible_Names(L"TAG");
    Host(Pane::Brush).Accessible_Names(L"Brush", [](int index) { return L"Brush " + std::to_wstring(index + 1); });
    Host(Pane::Frames).Accessible_Names(L"Frames");
    Host(Pane::Marker).Accessible_Names(L"Markers");
    Host(Pane::Histogram).Accessible_Names(L"Histogram", [](int) { return std::wstring(L"Magnification"); });
    area.Accessible_Names();
}

bool Panel_Set::Wheel(POINT screen, int delta) {
    if (Panel_Host* const host = area.Panel_At(screen); host != nullptr) {
        YCursor_X = screen.x;
        YCursor_Y = screen.y;
        host->Wheel(delta);
        if (host == &Host(Pane::Histogram)) {
            hosted_histogram.Scale_Note();
        }
        return true;
    }
    if (::WindowFromPoint(screen) == area.Handle()) {
        area.Wheel(delta);
        return true;
    }
    return false;
}

void Panel_Set::Tag_Scroll_To(int tag) {
    const int rows = variables.Tag_Nb() / COLUMNS;
    const int row = (variables.Tag_Nb() - 1 - tag) / COLUMNS;
    const Panel_Dimensions sizes = variables.Dimensions();
    Panel_Host& host = Host(Pane::Tag);
    const int rows_in_view = std::max(static_cast<int>(host.Client().bottom) / (sizes.border + sizes.button), 1);
    if (rows <= rows_in_view) {
        return;
    }
    // The panel does not tell where it stands, so it is sent to its top first.
    host.Buffered([&] {
        tag_panel.Scroll(rows);
        tag_panel.Scroll(-std::clamp(row - rows_in_view / 2, 0, rows));
    });
}

void Panel_Set::Tag_Rows_Show() {
    const Panel_Dimensions sizes = variables.Dimensions();
    Panel_Host& host = Host(Pane::Tag);
    const auto has_slider = [&](int count) {
        return count / COLUMNS * (sizes.border + sizes.button) > host.Client().bottom - 2 * SPACE;
    };
    const int before = std::exchange(tag_rows_shown, variables.Tag_Nb());
    if (has_slider(tag_rows_shown) != has_slider(before)) {
        host.Lay_Out();  // the slider takes its room from the columns
    } else {
        host.Refresh();
    }
    Tag_Scroll_To(variables.Tag_Cur());
}

void Panel_Set::Tag_Options_Set(Tag_Mark check_mark, bool is_threshold_mode) {
    const unsigned short option = check_mark == Tag_Mark::Enable   ? TAG_CHECK_ENABLE
                                  : check_mark == Tag_Mark::Select ? TAG_CHECK_SELECT
                                                                   : TAG_CHECK_LOCK;
    tag_panel.Flag(
        static_cast<unsigned short>(option | TAG_GREY_SELECTION | (is_threshold_mode ? TAG_THRESHOLD_MODE : 0)));
    Host(Pane::Tag).Lay_Out();  // the marks of the former option go with the layout
    Tag_Scroll_To(variables.Tag_Cur());
}

int Panel_Set::Propagate(int direction) {
    return Host(Pane::Frames).Buffered([&] { return propagate_panel.Propagate(direction); });
}

void Panel_Set::Histogram_Enlarge() {
    const Buttons& button = histogram_panel.blow_button;
    POINT middle = {button.x + button.width / 2, button.y + button.height / 2};
    Panel_Host& host = Host(Pane::Histogram);
    ::ClientToScreen(host.Handle(), &middle);
    YCursor_X = middle.x;
    YCursor_Y = middle.y;
    host.Buffered([&] {
        histogram_panel.Click(MOUSE_PRESS | MOUSE_LEFT);
        histogram_panel.Click(0);
        histogram_panel.Leave();
    });
    Enlarged_Frame_Dress();
}

void Panel_Set::Histogram_Scale_Suggest() {
    if (hosted_histogram.Scale_Suggest()) {
        Host(Pane::Histogram).Lay_Out();
    }
}

void Panel_Set::Histogram_Scale_Step(int step) {
    hosted_histogram.Scale_Set(step > 0 ? histogram_panel.scale / SCALE_FACTOR : histogram_panel.scale * SCALE_FACTOR);
    Host(Pane::Histogram).Refresh();
}

}  // namespace workbench
