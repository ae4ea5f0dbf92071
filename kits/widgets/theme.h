/** Colours of the library's own parts. Panels bring their face colours; these are for what they do not name. */
#pragma once

#include "host/kit_widgets.h"
#include "kits/widgets/surface.h"

struct Theme {
    Rgb panel;         ///< ground of a tool area; inactive widgets are mixed with it
    Rgb field;         ///< ground of fields, tracks and lists
    Rgb field_text;    ///< text on `field`
    Rgb face;          ///< thumb, arrow button
    Rgb face_hover;    ///< the same under the pointer
    Rgb face_pressed;  ///< the same while pressed or dragged
    Rgb line;          ///< border lines
    Rgb line_strong;   ///< border of what has the keyboard or the pointer
    Rgb text;          ///< text on `panel` and `face`
    Rgb text_grey;     ///< text of inactive widgets
    Rgb accent;        ///< marks, filled bars, selected text's ground, drop list's current row
    Rgb accent_text;   ///< text on `accent`
};

const Theme& Theme_Now();
/** The colours for the parts of a widget whose own ground is this one: those of the theme, but on a ground that is as
 *  dark or as light as the other theme's, that one's. */
const Theme& Theme_On(Rgb ground);

Rgb Rgb_Of(const Colors& color);
Rgb Rgb_Make(int red, int green, int blue);  ///< components are cut to 0 .. 255
/** `percent` of b in a. */
Rgb Mix(Rgb a, Rgb b, int percent);

/** How much of the panel's colour is in the face or ground of an inactive list, slider, field or text. */
inline constexpr int INACTIVE_MIX_PERCENT = 60;
/** Perceived brightness, 0 (black) to 255 (white). */
int Brightness(Rgb color);
/** Nearly black or white, whichever contrasts more with `ground`: at least 4.5 to 1 on every colour. Never 0. */
Rgb Contrast_Color(Rgb ground);
/** Lighter on dark grounds, darker on light ones: hover at about 14 percent, pressed at about 28. */
Rgb Shade(Rgb ground, int percent);

/** Height in pixels and face name of the library's own font; the height follows the library's scale. */
int Library_Font_Height();
inline constexpr const char* LIBRARY_FONT_NAME = "Arial";
