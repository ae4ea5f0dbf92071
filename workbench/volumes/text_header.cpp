#include "workbench/volumes/text_header.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <limits>
#include <map>
#include <utility>
#include <vector>

#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

constexpr std::string_view BLANKS = " \t\r\n";
constexpr int SPACE_AXES = 3;

/** Ends the reading of a header; Text_Header_Decode turns it into its result. */
struct Header_Fault {
    std::string what;
};

std::string_view Trimmed(std::string_view text) {
    const std::size_t begin = text.find_first_not_of(BLANKS);
    return begin == std::string_view::npos ? std::string_view()
                                           : text.substr(begin, text.find_last_not_of(BLANKS) - begin + 1);
}

std::string Lower(std::string_view text) {
    std::string lower(text);
    for (char& letter : lower) {
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    return lower;
}

std::string Shown(std::string_view text) {
    return '"' + Printable_Text(text, FIELD_SHOWN_MOST) + '"';
}

/** Takes the next line off a text. */
std::string_view Line_Take(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    const std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return line;
}

template <class Number>
std::optional<Number> Number_Of(std::string_view text) {
    Number number{};
    const std::from_chars_result read = std::from_chars(text.data(), text.data() + text.size(), number);
    if (read.ec != std::errc() || read.ptr != text.data() + text.size()) {
        return std::nullopt;
    }
    return number;
}

std::vector<std::string_view> Words_Of(std::string_view text, std::string_view between = BLANKS) {
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

/** The fields of a header: names in small letters. Where one stands twice the first counts. */
class Fields {
  public:
    void Add(std::string_view name, std::string_view value) {
        values.try_emplace(Lower(Trimmed(name)), Trimmed(value));
    }
    /** The value of the first of several names of one field; empty: there is none. */
    std::string_view Text(std::initializer_list<const char*> names) const {
        for (const char* const name : names) {
            if (const auto found = values.find(name); found != values.end()) {
                return found->second;
            }
        }
        return {};
    }
    std::vector<double> Reals(std::initializer_list<const char*> names) const {
        std::vector<double> reals;
        for (const std::string_view word : Words_Of(Text(names))) {
            const std::optional<double> real = Number_Of<double>(word);
            if (!real) {
                throw Header_Fault{"has the field " + Shown(*names.begin()) + " with " + Shown(word) +
                                   ", which is no number"};
            }
            reals.push_back(*real);
        }
        return reals;
    }
    std::int64_t Whole(std::initializer_list<const char*> names, std::int64_t without) const {
        const std::string_view text = Text(names);
        if (text.empty()) {
            return without;
        }
        const std::optional<std::int64_t> number = Number_Of<std::int64_t>(text);
        if (!number) {
            throw Header_Fault{"has the field " + Shown(*names.begin()) + " with " + Shown(text) +
                               ", which is no whole number"};
        }
        return *number;
    }
    /** Sizes along the axes. */
    std::vector<std::int64_t> Sizes(const char* name, std::int64_t axis_nb) const {
        std::vector<std::int64_t> sizes;
        for (const std::string_view word : Words_Of(Text({name}))) {
            const std::optional<std::int64_t> size = Number_Of<std::int64_t>(word);
            if (!size || *size < 1 || *size > std::numeric_limits<std::int32_t>::max()) {
                throw Header_Fault{"has a size of " + Shown(word) + " voxels"};
            }
            sizes.push_back(*size);
        }
        if (axis_nb < 2 || axis_nb > 5 || static_cast<std::size_t>(axis_nb) != sizes.size()) {
            throw Header_Fault{"has " + std::to_string(axis_nb) + " dimensions and " + std::to_string(sizes.size()) +
                               " sizes; images of 2 to 4 dimensions can be read"};
        }
        return sizes;
    }

  private:
    std::map<std::string, std::string_view> values;
};

struct Named_Type {
    std::string_view name;
    Voxel_Type type;
};

/** @throw Header_Fault */
Voxel_Type Type_Of(std::span<const Named_Type> types, std::string_view name, std::int64_t component_nb) {
    const std::string wanted = Lower(name);
    const auto found = std::ranges::find_if(types, [&](const Named_Type& type) { return type.name == wanted; });
    if (found == types.end()) {
        throw Header_Fault{"has voxels of the type " + Shown(name) + ", which cannot be read"};
    }
    if (component_nb == 1) {
        return found->type;
    }
    if (found->type == Voxel_Type::Uint8 && (component_nb == 3 || component_nb == 4)) {
        return component_nb == 3 ? Voxel_Type::Rgb24 : Voxel_Type::Rgba32;
    }
    throw Header_Fault{"has " + std::to_string(component_nb) + " numbers in each voxel, which cannot be read"};
}

using Vector = std::array<double, 3>;

double Length(const Vector& vector) {
    return std::hypot(vector[0], vector[1], vector[2]);
}

/** Puts the steps of the axes and the place of the first voxel into the affine. */
void Place_Set(Text_Header& header, const std::array<Vector, 3>& steps, const Vector& origin, const Vector& signs) {
    header.has_place = true;
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const double length = Length(steps[axis]);
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

/** Voxel sizes that are positive numbers; others stay 1. */
void Spacing_Set(Text_Header& header, std::span<const double> spacing) {
    for (std::size_t axis = 0; axis < std::min<std::size_t>(spacing.size(), 3); ++axis) {
        const double size = std::abs(spacing[axis]);
        header.spacing[axis] = std::isfinite(size) && size > 0.0 ? size : 1.0;
    }
}

// ------------------------------------------------------------------------------------------------ NRRD

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
std::optional<Vector> Nrrd_Vector(std::string_view text) {
    if (Lower(text) == "none") {
        return std::nullopt;
    }
    const std::vector<std::string_view> words = Words_Of(text, "(), \t");
    Vector vector{};
    if (words.size() != vector.size()) {
        throw Header_Fault{"has the direction " + Shown(text) + ", which is none in space"};
    }
    for (std::size_t at = 0; at < vector.size(); ++at) {
        const std::optional<double> number = Number_Of<double>(words[at]);
        if (!number) {
            throw Header_Fault{"has the direction " + Shown(text) + ", which has something else than numbers"};
        }
        vector[at] = *number;
    }
    return vector;
}

/** "(1,0,0) none (0, 1, 0)" to one text each. */
std::vector<std::string_view> Nrrd_Vectors(std::string_view text) {
    std::vector<std::string_view> vectors;
    while (!(text = Trimmed(text)).empty()) {
        const std::size_t end = text.front() == '(' ? text.find(')') : text.find_first_of(BLANKS) - 1;
        vectors.push_back(text.substr(0, end < text.size() ? end + 1 : text.size()));
        text.remove_prefix(vectors.back().size());
    }
    return vectors;
}

/** Signs that turn a space's axes to the patient's right, front and top; nothing: the space is none of the patient's.
 */
std::optional<Vector> Nrrd_Signs(std::string_view space) {
    const std::string name = Lower(space);
    if (name == "right-anterior-superior" || name == "ras") {
        return Vector{1.0, 1.0, 1.0};
    }
    if (name == "left-anterior-superior" || name == "las") {
        return Vector{-1.0, 1.0, 1.0};
    }
    if (name == "left-posterior-superior" || name == "lps") {
        return Vector{-1.0, -1.0, 1.0};
    }
    return std::nullopt;
}

/** Which axis of the file has the numbers of one voxel; they must come first. @return how many they are */
std::int64_t Nrrd_Components(const Fields& fields, const std::vector<std::int64_t>& sizes,
                             const std::vector<std::string_view>& steps) {
    const std::vector<std::string_view> kinds = Words_Of(fields.Text({"kinds"}));
    const std::string first = kinds.empty() ? "" : Lower(kinds.front());
    const bool is_told = first == "rgb-color" || first == "rgba-color" || first == "3-color" || first == "4-color" ||
                         first == "vector" || first == "3-vector" || first == "4-vector";
    const bool is_none = kinds.empty() && !steps.empty() && Lower(steps.front()) == "none";
    return sizes.size() > 2 && (is_told || is_none) ? sizes.front() : 1;
}

void Nrrd_Place(const Fields& fields, const std::vector<std::string_view>& steps, Text_Header& header) {
    std::vector<Vector> vectors;
    for (const std::string_view step : steps) {
        if (const std::optional<Vector> vector = Nrrd_Vector(step)) {
            vectors.push_back(*vector);
        }
    }
    if (vectors.size() < 2) {
        return;
    }
    if (vectors.size() == 2) {  // one slice: the step to another is at right angles to both
        const Vector& a = vectors[0];
        const Vector& b = vectors[1];
        Vector c = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
        const double length = Length(c);
        for (double& part : c) {
            part = length > 0.0 ? part / length : 0.0;
        }
        vectors.push_back(c);
    }
    const std::string_view place = fields.Text({"space origin"});
    const Vector origin = place.empty() ? Vector{} : Nrrd_Vector(place).value_or(Vector{});
    const std::optional<Vector> signs = Nrrd_Signs(fields.Text({"space"}));
    Place_Set(header, {vectors[0], vectors[1], vectors[2]}, origin, signs.value_or(Vector{1.0, 1.0, 1.0}));
    header.has_place = header.has_place && signs.has_value();
}

Voxel_Coding Nrrd_Coding(std::string_view encoding) {
    const std::string name = Lower(encoding);
    if (name == "raw") {
        return Voxel_Coding::Plain;
    }
    if (name == "gzip" || name == "gz") {
        return Voxel_Coding::Gzip;
    }
    throw Header_Fault{"has voxels in the encoding " + Shown(encoding) + ", which cannot be read"};
}

Text_Header Nrrd_Decode(std::string_view text) {
    Fields fields;
    Line_Take(text);  // the mark
    while (!text.empty()) {
        const std::string_view line = Line_Take(text);
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
    header.type = Type_Of(NRRD_TYPES, fields.Text({"type"}), component_nb);
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
    Spacing_Set(header, spacings);
    Nrrd_Place(fields, steps, header);
    header.coding = Nrrd_Coding(fields.Text({"encoding"}));
    header.order = Lower(fields.Text({"endian"})) == "big" ? Byte_Order::Big : Byte_Order::Little;
    header.skip_bytes = fields.Whole({"byte skip", "byteskip"}, 0);
    header.skip_lines = fields.Whole({"line skip", "lineskip"}, 0);
    header.data_file = fields.Text({"data file", "datafile"});
    return header;
}

// ------------------------------------------------------------------------------------------- MetaImage

constexpr std::array<Named_Type, 10> META_TYPES = {{
    {"met_char", Voxel_Type::Int8},
    {"met_uchar", Voxel_Type::Uint8},
    {"met_short", Voxel_Type::Int16},
    {"met_ushort", Voxel_Type::Uint16},
    {"met_int", Voxel_Type::Int32},
    {"met_uint", Voxel_Type::Uint32},
    {"met_long_long", Voxel_Type::Int64},
    {"met_ulong_long", Voxel_Type::Uint64},
    {"met_float", Voxel_Type::Float32},
    {"met_double", Voxel_Type::Float64},
}};

bool Is_True(std::string_view text) {
    return text.starts_with('T') || text.starts_with('t') || text.starts_with('1');
}

void Meta_Place(const Fields& fields, std::size_t axis_nb, Text_Header& header) {
    const std::vector<double> matrix = fields.Reals({"transformmatrix", "orientation", "rotation"});
    std::vector<double> origin = fields.Reals({"offset", "position", "origin"});
    if (matrix.size() != axis_nb * axis_nb || (!origin.empty() && origin.size() != axis_nb)) {
        return;
    }
    origin.resize(std::max<std::size_t>(axis_nb, 3));
    const std::size_t used = std::min<std::size_t>(axis_nb, 3);
    std::array<Vector, 3> steps = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (std::size_t part = 0; part < 3; ++part) {
            if (axis < used && part < used) {
                steps[axis][part] = matrix[axis * axis_nb + part];
            }
            steps[axis][part] *= header.spacing[axis];
        }
    }
    // The format's space runs to the patient's left, back and top.
    Place_Set(header, steps, {origin[0], origin[1], origin[2]}, {-1.0, -1.0, 1.0});
}

Text_Header Meta_Decode(std::string_view text) {
    Fields fields;
    while (!text.empty()) {
        const std::string_view line = Line_Take(text);
        const std::size_t sign = line.find('=');
        if (sign != std::string_view::npos) {
            fields.Add(line.substr(0, sign), line.substr(sign + 1));
        }
    }
    if (const std::string kind = Lower(fields.Text({"objecttype"})); !kind.empty() && kind != "image") {
        throw Header_Fault{"holds an object of the type " + Shown(kind) + " and no image"};
    }
    Text_Header header;
    const std::vector<std::int64_t> sizes = fields.Sizes("dimsize", fields.Whole({"ndims"}, 0));
    if (sizes.size() > header.size.size()) {
        throw Header_Fault{"has " + std::to_string(sizes.size()) + " dimensions; images of 2 to 4 can be read"};
    }
    std::ranges::copy(sizes, header.size.begin());
    header.type = Type_Of(META_TYPES, fields.Text({"elementtype"}), fields.Whole({"elementnumberofchannels"}, 1));
    Spacing_Set(header, fields.Reals({"elementspacing", "elementsize"}));
    Meta_Place(fields, sizes.size(), header);
    header.order =
        Is_True(fields.Text({"binarydatabyteordermsb", "elementbyteordermsb"})) ? Byte_Order::Big : Byte_Order::Little;
    header.coding = Is_True(fields.Text({"compresseddata"})) ? Voxel_Coding::Zlib : Voxel_Coding::Plain;
    if (const std::string_view binary = fields.Text({"binarydata"}); !binary.empty() && !Is_True(binary)) {
        throw Header_Fault{"has its voxels as text, which cannot be read"};
    }
    header.skip_bytes = fields.Whole({"headersize"}, 0);
    header.data_file = fields.Text({"elementdatafile"});
    if (header.data_file.empty()) {
        throw Header_Fault{"does not say where its voxels are"};
    }
    if (Lower(header.data_file) == "local") {
        header.data_file.clear();
        header.skip_bytes = 0;
    }
    return header;
}

std::string Number_Text(double number) {
    std::array<char, 40> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), number).ptr};
}

