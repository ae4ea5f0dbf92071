#include "workbench/commands.h"

#include <gtest/gtest.h>

#include <cwctype>
#include <fstream>
#include <iterator>
#include <map>
#include <set>
#include <string>

#include "host/kit_widgets.h"
#include "workbench/global_keys.h"
#include "workbench/keys_text.h"

using namespace workbench;

namespace {

std::string Narrow(const std::wstring& text) {
    std::string narrow;
    for (const wchar_t unit : text) {
        narrow += static_cast<char>(unit);
    }
    return narrow;
}

TEST(Commands, letters_count_in_both_cases_and_control_letters_are_others) {
    EXPECT_EQ(Command_Of_Key('n'), Command::TAG_NEXT);
    EXPECT_EQ(Command_Of_Key('N'), Command::TAG_NEXT);
    EXPECT_EQ(Command_Of_Key('S' - 'A' + 1), Command::SAVE_LABELS);
    EXPECT_EQ(Command_Of_Key('s'), Command::TAG_SELECT);
    EXPECT_EQ(Command_Of_Key('Z' - 'A' + 1), Command::UNDO);
}

TEST(Commands, digits_pick_tags) {
    EXPECT_EQ(Command_Of_Key('0'), Command::TAG_DIGIT_0);
    EXPECT_EQ(static_cast<int>(Command_Of_Key('9')), static_cast<int>(Command::TAG_DIGIT_0) + 9);
}

TEST(Commands, special_keys_step_slices) {
    EXPECT_EQ(Command_Of_Key(KEY_PAGE_UP), Command::SLICE_NEXT);
    EXPECT_EQ(Command_Of_Key(KEY_DOWN), Command::SLICE_PREVIOUS);
    EXPECT_EQ(Command_Of_Key(KEY_ESCAPE), Command::CLOSE_BANNER);
}

TEST(Commands, function_keys_save_and_quit_work_in_every_window) {
    EXPECT_EQ(Command_Of_Key(Global_Key_Code('Q', true, false)), Command::QUIT);
    EXPECT_EQ(Command_Of_Key(Global_Key_Code('S', true, false)), Command::SAVE_LABELS);
    EXPECT_EQ(Command_Of_Key(Global_Key_Code(VK_F4, false, false)), Command::ANALYSIS_WINDOW);
    EXPECT_EQ(Command_Of_Key(Global_Key_Code(VK_F1, false, false)), Command::KEYS_HELP);
    EXPECT_EQ(Global_Key_Code(VK_F4, false, true), 0) << "Alt+F4 closes";
    EXPECT_EQ(Global_Key_Code(VK_F10, false, false), 0) << "the menu";
    EXPECT_EQ(Global_Key_Code('S', false, false), 0);
    EXPECT_EQ(Global_Key_Code('C', true, false), 0);
}

TEST(Commands, other_keys_mean_nothing) {
    for (const int key : {0, -1, -300, 0x21, 0x7FFF, KEY_INSERT, 0xE9}) {
        EXPECT_EQ(Command_Of_Key(key), Command::NONE) << key;
    }
}

/** Every command of the menu bar with its text. */
std::multimap<UINT, std::wstring> Menu_Commands(HMENU menu) {
    std::multimap<UINT, std::wstring> found;
    for (int at = 0; at < ::GetMenuItemCount(menu); ++at) {
        if (const HMENU popup = ::GetSubMenu(menu, at)) {
            found.merge(Menu_Commands(popup));
        } else if (const UINT id = ::GetMenuItemID(menu, at); id != 0) {
            wchar_t text[100] = {};
            ::GetMenuStringW(menu, static_cast<UINT>(at), text, 100, MF_BYPOSITION);
            found.emplace(id, text);
        }
    }
    return found;
}

TEST(Commands, the_menus_name_every_command_once) {
    const HMENU bar = Menu_Make();
    const auto commands = Menu_Commands(bar);
    std::set<UINT> seen;
    for (const auto& [id, text] : commands) {
        EXPECT_TRUE(seen.insert(id).second) << id;
        EXPECT_FALSE(text.empty());
    }
    for (int command = static_cast<int>(Command::OPEN); command <= static_cast<int>(Command::ABOUT); ++command) {
        EXPECT_EQ(seen.count(static_cast<UINT>(command)), 1U) << command;
    }
    ::DestroyMenu(bar);
}

/** What Windows goes to when Alt or, in an open menu, a letter is pressed; 0: none. */
wchar_t Mnemonic(const std::wstring& text) {
    const std::size_t mark = text.find(L'&');
    return mark == std::wstring::npos || mark + 1 >= text.size() ? L'\0'
                                                                 : static_cast<wchar_t>(std::towlower(text[mark + 1]));
}

/** Every entry of a menu and its sub-menus has a letter, and no two entries of one menu have the same. */
void Expect_Mnemonics(HMENU menu, const std::wstring& of) {
    std::map<wchar_t, std::wstring> seen;
    for (int at = 0; at < ::GetMenuItemCount(menu); ++at) {
        wchar_t text[100] = {};
        ::GetMenuStringW(menu, static_cast<UINT>(at), text, 100, MF_BYPOSITION);
        if (text[0] == 0) {
            continue;  // a line between entries
        }
        const wchar_t letter = Mnemonic(text);
        EXPECT_NE(letter, L'\0') << Narrow(of) << ": " << Narrow(text);
        const auto [clash, is_new] = seen.emplace(letter, text);
        EXPECT_TRUE(is_new) << Narrow(of) << ": " << Narrow(text) << " and " << Narrow(clash->second);
        if (const HMENU popup = ::GetSubMenu(menu, at)) {
            Expect_Mnemonics(popup, text);
        }
    }
}

TEST(Commands, every_command_is_reached_by_letters_that_do_not_clash) {
    const HMENU bar = Menu_Make();
    Expect_Mnemonics(bar, L"menu bar");
    ::DestroyMenu(bar);
}

TEST(Commands, no_key_stands_for_two_commands) {
    std::map<std::wstring, std::wstring> owner;
    for (const Key_Line& line : Key_Lines()) {
        std::wstring keys = line.keys;
        while (!keys.empty()) {
            const std::size_t end = keys.find(L", ");
            const std::wstring one = keys.substr(0, end);
            const auto [other, is_new] = owner.emplace(one, line.menu + L" " + line.what);
            // The class editor has its own history, on the same keys while it has the keyboard.
            EXPECT_TRUE(is_new || one == L"Ctrl+Z" || one == L"Ctrl+Y")
                << Narrow(one) << ": " << Narrow(other->second) << " and " << Narrow(line.what);
            keys.erase(0, end == std::wstring::npos ? keys.size() : end + 2);
        }
    }
    EXPECT_GT(owner.size(), 40U);
}

TEST(Commands, the_list_of_keys_names_every_menu_entry) {
    const HMENU bar = Menu_Make();
    EXPECT_EQ(Key_Lines().size(), Menu_Commands(bar).size());
    ::DestroyMenu(bar);
    for (const Key_Line& line : Key_Lines()) {
        EXPECT_EQ(line.what.find(L'&'), std::wstring::npos);
        EXPECT_NE(Keys_Text().find(line.what), std::wstring::npos) << Narrow(line.what);
    }
}

TEST(Commands, the_document_of_keys_is_up_to_date) {
    std::ifstream file(KEYS_DOCUMENT, std::ios::binary);
    ASSERT_TRUE(file) << KEYS_DOCUMENT;
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (text != Keys_Document()) {
        std::ofstream("keys.md", std::ios::binary) << Keys_Document();
        ADD_FAILURE() << "docs/keys.md does not agree with the menus; take the keys.md that was written here";
    }
}

TEST(Commands, what_a_key_does_stands_in_a_menu) {
    const HMENU bar = Menu_Make();
    const auto commands = Menu_Commands(bar);
    for (int key = 1; key < 0x900; ++key) {
        const Command command = Command_Of_Key(key);
        if (command == Command::NONE || command >= Command::TAG_DIGIT_0 || command == Command::CLOSE_BANNER ||
            command == Command::REPORT_STATE) {
            continue;
        }
        EXPECT_EQ(commands.count(static_cast<UINT>(command)), 1U) << key;
    }
    ::DestroyMenu(bar);
}

}  // namespace
