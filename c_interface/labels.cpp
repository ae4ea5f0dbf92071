// The tables of TAGs, markers and brushes.
#include <algorithm>
#include <cmath>
#include <cstddef>

#include "c_interface/code_page_text.h"
#include "c_interface/default_variables.h"
#include "c_interface/panel.h"
#include "c_interface/session.h"
#include "kits/dataset/dataset_host.h"

using namespace c_interface;

namespace {

constexpr std::uint32_t FLAGS_ALL = KIT_LABEL_ENABLED | KIT_LABEL_SELECTED | KIT_LABEL_LOCKED;
constexpr std::size_t LABEL_LEAST = offsetof(kit_label, reserved) + 1;
constexpr int COLUMNS = 4;
constexpr std::uint64_t UPDATE_TABLE =
    UPDATE_TAG_TABLE | UPDATE_TAG_LABEL | UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK | UPDATE_TAG_CUR;

template <class Type>
Type& Element(const char* name, Variable_Type type, std::uint32_t index) {
    int nb = 0;
    auto* const first = static_cast<Type*>(Variable_Array(name, type, &nb));
    Require(first != nullptr && index < static_cast<std::uint32_t>(nb), KIT_ERROR_MISSING,
            "a variable of the table is gone");
    return first[index];
}

std::uint32_t Count(const char* name) {
    return static_cast<std::uint32_t>(Variable_Number(name, 0));
}

/** A label that was checked, its text in the code page. */
struct Checked {
    kit_label label;
    std::string text;
    bool has_text = false;
};

Checked Checked_Label(const kit_label* given) {
    Checked checked;
    checked.label = Struct_Of(given, LABEL_LEAST);
    Require((checked.label.flags & ~FLAGS_ALL) == 0, KIT_ERROR_ARGUMENT, "flags is no sum of KIT_LABEL_ bits");
    Require(std::isfinite(checked.label.threshold_min) && std::isfinite(checked.label.threshold_max),
            KIT_ERROR_ARGUMENT, "a threshold is no number");
    if (checked.label.text != nullptr) {
        checked.text = Page_Text(checked.label.text);
        checked.has_text = true;
    }
    return checked;
}

/** All or nothing: every label is checked before the first is stored. */
std::vector<Checked> Checked_Labels(const kit_label* labels, std::uint32_t count, std::uint32_t most) {
    Require(count >= COLUMNS && count <= most && count % COLUMNS == 0, KIT_ERROR_ARGUMENT,
            "count is no multiple of four that panels show");
    const std::uint32_t step = Struct_Of(labels, LABEL_LEAST).size;
    std::vector<Checked> checked;
    const auto* at = reinterpret_cast<const unsigned char*>(labels);
    for (std::uint32_t index = 0; index < count; ++index, at += step) {
        checked.push_back(Checked_Label(reinterpret_cast<const kit_label*>(at)));
        Require(checked.back().label.size == step, KIT_ERROR_SIZE, "the structs have different sizes");
    }
    return checked;
}

void Text_Store(const char* table, std::uint32_t index, const Checked& checked) {
    Require(
        Variable_Set_Array_Text(table, static_cast<int>(index), checked.has_text ? checked.text.c_str() : nullptr) != 0,
        KIT_ERROR_MEMORY, "no memory for a label");
}

std::uint16_t Wide_Colour(std::uint8_t byte) {
    return static_cast<std::uint16_t>(byte * 257);  // both bytes alike: the whole range of 16 bits
}

void Tag_Store(std::uint32_t index, const Checked& checked) {
    const kit_label& label = checked.label;
    Text_Store("$TAG_LABEL", index, checked);
    Element<std::uint16_t>("$TAG_RED", VARIABLE_UNSIGNED_16, index) = Wide_Colour(label.red);
    Element<std::uint16_t>("$TAG_GRN", VARIABLE_UNSIGNED_16, index) = Wide_Colour(label.green);
    Element<std::uint16_t>("$TAG_BLU", VARIABLE_UNSIGNED_16, index) = Wide_Colour(label.blue);
    Element<std::uint8_t>("$TAG_ENABLE", VARIABLE_UNSIGNED_8, index) = (label.flags & KIT_LABEL_ENABLED) != 0 ? 1 : 0;
    Element<std::uint8_t>("$TAG_SELECT", VARIABLE_UNSIGNED_8, index) = (label.flags & KIT_LABEL_SELECTED) != 0 ? 1 : 0;
    Element<std::uint8_t>("$TAG_LOCK", VARIABLE_UNSIGNED_8, index) = (label.flags & KIT_LABEL_LOCKED) != 0 ? 1 : 0;
    Element<float>("$TAG_THRESHOLD_MIN", VARIABLE_FLOAT, index) = label.threshold_min;
    Element<float>("$TAG_THRESHOLD_MAX", VARIABLE_FLOAT, index) = label.threshold_max;
}

void Marker_Store(std::uint32_t index, const Checked& checked) {
    const kit_label& label = checked.label;
    Text_Store("$MARKER_LABEL", index, checked);
    Element<std::uint8_t>("$MARKER_ENABLE", VARIABLE_UNSIGNED_8, index) =
        (label.flags & KIT_LABEL_ENABLED) != 0 ? 1 : 0;
    Element<std::uint32_t>("$MARKER_COLOR", VARIABLE_UNSIGNED_32, index) =
        label.red | (std::uint32_t{label.green} << 8) | (std::uint32_t{label.blue} << 16);
}

void Index_Check(std::uint32_t index, const char* count_name) {
    Require(index < Count(count_name), KIT_ERROR_ARGUMENT, "index is not below the count");
}

kit_label Tag_Read(std::uint32_t index) {
    const auto is_on = [&](const char* name) { return Element<std::uint8_t>(name, VARIABLE_UNSIGNED_8, index) != 0; };
    const auto colour = [&](const char* name) {
        return static_cast<std::uint8_t>(Element<std::uint16_t>(name, VARIABLE_UNSIGNED_16, index) >> 8);
    };
    kit_label read = {};
    read.flags = (is_on("$TAG_ENABLE") ? KIT_LABEL_ENABLED : 0U) | (is_on("$TAG_SELECT") ? KIT_LABEL_SELECTED : 0U) |
                 (is_on("$TAG_LOCK") ? KIT_LABEL_LOCKED : 0U);
    read.threshold_min = Element<float>("$TAG_THRESHOLD_MIN", VARIABLE_FLOAT, index);
    read.threshold_max = Element<float>("$TAG_THRESHOLD_MAX", VARIABLE_FLOAT, index);
    read.red = colour("$TAG_RED");
    read.green = colour("$TAG_GRN");
    read.blue = colour("$TAG_BLU");
    return read;
}

kit_label Marker_Read(std::uint32_t index) {
    const std::uint32_t color = Element<std::uint32_t>("$MARKER_COLOR", VARIABLE_UNSIGNED_32, index);
    kit_label read = {};
    read.flags = Element<std::uint8_t>("$MARKER_ENABLE", VARIABLE_UNSIGNED_8, index) != 0 ? KIT_LABEL_ENABLED : 0U;
    read.red = static_cast<std::uint8_t>(color & 0xFF);
    read.green = static_cast<std::uint8_t>((color >> 8) & 0xFF);
    read.blue = static_cast<std::uint8_t>((color >> 16) & 0xFF);
    return read;
}

/** A table of labels that one kind of panel shows. */
struct Label_Table {
    ///@{
    /** Variables. */
    const char* count;
    const char* current;
    const char* text;
    ///@}
    std::uint32_t most;
    std::uint32_t panel_kind;
    bool is_laid_out_always;  // its panels take colours and texts when they are laid out, and at no other time
    void (*store)(std::uint32_t index, const Checked& checked);
    kit_label (*read)(std::uint32_t index);
};
constexpr Label_Table TAGS = {"$TAG_NB", "$TAG_CUR", "$TAG_LABEL", TAG_ROOM, KIT_PANEL_TAG, false, Tag_Store, Tag_Read};
constexpr Label_Table MARKERS = {"$MARKER_NB",     "$MARKER_CUR", "$MARKER_LABEL", MARKER_ROOM,
                                 KIT_PANEL_MARKER, true,          Marker_Store,    Marker_Read};

void Count_Store(const char* count_name, const char* current, std::uint32_t count) {
    Variable_Set(count_name, count);
    if (Count(current) >= count) {
        Variable_Set(current, 0);
    }
}

kit_status Labels_Set(const char* function, const Label_Table& table, const kit_label* labels, std::uint32_t count) {
    return Call(function, 0, [&] {
        const auto checked = Checked_Labels(labels, count, table.most);
        for (std::uint32_t index = 0; index < count; ++index) {
            table.store(index, checked[index]);
        }
        const bool is_other_count = Count(table.count) != count;
        Count_Store(table.count, table.current, count);
        if (is_other_count || table.is_laid_out_always) {
            Panels_Lay_Out(table.panel_kind);
        }
        Session::The().Announce(UPDATE_TABLE);
    });
}

kit_status Label_Set(const char* function, const Label_Table& table, std::uint32_t index, const kit_label* label) {
    return Call(function, 0, [&] {
        Index_Check(index, table.count);
        table.store(index, Checked_Label(label));
        Session::The().Announce(UPDATE_TABLE & ~UPDATE_TAG_CUR);
    });
}

kit_status Label_Get(const char* function, const Label_Table& table, std::uint32_t index, kit_label* label) {
    return Call(function, 0, [&] {
        Index_Check(index, table.count);
        Struct_Fill(label, table.read(index), LABEL_LEAST);
    });
}

kit_status Label_Text(const char* function, const Label_Table& table, std::uint32_t index, char* out,
                      std::uint32_t room, std::uint32_t* needed) {
    return Call(function, 0, [&] {
        Index_Check(index, table.count);
        Text_Out(Element<const char*>(table.text, VARIABLE_TEXT, index), out, room, needed);
    });
}

kit_status Number_Read(const char* function, const char* name, std::uint32_t* out) {
    return Call(function, 0, [&] { Write_To(out, Count(name)); });
}

kit_status Pick(const char* function, const char* current, const char* count_name, std::uint32_t index,
                std::uint64_t flags) {
    return Call(function, 0, [&] {
        Index_Check(index, count_name);
        Variable_Set(current, index);
        Session::The().Announce(flags);
    });
}

/** Which pixels a brush covers, as brush panels lay them out: the middle alone, or all that are nearer to it than
 * `size`. */
std::vector<std::uint8_t> Mask_Of(int size, int radius) {
    std::vector<std::uint8_t> mask;
    mask.reserve(static_cast<std::size_t>(2 * radius + 1) * static_cast<std::size_t>(2 * radius + 1));
    for (int y = -radius; y <= radius; ++y) {
        for (int x = -radius; x <= radius; ++x) {
            mask.push_back(x * x + y * y < size * size ? 1 : 0);
        }
    }
    return mask;
}

}  // namespace

