// Without Windows the code page is UTF-8 and a wide character holds a whole code point.
#include <cstdint>

#include "kits/common/text_conversion.h"

static_assert(sizeof(wchar_t) == 4);

int Character_Bytes(const char* text) {
    return Utf8_Character_Bytes(text);
}

bool Code_Page_Is_Utf8() {
    return true;
}

int Wide_Of_Character(const char* text, int bytes, wchar_t* out) {
    constexpr std::uint32_t replacement_character = 0xFFFD;
    const auto lead = static_cast<unsigned char>(text[0]);
    std::uint32_t code = lead;
    if (bytes > 1) {
        code = lead & (0xFFU >> (bytes + 1));
        for (int i = 1; i < bytes; ++i) {
            code = code << 6 | (static_cast<unsigned char>(text[i]) & 0x3FU);
        }
    } else if (lead >= 0x80) {
        code = replacement_character;
    }
    out[0] = static_cast<wchar_t>(code);
    return 1;
}

int Bytes_Of_Wide_Character(const wchar_t* text, int units, char* out) {
    auto code = static_cast<std::uint32_t>(text[0]);
    if (units == 2) {
        code = 0x10000 + ((code - 0xD800) << 10) + (static_cast<std::uint32_t>(text[1]) - 0xDC00);
    } else if (code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) {
        code = '?';
    }
    const int length = code < 0x80 ? 1 : code < 0x800 ? 2 : code < 0x10000 ? 3 : 4;
    constexpr std::uint32_t lead[] = {0, 0, 0xC0, 0xE0, 0xF0};
    for (int i = length - 1; i > 0; --i) {
        out[i] = static_cast<char>(0x80 | (code & 0x3F));
        code >>= 6;
    }
    out[0] = static_cast<char>(lead[length] | code);
    return length;
}
