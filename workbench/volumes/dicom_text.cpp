#include "workbench/volumes/dicom_text.h"

#include <algorithm>
#include <array>
#include <optional>
#include <vector>

#if defined(_WIN32)
#include <stringapiset.h>
#else
#include <iconv.h>
#endif

#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

constexpr char ESCAPE = 0x1B;
constexpr unsigned char HIGH_FIRST = 0x80;
constexpr const char* REPLACEMENT = "\xEF\xBF\xBD";

/** A set of characters and how the system calls it. */
struct Character_Set {
    std::string_view term;    // DICOM's, without "ISO_IR " and "ISO 2022 IR "
    std::string_view escape;  // what follows the escape character, to the second half of the bytes where it has two
    const char* encoding;     // iconv's; null: characters are made here
    unsigned code_page;       // the system's on Windows
    int width = 1;            // bytes of a character
    bool is_low = false;      // stands in the first half of the bytes, in place of ASCII
};

enum Set_Index { Latin_1 = 1, Japanese_Kana = 12, Kanji = 15, Kanji_More = 16 };

// The first is ASCII alone; the katakana of 13 are in the second half.
constexpr std::array<Character_Set, 19> SETS = {{
    {"6", "", nullptr, 0},
    {"100", "-A", nullptr, 0},
    {"101", "-B", "ISO-8859-2", 28592},
    {"109", "-C", "ISO-8859-3", 28593},
    {"110", "-D", "ISO-8859-4", 28594},
    {"144", "-L", "ISO-8859-5", 28595},
    {"127", "-G", "ISO-8859-6", 28596},
    {"126", "-F", "ISO-8859-7", 28597},
    {"138", "-H", "ISO-8859-8", 28598},
    {"148", "-M", "ISO-8859-9", 28599},
    {"203", "-b", "ISO-8859-15", 28605},
    {"166", "-T", "TIS-620", 874},
    {"13", ")I", nullptr, 0},
    {"149", "$)C", "EUC-KR", 949, 2},
    {"58", "$)A", "GB2312", 936, 2},
    {"87", "$B", "EUC-JP", 20932, 2, true},
    {"159", "$(D", "EUC-JP", 20932, 2, true},
    {"GB18030", "", "GB18030", 54936, 2},
    {"GBK", "", "GBK", 936, 2},
}};

#if defined(_WIN32)
std::optional<std::string> Converted(const Character_Set& set, const std::string& bytes) {
    constexpr unsigned without_four_bytes = 936;  // where the system lacks GB18030: the same but for rare characters
    const unsigned page = ::IsValidCodePage(set.code_page) != 0 ? set.code_page : without_four_bytes;
    if (page != set.code_page && set.term != "GB18030") {
        return std::nullopt;
    }
    std::wstring wide(bytes.size() + 1, L'\0');
    const int units = ::MultiByteToWideChar(page, MB_ERR_INVALID_CHARS, bytes.data(), static_cast<int>(bytes.size()),
                                            wide.data(), static_cast<int>(wide.size()));
    if (units == 0) {
        return std::nullopt;
    }
    constexpr std::size_t utf8_most = 4;  // bytes of a character
    std::string text(static_cast<std::size_t>(units) * utf8_most, '\0');
    const int length = ::WideCharToMultiByte(CP_UTF8, 0, wide.data(), units, text.data(), static_cast<int>(text.size()),
                                             nullptr, nullptr);
    text.resize(static_cast<std::size_t>(length));
    return text;
}
#else
std::optional<std::string> Converted(const Character_Set& set, const std::string& bytes) {
    ::iconv_t converter = ::iconv_open("UTF-8", set.encoding);
    if (converter == reinterpret_cast<::iconv_t>(-1)) {
        return std::nullopt;
    }
    constexpr std::size_t utf8_most = 4;  // bytes of a character
    std::string text(bytes.size() * utf8_most, '\0');
    std::string read = bytes;  // the converter takes no constant
    char* from = read.data();
    std::size_t from_size = bytes.size();
    char* to = text.data();
    std::size_t to_size = text.size();
    const std::size_t done = ::iconv(converter, &from, &from_size, &to, &to_size);
    ::iconv_close(converter);
    if (done == static_cast<std::size_t>(-1)) {
        return std::nullopt;
    }
    text.resize(text.size() - to_size);
    return text;
}
#endif

/** The character of a code point below 0x10000. */
std::string Utf8_Of(unsigned point) {
    const auto tail = [&](unsigned shift) { return static_cast<char>(0x80U | (point >> shift & 0x3FU)); };
    if (point < HIGH_FIRST) {
        return {static_cast<char>(point)};
    }
    constexpr unsigned two_most = 0x7FF;
    if (point <= two_most) {
        return {static_cast<char>(0xC0U | point >> 6U), tail(0)};
    }
    return {static_cast<char>(0xE0U | point >> 12U), tail(6), tail(0)};
}

bool Is_High(char letter) {
    return static_cast<unsigned char>(letter) >= HIGH_FIRST;
}

/** One or more characters of a set; bytes of the second half but for sets of the first. */
std::string Text_Of(const Character_Set& set, std::string bytes) {
    if (set.encoding == nullptr) {
        std::string text;
        constexpr unsigned kana_first = 0xA1;
        constexpr unsigned kana_last = 0xDF;
        constexpr unsigned kana_point = 0xFF61;
        for (const char letter : bytes) {
            const unsigned byte = static_cast<unsigned char>(letter);
            const bool is_kana = byte >= kana_first && byte <= kana_last;
            if (&set == &SETS[Latin_1]) {
                text += Utf8_Of(byte);
            } else {
                text += &set == &SETS[Japanese_Kana] && is_kana ? Utf8_Of(kana_point + byte - kana_first) : REPLACEMENT;
            }
        }
        return text;
    }
    if (set.is_low) {
        for (char& letter : bytes) {
            letter = static_cast<char>(static_cast<unsigned char>(letter) | HIGH_FIRST);
        }
    }
    if (&set == &SETS[Kanji_More]) {
        std::string coded;
        for (std::size_t at = 0; at + 1 < bytes.size(); at += 2) {
#if defined(_WIN32)
            coded += {bytes[at], static_cast<char>(static_cast<unsigned char>(bytes[at + 1]) & 0x7FU)};
#else
            coded += {'\x8F', bytes[at], bytes[at + 1]};
#endif
        }
        bytes = coded;
    }
    return Converted(set, bytes).value_or(REPLACEMENT);
}

