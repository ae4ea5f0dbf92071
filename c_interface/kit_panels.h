/** @file
 *  The tool panels for hosts of any compiler and language: plain C11, fixed-width types, no C++ and no system header.
 *
 *  Behind it stand the module and its four kits. Handles are numbers: one that was given back, that never was, or that
 *  is of another kind is an error and nothing worse. No exception and no heap crosses the border: texts and arrays that
 *  are passed in are copied before the function returns, texts and arrays that are asked for are written into the
 *  caller's memory.
 *
 *  **Threads.** The thread that called kit_start() is the user-interface thread. Every other function but
 *  kit_panels_abi_version() and kit_status_text() is called on it; elsewhere it gives KIT_ERROR_THREAD.
 *
 *  **Errors.** A function that fails has changed nothing, and written nothing but null handles; only a lack of memory
 *  in the middle may leave a part done. What each function may give, beyond what it says itself: KIT_ERROR_STATE before
 *  kit_start() and after kit_stop(), and for a panel whose window the host has destroyed; KIT_ERROR_HANDLE and
 *  KIT_ERROR_KIND for a handle that is not of the wanted kind; KIT_ERROR_ARGUMENT for a null pointer that is not said
 *  to be allowed and for a number outside its range; KIT_ERROR_SIZE for a struct, KIT_ERROR_TEXT for a text,
 *  KIT_ERROR_MISSING for the name of a variable, KIT_ERROR_ROOM for what is asked for; KIT_ERROR_MEMORY.
 *
 *  **Ownership.** The host gives back by the _destroy functions what it made; kit_stop() gives back the rest. No memory
 *  changes hands: nothing that the host allocated is freed here, and nothing of here is freed by the host. The window
 *  of a panel is the host's, a child window that a panel made for itself is the panel's.
 *
 *  **Units** are pixels of the window or of the image, grey levels, and numbers that count from 0.
 *
 *  **Texts** are UTF-8 with an ending zero. Panels work in the system's code page: a text that has other characters
 *  than that page gives KIT_ERROR_TEXT.
 *
 *  **Texts and arrays that are asked for.** `room` is the size of `out` in elements (bytes for texts, the ending zero
 *  included), `needed` receives the size that all of it takes. With too little room nothing is written and the status
 *  is KIT_ERROR_ROOM; `out` null with `room` 0 asks for the size and gives KIT_OK.
 *
 *  **Structs** begin with their `size`, which the caller sets to sizeof before it hands one over, also when it is to be
 *  filled. Later versions only append members; members that the caller's version does not have count as 0.
 *
 *  **Call-backs.** One function hears everything (kit_settings::on_event). Panels ask and report in the middle of their
 *  work; what they said is kept, and told when the outermost function of this interface returns. So any function may be
 *  called in it. Only events that want an answer (KIT_EVENT_PROPAGATE, KIT_EVENT_FILE_NAME) are told at once, inside
 *  the operation that asks: there too every function may be called but kit_stop().
 */
#ifndef KIT_PANELS_C_H
#define KIT_PANELS_C_H

#include <stdint.h>

#if defined(_WIN32) && defined(KIT_PANELS_C_BUILD)
#define KIT_C_API __declspec(dllexport)
#elif defined(_WIN32)
#define KIT_C_API __declspec(dllimport)
#else
#define KIT_C_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/* ---------------------------------------------------------------------------------------------------------------- */
/* version, status */

/** Version of this header: the higher 16 bits change when programs must be changed, the lower 16 when something was
 *  added. */
#define KIT_ABI_VERSION 0x00010001u

typedef uint64_t kit_handle; /**< a panel, volume, class or file; 0: none */
typedef int32_t kit_status;  /**< KIT_OK or one of the KIT_ERROR_ numbers, all below 0 */

#define KIT_OK 0
#define KIT_ERROR_ARGUMENT (-1)  /**< a null pointer, or a number outside its range */
#define KIT_ERROR_HANDLE (-2)    /**< no such handle: given back already, or never made */
#define KIT_ERROR_KIND (-3)      /**< a handle of another kind than the function takes */
#define KIT_ERROR_SIZE (-4)      /**< the `size` of a struct is not one of any version */
#define KIT_ERROR_MEMORY (-5)    /**< no memory */
#define KIT_ERROR_STATE (-6)     /**< not now: not started, started twice, or nothing there to work on */
#define KIT_ERROR_THREAD (-7)    /**< called on another thread than the user-interface thread */
#define KIT_ERROR_MISSING (-8)   /**< no such variable, or one of another form */
#define KIT_ERROR_ROOM (-9)      /**< too little room for what was asked for */
#define KIT_ERROR_SYSTEM (-10)   /**< the system refused, or there is no window system */
#define KIT_ERROR_TEXT (-11)     /**< not UTF-8, or characters that the system's code page has not */
#define KIT_ERROR_INTERNAL (-12) /**< an error of the module itself */

