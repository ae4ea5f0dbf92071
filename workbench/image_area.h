/** The room of the image: the view of the slices, and as it is wanted the two other planes and a table. */
#pragma once

#include <array>
#include <string>

#include "workbench/image_view.h"
#include "workbench/model/linked_views.h"
#include "workbench/model/view_places.h"
#include "workbench/parts/plane_views.h"
#include "workbench/table_view.h"

namespace workbench {

class Image_Area {
  public:
    /** All must outlive this. @param slices_user of the view of the slices */
    Image_Area(const Look& shared_look, Image_User& slices_user, Plane_Views& plane_views);
    bool Make(HWND parent);
    void Place(const RECT& area);
    void Arrange(const Views_Shown& wanted);
    bool Is_Shown(int view) const { return shown.Has(view); }
    /** There is more than one plane. */
    bool Is_Planes() const { return shown.arrangement != View_Arrangement::One; }
    /** Another slice, window or TAG: draws all pictures anew. */
    void Refresh();
    /** The other views, while one is painted in; at most some 30 times a second. */
    void Others_Refresh();
    /** The tool in hand is another one. */
    void Outline_Refresh();
    /** @param zoom screen pixels per slice pixel, or ZOOM_FIT; of all views */
    void Zoom_Set(double zoom);
    /** Whether a window is one of the views. */
    bool Has(HWND window) const;
    /** The wheel over one of the views. */
    void Wheel(HWND under, int delta, bool is_zoom, POINT screen);

    /** The view that keys scroll and zoom: that of the slices, or the one that stands alone. */
    Image_View& Led() { return View(Is_Planes() ? SLICES_VIEW : shown.large); }
    /** The mark of what the keyboard acts on. */
    void Focus_Set(bool on);

    /** The view of the slices, which the keyboard's cursor is in. */
    Image_View& Slices() { return slices; }
    const Image_View& Slices() const { return slices; }
    /** One of the others. @param view 0 or 1 */
    Image_View& Other(int view) { return others[static_cast<std::size_t>(view)]; }
    const Image_View& Other(int view) const { return others[static_cast<std::size_t>(view)]; }
    /** The fourth view. */
    Table_View& Table() { return table; }
    const Table_View& Table() const { return table; }
    /** Where the image stands: the view of the slices. */
    HWND Handle() const { return slices.Handle(); }

  private:
    Image_View& View(int view) {
        if (view == SLICES_VIEW) {
            return slices;
        }
        return Other(view - 1);
    }
    std::array<Image_View*, PLANE_VIEW_NB> All() { return {&slices, &others[0], &others[1]}; }
    /** As far as views go along with one another. */
    Linked_View Linked_Of(int view) const;
    /** Those that are shown go along with one of them. */
    void Link_To(int leader);
    /** The user has zoomed or moved one. */
    void On_Placed(const Image_View& view);
    void Lay_Out();
    void Cursor_Look();
    /** Others_Refresh for what was painted just before the hand came to rest. */
    static void CALLBACK Late(HWND window, UINT message, UINT_PTR area, DWORD time) noexcept;

    const Look& look;
    Plane_Views& planes;
    Image_View slices;
    std::array<Image_View, Plane_Views::VIEW_NB> others;
    Table_View table;
    RECT room = {};
    Views_Shown shown;
    bool is_focus = false;
    bool is_following = false;
    unsigned __int64 others_drawn = 0;  // milliseconds of the system's clock
};

}  // namespace workbench
