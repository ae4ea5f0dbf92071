#include <cstring>

#include "kits/common/messages.h"

namespace {

constexpr char STYLE_LEAD = '\xF1';
constexpr char STYLE_WARNING = '\x05';
constexpr char STYLE_INDENTED = '\x09';
constexpr char STRONG_BEGIN = '\x01';
constexpr char RUN_END = '\x02';

/** True at a lead byte with its style byte. Style bytes are control bytes: before anything else the lead byte is a
 * letter of the code page. */
bool Is_Styled(const char* text) {
    if (text[0] != STYLE_LEAD) {
        return false;
    }
    const auto style = static_cast<unsigned char>(text[1]);
    return style < 0x20 && style != 0 && style != '\n' && style != '\r';
}

Message_Style Style_Of(char style) {
    switch (style) {
        case STYLE_WARNING:
            return Message_Style::Warning;
        case STYLE_INDENTED:
            return Message_Style::Indented;
        default:
            return Message_Style::Plain;
    }
}

/** Splits the text and hands each run to `take`(style, text, count). */
template <typename Take>
void Split(const char* text, Take take) {
    Message_Style style = Message_Style::Plain;
    while (text != nullptr && *text != 0) {
        const char* end = text;
        while (*end != 0 && *end != STRONG_BEGIN && *end != RUN_END && !Is_Styled(end)) {
            ++end;
        }
        if (end != text || (style == Message_Style::Indented && *end != RUN_END)) {
            take(style, text, static_cast<std::size_t>(end - text));
        }
        text = end;
        if (*text == STRONG_BEGIN || *text == RUN_END) {
            style = *text == STRONG_BEGIN ? Message_Style::Strong : Message_Style::Plain;
            ++text;
        } else if (*text != 0) {
            style = Style_Of(text[1]);
            text += 2;
        }
    }
}

}  // namespace

std::vector<Message_Run> Message_Runs(const char* text) {
    std::vector<Message_Run> runs;
    Split(text, [&](Message_Style style, const char* begin, std::size_t count) {
        const bool indent_alone = !runs.empty() && runs.back().text.empty();
        const bool joins = style != Message_Style::Indented || indent_alone;
        if (!runs.empty() && runs.back().style == style && joins) {
            runs.back().text.append(begin, count);
        } else {
            runs.push_back({style, std::string(begin, count)});
        }
    });
    if (!runs.empty() && runs.back().text.empty()) {
        runs.pop_back();  // an indent that nothing follows
    }
    return runs;
}

std::string Message_Plain(const char* text) {
    std::string plain;
    Split(text, [&](Message_Style, const char* begin, std::size_t count) { plain.append(begin, count); });
    return plain;
}