std::string Type_Name(Text_Header_Kind kind, Voxel_Type type) {
    const Voxel_Type plain = type == Voxel_Type::Rgb24 ? Voxel_Type::Uint8 : type;
    if (kind == Text_Header_Kind::Nrrd) {
        return plain == Voxel_Type::Float32   ? "float"
               : plain == Voxel_Type::Float64 ? "double"
                                              : Voxel_Type_Name(plain);
    }
    std::string name(std::ranges::find(META_TYPES, plain, &Named_Type::type)->name);
    for (char& letter : name) {
        letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    }
    return name;
}

std::size_t Axis_Nb(const Text_Header& header) {
    return header.size[3] > 1 ? 4 : 3;
}

std::string Nrrd_Make(const Text_Header& header) {
    const bool is_color = header.type == Voxel_Type::Rgb24;
    const std::size_t axis_nb = Axis_Nb(header);
    std::string text = "NRRD0004\ntype: " + Type_Name(Text_Header_Kind::Nrrd, header.type) +
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
        spacings += ' ' + (axis == 3 ? "nan" : Number_Text(header.spacing[axis]));
        for (std::size_t row = 0; axis < 3 && row < 3; ++row) {
            steps += (row == 0 ? " (" : ",") + Number_Text(header.affine[row][axis]) + (row == 2 ? ")" : "");
        }
    }
    text += header.has_place ? "\nspace directions:" + steps : "\nspacings:" + spacings;
    text += is_color ? "\nkinds: RGB-color domain domain domain" : "\nkinds: domain domain domain";
    text += axis_nb == 4 ? " list" : "";
    text += header.order == Byte_Order::Big ? "\nendian: big" : "\nendian: little";
    text += header.coding == Voxel_Coding::Plain ? "\nencoding: raw" : "\nencoding: gzip";
    if (header.has_place) {
        text += "\nspace origin: (" + Number_Text(header.affine[0][3]) + ',' + Number_Text(header.affine[1][3]) + ',' +
                Number_Text(header.affine[2][3]) + ')';
    }
    return text + "\n\n";
}

