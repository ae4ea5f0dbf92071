#include "kits/common/message_format.h"

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "kits/common/text_conversion.h"

namespace {

/** Widths and precisions beyond this are cut: no message needs them and they only cost memory. */
constexpr int WIDTH_MAX = 65535;

enum class Length { Int, Char, Short, Long, Long_Long, Max, Size, Difference, Long_Double };

}  // namespace

/** One conversion of a format. */
struct Message_Text::Conversion {
    char flags[6] = {};  // every flag once
    int width = 0;
    int precision = -1;
    Length length = Length::Int;
    char type = 0;

    bool Has(char flag) const { return std::strchr(flags, flag) != nullptr; }
    void Flag_Add(char flag) {
        if (!Has(flag)) {
            flags[std::strlen(flags)] = flag;
        }
    }
    bool Wide() const { return length == Length::Long || type == 'S' || type == 'C'; }
};

/** A va_list that can be handed down by reference on every system. */
struct Message_Text::Arguments {
    std::va_list list;
};

Message_Text::~Message_Text() {
    if (text != fixed) {
        std::free(text);
    }
}

char* Message_Text::Room(std::size_t count) {
    if (count >= room - size) {
        const std::size_t wanted = std::max(room * 2, size + count + 1);
        auto* grown = static_cast<char*>(std::realloc(text == fixed ? nullptr : text, wanted));
        if (grown == nullptr) {
            return nullptr;
        }
        if (text == fixed) {
            std::memcpy(grown, fixed, size + 1);
        }
        text = grown;
        room = wanted;
    }
    return text + size;
}

void Message_Text::Append(const char* bytes, std::size_t count) {
    char* out = Room(count);
    if (out == nullptr) {
        count = room - size - 1;
        out = text + size;
    }
    std::memcpy(out, bytes, count);
    size += count;
    text[size] = 0;
}

/** Fills what was appended since `from` up to the conversion's width. */
void Message_Text::Pad(std::size_t from, const Conversion& conversion) {
    const std::size_t written = size - from;
    const auto width = static_cast<std::size_t>(conversion.width);
    if (width <= written || Room(width - written) == nullptr) {
        return;
    }
    const std::size_t missing = width - written;
    if (conversion.Has('-')) {
        std::memset(text + size, ' ', missing);
    } else {
        std::memmove(text + from + missing, text + from, written);
        std::memset(text + from, ' ', missing);
    }
    size += missing;
    text[size] = 0;
}

void Message_Text::Append_Padded(const char* bytes, std::size_t count, const Conversion& conversion) {
    const std::size_t from = size;
    Append(bytes, count);
    Pad(from, conversion);
}

void Message_Text::Append_Wide(const wchar_t* wide, int most_units, const Conversion& conversion) {
    const std::size_t from = size;
    for (int units = 0; most_units > 0; wide += units, most_units -= units) {
        units = std::min(Wide_Character_Units(wide), most_units);
        if (units == 0) {
            break;
        }
        char character[BYTES_PER_CHARACTER];
        const int bytes = Bytes_Of_Wide_Character(wide, units, character);
        const std::size_t total = size - from + static_cast<std::size_t>(bytes);
        if (conversion.precision >= 0 && total > static_cast<std::size_t>(conversion.precision)) {
            break;
        }
        Append(character, static_cast<std::size_t>(bytes));
    }
    Pad(from, conversion);
}

template <typename Number>
void Message_Text::Append_Number(const Conversion& conversion, const char* length, Number number) {
    char format[32];
    std::snprintf(format, sizeof(format), "%%%s*.*%s%c", conversion.flags, length, conversion.type);
    std::size_t wanted = 64;
    for (int attempt = 0; attempt < 2; ++attempt) {
        char* out = Room(wanted);
        if (out == nullptr) {
            text[size] = 0;
            return;
        }
        const int written = std::snprintf(out, wanted, format, conversion.width, conversion.precision, number);
        if (written >= 0 && static_cast<std::size_t>(written) < wanted) {
            size += static_cast<std::size_t>(written);
            return;
        }
        text[size] = 0;
        wanted = static_cast<std::size_t>(std::max(written, 0)) + 1;
    }
}

void Message_Text::Print_Signed(const Conversion& conversion, Arguments& arguments) {
    long long value = 0;
    switch (conversion.length) {
        case Length::Char:
            value = static_cast<signed char>(va_arg(arguments.list, int));
            break;
        case Length::Short:
            value = static_cast<short>(va_arg(arguments.list, int));
            break;
        case Length::Long:
            value = va_arg(arguments.list, long);
            break;
        case Length::Long_Long:
            value = va_arg(arguments.list, long long);
            break;
        case Length::Max:
            value = va_arg(arguments.list, std::intmax_t);
            break;
        case Length::Size:
        case Length::Difference:
            value = va_arg(arguments.list, std::ptrdiff_t);
            break;
        default:
            value = va_arg(arguments.list, int);
            break;
    }
    Append_Number(conversion, "ll", value);
}

