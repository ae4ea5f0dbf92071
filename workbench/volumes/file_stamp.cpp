#include "workbench/volumes/file_stamp.h"

#include <algorithm>
#include <array>
#include <fstream>
#include <limits>
#include <system_error>
#include <vector>

#define ZLIB_CONST
#include <zlib.h>

namespace volumes {

namespace {

constexpr std::size_t STAMP_BLOCK = 256U * 1024U;  // bytes read at once
constexpr auto WRITE_BITS =
    std::filesystem::perms::owner_write | std::filesystem::perms::group_write | std::filesystem::perms::others_write;

}  // namespace

std::uint32_t Checksum(std::span<const std::uint8_t> bytes, std::uint32_t before) {
    uLong sum = before;
    while (!bytes.empty()) {
        const std::size_t count = std::min<std::size_t>(bytes.size(), std::numeric_limits<uInt>::max());
        sum = ::crc32(sum, bytes.data(), static_cast<uInt>(count));
        bytes = bytes.subspan(count);
    }
    return static_cast<std::uint32_t>(sum);
}

File_Stamp File_Stamp_Of(const std::filesystem::path& file) {
    File_Stamp stamp;
    std::error_code code;
    const std::filesystem::file_status status = std::filesystem::status(file, code);
    if (status.type() != std::filesystem::file_type::unknown && !std::filesystem::is_regular_file(status)) {
        return stamp;
    }
    stamp.is_there = true;
    const std::uintmax_t size = std::filesystem::file_size(file, code);
    stamp.size = code ? 0 : size;
    const auto written = std::filesystem::last_write_time(file, code);
    stamp.time = code ? 0 : static_cast<std::int64_t>(written.time_since_epoch().count());
    std::ifstream in(file, std::ios::binary);
    std::vector<char> block(STAMP_BLOCK);
    std::uint64_t read = 0;
    while (in.read(block.data(), static_cast<std::streamsize>(block.size())) || in.gcount() > 0) {
        const auto count = static_cast<std::size_t>(in.gcount());
        stamp.checksum = Checksum({reinterpret_cast<const std::uint8_t*>(block.data()), count}, stamp.checksum);
        read += count;
    }
    stamp.is_readable = in.eof() && read == stamp.size;
    return stamp;
}

bool File_Is_Changed(const File_Stamp& was, const File_Stamp& now) {
    if (was.is_there != now.is_there) {
        return true;
    }
    if (!was.is_there) {
        return false;
    }
    if (was.size != now.size) {
        return true;
    }
    return was.is_readable && now.is_readable ? was.checksum != now.checksum : was.time != now.time;
}

bool File_Is_Read_Only(const std::filesystem::path& file) {
    std::error_code code;
    const std::filesystem::file_status status = std::filesystem::status(file, code);
    return !code && std::filesystem::is_regular_file(status) &&
           (status.permissions() & std::filesystem::perms::owner_write) == std::filesystem::perms::none;
}

std::string File_Read_Only_Set(const std::filesystem::path& file, bool is_read_only) {
    std::error_code code;
    std::filesystem::permissions(
        file, is_read_only ? WRITE_BITS : std::filesystem::perms::owner_write,
        is_read_only ? std::filesystem::perm_options::remove : std::filesystem::perm_options::add, code);
    return code ? "cannot be made writable: " + code.message() : std::string();
}

}  // namespace volumes
