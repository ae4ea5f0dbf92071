#include "workbench/volumes/meta_image_header.h"

#include <algorithm>
#include <array>
#include <utility>
#include <vector>

#include "workbench/volumes/text_header_fields.h"

namespace volumes {

namespace {

constexpr int SPACE_AXES = 3;

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

void Meta_Place(const Header_Fields& fields, std::size_t axis_nb, Text_Header& header) {
    const std::vector<double> matrix = fields.Reals({"transformmatrix", "orientation", "rotation"});
    std::vector<double> origin = fields.Reals({"offset", "position", "origin"});
    if (matrix.size() != axis_nb * axis_nb || (!origin.empty() && origin.size() != axis_nb)) {
        return;
    }
    origin.resize(std::max<std::size_t>(axis_nb, 3));
    const std::size_t used = std::min<std::size_t>(axis_nb, 3);
    std::array<Header_Vector, 3> steps = {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}}};
    for (std::size_t axis = 0; axis < 3; ++axis) {
        for (std::size_t part = 0; part < 3; ++part) {
            if (axis < used && part < used) {
                steps[axis][part] = matrix[axis * axis_nb + part];
            }
            steps[axis][part] *= header.spacing[axis];
        }
    }
    // The format's space runs to the patient's left, back and top.
    Header_Place_Set(header, steps, {origin[0], origin[1], origin[2]}, {-1.0, -1.0, 1.0});
}

std::string Meta_Type_Name(Voxel_Type type) {
    const Voxel_Type plain = type == Voxel_Type::Rgb24 ? Voxel_Type::Uint8 : type;
    std::string name(std::ranges::find(META_TYPES, plain, &Named_Type::type)->name);
    for (char& letter : name) {
        letter = letter >= 'a' && letter <= 'z' ? static_cast<char>(letter - 'a' + 'A') : letter;
    }
    return name;
}

}  // namespace

Text_Header Meta_Image_Decode(std::string_view text) {
    Header_Fields fields;
    while (!text.empty()) {
        const std::string_view line = Header_Line_Take(text);
        const std::size_t sign = line.find('=');
        if (sign != std::string_view::npos) {
            fields.Add(line.substr(0, sign), line.substr(sign + 1));
        }
    }
    if (const std::string kind = Header_Lower(fields.Text({"objecttype"})); !kind.empty() && kind != "image") {
        throw Header_Fault{"holds an object of the type " + Header_Shown(kind) + " and no image"};
    }
    Text_Header header;
    const std::vector<std::int64_t> sizes = fields.Sizes("dimsize", fields.Whole({"ndims"}, 0));
    if (sizes.size() > header.size.size()) {
        throw Header_Fault{"has " + std::to_string(sizes.size()) + " dimensions; images of 2 to 4 can be read"};
    }
    std::ranges::copy(sizes, header.size.begin());
    header.type = Header_Type(META_TYPES, fields.Text({"elementtype"}), fields.Whole({"elementnumberofchannels"}, 1));
    Header_Spacing_Set(header, fields.Reals({"elementspacing", "elementsize"}));
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
    if (Header_Lower(header.data_file) == "local") {
        header.data_file.clear();
        header.skip_bytes = 0;
    }
    return header;
}

std::string Meta_Image_Make(const Text_Header& header, std::uint64_t coded_size) {
    const std::size_t axis_nb = Header_Axis_Nb(header);
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
            matrix += ' ' + (in_space ? Header_Number_Text(part == 0.0 ? 0.0 : part) : axis == row ? "1" : "0");
        }
        const double place = axis < SPACE_AXES ? header.affine[axis][3] * (axis < 2 ? -1.0 : 1.0) : 0.0;
        offset += ' ' + Header_Number_Text(place == 0.0 ? 0.0 : place);
        spacing += ' ' + (axis < SPACE_AXES ? Header_Number_Text(header.spacing[axis]) : "1");
        size += ' ' + std::to_string(header.size[axis]);
    }
    if (header.has_place) {
        text += "\nTransformMatrix =" + matrix + "\nOffset =" + offset;
    }
    text += "\nElementSpacing =" + spacing + "\nDimSize =" + size;
    text += header.type == Voxel_Type::Rgb24 ? "\nElementNumberOfChannels = 3" : "";
    return text + "\nElementType = " + Meta_Type_Name(header.type) + "\nElementDataFile = LOCAL\n";
}

}  // namespace volumes
