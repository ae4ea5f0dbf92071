#include "workbench/volumes/output_file.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <string>
#include <system_error>
#include <utility>

#if defined(_WIN32)
#include <io.h>
#else
#include <unistd.h>
#endif

namespace {

constexpr int attempt_nb = 1000;                         // names tried for the temporary file
constexpr std::size_t write_most = 16U * 1024U * 1024U;  // bytes given to the system at once

// The few operations on files that standard C++ does not have: exclusive creation, and bringing the bytes to the disk.
#if defined(_WIN32)
int File_Create(const std::filesystem::path& path) {
    return ::_wopen(path.c_str(), _O_WRONLY | _O_CREAT | _O_EXCL | _O_BINARY, _S_IREAD | _S_IWRITE);
}
long long File_Write(int descriptor, const std::uint8_t* bytes, std::size_t count) {
    return ::_write(descriptor, bytes, static_cast<unsigned int>(count));
}
bool File_Flush(int descriptor) {
    return ::_commit(descriptor) == 0;
}
bool File_Close(int descriptor) {
    return ::_close(descriptor) == 0;
}
#else
int File_Create(const std::filesystem::path& path) {
    return ::open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
}
long long File_Write(int descriptor, const std::uint8_t* bytes, std::size_t count) {
    return ::write(descriptor, bytes, count);
}
// A place that cannot flush (a pipe, some network folders) is no failure.
bool File_Flush(int descriptor) {
    return ::fsync(descriptor) == 0 || errno == EINVAL;
}
bool File_Close(int descriptor) {
    return ::close(descriptor) == 0;
}
#endif

}  // namespace

Output_File::Output_File(std::filesystem::path target_path) : target(std::move(target_path)) {
    std::error_code code;
    if (!target.has_filename()) {
        Fail("has no name");
        return;
    }
    if (std::filesystem::is_directory(target, code)) {
        Fail("is a folder, not a file");
        return;
    }
    for (int attempt = 0; attempt < attempt_nb; ++attempt) {
        temporary = target;
        temporary += ".part" + std::to_string(attempt);
        descriptor = File_Create(temporary);
        if (descriptor >= 0) {
            return;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    Fail_System("cannot be created");
}

Output_File::~Output_File() {
    Abandon();
}

// Closes and removes the temporary file.
void Output_File::Abandon() {
    if (descriptor < 0) {
        return;
    }
    File_Close(descriptor);
    descriptor = -1;
    std::error_code code;
    std::filesystem::remove(temporary, code);
}

bool Output_File::Fail(const std::string& what) {
    error = what;
    Abandon();
    return false;
}

bool Output_File::Fail_System(const std::string& what) {
    return Fail(what + ": " + std::generic_category().message(errno));
}

bool Output_File::Write(std::span<const std::uint8_t> bytes) {
    while (descriptor >= 0 && !bytes.empty()) {
        const long long count = File_Write(descriptor, bytes.data(), std::min(bytes.size(), write_most));
        if (count < 0 && errno == EINTR) {
            continue;
        }
        if (count == 0) {
            errno = ENOSPC;
        }
        if (count <= 0) {
            return Fail_System("cannot be written");
        }
        bytes = bytes.subspan(static_cast<std::size_t>(count));
    }
    return descriptor >= 0;
}

bool Output_File::Commit() {
    if (descriptor < 0) {
        return false;
    }
    if (!File_Flush(descriptor)) {
        return Fail_System("cannot be written");
    }
    const bool closed = File_Close(std::exchange(descriptor, -1));
    std::error_code code(closed ? 0 : errno, std::generic_category());
    if (closed) {
        std::filesystem::rename(temporary, target, code);
    }
    if (code) {
        error = (closed ? "cannot be replaced: " : "cannot be written: ") + code.message();
        std::error_code ignored;
        std::filesystem::remove(temporary, ignored);
        return false;
    }
    return true;
}
