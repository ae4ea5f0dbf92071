#include "workbench/commands/command_table.h"

#include <algorithm>
#include <cctype>

#include "host/kit_widgets.h"

namespace workbench {

namespace {

constexpr int VIRTUAL_KEY_F1 = 0x70;  // of the window system
constexpr int FUNCTION_KEY_NB = 24;
constexpr int CONTROL_LETTER_NB = 26;

struct Named_Key {
    int key;
    const char* name;
};
constexpr Named_Key NAMED_KEYS[] = {
    {KEY_ESCAPE, "Escape"},       {KEY_ENTER, "Enter"},   {KEY_TAB, "Tab"},
    {KEY_BACKSPACE, "Backspace"}, {' ', "Space"},         {KEY_PAGE_UP, "Page Up"},
    {KEY_PAGE_DOWN, "Page Down"}, {KEY_END, "End"},       {KEY_HOME, "Home"},
    {KEY_LEFT, "Left"},           {KEY_UP, "Up"},         {KEY_RIGHT, "Right"},
    {KEY_DOWN, "Down"},           {KEY_INSERT, "Insert"}, {KEY_DELETE, "Delete"},
};

int Plain_Key(int key) {
    return key > 0 && key < 0x80 && std::isalpha(key) != 0 ? std::tolower(key) : key;
}

std::optional<Command_Call> Find(int key, Key_Context context, bool is_shift) {
    for (const Command_Record& record : Command_Records()) {
        for (const Command_Key& own : record.keys) {
            const int number = key - own.key;
            if (own.key != 0 && own.context == context && own.is_shift == is_shift && number >= 0 &&
                number < record.key_nb) {
                return Command_Call{record.command, number};
            }
        }
    }
    return std::nullopt;
}

}  // namespace

const Command_Record& Record_Of(Command command) {
    return Command_Records()[static_cast<std::size_t>(command)];
}

std::optional<Command_Call> Command_In_Context(int key, Key_Context context, bool is_shift) {
    const int plain = Plain_Key(key);
    if (is_shift) {
        if (const auto call = Find(plain, context, true)) {
            return call;
        }
    }
    return Find(plain, context, false);
}

std::optional<Command_Call> Command_Of_Key(int key, Key_Context context, bool is_shift) {
    const auto call = Command_In_Context(key, context, is_shift);
    return call || context == Key_Context::Window ? call : Command_In_Context(key, Key_Context::Window, is_shift);
}

std::string Key_Text(const Command_Key& key) {
    const std::string shift = key.is_shift ? "Shift+" : "";
    for (const Named_Key& named : NAMED_KEYS) {
        if (named.key == key.key) {
            return shift + named.name;
        }
    }
    if (const int function = key.key - KEY_SPECIAL - VIRTUAL_KEY_F1; function >= 0 && function < FUNCTION_KEY_NB) {
        return shift + "F" + std::to_string(function + 1);
    }
    if (key.key >= 1 && key.key <= CONTROL_LETTER_NB) {
        return shift + "Ctrl+" + static_cast<char>('A' + key.key - 1);
    }
    return shift + static_cast<char>(std::toupper(key.key));
}

std::string_view Context_Text(Key_Context context) {
    switch (context) {
        case Key_Context::Window:
            return "";
        case Key_Context::Class_Editor:
            return "class editor";
        case Key_Context::Tag_Panel:
            return "TAG panel";
        case Key_Context::Frames_Panel:
            return "frames panel";
        case Key_Context::Marker_Panel:
            return "marker panel";
        case Key_Context::Histogram_Panel:
            return "histogram panel";
    }
    return "";
}

std::string Spoken_Text(std::string_view text) {
    std::string spoken(text);
    std::erase(spoken, '&');
    if (spoken.ends_with("...")) {
        spoken.resize(spoken.size() - 3);
    }
    return spoken;
}

std::string Menu_Text(std::string_view text) {
    std::string marked;
    for (const char unit : text) {
        marked += unit == '&' ? "&&" : std::string(1, unit);
    }
    return marked;
}

void Command_Table::Run(const Command_Call& call) const {
    Record_Of(call.command).run(parts, call.number);
}

bool Command_Table::Is_Checked(Command command) const {
    const Command_Record& record = Record_Of(command);
    return record.is_checked != nullptr && record.is_checked(parts);
}

bool Command_Table::Is_Enabled(Command command) const {
    const Command_Record& record = Record_Of(command);
    return record.detail == nullptr || record.detail(parts).has_value();
}

std::string Command_Table::Text(Command command) const {
    const Command_Record& record = Record_Of(command);
    std::string text = record.text;
    const std::optional<std::string> detail = record.detail != nullptr ? record.detail(parts) : std::nullopt;
    if (detail && !detail->empty()) {
        text += ": " + Menu_Text(*detail);
    }
    return text;
}

std::vector<Numbered_Entry> Command_Table::Entries(Command command) const {
    const Command_Record& record = Record_Of(command);
    return record.entries != nullptr ? record.entries(parts) : std::vector<Numbered_Entry>();
}

}  // namespace workbench
