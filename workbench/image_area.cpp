#include "workbench/image_area.h"

#include <algorithm>
#include <exception>
#include <vector>

namespace workbench {

namespace {

constexpr int GAP = 2;                     // pixels at 96 dots per inch, between the views
constexpr unsigned int OTHERS_LEAST = 33;  // milliseconds from drawing to drawing

}  // namespace

Image_Area::Image_Area(const Look& shared_look, Image_User& slices_user, Plane_Views& plane_views)
    : look(shared_look),
      planes(plane_views),
      slices(shared_look, slices_user),
      others{Image_View(shared_look, plane_views.User(0)), Image_View(shared_look, plane_views.User(1))},
      table(shared_look) {
    for (Image_View* view : All()) {
        view->Placed_Listen([this](const Image_View& of) { On_Placed(of); });
    }
}

bool Image_Area::Make(HWND parent) {
    for (Image_View* view : All()) {
        if (!view->Make(parent)) {
            return false;
        }
        view->Show(view == &slices);
    }
    return table.Make(parent);
}

void Image_Area::Place(const RECT& area) {
    room = area;
    Lay_Out();
}

void Image_Area::Lay_Out() {
    const auto places =
        View_Places({room.left, room.top, room.right, room.bottom}, shown, static_cast<int>(look.Px(GAP)));
    const auto place = [&](int view) {
        const Pixel_Rect& at = places[static_cast<std::size_t>(view)];
        return RECT{at.left, at.top, at.right, at.bottom};
    };
    for (int view = 0; view < PLANE_VIEW_NB; ++view) {
        if (shown.Has(view)) {
            All()[static_cast<std::size_t>(view)]->Place(place(view));
        }
    }
    if (shown.Has(TABLE_VIEW)) {
        table.Place(place(TABLE_VIEW));
    }
    if (shown.is_linked) {
        Link_To(Is_Planes() ? SLICES_VIEW : shown.large);
    }
}

void Image_Area::Arrange(const Views_Shown& wanted) {
    const bool was_linked = shown.is_linked;
    shown = wanted;
    if (!shown.Has(SLICES_VIEW)) {
        slices.Cursor_Set(false);
    }
    for (int view = 0; view < PLANE_VIEW_NB; ++view) {
        Image_View& of = View(view);
        of.Show(shown.Has(view));
        if (was_linked && !shown.is_linked) {
            View_State own = of.State();
            own.fit_most = 0.0;
            of.Follow(own);
        }
    }
    table.Show(shown.Has(TABLE_VIEW));
    Focus_Set(is_focus);
    Lay_Out();
    Refresh();
}

void Image_Area::Focus_Set(bool on) {
    is_focus = on;
    for (Image_View* view : All()) {
        view->Focus_Set(on && view == &Led());
    }
}

Linked_View Image_Area::Linked_Of(int view) const {
    const Image_View& of = view == SLICES_VIEW ? slices : others[static_cast<std::size_t>(view - 1)];
    return {of.State(), view == SLICES_VIEW ? planes.Slice_Axes() : planes.Geometry_Of(view - 1).axes,
            of.Pixel_Width()};
}

void Image_Area::Link_To(int leader) {
    if (is_following) {
        return;
    }
    is_following = true;
    std::vector<Linked_View> all;
    for (int view = 0; view < PLANE_VIEW_NB; ++view) {
        if (shown.Has(view)) {
            all.push_back(Linked_Of(view));
        }
    }
    const double fit = Linked_Fit(all);
    const Linked_View lead = Linked_Of(leader);
    for (int view = 0; view < PLANE_VIEW_NB; ++view) {
        if (shown.Has(view)) {
            const Linked_View own = Linked_Of(view);
            View_State state = view == leader ? own.state : Linked_State(own, lead);
            state.fit_most = fit * own.pixel_width;
            All()[static_cast<std::size_t>(view)]->Follow(state);
        }
    }
    is_following = false;
}

void Image_Area::On_Placed(const Image_View& view) {
    for (int at = 0; shown.is_linked && at < PLANE_VIEW_NB; ++at) {
        if (All()[static_cast<std::size_t>(at)] == &view) {
            Link_To(at);
        }
    }
}

void Image_Area::Refresh() {
    planes.Volume_Look();
    for (int view = 0; view < PLANE_VIEW_NB; ++view) {
        // The slices are kept current though they are hidden: keys and programs go by them.
        if (view == SLICES_VIEW || shown.Has(view)) {
            All()[static_cast<std::size_t>(view)]->Refresh();
        }
    }
    if (shown.is_linked) {
        Link_To(Is_Planes() ? SLICES_VIEW : shown.large);
    }
    if (Is_Planes()) {
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
    if (!Is_Planes()) {
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
    if (shown.is_linked) {
        return Led().Zoom_Set(zoom);
    }
    for (Image_View* view : All()) {
        view->Zoom_Set(zoom);
    }
}

bool Image_Area::Has(HWND window) const {
    return window != nullptr && (::IsChild(table.Handle(), window) != 0 || window == slices.Handle() ||
                                 window == others[0].Handle() || window == others[1].Handle());
}

void Image_Area::Wheel(HWND under, int delta, bool is_zoom, POINT screen) {
    for (Image_View* view : All()) {
        if (view->Handle() == under) {
            view->Wheel(delta, is_zoom, screen);
        }
    }
    if (::IsChild(table.Handle(), under) != 0) {
        table.Wheel(delta);
    }
}

}  // namespace workbench