std::string Meta_Make(const Text_Header& header, std::uint64_t coded_size) {
    const std::size_t axis_nb = Axis_Nb(header);
    std::string text = "ObjectType = Image\nNDims = " + std::to_string(axis_nb) + "\nBinaryData = True\n" +
                       "BinaryDataByteOrderMSB = " + (header.order == Byte_Order::Big ? "True" : "False");
    text += header.coding == Voxel_Coding::Plain
                ? "\nCompressedData = False"
                : "\nCompressedData = True\nCompressedDataSize = " + std::to_string(coded_size);
    std::string matrix;
    std::string offset;
    std::string spacing;
    std::string size;
    for (std::size_t axis = 0; axis < axis_nb; ++axis) {
        for (std::size_t row = 0; row < axis_nb; ++row) {
            const bool in_space = axis < SPACE_AXES && row < SPACE_AXES;
            const double sign = row < 2 ? -1.0 : 1.0;
            const double part = in_space ? sign * header.affine[row][axis] / header.spacing[axis] : 0.0;
            matrix += ' ' + (in_space ? Number_Text(part == 0.0 ? 0.0 : part) : axis == row ? "1" : "0");
        }
        const double place = axis < SPACE_AXES ? header.affine[axis][3] * (axis < 2 ? -1.0 : 1.0) : 0.0;
        offset += ' ' + Number_Text(place == 0.0 ? 0.0 : place);
        spacing += ' ' + (axis < SPACE_AXES ? Number_Text(header.spacing[axis]) : "1");
        size += ' ' + std::to_string(header.size[axis]);
    }
    if (header.has_place) {
        text += "\nTransformMatrix =" + matrix + "\nOffset =" + offset;
    }
    text += "\nElementSpacing =" + spacing + "\nDimSize =" + size;
    text += header.type == Voxel_Type::Rgb24 ? "\nElementNumberOfChannels = 3" : "";
    return text + "\nElementType = " + Type_Name(Text_Header_Kind::Meta_Image, header.type) +
           "\nElementDataFile = LOCAL\n";
}

}  // namespace

