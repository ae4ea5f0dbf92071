#include "workbench/host_variables.h"

#include <windows.h>

#include <algorithm>

#include "kits/dataset/variable_rules.h"
#include "workbench/model/marker_table.h"
#include "workbench/model/tag_table.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr std::array<unsigned short, BRUSH_NB> BRUSH_SIZES = {1, 2, 3, 5, 8, 12, 18, 25};
constexpr int BRUSH_RADIUS = 25;  // half-width of every mask; the largest brush reaches 24 pixels from its centre
constexpr int BRUSH_START = 4;
constexpr int HISTOGRAM_BINS_MAX = 4097;  // a bin for each of 4096 levels needs one more

template <class Type>
std::span<Type> Array_Of(const char* name, Variable_Type type) {
    int nb = 0;
    auto* first = static_cast<Type*>(Variable_Array(name, type, &nb));
    return first == nullptr ? std::span<Type>() : std::span<Type>(first, static_cast<std::size_t>(nb));
}

std::span<std::uint8_t> Bytes(const char* name) {
    return Array_Of<std::uint8_t>(name, VARIABLE_UNSIGNED_8);
}

int Number(const char* name) {
    return static_cast<int>(Variable_Number(name, 0));
}

std::string Name_Of(std::span<const char* const> labels, int index) {
    const bool has_label = index >= 0 && static_cast<std::size_t>(index) < labels.size() &&
                           labels[static_cast<std::size_t>(index)] != nullptr;
    return has_label ? labels[static_cast<std::size_t>(index)] : std::to_string(index);
}

/** The folder beside the program, wherever that was started from. Panels and kits open files by the code page. */
std::string Icon_Folder() {
    std::string path(MAX_PATH, '\0');
    path.resize(::GetModuleFileNameA(nullptr, path.data(), MAX_PATH));
    return path.substr(0, path.find_last_of("/\\") + 1) + "icons\\";
}

}  // namespace

void Host_Variables::Define() {
    Variable_Define_Interface(1.0F);
    Define_Tags();
    Define_Markers();
    Define_Brushes();
    Define_Data();
}

void Host_Variables::Define_Tags() {
    Variable_Define_Scalar("$TAG_NB", VARIABLE_UNSIGNED_16, TAG_DEFAULT_NB);
    Variable_Define_Scalar("$TAG_CUR", VARIABLE_UNSIGNED_16, 1);
    for (const char* name : {"$TAG_ENABLE", "$TAG_SELECT", "$TAG_LOCK"}) {
        Variable_Define_Array(name, VARIABLE_UNSIGNED_8, TAG_MAX);
    }
    std::ranges::fill(Tag_Enable(), std::uint8_t{1});
    std::ranges::fill(Tag_Select(), std::uint8_t{1});
    Variable_Define_Array("$TAG_THRESHOLD_MIN", VARIABLE_FLOAT, TAG_MAX);
    Variable_Define_Array("$TAG_THRESHOLD_MAX", VARIABLE_FLOAT, TAG_MAX);
    std::ranges::fill(Threshold_Min(), TAG_THRESHOLD_MIN_UNSET);
    std::ranges::fill(Threshold_Max(), TAG_THRESHOLD_MAX_UNSET);
    Variable_Define_Array("$TAG_LABEL", VARIABLE_TEXT, TAG_MAX);
    for (const char* name : {"$TAG_RED", "$TAG_GRN", "$TAG_BLU"}) {
        Variable_Define_Array(name, VARIABLE_UNSIGNED_16, TAG_MAX);
    }
    const auto red = Array_Of<std::uint16_t>("$TAG_RED", VARIABLE_UNSIGNED_16);
    const auto green = Array_Of<std::uint16_t>("$TAG_GRN", VARIABLE_UNSIGNED_16);
    const auto blue = Array_Of<std::uint16_t>("$TAG_BLU", VARIABLE_UNSIGNED_16);
    for (int tag = 0; tag < TAG_MAX; ++tag) {
        const Tag_Entry entry = Tag_Default(tag);
        const auto at = static_cast<std::size_t>(tag);
        red[at] = static_cast<std::uint16_t>(entry.red * 257);  // both bytes alike: the whole range of 16 bits
        green[at] = static_cast<std::uint16_t>(entry.green * 257);
        blue[at] = static_cast<std::uint16_t>(entry.blue * 257);
        if (!entry.label.empty()) {
            Tag_Label_Set(tag, entry.label.c_str());
        }
    }
}

