#include "workbench/volumes/file_operations.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <fstream>
#include <vector>

#if defined(_WIN32)
#include <io.h>
#else
#include <sys/file.h>
#include <unistd.h>
#endif

namespace volumes {

namespace {

constexpr std::size_t COPY_BLOCK = std::size_t{256} * 1024;  // bytes read at once

#if defined(_WIN32)
int Create(const std::filesystem::path& path) {
    return ::_wopen(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _S_IREAD | _S_IWRITE);
}
long long Write(int descriptor, const std::uint8_t* bytes, std::size_t count) {
    return ::_write(descriptor, bytes, static_cast<unsigned int>(count));
}
bool Flush(int descriptor) {
    return ::_commit(descriptor) == 0;
}
bool Close(int descriptor) {
    return ::_close(descriptor) == 0;
}
#else
int Create(const std::filesystem::path& path) {
    const int descriptor = ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
    if (descriptor >= 0) {
        ::flock(descriptor, LOCK_EX | LOCK_NB);  // tells others that it is being written; not every folder can
    }
    return descriptor;
}
long long Write(int descriptor, const std::uint8_t* bytes, std::size_t count) {
    return ::write(descriptor, bytes, count);
}
// A place that cannot flush (a pipe, some network folders) is no failure.
bool Flush(int descriptor) {
    return ::fsync(descriptor) == 0 || errno == EINVAL;
}
bool Close(int descriptor) {
    return ::close(descriptor) == 0;
}
#endif

std::error_code Rename(const std::filesystem::path& from, const std::filesystem::path& to) {
    std::error_code code;
    std::filesystem::rename(from, to, code);
    return code;
}

std::error_code Remove(const std::filesystem::path& path) {
    std::error_code code;
    std::filesystem::remove(path, code);
    return code;
}

std::error_code Read(const std::filesystem::path& path, std::size_t most, std::string& bytes) {
    bytes.clear();
    std::error_code code;
    const std::uintmax_t size = std::filesystem::file_size(path, code);
    if (code) {
        return code;
    }
    if (size > most) {
        return std::make_error_code(std::errc::file_too_large);
    }
    std::ifstream in(path, std::ios::binary);
    std::vector<char> block(COPY_BLOCK);
    // Not by iterators: a disk that cannot be read makes them throw.
    while (in.read(block.data(), static_cast<std::streamsize>(block.size())) || in.gcount() > 0) {
        bytes.append(block.data(), static_cast<std::size_t>(in.gcount()));
        if (bytes.size() > most) {  // it has grown meanwhile
            bytes.clear();
            return std::make_error_code(std::errc::file_too_large);
        }
    }
    if (!in.is_open() || in.bad()) {
        bytes.clear();
        return std::make_error_code(std::errc::io_error);
    }
    return {};
}

}  // namespace

const File_Operations& File_Operations_Of_System() {
    static constexpr File_Operations operations = {&Create, &Write, &Flush, &Close, &Rename, &Remove, &Read};
    return operations;
}

File_Operations& File_Operations_In_Use() {
    static File_Operations operations = File_Operations_Of_System();
    return operations;
}

}  // namespace volumes
