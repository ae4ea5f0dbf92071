#include "workbench/volumes/nifti_writer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstring>
#include <exception>
#include <limits>
#include <new>
#include <string_view>
#include <vector>

#include "workbench/volumes/byte_order.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/nifti_header.h"
#include "workbench/volumes/output_file.h"
#include "workbench/volumes/text_header_writer.h"

#define ZLIB_CONST
#include <zlib.h>

namespace volumes {

namespace {

constexpr std::size_t VOXEL_OFFSET = NIFTI1_HEADER_SIZE + NIFTI_EXTENDER_SIZE;
constexpr std::size_t BLOCK_NB = 256U * 1024U;  // labels prepared at once
constexpr int GZIP_WINDOW_BITS = 15 + 16;       // zlib: largest window, gzip header and trailer
constexpr int GZIP_MEMORY_LEVEL = 8;            // zlib's default
constexpr std::int16_t INTENT_LABEL = 1002;     // NIfTI's code for "values are labels"
constexpr std::int32_t UNITS_MM_S = 2 + 8;
constexpr std::string_view DESCRIPTION = "label volume";

float Float_From(double value) {
    constexpr double largest = std::numeric_limits<float>::max();
    return std::isfinite(value) ? static_cast<float>(std::clamp(value, -largest, largest)) : 0.0F;
}

// What to store for a volume that brings no fields of its own.
Stored_Geometry Geometry_Make(const Volume& source) {
    Stored_Geometry geometry;
    geometry.present = true;
    geometry.sform_code = 1;
    geometry.units = UNITS_MM_S;
    geometry.pixdim = {1, source.spacing[0], source.spacing[1], source.spacing[2], source.time_step};
    geometry.srow = source.affine;
    return geometry;
}

class Header_Bytes {
  public:
    std::array<std::uint8_t, VOXEL_OFFSET> bytes{};

