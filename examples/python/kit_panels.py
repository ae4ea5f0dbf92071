"""The C interface for ctypes. Written by scripts/lints/c_description from kit_panels.h: do not change it here."""
import ctypes

KIT_ABI_VERSION = 0x00010001
KIT_OK = 0
KIT_ERROR_ARGUMENT = -1
KIT_ERROR_HANDLE = -2
KIT_ERROR_KIND = -3
KIT_ERROR_SIZE = -4
KIT_ERROR_MEMORY = -5
KIT_ERROR_STATE = -6
KIT_ERROR_THREAD = -7
KIT_ERROR_MISSING = -8
KIT_ERROR_ROOM = -9
KIT_ERROR_SYSTEM = -10
KIT_ERROR_TEXT = -11
KIT_ERROR_INTERNAL = -12
KIT_EVENT_MESSAGE = 1
KIT_EVENT_UPDATE = 2
KIT_EVENT_REDRAW = 3
KIT_EVENT_FRAME = 4
KIT_EVENT_PICKED = 5
KIT_EVENT_PROPAGATE = 6
KIT_THEME_DARK = 0
KIT_THEME_LIGHT = 1
KIT_PANEL_TAG = 1
KIT_PANEL_MARKER = 2
KIT_PANEL_BRUSH = 3
KIT_PANEL_PROPAGATE = 4
KIT_PANEL_HISTOGRAM = 5
KIT_PANEL_CLASSES = 6
KIT_PANEL_FILES = 7
KIT_TAG_CHECK_SELECT = 0x0001
KIT_TAG_CHECK_LOCK = 0x0010
KIT_TAG_GREY_SELECTION = 0x0020
KIT_TAG_CHECK_ENABLE = 0x0100
KIT_TAG_GREY_DISABLED = 0x0200
KIT_TAG_THRESHOLDS = 0x1000
KIT_DATABASE_EDIT = 0x10
KIT_DATABASE_ADD = 0x20
KIT_INPUT_PRESS = 1
KIT_INPUT_RELEASE = 2
KIT_INPUT_MOTION = 3
KIT_INPUT_WHEEL = 4
KIT_INPUT_KEY = 5
KIT_INPUT_LEAVE = 6
KIT_BUTTON_LEFT = 0x10
KIT_BUTTON_MIDDLE = 0x20
KIT_BUTTON_RIGHT = 0x40
KIT_KEY_SPECIAL = 0x800
KIT_UPDATE_ALL = 0x1000000000000000
KIT_UPDATE_TAG_LABEL = 0x0000800000000000
KIT_UPDATE_TAG_SELECT = 0x0000400000000000
KIT_UPDATE_TAG_ENABLE = 0x0000200000000000
KIT_UPDATE_TAG_LOCK = 0x0000100000000000
KIT_UPDATE_COLOR_COMPONENT = 0x0000008000000000
KIT_UPDATE_TAG_TABLE = 0x0000004000000000
KIT_UPDATE_WINDOW = 0x0000000100110000
KIT_UPDATE_HISTOGRAM_PAINT = 0x0000000080000000
KIT_UPDATE_HISTOGRAM_DATA = 0x0000000001000000
KIT_UPDATE_BRUSH = 0x0000000000800000
KIT_UPDATE_TAG_CURRENT = 0x0000000000400000
KIT_UPDATE_FRAME = 0x0000000000200000
KIT_UPDATE_MOUSE = 0x0000000000040000
KIT_UPDATE_STRUCTURE = 0x0000000000000400
KIT_UPDATE_SELECTION = 0x0000000000000100
KIT_UPDATE_LEVEL_3D = 0x0000000000000004
KIT_UPDATE_LEVEL_2D = 0x0000000000000002
KIT_UPDATE_LEVEL_1D = 0x0000000000000001
KIT_LABEL_ENABLED = 0x1
KIT_LABEL_SELECTED = 0x2
KIT_LABEL_LOCKED = 0x4
KIT_VARIABLE_UNSIGNED_8 = 1
KIT_VARIABLE_SIGNED_16 = 2
KIT_VARIABLE_UNSIGNED_16 = 3
KIT_VARIABLE_SIGNED_32 = 4
KIT_VARIABLE_UNSIGNED_32 = 5
KIT_VARIABLE_FLOAT = 6
KIT_VARIABLE_TEXT = 7
KIT_VARIABLE_OBJECT = 8
KIT_PIXEL_UNSIGNED_8 = 1
KIT_PIXEL_SIGNED_16 = 2
KIT_PIXEL_UNSIGNED_16 = 3
KIT_PIXEL_SIGNED_32 = 4
KIT_PIXEL_COLOR = 5
KIT_FIT_GAUSSIAN = 1
KIT_FIT_SEGMENTS = 2
KIT_FIT_GAUSSIAN_NEXT = 3
KIT_PEAK_GAUSSIAN = 2
KIT_PEAK_SEGMENT = 4
KIT_DOUBT_HEIGHT = 1
KIT_DOUBT_WIDTH = 2
KIT_DOUBT_CENTRE = 4


