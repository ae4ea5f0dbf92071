#include "workbench/volumes/nrrd_header.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#include "workbench/volumes/text_header_fields.h"

namespace volumes {

namespace {

constexpr std::array<Named_Type, 36> NRRD_TYPES = {{
    {"signed char", Voxel_Type::Int8},
    {"int8", Voxel_Type::Int8},
    {"int8_t", Voxel_Type::Int8},
    {"uchar", Voxel_Type::Uint8},
    {"unsigned char", Voxel_Type::Uint8},
    {"uint8", Voxel_Type::Uint8},
    {"uint8_t", Voxel_Type::Uint8},
    {"short", Voxel_Type::Int16},
    {"short int", Voxel_Type::Int16},
    {"signed short", Voxel_Type::Int16},
    {"signed short int", Voxel_Type::Int16},
    {"int16", Voxel_Type::Int16},
    {"int16_t", Voxel_Type::Int16},
    {"ushort", Voxel_Type::Uint16},
    {"unsigned short", Voxel_Type::Uint16},
    {"unsigned short int", Voxel_Type::Uint16},
    {"uint16", Voxel_Type::Uint16},
    {"uint16_t", Voxel_Type::Uint16},
    {"int", Voxel_Type::Int32},
    {"signed int", Voxel_Type::Int32},
    {"int32", Voxel_Type::Int32},
    {"int32_t", Voxel_Type::Int32},
    {"uint", Voxel_Type::Uint32},
    {"unsigned int", Voxel_Type::Uint32},
    {"uint32", Voxel_Type::Uint32},
    {"uint32_t", Voxel_Type::Uint32},
    {"longlong", Voxel_Type::Int64},
    {"long long", Voxel_Type::Int64},
    {"int64", Voxel_Type::Int64},
    {"int64_t", Voxel_Type::Int64},
    {"ulonglong", Voxel_Type::Uint64},
    {"unsigned long long", Voxel_Type::Uint64},
    {"uint64", Voxel_Type::Uint64},
    {"uint64_t", Voxel_Type::Uint64},
    {"float", Voxel_Type::Float32},
    {"double", Voxel_Type::Float64},
}};

/** "(1,0,0)" or "none". @return nothing for "none" */
std::optional<Header_Vector> Nrrd_Vector(std::string_view text) {
    if (Header_Lower(text) == "none") {
        return std::nullopt;
    }
    const std::vector<std::string_view> words = Header_Words(text, "(), \t");
    Header_Vector vector{};
    if (words.size() != vector.size()) {
        throw Header_Fault{"has the direction " + Header_Shown(text) + ", which is none in space"};
    }
    for (std::size_t at = 0; at < vector.size(); ++at) {
        const std::optional<double> number = Header_Number<double>(words[at]);
        if (!number) {
            throw Header_Fault{"has the direction " + Header_Shown(text) + ", which has something else than numbers"};
        }
        vector[at] = *number;
    }
    return vector;
}

/** "(1,0,0) none (0, 1, 0)" to one text each. */
std::vector<std::string_view> Nrrd_Vectors(std::string_view text) {
    std::vector<std::string_view> vectors;
    while (!(text = Header_Trimmed(text)).empty()) {
        const std::size_t end = text.front() == '(' ? text.find(')') : text.find_first_of(HEADER_BLANKS) - 1;
        vectors.push_back(text.substr(0, end < text.size() ? end + 1 : text.size()));
        text.remove_prefix(vectors.back().size());
    }
    return vectors;
}

/** Signs that turn a space's axes to the patient's right, front and top; nothing: the space is none of the patient's.
 */
std::optional<Header_Vector> Nrrd_Signs(std::string_view space) {
    const std::string name = Header_Lower(space);
    if (name == "right-anterior-superior" || name == "ras") {
        return Header_Vector{1.0, 1.0, 1.0};
    }
    if (name == "left-anterior-superior" || name == "las") {
        return Header_Vector{-1.0, 1.0, 1.0};
    }
    if (name == "left-posterior-superior" || name == "lps") {
        return Header_Vector{-1.0, -1.0, 1.0};
    }
    return std::nullopt;
}

/** Which axis of the file has the numbers of one voxel; they must come first. @return how many they are */
std::int64_t Nrrd_Components(const Header_Fields& fields, const std::vector<std::int64_t>& sizes,
                             const std::vector<std::string_view>& steps) {
    const std::vector<std::string_view> kinds = Header_Words(fields.Text({"kinds"}));
    const std::string first = kinds.empty() ? "" : Header_Lower(kinds.front());
    const bool is_told = first == "rgb-color" || first == "rgba-color" || first == "3-color" || first == "4-color" ||
                         first == "vector" || first == "3-vector" || first == "4-vector";
    const bool is_none = kinds.empty() && !steps.empty() && Header_Lower(steps.front()) == "none";
    return sizes.size() > 2 && (is_told || is_none) ? sizes.front() : 1;
}

void Nrrd_Place(const Header_Fields& fields, const std::vector<std::string_view>& steps, Text_Header& header) {
    std::vector<Header_Vector> vectors;
    for (const std::string_view step : steps) {
        if (const std::optional<Header_Vector> vector = Nrrd_Vector(step)) {
            vectors.push_back(*vector);
        }
    }
    if (vectors.size() < 2) {
        return;
    }
    if (vectors.size() == 2) {  // one slice: the step to another is at right angles to both
        const Header_Vector& a = vectors[0];
        const Header_Vector& b = vectors[1];
        Header_Vector c = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
        const double length = Header_Length(c);
        for (double& part : c) {
            part = length > 0.0 ? part / length : 0.0;
        }
        vectors.push_back(c);
    }
    const std::string_view place = fields.Text({"space origin"});
    const Header_Vector origin = place.empty() ? Header_Vector{} : Nrrd_Vector(place).value_or(Header_Vector{});
    const std::optional<Header_Vector> signs = Nrrd_Signs(fields.Text({"space"}));
    Header_Place_Set(header, {vectors[0], vectors[1], vectors[2]}, origin,
                     signs.value_or(Header_Vector{1.0, 1.0, 1.0}));
    header.has_place = header.has_place && signs.has_value();
}

Voxel_Coding Nrrd_Coding(std::string_view encoding) {
    const std::string name = Header_Lower(encoding);
    if (name == "raw") {
        return Voxel_Coding::Plain;
    }
    if (name == "gzip" || name == "gz") {
        return Voxel_Coding::Gzip;
    }
    throw Header_Fault{"has voxels in the encoding " + Header_Shown(encoding) + ", which cannot be read"};
}

/** As the format calls it; numbers of colours are apart. */
const char* Nrrd_Type_Name(Voxel_Type type) {
    switch (type) {
        case Voxel_Type::Rgb24:
            return Voxel_Type_Name(Voxel_Type::Uint8);
        case Voxel_Type::Float32:
            return "float";
        case Voxel_Type::Float64:
            return "double";
        default:
            return Voxel_Type_Name(type);
    }
}

}  // namespace

Text_Header Nrrd_Decode(std::string_view text) {
    Header_Fields fields;
    Header_Line_Take(text);  // the mark
    while (!text.empty()) {
        const std::string_view line = Header_Line_Take(text);
        const std::size_t colon = line.find(':');
        if (!line.starts_with('#') && colon != std::string_view::npos && line.substr(colon + 1, 1) != "=") {
            fields.Add(line.substr(0, colon), line.substr(colon + 1));
        }
    }
    Text_Header header;
    std::vector<std::int64_t> sizes = fields.Sizes("sizes", fields.Whole({"dimension"}, 0));
    std::vector<std::string_view> steps = Nrrd_Vectors(fields.Text({"space directions"}));
    std::vector<double> spacings = fields.Reals({"spacings"});
    const std::int64_t component_nb = Nrrd_Components(fields, sizes, steps);
    header.type = Header_Type(NRRD_TYPES, fields.Text({"type"}), component_nb);
    if (component_nb > 1) {
        sizes.erase(sizes.begin());
        if (!steps.empty()) {
            steps.erase(steps.begin());
        }
        if (!spacings.empty()) {
            spacings.erase(spacings.begin());
        }
    }
    if (sizes.size() > header.size.size()) {
        throw Header_Fault{"has " + std::to_string(sizes.size()) + " dimensions; images of 2 to 4 can be read"};
    }
    std::ranges::copy(sizes, header.size.begin());
    Header_Spacing_Set(header, spacings);
    Nrrd_Place(fields, steps, header);
    header.coding = Nrrd_Coding(fields.Text({"encoding"}));
    header.order = Header_Lower(fields.Text({"endian"})) == "big" ? Byte_Order::Big : Byte_Order::Little;
    header.skip_bytes = fields.Whole({"byte skip", "byteskip"}, 0);
    header.skip_lines = fields.Whole({"line skip", "lineskip"}, 0);
    header.data_file = fields.Text({"data file", "datafile"});
    return header;
}

std::string Nrrd_Make(const Text_Header& header) {
    const bool is_color = header.type == Voxel_Type::Rgb24;
    const std::size_t axis_nb = Header_Axis_Nb(header);
    std::string text = std::string("NRRD0004\ntype: ") + Nrrd_Type_Name(header.type) +
                       "\ndimension: " + std::to_string(axis_nb + (is_color ? 1 : 0));
    if (header.has_place) {
        text += "\nspace: right-anterior-superior";
    }
    text += is_color ? "\nsizes: 3" : "\nsizes:";
    std::string steps = is_color ? " none" : "";
    std::string spacings = is_color ? " nan" : "";
    for (std::size_t axis = 0; axis < axis_nb; ++axis) {
        text += ' ' + std::to_string(header.size[axis]);
        steps += axis == 3 ? " none" : "";
        spacings += ' ' + (axis == 3 ? "nan" : Header_Number_Text(header.spacing[axis]));
        for (std::size_t row = 0; axis < 3 && row < 3; ++row) {
            steps += (row == 0 ? " (" : ",") + Header_Number_Text(header.affine[row][axis]) + (row == 2 ? ")" : "");
        }
    }
    text += header.has_place ? "\nspace directions:" + steps : "\nspacings:" + spacings;
    text += is_color ? "\nkinds: RGB-color domain domain domain" : "\nkinds: domain domain domain";
    text += axis_nb == 4 ? " list" : "";
    text += header.order == Byte_Order::Big ? "\nendian: big" : "\nendian: little";
    text += header.coding == Voxel_Coding::Plain ? "\nencoding: raw" : "\nencoding: gzip";
    if (header.has_place) {
        text += "\nspace origin: (" + Header_Number_Text(header.affine[0][3]) + ',' +
                Header_Number_Text(header.affine[1][3]) + ',' + Header_Number_Text(header.affine[2][3]) + ')';
    }
    return text + "\n\n";
}

}  // namespace volumes
