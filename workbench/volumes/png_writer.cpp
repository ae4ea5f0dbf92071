#include "workbench/volumes/png_writer.h"

#include <array>
#include <new>
#include <string_view>

#define ZLIB_CONST
#include <zlib.h>

#include "workbench/volumes/output_file.h"

namespace volumes {

namespace {

constexpr std::array<std::uint8_t, 8> SIGNATURE = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
constexpr std::uint8_t BITS = 8;
constexpr std::uint8_t RED_GREEN_BLUE = 2;
constexpr std::uint8_t FILTER_ABOVE = 2;  // of a row: each byte less the one above it
constexpr std::size_t PIXEL_BYTES = 3;

void Number_Put(std::vector<std::uint8_t>& bytes, std::uint32_t number) {
    for (const unsigned int shift : {24U, 16U, 8U, 0U}) {
        bytes.push_back(static_cast<std::uint8_t>(number >> shift));
    }
}

/** A chunk: its length, name, bytes and checksum. */
void Chunk_Put(std::vector<std::uint8_t>& file, std::string_view name, std::span<const std::uint8_t> bytes) {
    Number_Put(file, static_cast<std::uint32_t>(bytes.size()));
    const std::size_t begin = file.size();
    file.insert(file.end(), name.begin(), name.end());
    file.insert(file.end(), bytes.begin(), bytes.end());
    const uLong sum = ::crc32(::crc32(0, nullptr, 0), &file[begin], static_cast<uInt>(file.size() - begin));
    Number_Put(file, static_cast<std::uint32_t>(sum));
}

/** The rows as the format has them before they are compressed. */
std::vector<std::uint8_t> Rows_Of(const Picture& picture) {
    const auto width = static_cast<std::size_t>(picture.width);
    const auto height = static_cast<std::size_t>(picture.height);
    std::vector<std::uint8_t> rows;
    rows.reserve((width * PIXEL_BYTES + 1) * height);
    for (std::size_t y = 0; y < height; ++y) {
        rows.push_back(FILTER_ABOVE);
        for (std::size_t x = 0; x < width; ++x) {
            const std::uint32_t pixel = picture.pixels[y * width + x];
            const std::uint32_t above = y > 0 ? picture.pixels[(y - 1) * width + x] : 0;
            for (const unsigned int shift : {16U, 8U, 0U}) {
                rows.push_back(static_cast<std::uint8_t>((pixel >> shift) - (above >> shift)));
            }
        }
    }
    return rows;
}

}  // namespace

std::vector<std::uint8_t> Png_Encode(const Picture& picture) {
    const std::vector<std::uint8_t> rows = Rows_Of(picture);
    uLongf size = ::compressBound(static_cast<uLong>(rows.size()));
    std::vector<std::uint8_t> packed(size);
    if (::compress2(packed.data(), &size, rows.data(), static_cast<uLong>(rows.size()), Z_DEFAULT_COMPRESSION) !=
        Z_OK) {
        throw std::bad_alloc();  // nothing else can be wrong with room for the worst
    }
    std::vector<std::uint8_t> file(SIGNATURE.begin(), SIGNATURE.end());
    std::vector<std::uint8_t> header;
    Number_Put(header, static_cast<std::uint32_t>(picture.width));
    Number_Put(header, static_cast<std::uint32_t>(picture.height));
    header.insert(header.end(), {BITS, RED_GREEN_BLUE, 0, 0, 0});
    Chunk_Put(file, "IHDR", header);
    Chunk_Put(file, "IDAT", std::span(packed).first(size));
    Chunk_Put(file, "IEND", {});
    return file;
}

std::string Png_Write(const std::filesystem::path& file, const Picture& picture) {
    Output_File out(file);
    out.Write(Png_Encode(picture));
    out.Commit();
    return out.Error();
}

}  // namespace volumes
