#include "kits/widgets/text_edit_core.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <string>

#include "kits/common/text_conversion.h"
#include "kits/widgets/surface.h"

namespace {

int Next_Character(std::string_view text, int at) {
    return at + static_cast<int>(Character_Length(text, static_cast<std::size_t>(at)));
}

int Previous_Character(std::string_view text, int at) {
    return at <= 0 ? 0 : static_cast<int>(Character_Before(text, static_cast<std::size_t>(at)));
}

bool Is_Blank(std::string_view text, int at) {
    return text[static_cast<std::size_t>(at)] == ' ';
}

constexpr unsigned char DELETE_CONTROL = 127;

bool Is_Line_End(char c) {
    return c == '\r' || c == '\n';
}

/** A pasted text as one line. */
std::string One_Line(std::string_view text) {
    while (!text.empty() && (Is_Line_End(text.back()) || text.back() == '\t')) {
        text.remove_suffix(1);
    }
    std::string line;
    line.reserve(text.size());
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        if (text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n') {
            continue;  // one blank for the pair
        }
        if (Is_Line_End(text[i]) || text[i] == '\t') {
            line.push_back(' ');
        } else if (byte >= FIRST_PRINTABLE && byte != DELETE_CONTROL) {
            line.push_back(text[i]);
        }
    }
    return line;
}

/** The smallest character start p in 0 .. end for which text[p .. end) is at most `room` wide. */
int First_That_Fits(std::string_view text, int end, int room, const std::function<int(std::string_view)>& width) {
    int low = 0;  // a width grows with every character: halve the interval
    int high = end;
    while (low < high) {
        const int middle = Text_Whole_Character(text, low + (high - low) / 2);
        const auto start = static_cast<std::size_t>(middle);
        if (width(text.substr(start, static_cast<std::size_t>(end) - start)) <= room) {
            high = middle;
        } else {
            low = Next_Character(text, middle);
        }
    }
    return std::min(high, end);
}

}  // namespace

int Text_Whole_Character(std::string_view text, int offset) {
    const int length = static_cast<int>(text.size());
    if (offset <= 0) {
        return 0;
    }
    if (offset >= length) {
        return length;
    }
    int at = 0;  // from the start: what a byte in the middle means, only the ones before it tell
    for (int next = 0; next <= offset; next = Next_Character(text, at)) {
        at = next;
    }
    return at;
}

std::string_view Text_Cut(std::string_view text, int bytes) {
    if (bytes <= 0) {
        return {};
    }
    return text.substr(0, static_cast<std::size_t>(Text_Whole_Character(text, bytes)));
}

int Text_First_Shown(std::string_view text, int caret, int position, int room,
                     const std::function<int(std::string_view)>& width) {
    const int length = static_cast<int>(text.size());
    const int end = Text_Whole_Character(text, caret);
    int first = Text_Whole_Character(text, position);
    first = std::min(first, First_That_Fits(text, length, room, width));
    first = std::max(first, First_That_Fits(text, end, room, width));
    return std::min(first, end);
}

Text_Edit::Text_Edit(char* edit_buffer, int edit_size, int edit_caret, int edit_anchor)
    : buffer(edit_buffer), size(edit_size) {
    buffer[size - 1] = 0;
    length = static_cast<int>(std::strlen(buffer));
    caret = Text_Whole_Character(Text(), edit_caret);
    anchor = Text_Whole_Character(Text(), edit_anchor);
}

std::string_view Text_Edit::Selected() const {
    return Text().substr(static_cast<std::size_t>(Selection_Start()),
                         static_cast<std::size_t>(Selection_End() - Selection_Start()));
}

void Text_Edit::Move_To(int offset, bool select) {
    caret = Text_Whole_Character(Text(), offset);
    if (!select) {
        anchor = caret;
    }
}

void Text_Edit::Left(bool select) {
    if (!select && Has_Selection()) {
        Move_To(Selection_Start(), false);
    } else {
        Move_To(Previous_Character(Text(), caret), select);
    }
}

void Text_Edit::Right(bool select) {
    if (!select && Has_Selection()) {
        Move_To(Selection_End(), false);
    } else {
        Move_To(caret < length ? Next_Character(Text(), caret) : length, select);
    }
}

void Text_Edit::Word_Left(bool select) {
    int at = caret;
    while (at > 0 && Is_Blank(Text(), at - 1)) {
        --at;
    }
    while (at > 0 && !Is_Blank(Text(), at - 1)) {
        --at;
    }
    Move_To(at, select);
}

void Text_Edit::Word_Right(bool select) {
    int at = caret;
    while (at < length && !Is_Blank(Text(), at)) {
        ++at;
    }
    while (at < length && Is_Blank(Text(), at)) {
        ++at;
    }
    Move_To(at, select);
}

void Text_Edit::Select_All() {
    anchor = 0;
    caret = length;
}

void Text_Edit::Erase(int start, int end) {
    std::memmove(buffer + start, buffer + end, static_cast<std::size_t>(length - end) + 1);
    length -= end - start;
    Move_To(start, false);
}

bool Text_Edit::Insert(std::string_view inserted) {
    const std::string line = One_Line(inserted);
    if (line.empty()) {
        return false;
    }
    if (Has_Selection()) {
        Erase(Selection_Start(), Selection_End());
    }
    const std::string_view part = Text_Cut(line, size - 1 - length);
    if (part.empty()) {
        return false;
    }
    std::memmove(buffer + caret + part.size(), buffer + caret, static_cast<std::size_t>(length - caret) + 1);
    std::memcpy(buffer + caret, part.data(), part.size());
    length += static_cast<int>(part.size());
    Move_To(caret + static_cast<int>(part.size()), false);
    return true;
}

bool Text_Edit::Insert_Code_Point(std::uint32_t code_point) {
    constexpr std::uint32_t last_code_point = 0x10FFFF;
    const bool control = code_point < FIRST_PRINTABLE || (code_point >= DELETE_CONTROL && code_point < 0xA0);
    const bool surrogate = code_point >= 0xD800 && code_point < 0xE000;
    if (control || surrogate || code_point > last_code_point) {
        return false;
    }
    constexpr bool in_pairs = sizeof(wchar_t) == 2;
    std::array<wchar_t, 2> wide{static_cast<wchar_t>(code_point)};
    int units = 1;
    if (in_pairs && code_point > 0xFFFF) {
        wide = {static_cast<wchar_t>(0xD7C0U + (code_point >> 10)),
                static_cast<wchar_t>(0xDC00U | (code_point & 0x3FFU))};
        units = 2;
    }
    std::array<char, BYTES_PER_CHARACTER> bytes{};
    const int count = Bytes_Of_Wide_Character(wide.data(), units, bytes.data());
    return Insert({bytes.data(), static_cast<std::size_t>(count)});
}

bool Text_Edit::Backspace() {
    if (Has_Selection()) {
        Erase(Selection_Start(), Selection_End());
        return true;
    }
    if (caret == 0) {
        return false;
    }
    Erase(Previous_Character(Text(), caret), caret);
    return true;
}

bool Text_Edit::Delete() {
    if (Has_Selection()) {
        Erase(Selection_Start(), Selection_End());
        return true;
    }
    if (caret >= length) {
        return false;
    }
    Erase(caret, Next_Character(Text(), caret));
    return true;
}
