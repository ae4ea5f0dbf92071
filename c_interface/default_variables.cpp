#include "c_interface/default_variables.h"

#include <algorithm>
#include <vector>

#include "c_interface/image_objects.h"
#include "kits/dataset/dataset_host.h"
#include "kits/dataset/variable_rules.h"

namespace c_interface {

namespace {

constexpr int TAG_START_NB = 8;
constexpr int MARKER_START_NB = 4;
constexpr int BINS_MOST = 4097;  // a bin for each of 4096 levels needs one more
constexpr unsigned short BRUSH_START[] = {1, 3, 6, 10, 16};

struct Masks {
    std::vector<unsigned char> bytes;
    std::vector<unsigned char*> rows;
    int radius = 0;
};
Masks masks;

template <class Type>
Type* Array(const char* name, Variable_Type type, int nb) {
    return static_cast<Type*>(Variable_Define_Array(name, type, nb));
}

void Interface_Define(float scale, const std::string& icons) {
    Variable_Define_Interface(scale);
    Variable_Define_Text("$DEFAULT_ICON_PATH", icons.c_str());
    Variable_Define_Text("$DEFAULT_FILE_PATH", "");
    Variable_Define_Text("$FILE_EXTENSION_EXCEL", "*.csv");
    Variable_Define_Text("$FILE_EXTENSION_ALL", "*.*");
    Variable_Define_Scalar("$REGIONAL_SEPARATOR", VARIABLE_UNSIGNED_8, ',');
    Variable_Define_Text("$REGIONAL_FILLER", "0");
}

void Tags_Define() {
    for (const char* name : {"$TAG_ENABLE", "$TAG_SELECT"}) {
        if (auto* const flags = Array<std::uint8_t>(name, VARIABLE_UNSIGNED_8, TAG_ROOM); flags != nullptr) {
            std::fill_n(flags, TAG_ROOM, std::uint8_t{1});
        }
    }
    if (auto* const locks = Array<std::uint8_t>("$TAG_LOCK", VARIABLE_UNSIGNED_8, TAG_ROOM); locks != nullptr) {
        std::fill_n(locks, TAG_ROOM, std::uint8_t{0});
    }
    auto* const lowest = Array<float>("$TAG_THRESHOLD_MIN", VARIABLE_FLOAT, TAG_ROOM);
    auto* const highest = Array<float>("$TAG_THRESHOLD_MAX", VARIABLE_FLOAT, TAG_ROOM);
    auto* const red = Array<std::uint16_t>("$TAG_RED", VARIABLE_UNSIGNED_16, TAG_ROOM);
    auto* const green = Array<std::uint16_t>("$TAG_GRN", VARIABLE_UNSIGNED_16, TAG_ROOM);
    auto* const blue = Array<std::uint16_t>("$TAG_BLU", VARIABLE_UNSIGNED_16, TAG_ROOM);
    Variable_Define_Array("$TAG_LABEL", VARIABLE_TEXT, TAG_ROOM);
    for (int tag = 0; tag < TAG_ROOM; ++tag) {
        if (lowest != nullptr && highest != nullptr) {
            lowest[tag] = TAG_THRESHOLD_MIN_UNSET;
            highest[tag] = TAG_THRESHOLD_MAX_UNSET;
        }
        if (red != nullptr && green != nullptr && blue != nullptr) {
            // Neighbours differ: three bits of the number, turned to the bright half.
            red[tag] = static_cast<std::uint16_t>((tag & 1) != 0 ? 0xE0E0 : 0x4040);
            green[tag] = static_cast<std::uint16_t>((tag & 2) != 0 ? 0xD0D0 : 0x4040);
            blue[tag] = static_cast<std::uint16_t>((tag & 4) != 0 ? 0xF0F0 : 0x4040);
        }
        Variable_Set_Array_Text("$TAG_LABEL", tag, nullptr);
    }
    Variable_Define_Scalar("$TAG_NB", VARIABLE_UNSIGNED_16, TAG_START_NB);
    Variable_Define_Scalar("$TAG_CUR", VARIABLE_UNSIGNED_16, 0);
}

void Markers_Define() {
    auto* const enabled = Array<std::uint8_t>("$MARKER_ENABLE", VARIABLE_UNSIGNED_8, MARKER_ROOM);
    auto* const color = Array<std::uint32_t>("$MARKER_COLOR", VARIABLE_UNSIGNED_32, MARKER_ROOM);
    Variable_Define_Array("$MARKER_LABEL", VARIABLE_TEXT, MARKER_ROOM);
    for (int marker = 0; marker < MARKER_ROOM; ++marker) {
        if (enabled != nullptr && color != nullptr) {
            enabled[marker] = 0;
            color[marker] = 0x00A0C0A0;
        }
        Variable_Set_Array_Text("$MARKER_LABEL", marker, nullptr);
    }
    Variable_Define_Scalar("$MARKER_NB", VARIABLE_UNSIGNED_16, MARKER_START_NB);
    Variable_Define_Scalar("$MARKER_CUR", VARIABLE_UNSIGNED_16, 0);
}

void Brushes_Define() {
    Brush_Masks_Make(BRUSH_START[std::size(BRUSH_START) - 1]);
    auto* const sizes = Array<std::uint16_t>("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, BRUSH_ROOM);
    if (sizes != nullptr) {
        std::ranges::copy(BRUSH_START, sizes);
    }
    Variable_Define_Scalar("$BRUSH_NB", VARIABLE_UNSIGNED_16, std::size(BRUSH_START));
    Variable_Define_Scalar("$BRUSH_CUR", VARIABLE_UNSIGNED_16, 0);
}

void Data_Define() {
    Variable_Define_Pointer("$WINDOW_CUR", &World().window);
    Variable_Define_Array("$FRAME_CUR", VARIABLE_POINTER, WINDOW_NUMBER_MAX);
    Variable_Define_Pointer("$FRAME_OVR", nullptr);
    Variable_Define_Array("$MOUSE_FRM", VARIABLE_FLOAT, 4);
    Variable_Define_Scalar("$GLI_COLOR_COMPONENT", VARIABLE_UNSIGNED_8, 0);
    Variable_Define_Scalar("$GLI_HISTO_BINS_MAX", VARIABLE_UNSIGNED_16, BINS_MOST);
    Variable_Define_Scalar("$GLI_HISTO_BINS_NB", VARIABLE_UNSIGNED_16, 0);
    Variable_Define_Array("$HISTO_WINDOW_PLACE", VARIABLE_SIGNED_32, 4);
    Variable_Define_Scalar("$SELECT_GLI_MIN", VARIABLE_FLOAT, TAG_THRESHOLD_MIN_UNSET);
    Variable_Define_Scalar("$SELECT_GLI_MAX", VARIABLE_FLOAT, TAG_THRESHOLD_MAX_UNSET);
    Variable_Define_Pointer("$DB_1D_ROOT_PT", &World().root_1d);
    Variable_Define_Pointer("$DB_2D_ROOT_PT", &World().root_2d);
    Variable_Define_Pointer("$DB_3D_ROOT_PT", &World().root_3d);
    Files_Table_Make();
}

}  // namespace

void Variables_Define(float scale, const std::string& icons) {
    Interface_Define(scale, icons);
    Tags_Define();
    Markers_Define();
    Brushes_Define();
    Data_Define();
}

void Variables_End() {
    for (const char* name : {"$WINDOW_CUR", "$FRAME_OVR", "$DB_1D_ROOT_PT", "$DB_2D_ROOT_PT", "$DB_3D_ROOT_PT"}) {
        Variable_Define_Pointer(name, nullptr);
    }
    Variable_Undefine("$BRUSH_PT");
    masks = {};
}

void Brush_Masks_Make(int radius) {
    Masks made;
    made.radius = radius;
    const auto side = static_cast<std::size_t>(2 * radius + 1);
    made.bytes.assign(side * side * BRUSH_ROOM, 0);
    made.rows.resize(side * BRUSH_ROOM);
    for (std::size_t row = 0; row < made.rows.size(); ++row) {
        made.rows[row] = made.bytes.data() + row * side;
    }
    auto** const tables = static_cast<void**>(Variable_Define_Array("$BRUSH_PT", VARIABLE_POINTER, BRUSH_ROOM));
    if (tables == nullptr) {
        throw std::bad_alloc();
    }
    for (std::size_t brush = 0; brush < BRUSH_ROOM; ++brush) {
        tables[brush] = made.rows.data() + brush * side;
    }
    Variable_Define_Scalar("$BRUSH_RADIUS", VARIABLE_UNSIGNED_16, radius);
    masks = std::move(made);
}

int Brush_Mask_Radius() {
    return masks.radius;
}

bool Is_Kept_By_Tables(const std::string& name) {
    static constexpr const char* names[] = {"$TAG_NB",    "$TAG_CUR",      "$MARKER_NB",     "$MARKER_CUR", "$BRUSH_NB",
                                            "$BRUSH_CUR", "$BRUSH_RADIUS", "$DB_2D_FILE_NB", "$BRUSH_SIZE"};
    return std::ranges::find(names, name) != std::end(names);
}

}  // namespace c_interface
