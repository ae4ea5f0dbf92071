#include <cstring>

#include "host/kit_common.h"
#include "kits/common/text_conversion.h"

namespace {

void Store(char* out, const char* begin, const char* end) {
    if (out == nullptr) {
        return;
    }
    const auto count = static_cast<std::size_t>(end - begin);
    if (count > 0) {
        std::memmove(out, begin, count);
    }
    out[count] = 0;
}

}  // namespace

void Get_Generic_Name(const char* path, char* directory, char* name, char* extension) {
    if (path == nullptr) {
        path = "";
    }
    const char* directory_end = path;
    const char* name_begin = path;
    const char* dot = nullptr;
    const char* at = path;
    for (;;) {
        // The second byte of a double-byte character may look like a separator, so the path is read by characters.
        const int bytes = Character_Bytes(at);
        if (bytes == 0) {
            break;
        }
        if (*at == '/' || *at == '\\') {
            directory_end = at;
            name_begin = at + 1;
            dot = nullptr;
        } else if (*at == ':' && at == path + 1) {
            directory_end = name_begin = at + 1;
        } else if (*at == '.' && at != name_begin) {
            // A name that only begins with a dot has no extension.
            dot = at;
        }
        at += bytes;
    }
    const char* end = at + std::strlen(at);
    const char* name_end = dot != nullptr ? dot : end;
    Store(extension, name_end, end);
    Store(directory, path, directory_end);
    Store(name, name_begin, name_end);
}