/** The version that this DLL was built with. A host goes on when its higher half is that of KIT_ABI_VERSION and its
 * lower half not below. Any thread. */
KIT_C_API uint32_t kit_panels_abi_version(void);
/** A sentence for a status. Any thread. @param status any number @return a constant text, never null */
KIT_C_API const char* kit_status_text(kit_status status);
/** What went wrong last at a handle, as a sentence that names function and argument; empty when nothing did. A handle
 *  that is not alive, and 0, give the last error that belonged to no living handle. Asking changes nothing. */
KIT_C_API kit_status kit_error_text(kit_handle handle, char* out, uint32_t room, uint32_t* needed);
/** The module's own line: name, version, revision. */
KIT_C_API kit_status kit_module_version(char* out, uint32_t room, uint32_t* needed);

/* ---------------------------------------------------------------------------------------------------------------- */
/* start, end, events */

#define KIT_EVENT_MESSAGE 1   /**< `level` and `text`: what a panel reports, without style bytes */
#define KIT_EVENT_UPDATE 2    /**< `flags`: shared state changed by a panel; all panels know already */
#define KIT_EVENT_REDRAW 3    /**< the host's image windows are to be drawn anew */
#define KIT_EVENT_FRAME 4     /**< another frame is shown: `object` the volume, `index` its slice */
#define KIT_EVENT_PICKED 5    /**< `panel`: a TAG, marker or brush was picked by a click: `index`; variables are set */
#define KIT_EVENT_PROPAGATE 6 /**< carry work from slice `from` to slice `index` of volume `object`; answer: 1 done */
#define KIT_EVENT_FILE_NAME                                                                   \
    7 /**< a file to write is wanted; answer 1 after kit_answer_text(), 0: cancelled; -1: ask \
           the user by the system's dialog */

/** What a call-back is told. Members that an event does not name are 0. */
typedef struct kit_event {
    uint32_t size;     /**< bytes of this struct in the DLL's version */
    uint32_t kind;     /**< KIT_EVENT_ number */
    kit_handle panel;  /**< the panel that it is about, 0: none */
    kit_handle object; /**< the volume that it is about, 0: none */
    uint64_t flags;    /**< KIT_UPDATE_ bits */
    int32_t level;     /**< of a message: 1 memory, 2 warning, 4 status line, 10 to 17 traces */
    int32_t index;     /**< picked index or slice, from 0 */
    int32_t from;      /**< slice before, from 0 */
    int32_t reserved;  /**< 0 */
    const char* text;  /**< UTF-8, valid during the call; null: none */
} kit_event;

/** Hears events on the user-interface thread. @param context as given @param event valid during the call
 *  @return the answer, see KIT_EVENT_; of other events not looked at */
typedef int32_t (*kit_event_function)(void* context, const kit_event* event);

#define KIT_THEME_DARK 0
#define KIT_THEME_LIGHT 1

/** How to start. All zero but `size` and `abi_version` will do. */
typedef struct kit_settings {
    uint32_t size;               /**< sizeof(kit_settings) */
    uint32_t abi_version;        /**< KIT_ABI_VERSION */
    kit_event_function on_event; /**< null: nobody hears */
    void* context;               /**< first argument of on_event */
    const char* icon_folder; /**< the database panels' icons, with its separator at the end; null: `icons` beside the
                                  running program */
    float scale;             /**< 1: 96 dots per inch; 0 counts as 1; up to 8 */
    int32_t theme;           /**< KIT_THEME_ number */
    int32_t contract_checks; /**< 1: what the host owes its panels is checked, see kit_contract_check() */
    int32_t traces;          /**< 1: entry traces of the panels (levels 10 to 17) are told as messages */
} kit_settings;

/** Starts: defines every variable that the panels read, with 8 TAGs, 4 markers and 5 brushes. @return KIT_ERROR_STATE
 *  when it is started already; KIT_ERROR_ARGUMENT for another `abi_version` */
