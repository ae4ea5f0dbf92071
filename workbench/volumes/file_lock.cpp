#include "workbench/volumes/file_lock.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <system_error>
#include <utility>

#if defined(_WIN32)
#include <io.h>
#include <share.h>
#else
#include <sys/file.h>
#include <unistd.h>
#endif

namespace volumes {

namespace {

#if defined(_WIN32)
int Open_Alone(const std::filesystem::path& file) {
    return ::_wsopen(file.c_str(), _O_RDWR | _O_CREAT | _O_NOINHERIT | _O_BINARY, _SH_DENYRW, _S_IREAD | _S_IWRITE);
}
void Let_Go(int descriptor, const std::filesystem::path& file) {
    ::_close(descriptor);
    std::error_code ignored;
    std::filesystem::remove(file, ignored);  // fails when another program has taken it meanwhile
}
#else
/** Whether the name still stands for the open file: its holder may have removed it between opening and locking. */
bool Is_Same(int descriptor, const std::filesystem::path& file) {
    struct stat open_one = {};
    struct stat named = {};
    return ::fstat(descriptor, &open_one) == 0 && ::stat(file.c_str(), &named) == 0 &&
           open_one.st_ino == named.st_ino && open_one.st_dev == named.st_dev;
}
int Open_Alone(const std::filesystem::path& file) {
    const int descriptor = ::open(file.c_str(), O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (descriptor >= 0 && (::flock(descriptor, LOCK_EX | LOCK_NB) != 0 || !Is_Same(descriptor, file))) {
        ::close(descriptor);
        return -1;
    }
    return descriptor;
}
void Let_Go(int descriptor, const std::filesystem::path& file) {
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
    ::close(descriptor);
}
#endif

}  // namespace

std::optional<File_Lock> File_Lock::Take(const std::filesystem::path& file) {
    const int descriptor = Open_Alone(file);
    if (descriptor < 0) {
        return std::nullopt;
    }
    return File_Lock(file, descriptor);
}

File_Lock::File_Lock(std::filesystem::path of_file, int of_descriptor)
    : file(std::move(of_file)), descriptor(of_descriptor) {}

File_Lock::File_Lock(File_Lock&& other) noexcept
    : file(std::move(other.file)), descriptor(std::exchange(other.descriptor, -1)) {}

File_Lock& File_Lock::operator=(File_Lock&& other) noexcept {
    std::swap(file, other.file);
    std::swap(descriptor, other.descriptor);
    return *this;
}

File_Lock::~File_Lock() {
    if (descriptor >= 0) {
        Let_Go(descriptor, file);
    }
}

}  // namespace volumes
