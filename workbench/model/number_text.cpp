#include "workbench/model/number_text.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <vector>

namespace workbench {

namespace {

constexpr double SMALL = 1e-4;  // below this and from LARGE on numbers have an exponent
constexpr double LARGE = 1e15;
constexpr double WHOLE_LARGE = 1e9;  // numbers up to it that are whole have no decimals
constexpr int DIGITS_MOST = 15;

/** The exponent of the first digit as it is shown with so many digits: 0.09996 with three is 0.100. */
int First_Digit(double value, int digits) {
    const int first = static_cast<int>(std::floor(std::log10(std::abs(value))));
    const double unit = std::pow(10.0, first - digits + 1);
    return std::round(std::abs(value) / unit) >= std::pow(10.0, digits) ? first + 1 : first;
}

std::string Fixed(double value, int decimals) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*f", decimals, value);
    return text;
}

/** "4.58e-8": without the plus sign and the leading zeros of the exponent. */
std::string With_Exponent(double value, int digits) {
    char text[64];
    std::snprintf(text, sizeof text, "%.*e", digits - 1, value);
    std::string shown = text;
    const std::size_t mark = shown.find('e');
    const long exponent = std::strtol(shown.c_str() + mark + 1, nullptr, 10);
    return shown.substr(0, mark + 1) + std::to_string(exponent);
}

bool Has_Exponent(double value) {
    return std::abs(value) < SMALL || std::abs(value) >= LARGE;
}

}  // namespace

std::string Number_Text(double value, int digits) {
    if (std::isnan(value)) {
        return "none";
    }
    if (std::isinf(value)) {
        return value > 0.0 ? "infinite" : "-infinite";
    }
    if (value == 0.0) {
        return "0";
    }
    if (value == std::trunc(value) && std::abs(value) <= WHOLE_LARGE) {
        return Fixed(value, 0);
    }
    const int shown = std::clamp(digits, NUMBER_DIGITS, DIGITS_MOST);
    if (Has_Exponent(value)) {
        return With_Exponent(value, shown);
    }
    return Fixed(value, std::max(shown - 1 - First_Digit(value, shown), 0));
}

std::string Number_Text_In_Steps(double value, double step) {
    if (!(step > 0.0) || !std::isfinite(value)) {
        return Number_Text(value);
    }
    if (std::abs(value) < step / 2.0) {
        return "0";
    }
    const double decimals = std::max(std::ceil(-std::log10(step) - 1e-9), 0.0);
    const double whole_digits = std::floor(std::log10(std::abs(value))) + 1.0;
    return Number_Text(value, static_cast<int>(std::clamp(decimals + whole_digits, 0.0, 15.0)));
}

std::string With_Error(double value, double error) {
    constexpr const char* plus_minus = " \xC2\xB1 ";
    if (!(error > 0.0) || !std::isfinite(error)) {
        return Number_Text(value, NUMBER_DIGITS + 1);
    }
    if (!(error < std::abs(value)) || Has_Exponent(value)) {
        return Number_Text(value) + plus_minus + Number_Text(error);
    }
    // The decimal place of the last digit.
    const int place = std::min(First_Digit(error, 2) - 1, First_Digit(value, NUMBER_DIGITS) - NUMBER_DIGITS + 1);
    const double unit = std::pow(10.0, place);
    const auto rounded = [&](double number) { return place > 0 ? std::round(number / unit) * unit : number; };
    const int decimals = std::clamp(-place, 0, DIGITS_MOST);
    return Fixed(rounded(value), decimals) + plus_minus + Fixed(rounded(error), decimals);
}

std::string Power_Text(int exponent) {
    constexpr const char* digit[] = {"\xE2\x81\xB0", "\xC2\xB9",     "\xC2\xB2",     "\xC2\xB3",     "\xE2\x81\xB4",
                                     "\xE2\x81\xB5", "\xE2\x81\xB6", "\xE2\x81\xB7", "\xE2\x81\xB8", "\xE2\x81\xB9"};
    std::string text = exponent < 0 ? "10\xE2\x81\xBB" : "10";
    for (const char number : std::to_string(std::abs(exponent))) {
        text += digit[number - '0'];
    }
    return text;
}

std::string Frames_Text(std::span<const int> frames) {
    std::vector<std::string> parts;
    for (std::size_t at = 0; at < frames.size();) {
        std::size_t end = at + 1;
        while (end < frames.size() && frames[end] == frames[end - 1] + 1) {
            ++end;
        }
        const std::string first = std::to_string(frames[at]);
        parts.push_back(end - at == 1 ? first : first + " to " + std::to_string(frames[end - 1]));
        at = end;
    }
    std::string text = frames.size() == 1 ? "frame " : "frames ";
    for (std::size_t at = 0; at < parts.size(); ++at) {
        text += (at == 0 ? "" : at + 1 == parts.size() ? " and " : ", ") + parts[at];
    }
    return text;
}

}  // namespace workbench