KIT_C_API kit_status kit_start(const kit_settings* settings);
/** Ends: panels, their windows, volumes, classes and files are gone, their handles dead. @return KIT_ERROR_STATE inside
 *  of a call-back or of another function, and when it is not started */
KIT_C_API kit_status kit_stop(void);
/** The file to write, during KIT_EVENT_FILE_NAME only. @param path UTF-8, copied */
KIT_C_API kit_status kit_answer_text(const char* path);
/** Tells what is waiting to be told. Needed by hosts without a message loop only: elsewhere a message wakes it. */
KIT_C_API kit_status kit_deliver(void);

/* ---------------------------------------------------------------------------------------------------------------- */
/* panels */

#define KIT_PANEL_TAG 1 /**< `option`: sum of KIT_TAG_ bits, 0: greyed when not selected */
#define KIT_PANEL_MARKER 2
#define KIT_PANEL_BRUSH 3
#define KIT_PANEL_PROPAGATE 4
#define KIT_PANEL_HISTOGRAM 5
#define KIT_PANEL_CLASSES 6 /**< `option`: dimension 1, 2 or 3, plus KIT_DATABASE_ bits */
#define KIT_PANEL_FILES 7   /**< `option`: KIT_DATABASE_ bits */

#define KIT_TAG_CHECK_SELECT 0x0001
#define KIT_TAG_CHECK_LOCK 0x0010
#define KIT_TAG_GREY_SELECTION 0x0020
#define KIT_TAG_CHECK_ENABLE 0x0100
#define KIT_TAG_GREY_DISABLED 0x0200
#define KIT_TAG_THRESHOLDS 0x1000 /**< captions are the lower thresholds */

#define KIT_DATABASE_EDIT 0x10 /**< the class-tree editor */
#define KIT_DATABASE_ADD 0x20  /**< a click adds to the checked rows */

/** How a panel is made and where it stands. */
typedef struct kit_panel_settings {
    uint32_t size;      /**< sizeof(kit_panel_settings) */
    uint32_t kind;      /**< KIT_PANEL_ number */
    int32_t option;     /**< see the kinds */
    int32_t own_window; /**< 1: a visible child window is made in `window`, takes its events itself, and paints itself;
                             0: the panel lives in `window`, whose events the host forwards */
    void* window;       /**< HWND of the host; lives until the panel is destroyed */
    int32_t x;          /**< left edge in `window`, pixels */
    int32_t y;          /**< upper edge in `window`, pixels from the top; in a host window whose y grows upwards the
                             lower edge, from the bottom row */
    int32_t width;      /**< pixels, 1 to 32767 */
    int32_t height;     /**< pixels, 1 to 32767 */
    int32_t axis_up;    /**< without own_window: 1 when y grows upwards in `window`, which propagate and database panels
                             want; TAG, marker and histogram panels want 0. Panels in one window have one axis */
    uint8_t red;        /**< face colour; all three 0: a grey that suits the theme */
    uint8_t green;      /**< see `red` */
    uint8_t blue;       /**< see `red` */
    uint8_t border;     /**< pixels */
    int32_t font_height; /**< pixels, 0: the library's own */
} kit_panel_settings;

/** Makes a panel, lays it out and, with a window of its own, shows it. @param panel receives the handle, 0 on failure
 */
KIT_C_API kit_status kit_panel_create(const kit_panel_settings* settings, kit_handle* panel);
/** The panel is gone, with its own window. Inside of one of its own operations the handle is dead at once and the panel
 *  goes when the operation ends. */
KIT_C_API kit_status kit_panel_destroy(kit_handle panel);
/** Another rectangle, as in kit_panel_settings. */
KIT_C_API kit_status kit_panel_place(kit_handle panel, int32_t x, int32_t y, int32_t width, int32_t height);
/** The height that the panel would like. @param rows of buttons (TAG, marker) or of the tree (database), at most 65535;
 *  the histogram panel gives it back; not used by others @param height receives pixels */
KIT_C_API kit_status kit_panel_height(kit_handle panel, uint32_t rows, int32_t* height);
/** Paints everything. */
KIT_C_API kit_status kit_panel_draw(kit_handle panel);
/** @param window receives the HWND that the panel draws in: its own or the host's */
KIT_C_API kit_status kit_panel_window(kit_handle panel, void** window);
/** @param kind receives the KIT_PANEL_ number */
KIT_C_API kit_status kit_panel_kind(kit_handle panel, uint32_t* kind);

