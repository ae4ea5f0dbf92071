/** @file
 *  Kit_Widgets: the widget library that panels are built from.
 *
 *  Coordinates. Every window has one vertical axis, up (the default: y counts from the bottom row) or down (y counts
 *  from the top row); the host declares it, panels never ask. A widget at (x, y, width, height) covers the pixels x ..
 *  x + width - 1 and y .. y + height - 1 of its window's axis. Sliders, titles and texts are visual: slider value 0 is
 *  at the visual top (or left), titles stand at the visual top, text is upright, whichever the axis.
 *
 *  Life of a widget: set the fields, Init(window) computes the inner geometry (draws nothing), Draw() paints
 *  everything, Adjust() repaints the state marks only. A widget without a window, or with a width or height of 0 or
 *  less, draws nothing and is never hit.
 *
 *  Events carry no position: the host sets YCursor_X and YCursor_Y (screen coordinates) before every event.
 *
 *  Texts. Captions, items, names of fonts and files, and edited texts are zero-terminated and in the system's code
 *  page, which may have characters of several bytes (UTF-8 and the double-byte pages). Every limit in bytes cuts at a
 *  whole character. Texts that a widget is given are copied; the font's name and weight are not: they must outlive it.
 *  What a widget hands out belongs to the widget.
 *
 *  Memory. A widget's images, items and texts are the widget's own, on the heap of Kit_Widgets: nobody else frees them.
 */
#pragma once

#include "host/platform.h"

/** Exported while the module itself is built, imported by everyone else. */
#if defined(KIT_WIDGETS_BUILD)
#define KIT_WIDGETS_API KIT_EXPORT
#else
#define KIT_WIDGETS_API KIT_IMPORT
#endif

// ---------------- style words

inline constexpr unsigned int STYLE_FRAMED_BOX = 66;         ///< bordered (0x2) and filled (0x40) box
inline constexpr unsigned int STYLE_GRID_BUTTON = 0x400000;  ///< plain button of a grid
inline constexpr unsigned int STYLE_SHOW_CHECK = 0x100000;   ///< the check mark is shown
inline constexpr unsigned int STYLE_BUTTON = 0;              ///< plain button
inline constexpr unsigned int STYLE_EDITED =
    0x3;  ///< both bits: does not react and, without STYLE_GREYED, is not drawn
inline constexpr unsigned int STYLE_GREYED = 0x20;                ///< drawn greyed (with STYLE_EDITED)
inline constexpr unsigned int STYLE_INACTIVE = 0x23;              ///< does not react, drawn greyed
inline constexpr unsigned int STYLE_SCROLL_BAR = 0x4;             ///< slider
inline constexpr unsigned int STYLE_VERTICAL = 0x8000000;         ///< the slider is vertical
inline constexpr unsigned int STYLE_SLIDER_VERTICAL = 0x8000004;  ///< vertical scroll bar
inline constexpr unsigned int STYLE_SLIDER_HIDDEN = 7;  ///< scroll bar that is not needed: not drawn, does not react
inline constexpr unsigned int STYLE_FLAT = 0x2100;      ///< flat field, caption at the left
inline constexpr unsigned int STYLE_FLAT_INACTIVE = 0x2123;   ///< the same, inactive
inline constexpr unsigned int STYLE_EDIT_OPEN = 0x80000000U;  ///< text field that has the keyboard
inline constexpr unsigned int STYLE_EDIT_IDLE = 0x80000003U;  ///< text field without the keyboard, not drawn
inline constexpr unsigned int STYLE_EDIT_LIVE = 0xC0000000U;  ///< text field that yields its text after every key

// ---------------- event codes

inline constexpr int MOUSE_DRAG = 0x01;   ///< in Motion: some button is held
inline constexpr int MOUSE_PRESS = 0x02;  ///< in Click: a button went down
inline constexpr int MOUSE_ASK = 4;      ///< never an event: asks a widget's Select only whether the pointer is over it
inline constexpr int MOUSE_LEFT = 0x10;  ///< left button held after the event
inline constexpr int MOUSE_MIDDLE = 0x20;  ///< middle button held
inline constexpr int MOUSE_RIGHT = 0x40;   ///< right button held

///@{
/** Key codes of characters are the characters themselves: bytes of the system's code page, one key code after the other
 * in a double-byte page. A character without a single byte in that page (all beyond 127 in UTF-8) has its UTF-16
 * numbers as key codes, one after the other, where that is not one of the numbers of KEY_SPECIAL. */
