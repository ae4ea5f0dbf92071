#include "kits/widgets/axis.h"

#include "kits/widgets/window_state.h"

int Axis_Row(Window_Axis axis, int client_height, int y) {
    return axis == Window_Axis::Up ? client_height - 1 - y : y;
}

bool Widget_Device_Rect(const Tools& widget, Rect* rect) {
    Size client;
    if (widget.width <= 0 || widget.height <= 0 || !Window_Client_Size(widget.window, &client)) {
        return false;
    }
    Window_Drawn_Note(widget.window);
    // The visual top row is the widget's last row when y counts upwards, its first when y counts downwards.
    const Window_Axis axis = Window_Axis_Get(widget.window);
    const int top_row = axis == Window_Axis::Up ? widget.y + widget.height - 1 : widget.y;
    *rect = {widget.x, Axis_Row(axis, client.height, top_row), widget.width, widget.height};
    return true;
}

bool Widget_Pointer(const Tools& widget, Point* point) {
    Rect rect;
    Point client;
    if (!Widget_Device_Rect(widget, &rect) || !Window_From_Screen(widget.window, {YCursor_X, YCursor_Y}, &client)) {
        *point = {-1, -1};
        return false;
    }
    *point = {client.x - rect.left, client.y - rect.top};
    return rect.Has_Point(client);
}

bool Window_Pointer(HWND window, int* x, int* y) {
    Size client;
    Point point;
    if (!Window_Client_Size(window, &client) || !Window_From_Screen(window, {YCursor_X, YCursor_Y}, &point)) {
        return false;
    }
    if (x != nullptr) {
        *x = point.x;
    }
    if (y != nullptr) {
        *y = Axis_Row(Window_Axis_Get(window), client.height, point.y);
    }
    return true;
}