#define KIT_INPUT_PRESS 1   /**< a button went down */
#define KIT_INPUT_RELEASE 2 /**< a button went up */
#define KIT_INPUT_MOTION 3  /**< the pointer moved */
#define KIT_INPUT_WHEEL 4   /**< `value`: notches, forward is positive */
#define KIT_INPUT_KEY 5     /**< `value`: a character of the code page, or KIT_KEY_SPECIAL plus the virtual-key code */
#define KIT_INPUT_LEAVE 6   /**< the pointer left the panel */

#define KIT_BUTTON_LEFT 0x10
#define KIT_BUTTON_MIDDLE 0x20
#define KIT_BUTTON_RIGHT 0x40
#define KIT_KEY_SPECIAL 0x800

/** One event of the user. */
typedef struct kit_input {
    uint32_t size;    /**< sizeof(kit_input) */
    uint32_t kind;    /**< KIT_INPUT_ number */
    int32_t x;        /**< the pointer on the screen, pixels, y down */
    int32_t y;        /**< see `x` */
    uint32_t buttons; /**< KIT_BUTTON_ bits held after the event */
    int32_t value;    /**< see the kinds */
} kit_input;

/** Forwards one event. What a press picks is stored in its variable, announced to all panels and told
 *  (KIT_EVENT_PICKED). May run a drop list or a dialog with a message loop of its own.
 *  @param used receives 1 when the panel took the event, else 0; may be null */
KIT_C_API kit_status kit_panel_input(kit_handle panel, const kit_input* input, int32_t* used);
/** Forwards a message of the window that the panel lives in: size, paint, mouse, wheel and keys; others are not used.
 *  One panel per window: a size message gives it the whole window, a paint message is answered by it alone.
 *  @param message, wparam, lparam as the window procedure got them
 *  @param used receives 1 when the window procedure is to return 0, and 0 when it goes on; may be null
 *  @return KIT_ERROR_SYSTEM where there is no window system */
KIT_C_API kit_status kit_panel_message(kit_handle panel, uint32_t message, uint64_t wparam, int64_t lparam,
                                       int32_t* used);

#define KIT_UPDATE_ALL 0x1000000000000000u
#define KIT_UPDATE_TAG_LABEL 0x0000800000000000u
#define KIT_UPDATE_TAG_SELECT 0x0000400000000000u
#define KIT_UPDATE_TAG_ENABLE 0x0000200000000000u
#define KIT_UPDATE_TAG_LOCK 0x0000100000000000u
#define KIT_UPDATE_COLOR_COMPONENT 0x0000008000000000u
#define KIT_UPDATE_TAG_TABLE 0x0000004000000000u
#define KIT_UPDATE_WINDOW 0x0000000100110000u
#define KIT_UPDATE_HISTOGRAM_PAINT 0x0000000080000000u
#define KIT_UPDATE_HISTOGRAM_DATA 0x0000000001000000u
#define KIT_UPDATE_BRUSH 0x0000000000800000u
#define KIT_UPDATE_TAG_CURRENT 0x0000000000400000u
#define KIT_UPDATE_FRAME 0x0000000000200000u
#define KIT_UPDATE_MOUSE 0x0000000000040000u
#define KIT_UPDATE_STRUCTURE 0x0000000000000400u /**< with a level */
#define KIT_UPDATE_SELECTION 0x0000000000000100u /**< with a level */
#define KIT_UPDATE_LEVEL_3D 0x0000000000000004u
#define KIT_UPDATE_LEVEL_2D 0x0000000000000002u
#define KIT_UPDATE_LEVEL_1D 0x0000000000000001u

/** Tells a panel, or with 0 all of them, what changed. Functions of this interface that change something do so
 *  themselves; it is needed after kit_variable_ functions only. @param flags KIT_UPDATE_ bits */
KIT_C_API kit_status kit_panel_update(kit_handle panel, uint64_t flags);

/* ---------------------------------------------------------------------------------------------------------------- */
/* TAGs, markers, brushes */

#define KIT_LABEL_ENABLED 0x1u
#define KIT_LABEL_SELECTED 0x2u /**< TAGs only */
#define KIT_LABEL_LOCKED 0x4u   /**< TAGs only */

