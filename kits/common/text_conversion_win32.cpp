#include <windows.h>

#include <atomic>

#include "kits/common/text_conversion.h"

namespace {
std::atomic<unsigned int> code_page_set = 0;  // 0: the system's
}

unsigned int Code_Page() {
    const unsigned int set = code_page_set.load(std::memory_order_relaxed);
    return set != 0 ? set : ::GetACP();
}

void Code_Page_Set(unsigned int code_page) {
    code_page_set.store(code_page, std::memory_order_relaxed);
}

int Character_Bytes_In(unsigned int code_page, const char* text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    if (lead < 0x80) {
        return lead == 0 ? 0 : 1;
    }
    if (code_page == CP_UTF8) {
        return Utf8_Character_Bytes(text);
    }
    if (::IsDBCSLeadByteEx(code_page, lead) == FALSE) {
        return 1;
    }
    return text[1] == 0 ? 0 : 2;
}

int Character_Bytes(const char* text) {
    return Character_Bytes_In(Code_Page(), text);
}

bool Code_Page_Is_Utf8() {
    return Code_Page() == CP_UTF8;
}

int Wide_Of_Character(const char* text, int bytes, wchar_t* out) {
    if (static_cast<unsigned char>(text[0]) < 0x80) {
        out[0] = static_cast<wchar_t>(text[0]);
        return 1;
    }
    return ::MultiByteToWideChar(Code_Page(), 0, text, bytes, out, WIDE_PER_CHARACTER);
}

int Bytes_Of_Wide_Character(const wchar_t* text, int units, char* out) {
    if (text[0] < 0x80) {
        out[0] = static_cast<char>(text[0]);
        return 1;
    }
    const int bytes = ::WideCharToMultiByte(Code_Page(), 0, text, units, out, BYTES_PER_CHARACTER, nullptr, nullptr);
    if (bytes > 0) {
        return bytes;
    }
    out[0] = '?';
    return 1;
}
