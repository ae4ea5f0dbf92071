/** What a view of the image shows, and what it tells; no window. */
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "workbench/model/display_order.h"
#include "workbench/model/painting.h"
#include "workbench/model/slice_render.h"
#include "workbench/model/view_geometry.h"

namespace workbench {

struct Shown_Marker {
    int x = 0;  ///< pixel of the slice
    int y = 0;
    std::uint32_t color = 0;  ///< 0x00BBGGRR
    std::wstring name;
    bool is_current = false;
};

/** Where the planes of the other views cut this one: the middles of a column and a row of pixels. */
struct Image_Cross {
    int x = 0;
    int y = 0;
    bool operator==(const Image_Cross&) const = default;
};

/** What a colour over the picture means. */
struct Legend_Entry {
    std::uint32_t color = 0;  ///< 0x00RRGGBB
    std::wstring text;
};

/** Lines that a tool draws over a picture. */
struct Shown_Path {
    std::vector<Slice_Point> points;  ///< pixels of the picture, their sides at whole numbers
    bool is_closed = false;           ///< a line leads from the last point to the first
    bool is_dashed = false;           ///< part of it lies in other pictures: this is where it would be in this one
    std::vector<Slice_Point> knots;   ///< marked: they can be taken hold of
    std::string text;                 ///< beside the last point, UTF-8; may be empty
};

/** A number that a tool offers to choose while what it does is only seen: a slider in the picture. */
struct Tool_Slider {
    double share = 0.0;  ///< where its thumb stands, 0 .. 1
    std::string text;    ///< what is chosen, UTF-8
};

/** What a tool is led by. */
enum class Tool_Hand {
    Left,   ///< the left button, or the key that paints
    Right,  ///< the right button, or the key that erases
    Pen,    ///< the keyboard's pen, which stays down until it is lifted
};

/** What the view shows. */
struct Image_Content {
    Slice_Source source;  ///< no levels: nothing is loaded
    Grey_Window window;
    Tag_Overlay overlay;
    std::vector<Range_Overlay> ranges;
    Display_Order order;
    std::vector<Shown_Marker> markers;
    int slice = 0;
    int slice_nb = 0;
    double pixel_aspect = 1.0;  ///< height of a pixel by its width
    double pixel_mm = 0.0;      ///< width of a pixel in millimetres; 0: not known
    double pixel_width = 1.0;   ///< the same in the unit of all views of the volume, whatever it is
    bool is_linear = false;     ///< grey values run in straight lines from pixel to pixel
    std::optional<Image_Cross> cross;
    std::wstring caption;  ///< at the upper left, lines separated by \n
    std::vector<Legend_Entry> legend;
};

/** What the view tells its user. Positions are pixels of the slice and may lie outside it while a button is
 *  held. */
class Image_User {
  public:
    virtual ~Image_User() = default;
    virtual Image_Content Content() const = 0;
    virtual void Slice_Go(int slice) = 0;
    /** The tool in hand. The view repaints the answer */
    virtual Pixel_Rect Tool_Press(const Slice_Point& at, Tool_Hand hand) = 0;
    virtual Pixel_Rect Tool_Move(const Slice_Point& at) = 0;
    virtual void Tool_Release() = 0;
    /** What a press there would touch, relative to the pixel; empty: nothing is drawn. */
    virtual Brush_Footprint Tool_Outline(const Slice_Point& at) const = 0;
    virtual std::vector<Shown_Path> Tool_Paths() const = 0;
    /** No value: the tool has none in this picture now. */
    virtual std::optional<Tool_Slider> Slider() const { return std::nullopt; }
    /** @param share 0 .. 1 */
    virtual void Slide(double) {}
    /** What the tool has begun is taken over, or dropped. */
    virtual void Slider_End(bool) {}
    virtual void Pick(int x, int y) = 0;
    virtual void Hover(int x, int y) = 0;
    virtual void Hover_End() = 0;
    /** The cross-hair is taken to a pixel. */
    virtual void Cross_Move(int x, int y) = 0;
    /** Shares of the view that the pointer moved. */
    virtual void Window_Drag(float dx, float dy) = 0;
};

}  // namespace workbench
