/** @file
 *  The application's side of Kit_Widgets: axes, back buffers, input sources and counters. */
#pragma once

#include "host/kit_widgets.h"

/** Direction in which y grows in a window. */
enum class Window_Axis { Up, Down };

/** Declares a window's axis. To be called before the first panel is laid out in it. The default is Up. */
KIT_WIDGETS_API void Window_Axis_Set(HWND window, Window_Axis axis);
/** Up also for a window that the library does not know. */
KIT_WIDGETS_API Window_Axis Window_Axis_Get(HWND window);
/** Forgets what the library keeps of a window that is being destroyed. */
KIT_WIDGETS_API void Window_Forget(HWND window);
/** The pointer globals in the window's own coordinates. @return false when the window is gone */
KIT_WIDGETS_API bool Window_Pointer(HWND window, int* x, int* y);

///@{
/** Collects everything drawn into a window in a back buffer until Window_Buffer_End shows it at once. Nests. Without
 * memory drawing goes to the screen. */
KIT_WIDGETS_API void Window_Buffer_Begin(HWND window);
KIT_WIDGETS_API void Window_Buffer_End(HWND window);
///@}

/** Pixels of a whole dialog unit of text on this screen: 96 dots per inch count as 1.0. Scales the library's own fonts,
 * BORDER and SPACE. */
KIT_WIDGETS_API void Library_Scale_Set(float scale);

/** Where the library asks for held buttons and keys and for the clipboard. Null members ask the system. */
struct Input_Source {
    /** Non-zero while a mouse button is held: 1 left, 2 right, 4 middle. */
    int (*button)(int button) = nullptr;
    /** Non-zero while a key is held. */
    int (*key)(int virtual_key) = nullptr;
    /** Copies the clipboard's text, in the system's code page, into `out` of `size` bytes. @return its length, 0 for
     * none */
    int (*clipboard_get)(char* out, int size) = nullptr;
    /** Puts a text on the clipboard. @return 1; 0 when that failed: a text to be cut stays then */
    int (*clipboard_set)(const char* text) = nullptr;
};
/** Replaces the source; a default Input_Source: the system. */
KIT_WIDGETS_API void Input_Source_Set(const Input_Source& source);

/** Tells the library the key code that is being handled, so that a list can apply it (Selects::Scroll(0)). To be called
 * with the code before every Keyboard of a panel and with 0 after it; while there is none, Scroll(0) goes by the keys
 * that are held. */
KIT_WIDGETS_API void Key_In_Hand_Set(int key);

/** Counts of widget operations that painted, since the last reset. */
struct Widget_Counters {
    unsigned int inits = 0;    ///< Init calls (no painting)
    unsigned int draws = 0;    ///< complete paints
    unsigned int adjusts = 0;  ///< paints of state marks
    unsigned int clears = 0;   ///< filled backgrounds
};
/** The counts of all windows together. */
KIT_WIDGETS_API Widget_Counters Widget_Counters_Get();
/** All counts start again from 0. */
KIT_WIDGETS_API void Widget_Counters_Reset();

/** Look of the library: dark or light. Panels keep their own colours. */
enum class Library_Theme { Dark, Light };
/** Sets the look; paints nothing, so the application redraws its windows. */
KIT_WIDGETS_API void Library_Theme_Set(Library_Theme theme);

/** To be called when no panel operation is running: reports device contexts that Y_setup gave and that Y_release did
 * not take back, wait cursors that are still shown, windows that were drawn in without a declared axis, and a main
 * window that was never named. See kits/common/contract.h. */
KIT_WIDGETS_API void Contract_Check_Drawing();
