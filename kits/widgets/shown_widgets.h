/** @file
 *  What stands in a window, for programs that read a screen aloud: the library notes every widget that it paints. */
#pragma once

#include "host/kit_widgets.h"

/** What a widget is to its user. */
enum class Widget_Kind { Button, Label, List, Slider, Value, Text };

inline constexpr int SHOWN_TEXT_SIZE = 80;  ///< bytes of a name or value, its zero included; longer ones are cut

/** A widget as it was painted last. */
struct Shown_Widget {
    Widget_Kind kind = Widget_Kind::Button;  ///< says which of the members below mean something
    ///@{
    int left = 0;  ///< client pixels, y down, whatever the window's axis
    int top = 0;
    int width = 0;
    int height = 0;
    ///@}
    bool is_current = false;           ///< buttons: Buttons::current
    bool is_checked = false;           ///< buttons: Buttons::checked
    bool is_inactive = false;          ///< takes no events
    char name[SHOWN_TEXT_SIZE] = {};   ///< caption, in the system's code page like `value`; empty for a picture
    char value[SHOWN_TEXT_SIZE] = {};  ///< item, number or text; empty for what has none
};

/** Begins (or ends) to note what is painted in a window; what was painted before is not known. Costs one look at each
 *  widget of the window per paint, so nothing is noted unless it is asked for. Ends with Window_Forget. */
KIT_WIDGETS_API void Window_Widgets_Watch(HWND window, bool on);
/** Widgets noted in a window; 0 when it is not watched. */
KIT_WIDGETS_API int Window_Widget_Nb(HWND window);
/** One of them. @param window a watched window; @param index 0 .. Window_Widget_Nb - 1, in the order of painting;
 *  @param out written only when there is one. @return false: there is none */
KIT_WIDGETS_API bool Window_Widget_Get(HWND window, int index, Shown_Widget* out);
