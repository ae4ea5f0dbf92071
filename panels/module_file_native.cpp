#include <unistd.h>

#include <algorithm>

#include "panels/module_file.h"

void Module_File_Name(char* path, int size) {
    if (size <= 0) {
        return;
    }
    const auto length = ::readlink("/proc/self/exe", path, static_cast<std::size_t>(size - 1));
    path[std::max<decltype(length)>(length, 0)] = 0;
}
