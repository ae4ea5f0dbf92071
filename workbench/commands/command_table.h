/** The table of all commands: menus, keys, the list of keys and whoever carries a command out read it. No window. */
#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/commands/command.h"
#include "workbench/commands/command_actions.h"

namespace workbench {

/** Where a key means what it means. */
enum class Key_Context {
    Window,        ///< wherever the keyboard is, where no other context has the key
    Class_Editor,  ///< while the diagram of the class trees is shown
    Tag_Panel,     ///< while the keyboard is at this part of the window
    Frames_Panel,
    Marker_Panel,
    Histogram_Panel,
};

/** One of the keys of a command. */
struct Command_Key {
    int key = 0;  ///< code as panels take it (KEY_*), letters small; 0: none
    Key_Context context = Key_Context::Window;
    bool is_shift = false;  ///< counts with Shift held only; others do not look at Shift
};

enum class Menu { File, Edit, Tag, View, Image, Tools, Propagate, Segment, Analyze, Database, Help, None };
inline constexpr std::array<const char*, 11> MENU_TITLES = {
    "&File", "&Edit", "&TAG", "&View", "&Image", "Too&ls", "&Propagate", "&Segment", "&Analyze", "&Database", "&Help"};

inline constexpr std::size_t COMMAND_KEY_MAX = 4;

/** Everything about one command. */
struct Command_Record {
    Command command;
    const char* name;  ///< in logs; never changes
    Menu menu;
    const char* text;  ///< of its menu entry, UTF-8, with the mark of its letter; empty: it has no lasting entry
    Command_Key keys[COMMAND_KEY_MAX];  // the first one of the window stands in the menu
    void (*run)(const Command_Parts& on, int number);
    /** Null: never. */
    bool (*is_checked)(const Command_Parts& of) = nullptr;
    /** What the entry's text adds about the next call, or no value while there is nothing to do: then the entry is
     * grey. Null: it adds nothing and is never grey. */
    std::optional<std::string> (*detail)(const Command_Parts& of) = nullptr;
    /** Of a numbered command: its entries now, which follow those of its menu. Null: it is not numbered, or has none.
     */
    std::vector<Numbered_Entry> (*entries)(const Command_Parts& of) = nullptr;
    int key_nb = 1;               ///< of a numbered command: so many keys from its first one on pick the numbers
    bool is_group_begin = false;  ///< a line parts it from the entry before it
};

/** Its calls say which of several they mean. */
constexpr bool Is_Numbered(const Command_Record& record) {
    return record.entries != nullptr || record.key_nb > 1;
}

/** All records, in the order of Command. */
std::span<const Command_Record> Command_Records();
const Command_Record& Record_Of(Command command);

/** What a key means in a context; those that it does not know there it looks for in the window.
 *  @param key KEY_*, letters of both cases @param is_shift Shift is held @return no value: the key means nothing */
std::optional<Command_Call> Command_Of_Key(int key, Key_Context context = Key_Context::Window, bool is_shift = false);
/** The same in this context alone. */
std::optional<Command_Call> Command_In_Context(int key, Key_Context context, bool is_shift = false);

/** "Ctrl+O", "Page Up", "F3", "N". */
std::string Key_Text(const Command_Key& key);
/** Where a key of a context counts, as it is told: "class editor"; empty for the window. */
std::string_view Context_Text(Key_Context context);

/** A menu's text as it is read aloud: without the mark of its letter, and without the dots of a question. */
std::string Spoken_Text(std::string_view text);

/** A text from elsewhere, for a menu: what would mark a letter is doubled. */
std::string Menu_Text(std::string_view text);

/** Carries commands out and tells how they stand. */
class Command_Table {
  public:
    /** @param command_parts outlive the table */
    explicit Command_Table(const Command_Parts& command_parts) : parts(command_parts) {}

    /** Carries it out, also while its entry is grey: it then says why it does nothing. */
    void Run(const Command_Call& call) const;
    bool Is_Checked(Command command) const;
    bool Is_Enabled(Command command) const;
    /** The entry's text now, UTF-8, marks of letters as in the record, without the key. */
    std::string Text(Command command) const;
    /** Of a numbered command, texts with marks of letters. */
    std::vector<Numbered_Entry> Entries(Command command) const;

  private:
    Command_Parts parts;
};

}  // namespace workbench