std::string_view Without(std::string_view text, std::string_view beginning) {
    return text.starts_with(beginning) ? text.substr(beginning.size()) : text;
}

const Character_Set* Set_Named(std::string_view name) {
    const std::size_t first = name.find_first_not_of(' ');
    const std::size_t last = name.find_last_not_of(' ');
    if (first == std::string_view::npos) {
        return SETS.data();
    }
    name = name.substr(first, last - first + 1);
    name = Without(Without(name, "ISO 2022 IR "), "ISO_IR ");
    const auto found = std::ranges::find(SETS, name, &Character_Set::term);
    return found != SETS.end() ? &*found : &SETS[Latin_1];
}

/** Reads a text with escape sequences. */
class Escaped_Text {
  public:
    Escaped_Text(std::string_view coded, std::string_view sets, bool is_person_name)
        : bytes(coded), is_name(is_person_name), first(Set_Named(sets.substr(0, sets.find('\\')))) {
        Begin_Anew();
    }

    std::string Read() {
        while (at < bytes.size()) {
            const char letter = bytes[at];
            if (letter == ESCAPE && Escape_Take()) {
                continue;
            }
            const Character_Set* const set = Is_High(letter) ? high : low;
            if (set == nullptr || (!Is_High(letter) && static_cast<unsigned char>(letter) <= ' ')) {
                Single_Take(letter);
            } else {
                Characters_Take(*set);
            }
        }
        return text;
    }

  private:
    void Begin_Anew() {
        low = first->is_low ? first : nullptr;
        high = first->is_low ? SETS.data() : first;
    }
    /** A character of ASCII, or a control character. */
    void Single_Take(char letter) {
        const bool is_delimiter = letter == '\\' || (is_name && (letter == '^' || letter == '='));
        if (is_delimiter || letter == '\r' || letter == '\n' || letter == '\t' || letter == '\f') {
            Begin_Anew();
        }
        text += letter;
        ++at;
    }
    /** As many characters as there are in a row. */
    void Characters_Take(const Character_Set& set) {
        std::size_t end = at;
        const bool is_high = Is_High(bytes[at]);
        const auto width = static_cast<std::size_t>(set.width);
        while (end + width <= bytes.size() && Is_High(bytes[end]) == is_high &&
               (is_high || static_cast<unsigned char>(bytes[end]) > ' ')) {
            end += width;
        }
        if (end == at) {
            text += REPLACEMENT;  // half a character
            ++at;
            return;
        }
        const std::string run(bytes.substr(at, end - at));
        const std::string whole = Text_Of(set, run);
        if (whole != REPLACEMENT) {
            text += whole;
        } else {
            for (std::size_t one = 0; one < run.size(); one += width) {
                text += Text_Of(set, run.substr(one, width));
            }
        }
        at = end;
    }
    /** @return false: it is none that is known, and stays */
    bool Escape_Take() {
        const std::string_view rest = bytes.substr(at + 1);
        if (rest.starts_with("(B") || rest.starts_with("(J")) {
            low = nullptr;
            at += 3;
            return true;
        }
        for (const Character_Set& set : SETS) {
            if (!set.escape.empty() && rest.starts_with(set.escape)) {
                (set.is_low ? low : high) = &set;
                at += 1 + set.escape.size();
                return true;
            }
        }
        return false;
    }

    std::string_view bytes;
    bool is_name;
    const Character_Set* first;
    const Character_Set* low = nullptr;   // of bytes below 0x80; null: ASCII
    const Character_Set* high = nullptr;  // of the others
    std::size_t at = 0;
    std::string text;
};

/** A set of Chinese whose characters of several bytes begin with a high one. */
std::string Chinese_Text(const Character_Set& set, std::string_view bytes) {
    std::string text;
    for (std::size_t at = 0; at < bytes.size();) {
        if (!Is_High(bytes[at])) {
            text += bytes[at++];
            continue;
        }
        const auto is_digit = [&](std::size_t place) {
            return place < bytes.size() && bytes[place] >= '0' && bytes[place] <= '9';
        };
        constexpr std::size_t wide = 4;
        const std::size_t width = is_digit(at + 1) && is_digit(at + 3) ? wide : 2;
        const auto one =
            at + width <= bytes.size() ? Converted(set, std::string(bytes.substr(at, width))) : std::nullopt;
        text += one.value_or(REPLACEMENT);
        at += one ? width : 1;
    }
    return text;
}

}  // namespace

std::string Dicom_Text_Utf8(std::string_view bytes, std::string_view sets, bool is_name) {
    const std::string_view first = sets.substr(0, sets.find_first_of("\\ "));
    if (first == "ISO_IR" && sets.starts_with("ISO_IR 192")) {
        return Printable_Text(bytes);
    }
    if (first == "GB18030" || first == "GBK") {
        return Printable_Text(Chinese_Text(*Set_Named(first), bytes));
    }
    // Many files name no set and mean Latin-1.
    return Printable_Text(Escaped_Text(bytes, sets.empty() ? "ISO_IR 100" : sets, is_name).Read());
}

}  // namespace volumes