/** A TAG or a marker. */
typedef struct kit_label {
    uint32_t size;       /**< sizeof(kit_label) */
    uint32_t flags;      /**< KIT_LABEL_ bits */
    const char* text;    /**< caption, UTF-8, copied; null: none. Null in what is read: see kit_tag_text() */
    float threshold_min; /**< grey levels, -100000: none; TAGs only */
    float threshold_max; /**< grey levels, 100000: none; TAGs only */
    uint8_t red;         /**< 0 to 255 */
    uint8_t green;       /**< 0 to 255 */
    uint8_t blue;        /**< 0 to 255 */
    uint8_t reserved;    /**< 0 */
} kit_label;

/** Replaces the table of TAGs. @param labels `count` structs of the first one's `size` each @param count 4 to 256, a
 *  multiple of four: panels show complete rows of four. A current TAG beyond it becomes TAG 0 */
KIT_C_API kit_status kit_tags_set(const kit_label* labels, uint32_t count);
/** @param count receives the number of TAGs */
KIT_C_API kit_status kit_tags_count(uint32_t* count);
/** Replaces one TAG. @param index below the count */
KIT_C_API kit_status kit_tag_set(uint32_t index, const kit_label* label);
/** Reads one TAG. @param index below the count @param label its `size` set */
KIT_C_API kit_status kit_tag_get(uint32_t index, kit_label* label);
/** The caption of a TAG, as the user may have renamed it. */
KIT_C_API kit_status kit_tag_text(uint32_t index, char* out, uint32_t room, uint32_t* needed);
/** Makes a TAG the current one. @param index below the count */
KIT_C_API kit_status kit_tag_pick(uint32_t index);
/** @param index receives the current TAG */
KIT_C_API kit_status kit_tag_picked(uint32_t* index);

/** As kit_tags_set(), for 4 to 64 markers; panels are laid out anew. */
KIT_C_API kit_status kit_markers_set(const kit_label* labels, uint32_t count);
/** @param count receives the number of markers */
KIT_C_API kit_status kit_markers_count(uint32_t* count);
/** Replaces one marker. @param index below the count */
KIT_C_API kit_status kit_marker_set(uint32_t index, const kit_label* label);
/** Reads one marker. @param index below the count @param label its `size` set */
KIT_C_API kit_status kit_marker_get(uint32_t index, kit_label* label);
/** The caption of a marker. */
KIT_C_API kit_status kit_marker_text(uint32_t index, char* out, uint32_t room, uint32_t* needed);
/** Makes a marker the current one. @param index below the count */
KIT_C_API kit_status kit_marker_pick(uint32_t index);
/** @param index receives the current marker */
KIT_C_API kit_status kit_marker_picked(uint32_t* index);

/** Replaces the table of brushes. @param sizes `count` radii, pixels, 1 to 181: pixels nearer to
 *  the middle than that are covered @param count 1 to 8 */
KIT_C_API kit_status kit_brushes_set(const uint16_t* sizes, uint32_t count);
/** @param count receives the number of brushes */
KIT_C_API kit_status kit_brushes_count(uint32_t* count);
/** @param index below the count @param size receives the radius, pixels */
KIT_C_API kit_status kit_brush_size(uint32_t index, uint16_t* size);
/** Makes a brush the current one. @param index below the count */
KIT_C_API kit_status kit_brush_pick(uint32_t index);
/** @param index receives the current brush */
KIT_C_API kit_status kit_brush_picked(uint32_t* index);
/** The pixels that a brush covers: 1 covered, 0 not. All masks are as wide as the largest brush needs.
 *  @param out receives side x side bytes, rows from the top @param needed receives side x side
 *  @param side receives the odd width and height of the mask, its middle the brush's; may be null */
KIT_C_API kit_status kit_brush_mask(uint32_t index, uint8_t* out, uint32_t room, uint32_t* needed, uint32_t* side);

/* ---------------------------------------------------------------------------------------------------------------- */
/* variables by name */

#define KIT_VARIABLE_UNSIGNED_8 1
#define KIT_VARIABLE_SIGNED_16 2
#define KIT_VARIABLE_UNSIGNED_16 3
#define KIT_VARIABLE_SIGNED_32 4
#define KIT_VARIABLE_UNSIGNED_32 5
#define KIT_VARIABLE_FLOAT 6
#define KIT_VARIABLE_TEXT 7
#define KIT_VARIABLE_OBJECT 8 /**< an object of the interface's own: neither read nor written by name */

