#include "panels/tool_propagate_geometry.h"

Propagate_Layout Propagate_Layout_Make(const Pixel_Rectangle& host, int space, int list_height) {
    const int column = (host.width - 4 * space) / 4;
    const auto place = [&host, space, list_height](int x, int width) {
        return Pixel_Rectangle{x, host.y + space, width, list_height};
    };
    const int down_x = host.x + space;
    const int list_x = down_x + column + space;
    const int up_x = list_x + 2 * column + space;
    return {place(down_x, column), place(list_x, 2 * column), place(up_x, column)};
}

int Propagate_Height(int space, int list_height, int title_height) {
    return list_height + space + title_height;
}

bool Propagate_Has_Next(int frame_nb, int current) {
    return frame_nb > 1 && current < frame_nb - 1;
}

bool Propagate_Has_Previous(int frame_nb, int current) {
    return frame_nb > 1 && current > 0;
}
