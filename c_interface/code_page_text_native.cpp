#include <cstddef>

#include "c_interface/code_page_text.h"

namespace c_interface {

namespace {

/** Bytes of the character that begins there by the rules of UTF-8, 0 when there is none. */
int Character_Size(const unsigned char* at) {
    if (*at < 0x80) {
        return 1;
    }
    const int size = *at >= 0xC2 && *at <= 0xDF ? 2 : (*at & 0xF0) == 0xE0 ? 3 : *at >= 0xF0 && *at <= 0xF4 ? 4 : 0;
    for (int byte = 1; byte < size; ++byte) {
        if ((at[byte] & 0xC0) != 0x80) {
            return 0;
        }
    }
    const bool is_overlong = (*at == 0xE0 && at[1] < 0xA0) || (*at == 0xF0 && at[1] < 0x90);
    const bool is_beyond = (*at == 0xED && at[1] > 0x9F) || (*at == 0xF4 && at[1] > 0x8F);
    return is_overlong || is_beyond ? 0 : size;
}

}  // namespace

bool Page_Of_Utf8(const char* text, std::string& out) {
    for (const auto* at = reinterpret_cast<const unsigned char*>(text); *at != 0;) {
        const int size = Character_Size(at);
        if (size == 0) {
            return false;
        }
        at += size;
    }
    out = text;
    return true;
}

std::string Utf8_Of_Page(const char* text) {
    std::string out;
    for (const auto* at = reinterpret_cast<const unsigned char*>(text); *at != 0;) {
        const int size = Character_Size(at);
        if (size == 0) {
            out += "\xEF\xBF\xBD";
            ++at;
            continue;
        }
        out.append(reinterpret_cast<const char*>(at), static_cast<std::size_t>(size));
        at += size;
    }
    return out;
}

std::string Icon_Folder_Beside_Program() {
    return {};
}

}  // namespace c_interface