inline constexpr int KEY_ESCAPE = 27;
inline constexpr int KEY_ENTER = 13;
inline constexpr int KEY_TAB = 9;
inline constexpr int KEY_BACKSPACE = 8;
///@}
inline constexpr int KEY_SPECIAL = 0x800;  ///< added to the virtual-key code of a key without a character
///@{
/** KEY_SPECIAL and the virtual-key code. */
inline constexpr int KEY_PAGE_UP = 0x821;
inline constexpr int KEY_PAGE_DOWN = 0x822;
inline constexpr int KEY_END = 0x823;
inline constexpr int KEY_HOME = 0x824;
inline constexpr int KEY_LEFT = 0x825;
inline constexpr int KEY_UP = 0x826;
inline constexpr int KEY_RIGHT = 0x827;
inline constexpr int KEY_DOWN = 0x828;
inline constexpr int KEY_INSERT = 0x82D;
inline constexpr int KEY_DELETE = 0x82E;
///@}

// ---------------- globals

extern KIT_WIDGETS_API short BORDER;   ///< the library's own border, pixels
extern KIT_WIDGETS_API short SPACE;    ///< the library's own spacing, pixels; not "$INTERFACE_SPACE_DIM"
extern KIT_WIDGETS_API int YCursor_X;  ///< pointer, screen coordinates, set by the host before every event
extern KIT_WIDGETS_API int YCursor_Y;  ///< pointer, screen coordinates (y down)
extern KIT_WIDGETS_API HWND Y_Window;  ///< window of the innermost Y_setup, null outside
extern KIT_WIDGETS_API HDC Y_DC;       ///< device context of the innermost Y_setup, null outside

/** Colour components 0 to 255; the fourth is free for the host. */
struct KIT_WIDGETS_API Colors {
    ///@{
    unsigned short red = 0;  ///< 0 .. 255
    unsigned short green = 0;
    unsigned short blue = 0;
    ///@}
    unsigned short fourth = 0;  ///< not looked at by the library
    /** The colour packed as 0x00BBGGRR; of each component the low eight bits. */
    unsigned long get() const;
};

// ---------------- base class

inline constexpr int TOOLS_NAME_SIZE = 128;    ///< bytes of a caption field, the terminating zero included
inline constexpr int BUTTON_CAPTION_MAX = 39;  ///< longest caption of a button, bytes

/** What all widgets share. Plain fields, set by the panel before Init. */
class KIT_WIDGETS_API Tools {
  public:
    unsigned int style = 0;  ///< see STYLE_*
    ///@{
    short x = 0;  ///< pixels of the window's axis
    short y = 0;
    short width = 0;
    short height = 0;
    ///@}
    const char* font_name = nullptr;    ///< face name, owned by the host; null: the library's own
    const char* font_weight = nullptr;  ///< "bold" or "", owned by the host
    HFONT font = nullptr;  ///< created font, owned by the host; null: made by the library from name, weight and scale
    short font_scale = 0;  ///< drawing parameter: font height in pixels; 0: the library's own
    Colors color;          ///< face colour
    unsigned short border = 0;        ///< border thickness, pixels
    HWND window = nullptr;            ///< set by Init
    char name[TOOLS_NAME_SIZE] = {};  ///< caption or title, see Set_Name

    Tools() = default;

    /** Makes the caption by printf rules; copied and cut at the field's length (39 bytes for Buttons), at a whole
     * character. Draws nothing. */
    void Set_Name(const char* format, ...) KIT_PRINTF_FORMAT(2, 3);
    /** Sets red, green and blue; the fourth component is kept. */
    void Set_Color(unsigned char red, unsigned char green, unsigned char blue);
    /** Fills the widget's rectangle with its own colour. */
    void Clear();
    /** Fills the widget's rectangle with the colour. */
    void Clear(Colors fill);
    /** Draws an icon file of the icon folders, tinted by the colour, its left edge at x and its middle line at y.
     * Unknown file: nothing. */
    void Icon(const char* file, unsigned char red, unsigned char green, unsigned char blue, short icon_x, short icon_y);
    /** Draws the border lines. */
    void Cadre();
    /** Fills the rectangle with the highlight colour. */
    void Fill_Select();
    /** Fills the rectangle with the widget's own colour and draws a text on it, left-aligned and centred in height.
     * Null: nothing. */
    void Text(const char* text);
    /** Takes the widget off its window: it draws nothing and is never hit until Init is called with a window again. */
    void Free();

    /** Copies fonts, font scale, colour, border and window handle of a host box: what panels hand on to their widgets.
     */
    void Take_Look(const Tools& host);

  protected:
    unsigned short name_max = TOOLS_NAME_SIZE - 1;  ///< longest caption that Set_Name keeps
    unsigned short state_base = 0;                  ///< the library's own
};