/** What a variable is. @param name with its "$" @param type receives its KIT_VARIABLE_ number @param count receives the
 *  length of an array, 0 for a single value; may be null */
KIT_C_API kit_status kit_variable_type(const char* name, uint32_t* type, uint32_t* count);

/** Sets a number, which must be defined as one. @param name with its "$" @param value cut to the variable's range */
KIT_C_API kit_status kit_variable_set_number(const char* name, double value);
/** @param value receives the number */
KIT_C_API kit_status kit_variable_number(const char* name, double* value);
/** Sets a text. Names of variables that hold numbers, arrays or objects are refused. @param text copied */
KIT_C_API kit_status kit_variable_set_text(const char* name, const char* text);
/** The text of a variable. */
KIT_C_API kit_status kit_variable_text(const char* name, char* out, uint32_t room, uint32_t* needed);
/** Overwrites the first elements of an array of numbers. @param type its KIT_VARIABLE_ number, not the text's
 *  @param values `count` elements of that type @param count at most the array's length: counts are changed by the
 *  functions of the tables */
KIT_C_API kit_status kit_variable_set_array(const char* name, uint32_t type, const void* values, uint32_t count);
/** An array of numbers. @param room, needed elements */
KIT_C_API kit_status kit_variable_array(const char* name, uint32_t type, void* out, uint32_t room, uint32_t* needed);

/* ---------------------------------------------------------------------------------------------------------------- */
/* volumes */

#define KIT_PIXEL_UNSIGNED_8 1
#define KIT_PIXEL_SIGNED_16 2
#define KIT_PIXEL_UNSIGNED_16 3
#define KIT_PIXEL_SIGNED_32 4
#define KIT_PIXEL_COLOR 5 /**< four bytes: red, green, blue, one not used */

/** Writes one row. @param context as given @param slice from 0; those of time t begin with t x slices @param row from
 * 0, the upper one @param out receives `width` pixels of the type @return 1; 0 ends the making of the volume */
typedef int32_t (*kit_row_function)(void* context, int32_t slice, int32_t row, void* out);

/** A volume: slices of one size, at one or several times. A single image has one slice. */
typedef struct kit_volume_settings {
    uint32_t size;           /**< sizeof(kit_volume_settings) */
    uint32_t pixel;          /**< KIT_PIXEL_ number */
    int32_t width;           /**< pixels, 1 to 65535 */
    int32_t height;          /**< pixels, 1 to 65535 */
    int32_t slices;          /**< 1 to 65535; width x height x slices x times at most 2^31 - 1 */
    float slope;             /**< grey levels per stored step; 0 counts as 1 */
    float intercept;         /**< grey level of the stored 0 */
    uint32_t modality;       /**< two letters, the first in the higher byte, for example 'M' * 256 + 'R' */
    const void* pixels;      /**< first pixel of the upper row of the first slice; copied; null: `on_row` */
    int64_t row_stride;      /**< bytes from a row to the one below, 0: rows follow each other; may be negative */
    int64_t slice_stride;    /**< bytes from a slice to the next, 0: slices follow each other */
    kit_row_function on_row; /**< asked for every row when `pixels` is null */
    void* context;           /**< first argument of on_row */
    const char* name;        /**< shown in the trees; null: "Volume" */
    const char* descriptor;  /**< series text, shown in the histogram; null: none */
    int32_t times;           /**< times at which all slices were taken, 0 counts as 1. Since version 1.1 */
    int32_t reserved;        /**< 0 */
    int64_t time_stride;     /**< bytes from a time to the next, 0: times follow each other */
} kit_volume_settings;

/** Makes a volume with a histogram for every slice, of all its times, as the last child of the 2D class root. All
 *  panels are told.
 *  @param volume receives the handle, 0 on failure */
KIT_C_API kit_status kit_volume_create(const kit_volume_settings* settings, kit_handle* volume);
/** The volume is gone, also from files. Inside of another function it goes when that ends; the handle is dead at once.
 */
KIT_C_API kit_status kit_volume_destroy(kit_handle volume);
/** Shows a slice in the image window, the one that propagate, histogram and database panels work on. @param volume 0:
 * no slice is shown @param slice from 0 */
KIT_C_API kit_status kit_volume_show(kit_handle volume, int32_t slice);
/** @param volume receives the volume shown, 0: none @param slice receives the slice, -1: none */
KIT_C_API kit_status kit_volume_shown(kit_handle* volume, int32_t* slice);
/** Selects slices: the histogram counts the selected ones of the volume that is shown. @param slice -1: all
 *  @param selected 1 or 0 */
