/** The image: a slice with TAG colours over it, markers, the brush under the pointer, and a slider through the slices.
 */
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "base/wheel_remainder.h"
#include "workbench/look.h"
#include "workbench/model/image_cursor.h"
#include "workbench/model/image_user.h"
#include "workbench/model/painting.h"
#include "workbench/model/view_geometry.h"
#include "workbench/volumes/png_writer.h"
#include "workbench/window_base.h"

namespace workbench {

/** Where the parts of a tool's slider stand in the view. */
struct Slider_Boxes {
    RECT all = {};
    RECT text = {};
    RECT track = {};
    RECT take = {};
    RECT drop = {};
};

class Image_View : public Window_Base, public Image_Cursor {
  public:
    Image_View(const Look& shared_look, Image_User& image_user) : look(shared_look), user(image_user) {}
    bool Make(HWND parent);
    /** Another slice, window or TAG: draws the picture anew. */
    void Refresh();
    /** The tool in hand is another one: its outline follows the pointer. */
    void Outline_Refresh();
    /** @param zoom screen pixels per slice pixel, or ZOOM_FIT */
    void Zoom_Set(double zoom);
    void Wheel(int delta, bool is_zoom, POINT screen);
    /** Other pictures of its plane. @param step positive: upwards */
    void Slice_By(int step) { user.Slice_Go(content.slice + step); }
    void Slice_End(bool is_last) { user.Slice_Go(is_last ? content.slice_nb - 1 : 0); }

    /** Told when the user has zoomed or moved the picture. Not called while Follow runs. */
    void Placed_Listen(std::function<void(Image_View&)> listener) { placed = std::move(listener); }
    const View_State& State() const { return state; }
    /** Width of a pixel, in the unit of all views of the volume. */
    double Pixel_Width() const { return content.pixel_width; }
    /** Takes over zoom and centre. */
    void Follow(const View_State& shown);

    /** Tells what is under the pointer now that the picture has changed below it. */
    void Pointer_Look();

    // Without a mouse (image_view_cursor.cpp).
    void Cursor_Set(bool on) override;
    bool Is_Cursor() const override { return is_cursor; }
    void Cursor_Move(int dx, int dy) override;
    void Cursor_Act(bool erase) override;
    void Pen_Set(bool down) override;
    /** The stroke has been ended: the pen is up, without another word to the user. */
    void Pen_Lifted();
    bool Is_Pen_Down() const override { return is_pen_down; }
    void Cursor_Pick() override;
    /** Notches of the wheel, about the middle of the view. */
    void Zoom_By(int notches);
    /** The mark of what the keyboard acts on. */
    void Focus_Set(bool on);
    const std::wstring& Caption() const { return content.caption; }
    int Cursor_X() const override { return over_x; }
    int Cursor_Y() const override { return over_y; }
    /** What is shown, as large as it is on the screen, without slider, outline and the marks of the keyboard.
     *  @param is_plain the image alone @return empty without memory or image */
    volumes::Picture Picture_Now(bool is_plain);
    /** Where the slice stands, for the report. */
    View_Layout Layout() const { return layout; }
    RECT Slider_Box() const;
    Slider_Boxes Tool_Slider_Boxes() const;

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override;

  private:
    /** What was rendered, for drawing it later: the voxels may be others by then. */
    struct Kept_Slice {
        std::vector<std::int32_t> levels;
        std::vector<std::uint8_t> tags;
        std::vector<std::uint8_t> compared;
        Slice_Source source;  ///< of these
        void Take(const Slice_Source& of, const Pixel_Rect& part);
    };
    enum class Drag { None, Tool, Window, Pan, Slider, Cross, Tool_Slider };
    void Lay_Out();
    void Render(const Pixel_Rect& part);
    void Paint();
    void Draw_Slice(HDC dc, const RECT& dirty);
    void Draw_Outline(HDC dc) const;
    void Draw_Markers(HDC dc) const;
    void Draw_Paths(HDC dc);
    void Draw_Cross(HDC dc) const;
    void Draw_Scale_Bar(HDC dc) const;
    void Draw_Texts(HDC dc) const;
    void Draw_Slider(HDC dc) const;
    // image_view_slider.cpp
    void Draw_Tool_Slider(HDC dc) const;
    /** @return false: the tool has none there */
    bool Tool_Slider_Press(POINT point);
    void Tool_Slider_Drag(int x);
    void Draw_Keyboard_Marks(HDC dc) const;
    void Press(UINT message, WPARAM keys, POINT point);
    void Release();
    void Move(WPARAM keys, POINT point);
    void Slider_Drag(int y);
    void Point_Pixel(POINT point, int* x, int* y) const;
    RECT Screen_Of(const Pixel_Rect& pixels, int margin) const;
    RECT Outline_Box() const;
    /** Asks for the outline where the pointer is now. */
    void Outline_Look();
    /** Draws anew what a tool has changed. */
    void Tool_Show(const Pixel_Rect& changed);
    /** The middle of the pixel under the pointer or the keyboard's cursor. */
    Slice_Point Over_Point() const { return {over_x + 0.5, over_y + 0.5}; }
    void Pointer_Over(POINT point);
    void Pointer_Gone();

    const Look& look;
    Image_User& user;
    Image_Content content;
    View_State state;
    View_Layout layout;
    std::vector<std::uint32_t> picture;  ///< the slice, 0x00RRGGBB
    std::vector<std::uint32_t> screen;   ///< the view
    std::vector<Outline_Edge> outline;   ///< of what the tool would touch, relative to the pixel under the pointer
    Pixel_Rect outline_box;              ///< the same
    bool has_paths = false;              ///< the tool draws lines
    bool is_cursor = false;              ///< keys move what the pointer moves
    bool is_pen_down = false;
    bool has_focus = false;
    bool is_over = false;
    int over_x = 0;
    int over_y = 0;
    Drag drag = Drag::None;
    POINT drag_at = {};
    Wheel_Remainder wheel;
    Kept_Slice kept;
    std::function<void(Image_View&)> placed = [](Image_View&) {};
};

}  // namespace workbench
