/** Where the lines and texts of an axis stand. Device pixels, y down. Nothing is drawn here. */
#pragma once

#include <functional>
#include <string>
#include <vector>

/** The pixels left .. right - 1, top .. bottom - 1: edges, not a corner and a size, as an axis is cut edge by edge. */
struct Plot_Rect {
    int left = 0;
    int top = 0;
    int right = 0;
    int bottom = 0;
    int Width() const { return right - left; }
    int Height() const { return bottom - top; }
    friend bool operator==(const Plot_Rect&, const Plot_Rect&) = default;
};

/** A text and the rectangle that it fills. */
struct Plot_Label {
    std::string text;
    Plot_Rect rect;
    bool upwards = false;  ///< turned, reading upwards
};

struct Axis_Layout {
    Plot_Rect box;                 ///< nothing is painted outside it
    std::vector<Plot_Rect> lines;  ///< the axis and its ticks, as filled rectangles
    std::vector<int> tick_at;      ///< column (or row) of every tick
    std::vector<Plot_Label> labels;
};

/** What a layout is made of. */
struct Axis_Request {
    Plot_Rect box;   ///< nothing may stand outside it
    int frame = 0;   ///< pixels of the box's edge that its frame takes; titles keep off it where there is room
    Plot_Rect area;  ///< the data's rectangle; nothing may stand inside it
    std::string title;
    float from = 0.0F;
    float to = 0.0F;
    int line_height = 0;                           ///< of a text, pixels
    std::function<int(const std::string&)> width;  ///< of a text, pixels
    /** Of a text that reads upwards, pixels: turned letters may stand farther apart. None: as `width`. */
    std::function<int(const std::string&)> width_upwards;
};

Axis_Layout Axis_Layout_X(const Axis_Request& request);
Axis_Layout Axis_Layout_Y(const Axis_Request& request);