KIT_C_API kit_status kit_volume_select(kit_handle volume, int32_t slice, int32_t selected);
/** @param selected receives 1 or 0 */
KIT_C_API kit_status kit_volume_selected(kit_handle volume, int32_t slice, int32_t* selected);
/** @param slices receives the number of slices */
KIT_C_API kit_status kit_volume_slices(kit_handle volume, int32_t* slices);
/** @param times receives the number of times */
KIT_C_API kit_status kit_volume_times(kit_handle volume, int32_t* times);
/** Shows all slices of a volume at another time: the histogram's cursor reads there, and masked slices are counted
 *  there. A new volume shows time 0. @param time from 0 */
KIT_C_API kit_status kit_volume_time_show(kit_handle volume, int32_t time);
/** @param time receives the time that is shown, from 0 */
KIT_C_API kit_status kit_volume_time_shown(kit_handle volume, int32_t* time);
/** Has the histogram of a slice count a part of its pixels only: those of the shown time whose byte is not 0.
 *  @param slice -1: all, with the same mask @param mask width x height bytes, the upper row first; copied; null: all
 *  pixels of all times count again @param row_stride bytes from a row to the one below, 0: rows follow each other; may
 *  be negative */
KIT_C_API kit_status kit_volume_mask_set(kit_handle volume, int32_t slice, const uint8_t* mask, int64_t row_stride);
/** The mouse is over an image: the histogram's cursor follows. @param volume 0: it is over none @param x, y pixels of
 *  the slice, y down */
KIT_C_API kit_status kit_volume_pointer(kit_handle volume, int32_t slice, float x, float y);

/** A histogram: bin i covers origin + i x bin_width to origin + (i + 1) x bin_width. */
typedef struct kit_histogram {
    uint32_t size;     /**< sizeof(kit_histogram) */
    uint32_t bins;     /**< number of counts */
    float origin;      /**< grey level of the lower edge of bin 0 */
    float bin_width;   /**< grey levels */
    uint32_t most;     /**< highest count */
    uint32_t reserved; /**< 0 */
} kit_histogram;

/** The histogram of one slice. @param histogram receives the numbers, may be null @param counts receives the counts */
KIT_C_API kit_status kit_volume_histogram(kit_handle volume, int32_t slice, kit_histogram* histogram, uint32_t* counts,
                                          uint32_t room, uint32_t* needed);

/* ---------------------------------------------------------------------------------------------------------------- */
/* histogram panel */

/** What a histogram panel shows: all selected slices together. KIT_ERROR_STATE without counts.
 *  @param histogram receives the numbers, may be null @param counts receives the counts */
KIT_C_API kit_status kit_histogram_read(kit_handle panel, kit_histogram* histogram, uint32_t* counts, uint32_t room,
                                        uint32_t* needed);

#define KIT_FIT_GAUSSIAN 1      /**< the same counts give the same peaks */
#define KIT_FIT_SEGMENTS 2      /**< pieces around the maxima, at most `most` */
#define KIT_FIT_GAUSSIAN_NEXT 3 /**< goes on from the last fit of the process and may find other candidates */

/** Analyses what the panel shows. Gaussians are fitted to the counts smoothed over 21 bins: a variance of v bins
 *  squared comes out as v + 36.7, so peaks of a few bins are too wide; segments are not widened.
 *  @param method KIT_FIT_ number @param most segments that are wanted, 1 to 255; the Gaussian fits take any number and
 *  find as many peaks as there are
 *  @return KIT_ERROR_STATE without counts and while another analysis runs */
KIT_C_API kit_status kit_histogram_fit(kit_handle panel, uint32_t method, uint32_t most);

#define KIT_PEAK_GAUSSIAN 2
#define KIT_PEAK_SEGMENT 4
#define KIT_DOUBT_HEIGHT 1 /**< the standard error is larger than the height */
#define KIT_DOUBT_WIDTH 2  /**< the standard error is larger than the width */
#define KIT_DOUBT_CENTRE 4 /**< the standard error of the centre is larger than the width */

