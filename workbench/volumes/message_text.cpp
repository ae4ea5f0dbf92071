#include "workbench/volumes/message_text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstddef>
#include <system_error>

namespace volumes {

std::string Count_Text(std::uint64_t count) {
    const std::string digits = std::to_string(count);
    std::string text;
    for (std::size_t i = 0; i < digits.size(); ++i) {
        if (i > 0 && (digits.size() - i) % 3 == 0) {
            text += ',';
        }
        text += digits[i];
    }
    return text;
}

std::string Value_Text(double value) {
    if (!std::isfinite(value)) {
        return std::isnan(value) ? "no number" : (value > 0 ? "infinity" : "-infinity");
    }
    constexpr int digits = 6;
    std::array<char, 32> text{};
    const auto [end, error] =
        std::to_chars(text.data(), text.data() + text.size(), value, std::chars_format::general, digits);
    return std::string(text.data(), end);
}

std::string Size_Text(std::uint64_t bytes) {
    constexpr std::uint64_t unit_size = 1024;
    constexpr std::array<const char*, 4> units = {" KiB", " MiB", " GiB", " TiB"};
    if (bytes < unit_size) {
        return std::to_string(bytes) + " bytes";
    }
    std::uint64_t unit = unit_size;
    std::size_t name = 0;
    while (name + 1 < units.size() && bytes / unit >= unit_size) {
        unit *= unit_size;
        ++name;
    }
    const std::uint64_t tenth = bytes % unit * 10 / unit;
    return Count_Text(bytes / unit) + '.' + std::to_string(tenth) + units[name];
}

std::string Amount_Text(double amount) {
    constexpr double digits_most = 1000;
    constexpr double whole_most = 1e15;
    if (std::abs(amount) >= digits_most && std::abs(amount) < whole_most) {
        return (amount < 0 ? "-" : "") + Count_Text(static_cast<std::uint64_t>(std::llround(std::abs(amount))));
    }
    std::array<char, 32> letters{};
    const auto end =
        std::to_chars(letters.data(), letters.data() + letters.size(), amount, std::chars_format::general, 3).ptr;
    return {letters.data(), end};
}

namespace {

/** Bytes of the UTF-8 character that a text begins with; 0: it is none. */
std::size_t Character_Size(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    const unsigned first = byte(0);
    const std::size_t size = first < 0x80   ? 1
                             : first < 0xC2 ? 0
                             : first < 0xE0 ? 2
                             : first < 0xF0 ? 3
                             : first < 0xF5 ? 4
                                            : 0;
    if (size == 0 || text.size() < size) {
        return 0;
    }
    for (std::size_t at = 1; at < size; ++at) {
        if ((byte(at) & 0xC0U) != 0x80U) {
            return 0;
        }
    }
    // Longer forms than needed, halves of pairs, and numbers beyond the last character.
    const bool is_wrong = size > 2 && ((first == 0xE0 && byte(1) < 0xA0) || (first == 0xED && byte(1) >= 0xA0) ||
                                       (first == 0xF0 && byte(1) < 0x90) || (first == 0xF4 && byte(1) >= 0x90));
    return is_wrong ? 0 : size;
}

}  // namespace

std::string Printable_Text(std::string_view text, std::size_t most) {
    std::string made;
    for (std::size_t count = 0; !text.empty(); ++count) {
        if (count == most) {
            return made + "...";
        }
        const std::size_t size = Character_Size(text);
        if (size == 0) {
            made += "\xEF\xBF\xBD";
        } else if (size == 1 && (static_cast<unsigned char>(text[0]) < ' ' || text[0] == 0x7F)) {
            made += ' ';
        } else {
            made += text.substr(0, size);
        }
        text.remove_prefix(std::max<std::size_t>(size, 1));
    }
    return made;
}

std::string File_Name_Text(const std::filesystem::path& path) {
    try {
        const std::u8string name = path.filename().u8string();
        if (!name.empty()) {
            return Printable_Text(std::string(name.begin(), name.end()));
        }
    } catch (const std::system_error&) {
        // A name with half a character pair has no UTF-8 form.
    }
    return "The file";
}

std::filesystem::path Path_From_Utf8(std::string_view text) {
    try {
        return std::filesystem::path(std::u8string(text.begin(), text.end()));
    } catch (const std::system_error&) {
        return {};
    }
}

}  // namespace volumes
