#include "workbench/model/label_description.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdio>
#include <utility>

#include "workbench/model/label_map.h"
#include "workbench/model/line_reader.h"
#include "workbench/model/marker_table.h"

namespace workbench {

namespace {

constexpr std::string_view FORMAT = "label description";
constexpr std::string_view TAG_HEADING = "# tag NUMBER COLOUR SHOWN SELECTED LOCKED LOWER UPPER NAME\n";
constexpr std::string_view MARKER_HEADING = "# marker NUMBER COLOUR FRAME COLUMN ROW NAME\n";
constexpr std::string_view NOTHING = "-";
constexpr std::string_view BYTE_ORDER_MARK = "\xEF\xBB\xBF";  // editors put it at the start of UTF-8 texts
constexpr std::uint32_t COLOR_MAX = 0xFFFFFF;
constexpr std::size_t COLOR_LENGTH = 7;  // of #RRGGBB
constexpr std::size_t NUMBER_MAX = 1000000;

// ---------------- writing

std::string Color_Text(std::uint32_t color) {
    char text[COLOR_LENGTH + 1];
    std::snprintf(text, sizeof text, "#%06X", static_cast<unsigned int>(color & COLOR_MAX));
    return text;
}

/** The shortest text that reads back as the same number. */
std::string Limit_Text(const std::optional<float>& limit) {
    if (!limit) {
        return std::string(NOTHING);
    }
    std::array<char, 40> text{};
    const auto [end, code] = std::to_chars(text.data(), text.data() + text.size(), *limit);
    return {text.data(), code == std::errc() ? end : text.data()};
}

std::string Name_Text(const std::optional<std::string>& name) {
    return name ? Quoted_Text(*name) : std::string(NOTHING);
}

std::string Place_Text(const std::optional<Label_Voxel>& place) {
    if (!place) {
        return "- - -";
    }
    return std::to_string(place->frame) + " " + std::to_string(place->column) + " " + std::to_string(place->row);
}

// ---------------- reading

std::uint32_t Color_Of(Line_Reader& reader) {
    const std::string_view word = reader.Word();
    std::uint32_t color = 0;
    if (word.size() == COLOR_LENGTH && word.front() == '#') {
        const auto [end, code] = std::from_chars(word.data() + 1, word.data() + word.size(), color, 16);
        if (code == std::errc() && end == word.data() + word.size()) {
            return color;
        }
    }
    reader.Fail("a colour like #F0CE60 is expected");
    return 0;
}

bool Flag_Of(Line_Reader& reader) {
    return reader.Number(1) != 0;
}

std::optional<float> Limit_Of(Line_Reader& reader) {
    return reader.Take(NOTHING) ? std::nullopt : std::optional(reader.Real());
}

std::optional<std::string> Name_Of(Line_Reader& reader) {
    if (reader.Take(NOTHING)) {
        return std::nullopt;
    }
    std::string name = reader.Text();
    if (name.size() > LABEL_NAME_MAX) {
        reader.Fail("a name is too long");
    } else if (!Is_Utf8(name) || name.find('\0') != std::string::npos) {
        reader.Fail("a name is no UTF-8");
    }
    return name;
}

int Index_Of(Line_Reader& reader, int count) {
    const std::size_t number = reader.Number(NUMBER_MAX);
    if (number >= static_cast<std::size_t>(std::max(count, 0))) {
        reader.Fail("the marker lies outside the labels");
        return 0;
    }
    return static_cast<int>(number);
}

std::optional<Label_Voxel> Place_Of(Line_Reader& reader, const Label_Extent& extent) {
    if (reader.Take(NOTHING)) {
        reader.Expect(NOTHING);
        reader.Expect(NOTHING);
        return std::nullopt;
    }
    Label_Voxel place;
    place.frame = Index_Of(reader, extent.frames);
    place.column = Index_Of(reader, extent.columns);
    place.row = Index_Of(reader, extent.rows);
    return place;
}

/** Adds what was read unless its number is there already. */
template <class Described>
void Add(Line_Reader& reader, std::vector<Described>& to, Described read) {
    reader.End();
    if (std::ranges::find(to, read.number, &Described::number) != to.end()) {
        reader.Fail("its number stands twice");
    }
    if (reader.Error().empty()) {
        to.push_back(std::move(read));
    }
}

void Tag_Line(Line_Reader& reader, Label_Description& description) {
    Tag_Description tag;
    tag.number = static_cast<int>(reader.Number(TAG_MAX - 1));
    tag.color = Color_Of(reader);
    tag.is_shown = Flag_Of(reader);
    tag.is_selected = Flag_Of(reader);
    tag.is_locked = Flag_Of(reader);
    tag.low = Limit_Of(reader);
    tag.high = Limit_Of(reader);
    tag.name = Name_Of(reader);
    Add(reader, description.tags, std::move(tag));
}

void Marker_Line(Line_Reader& reader, Label_Description& description, const Label_Extent& extent) {
    Marker_Description marker;
    marker.number = static_cast<int>(reader.Number(MARKER_NB - 1));
    marker.color = Color_Of(reader);
    marker.place = Place_Of(reader, extent);
    marker.name = Name_Of(reader);
    Add(reader, description.markers, std::move(marker));
}

void First_Line(std::string_view line, Label_Description_Reading& reading) {
    constexpr const char* other = "is no description of labels";
    if (!line.starts_with(FORMAT)) {
        reading.refused = other;
        return;
    }
    Line_Reader reader(line.substr(FORMAT.size()));
    const std::size_t version = reader.Number(NUMBER_MAX);
    if (!reader.Error().empty() || version == 0) {
        reading.refused = other;
    } else if (version > LABEL_DESCRIPTION_VERSION) {
        // A later version may say more in this line.
        reading.refused = "was written by a later version of this program";
        reading.is_newer = true;
    } else if (reader.End(); !reader.Error().empty()) {
        reading.refused = other;
    }
}

}  // namespace

std::string Label_Description_Text(const Label_Description& description) {
    std::string text = std::string(FORMAT) + " " + std::to_string(LABEL_DESCRIPTION_VERSION) + "\n";
    text += TAG_HEADING;
    for (const Tag_Description& tag : description.tags) {
        const auto flag = [](bool is_set) { return is_set ? " 1" : " 0"; };
        text += "tag " + std::to_string(tag.number) + " " + Color_Text(tag.color) + flag(tag.is_shown) +
                flag(tag.is_selected) + flag(tag.is_locked) + " " + Limit_Text(tag.low) + " " + Limit_Text(tag.high) +
                " " + Name_Text(tag.name) + "\n";
    }
    text += MARKER_HEADING;
    for (const Marker_Description& marker : description.markers) {
        text += "marker " + std::to_string(marker.number) + " " + Color_Text(marker.color) + " " +
                Place_Text(marker.place) + " " + Name_Text(marker.name) + "\n";
    }
    return text;
}

Label_Description_Reading Label_Description_Parse(std::string_view text, const Label_Extent& extent) {
    Label_Description_Reading reading;
    if (text.starts_with(BYTE_ORDER_MARK)) {
        text.remove_prefix(BYTE_ORDER_MARK.size());
    }
    First_Line(Line_Take(text), reading);
    if (!reading.refused.empty()) {
        return reading;
    }
    for (int number = 2; !text.empty(); ++number) {
        const std::string_view line = Line_Take(text);
        if (line.find_first_not_of(' ') == std::string_view::npos || line.front() == '#') {
            continue;
        }
        Line_Reader reader(line);
        const std::string_view word = reader.Word();
        if (word == "tag") {
            Tag_Line(reader, reading.description);
        } else if (word == "marker") {
            Marker_Line(reader, reading.description, extent);
        } else {
            reader.Fail("\"tag\" or \"marker\" is expected");
        }
        if (!reader.Error().empty() && ++reading.left_out == 1) {
            reading.first_left_out = "line " + std::to_string(number) + ": " + reader.Error();
        }
    }
    return reading;
}

}  // namespace workbench
