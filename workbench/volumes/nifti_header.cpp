#include "workbench/volumes/nifti_header.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

#include "workbench/volumes/message_text.h"
#include "workbench/volumes/nifti_geometry.h"

namespace volumes {

namespace {

struct Voxel_Type_Row {
    Voxel_Type type;
    std::size_t size;  // bytes
    const char* name;
};
constexpr std::array<Voxel_Type_Row, 12> VOXEL_TYPES = {{
    {Voxel_Type::Uint8, 1, "uint8"},
    {Voxel_Type::Int16, 2, "int16"},
    {Voxel_Type::Int32, 4, "int32"},
    {Voxel_Type::Float32, 4, "float32"},
    {Voxel_Type::Float64, 8, "float64"},
    {Voxel_Type::Rgb24, 3, "rgb24"},
    {Voxel_Type::Int8, 1, "int8"},
    {Voxel_Type::Uint16, 2, "uint16"},
    {Voxel_Type::Uint32, 4, "uint32"},
    {Voxel_Type::Int64, 8, "int64"},
    {Voxel_Type::Uint64, 8, "uint64"},
    {Voxel_Type::Rgba32, 4, "rgba32"},
}};

struct Refused_Type {
    std::int32_t code;
    const char* name;
};
constexpr std::array<Refused_Type, 6> REFUSED_TYPES = {{
    {0, "voxels of unknown type"},
    {1, "voxels of one bit"},
    {32, "complex voxels"},
    {1536, "floating-point voxels of 128 bits"},
    {1792, "complex voxels"},
    {2048, "complex voxels"},
}};

// Where the fields of the two header layouts stand, in bytes from the beginning.
constexpr std::size_t MAGIC_1 = 344;
constexpr std::size_t MAGIC_2 = 4;
constexpr std::array<std::uint8_t, 8> MAGIC_2_SINGLE = {'n', '+', '2', 0, 0x0D, 0x0A, 0x1A, 0x0A};
constexpr std::array<std::uint8_t, 8> MAGIC_2_PAIR = {'n', 'i', '2', 0, 0x0D, 0x0A, 0x1A, 0x0A};
constexpr std::size_t DIMENSION_MOST = 7;

// The fields of both layouts, widened, before any check.
struct Raw_Header {
    std::array<std::int64_t, 8> dim{};
    std::int32_t datatype = 0;
    std::int32_t bitpix = 0;
    double voxel_offset = 0;
    std::int64_t voxel_offset_whole = 0;  // NIfTI-2 only
    double slope = 0;
    double intercept = 0;
    Stored_Geometry geometry;
};

Raw_Header Raw_Read_1(const std::uint8_t* bytes, Byte_Order order) {
    const auto number = [&](std::size_t at) { return static_cast<double>(Value_Read<float>(bytes + at, order)); };
    const auto whole = [&](std::size_t at) { return Value_Read<std::int16_t>(bytes + at, order); };
    Raw_Header raw;
    for (std::size_t i = 0; i < 8; ++i) {
        raw.dim[i] = whole(40 + 2 * i);
        raw.geometry.pixdim[i] = number(76 + 4 * i);
    }
    raw.datatype = whole(70);
    raw.bitpix = whole(72);
    raw.voxel_offset = number(108);
    raw.slope = number(112);
    raw.intercept = number(116);
    raw.geometry.units = bytes[123];
    raw.geometry.qform_code = whole(252);
    raw.geometry.sform_code = whole(254);
    for (std::size_t i = 0; i < 3; ++i) {
        raw.geometry.quatern[i] = number(256 + 4 * i);
        raw.geometry.qoffset[i] = number(268 + 4 * i);
        for (std::size_t j = 0; j < 4; ++j) {
            raw.geometry.srow[i][j] = number(280 + 16 * i + 4 * j);
        }
    }
    return raw;
}

Raw_Header Raw_Read_2(const std::uint8_t* bytes, Byte_Order order) {
    const auto number = [&](std::size_t at) { return Value_Read<double>(bytes + at, order); };
    const auto whole = [&](std::size_t at) { return Value_Read<std::int32_t>(bytes + at, order); };
    Raw_Header raw;
    for (std::size_t i = 0; i < 8; ++i) {
        raw.dim[i] = Value_Read<std::int64_t>(bytes + 16 + 8 * i, order);
        raw.geometry.pixdim[i] = number(104 + 8 * i);
    }
    raw.datatype = Value_Read<std::int16_t>(bytes + 12, order);
    raw.bitpix = Value_Read<std::int16_t>(bytes + 14, order);
    raw.voxel_offset_whole = Value_Read<std::int64_t>(bytes + 168, order);
    raw.slope = number(176);
    raw.intercept = number(184);
    raw.geometry.units = whole(500);
    raw.geometry.qform_code = whole(344);
    raw.geometry.sform_code = whole(348);
    for (std::size_t i = 0; i < 3; ++i) {
        raw.geometry.quatern[i] = number(352 + 8 * i);
        raw.geometry.qoffset[i] = number(376 + 8 * i);
        for (std::size_t j = 0; j < 4; ++j) {
            raw.geometry.srow[i][j] = number(400 + 32 * i + 8 * j);
        }
    }
    return raw;
}

// Each check returns what is wrong, or nothing.

std::string Format_Check(std::span<const std::uint8_t> bytes, Nifti_Header& header) {
    if (bytes.size() == NIFTI2_HEADER_SIZE) {
        header.format = Nifti_Format::Nifti_2;
        const auto magic = bytes.subspan(MAGIC_2, MAGIC_2_SINGLE.size());
        if (std::equal(magic.begin(), magic.end(), MAGIC_2_SINGLE.begin())) {
            header.single_file = true;
        } else if (std::equal(magic.begin(), magic.end(), MAGIC_2_PAIR.begin())) {
            header.single_file = false;
        } else {
            return "is not a NIfTI file: the mark of NIfTI-2 is missing or damaged";
        }
        return {};
    }
    const auto* magic = reinterpret_cast<const char*>(bytes.data() + MAGIC_1);
    if (std::memcmp(magic, "n+1", 4) == 0) {
        header.format = Nifti_Format::Nifti_1;
        header.single_file = true;
    } else if (std::memcmp(magic, "ni1", 4) == 0) {
        header.format = Nifti_Format::Nifti_1;
        header.single_file = false;
    } else {
        header.format = Nifti_Format::Analyze;
        header.single_file = false;
    }
    return {};
}

std::string Type_Check(const Raw_Header& raw, Nifti_Header& header) {
    const auto* row = std::find_if(VOXEL_TYPES.begin(), VOXEL_TYPES.end(), [&](const Voxel_Type_Row& candidate) {
        return static_cast<std::int32_t>(candidate.type) == raw.datatype;
    });
    if (row == VOXEL_TYPES.end()) {
        for (const Refused_Type& refused : REFUSED_TYPES) {
            if (refused.code == raw.datatype) {
                return std::string("holds ") + refused.name + ", which cannot be shown";
            }
        }
        return "has the voxel type " + std::to_string(raw.datatype) + ", which does not exist";
    }
    header.type = row->type;
    const auto bits = static_cast<std::int32_t>(row->size * 8);
    if (raw.bitpix != bits && raw.bitpix != 0) {  // 0: some programs leave it to the type
        return "contradicts itself: voxels of type " + std::string(row->name) + " take " + std::to_string(bits) +
               " bits, not " + std::to_string(raw.bitpix);
    }
    return {};
}

std::string Size_Check(const Raw_Header& raw, Nifti_Header& header) {
    if (raw.dim[0] < 1 || raw.dim[0] > static_cast<std::int64_t>(DIMENSION_MOST)) {
        return "has " + std::to_string(raw.dim[0]) + " dimensions, and 1 to 7 are possible";
    }
    const std::uint64_t most =
        static_cast<std::uint64_t>(std::numeric_limits<std::int64_t>::max()) / Voxel_Type_Size(header.type);
    for (std::size_t i = 1; i <= static_cast<std::size_t>(raw.dim[0]); ++i) {
        // Beyond the third dimension, 0 is a common way to write "none".
        const std::int64_t count = i > 3 && raw.dim[i] == 0 ? 1 : raw.dim[i];
        if (count < 1) {
            return "has the size " + std::to_string(raw.dim[i]) + " in dimension " + std::to_string(i);
        }
        std::int32_t& size = header.size[std::min<std::size_t>(i, 4) - 1];
        if (header.voxel_nb > most / static_cast<std::uint64_t>(count) ||
            count > std::numeric_limits<std::int32_t>::max() / size) {
            return "claims to be too large: its size in dimension " + std::to_string(i) + " is " +
                   Count_Text(static_cast<std::uint64_t>(count));
        }
        size = static_cast<std::int32_t>(size * count);
        header.voxel_nb *= static_cast<std::uint64_t>(count);
    }
    return {};
}

std::string Offset_Check(const Raw_Header& raw, Nifti_Header& header) {
    const char* const impossible = "has an impossible position of its voxels";
    const bool second = header.format == Nifti_Format::Nifti_2;
    if (second) {
        if (raw.voxel_offset_whole < 0) {
            return impossible;
        }
        header.voxel_offset = static_cast<std::uint64_t>(raw.voxel_offset_whole);
    } else {
        constexpr double most = 9.0e18;  // fits 63 bits
        // Analyze writes a negative position for images whose slices are aligned to it; none of today's programs does.
        if (!(raw.voxel_offset >= 0 && raw.voxel_offset <= most) || raw.voxel_offset != std::floor(raw.voxel_offset)) {
            return impossible;
        }
        header.voxel_offset = static_cast<std::uint64_t>(raw.voxel_offset);
    }
    if (header.single_file) {
        const std::uint64_t least = (second ? NIFTI2_HEADER_SIZE : NIFTI1_HEADER_SIZE) + NIFTI_EXTENDER_SIZE;
        if (header.voxel_offset == 0) {
            header.voxel_offset = least;  // 0 is written by programs that mean "right behind the header"
        } else if (header.voxel_offset < least) {
            return std::string(impossible) + ": byte " + std::to_string(header.voxel_offset) + ", inside the header";
        }
    }
    return {};
}

void Scaling_Take(const Raw_Header& raw, Nifti_Header& header) {
    const bool color = header.type == Voxel_Type::Rgb24 || header.type == Voxel_Type::Rgba32;
    if (color || raw.slope == 0 || !std::isfinite(raw.slope)) {
        return;
    }
    // Analyze itself has no scale. The programs that give it one put it where NIfTI has its own; anything else there
    // that reads as a number is far from a usable factor.
    constexpr double factor_most = 1.0e12;
    if (header.format == Nifti_Format::Analyze &&
        (std::abs(raw.slope) > factor_most || std::abs(raw.slope) < 1.0 / factor_most)) {
        return;
    }
    header.slope = raw.slope;
    header.intercept = std::isfinite(raw.intercept) ? raw.intercept : 0;
}

std::string Voxel_Size_Check(const Raw_Header& raw, const Nifti_Header& header) {
    if (Is_Sform_Usable(header.geometry, header.size[2])) {
        return {};  // the voxel sizes follow from it
    }
    const std::size_t used = std::min<std::size_t>(3, static_cast<std::size_t>(raw.dim[0]));
    for (std::size_t i = 1; i <= used; ++i) {
        if (!std::isfinite(raw.geometry.pixdim[i])) {
            return "has a voxel size that is no number in dimension " + std::to_string(i);
        }
    }
    return {};
}

}  // namespace

const char* Voxel_Type_Name(Voxel_Type type) {
    for (const Voxel_Type_Row& row : VOXEL_TYPES) {
        if (row.type == type) {
            return row.name;
        }
    }
    return "";
}

std::size_t Voxel_Type_Size(Voxel_Type type) {
    for (const Voxel_Type_Row& row : VOXEL_TYPES) {
        if (row.type == type) {
            return row.size;
        }
    }
    return 1;
}

std::optional<Nifti_Header_Kind> Nifti_Header_Recognise(std::span<const std::uint8_t, 4> bytes) {
    for (const Byte_Order order : {Byte_Order::Little, Byte_Order::Big}) {
        const auto size = Value_Read<std::uint32_t>(bytes.data(), order);
        if (size == NIFTI1_HEADER_SIZE || size == NIFTI2_HEADER_SIZE) {
            return Nifti_Header_Kind{size, order};
        }
    }
    return std::nullopt;
}

Nifti_Header_Result Nifti_Header_Decode(std::span<const std::uint8_t> bytes) {
    Nifti_Header_Result result;
    std::optional<Nifti_Header_Kind> kind;
    if (bytes.size() >= NIFTI1_HEADER_SIZE) {
        kind = Nifti_Header_Recognise(bytes.first<4>());
    }
    if (!kind || kind->size != bytes.size()) {
        result.error = "is not a NIfTI file";
        return result;
    }
    Nifti_Header& header = result.header;
    header.order = kind->order;
    result.error = Format_Check(bytes, header);
    if (!result.error.empty()) {
        return result;
    }
    const Raw_Header raw = header.format == Nifti_Format::Nifti_2 ? Raw_Read_2(bytes.data(), header.order)
                                                                  : Raw_Read_1(bytes.data(), header.order);
    result.error = Type_Check(raw, header);
    if (result.error.empty()) {
        result.error = Size_Check(raw, header);
    }
    if (result.error.empty()) {
        result.error = Offset_Check(raw, header);
    }
    Scaling_Take(raw, header);
    header.geometry = raw.geometry;
    header.geometry.present = true;
    if (header.format == Nifti_Format::Analyze) {  // these bytes hold other things there
        header.geometry = Stored_Geometry{.present = true, .pixdim = raw.geometry.pixdim};
        header.geometry.pixdim[0] = 0;
    }
    if (result.error.empty()) {
        result.error = Voxel_Size_Check(raw, header);
    }
    return result;
}

}  // namespace volumes