    void Whole(std::size_t at, std::int32_t value) {
        Value_Write(bytes.data() + at, static_cast<std::int16_t>(value), Byte_Order::Little);
    }
    void Real(std::size_t at, double value) { Value_Write(bytes.data() + at, Float_From(value), Byte_Order::Little); }
};

Header_Bytes Header_Make(const Volume& source, bool all_times, std::size_t label_size) {
    const Stored_Geometry geometry = source.stored.present ? source.stored : Geometry_Make(source);
    Header_Bytes header;
    Value_Write(header.bytes.data(), static_cast<std::int32_t>(NIFTI1_HEADER_SIZE), Byte_Order::Little);
    header.Whole(40, all_times ? 4 : 3);
    const std::array<std::int32_t, 7> size = {source.nx, source.ny, source.nz, all_times ? source.nt : 1, 1, 1, 1};
    for (std::size_t i = 0; i < size.size(); ++i) {
        header.Whole(42 + 2 * i, size[i]);
    }
    header.Whole(68, INTENT_LABEL);
    header.Whole(70, static_cast<std::int32_t>(label_size == 1 ? Voxel_Type::Uint8 : Voxel_Type::Uint16));
    header.Whole(72, static_cast<std::int32_t>(8 * label_size));
    for (std::size_t i = 0; i < 5;
         ++i) {  // the sizes of further dimensions do not outlive their being multiplied into one
        header.Real(76 + 4 * i, geometry.pixdim[i]);
    }
    header.Real(108, static_cast<double>(VOXEL_OFFSET));
    header.Real(112, 1.0);
    header.bytes[123] = static_cast<std::uint8_t>(geometry.units);
    std::copy(DESCRIPTION.begin(), DESCRIPTION.end(), header.bytes.begin() + 148);
    header.Whole(252, geometry.qform_code);
    header.Whole(254, geometry.sform_code);
    for (std::size_t i = 0; i < 3; ++i) {
        header.Real(256 + 4 * i, geometry.quatern[i]);
        header.Real(268 + 4 * i, geometry.qoffset[i]);
        for (std::size_t j = 0; j < 4; ++j) {
            header.Real(280 + 16 * i + 4 * j, geometry.srow[i][j]);
        }
    }
    std::memcpy(header.bytes.data() + 344, "n+1", 4);
    return header;
}

// Passes bytes to a file, compressed or not.
class Label_Stream {
  public:
    Label_Stream(Output_File& output, bool compress) : file(output), compressed(compress) {
        if (!compressed) {
            return;
        }
        coded.resize(BLOCK_NB);  // before zlib's own memory: what throws here has nothing to free
        if (::deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, GZIP_WINDOW_BITS, GZIP_MEMORY_LEVEL,
                           Z_DEFAULT_STRATEGY) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    ~Label_Stream() {
        if (compressed) {
            ::deflateEnd(&stream);
        }
    }
    Label_Stream(const Label_Stream&) = delete;
    Label_Stream& operator=(const Label_Stream&) = delete;

    bool Write(std::span<const std::uint8_t> bytes) {
        return compressed ? Deflate(bytes, Z_NO_FLUSH) : file.Write(bytes);
    }
    bool Finish() { return !compressed || Deflate({}, Z_FINISH); }

  private:
    bool Deflate(std::span<const std::uint8_t> bytes, int flush) {
        stream.next_in = bytes.data();
        stream.avail_in = static_cast<uInt>(bytes.size());
        do {
            stream.next_out = coded.data();
            stream.avail_out = static_cast<uInt>(coded.size());
            ::deflate(&stream, flush);
            if (!file.Write(std::span(coded).first(coded.size() - stream.avail_out))) {
                return false;
            }
        } while (stream.avail_out == 0);
        return true;
    }

    Output_File& file;
    bool compressed;
    z_stream stream{};
    std::vector<std::uint8_t> coded;
};

template <class Label>
bool Labels_Write(Label_Stream& stream, std::span<const Label> labels) {
    std::vector<std::uint8_t> block;
    while (!labels.empty()) {
        const std::size_t count = std::min(labels.size(), BLOCK_NB);
        block.resize(count * sizeof(Label));
        for (std::size_t i = 0; i < count; ++i) {
            Value_Write(block.data() + i * sizeof(Label), labels[i], Byte_Order::Little);
        }
        if (!stream.Write(block)) {
            return false;
        }
        labels = labels.subspan(count);
    }
    return true;
}

// What keeps `source` out of the format, to follow the file's name; empty: nothing.
std::string Size_Check(const Volume& source, std::size_t label_nb) {
    const std::array<std::int32_t, 4> size = {source.nx, source.ny, source.nz, source.nt};
    for (const std::int32_t count : size) {
        if (count < 1 || count > std::numeric_limits<std::int16_t>::max()) {
            return "cannot be written: a size of " + std::to_string(count) +
                   " voxels does not fit this format, which ends at 32,767";
        }
    }
    const std::size_t one_time = source.Voxel_Nb_3D();
    if (label_nb != one_time && label_nb != one_time * static_cast<std::size_t>(source.nt)) {
        return "cannot be written: there are " + Count_Text(label_nb) + " labels for " + Count_Text(one_time) +
               " voxels";
    }
    return {};
}

bool Is_Gz_Name(const std::filesystem::path& path) {
    const std::filesystem::path extension = path.extension();
    return extension == ".gz" || extension == ".GZ" || extension == ".Gz";
}

template <class Label>
std::string Write(const std::filesystem::path& path, const Volume& source, std::span<const Label> labels) {
    const std::string name = File_Name_Text(path);
    try {
        const std::string problem = Size_Check(source, labels.size());
        if (!problem.empty()) {
            return name + ' ' + problem + '.';
        }
        const bool all_times = labels.size() != source.Voxel_Nb_3D();
        const Header_Bytes header = Header_Make(source, all_times, sizeof(Label));
        Output_File file(path);
        Label_Stream stream(file, Is_Gz_Name(path));
        const bool written =
            stream.Write(header.bytes) && Labels_Write(stream, labels) && stream.Finish() && file.Commit();
        return written ? std::string() : name + ' ' + file.Error() + '.';
    } catch (const std::bad_alloc&) {
        return name + " cannot be written for want of memory.";
    } catch (const std::exception& exception) {
        return name + " cannot be written: " + exception.what() + '.';
    }
}

}  // namespace

std::string Label_Volume_Write(const std::filesystem::path& path, const Volume& source,
                               std::span<const std::uint8_t> labels) noexcept {
    try {
        if (Text_Header_Is_Name(path)) {
            return Text_Header_Labels_Write(path, source, labels);
        }
        return Write(path, source, labels);
    } catch (...) {
        return "Out of memory.";  // short enough to need none
    }
}

std::string Label_Volume_Write(const std::filesystem::path& path, const Volume& source,
                               std::span<const std::uint16_t> labels) noexcept {
    try {
        return Write(path, source, labels);
    } catch (...) {
        return "Out of memory.";  // short enough to need none
    }
}

}  // namespace volumes
