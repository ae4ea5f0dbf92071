#include "kits/common/text_conversion.h"

#include "host/kit_common.h"

int Utf8_Character_Bytes(const char* text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead == 0) {
        return 0;
    }
    const int length = lead < 0xC2 ? 1 : lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 1;
    for (int i = 1; i < length; ++i) {
        const auto next = static_cast<unsigned char>(text[i]);
        if (next == 0) {
            return 0;
        }
        if ((next & 0xC0) != 0x80) {
            return 1;
        }
    }
    return length;
}

int Wide_Character_Units(const wchar_t* text) {
    if (text[0] == 0) {
        return 0;
    }
    const auto first = static_cast<std::uint32_t>(text[0]);
    const auto second = static_cast<std::uint32_t>(text[1]);
    const bool pair = first >= 0xD800 && first < 0xDC00 && second >= 0xDC00 && second < 0xE000;
    return pair ? 2 : 1;
}

int Char_2_Wchar(const char* text, wchar_t* out, int out_size) {
    if (out == nullptr || out_size <= 0) {
        return 0;
    }
    int written = 0;
    while (text != nullptr) {
        const int bytes = Character_Bytes(text);
        wchar_t character[WIDE_PER_CHARACTER];
        const int units = bytes > 0 ? Wide_Of_Character(text, bytes, character) : 0;
        if (bytes == 0 || units > out_size - 1 - written) {
            break;
        }
        for (int i = 0; i < units; ++i) {
            out[written++] = character[i];
        }
        text += bytes;
    }
    out[written] = 0;
    return written;
}
