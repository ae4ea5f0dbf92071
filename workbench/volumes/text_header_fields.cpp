#include "workbench/volumes/text_header_fields.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "workbench/volumes/message_text.h"

namespace volumes {

std::string_view Header_Trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(HEADER_BLANKS);
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(HEADER_BLANKS) - begin + 1);
}

std::string Header_Lower(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower) {
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return lower;
}

std::string Header_Shown(std::string_view text) {
    return '"' + Printable_Text(text, FIELD_SHOWN_MOST) + '"';
}

std::string_view Header_Line_Take(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

std::vector<std::string_view> Header_Words(std::string_view text, std::string_view between) {
    std::vector<std::string_view> words;
    while (true) {
        text.remove_prefix(std::min(text.find_first_not_of(between), text.size()));
        if (text.empty()) {
            return words;
        }
        const std::size_t end = std::min(text.find_first_of(between), text.size());
        words.push_back(text.substr(0, end));
        text.remove_prefix(end);
    }
}

std::string Header_Number_Text(double number) {
    std::array<char, 40> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

void Header_Fields::Add(std::string_view name, std::string_view value) {
    values.try_emplace(Header_Lower(Header_Trimmed(name)), Header_Trimmed(value));
}

std::string_view Header_Fields::Text(std::initializer_list<const char*> names) const {
    for (const char* const name : names) {
        if (const auto found = values.find(name); found != values.end()) {
            return found->second;
        }
    }
    return {};
}

std::vector<double> Header_Fields::Reals(std::initializer_list<const char*> names) const {
    std::vector<double> reals;
    for (const std::string_view word : Header_Words(Text(names))) {
        const std::optional<double> real = Header_Number<double>(word);
        if (!real) {
            throw Header_Fault{"has the field " + Header_Shown(*names.begin()) + " with " + Header_Shown(word) +
                               ", which is no number"};
        }
        reals.push_back(*real);
    }
    return reals;
}

std::int64_t Header_Fields::Whole(std::initializer_list<const char*> names, std::int64_t without) const {
    const std::string_view text = Text(names);
    if (text.empty()) {
        return without;
    }
    const std::optional<std::int64_t> number = Header_Number<std::int64_t>(text);
    if (!number) {
        throw Header_Fault{"has the field " + Header_Shown(*names.begin()) + " with " + Header_Shown(text) +
                           ", which is no whole number"};
    }
    return *number;
}

std::vector<std::int64_t> Header_Fields::Sizes(const char* name, std::int64_t axis_nb) const {
    std::vector<std::int64_t> sizes;
    for (const std::string_view word : Header_Words(Text({name}))) {
        const std::optional<std::int64_t> size = Header_Number<std::int64_t>(word);
        if (!size || *size < 1 || *size > std::numeric_limits<std::int32_t>::max()) {
            throw Header_Fault{"has a size of " + Header_Shown(word) + " voxels"};
        }
        sizes.push_back(*size);
    }
    if (axis_nb < 2 || axis_nb > 5 || static_cast<std::size_t>(axis_nb) != sizes.size()) {
        throw Header_Fault{"has " + std::to_string(axis_nb) + " dimensions and " + std::to_string(sizes.size()) +
                           " sizes; images of 2 to 4 dimensions can be read"};
    }
    return sizes;
}

Voxel_Type Header_Type(std::span<const Named_Type> types, std::string_view name, std::int64_t component_nb) {
    const std::string wanted = Header_Lower(name);
    const auto found = std::ranges::find_if(types, [&](const Named_Type& type) { return type.name == wanted; });
    if (found == types.end()) {
        throw Header_Fault{"has voxels of the type " + Header_Shown(name) + ", which cannot be read"};
    }
    if (component_nb == 1) {
        return found->type;
    }
    if (found->type == Voxel_Type::Uint8 && (component_nb == 3 || component_nb == 4)) {
        return component_nb == 3 ? Voxel_Type::Rgb24 : Voxel_Type::Rgba32;
    }
    throw Header_Fault{"has " + std::to_string(component_nb) + " numbers in each voxel, which cannot be read"};
}

double Header_Length(const Header_Vector& vector) {
    return std::hypot(vector[0], vector[1], vector[2]);
}

void Header_Place_Set(Text_Header& header, const std::array<Header_Vector, 3>& steps, const Header_Vector& origin,
                      const Header_Vector& signs) {
    header.has_place = true;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double length = Header_Length(steps[axis]);
        if (!(length > 0.0) || !std::isfinite(length) || !std::isfinite(origin[axis])) {
            header.has_place = false;
            return;
        }
        header.spacing[axis] = length;
        for (std::size_t row = 0; row < 3; ++row) {
            header.affine[row][axis] = signs[row] * steps[axis][row];
        }
        header.affine[axis][3] = signs[axis] * origin[axis];
    }
}

void Header_Spacing_Set(Text_Header& header, std::span<const double> spacing) {
    for (std::size_t axis = 0; axis < std::min<std::size_t>(spacing.size(), 3); ++axis) {
        const double size = std::abs(spacing[axis]);
        header.spacing[axis] = std::isfinite(size) && size > 0.0 ? size : 1.0;
    }
}

std::size_t Header_Axis_Nb(const Text_Header& header) {
    return header.size[3] > 1 ? 4 : 3;
}

}  // namespace volumes
