#include "workbench/archive/archive_settings.h"

#include <algorithm>
#include <charconv>
#include <system_error>
#include <vector>

#include "workbench/volumes/message_text.h"

namespace workbench::archive {

namespace {

constexpr char SEPARATOR = '|';
constexpr std::size_t NAME_MOST = 200;     // bytes
constexpr std::size_t PART_NB = 8;         // of archives that images are fetched from by C-GET
constexpr std::size_t MOVED_PART_NB = 9;   // by C-MOVE, and one more where others may bring images
constexpr std::size_t CALLERS_MOST = 512;  // letters
constexpr int SECONDS_MOST = 3600;
constexpr std::size_t FILE_MOST = 1000;  // bytes of a file's name
constexpr std::string_view TRUSTED =
    "tls=";  // parts of encrypted archives: files, the first one perhaps without a name
constexpr std::string_view OWN = "tls_own=";

/** A part of a line: what would end it, or is no text, becomes a blank. */
std::string Part(std::string_view text) {
    std::string part(text.substr(0, NAME_MOST));
    std::ranges::replace_if(
        part, [](char letter) { return letter == SEPARATOR || static_cast<unsigned char>(letter) < ' '; }, ' ');
    return part;
}

std::string Seconds_Part(std::chrono::milliseconds time) {
    return std::to_string(std::chrono::duration_cast<std::chrono::seconds>(time).count());
}

bool Number_Of(const std::string& text, int least, int most, int& number) {
    const auto [end, failure] = std::from_chars(text.data(), text.data() + text.size(), number);
    return failure == std::errc() && end == text.data() + text.size() && number >= least && number <= most;
}

bool Time_Of(const std::string& text, std::chrono::milliseconds& time) {
    int seconds = 0;
    const bool is_good = Number_Of(text, 1, SECONDS_MOST, seconds);
    time = is_good ? std::chrono::seconds(seconds) : time;
    return is_good;
}

bool Is_Printable(char letter) {
    return letter >= ' ' && letter <= '~';
}

bool Is_File_Name(std::string_view text) {
    return text.size() <= FILE_MOST && std::ranges::none_of(text, [](char letter) {
               return letter == SEPARATOR || static_cast<unsigned char>(letter) < ' ';
           });
}

/** Takes the last part away if it begins with a mark. @return what follows the mark */
std::optional<std::string> Part_Take(std::vector<std::string>& parts, std::string_view mark) {
    if (parts.size() <= PART_NB || !parts.back().starts_with(mark)) {
        return std::nullopt;
    }
    std::string rest = parts.back().substr(mark.size());
    parts.pop_back();
    return rest;
}

bool Are_Addresses(std::string_view text) {
    return !text.empty() && text.size() <= CALLERS_MOST && text.front() != ' ' &&
           text.find_first_not_of("0123456789. ") == std::string_view::npos;
}

}  // namespace

bool Is_Title(std::string_view text) {
    return text.size() <= TITLE_MOST &&
           std::ranges::all_of(
               text, [](char letter) { return Is_Printable(letter) && letter != '\\' && letter != SEPARATOR; }) &&
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
    if (settings.is_moved && (settings.own_port < 1 || settings.own_port > PORT_MAX)) {
        return "The own port is to be a number from 1 to 65535.";
    }
    if (!settings.other_callers.empty() && !Are_Addresses(settings.other_callers)) {
        return "Others that bring images are to be addresses of four numbers with dots, with blanks between.";
    }
    if (settings.is_encrypted && settings.is_moved) {
        return "Images come by TLS only where this program fetches them (C-GET): leave the own port empty.";
    }
    if (!Is_File_Name(settings.trusted_file) || !Is_File_Name(settings.own_file)) {
        return "The files of certificates are to have names without | and at most 1000 bytes long.";
    }
    if (!Is_Title(settings.called_title)) {
        return "The archive's AE title is to have 1 to 16 letters without accents, and no backslash.";
    }
    if (!Is_Title(settings.own_title)) {
        return "The own AE title is to have 1 to 16 letters without accents, and no backslash.";
    }
    return {};
}

std::string Archive_Line(const Archive_Settings& settings) {
    std::string line = Part(settings.name);
    for (const std::string& part : {Part(settings.host), std::to_string(settings.port), Part(settings.called_title),
                                    Part(settings.own_title), Seconds_Part(settings.times.connect),
                                    Seconds_Part(settings.times.associate), Seconds_Part(settings.times.silence)}) {
        line += SEPARATOR + part;
    }
    if (settings.is_moved) {
        line += SEPARATOR + std::to_string(settings.own_port);
        line += settings.other_callers.empty() ? std::string() : SEPARATOR + settings.other_callers;
    }
    if (settings.is_encrypted) {
        line += SEPARATOR + std::string(TRUSTED) + settings.trusted_file;
        line += settings.own_file.empty() ? std::string() : SEPARATOR + std::string(OWN) + settings.own_file;
    }
    return line;
}

std::optional<Archive_Settings> Archive_Of_Line(std::string_view line) {
    std::vector<std::string> parts(1);
    for (const char letter : line) {
        if (letter == SEPARATOR) {
            parts.emplace_back();
        } else {
            parts.back() += letter;
        }
    }
    Archive_Settings settings;
    const std::optional<std::string> own = Part_Take(parts, OWN);
    const std::optional<std::string> trusted = Part_Take(parts, TRUSTED);
    if (own && !trusted) {
        return std::nullopt;  // it would be spoken to in clear
    }
    settings.own_file = own.value_or("");
    settings.is_encrypted = trusted.has_value();
    settings.trusted_file = trusted.value_or("");
    settings.is_moved = parts.size() == MOVED_PART_NB || parts.size() == MOVED_PART_NB + 1;
    if (parts.size() > MOVED_PART_NB) {
        settings.other_callers = parts[MOVED_PART_NB];
        if (!Are_Addresses(settings.other_callers)) {
            return std::nullopt;
        }
    }
    if ((settings.is_moved && !Number_Of(parts[8], 1, PORT_MAX, settings.own_port)) ||
        (!settings.is_moved && parts.size() != PART_NB) || parts[0].size() > NAME_MOST ||
        !Number_Of(parts[2], 1, PORT_MAX, settings.port) || !Time_Of(parts[5], settings.times.connect) ||
        !Time_Of(parts[6], settings.times.associate) || !Time_Of(parts[7], settings.times.silence)) {
        return std::nullopt;
    }
    settings.name = parts[0];
    settings.host = parts[1];
    settings.called_title = parts[3];
    settings.own_title = parts[4];
    return Settings_Doubt(settings).empty() ? std::optional(settings) : std::nullopt;
}

std::string Archive_Title(const Archive_Settings& settings) {
    const std::string place =
        volumes::Printable_Text(settings.host, volumes::FIELD_SHOWN_MOST) + ":" + std::to_string(settings.port);
    return settings.name.empty() ? "The archive at " + place
                                 : "The archive " + volumes::Printable_Text(settings.name, volumes::FIELD_SHOWN_MOST) +
                                       " (" + place + ")";
}

}  // namespace workbench::archive