/** A framed rectangle with an optional title (the caption). */
class KIT_WIDGETS_API Boxs : public Tools {
  public:
    /** @param init_window the window; null keeps the stored one. @return 1 */
    int Init(HWND init_window);
    /** The filling (0x40), the border (0x2) and, with a caption, the title band at the visual top. */
    void Draw();
    /** Border and title band only: what is painted inside stays. */
    void Adjust();
    /** Non-zero when the pointer is inside. Never captures. @param up_down any code; MOUSE_ASK only asks */
    int Select(int up_down);
    /** Does nothing: a box has no look of its own under the pointer. */
    void Deselect();
};

/** A push button with a current mark, a checked mark and four pixel images. */
class KIT_WIDGETS_API Buttons : public Tools {
  public:
    unsigned short current = 0;   ///< current mark, drawn by Draw and Adjust
    unsigned short checked = 0;   ///< checked mark, shown with STYLE_SHOW_CHECK
    unsigned short state = 0;     ///< transient look: 0 plain, 1 hover, 2 pressed; directly after `checked`
    unsigned int* image[4] = {};  ///< width x height pixels 0x00RRGGBB each, rows from the visual top; owned by the
                                  ///< button; null without area or memory. [0] plain, [1] hover, [2] pressed, [3]
                                  ///< current. Init makes their backgrounds: four distinct colours, none of them 0.
    Buttons();
    ~Buttons();
    Buttons(const Buttons& other);             ///< the images are copied
    Buttons& operator=(const Buttons& other);  ///< the images are copied

    /** Also makes the four images, or clears them to their backgrounds. @param init_window as for Boxs. @return 1 */
    int Init(HWND init_window);
    /** The image of its look, border, marks and caption; nothing while STYLE_EDITED without STYLE_GREYED. */
    void Draw();
    /** Repaints the current and checked marks only (and what a caption that reads upwards has there). */
    void Adjust();
    /** Feeds an event. Shows hover and press feedback. @return non-zero when the event falls on the button; 0 while
     * inactive or being edited. MOUSE_ASK only asks. 0, the code of a mere motion, also refreshes the button when the
     * image that it shows was painted into or `state` was set. */
    int Select(int up_down);
    /** Leaves the hover or pressed look; draws only when the look changes. */
    void Deselect();

  private:
    void Images_Free();
    int Images_Make();
};

/** A scroll bar, vertical (STYLE_SLIDER_VERTICAL) or horizontal (STYLE_SCROLL_BAR alone). Its value is a pixel offset.
 */
class KIT_WIDGETS_API Sliders : public Tools {
  public:
    ///@{
    float value = 0.0F;    ///< pixels between minimum and maximum; 0 is at the visual top or left
    float minimum = 0.0F;  ///< pixels
    float maximum = 1.0F;  ///< pixels; equal to the minimum: the value is that; below it: the value stays as it is
    float step = 1.0F;     ///< pixels of one notch of the wheel
    ///@}

    Sliders();
    /** As for every widget; also brings a value from outside minimum .. maximum back (unless the maximum lies below the
     * minimum). So does Adjust. @return 1 */
    int Init(HWND init_window);
    /** Track and thumb; nothing with STYLE_SLIDER_HIDDEN. */
    void Draw();
    /** Repaints the thumb. */
    void Adjust();
    /** The value after an event. */
    float Read();
    /** Feeds an event. A press: non-zero when it falls on the slider (starts a drag on the thumb, pages beside it). A
     * motion: non-zero only while the thumb is dragged; a drag ends by itself with the first motion without MOUSE_DRAG.
     * A new value is not painted by itself: call Adjust (or Draw) after a non-zero result. MOUSE_ASK only asks whether
     * the pointer is over it. A slider that does not react (inactive, or not needed) answers 0 to all, MOUSE_ASK too.
     */
    int Select(int up_down);
    /** Ends a drag and leaves the hover look; draws only when the look changes. */
    void Deselect();
    /** Adds notches x step, clamped to minimum .. maximum, and keeps the value. A slider that does not react and one
     * whose maximum lies below the minimum stay as they are. @return the value. Draws nothing. */
    float Scroll(int notches);
    /** Sets the thumb's length: visible of total, in any one unit. A total of 0 or less gives a full thumb. */
    void Larg_Adjust(float visible, float total);

  private:
    float visible_part = 1.0F;  ///< thumb length as a fraction of the track
    short grab = 0;             ///< pointer offset inside the thumb while it is dragged
    bool dragged = false;
    bool hovered = false;
};

