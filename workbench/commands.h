/** Everything that can be asked of the application by menu or key. */
#pragma once

#include "base/gdi_handles.h"

#include <string>
#include <vector>

namespace workbench {

enum class Command : WORD {
    NONE = 0,
    OPEN = 100,
    OPEN_FOLDER,
    NOT_OPENED,
    WHAT_WAS_READ,
    ORIENTATION,
    LOAD_LABELS,
    SAVE_LABELS,
    SAVE_LABELS_AS,
    EXPORT_HISTOGRAM,
    VERIFY_EXPORT,
    QUIT,
    UNDO,
    REDO,
    HISTORY,
    REMOVE_MARKER,
    TAG_NEXT,
    TAG_PREVIOUS,
    TAG_GO_TO,
    TAG_ENABLE,
    TAG_SELECT,
    TAG_LOCK,
    TAG_THRESHOLDS,
    TAG_THRESHOLD_MAX,
    TAG_MORE,
    CHECK_SHOWS_ENABLE,
    CHECK_SHOWS_SELECT,
    CHECK_SHOWS_LOCK,
    BRUSH_LARGER,
    BRUSH_SMALLER,
    MARKER_MODE,
    MARKER_NEXT,
    MARKER_PREVIOUS,
    SLICE_NEXT,
    SLICE_PREVIOUS,
    SLICE_FIRST,
    SLICE_LAST,
    VOLUME_NEXT,
    VOLUME_PREVIOUS,
    ZOOM_100,
    ZOOM_200,
    ZOOM_TO_FIT,
    WINDOW_RESET,
    OVERLAY,
    TRACE_VIEW,
    THEME,
    HISTOGRAM_ALL,
    HISTOGRAM_SHOWN,
    HISTOGRAM_RANGE,
    HISTOGRAM_OF_TAG,
    HISTOGRAM_SMOOTHED,
    BACKGROUND_LEAVE_OUT,
    BACKGROUND_THRESHOLD,
    HISTOGRAM_BINS,
    HISTOGRAM_COMPONENT,
    RANGE_OVERLAY,
    WHEEL_TURNED,
    ANALYSIS_WINDOW,
    FIT_GAUSSIAN,
    FIT_DERIVATIVE,
    PEAKS_TO_BANDS,
    DATABASE,
    DATABASE_FIND,
    DATABASE_EXPAND,
    DATABASE_COLLAPSE,
    DATABASE_EDIT,
    CLASS_UNDO,
    CLASS_REDO,
    PROPAGATE_NEXT,
    PROPAGATE_PREVIOUS,
    PROPAGATE_REPEAT,
    PROPAGATE_REPEAT_BACK,
    FUNCTION_COPY,
    FUNCTION_GROW,
    FOCUS_NEXT,
    FOCUS_PREVIOUS,
    PANEL_FOLD,
    CURSOR_SHOW,
    CURSOR_PAINT,
    CURSOR_ERASE,
    CURSOR_PEN,
    CURSOR_PICK,
    ZOOM_IN,
    ZOOM_OUT,
    LEVEL_UP,
    LEVEL_DOWN,
    WINDOW_WIDER,
    WINDOW_NARROWER,
    TAG_RENAME,
    TAG_THRESHOLD_MIN,
    TAG_COLORS,
    MARKER_RENAME,
    HISTOGRAM_HIGHER,
    HISTOGRAM_LOWER,
    HISTOGRAM_ENLARGE,
    DATABASE_FILES,
    DATABASE_2D,
    DATABASE_3D,
    DATABASE_1D,
    DATABASE_WIDER,
    DATABASE_NARROWER,
    KEYS_HELP,
    ABOUT,
    CLOSE_BANNER,
    REPORT_STATE,
    TAG_DIGIT_0 = 400,  ///< to TAG_DIGIT_0 + 9
    RECENT_0 = 420,     ///< files opened lately, to RECENT_0 + RECENT_MAX - 1
    WINDOW_0 = 440,     ///< windows of the image, to WINDOW_0 + WINDOW_MAX - 1
};
static_assert(Command::REPORT_STATE < Command::TAG_DIGIT_0, "commands and the numbered ones share numbers");

/** The command of a key code of the panels (see KEY_*); NONE: the key means nothing. Letters of both cases count. */
Command Command_Of_Key(int key);

/** What a command is called in its menu, or its number. */
std::string Command_Name(Command command);

/** The menu bar, owned by the window that it is given to. */
HMENU Menu_Make();

/** One line of the list of keys. */
struct Key_Line {
    std::wstring menu;  ///< title of the menu, without its mark
    std::wstring what;  ///< the entry's text, without its mark and dots
    std::wstring keys;  ///< all keys, parted by commas; empty: by the menu only
};
/** All commands in the order of the menus. */
std::vector<Key_Line> Key_Lines();

}  // namespace workbench