void Host_Variables::Define_Markers() {
    Variable_Define_Scalar("$MARKER_NB", VARIABLE_UNSIGNED_16, MARKER_NB);
    Variable_Define_Scalar("$MARKER_CUR", VARIABLE_UNSIGNED_16, 0);
    Variable_Define_Array("$MARKER_ENABLE", VARIABLE_UNSIGNED_8, MARKER_NB);
    Variable_Define_Array("$MARKER_LABEL", VARIABLE_TEXT, MARKER_NB);
    Variable_Define_Array("$MARKER_COLOR", VARIABLE_UNSIGNED_32, MARKER_NB);
    const auto color = Array_Of<std::uint32_t>("$MARKER_COLOR", VARIABLE_UNSIGNED_32);
    for (int marker = 0; marker < MARKER_NB; ++marker) {
        color[static_cast<std::size_t>(marker)] = Marker_Default_Color(marker);
        Marker_Label_Set(marker, ("M" + std::to_string(marker + 1)).c_str());
    }
}

void Host_Variables::Define_Brushes() {
    constexpr std::size_t side = 2 * BRUSH_RADIUS + 1;
    mask_bytes.assign(side * side * BRUSH_NB, 0);
    mask_rows.resize(side * BRUSH_NB);
    for (std::size_t row = 0; row < mask_rows.size(); ++row) {
        mask_rows[row] = mask_bytes.data() + row * side;
    }
    Variable_Define_Scalar("$BRUSH_NB", VARIABLE_UNSIGNED_16, BRUSH_NB);
    Variable_Define_Scalar("$BRUSH_CUR", VARIABLE_UNSIGNED_16, BRUSH_START);
    Variable_Define_Scalar("$BRUSH_RADIUS", VARIABLE_UNSIGNED_16, BRUSH_RADIUS);
    Variable_Define_Array("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, BRUSH_NB);
    std::ranges::copy(BRUSH_SIZES, Array_Of<std::uint16_t>("$BRUSH_SIZE", VARIABLE_UNSIGNED_16).begin());
    Variable_Define_Array("$BRUSH_PT", VARIABLE_POINTER, BRUSH_NB);
    const auto tables = Array_Of<void*>("$BRUSH_PT", VARIABLE_POINTER);
    for (std::size_t brush = 0; brush < tables.size(); ++brush) {
        tables[brush] = mask_rows.data() + brush * side;
    }
}

void Host_Variables::Define_Data() {
    Variable_Define_Pointer("$WINDOW_CUR", nullptr);
    Variable_Define_Array("$FRAME_CUR", VARIABLE_POINTER, WINDOW_NUMBER_MAX);
    Variable_Define_Pointer("$FRAME_OVR", nullptr);
    Variable_Define_Array("$MOUSE_FRM", VARIABLE_FLOAT, 4);
    Variable_Define_Scalar("$GLI_COLOR_COMPONENT", VARIABLE_UNSIGNED_8, 0);
    Variable_Define_Scalar("$GLI_HISTO_BINS_MAX", VARIABLE_UNSIGNED_16, HISTOGRAM_BINS_MAX);
    Variable_Define_Scalar("$GLI_HISTO_BINS_NB", VARIABLE_UNSIGNED_16, 0);
    Variable_Define_Scalar("$SELECT_GLI_MIN", VARIABLE_FLOAT, TAG_THRESHOLD_MIN_UNSET);
    Variable_Define_Scalar("$SELECT_GLI_MAX", VARIABLE_FLOAT, TAG_THRESHOLD_MAX_UNSET);
    for (const char* name : {"$DB_1D_ROOT_PT", "$DB_2D_ROOT_PT", "$DB_3D_ROOT_PT"}) {
        Variable_Define_Pointer(name, nullptr);
    }
    Variable_Define_Scalar("$DB_2D_FILE_NB", VARIABLE_SIGNED_32, 0);
    Variable_Define_Array("$DB_2D_FILE_PT", VARIABLE_POINTER, 0);
    Variable_Define_Text("$DEFAULT_FILE_PATH", "");
    Variable_Define_Text("$DEFAULT_ICON_PATH", Icon_Folder().c_str());
    Variable_Define_Text("$FILE_EXTENSION_EXCEL", "*.csv");
    Variable_Define_Text("$FILE_EXTENSION_ALL", "*.*");
    Variable_Define_Scalar("$REGIONAL_SEPARATOR", VARIABLE_UNSIGNED_8, ',');
    Variable_Define_Text("$REGIONAL_FILLER", "0");
}

void Host_Variables::Scale_Set(float scale) {
    Variable_Scale(scale);
}

Panel_Dimensions Host_Variables::Dimensions() const {
    return {Number("$INTERFACE_SPACE_DIM"), Number("$INTERFACE_BORDER_DIM"), Number("$INTERFACE_BUTTON_DIM_SML")};
}

int Host_Variables::Tag_Nb() const {
    return Number("$TAG_NB");
}
void Host_Variables::Tag_Nb_Set(int nb) {
    Variable_Set("$TAG_NB", nb);
}
int Host_Variables::Tag_Cur() const {
    return Number("$TAG_CUR");
}
void Host_Variables::Tag_Cur_Set(int tag) {
    Variable_Set("$TAG_CUR", tag);
}
std::span<std::uint8_t> Host_Variables::Tag_Enable() {
    return Bytes("$TAG_ENABLE");
}
std::span<std::uint8_t> Host_Variables::Tag_Select() {
    return Bytes("$TAG_SELECT");
}
std::span<std::uint8_t> Host_Variables::Tag_Lock() {
    return Bytes("$TAG_LOCK");
}
std::span<float> Host_Variables::Threshold_Min() {
    return Array_Of<float>("$TAG_THRESHOLD_MIN", VARIABLE_FLOAT);
}
std::span<float> Host_Variables::Threshold_Max() {
    return Array_Of<float>("$TAG_THRESHOLD_MAX", VARIABLE_FLOAT);
}
std::span<const char* const> Host_Variables::Tag_Labels() const {
    return Array_Of<const char*>("$TAG_LABEL", VARIABLE_TEXT);
}
void Host_Variables::Tag_Label_Set(int tag, const char* label) {
    Variable_Set_Array_Text("$TAG_LABEL", tag, label);
}
std::string Host_Variables::Tag_Name(int tag) const {
    return Name_Of(Tag_Labels(), tag);
}

std::uint32_t Host_Variables::Tag_Color(int tag) const {
    if (tag <= 0 || tag >= TAG_MAX) {
        return 0xAAAAAA;
    }
    const auto high_byte = [&](const char* name) {
        return static_cast<std::uint32_t>(
                   Array_Of<std::uint16_t>(name, VARIABLE_UNSIGNED_16)[static_cast<std::size_t>(tag)]) >>
               8U;
    };
    return (high_byte("$TAG_RED") << 16U) | (high_byte("$TAG_GRN") << 8U) | high_byte("$TAG_BLU");
}

void Host_Variables::Tag_Color_Set(int tag, std::uint32_t color) {
    if (tag <= 0 || tag >= TAG_MAX) {
        return;
    }
    const auto set = [&](const char* name, unsigned int shift) {
        // Both bytes alike: the whole range of 16 bits.
        Array_Of<std::uint16_t>(name, VARIABLE_UNSIGNED_16)[static_cast<std::size_t>(tag)] =
            static_cast<std::uint16_t>(((color >> shift) & 0xFFU) * 257U);
    };
    set("$TAG_RED", 16);
    set("$TAG_GRN", 8);
    set("$TAG_BLU", 0);
}

std::vector<std::uint32_t> Host_Variables::Tag_Colors() const {
    std::vector<std::uint32_t> colors;
    for (int tag = 0; tag < TAG_MAX; ++tag) {
        colors.push_back(Tag_Color(tag));
    }
    return colors;
}

int Host_Variables::Marker_Cur() const {
    return Number("$MARKER_CUR");
}
void Host_Variables::Marker_Cur_Set(int marker) {
    Variable_Set("$MARKER_CUR", marker);
}
std::span<std::uint8_t> Host_Variables::Marker_Enable() {
    return Bytes("$MARKER_ENABLE");
}
std::span<const char* const> Host_Variables::Marker_Labels() const {
    return Array_Of<const char*>("$MARKER_LABEL", VARIABLE_TEXT);
}
void Host_Variables::Marker_Label_Set(int marker, const char* label) {
    Variable_Set_Array_Text("$MARKER_LABEL", marker, label);
}
std::uint32_t Host_Variables::Marker_Color(int marker) const {
    const auto color = Array_Of<std::uint32_t>("$MARKER_COLOR", VARIABLE_UNSIGNED_32);
    return marker >= 0 && static_cast<std::size_t>(marker) < color.size() ? color[static_cast<std::size_t>(marker)] : 0;
}
void Host_Variables::Marker_Color_Set(int marker, std::uint32_t color) {
    const auto colors = Array_Of<std::uint32_t>("$MARKER_COLOR", VARIABLE_UNSIGNED_32);
    if (marker >= 0 && static_cast<std::size_t>(marker) < colors.size()) {
        colors[static_cast<std::size_t>(marker)] = color;
    }
}
std::string Host_Variables::Marker_Name(int marker) const {
    return Name_Of(Marker_Labels(), marker);
}

std::string Host_Variables::Utf8_Of(const char* panel_text) const {
    return Utf8_Of_Wide(Wide_Of_Panel(panel_text));
}

std::string Host_Variables::Panel_Text_Of(const std::string& utf8) const {
    return Panel_Of_Wide(Wide_Of_Utf8(utf8));
}

int Host_Variables::Brush_Cur() const {
    return Number("$BRUSH_CUR");
}
void Host_Variables::Brush_Cur_Set(int brush) {
    Variable_Set("$BRUSH_CUR", std::clamp(brush, 0, BRUSH_NB - 1));
}
Brush_Footprint Host_Variables::Brush() const {
    const auto tables = Array_Of<void*>("$BRUSH_PT", VARIABLE_POINTER);
    const auto brush = static_cast<std::size_t>(Brush_Cur());
    if (brush >= tables.size()) {
        return {};
    }
    return {static_cast<const unsigned char* const*>(tables[brush]), BRUSH_RADIUS};
}

char Host_Variables::Separator() const {
    const int code = Number("$REGIONAL_SEPARATOR") & 0xFF;
    return code == 0 ? '\t' : static_cast<char>(code);
}
std::string Host_Variables::Filler() const {
    const auto* text = static_cast<const char*>(Fct_Variable_Value("$REGIONAL_FILLER", nullptr, nullptr, nullptr));
    return text != nullptr ? text : "0";
}

void Host_Variables::Mouse_Set(Quorel_2D* frame, float x, float y) {
    Variable_Define_Pointer("$FRAME_OVR", frame);
    const auto mouse = Array_Of<float>("$MOUSE_FRM", VARIABLE_FLOAT);
    if (mouse.size() >= 2) {
        mouse[0] = x;
        mouse[1] = y;
    }
}

}  // namespace workbench
