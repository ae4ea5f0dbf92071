#include "workbench/image_area.h"

#include <algorithm>
#include <exception>

namespace workbench {

namespace {

constexpr int GAP = 2;                     // pixels at 96 dots per inch, between the views
constexpr int SLICES_PERCENT = 60;         // of the longer side
constexpr unsigned int OTHERS_LEAST = 33;  // milliseconds from drawing to drawing

}  // namespace

Image_Area::Image_Area(const Look& shared_look, Image_User& slices_user, Plane_Views& plane_views)
    : look(shared_look),
      planes(plane_views),
      slices(shared_look, slices_user),
      others{Image_View(shared_look, plane_views.User(0)), Image_View(shared_look, plane_views.User(1))} {}

bool Image_Area::Make(HWND parent) {
    if (!slices.Make(parent)) {
        return false;
    }
    for (Image_View& view : others) {
        if (!view.Make(parent)) {
            return false;
        }
        view.Show(false);
    }
    return true;
}

void Image_Area::Place(const RECT& area) {
    room = area;
    Lay_Out();
}

void Image_Area::Lay_Out() {
    if (!is_planes) {
        slices.Place(room);
        return;
    }
    // The others stand where there is more room: beside the slices, or below them.
    const LONG gap = look.Px(GAP);
    const LONG width = std::max<LONG>(room.right - room.left, 0);
    const LONG height = std::max<LONG>(room.bottom - room.top, 0);
    RECT large = room;
    RECT one = room;
    RECT other = room;
    if (width >= height) {
        large.right = room.left + width * SLICES_PERCENT / 100;
        one.left = other.left = std::min(large.right + gap, room.right);
        one.bottom = room.top + (height - gap) / 2;
        other.top = std::min(one.bottom + gap, room.bottom);
    } else {
        large.bottom = room.top + height * SLICES_PERCENT / 100;
        one.top = other.top = std::min(large.bottom + gap, room.bottom);
        one.right = room.left + (width - gap) / 2;
        other.left = std::min(one.right + gap, room.right);
    }
    slices.Place(large);
    others[0].Place(one);
    others[1].Place(other);
}

void Image_Area::Planes_Show(bool shown) {
    is_planes = shown;
    for (Image_View& view : others) {
        view.Show(shown);
    }
    Lay_Out();
    Refresh();
}

void Image_Area::Refresh() {
    planes.Volume_Look();
    slices.Refresh();
    if (is_planes) {
        for (Image_View& view : others) {
            view.Refresh();
        }
        others_drawn = ::GetTickCount64();
        Cursor_Look();
    }
}

void Image_Area::Cursor_Look() {
    if (slices.Is_Cursor()) {
        slices.Pointer_Look();  // the keyboard's cursor goes before a pointer that rests over another view
    }
}

void CALLBACK Image_Area::Late(HWND window, UINT, UINT_PTR area, DWORD) noexcept {
    ::KillTimer(window, area);
    try {
        reinterpret_cast<Image_Area*>(area)->Others_Refresh();
    } catch (const std::exception&) {
        return;  // the end of the stroke draws them
    }
}

void Image_Area::Others_Refresh() {
    if (!is_planes) {
        return;
    }
    if (::GetTickCount64() - others_drawn < OTHERS_LEAST) {
        // The hand may rest now: what it has just painted must be seen all the same.
        ::SetTimer(slices.Handle(), reinterpret_cast<UINT_PTR>(this), 2 * OTHERS_LEAST, &Image_Area::Late);
        return;
    }
    for (Image_View* view : All()) {
        if (::GetCapture() != view->Handle()) {
            view->Refresh();
        }
    }
    others_drawn = ::GetTickCount64();
    Cursor_Look();
}

void Image_Area::Outline_Refresh() {
    for (Image_View* view : All()) {
        view->Outline_Refresh();
    }
}

void Image_Area::Zoom_Set(double zoom) {
    for (Image_View* view : All()) {
        view->Zoom_Set(zoom);
    }
}

bool Image_Area::Has(HWND window) const {
    return window != nullptr &&
           (window == slices.Handle() || window == others[0].Handle() || window == others[1].Handle());
}

void Image_Area::Wheel(HWND under, int delta, bool is_zoom, POINT screen) {
    for (Image_View* view : All()) {
        if (view->Handle() == under) {
            view->Wheel(delta, is_zoom, screen);
        }
    }
}

}  // namespace workbench