class kit_event(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_uint32),
        ("kind", ctypes.c_uint32),
        ("panel", ctypes.c_uint64),
        ("object", ctypes.c_uint64),
        ("flags", ctypes.c_uint64),
        ("level", ctypes.c_int32),
        ("index", ctypes.c_int32),
        ("from", ctypes.c_int32),
        ("reserved", ctypes.c_int32),
        ("text", ctypes.c_char_p),
    ]


class kit_panel_settings(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_uint32),
        ("kind", ctypes.c_uint32),
        ("option", ctypes.c_int32),
        ("own_window", ctypes.c_int32),
        ("window", ctypes.c_void_p),
        ("x", ctypes.c_int32),
        ("y", ctypes.c_int32),
        ("width", ctypes.c_int32),
        ("height", ctypes.c_int32),
        ("axis_up", ctypes.c_int32),
        ("red", ctypes.c_uint8),
        ("green", ctypes.c_uint8),
        ("blue", ctypes.c_uint8),
        ("border", ctypes.c_uint8),
        ("font_height", ctypes.c_int32),
    ]


class kit_input(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_uint32),
        ("kind", ctypes.c_uint32),
        ("x", ctypes.c_int32),
        ("y", ctypes.c_int32),
        ("buttons", ctypes.c_uint32),
        ("value", ctypes.c_int32),
    ]


class kit_label(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_uint32),
        ("flags", ctypes.c_uint32),
        ("text", ctypes.c_char_p),
        ("threshold_min", ctypes.c_float),
        ("threshold_max", ctypes.c_float),
        ("red", ctypes.c_uint8),
        ("green", ctypes.c_uint8),
        ("blue", ctypes.c_uint8),
        ("reserved", ctypes.c_uint8),
    ]


class kit_histogram(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_uint32),
        ("bins", ctypes.c_uint32),
        ("origin", ctypes.c_float),
        ("bin_width", ctypes.c_float),
        ("most", ctypes.c_uint32),
        ("reserved", ctypes.c_uint32),
    ]


class kit_peak(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_uint32),
        ("kind", ctypes.c_uint32),
        ("doubt", ctypes.c_uint32),
        ("has_errors", ctypes.c_uint32),
        ("first", ctypes.c_int32),
        ("last", ctypes.c_int32),
        ("centre", ctypes.c_double),
        ("height", ctypes.c_double),
        ("full_width", ctypes.c_double),
        ("area_pixels", ctypes.c_double),
        ("area_levels", ctypes.c_double),
        ("centre_error", ctypes.c_double),
        ("height_error", ctypes.c_double),
        ("full_width_error", ctypes.c_double),
    ]


class kit_range(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_uint32),
        ("tag", ctypes.c_uint32),
        ("lowest", ctypes.c_float),
        ("highest", ctypes.c_float),
    ]


kit_event_function = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, ctypes.POINTER(kit_event))

kit_row_function = ctypes.CFUNCTYPE(ctypes.c_int32, ctypes.c_void_p, ctypes.c_int32, ctypes.c_int32, ctypes.c_void_p)


class kit_settings(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_uint32),
        ("abi_version", ctypes.c_uint32),
        ("on_event", kit_event_function),
        ("context", ctypes.c_void_p),
        ("icon_folder", ctypes.c_char_p),
        ("scale", ctypes.c_float),
        ("theme", ctypes.c_int32),
        ("contract_checks", ctypes.c_int32),
        ("traces", ctypes.c_int32),
    ]


class kit_volume_settings(ctypes.Structure):
    _fields_ = [
        ("size", ctypes.c_uint32),
        ("pixel", ctypes.c_uint32),
        ("width", ctypes.c_int32),
        ("height", ctypes.c_int32),
        ("slices", ctypes.c_int32),
        ("slope", ctypes.c_float),
        ("intercept", ctypes.c_float),
        ("modality", ctypes.c_uint32),
        ("pixels", ctypes.c_void_p),
        ("row_stride", ctypes.c_int64),
        ("slice_stride", ctypes.c_int64),
        ("on_row", kit_row_function),
        ("context", ctypes.c_void_p),
        ("name", ctypes.c_char_p),
        ("descriptor", ctypes.c_char_p),
        ("times", ctypes.c_int32),
        ("reserved", ctypes.c_int32),
        ("time_stride", ctypes.c_int64),
    ]


