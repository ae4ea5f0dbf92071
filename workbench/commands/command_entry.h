/** How the records of commands are written; only for the tables of records. */
#pragma once

#include <initializer_list>

#include "host/kit_widgets.h"
#include "workbench/commands/command_table.h"

namespace workbench::records {

using Parts = Command_Parts;
using enum Key_Context;

inline constexpr int VIRTUAL_KEY_F1 = 0x70;  // of the window system

constexpr int Control(char letter) {
    return letter - 'A' + 1;
}
constexpr int Function_Key(int number) {
    return KEY_SPECIAL + VIRTUAL_KEY_F1 + number - 1;
}

/** What only some records say. */
struct More {
    bool (*is_checked)(const Parts& of) = nullptr;
    std::optional<std::string> (*detail)(const Parts& of) = nullptr;
    std::vector<Numbered_Entry> (*entries)(const Parts& of) = nullptr;
    int key_nb = 1;
    bool is_group_begin = false;
};

constexpr Command_Record Entry(Command command, const char* name, Menu menu, const char* text,
                               std::initializer_list<Command_Key> keys, void (*run)(const Parts& on, int number),
                               const More& more = {}) {
    Command_Record record = {command,
                             name,
                             menu,
                             text,
                             {},
                             run,
                             more.is_checked,
                             more.detail,
                             more.entries,
                             more.key_nb,
                             more.is_group_begin};
    std::size_t at = 0;
    for (const Command_Key& key : keys) {
        record.keys[at++] = key;
    }
    return record;
}

}  // namespace workbench::records
