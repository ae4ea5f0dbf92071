#include "workbench/model/line_reader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstdio>

namespace workbench {

std::string Quoted_Text(std::string_view text) {
    std::string quoted = "\"";
    for (const char character : text) {
        const auto code = static_cast<unsigned char>(character);
        if (character == '"' || character == '\\') {
            quoted += '\\';
            quoted += character;
        } else if (code < ' ' || code == 0x7F) {
            char escape[8];
            std::snprintf(escape, sizeof escape, "\\x%02X", code);
            quoted += escape;
        } else {
            quoted += character;
        }
    }
    return quoted + '"';
}

bool Is_Utf8(std::string_view text) {
    constexpr std::uint32_t least[] = {0, 0, 0x80, 0x800, 0x10000};  // of a character of so many bytes
    while (!text.empty()) {
        const auto first = static_cast<unsigned char>(text[0]);
        const std::size_t length = first < 0x80                     ? 1
                                   : first >= 0xC0 && first <= 0xDF ? 2
                                   : first >= 0xE0 && first <= 0xEF ? 3
                                   : first >= 0xF0 && first <= 0xF7 ? 4
                                                                    : 0;
        if (length == 0 || length > text.size()) {
            return false;
        }
        std::uint32_t code = length == 1 ? first : first & (0x7FU >> length);
        for (std::size_t at = 1; at < length; ++at) {
            const auto next = static_cast<unsigned char>(text[at]);
            if ((next & 0xC0U) != 0x80U) {
                return false;
            }
            code = (code << 6U) | (next & 0x3FU);
        }
        if (code < least[length] || code > 0x10FFFF || (code >= 0xD800 && code <= 0xDFFF)) {
            return false;
        }
        text.remove_prefix(length);
    }
    return true;
}

std::string_view Line_Take(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r')) {
        line.remove_suffix(1);
    }
    return line;
}

void Line_Reader::Blanks() {
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
}

std::string_view Line_Reader::Word() {
    Blanks();
    const std::size_t end = std::min(rest.find(' '), rest.size());
    const std::string_view word = rest.substr(0, end);
    rest.remove_prefix(end);
    return word;
}

bool Line_Reader::Is_Next(std::string_view start) {
    Blanks();
    return rest.starts_with(start);
}

bool Line_Reader::Take(std::string_view word) {
    const std::string_view before = rest;
    if (Word() == word) {
        return true;
    }
    rest = before;
    return false;
}

void Line_Reader::Expect(std::string_view word) {
    if (Word() != word) {
        Fail("\"" + std::string(word) + "\" is expected");
    }
}

std::size_t Line_Reader::Number(std::size_t most) {
    const std::string_view word = Word();
    std::size_t number = 0;
    const auto [end, code] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (code != std::errc() || end != word.data() + word.size() || word.empty() || number > most) {
        Fail("a number is expected");
        return 0;
    }
    return number;
}

float Line_Reader::Real() {
    const std::string_view word = Word();
    float number = 0.0F;
    const auto [end, code] = std::from_chars(word.data(), word.data() + word.size(), number);
    if (code != std::errc() || end != word.data() + word.size() || word.empty() || !std::isfinite(number)) {
        Fail("a number is expected");
        return 0.0F;
    }
    return number;
}

std::string Line_Reader::Text() {
    Blanks();
    if (rest.empty() || rest.front() != '"') {
        Fail("a text between quotation marks is expected");
        return {};
    }
    std::string text;
    for (rest.remove_prefix(1); !rest.empty(); rest.remove_prefix(1)) {
        if (rest.front() == '"') {
            rest.remove_prefix(1);
            return text;
        }
        // Escape() may use up the rest.
        // cppcheck-suppress containerOutOfBounds
        text += rest.front() == '\\' ? Escape() : rest.front();
        if (rest.empty()) {
            break;
        }
    }
    Fail("a text is not closed");
    return {};
}

/** The character that an escape stands for; its last character is left for the caller to pass. */
char Line_Reader::Escape() {
    constexpr std::size_t hex_length = 4;  // of \xHH
    if (rest.size() >= 2 && (rest[1] == '"' || rest[1] == '\\')) {
        rest.remove_prefix(1);
        return rest.front();
    }
    unsigned int code = 0;
    if (rest.size() >= hex_length && rest[1] == 'x') {
        const char* const end = rest.data() + hex_length;
        const auto read = std::from_chars(rest.data() + 2, end, code, 16);
        if (read.ec == std::errc() && read.ptr == end) {
            rest.remove_prefix(hex_length - 1);
            return static_cast<char>(code);
        }
    }
    Fail("a character after \\ means nothing");
    return ' ';
}

void Line_Reader::End() {
    if (!Word().empty()) {
        Fail("there is more than expected");
    }
}

void Line_Reader::Fail(const std::string& what) {
    if (error.empty()) {
        error = what;
    }
}

}  // namespace workbench
