#include "workbench/wide_text.h"

#include <windows.h>

#include <cstring>

#include "host/kit_common.h"

namespace workbench {

std::wstring Wide_Of_Utf8(std::string_view text) {
    const int length = ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), nullptr, 0);
    std::wstring wide(static_cast<std::size_t>(length), L' ');
    ::MultiByteToWideChar(CP_UTF8, 0, text.data(), static_cast<int>(text.size()), wide.data(), length);
    return wide;
}

std::string Utf8_Of_Wide(std::wstring_view text) {
    const auto size = static_cast<int>(text.size());
    const int length = ::WideCharToMultiByte(CP_UTF8, 0, text.data(), size, nullptr, 0, nullptr, nullptr);
    std::string bytes(static_cast<std::size_t>(length), ' ');
    ::WideCharToMultiByte(CP_UTF8, 0, text.data(), size, bytes.data(), length, nullptr, nullptr);
    return bytes;
}

std::wstring Wide_Of_Panel(const char* text) {
    if (text == nullptr) {
        return {};
    }
    std::wstring wide(std::strlen(text) + 1, L' ');
    wide.resize(static_cast<std::size_t>(Char_2_Wchar(text, wide.data(), static_cast<int>(wide.size()))));
    return wide;
}

std::string Panel_Of_Wide(std::wstring_view text) {
    const int size = static_cast<int>(text.size());
    std::string bytes(text.size() * 4, '\0');
    const int length = size == 0 ? 0
                                 : ::WideCharToMultiByte(CP_ACP, 0, text.data(), size, bytes.data(),
                                                         static_cast<int>(bytes.size()), "?", nullptr);
    bytes.resize(static_cast<std::size_t>(length));
    return bytes;
}

}  // namespace workbench