/** A peak, in grey levels and pixels. */
typedef struct kit_peak {
    uint32_t size;           /**< sizeof(kit_peak) */
    uint32_t kind;           /**< KIT_PEAK_ number */
    uint32_t doubt;          /**< KIT_DOUBT_ bits */
    uint32_t has_errors;     /**< 1: the errors are known */
    int32_t first;           /**< first bin of a segment, else -1 */
    int32_t last;            /**< last bin of a segment, else -1 */
    double centre;           /**< grey level */
    double height;           /**< pixels per bin */
    double full_width;       /**< grey levels at half height; of a segment all its bins */
    double area_pixels;      /**< pixels */
    double area_levels;      /**< pixels times grey levels */
    double centre_error;     /**< grey levels */
    double height_error;     /**< pixels per bin */
    double full_width_error; /**< grey levels */
} kit_peak;

/** The peaks of the last analysis by ascending centre. @param peaks `room` structs of the first one's `size` each; the
 *  size of the first is set by the caller */
KIT_C_API kit_status kit_histogram_peaks(kit_handle panel, kit_peak* peaks, uint32_t room, uint32_t* needed);
/** Writes histogram, TAG membership and peaks to a text file. @param path UTF-8 @return KIT_ERROR_SYSTEM when it could
 * not be written: the reason comes as a message */
KIT_C_API kit_status kit_histogram_export(kit_handle panel, const char* path);

/** Grey levels of a TAG, shown as a band. */
typedef struct kit_range {
    uint32_t size; /**< sizeof(kit_range) */
    uint32_t tag;  /**< number of the TAG, below 65536 */
    float lowest;  /**< grey level */
    float highest; /**< grey level */
} kit_range;

/** Replaces the bands and paints. @param ranges `count` structs of the first one's `size` @param count 0 to 32 */
KIT_C_API kit_status kit_histogram_ranges(kit_handle panel, const kit_range* ranges, uint32_t count);

/* ---------------------------------------------------------------------------------------------------------------- */
/* classes and files */

/** Makes a class. @param dimension 1, 2 or 3 @param title, name UTF-8, copied; null: none @param icon file of the icon
 *  folder, at most 63 bytes; null: the folder's default @param parent a class of that dimension, 0: its root
 *  @param made receives the handle, 0 on failure */
KIT_C_API kit_status kit_class_create(uint32_t dimension, const char* title, const char* name, const char* icon,
                                      kit_handle parent, kit_handle* made);
/** The class is gone; its children become children of its parent, or of the root. */
KIT_C_API kit_status kit_class_destroy(kit_handle handle);
/** Moves a class or a volume. @param parent class of the same dimension, 0: the root @param position from 0 among its
 *  children, -1: the last @return KIT_ERROR_ARGUMENT when it would become its own ancestor */
KIT_C_API kit_status kit_class_move(kit_handle handle, kit_handle parent, int32_t position);
/** Where a class or volume stands now: a user may have moved it. @param parent receives the class, 0: the root or none
 *  @param position receives the place among its children, -1: it was taken out */
KIT_C_API kit_status kit_class_place(kit_handle handle, kit_handle* parent, int32_t* position);
/** The name of a class or volume: a user may have renamed it. */
KIT_C_API kit_status kit_class_name(kit_handle handle, char* out, uint32_t room, uint32_t* needed);
/** Selects a class. @param selected 1 or 0 */
KIT_C_API kit_status kit_class_select(kit_handle handle, int32_t selected);
/** @param selected receives 1 or 0 */
KIT_C_API kit_status kit_class_selected(kit_handle handle, int32_t* selected);

/** Adds a file to the table that KIT_PANEL_FILES shows: all slices of a volume. @param path UTF-8, folders separated by
 *  either separator @param file receives the handle, 0 on failure */
KIT_C_API kit_status kit_file_create(const char* path, kit_handle volume, kit_handle* file);
/** The file leaves the table; its volume stays. */
KIT_C_API kit_status kit_file_destroy(kit_handle file);
/** Marks a slice of the file as not accessible. @param allowed 1 or 0 */
KIT_C_API kit_status kit_file_access(kit_handle file, int32_t slice, int32_t allowed);

/* ---------------------------------------------------------------------------------------------------------------- */
/* checks */

/** Looks for what the host owes its panels (kit_settings::contract_checks). @param count receives how many mistakes
 * were found since the start */
KIT_C_API kit_status kit_contract_check(uint32_t* count);
/** One mistake, for example "variable missing: $TAG_LOCK". @param index below the count */
KIT_C_API kit_status kit_contract_text(uint32_t index, char* out, uint32_t room, uint32_t* needed);

#ifdef __cplusplus
}
#endif

#endif
