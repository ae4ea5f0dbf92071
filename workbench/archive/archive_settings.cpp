#include "workbench/archive/archive_settings.h"

#include <algorithm>

#include "workbench/volumes/message_text.h"

namespace workbench::archive {

namespace {

bool Is_Printable(char letter) {
    return letter >= ' ' && letter <= '~';
}

}  // namespace

bool Is_Title(std::string_view text) {
    return text.size() <= TITLE_MOST &&
           std::ranges::all_of(text, [](char letter) { return Is_Printable(letter) && letter != '\\'; }) &&
           text.find_first_not_of(' ') != std::string_view::npos;
}

bool Is_Identifier(std::string_view text) {
    if (text.empty() || text.size() > IDENTIFIER_MOST) {
        return false;
    }
    bool has_digit = false;  // since the last dot
    for (const char letter : text) {
        if (letter == '.' ? !has_digit : letter < '0' || letter > '9') {
            return false;
        }
        has_digit = letter != '.';
    }
    return has_digit;
}

std::string Settings_Doubt(const Archive_Settings& settings) {
    // A colon would be taken for the port's.
    if (settings.host.empty() || settings.host.size() > HOST_MOST ||
        !std::ranges::all_of(settings.host,
                             [](char letter) { return Is_Printable(letter) && letter != ' ' && letter != ':'; })) {
        return "The archive's address is to be a name, or four numbers with dots.";
    }
    if (settings.port < 1 || settings.port > PORT_MAX) {
        return "The archive's port is to be a number from 1 to 65535.";
    }
    if (!Is_Title(settings.called_title)) {
        return "The archive's AE title is to have 1 to 16 letters without accents, and no backslash.";
    }
    if (!Is_Title(settings.own_title)) {
        return "The own AE title is to have 1 to 16 letters without accents, and no backslash.";
    }
    return {};
}

std::string Archive_Title(const Archive_Settings& settings) {
    const std::string place =
        volumes::Printable_Text(settings.host, volumes::FIELD_SHOWN_MOST) + ":" + std::to_string(settings.port);
    return settings.name.empty() ? "The archive at " + place
                                 : "The archive " + volumes::Printable_Text(settings.name, volumes::FIELD_SHOWN_MOST) +
                                       " (" + place + ")";
}

}  // namespace workbench::archive
