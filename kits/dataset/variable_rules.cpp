#include "kits/dataset/variable_rules.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <string_view>

#include "kits/dataset/variables.h"

namespace {

using enum Variable_Shape;

constexpr const char* PIXELS = "pixels";
constexpr const char* LAY_OUT = "Resize of the panels";
constexpr const char* NEXT_OPENING = "nothing: read when the window opens";
constexpr const char* NEXT_EXPORT = "nothing: read by the next export";

constexpr Variable_Rule Pixels_Rule(const char* name, const char* pixels, const char* reader) {
    return {name, VARIABLE_SIGNED_16, Scalar, "", 0, 0, pixels, PIXELS, "host", reader, LAY_OUT};
}

constexpr Variable_Rule RULES[] = {
    {"$TAG_NB", VARIABLE_UNSIGNED_16, Scalar, "", 256, 4, "8", "", "host", "TAG, brush, histogram",
     "UPDATE_TAG_TABLE with the flags of the arrays, Draw of the TAG panel"},
    {"$TAG_CUR", VARIABLE_UNSIGNED_16, Scalar, "", 0, 0, "0", "", "host", "TAG, brush, histogram", "UPDATE_TAG_CUR"},
    {"$TAG_RED", VARIABLE_UNSIGNED_16, Array, "$TAG_NB", 0, 0, "49152", "the high byte is shown", "host",
     "TAG, brush, histogram", "UPDATE_TAG_TABLE"},
    {"$TAG_GRN", VARIABLE_UNSIGNED_16, Array, "$TAG_NB", 0, 0, "49152", "the high byte is shown", "host",
     "TAG, brush, histogram", "UPDATE_TAG_TABLE"},
    {"$TAG_BLU", VARIABLE_UNSIGNED_16, Array, "$TAG_NB", 0, 0, "49152", "the high byte is shown", "host",
     "TAG, brush, histogram", "UPDATE_TAG_TABLE"},
    {"$TAG_LABEL", VARIABLE_TEXT, Array, "$TAG_NB", 0, 0, "null", "from the C runtime's malloc", "host, TAG",
     "TAG, histogram export", "UPDATE_TAG_LABEL"},
    {"$TAG_ENABLE", VARIABLE_UNSIGNED_8, Array, "$TAG_NB", 0, 0, "1", "0 or 1", "host", "TAG", "UPDATE_TAG_ENABLE"},
    {"$TAG_SELECT", VARIABLE_UNSIGNED_8, Array, "$TAG_NB", 0, 0, "1", "0 or 1", "host", "TAG", "UPDATE_TAG_SELECT"},
    {"$TAG_LOCK", VARIABLE_UNSIGNED_8, Array, "$TAG_NB", 0, 0, "0", "0 or 1", "host", "TAG", "UPDATE_TAG_LOCK"},
    {"$TAG_THRESHOLD_MIN", VARIABLE_FLOAT, Array, "$TAG_NB", 0, 0, "-100000", "GLI", "host, TAG",
     "TAG, histogram export", "UPDATE_TAG_LABEL"},
    {"$TAG_THRESHOLD_MAX", VARIABLE_FLOAT, Array, "$TAG_NB", 0, 0, "100000", "GLI", "host", "histogram export",
     NEXT_EXPORT},
    {"$MARKER_NB", VARIABLE_UNSIGNED_16, Scalar, "", 64, 4, "8", "", "host", "marker", "Resize of the marker panel"},
    {"$MARKER_CUR", VARIABLE_UNSIGNED_16, Scalar, "", 0, 0, "0", "", "host", "marker", "UPDATE_TAG_CUR"},
    {"$MARKER_COLOR", VARIABLE_UNSIGNED_32, Array, "$MARKER_NB", 0, 0, "12632256", "0x00BBGGRR", "host", "marker",
     "UPDATE_TAG_TABLE"},
    {"$MARKER_ENABLE", VARIABLE_UNSIGNED_8, Array, "$MARKER_NB", 0, 0, "0", "0 or 1", "host", "marker",
     "UPDATE_TAG_ENABLE"},
    {"$MARKER_LABEL", VARIABLE_TEXT, Array, "$MARKER_NB", 0, 0, "null", "from the C runtime's malloc", "host, marker",
     "marker", "UPDATE_TAG_LABEL"},
    {"$BRUSH_NB", VARIABLE_UNSIGNED_16, Scalar, "", 8, 0, "0", "", "host", "brush", "UPDATE_BRUSH"},
    {"$BRUSH_CUR", VARIABLE_UNSIGNED_16, Scalar, "", 0, 0, "0", "", "host", "brush", "UPDATE_BRUSH"},
    {"$BRUSH_SIZE", VARIABLE_UNSIGNED_16, Array, "$BRUSH_NB", 0, 0, "1", "mask pixels: radius, it reaches one less",
     "host", "brush", "UPDATE_BRUSH"},
    {"$BRUSH_RADIUS", VARIABLE_UNSIGNED_16, Scalar, "", 0, 0, "0", "mask pixels: half-width R of all masks", "host",
     "brush", "UPDATE_BRUSH; masks are written when the count or a size changed"},
    {"$BRUSH_PT", VARIABLE_POINTER, Array, "$BRUSH_NB", 0, 0, "null",
     "unsigned char**: 2R + 1 rows of 2R + 1 bytes, written 1 where the brush covers", "host, brush", "brush",
     "UPDATE_BRUSH; masks are written when the count or a size changed"},
    {"$WINDOW_CUR", VARIABLE_POINTER, Object, "", 0, 0, "null", "Quorel_Window*", "host",
     "propagate, histogram, database", "UPDATE_WINDOW_CUR, UPDATE_FRAME_CUR, UPDATE_HISTO_DATA, UPDATE_HISTO_PAINT"},
    {"$FRAME_CUR", VARIABLE_POINTER, Array, "16", 0, 0, "null", "Quorel_2D*, by Class_B_Get of the window",
     "host, Fct_Change_Child", "propagate", "UPDATE_FRAME_CUR"},
    {"$FRAME_OVR", VARIABLE_POINTER, Object, "", 0, 0, "null", "Quorel_2D* under the image mouse", "host", "histogram",
     "UPDATE_MOUSE_FRAME"},
    {"$MOUSE_FRM", VARIABLE_FLOAT, Array, "2", 0, 0, "0", "x and y in pixels of the frame", "host", "histogram",
     "UPDATE_MOUSE_FRAME"},
    {"$INTERFACE_LOCK_FOCUS", VARIABLE_UNSIGNED_8, Scalar, "", 0, 0, "0", "1 while a propagation runs", "propagate",
     "host", "nothing"},
    {"$GLI_COLOR_COMPONENT", VARIABLE_UNSIGNED_8, Scalar, "", 0, 0, "0",
     "0 largest, 1 red, 2 green, 3 blue, 4 all counts", "host", "histogram", "UPDATE_COLOR_COMPONENT"},
    {"$GLI_HISTO_BINS_MAX", VARIABLE_UNSIGNED_16, Scalar, "", 0, 0, "4097",
     "bins; one bin of width w per level needs their number + 1 / w", "host", "histogram", "UPDATE_HISTO_DATA"},
    {"$GLI_HISTO_BINS_NB", VARIABLE_UNSIGNED_16, Scalar, "", 0, 0, "0", "bins", "histogram", "host", "nothing"},
    {"$SELECT_GLI_MIN", VARIABLE_FLOAT, Scalar, "", 0, 0, "-100000", "GLI; looked up, restricts nothing", "host",
     "histogram", "nothing"},
    {"$SELECT_GLI_MAX", VARIABLE_FLOAT, Scalar, "", 0, 0, "100000", "GLI; looked up, restricts nothing", "host",
     "histogram", "nothing"},
    {"$HISTO_WINDOW_OWNER", VARIABLE_POINTER, Object, "", 0, 0, "null",
     "HWND that owns the enlarged window; may be missing: none", "host", "enlarged histogram", NEXT_OPENING, true},
    {"$HISTO_WINDOW_PLACE", VARIABLE_SIGNED_32, Array, "4", 0, 0, "0",
     "left, top, width, height on the screen; no width: not known; may be missing", "host, enlarged histogram",
     "enlarged histogram", NEXT_OPENING, true},
    {"$REGIONAL_SEPARATOR", VARIABLE_UNSIGNED_8, Scalar, "", 0, 0, "44", "character code; 0: tab", "host",
     "histogram export", NEXT_EXPORT},
    {"$REGIONAL_FILLER", VARIABLE_TEXT, Text, "", 0, 0, "0", "", "host", "histogram export", NEXT_EXPORT},
    {"$DEFAULT_FILE_PATH", VARIABLE_TEXT, Text, "", 0, 0, "", "folder with its separator at the end, or empty", "host",
     "histogram export", NEXT_EXPORT},
    {"$FILE_EXTENSION_EXCEL", VARIABLE_TEXT, Text, "", 0, 0, "*.csv", "pattern", "host", "histogram export",
     NEXT_EXPORT},
    {"$FILE_EXTENSION_ALL", VARIABLE_TEXT, Text, "", 0, 0, "*.*", "pattern", "host", "histogram export", NEXT_EXPORT},
    {"$DB_1D_ROOT_PT", VARIABLE_POINTER, Object, "", 0, 0, "null", "Quorel_1D*: root of the class tree", "host",
     "database, class view", "UPDATE_STRUCTURE | UPDATE_LEVEL_1D"},
    {"$DB_2D_ROOT_PT", VARIABLE_POINTER, Object, "", 0, 0, "null", "Quorel_2D*: root of the class tree", "host",
     "database, class view", "UPDATE_STRUCTURE | UPDATE_LEVEL_2D"},
    {"$DB_3D_ROOT_PT", VARIABLE_POINTER, Object, "", 0, 0, "null", "Quorel_3D*: root of the class tree", "host",
     "database, class view", "UPDATE_STRUCTURE | UPDATE_LEVEL_3D"},
    {"$DB_2D_FILE_NB", VARIABLE_SIGNED_32, Scalar, "", 65535, 0, "0", "", "host", "database, file view",
     "UPDATE_STRUCTURE | UPDATE_LEVEL_2D, then UPDATE_SELECTION | UPDATE_LEVEL_2D"},
    {"$DB_2D_FILE_PT", VARIABLE_POINTER, Array, "$DB_2D_FILE_NB", 0, 0, "null", "File_Record*", "host",
     "database, file view", "UPDATE_STRUCTURE | UPDATE_LEVEL_2D, then UPDATE_SELECTION | UPDATE_LEVEL_2D"},
    {"$DEFAULT_ICON_PATH", VARIABLE_TEXT, Text, "", 0, 0, "", "folder of the icons", "host", "database",
     "Draw of the database panels"},
    Pixels_Rule("$INTERFACE_SPACE_DIM", "4", "all"),
    Pixels_Rule("$INTERFACE_BORDER_DIM", "2", "TAG, marker, database, enlarged histogram"),
    Pixels_Rule("$INTERFACE_CURSOR_DIM", "14", "TAG, marker, histogram, rename dialog"),
    Pixels_Rule("$INTERFACE_BUTTON_DIM_SML", "24", "TAG, marker, database"),
    Pixels_Rule("$INTERFACE_BUTTON_DIM_BIG", "30", "propagate, enlarged histogram, rename dialog"),
    Pixels_Rule("$INTERFACE_LIST_DIM_SML", "26", "brush, propagate"),
    Pixels_Rule("$INTERFACE_LIST_DIM_ARROW", "20", "propagate"),
    Pixels_Rule("$INTERFACE_TITLE_DIM_SML", "22", "propagate, rename dialog"),
    Pixels_Rule("$INTERFACE_VAL_DIM_SML", "22", "database: width of the sliders"),
    Pixels_Rule("$INTERFACE_VAL_DIM_MID", "26", "none"),
    Pixels_Rule("$INTERFACE_NUM_BIG", "30", "none"),
    {"$INTERFACE_TOOL_FONT_NAME", VARIABLE_TEXT, Text, "", 0, 0, "Arial", "", "host",
     "enlarged histogram, rename dialog", NEXT_OPENING},
    {"$INTERFACE_TOOL_FONT_WEIGHT", VARIABLE_TEXT, Text, "", 0, 0, "", "\"bold\" or empty", "host",
     "enlarged histogram, rename dialog", NEXT_OPENING},
    {"$INTERFACE_TOOL_FONT_SCALE", VARIABLE_SIGNED_16, Scalar, "", 0, 0, "13", PIXELS, "host",
     "enlarged histogram, rename dialog", NEXT_OPENING},
    {"$INTERFACE_TITLE_FONT_NAME", VARIABLE_TEXT, Text, "", 0, 0, "Arial", "", "host",
     "enlarged histogram, rename dialog", NEXT_OPENING},
    {"$INTERFACE_TITLE_FONT_WEIGHT", VARIABLE_TEXT, Text, "", 0, 0, "bold", "\"bold\" or empty", "host",
     "enlarged histogram, rename dialog", NEXT_OPENING},
    {"$INTERFACE_TITLE_FONT_SCALE", VARIABLE_SIGNED_16, Scalar, "", 0, 0, "15", PIXELS, "host",
     "enlarged histogram, rename dialog", NEXT_OPENING},
};

/** Elements that the recommended array has. */
int Length_Of(const Variable_Rule& rule) {
    if (const Variable_Rule* count = Variable_Rule_Find(rule.length)) {
        // What panels show at most, but not room for every file that there might be: that table begins with the count.
        constexpr int table_most = 256;
        const int least = count->most <= table_most ? count->most : 0;
        const double now = std::min<double>(Variable_Number(rule.length, 0), count->most);
        return std::max(least, static_cast<int>(now));
    }
    return static_cast<int>(std::strtol(rule.length, nullptr, 10));
}

template <class Number>
void Fill(void* first, int nb, double value) {
    std::fill_n(static_cast<Number*>(first), nb, static_cast<Number>(value));
}

bool Array_Define(const Variable_Rule& rule) {
    const int nb = Length_Of(rule);
    void* first = Variable_Define_Array(rule.name, rule.type, nb);
    if (first == nullptr) {
        return false;
    }
    const double value = std::strtod(rule.recommended, nullptr);
    switch (rule.type) {
        case VARIABLE_UNSIGNED_8:
            Fill<std::uint8_t>(first, nb, value);
            break;
        case VARIABLE_UNSIGNED_16:
            Fill<std::uint16_t>(first, nb, value);
            break;
        case VARIABLE_SIGNED_32:
            Fill<std::int32_t>(first, nb, value);
            break;
        case VARIABLE_UNSIGNED_32:
            Fill<std::uint32_t>(first, nb, value);
            break;
        case VARIABLE_FLOAT:
            Fill<float>(first, nb, value);
            break;
        default:
            break;  // texts and pointers are null already
    }
    return true;
}

bool Is_In_Pixels(const Variable_Rule& rule) {
    return std::strcmp(rule.unit, PIXELS) == 0;
}

bool Define(const Variable_Rule& rule, float scale) {
    switch (rule.shape) {
        case Scalar: {
            const double value = std::strtod(rule.recommended, nullptr);
            // Single precision: at scales like 1.3 halves of pixels come out as hosts compute them.
            const float scaled = std::round(static_cast<float>(value) * scale);
            return Variable_Define_Scalar(rule.name, rule.type,
                                          Is_In_Pixels(rule) ? static_cast<double>(scaled) : value) != 0;
        }
        case Array:
            return Array_Define(rule);
        case Text:
            return Variable_Define_Text(rule.name, rule.recommended) != 0;
        case Object:
            return Variable_Define_Pointer(rule.name, nullptr) != 0;
    }
    return false;
}

}  // namespace

