#include "workbench/image_view.h"

#include <windowsx.h>

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

constexpr int SLIDER_WIDTH = 16;  // pixels at 96 dots per inch

}  // namespace

bool Image_View::Make(HWND parent) {
    return Create(parent, WS_CHILD | WS_VISIBLE | WS_CLIPSIBLINGS, L"");
}

RECT Image_View::Slider_Box() const {
    RECT box = Client();
    box.left = std::max<LONG>(box.right - look.Px(SLIDER_WIDTH), 0);
    return box;
}

void Image_View::Lay_Out() {
    const RECT client = Client();
    state.view_width = std::max<int>(Slider_Box().left, 1);
    state.view_height = std::max<int>(client.bottom, 1);
    state.slice_width = std::max(content.source.width, 1);
    state.slice_height = std::max(content.source.height, 1);
    state.pixel_aspect = content.pixel_aspect;
    layout = View_Layout_Make(state);
    const std::size_t size = static_cast<std::size_t>(state.view_width) * static_cast<std::size_t>(state.view_height);
    if (screen.size() != size) {
        screen.assign(size, 0);
    }
}

void Image_View::Kept_Slice::Take(const Slice_Source& of, const Pixel_Rect& part) {
    const auto take = [&](const auto& from, auto& to) {
        if (to.size() != from.size()) {
            to.assign(from.begin(), from.end());
            return;
        }
        const Pixel_Rect area = from.empty() ? Pixel_Rect() : Rect_Common(part, {0, 0, of.width, of.height});
        for (int y = area.top; y < area.bottom; ++y) {
            const std::ptrdiff_t first = static_cast<std::ptrdiff_t>(y) * of.width + area.left;
            std::copy_n(from.begin() + first, area.right - area.left, to.begin() + first);
        }
    };
    take(of.levels, levels);
    take(of.tags, tags);
    take(of.compared, compared);
    source = of;
    source.levels = levels;
    source.tags = tags;
    source.compared = compared;
}

void Image_View::Render(const Pixel_Rect& part) {
    if (content.is_linear) {
        kept.Take(content.source, part);
        return;
    }
    kept = {};
    picture.resize(static_cast<std::size_t>(content.source.width) * static_cast<std::size_t>(content.source.height));
    if (!content.source.levels.empty()) {
        Slice_Render(content.source, content.window, content.overlay, content.ranges, part, picture);
    }
}

void Image_View::Refresh() {
    const int slices_before = content.slice_nb;
    const int slice_before = content.slice;
    content = user.Content();
    if (slices_before != content.slice_nb || slice_before != content.slice) {
        Pen_Set(false);  // a stroke belongs to one slice
    }
    if (slices_before != content.slice_nb) {
        state.center_x = state.center_y = 0.5;
    }
    Lay_Out();
    Render({0, 0, content.source.width, content.source.height});
    Invalidate();
    Pointer_Look();
}

void Image_View::Outline_Look() {
    const Brush_Footprint footprint = user.Tool_Outline(Over_Point());
    outline = Brush_Outline(footprint);
    outline_box = footprint.Box();
}

void Image_View::Outline_Refresh() {
    if (is_over) {
        Outline_Look();
    }
    Invalidate();
}

void Image_View::Tool_Show(const Pixel_Rect& changed) {
    Render(changed);
    const RECT area = Screen_Of(changed, 0);
    if (has_paths) {
        Invalidate();
    } else if (!changed.Is_Empty()) {
        Invalidate(&area);
    }
}

void Image_View::Zoom_Set(double zoom) {
    state.zoom = zoom;
    Lay_Out();
    Invalidate();
    Pointer_Look();
    placed(*this);
}

void Image_View::Follow(const View_State& shown) {
    if (shown.zoom == state.zoom && shown.fit_most == state.fit_most && shown.center_x == state.center_x &&
        shown.center_y == state.center_y) {
        return;
    }
    state.zoom = shown.zoom;
    state.fit_most = shown.fit_most;
    state.center_x = shown.center_x;
    state.center_y = shown.center_y;
    Lay_Out();
    Invalidate();
    Pointer_Look();
}

