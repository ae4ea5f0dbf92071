#include "workbench/volumes/output_file.h"

#include <algorithm>
#include <cerrno>
#include <random>
#include <string>
#include <system_error>
#include <utility>

#include "workbench/volumes/file_operations.h"
#include "workbench/volumes/unfinished_file.h"

namespace volumes {

namespace {

constexpr int ATTEMPT_NB = 20;                           // names tried for the temporary file
constexpr std::size_t WRITE_MOST = 16U * 1024U * 1024U;  // bytes given to the system at once

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
    std::random_device random;
    for (int attempt = 0; attempt < ATTEMPT_NB; ++attempt) {
        temporary = Unfinished_Name(target, random());
        descriptor = File_Operations_In_Use().create(temporary);
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
    File_Operations_In_Use().close(descriptor);
    descriptor = -1;
    File_Operations_In_Use().remove(temporary);
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
        const long long count =
            File_Operations_In_Use().write(descriptor, bytes.data(), std::min(bytes.size(), WRITE_MOST));
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
    if (!File_Operations_In_Use().flush(descriptor)) {
        return Fail_System("cannot be written");
    }
    const bool closed = File_Operations_In_Use().close(std::exchange(descriptor, -1));
    std::error_code code(closed ? 0 : errno, std::generic_category());
    if (closed) {
        code = File_Operations_In_Use().rename(temporary, target);
    }
    if (code) {
        File_Operations_In_Use().remove(temporary);  // first: there may be no memory for the reason
        error = (closed ? "cannot be replaced: " : "cannot be written: ") + code.message();
        return false;
    }
    return true;
}

}  // namespace volumes