const char* Text_Header_Kind_Name(Text_Header_Kind kind) {
    return kind == Text_Header_Kind::Nrrd ? "NRRD" : "MetaImage";
}

std::optional<Text_Header_Kind> Text_Header_Recognise(std::span<const std::uint8_t> first) {
    const std::string_view text(reinterpret_cast<const char*>(first.data()), first.size());
    if (text.starts_with("NRRD000")) {
        return Text_Header_Kind::Nrrd;
    }
    // The other has no mark: its fields may come in any order, but the first is one of these.
    for (const char* const name : {"objecttype", "ndims", "comment", "binarydata"}) {
        const std::size_t sign = text.find('=');
        if (sign < FIELD_SHOWN_MOST && Lower(Trimmed(text.substr(0, sign))) == name) {
            return Text_Header_Kind::Meta_Image;
        }
    }
    return std::nullopt;
}

std::optional<std::size_t> Text_Header_Size(Text_Header_Kind kind, std::string_view text, bool is_whole) {
    std::string_view rest = text;
    while (!rest.empty()) {
        const bool has_end = rest.find('\n') != std::string_view::npos;
        const std::string_view line = Line_Take(rest);
        const bool is_last = kind == Text_Header_Kind::Nrrd
                                 ? Trimmed(line).empty()
                                 : Lower(Trimmed(line.substr(0, line.find('=')))) == "elementdatafile";
        if (is_last && (has_end || is_whole)) {
            return text.size() - rest.size();
        }
    }
    // Voxels in a file of their own need no empty line.
    return is_whole && kind == Text_Header_Kind::Nrrd ? std::optional(text.size()) : std::nullopt;
}

Text_Header_Result Text_Header_Decode(Text_Header_Kind kind, std::string_view text) {
    Text_Header_Result result;
    try {
        result.header = kind == Text_Header_Kind::Nrrd ? Nrrd_Decode(text) : Meta_Decode(text);
        const Text_Header& header = result.header;
        if (header.skip_lines < 0 || header.skip_bytes < -1 ||
            (header.skip_bytes == -1 && header.coding != Voxel_Coding::Plain)) {
            result.error = "says that voxels begin at a place that cannot be";
        }
        if (header.data_file.find('%') != std::string::npos || Lower(header.data_file).starts_with("list")) {
            result.error = "has its voxels in several files, which cannot be read";
        }
    } catch (Header_Fault& fault) {
        result.error = std::move(fault.what);
    }
    return result;
}

std::string Text_Header_Make(Text_Header_Kind kind, const Text_Header& header, std::uint64_t coded_size) {
    return kind == Text_Header_Kind::Nrrd ? Nrrd_Make(header) : Meta_Make(header, coded_size);
}

}  // namespace volumes
