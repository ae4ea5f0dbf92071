/** Draws a finished axis layout into a device context; the only part of the kit that knows the window system. */
#pragma once

#include <memory>
#include <string>

#include "host/kit_graph.h"
#include "kits/graph/axis_layout.h"

class Axis_Painter {
  public:
    /** @param font_height pixels; a created font of the box wins */
    Axis_Painter(HDC dc, const Boxs& box, int font_height);
    ~Axis_Painter();
    Axis_Painter(const Axis_Painter&) = delete;
    Axis_Painter& operator=(const Axis_Painter&) = delete;

    int Width(const std::string& text) const;
    /** Pixels of a text that reads upwards. */
    int Width_Upwards(const std::string& text) const;
    int Line_Height() const;
    void Paint(const Axis_Layout& layout) const;

    /** Device pixels of a rectangle in the units of a device context. */
    static Plot_Rect Device_Rect(HDC dc, int x, int y, int width, int height);

  private:
    struct Data;
    std::unique_ptr<Data> data;
};