void Message_Text::Print_Unsigned(const Conversion& conversion, Arguments& arguments) {
    unsigned long long value = 0;
    switch (conversion.length) {
        case Length::Char:
            value = static_cast<unsigned char>(va_arg(arguments.list, unsigned));
            break;
        case Length::Short:
            value = static_cast<unsigned short>(va_arg(arguments.list, unsigned));
            break;
        case Length::Long:
            value = va_arg(arguments.list, unsigned long);
            break;
        case Length::Long_Long:
            value = va_arg(arguments.list, unsigned long long);
            break;
        case Length::Max:
            value = va_arg(arguments.list, std::uintmax_t);
            break;
        case Length::Size:
        case Length::Difference:
            value = va_arg(arguments.list, std::size_t);
            break;
        default:
            value = va_arg(arguments.list, unsigned);
            break;
    }
    Append_Number(conversion, "ll", value);
}

void Message_Text::Print_Value(const Conversion& conversion, Arguments& arguments) {
    switch (conversion.type) {
        case 'd':
        case 'i':
            Print_Signed(conversion, arguments);
            break;
        case 'o':
        case 'u':
        case 'x':
        case 'X':
            Print_Unsigned(conversion, arguments);
            break;
        case 'a':
        case 'A':
        case 'e':
        case 'E':
        case 'f':
        case 'F':
        case 'g':
        case 'G':
            if (conversion.length == Length::Long_Double) {
                Append_Number(conversion, "L", va_arg(arguments.list, long double));
            } else {
                Append_Number(conversion, "", va_arg(arguments.list, double));
            }
            break;
        case 'c':
        case 'C':
            if (conversion.Wide()) {
                // A wide character is passed as an int where it is narrower than one.
                const wchar_t wide[2] = {static_cast<wchar_t>(va_arg(arguments.list, unsigned)), 0};
                Append_Wide(wide, 1, conversion);
            } else {
                const char character = static_cast<char>(va_arg(arguments.list, int));
                Append_Padded(&character, 1, conversion);
            }
            break;
        case 's':
        case 'S':
            if (conversion.Wide()) {
                const wchar_t* wide = va_arg(arguments.list, const wchar_t*);
                Append_Wide(wide != nullptr ? wide : L"(null)", INT32_MAX, conversion);
            } else {
                const char* bytes = va_arg(arguments.list, const char*);
                bytes = bytes != nullptr ? bytes : "(null)";
                std::size_t count = 0;
                while ((conversion.precision < 0 || count < static_cast<std::size_t>(conversion.precision)) &&
                       bytes[count] != 0) {
                    ++count;
                }
                Append_Padded(bytes, count, conversion);
            }
            break;
        case 'p': {
            char digits[24];
            const auto address = reinterpret_cast<std::uintptr_t>(va_arg(arguments.list, void*));
            const int count =
                std::snprintf(digits, sizeof(digits), "%016llx", static_cast<unsigned long long>(address));
            Append_Padded(digits, static_cast<std::size_t>(count), conversion);
            break;
        }
        case 'n':
            static_cast<void>(va_arg(arguments.list, void*));
            break;
        default:
            break;
    }
}

/** Reads one conversion behind its '%' and appends the value. @return what follows it */
const char* Message_Text::Print_Conversion(const char* format, Arguments& arguments) {
    const char* begin = format;
    Conversion conversion;
    for (; *format != 0 && std::strchr("-+ #0", *format) != nullptr; ++format) {
        conversion.Flag_Add(*format);
    }
    const auto read_number = [&]() {
        int number = 0;
        if (*format == '*') {
            ++format;
            return std::clamp(va_arg(arguments.list, int), -WIDTH_MAX, WIDTH_MAX);
        }
        for (; *format >= '0' && *format <= '9'; ++format) {
            number = std::min(number * 10 + (*format - '0'), WIDTH_MAX);
        }
        return number;
    };
    conversion.width = read_number();
    if (conversion.width < 0) {
        conversion.width = -conversion.width;
        conversion.Flag_Add('-');
    }
    if (*format == '.') {
        ++format;
        conversion.precision = std::max(read_number(), -1);
    }
    struct Prefix {
        const char* text;
        Length length;
    };
    constexpr Prefix prefixes[] = {{"hh", Length::Char},      {"h", Length::Short},       {"ll", Length::Long_Long},
                                   {"l", Length::Long},       {"j", Length::Max},         {"z", Length::Size},
                                   {"t", Length::Difference}, {"L", Length::Long_Double}, {"I64", Length::Long_Long},
                                   {"I32", Length::Int},      {"w", Length::Long}};
    for (const Prefix& prefix : prefixes) {
        const std::size_t count = std::strlen(prefix.text);
        if (std::strncmp(format, prefix.text, count) == 0) {
            conversion.length = prefix.length;
            format += count;
            break;
        }
    }
    conversion.type = *format;
    if (conversion.type == 0 || std::strchr("diouxXaAeEfFgGcCsSpn", conversion.type) == nullptr) {
        // Not a conversion: shown as it stands ("%%" as one sign).
        const char* end = conversion.type == 0 ? format : format + 1;
        const bool percent = conversion.type == '%';
        Append(percent ? "%" : begin - 1, percent ? 1 : static_cast<std::size_t>(end - begin) + 1);
        return end;
    }
    Print_Value(conversion, arguments);
    return format + 1;
}

void Message_Text::Print(const char* format, std::va_list arguments) {
    Arguments list;
    va_copy(list.list, arguments);
    while (*format != 0) {
        const char* plain_end = format;
        while (*plain_end != 0 && *plain_end != '%') {
            ++plain_end;
        }
        Append(format, static_cast<std::size_t>(plain_end - format));
        format = *plain_end == '%' ? Print_Conversion(plain_end + 1, list) : plain_end;
    }
    va_end(list.list);
}