/** A vertical valuator: a slider that shows its value by a filled bar. */
class KIT_WIDGETS_API Valuators : public Tools {
  public:
    float value = 1.0F;    ///< minimum (visual top) .. maximum
    float minimum = 0.0F;  ///< in the panel's own unit, as all four
    float maximum = 1.0F;  ///< below the minimum: the value stays as it is
    float step = 0.05F;    ///< of one notch of the wheel

    /** As for Sliders: a value from outside minimum .. maximum is brought back. @return 1 */
    int Init(HWND init_window);
    ///@{
    /** Track, bar and mark: the whole valuator. */
    void Draw();
    void Adjust();
    ///@}
    /** The value after an event. */
    float Read();
    /** As Sliders::Select: a press anywhere on the valuator takes the value there and starts a drag. Here too the new
     * value is painted by the caller's Adjust. */
    int Select(int up_down);
    /** Ends a drag and leaves the hover look; draws only when the look changes. */
    void Deselect();
    /** As Sliders::Scroll. @return the value. Draws nothing. */
    float Scroll(int notches);

  private:
    bool dragged = false;
    bool hovered = false;
};

/** Caption of one item of a list, or an empty text. */
struct Select_Item {
    char text[40] = {};  ///< in the system's code page, with its terminating zero
};

/** A one-of-N list: caption, a field with the current item, arrows to the previous and next item, and a drop list. */
class KIT_WIDGETS_API Selects : public Tools {
  public:
    short current = 0;            ///< current item; outside 0 .. item_nb - 1: drawn empty
    short arrow = 0;              ///< width of an arrow, pixels
    int item_nb = 0;              ///< set by Grow
    Select_Item* item = nullptr;  ///< item_nb captions, owned by the list, written by the panel after Grow

    Selects();
    ~Selects();
    ///@{
    /** The captions are copied; without memory the copy has no items. */
    Selects(const Selects& other);
    Selects& operator=(const Selects& other);
    ///@}

    /** As for Boxs; the items stay. @return 1 */
    int Init(HWND init_window);
    /** Caption, field with the current item, and arrows. */
    void Draw();
    /** Repaints field and arrows. */
    void Adjust();
    /** The item picked by the last event, or a negative number when it picked none. A pick does not move `current`: the
     * panel stores it there when it takes it. */
    int Read();
    /** Feeds an event. @return non-zero when a press falls on the list (an arrow picks the item before or after
     * `current` at once, without moving `current`; the field opens the drop list in a modal loop of its own, in which
     * the host's windows get their messages, and the operation returns when that is closed: by a pick, or without); 0
     * too when the list was destroyed while its drop list was open. MOUSE_ASK only asks whether the pointer is over the
     * list. */
    int Select(int up_down);
    /** Leaves hover and pressed looks; draws only when a look changes. */
    void Deselect();
    /** Makes room for `nb` items and forgets the captions unless `keep` is non-zero. @return 1; 0 without memory (no
     * items then) */
    int Grow(int nb, int keep);
    /** Moves the current item by n, clamped to 0 .. item_nb - 1, and repaints it. n = 0 applies the navigation key now
     * down: Home, End, Page Up and Page Down by ten, Left and Insert back by one, Right and Delete forward by one.
     * @return the current item */
    int Scroll(int n);

  private:
    short picked = -1;
    short hovered_part = 0;
    short pressed_part = 0;
};

inline constexpr int TEXTS_SIZE = 1024;  ///< bytes of an edited text, the terminating zero included

/** An editable one-line text field with caret, selection and clipboard. */
class KIT_WIDGETS_API Texts : public Tools {
  public:
    unsigned short position = 0;  ///< first character shown

    /** As for Boxs; also forgets caret, selection and a finished edit. The text stays. @return 1 */
    int Init(HWND init_window);
    ///@{
    /** Both paint the whole field, scrolled so that the caret is in view. */
    void Draw();
    void Adjust();
    ///@}
    /** Loads the text by printf rules, puts the caret at its end, selects all and forgets a finished edit. A live field
     * that is handed its own text back (all of it or its start) keeps caret and selection. Draws nothing. */
    void Read(const char* format, ...) KIT_PRINTF_FORMAT(2, 3);
    /** Prints a fixed text (a prompt) into the field and draws it. A leading byte 2 ends a styled run: plain. */
    void Write(const char* format, ...) KIT_PRINTF_FORMAT(2, 3);
    /** (1, 0, 0): non-zero while the field has the keyboard. (up_down, 0, 0): places the caret by a press and selects
     * by a drag, non-zero meanwhile. Another pair than (0, 0) is the pointer in the window's own axis, in place of the
     * globals. */
    int Select(int up_down, short pointer_x, short pointer_y);
    /** Ends selecting by a drag. */
    void Deselect();
    /** Feeds one key code: characters, Backspace, Delete, Home, End, Left, Right (with Shift they select), Ctrl+A, C,
     * X, V as characters 1, 3, 24, 22. Enter and Tab finish with the text, Escape with an empty text. Repaints the
     * field. */
    void Input(int key);
    /** The finished text, or null while editing goes on; with STYLE_EDIT_LIVE the current text after every key. The
     * buffer, of TEXTS_SIZE bytes, is the field's own; it may be written and lives as long as the field. */
    char* Update();
    /** Clears the field's area before drawing. */
    void Cleanup();

