#include "tests/workbench/volumes/nifti_bytes.h"

#include <zlib.h>

#include <algorithm>
#include <fstream>
#include <iterator>
#include <random>
#include <stdexcept>
#include <system_error>

Bytes Nifti_Bytes::Header() const {
    const bool second = version == 2;
    Bytes bytes(second ? 540 : 348);
    Put<std::int32_t>(bytes, 0, second ? 540 : 348);
    const double offset = vox_offset >= 0 ? vox_offset : pair ? 0.0 : second ? 544.0 : 352.0;
    for (std::size_t i = 0; i < 8; ++i) {
        if (second) {
            Put<std::int64_t>(bytes, 16 + 8 * i, dim[i]);
            Put<double>(bytes, 104 + 8 * i, pixdim[i]);
        } else {
            Put<std::int16_t>(bytes, 40 + 2 * i, static_cast<std::int16_t>(dim[i]));
            Put<float>(bytes, 76 + 4 * i, static_cast<float>(pixdim[i]));
        }
    }
    for (std::size_t i = 0; i < 3; ++i) {
        if (second) {
            Put<double>(bytes, 352 + 8 * i, quatern[i]);
            Put<double>(bytes, 376 + 8 * i, qoffset[i]);
        } else if (version == 1) {
            Put<float>(bytes, 256 + 4 * i, static_cast<float>(quatern[i]));
            Put<float>(bytes, 268 + 4 * i, static_cast<float>(qoffset[i]));
        }
    }
    for (std::size_t i = 0; i < 12; ++i) {
        if (second) {
            Put<double>(bytes, 400 + 8 * i, srow[i]);
        } else if (version == 1) {
            Put<float>(bytes, 280 + 4 * i, static_cast<float>(srow[i]));
        }
    }
    if (second) {
        const char* mark = pair ? "ni2\0\r\n\032\n" : "n+2\0\r\n\032\n";
        std::copy_n(mark, 8, bytes.begin() + 4);
        Put<std::int16_t>(bytes, 12, static_cast<std::int16_t>(datatype));
        Put<std::int16_t>(bytes, 14, static_cast<std::int16_t>(bitpix));
        Put<std::int64_t>(bytes, 168, static_cast<std::int64_t>(offset));
        Put<double>(bytes, 176, slope);
        Put<double>(bytes, 184, intercept);
        Put<std::int32_t>(bytes, 344, qform_code);
        Put<std::int32_t>(bytes, 348, sform_code);
        Put<std::int32_t>(bytes, 500, units);
    } else {
        Put<std::int16_t>(bytes, 70, static_cast<std::int16_t>(datatype));
        Put<std::int16_t>(bytes, 72, static_cast<std::int16_t>(bitpix));
        Put<float>(bytes, 108, static_cast<float>(offset));
        Put<float>(bytes, 112, static_cast<float>(slope));
        Put<float>(bytes, 116, static_cast<float>(intercept));
        bytes[123] = static_cast<std::uint8_t>(units);
        if (version == 1) {
            Put<std::int16_t>(bytes, 252, static_cast<std::int16_t>(qform_code));
            Put<std::int16_t>(bytes, 254, static_cast<std::int16_t>(sform_code));
            std::copy_n(pair ? "ni1" : "n+1", 4, bytes.begin() + 344);
        }
    }
    return bytes;
}

Bytes Nifti_Bytes::File() const {
    Bytes bytes = Header();
    const Bytes none(4);
    const Bytes& between = extension.empty() ? none : extension;
    bytes.insert(bytes.end(), between.begin(), between.end());
    bytes.insert(bytes.end(), voxels.begin(), voxels.end());
    return bytes;
}

Bytes Gzip(std::span<const std::uint8_t> content) {
    z_stream stream{};
    if (::deflateInit2(&stream, 6, Z_DEFLATED, 15 + 16, 8, Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::runtime_error("deflateInit2");
    }
    Bytes coded(::deflateBound(&stream, static_cast<uLong>(content.size())) + 64);
    stream.next_in = const_cast<Bytef*>(content.data());
    stream.avail_in = static_cast<uInt>(content.size());
    stream.next_out = coded.data();
    stream.avail_out = static_cast<uInt>(coded.size());
    const int result = ::deflate(&stream, Z_FINISH);
    coded.resize(stream.total_out);
    ::deflateEnd(&stream);
    if (result != Z_STREAM_END) {
        throw std::runtime_error("deflate");
    }
    return coded;
}

Bytes Gunzip(std::span<const std::uint8_t> coded) {
    z_stream stream{};
    if (::inflateInit2(&stream, 15 + 16) != Z_OK) {
        throw std::runtime_error("inflateInit2");
    }
    Bytes content(std::size_t{1} << 24U);
    stream.next_in = const_cast<Bytef*>(coded.data());
    stream.avail_in = static_cast<uInt>(coded.size());
    stream.next_out = content.data();
    stream.avail_out = static_cast<uInt>(content.size());
    const int result = ::inflate(&stream, Z_FINISH);
    content.resize(stream.total_out);
    const bool complete = result == Z_STREAM_END && stream.avail_in == 0;
    ::inflateEnd(&stream);
    if (!complete) {
        throw std::runtime_error("not one complete gzip member");
    }
    return content;
}

Temporary_Folder::Temporary_Folder() {
    std::random_device random;
    do {
        path = std::filesystem::temp_directory_path() / ("volumes_test_" + std::to_string(random()));
    } while (!std::filesystem::create_directory(path));
}

Temporary_Folder::~Temporary_Folder() {
    std::error_code code;
    std::filesystem::remove_all(path, code);
}

std::size_t Temporary_Folder::Entry_Nb() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(path), std::filesystem::directory_iterator()));
}

void File_Put(const std::filesystem::path& path, std::span<const std::uint8_t> bytes) {
    std::ofstream stream(path, std::ios::binary);
    stream.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    stream.close();
    if (!stream) {
        throw std::runtime_error("test file not written");
    }
}

Bytes File_Get(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    if (!stream) {
        throw std::runtime_error("test file not there");
    }
    return Bytes(std::istreambuf_iterator<char>(stream), {});
}
