#include "workbench/menu_bar.h"

#include <string>

#include "workbench/wide_text.h"

namespace workbench {

namespace {

// An entry's number: the command in the lower nine bits, which of them in the others. The first ones are those of the
// system's buttons (IDOK and so on).
constexpr UINT FIRST_ID = 100;
constexpr UINT NUMBER_STEP = 0x200;
constexpr int NUMBER_MAX = 0x7D;  // the last one is the line before the entries
static_assert(FIRST_ID + COMMAND_NB <= NUMBER_STEP, "the numbers of menu entries run into each other");

UINT Menu_Id(Command command, int number = 0) {
    return FIRST_ID + static_cast<UINT>(command) + static_cast<UINT>(number) * NUMBER_STEP;
}

std::wstring Entry_Text(const Command_Record& record, const std::string& text) {
    std::wstring shown = Wide_Of_Utf8(text);
    for (const Command_Key& key : record.keys) {
        if (key.key != 0 && key.context == Key_Context::Window) {
            shown += L"\t" + Wide_Of_Utf8(Key_Text(key));
            break;
        }
    }
    return shown;
}

HMENU Popup_Make(Menu menu) {
    const HMENU popup = ::CreatePopupMenu();
    for (const Command_Record& record : Command_Records()) {
        if (record.menu == menu && record.text[0] != 0) {
            if (record.is_group_begin) {
                ::AppendMenuW(popup, MF_SEPARATOR, 0, nullptr);
            }
            ::AppendMenuW(popup, MF_STRING, Menu_Id(record.command), Entry_Text(record, record.text).c_str());
        }
    }
    return popup;
}

void Entry_Refresh(HMENU menu, const Command_Record& record, const Command_Table& commands) {
    const UINT id = Menu_Id(record.command);
    if (record.detail != nullptr) {
        const bool is_enabled = commands.Is_Enabled(record.command);
        ::ModifyMenuW(menu, id, static_cast<UINT>(MF_BYCOMMAND | MF_STRING | (is_enabled ? MF_ENABLED : MF_GRAYED)), id,
                      Entry_Text(record, commands.Text(record.command)).c_str());
    }
    if (record.is_checked != nullptr) {
        const bool is_checked = commands.Is_Checked(record.command);
        ::CheckMenuItem(menu, id, static_cast<UINT>(MF_BYCOMMAND | (is_checked ? MF_CHECKED : MF_UNCHECKED)));
    }
}

/** Puts the entries of a numbered command at the end of its menu. */
void Numbered_Refresh(HMENU menu, Command command, const Command_Table& commands) {
    for (int number = 0; number <= NUMBER_MAX; ++number) {
        if (::RemoveMenu(menu, Menu_Id(command, number), MF_BYCOMMAND) == 0) {
            break;
        }
    }
    ::RemoveMenu(menu, Menu_Id(command, NUMBER_MAX), MF_BYCOMMAND);
    const std::vector<Numbered_Entry> entries = commands.Entries(command);
    if (entries.empty()) {
        return;
    }
    ::AppendMenuW(menu, MF_SEPARATOR, Menu_Id(command, NUMBER_MAX), nullptr);
    int number = 0;
    for (const Numbered_Entry& entry : entries) {
        if (number == NUMBER_MAX) {
            break;
        }
        ::AppendMenuW(menu, static_cast<UINT>(MF_STRING | (entry.is_checked ? MF_CHECKED : MF_UNCHECKED)),
                      Menu_Id(command, number++), Wide_Of_Utf8(entry.text).c_str());
    }
}

}  // namespace

HMENU Menu_Make() {
    const HMENU bar = ::CreateMenu();
    for (std::size_t at = 0; at < MENU_TITLES.size(); ++at) {
        const HMENU popup = Popup_Make(static_cast<Menu>(at));
        ::AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), Wide_Of_Utf8(MENU_TITLES[at]).c_str());
    }
    return bar;
}

void Menu_Refresh(HMENU menu, const Command_Table& commands) {
    std::optional<Menu> which;
    for (int at = 0; at < ::GetMenuItemCount(menu); ++at) {
        if (const HMENU popup = ::GetSubMenu(menu, at)) {
            Menu_Refresh(popup, commands);
        } else if (const auto call = Command_Of_Menu(::GetMenuItemID(menu, at)); call && call->number == 0) {
            const Command_Record& record = Record_Of(call->command);
            which = record.menu;
            if (record.text[0] != 0) {
                Entry_Refresh(menu, record, commands);
            }
        }
    }
    for (const Command_Record& record : Command_Records()) {
        if (record.entries != nullptr && record.menu == which) {
            Numbered_Refresh(menu, record.command, commands);
        }
    }
}

std::optional<Command_Call> Command_Of_Menu(UINT id) {
    if (id < FIRST_ID || id == static_cast<UINT>(-1)) {
        return std::nullopt;
    }
    const UINT command = (id - FIRST_ID) % NUMBER_STEP;
    if (command >= static_cast<UINT>(COMMAND_NB)) {
        return std::nullopt;
    }
    return Command_Call{static_cast<Command>(command), static_cast<int>((id - FIRST_ID) / NUMBER_STEP)};
}

}  // namespace workbench
