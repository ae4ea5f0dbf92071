#include "workbench/commands.h"

#include <gtest/gtest.h>

#include <map>
#include <set>

#include "host/kit_widgets.h"

namespace {

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

TEST(Commands, other_keys_mean_nothing) {
    for (const int key : {0, -1, -300, 0x21, 0x7FFF, KEY_ENTER, KEY_TAB, KEY_BACKSPACE, 0xE9}) {
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