void Image_View::Wheel(int delta, bool is_zoom, POINT screen_point) {
    const int notches = wheel.Add(delta);
    if (notches == 0 || content.source.levels.empty()) {
        return;
    }
    if (!is_zoom) {
        user.Slice_Go(content.slice + notches);
        return;
    }
    // The pixel under the pointer stays under it.
    ::ScreenToClient(Handle(), &screen_point);
    const Slice_Point fixed = layout.To_Slice(screen_point.x, screen_point.y);
    state.zoom = Zoom_Step(layout, notches);
    Lay_Out();
    const Slice_Point now = layout.To_Slice(screen_point.x, screen_point.y);
    View_Pan(state, static_cast<int>(std::lround((now.x - fixed.x) * layout.scale_x)),
             static_cast<int>(std::lround((now.y - fixed.y) * layout.scale_y)));
    Lay_Out();
    Invalidate();
    Pointer_Look();  // only now: on the way other pixels were under it
    placed(*this);
}

RECT Image_View::Screen_Of(const Pixel_Rect& pixels, int margin) const {
    return {layout.To_Screen_X(pixels.left) - margin, layout.To_Screen_Y(pixels.top) - margin,
            layout.To_Screen_X(pixels.right) + margin, layout.To_Screen_Y(pixels.bottom) + margin};
}

RECT Image_View::Outline_Box() const {
    return Screen_Of(
        {over_x + outline_box.left, over_y + outline_box.top, over_x + outline_box.right, over_y + outline_box.bottom},
        2);
}

void Image_View::Point_Pixel(POINT point, int* x, int* y) const {
    const Slice_Point at = layout.To_Slice(point.x, point.y);
    *x = static_cast<int>(std::floor(at.x));
    *y = static_cast<int>(std::floor(at.y));
}

void Image_View::Pointer_Over(POINT point) {
    const RECT before = Outline_Box();
    const bool was_over = is_over;
    int x = 0;
    int y = 0;
    Point_Pixel(point, &x, &y);
    if (is_over && x == over_x && y == over_y) {
        return;
    }
    over_x = x;
    over_y = y;
    is_over = !content.source.levels.empty() && point.x < Slider_Box().left;
    if (was_over) {
        Invalidate(&before);
    }
    if (is_over) {
        Outline_Look();
        const RECT now = Outline_Box();
        Invalidate(&now);
        user.Hover(x, y);
    }
    if (has_paths) {
        Invalidate();  // a line may follow the pointer
    }
}

void Image_View::Pointer_Look() {
    if (!is_over) {
        return;
    }
    if (content.source.levels.empty()) {
        return Pointer_Gone();
    }
    if (!is_cursor) {
        POINT point = {};
        ::GetCursorPos(&point);
        ::ScreenToClient(Handle(), &point);
        const RECT view = {0, 0, Slider_Box().left, Client().bottom};
        if (drag == Drag::None && ::PtInRect(&view, point) == 0) {
            return Pointer_Gone();  // it has left, and the message that says so is still to come
        }
        Point_Pixel(point, &over_x, &over_y);
    }
    Outline_Look();
    user.Hover(over_x, over_y);
}

void Image_View::Pointer_Gone() {
    if (is_over) {
        const RECT before = Outline_Box();
        is_over = false;
        Invalidate(&before);
        user.Hover_End();
    }
}

void Image_View::Slider_Drag(int y) {
    const RECT box = Slider_Box();
    const int most = content.slice_nb - 1;
    if (most < 1 || box.bottom <= box.top) {
        return;
    }
    // The last slice is at the top: the patient's head, when the slices rise.
    const double share = (box.bottom - 0.5 - y) / static_cast<double>(box.bottom - box.top);
    user.Slice_Go(std::clamp(static_cast<int>(share * content.slice_nb), 0, most));
}

