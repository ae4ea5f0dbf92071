#include <cstdarg>
#include <cstring>

#include "kits/dataset/dataset_host.h"

namespace {

constexpr std::size_t FILTER_SIZE = 4096;
constexpr const char* PATTERN_ALL = "*.*";

/** The pattern that a variable holds; all files when it holds none. */
const char* Pattern_Of(const char* variable) {
    int nb = 0;
    unsigned short type = VARIABLE_NONE;
    const void* value = Fct_Variable_Value(variable, &nb, &type, nullptr);
    const auto* pattern = static_cast<const char*>(type == VARIABLE_TEXT ? value : nullptr);
    // An array of texts has no text of its own.
    if (pattern == nullptr || Variable_Array(variable, VARIABLE_TEXT, nullptr) != nullptr || *pattern == 0) {
        return PATTERN_ALL;
    }
    return pattern;
}

}  // namespace

const char* Fct_Create_szFilter(int n, ...) {
    static char filter[FILTER_SIZE];
    std::size_t size = 0;
    std::va_list arguments;
    va_start(arguments, n);
    for (int i = 0; i < n; ++i) {
        const char* label = va_arg(arguments, const char*);
        const char* pattern = Pattern_Of(va_arg(arguments, const char*));
        if (label == nullptr || *label == 0) {
            label = pattern;  // an empty text would end the filter
        }
        const std::size_t label_size = std::strlen(label) + 1;
        const std::size_t pattern_size = std::strlen(pattern) + 1;
        // The last two bytes are the filter's end. A pair that does not fit is left out whole.
        if (label_size + pattern_size > FILTER_SIZE - 2 - size) {
            continue;
        }
        std::memcpy(filter + size, label, label_size);
        std::memcpy(filter + size + label_size, pattern, pattern_size);
        size += label_size + pattern_size;
    }
    va_end(arguments);
    filter[size] = 0;
    filter[size + 1] = 0;
    return filter;
}
