#include "workbench/model/json_text.h"

#include <charconv>
#include <cmath>
#include <cstdio>

namespace workbench {

void Json_Text::Next(std::string_view name) {
    if (!is_first) {
        text += ',';
    }
    is_first = false;
    if (!name.empty()) {
        Quoted(name);
        text += ':';
    }
}

void Json_Text::Quoted(std::string_view value) {
    text += '"';
    for (const char letter : value) {
        if (letter == '"' || letter == '\\') {
            text += '\\';
            text += letter;
        } else if (static_cast<unsigned char>(letter) < 0x20) {
            char escaped[8] = {};
            std::snprintf(escaped, sizeof escaped, "\\u%04x",
                          static_cast<unsigned>(static_cast<unsigned char>(letter)));
            text += escaped;
        } else {
            text += letter;
        }
    }
    text += '"';
}

void Json_Text::Object_Begin(std::string_view name) {
    Next(name);
    text += '{';
    is_first = true;
}

void Json_Text::Object_End() {
    text += '}';
    is_first = false;
}

void Json_Text::List_Begin(std::string_view name) {
    Next(name);
    text += '[';
    is_first = true;
}

void Json_Text::List_End() {
    text += ']';
    is_first = false;
}

void Json_Text::Text(std::string_view name, std::string_view value) {
    Next(name);
    Quoted(value);
}

void Json_Text::Number(std::string_view name, long long value) {
    Next(name);
    text += std::to_string(value);
}

void Json_Text::Real(std::string_view name, double value) {
    Next(name);
    if (!std::isfinite(value)) {
        text += "null";
        return;
    }
    char digits[32] = {};
    const std::to_chars_result end = std::to_chars(digits, digits + sizeof digits, value);
    text.append(digits, end.ptr);
}

void Json_Text::Flag(std::string_view name, bool value) {
    Next(name);
    text += value ? "true" : "false";
}

}  // namespace workbench