void Image_View::Press(UINT message, WPARAM keys, POINT point) {
    if (content.source.levels.empty() || drag != Drag::None) {
        return;
    }
    const bool is_shift = (keys & MK_SHIFT) != 0;
    const bool is_control = (keys & MK_CONTROL) != 0;
    const bool is_left = message == WM_LBUTTONDOWN;
    ::SetFocus(::GetAncestor(Handle(), GA_ROOT));  // a table beside the image may have the keyboard
    ::SetCapture(Handle());
    drag_at = point;
    int x = 0;
    int y = 0;
    Point_Pixel(point, &x, &y);
    if (is_left && point.x >= Slider_Box().left) {
        drag = Drag::Slider;
        Slider_Drag(point.y);
    } else if (is_left && Tool_Slider_Press(point)) {
        return;
    } else if (message == WM_MBUTTONDOWN || (message == WM_RBUTTONDOWN && is_shift)) {
        drag = Drag::Window;
    } else if (is_left && is_shift && is_control) {
        drag = Drag::Cross;
        user.Cross_Move(x, y);
    } else if (is_left && is_shift) {
        drag = Drag::Pan;
    } else if (is_left && is_control) {
        user.Pick(x, y);
    } else {
        Pen_Set(false);
        drag = Drag::Tool;
        Tool_Show(user.Tool_Press(layout.To_Slice(point.x, point.y), is_left ? Tool_Hand::Left : Tool_Hand::Right));
    }
}

void Image_View::Release() {
    const Drag ended = drag;
    drag = Drag::None;
    if (::GetCapture() == Handle()) {
        ::ReleaseCapture();
    }
    if (ended == Drag::Tool) {
        user.Tool_Release();
    }
}

void Image_View::Move(WPARAM keys, POINT point) {
    if (drag != Drag::None && (keys & (MK_LBUTTON | MK_MBUTTON | MK_RBUTTON)) == 0) {
        Release();
    }
    int x = 0;
    int y = 0;
    Point_Pixel(point, &x, &y);
    const int dx = point.x - drag_at.x;
    const int dy = point.y - drag_at.y;
    drag_at = point;
    switch (drag) {
        case Drag::Tool:
            Tool_Show(user.Tool_Move(layout.To_Slice(point.x, point.y)));
            break;
        case Drag::Window:
            user.Window_Drag(static_cast<float>(dx) / static_cast<float>(state.view_width),
                             static_cast<float>(dy) / static_cast<float>(state.view_height));
            break;
        case Drag::Pan:
            View_Pan(state, dx, dy);
            Lay_Out();
            Invalidate();
            placed(*this);
            break;
        case Drag::Slider:
            Slider_Drag(point.y);
            break;
        case Drag::Tool_Slider:
            Tool_Slider_Drag(point.x);
            break;
        case Drag::Cross:
            user.Cross_Move(x, y);
            break;
        default:
            break;
    }
    Pointer_Over(point);
}

LRESULT Image_View::On_Message(UINT message, WPARAM wparam, LPARAM lparam) {
    const POINT point = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    switch (message) {
        case WM_SIZE:
            Lay_Out();
            Invalidate();
            Pointer_Look();
            return 0;
        case WM_PAINT:
            Paint();
            return 0;
        case WM_ERASEBKGND:
            return 1;
        case WM_LBUTTONDOWN:
        case WM_MBUTTONDOWN:
        case WM_RBUTTONDOWN:
            Press(message, wparam, point);
            return 0;
        case WM_LBUTTONUP:
        case WM_MBUTTONUP:
        case WM_RBUTTONUP:
        case WM_CAPTURECHANGED:
            Release();
            return 0;
        case WM_MOUSEMOVE:
            Watch_Leave(Handle());
            Move(wparam, point);
            return 0;
        case WM_MOUSELEAVE:
            Pointer_Gone();
            return 0;
        default:
            return Window_Base::On_Message(message, wparam, lparam);
    }
}

}  // namespace workbench
