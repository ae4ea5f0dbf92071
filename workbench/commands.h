/** Everything that can be asked of the application by menu or key. */
#pragma once

#include "win32/gdi_handles.h"

enum class Command : WORD {
    NONE = 0,
    OPEN = 100,
    LOAD_LABELS,
    SAVE_LABELS,
    SAVE_LABELS_AS,
    EXPORT_HISTOGRAM,
    QUIT,
    UNDO,
    REDO,
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
    HISTOGRAM_BINS,
    HISTOGRAM_COMPONENT,
    RANGE_OVERLAY,
    ANALYSIS_WINDOW,
    FIT_GAUSSIAN,
    FIT_DERIVATIVE,
    PEAKS_TO_BANDS,
    DATABASE,
    DATABASE_FIND,
    DATABASE_EXPAND,
    DATABASE_COLLAPSE,
    DATABASE_EDIT,
    PROPAGATE_NEXT,
    PROPAGATE_PREVIOUS,
    PROPAGATE_REPEAT,
    PROPAGATE_REPEAT_BACK,
    FUNCTION_COPY,
    FUNCTION_GROW,
    KEYS_HELP,
    ABOUT,
    CLOSE_BANNER,
    REPORT_STATE,
    TAG_DIGIT_0 = 200,  ///< to TAG_DIGIT_0 + 9
};

/** The command of a key code of the panels (see KEY_*); NONE: the key means nothing. Letters of both cases count. */
Command Command_Of_Key(int key);

/** The menu bar, owned by the window that it is given to. */
HMENU Menu_Make();

/** All keys and mouse gestures as text, for the help. */
const wchar_t* Keys_Text();
