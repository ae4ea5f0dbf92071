/** What all widgets draw with: a picture of the widget that is shown at once, and the parts that widgets have in
 * common. */
#pragma once

#include <array>
#include <string_view>

#include "host/kit_widgets.h"
#include "kits/widgets/axis.h"
#include "kits/widgets/surface.h"
#include "kits/widgets/theme.h"
#include "kits/widgets/window_state.h"

// ---- state

/** Both edit bits without the grey bit: not drawn at all. */
inline bool Widget_Hidden(const Tools& widget) {
    return (widget.style & STYLE_EDITED) == STYLE_EDITED && (widget.style & STYLE_GREYED) == 0;
}
/** Does not react; drawn greyed unless hidden. */
inline bool Widget_Inactive(const Tools& widget) {
    return (widget.style & STYLE_EDITED) == STYLE_EDITED;
}

/** What Init does for every widget: takes the window, null keeps the stored one. @return 1 */
int Widget_Init(Tools& widget, HWND init_window);
/** The font of a widget's captions. */
Font_Choice Widget_Font(const Tools& widget);
/** The widget's border thickness, cut to what its size has room for. */
int Widget_Border(const Tools& widget);

/** Counters of widgets_host.h. Count what was painted, not what was asked for. */
void Count_Init();
void Count_Draw();
void Count_Adjust();
void Count_Clear();

/** The key code that the host is passing to a panel (Key_In_Hand_Set), 0 for none. */
int Key_In_Hand();
/** Held buttons, keys and the clipboard through the application's Input_Source, or the system's. */
bool Input_Button_Held(int button);
bool Input_Key_Held(int virtual_key);
int Input_Clipboard_Get(char* out, int size);
int Input_Clipboard_Set(const char* text);

// ---- painter

/** The picture of one widget (or of a rectangle beside it), shown in its window when the painter ends. Its pixels are
 * not cleared. */
class Painter {
  public:
    explicit Painter(const Tools& widget);
    /** A picture at a device rectangle of a window, for what stands outside the widget (a drop list). */
    Painter(HWND window, const Rect& device);
    ~Painter();
    Painter(const Painter&) = delete;
    Painter& operator=(const Painter&) = delete;

    /** False: no window, no area or no memory; draw nothing. */
    explicit operator bool() const;
    /** The picture: (0, 0) is the visual top left pixel. */
    Surface& Picture() { return scratch.View(); }
    Rect Area() const { return {0, 0, device.width, device.height}; }
    /** Fills the picture or, where drawings are collected, the window itself at once: then only what is to be seen over
     *  it need be shown. @return true: the window */
    bool Fill_Below(Rgb color);
    /** Only this part of the picture is shown at the end; further calls add parts (six at most, then their hull). */
    void Show_Only(const Rect& part);
    /** Nothing is shown at the end. */
    void Show_Nothing() { Show_Only({}); }

  private:
    static constexpr int PARTS_MAX = 6;
    HWND window = nullptr;
    Rect device;
    bool found = false;
    Scratch_Picture scratch;
    Rect parts[PARTS_MAX];
    int part_nb = 0;
};

// ---- common parts

/** The four strips of a frame: top, bottom, left, right. */
std::array<Rect, 4> Frame_Sides(const Rect& rect, int thickness);
/** A flat face with a border of `border` pixels to the inside. */
void Draw_Face(Surface& picture, const Rect& rect, Rgb face, Rgb line, int border);
/** A caption with the widget's font, cut at whole characters with three dots when it is too long. */
void Draw_Caption(Surface& picture, const Rect& rect, const Tools& widget, std::string_view text, Rgb color,
                  Align align);
/** A check mark that fills a square in the middle of `rect`, with a halo in the opposite brightness so that it shows on
 * any ground. */
void Draw_Check(Surface& picture, const Rect& rect, Rgb color);
enum class Arrow { Up, Down, Left, Right };
/** A triangle in the middle of `rect`. */
void Draw_Arrow(Surface& picture, const Rect& rect, Arrow direction, Rgb color);
