#include "workbench/volumes/text_header_writer.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <exception>
#include <limits>
#include <new>
#include <optional>
#include <stdexcept>
#include <vector>

#define ZLIB_CONST
#include <zlib.h>

#include "workbench/volumes/byte_order.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/output_file.h"
#include "workbench/volumes/text_header.h"

namespace volumes {

namespace {

constexpr int WINDOW_BITS = 15;
constexpr int GZIP_FRAME = 16;  // added to the window: gzip's header and trailer
constexpr int MEMORY_LEVEL = 8;

std::optional<Text_Header_Kind> Kind_Of(const std::filesystem::path& path) {
    std::string name = File_Name_Text(path);
    for (char& letter : name) {
        letter = letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    }
    if (name.ends_with(".nrrd") || name.ends_with(".nhdr")) {
        return Text_Header_Kind::Nrrd;
    }
    return name.ends_with(".mha") || name.ends_with(".mhd") ? std::optional(Text_Header_Kind::Meta_Image)
                                                            : std::nullopt;
}

std::vector<std::uint8_t> Packed(std::span<const std::uint8_t> plain, Text_Header_Kind kind) {
    struct Stream {
        z_stream state{};
        ~Stream() { ::deflateEnd(&state); }
    } stream;
    const int window = kind == Text_Header_Kind::Nrrd ? WINDOW_BITS + GZIP_FRAME : WINDOW_BITS;
    if (::deflateInit2(&stream.state, Z_DEFAULT_COMPRESSION, Z_DEFLATED, window, MEMORY_LEVEL, Z_DEFAULT_STRATEGY) !=
        Z_OK) {
        throw std::bad_alloc();
    }
    std::vector<std::uint8_t> packed;
    std::vector<std::uint8_t> block(256U * 1024U);
    bool is_done = false;
    while (!is_done) {
        if (stream.state.avail_in == 0) {
            const std::size_t part = std::min<std::size_t>(plain.size(), std::numeric_limits<int>::max());
            stream.state.next_in = plain.data();
            stream.state.avail_in = static_cast<uInt>(part);
            plain = plain.subspan(part);
        }
        stream.state.next_out = block.data();
        stream.state.avail_out = static_cast<uInt>(block.size());
        is_done = ::deflate(&stream.state, plain.empty() ? Z_FINISH : Z_NO_FLUSH) == Z_STREAM_END;
        packed.insert(packed.end(), block.begin(),
                      block.begin() + static_cast<std::ptrdiff_t>(block.size() - stream.state.avail_out));
    }
    return packed;
}

Text_Header Header_Of(const Volume& source, Voxel_Type type, std::int32_t times) {
    Text_Header header;
    header.type = type;
    header.size = {source.nx, source.ny, source.nz, times};
    header.spacing = source.spacing;
    header.has_place = source.affine_source != Affine_Source::Spacing;
    header.affine = source.affine;
    return header;
}

/** The smallest type that has all grey values of an image. */
Voxel_Type Type_Of(const Volume& image) {
    if (image.color) {
        return Voxel_Type::Rgb24;
    }
    const bool is_whole = image.max_error == 0 && std::trunc(image.slope) == image.slope &&
                          std::trunc(image.intercept) == image.intercept;
    if (!is_whole || image.nonfinite_nb > 0 || image.outlier_nb > 0) {
        return Voxel_Type::Float32;
    }
    const double one = image.level_min * image.slope + image.intercept;
    const double other = image.level_max * image.slope + image.intercept;
    const auto fits = [&](double least, double most) {
        return std::min(one, other) >= least && std::max(one, other) <= most;
    };
    if (fits(0, 255)) {
        return Voxel_Type::Uint8;
    }
    if (fits(-32768, 32767)) {
        return Voxel_Type::Int16;
    }
    if (fits(0, 65535)) {
        return Voxel_Type::Uint16;
    }
    return fits(std::numeric_limits<std::int32_t>::min(), std::numeric_limits<std::int32_t>::max())
               ? Voxel_Type::Int32
               : Voxel_Type::Float32;
}

void Voxel_Put(const Volume& image, std::int32_t level, Voxel_Type type, std::uint8_t* bytes) {
    const double grey = static_cast<double>(level) * image.slope + image.intercept;
    switch (type) {
        case Voxel_Type::Rgb24:
            for (unsigned int part = 0; part < 3; ++part) {
                bytes[part] = static_cast<std::uint8_t>(static_cast<std::uint32_t>(level) >> (8U * part));
            }
            break;
        case Voxel_Type::Uint8:
            *bytes = static_cast<std::uint8_t>(grey);
            break;
        case Voxel_Type::Int16:
            Value_Write(bytes, static_cast<std::int16_t>(grey), Byte_Order::Little);
            break;
        case Voxel_Type::Uint16:
            Value_Write(bytes, static_cast<std::uint16_t>(grey), Byte_Order::Little);
            break;
        case Voxel_Type::Int32:
            Value_Write(bytes, static_cast<std::int32_t>(grey), Byte_Order::Little);
            break;
        default:
            Value_Write(bytes, image.grey(level), Byte_Order::Little);
            break;
    }
}

/** Runs `write` with an open file. @return the sentence for the user */
template <class Write>
std::string Guarded(const std::filesystem::path& path, Write write) noexcept {
    try {
        const std::string name = File_Name_Text(path);
        try {
            const std::optional<Text_Header_Kind> kind = Kind_Of(path);
            if (!kind) {
                return name + " cannot be written: its name ends neither in .nrrd nor in .mha.";
            }
            Output_File file(path);
            return write(*kind, file) && file.Commit() ? std::string() : name + ' ' + file.Error() + '.';
        } catch (const std::bad_alloc&) {
            return name + " cannot be written for want of memory.";
        } catch (const std::exception& exception) {
            return name + " cannot be written: " + exception.what() + '.';
        }
    } catch (...) {
        return "Out of memory.";  // short enough to need none
    }
}

bool Text_Write(Output_File& file, const std::string& text) {
    return file.Write({reinterpret_cast<const std::uint8_t*>(text.data()), text.size()});
}

}  // namespace

bool Text_Header_Is_Name(const std::filesystem::path& path) {
    return Kind_Of(path).has_value();
}

std::string Text_Header_Labels_Write(const std::filesystem::path& path, const Volume& source,
                                     std::span<const std::uint8_t> labels) noexcept {
    // Guarded catches what is thrown.
    // cppcheck-suppress throwInNoexceptFunction
    return Guarded(path, [&](Text_Header_Kind kind, Output_File& file) {
        const std::size_t one_time = source.Voxel_Nb_3D();
        const bool is_of_one = labels.size() == one_time;
        if (!is_of_one && labels.size() != one_time * static_cast<std::size_t>(source.nt)) {
            throw std::length_error("the labels are not as many as the image has voxels");
        }
        Text_Header header = Header_Of(source, Voxel_Type::Uint8, is_of_one ? 1 : source.nt);
        header.coding = kind == Text_Header_Kind::Nrrd ? Voxel_Coding::Gzip : Voxel_Coding::Zlib;
        const std::vector<std::uint8_t> packed = Packed(labels, kind);
        return Text_Write(file, Text_Header_Make(kind, header, packed.size())) && file.Write(packed);
    });
}

std::string Text_Header_Image_Write(const std::filesystem::path& path, const Volume& image,
                                    const Image_Writing& writing) noexcept {
    // Guarded catches what is thrown.
    // cppcheck-suppress throwInNoexceptFunction
    return Guarded(path, [&](Text_Header_Kind kind, Output_File& file) {
        const Voxel_Type type = Type_Of(image);
        const std::size_t size = Voxel_Type_Size(type);
        const std::size_t slice_size = static_cast<std::size_t>(image.nx) * static_cast<std::size_t>(image.ny);
        bool is_written = Text_Write(file, Text_Header_Make(kind, Header_Of(image, type, image.nt), 0));
        std::vector<std::int32_t> levels(slice_size);
        std::vector<std::uint8_t> block(slice_size * size);
        for (std::size_t at = 0; is_written && at + slice_size <= image.levels.size(); at += slice_size) {
            if (writing.progress &&
                !writing.progress(static_cast<double>(at) / static_cast<double>(image.levels.size()))) {
                throw std::runtime_error("it was given up");
            }
            image.levels.View().subspan(at, slice_size).Copy_To(levels);
            if (writing.turn) {
                writing.turn(levels);
            }
            for (std::size_t i = 0; i < slice_size; ++i) {
                Voxel_Put(image, levels[i], type, &block[i * size]);
            }
            is_written = file.Write(block);
        }
        return is_written;
    });
}

}  // namespace volumes