  private:
    char text[TEXTS_SIZE] = {};
    short caret = 0;   ///< byte offset, on a character
    short anchor = 0;  ///< other end of the selection
    bool finished = false;
    bool key_seen = false;
    bool selecting = false;
    unsigned short typed_first = 0;  ///< first key code of a character whose second one is still to come, 0 for none
};

/** A static label. */
class KIT_WIDGETS_API Labels : public Tools {
  public:
    /** As for Boxs. @return 1 */
    int Init(HWND init_window);
    /** The caption at the left on the label's colour. */
    void Draw();
    ///@{
    /** A label has no marks, takes no event and has no value: these do nothing and give 0. */
    void Adjust();
    float Read();
    int Select(int up_down);
    void Deselect();
    float Scroll(int notches);
    ///@}
};

// ---------------- free functions

///@{
/** Shows the wait cursor over a window (null: the host's) until the matching Reset_Curs_Wait. Nests. */
KIT_WIDGETS_API void Set_Curs_Wait(HWND window);
KIT_WIDGETS_API void Reset_Curs_Wait(HWND window);
///@}

/** Non-zero while a mouse button is held. @param button 1 left, 4 middle, 2 right (virtual-key numbers) */
KIT_WIDGETS_API int getbutton(int button);
/** Non-zero while a key is held. @param virtual_key for example VK_SHIFT or VK_CONTROL */
KIT_WIDGETS_API int getkey(int virtual_key);

/** Turns a key message into a key code; 0: none. Characters come from WM_CHAR, as bytes of the code page or, in a
 * Unicode window, as UTF-16; keys without a character come from key-down messages. */
KIT_WIDGETS_API int Parse_Keyboard(HWND window, unsigned int message, std::uintptr_t wparam, std::intptr_t lparam);
/** The same for a dialog, whose characters are translated from key-down messages. */
KIT_WIDGETS_API int Parse_Dialog(HWND window, unsigned int message, std::uintptr_t wparam, std::intptr_t lparam);

/** Creates a font; null on failure. The caller owns it. @param window null or one on the
 * screen meant; @param font_name face name; @param style "bold" or ""; @param size height in pixels */
KIT_WIDGETS_API HFONT Y_Create_Font(HWND window, const char* font_name, const char* style, int size);

/** Begins drawing: a device context of the window in the window's own axis, with default text alignment. Nests; sets
 *  Y_Window and Y_DC.
 *  @param window a window that lives until Y_release
 *  @param label names the operation in "Y_setup(%s) GetDC failed"
 *  @return null on failure: draw nothing, and call no Y_release
 */
KIT_WIDGETS_API HDC Y_setup(HWND window, const char* label);
/** Ends drawing. @return 1; 0 after "Y_release() Failed!" */
KIT_WIDGETS_API int Y_release(HWND window, HDC dc);

/** Draws an icon file of "$DEFAULT_ICON_PATH" (second place: the program's folder named by prog_name) at the device
 * context of the innermost Y_setup: left edge x, middle line y. Unknown file: nothing, without a message. */
KIT_WIDGETS_API void Icon_Draw_Image(const Boxs& box, int x, int y, const char* prog_name, const char* file);
///@{
/** Lead cells of a tree row, 20 pixels wide, x0 < x1 and y0 < y1 in the window's axis. `flag`: leaf and no access: 1 =
 * the line goes on to the next sibling; expand and collapse: the row number (0: no line upwards). */
KIT_WIDGETS_API void Icon_Lead_Expand(const Boxs& box, int flag, int x0, int x1, int y0, int y1);
KIT_WIDGETS_API void Icon_Lead_Collapse(const Boxs& box, int flag, int x0, int x1, int y0, int y1);
KIT_WIDGETS_API void Icon_Lead_Leaf(const Boxs& box, int flag, int x0, int x1, int y0, int y1);
KIT_WIDGETS_API void Icon_Lead_No_Access(const Boxs& box, int flag, int x0, int x1, int y0, int y1);
///@}