extern "C" {

kit_status kit_tags_set(const kit_label* labels, uint32_t count) {
    return Labels_Set("kit_tags_set", TAGS, labels, count);
}

kit_status kit_tags_count(uint32_t* count) {
    return Number_Read("kit_tags_count", TAGS.count, count);
}

kit_status kit_tag_set(uint32_t index, const kit_label* label) {
    return Label_Set("kit_tag_set", TAGS, index, label);
}

kit_status kit_tag_get(uint32_t index, kit_label* label) {
    return Label_Get("kit_tag_get", TAGS, index, label);
}

kit_status kit_tag_text(uint32_t index, char* out, uint32_t room, uint32_t* needed) {
    return Label_Text("kit_tag_text", TAGS, index, out, room, needed);
}

kit_status kit_tag_pick(uint32_t index) {
    return Pick("kit_tag_pick", TAGS.current, TAGS.count, index, UPDATE_TAG_CUR);
}

kit_status kit_tag_picked(uint32_t* index) {
    return Number_Read("kit_tag_picked", TAGS.current, index);
}

kit_status kit_markers_set(const kit_label* labels, uint32_t count) {
    return Labels_Set("kit_markers_set", MARKERS, labels, count);
}

kit_status kit_markers_count(uint32_t* count) {
    return Number_Read("kit_markers_count", MARKERS.count, count);
}

kit_status kit_marker_set(uint32_t index, const kit_label* label) {
    return Label_Set("kit_marker_set", MARKERS, index, label);
}

kit_status kit_marker_get(uint32_t index, kit_label* label) {
    return Label_Get("kit_marker_get", MARKERS, index, label);
}

kit_status kit_marker_text(uint32_t index, char* out, uint32_t room, uint32_t* needed) {
    return Label_Text("kit_marker_text", MARKERS, index, out, room, needed);
}

kit_status kit_marker_pick(uint32_t index) {
    return Pick("kit_marker_pick", MARKERS.current, MARKERS.count, index, UPDATE_TAG_CUR);
}

kit_status kit_marker_picked(uint32_t* index) {
    return Number_Read("kit_marker_picked", MARKERS.current, index);
}

kit_status kit_brushes_set(const uint16_t* sizes, uint32_t count) {
    return Call("kit_brushes_set", 0, [&] {
        Require(sizes != nullptr, KIT_ERROR_ARGUMENT, "sizes is null");
        Require(count >= 1 && count <= BRUSH_ROOM, KIT_ERROR_ARGUMENT, "count is not from 1 to 8");
        int radius = 1;
        for (std::uint32_t index = 0; index < count; ++index) {
            Require(sizes[index] >= 1 && sizes[index] <= BRUSH_RADIUS_MOST, KIT_ERROR_ARGUMENT,
                    "a size is not from 1 to 181");
            radius = std::max<int>(radius, sizes[index]);
        }
        Element<std::uint16_t>("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, 0);
        if (radius != Brush_Mask_Radius()) {
            Brush_Masks_Make(radius);  // panels fill them only when a size differs, so the same masks stay
        }
        for (std::uint32_t index = 0; index < count; ++index) {
            Element<std::uint16_t>("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, index) = sizes[index];
        }
        Count_Store("$BRUSH_NB", "$BRUSH_CUR", count);
        Panels_Lay_Out(KIT_PANEL_BRUSH);
        Session::The().Announce(UPDATE_BRUSH);
    });
}

kit_status kit_brushes_count(uint32_t* count) {
    return Number_Read("kit_brushes_count", "$BRUSH_NB", count);
}

kit_status kit_brush_size(uint32_t index, uint16_t* size) {
    return Call("kit_brush_size", 0, [&] {
        Index_Check(index, "$BRUSH_NB");
        Write_To(size, Element<std::uint16_t>("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, index));
    });
}

kit_status kit_brush_pick(uint32_t index) {
    return Pick("kit_brush_pick", "$BRUSH_CUR", "$BRUSH_NB", index, UPDATE_BRUSH);
}

kit_status kit_brush_picked(uint32_t* index) {
    return Number_Read("kit_brush_picked", "$BRUSH_CUR", index);
}

kit_status kit_brush_mask(uint32_t index, uint8_t* out, uint32_t room, uint32_t* needed, uint32_t* side) {
    return Call("kit_brush_mask", 0, [&] {
        Index_Check(index, "$BRUSH_NB");
        const int radius = Brush_Mask_Radius();
        if (side != nullptr) {
            *side = static_cast<std::uint32_t>(2 * radius + 1);
        }
        const auto mask = Mask_Of(Element<std::uint16_t>("$BRUSH_SIZE", VARIABLE_UNSIGNED_16, index), radius);
        Array_Out<std::uint8_t>(mask, out, room, needed);
    });
}

}  // extern "C"