FUNCTIONS = {
    "kit_panels_abi_version": (ctypes.c_uint32, []),
    "kit_status_text": (ctypes.c_char_p, [ctypes.c_int32]),
    "kit_error_text": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_char_p, ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint32)]),
    "kit_module_version": (ctypes.c_int32, [ctypes.c_char_p, ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint32)]),
    "kit_start": (ctypes.c_int32, [ctypes.POINTER(kit_settings)]),
    "kit_stop": (ctypes.c_int32, []),
    "kit_answer_text": (ctypes.c_int32, [ctypes.c_char_p]),
    "kit_deliver": (ctypes.c_int32, []),
    "kit_panel_create": (ctypes.c_int32, [ctypes.POINTER(kit_panel_settings), ctypes.POINTER(ctypes.c_uint64)]),
    "kit_panel_destroy": (ctypes.c_int32, [ctypes.c_uint64]),
    "kit_panel_place": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_int32, ctypes.c_int32, ctypes.c_int32, ctypes.c_int32]),
    "kit_panel_height": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_uint32, ctypes.POINTER(ctypes.c_int32)]),
    "kit_panel_draw": (ctypes.c_int32, [ctypes.c_uint64]),
    "kit_panel_window": (ctypes.c_int32, [ctypes.c_uint64, ctypes.POINTER(ctypes.c_void_p)]),
    "kit_panel_kind": (ctypes.c_int32, [ctypes.c_uint64, ctypes.POINTER(ctypes.c_uint32)]),
    "kit_panel_input": (ctypes.c_int32, [ctypes.c_uint64, ctypes.POINTER(kit_input), ctypes.POINTER(ctypes.c_int32)]),
    "kit_panel_message": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_uint32, ctypes.c_uint64, ctypes.c_int64, ctypes.POINTER(ctypes.c_int32)]),
    "kit_panel_update": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_uint64]),
    "kit_tags_set": (ctypes.c_int32, [ctypes.POINTER(kit_label), ctypes.c_uint32]),
    "kit_tags_count": (ctypes.c_int32, [ctypes.POINTER(ctypes.c_uint32)]),
    "kit_tag_set": (ctypes.c_int32, [ctypes.c_uint32, ctypes.POINTER(kit_label)]),
    "kit_tag_get": (ctypes.c_int32, [ctypes.c_uint32, ctypes.POINTER(kit_label)]),
    "kit_tag_text": (ctypes.c_int32, [ctypes.c_uint32, ctypes.c_char_p, ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint32)]),
    "kit_tag_pick": (ctypes.c_int32, [ctypes.c_uint32]),
    "kit_tag_picked": (ctypes.c_int32, [ctypes.POINTER(ctypes.c_uint32)]),
    "kit_markers_set": (ctypes.c_int32, [ctypes.POINTER(kit_label), ctypes.c_uint32]),
    "kit_markers_count": (ctypes.c_int32, [ctypes.POINTER(ctypes.c_uint32)]),
    "kit_marker_set": (ctypes.c_int32, [ctypes.c_uint32, ctypes.POINTER(kit_label)]),
    "kit_marker_get": (ctypes.c_int32, [ctypes.c_uint32, ctypes.POINTER(kit_label)]),
    "kit_marker_text": (ctypes.c_int32, [ctypes.c_uint32, ctypes.c_char_p, ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint32)]),
    "kit_marker_pick": (ctypes.c_int32, [ctypes.c_uint32]),
    "kit_marker_picked": (ctypes.c_int32, [ctypes.POINTER(ctypes.c_uint32)]),
    "kit_brushes_set": (ctypes.c_int32, [ctypes.POINTER(ctypes.c_uint16), ctypes.c_uint32]),
    "kit_brushes_count": (ctypes.c_int32, [ctypes.POINTER(ctypes.c_uint32)]),
    "kit_brush_size": (ctypes.c_int32, [ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint16)]),
    "kit_brush_pick": (ctypes.c_int32, [ctypes.c_uint32]),
    "kit_brush_picked": (ctypes.c_int32, [ctypes.POINTER(ctypes.c_uint32)]),
    "kit_brush_mask": (ctypes.c_int32, [ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint8), ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint32), ctypes.POINTER(ctypes.c_uint32)]),
    "kit_variable_type": (ctypes.c_int32, [ctypes.c_char_p, ctypes.POINTER(ctypes.c_uint32), ctypes.POINTER(ctypes.c_uint32)]),
    "kit_variable_set_number": (ctypes.c_int32, [ctypes.c_char_p, ctypes.c_double]),
    "kit_variable_number": (ctypes.c_int32, [ctypes.c_char_p, ctypes.POINTER(ctypes.c_double)]),
    "kit_variable_set_text": (ctypes.c_int32, [ctypes.c_char_p, ctypes.c_char_p]),
    "kit_variable_text": (ctypes.c_int32, [ctypes.c_char_p, ctypes.c_char_p, ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint32)]),
    "kit_variable_set_array": (ctypes.c_int32, [ctypes.c_char_p, ctypes.c_uint32, ctypes.c_void_p, ctypes.c_uint32]),
    "kit_variable_array": (ctypes.c_int32, [ctypes.c_char_p, ctypes.c_uint32, ctypes.c_void_p, ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint32)]),
    "kit_volume_create": (ctypes.c_int32, [ctypes.POINTER(kit_volume_settings), ctypes.POINTER(ctypes.c_uint64)]),
    "kit_volume_destroy": (ctypes.c_int32, [ctypes.c_uint64]),
    "kit_volume_show": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_int32]),
    "kit_volume_shown": (ctypes.c_int32, [ctypes.POINTER(ctypes.c_uint64), ctypes.POINTER(ctypes.c_int32)]),
    "kit_volume_select": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_int32, ctypes.c_int32]),
    "kit_volume_selected": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_int32, ctypes.POINTER(ctypes.c_int32)]),
    "kit_volume_slices": (ctypes.c_int32, [ctypes.c_uint64, ctypes.POINTER(ctypes.c_int32)]),
    "kit_volume_times": (ctypes.c_int32, [ctypes.c_uint64, ctypes.POINTER(ctypes.c_int32)]),
    "kit_volume_time_show": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_int32]),
    "kit_volume_time_shown": (ctypes.c_int32, [ctypes.c_uint64, ctypes.POINTER(ctypes.c_int32)]),
    "kit_volume_mask_set": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_int32, ctypes.POINTER(ctypes.c_uint8), ctypes.c_int64]),
    "kit_volume_pointer": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_int32, ctypes.c_float, ctypes.c_float]),
    "kit_volume_histogram": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_int32, ctypes.POINTER(kit_histogram), ctypes.POINTER(ctypes.c_uint32), ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint32)]),
    "kit_histogram_read": (ctypes.c_int32, [ctypes.c_uint64, ctypes.POINTER(kit_histogram), ctypes.POINTER(ctypes.c_uint32), ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint32)]),
    "kit_histogram_fit": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_uint32, ctypes.c_uint32]),
    "kit_histogram_peaks": (ctypes.c_int32, [ctypes.c_uint64, ctypes.POINTER(kit_peak), ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint32)]),
    "kit_histogram_export": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_char_p]),
    "kit_histogram_ranges": (ctypes.c_int32, [ctypes.c_uint64, ctypes.POINTER(kit_range), ctypes.c_uint32]),
    "kit_class_create": (ctypes.c_int32, [ctypes.c_uint32, ctypes.c_char_p, ctypes.c_char_p, ctypes.c_char_p, ctypes.c_uint64, ctypes.POINTER(ctypes.c_uint64)]),
    "kit_class_destroy": (ctypes.c_int32, [ctypes.c_uint64]),
    "kit_class_move": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_uint64, ctypes.c_int32]),
    "kit_class_place": (ctypes.c_int32, [ctypes.c_uint64, ctypes.POINTER(ctypes.c_uint64), ctypes.POINTER(ctypes.c_int32)]),
    "kit_class_name": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_char_p, ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint32)]),
    "kit_class_select": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_int32]),
    "kit_class_selected": (ctypes.c_int32, [ctypes.c_uint64, ctypes.POINTER(ctypes.c_int32)]),
    "kit_file_create": (ctypes.c_int32, [ctypes.c_char_p, ctypes.c_uint64, ctypes.POINTER(ctypes.c_uint64)]),
    "kit_file_destroy": (ctypes.c_int32, [ctypes.c_uint64]),
    "kit_file_access": (ctypes.c_int32, [ctypes.c_uint64, ctypes.c_int32, ctypes.c_int32]),
    "kit_contract_check": (ctypes.c_int32, [ctypes.POINTER(ctypes.c_uint32)]),
    "kit_contract_text": (ctypes.c_int32, [ctypes.c_uint32, ctypes.c_char_p, ctypes.c_uint32, ctypes.POINTER(ctypes.c_uint32)]),
}


def load(path):
    """The DLL with the types of all functions set."""
    library = ctypes.CDLL(path)
    for name, (result, arguments) in FUNCTIONS.items():
        function = getattr(library, name)
        function.restype = result
        function.argtypes = arguments
    return library