const Variable_Rule* Variable_Rules(int* nb) {
    if (nb != nullptr) {
        *nb = static_cast<int>(std::size(RULES));
    }
    return RULES;
}

const Variable_Rule* Variable_Rule_Find(const char* name) {
    const auto* found = std::ranges::find_if(
        RULES, [name](const Variable_Rule& rule) { return name != nullptr && std::strcmp(rule.name, name) == 0; });
    return found != std::end(RULES) ? found : nullptr;
}

int Variable_Define_Recommended(float scale) {
    int nb = 0;
    for (const Variable_Rule& rule : RULES) {
        const Variable* variable = Variable_Find(rule.name);
        const bool exists = variable != nullptr && variable->form != Variable::Form::Undefined;
        nb += !exists && Define(rule, scale) ? 1 : 0;
    }
    return nb;
}

int Variable_Define_Interface(float scale) {
    int nb = 0;
    for (const Variable_Rule& rule : RULES) {
        nb += std::string_view(rule.name).starts_with("$INTERFACE_") && Define(rule, scale) ? 1 : 0;
    }
    return nb;
}

int Variable_Scale(float scale) {
    int nb = 0;
    for (const Variable_Rule& rule : RULES) {
        nb += Is_In_Pixels(rule) && Define(rule, scale) ? 1 : 0;
    }
    return nb;
}

const char* Variable_Type_Text(Variable_Type type) {
    constexpr const char* texts[] = {"nothing",         "unsigned 8-bit", "signed 16-bit",
                                     "unsigned 16-bit", "signed 32-bit",  "unsigned 32-bit",
                                     "float",           "text",           "object pointer"};
    return type < std::size(texts) ? texts[type] : texts[0];
}
