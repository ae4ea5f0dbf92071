#include "workbench/volumes/byte_source.h"

#include <algorithm>
#include <system_error>

#include "workbench/volumes/message_text.h"

namespace volumes {

File_Source::File_Source(const std::filesystem::path& path) : name(File_Name_Text(path)) {
    std::error_code code;
    const std::filesystem::file_status status = std::filesystem::status(path, code);
    if (!std::filesystem::exists(status)) {
        error = status.type() == std::filesystem::file_type::not_found ? "does not exist" : "cannot be reached";
        return;
    }
    if (std::filesystem::is_directory(status)) {
        error = "is a folder, not a file";
        return;
    }
    if (!std::filesystem::is_regular_file(status)) {
        error = "is not an ordinary file";
        return;
    }
    size = std::filesystem::file_size(path, code);
    if (code) {
        error = "cannot be measured: " + code.message();
        return;
    }
    stream.open(path, std::ios::in | std::ios::binary);
    if (!stream.is_open()) {
        error = "cannot be opened; it may be in use or forbidden";
    }
}

std::size_t File_Source::Read(std::span<std::uint8_t> buffer) {
    if (!stream.good()) {
        return 0;
    }
    stream.read(reinterpret_cast<char*>(buffer.data()), static_cast<std::streamsize>(buffer.size()));
    failed = stream.bad();
    return static_cast<std::size_t>(stream.gcount());
}

std::size_t Memory_Source::Read(std::span<std::uint8_t> buffer) {
    const std::size_t count = std::min(buffer.size(), bytes.size() - position);
    std::copy_n(bytes.begin() + static_cast<std::ptrdiff_t>(position), count, buffer.begin());
    position += count;
    return count;
}

}  // namespace volumes
