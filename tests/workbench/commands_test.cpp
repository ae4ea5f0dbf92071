#include "workbench/commands/command_table.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <fstream>
#include <iterator>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <tuple>
#include <utility>

#include "host/kit_widgets.h"
#include "tests/workbench/command_double.h"
#include "workbench/commands/keys_text.h"

using namespace workbench;

namespace {

constexpr int KEY_CODES = 0x900;  // all that a key can be lie below
constexpr Key_Context CONTEXTS[] = {Key_Context::Window,       Key_Context::Class_Editor, Key_Context::Tag_Panel,
                                    Key_Context::Frames_Panel, Key_Context::Marker_Panel, Key_Context::Histogram_Panel};

int Control(char letter) {
    return letter - 'A' + 1;
}
int Function_Key(int number) {
    return KEY_SPECIAL + 0x70 + number - 1;
}

std::optional<Command> Of_Key(int key, Key_Context context = Key_Context::Window, bool is_shift = false) {
    const auto call = Command_Of_Key(key, context, is_shift);
    return call ? std::optional(call->command) : std::nullopt;
}

/** What a command asks the parts for: one thing. */
std::string Asked(Command_Double& parts, const Command_Call& call) {
    parts.asked.clear();
    Command_Table(parts.Parts()).Run(call);
    EXPECT_EQ(parts.asked.size(), 1U) << Record_Of(call.command).name;
    return parts.asked.empty() ? "" : parts.asked.front();
}

TEST(Command_Table, letters_count_in_both_cases_and_control_letters_are_others) {
    EXPECT_EQ(Of_Key('n'), Command::Tag_Next);
    EXPECT_EQ(Of_Key('N'), Command::Tag_Next);
    EXPECT_EQ(Of_Key(Control('S')), Command::Save_Labels);
    EXPECT_EQ(Of_Key('s'), Command::Tag_Select);
    EXPECT_EQ(Of_Key(Control('Z')), Command::Undo);
}

TEST(Command_Table, digits_pick_tags) {
    for (int digit = 0; digit <= 9; ++digit) {
        EXPECT_EQ(Command_Of_Key('0' + digit), (Command_Call{Command::Tag_By_Number, digit}));
    }
    Command_Double parts;
    EXPECT_EQ(Asked(parts, {Command::Tag_By_Number, 7}), "Tag_Pick 7");
}

TEST(Command_Table, special_keys_step_slices) {
    EXPECT_EQ(Of_Key(KEY_PAGE_UP), Command::Slice_Next);
    EXPECT_EQ(Of_Key(KEY_DOWN), Command::Slice_Previous);
    EXPECT_EQ(Of_Key(KEY_ESCAPE), Command::Banner_Close);
    EXPECT_EQ(Of_Key(Function_Key(3)), Command::Database);
}

TEST(Command_Table, other_keys_mean_nothing) {
    for (const int key : {0, -1, -300, 0x7F, 0x7FFF, KEY_INSERT, 0xE9}) {
        EXPECT_EQ(Of_Key(key), std::nullopt) << key;
    }
}

TEST(Command_Table, shift_makes_another_key_only_where_a_command_asks_for_it) {
    EXPECT_EQ(Of_Key(KEY_TAB), Command::Focus_Next);
    EXPECT_EQ(Of_Key(KEY_TAB, Key_Context::Window, true), Command::Focus_Previous);
    EXPECT_EQ(Of_Key('*', Key_Context::Window, true), Command::Zoom_In);
}

TEST(Command_Table, a_part_of_the_window_has_keys_of_its_own_before_those_of_the_window) {
    EXPECT_EQ(Of_Key(' ', Key_Context::Tag_Panel), Command::Tag_Enable);
    EXPECT_EQ(Of_Key(' '), Command::Cursor_Paint);
    EXPECT_EQ(Of_Key(Control('Z'), Key_Context::Class_Editor), Command::Class_Undo);
    EXPECT_EQ(Of_Key(Function_Key(2), Key_Context::Marker_Panel), Command::Marker_Rename);
    EXPECT_EQ(Of_Key('n', Key_Context::Marker_Panel), Command::Tag_Next);
    EXPECT_FALSE(Command_In_Context('n', Key_Context::Marker_Panel));
}

TEST(Command_Table, every_command_has_one_record_of_a_name_of_its_own) {
    std::set<std::string> names;
    ASSERT_EQ(Command_Records().size(), static_cast<std::size_t>(COMMAND_NB));
    for (int at = 0; at < COMMAND_NB; ++at) {
        const Command_Record& record = Record_Of(static_cast<Command>(at));
        EXPECT_EQ(static_cast<int>(record.command), at);
        EXPECT_TRUE(names.insert(record.name).second) << record.name;
    }
}

TEST(Command_Table, every_command_is_carried_out_by_one_handler_of_its_own) {
    Command_Double parts;
    std::map<std::string, std::string> owner;
    for (const Command_Record& record : Command_Records()) {
        const std::string asked = Asked(parts, {record.command, 0});
        const auto [other, is_new] = owner.emplace(asked, record.name);
        // Number 0 of the numbered ones is no step.
        EXPECT_TRUE(is_new) << record.name << " and " << other->second << " both ask for " << asked;
    }
    EXPECT_EQ(owner["Slice_Step 1"], "slice_next");
    EXPECT_EQ(owner["Class_Undo_Or_Redo 1"], "class_redo");
}

TEST(Command_Table, switches_turn_off_what_is_on) {
    struct Switch {
        Command command;
        const char* question;
        const char* action;
    };
    constexpr Switch switches[] = {
        {Command::Brush_In_Band, "Is_Band_Only", "Band_Only_Set"},
        {Command::Brush_Ball, "Is_Ball", "Ball_Set"},
        {Command::Brush_Mm, "Is_Brush_Mm", "Brush_Mm_Set"},
        {Command::Fill_In_Space, "Is_Fill_In_Space", "Fill_In_Space_Set"},
        {Command::Fill_Corners, "Is_Fill_Corners", "Fill_Corners_Set"},
        {Command::Fill_By_Tolerance, "Is_Fill_By_Tolerance", "Fill_By_Tolerance_Set"},
        {Command::Threshold_Mode, "Is_Threshold_Mode", "Threshold_Mode_Set"},
        {Command::Overlay, "Is_Overlay", "Overlay_Set"},
        {Command::Range_Overlay, "Is_Range_Overlay", "Range_Overlay_Set"},
        {Command::Trace_View, "Is_Trace", "Trace_Show"},
        {Command::Theme, "Is_Light", "Theme_Set"},
        {Command::Cursor_Show, "Is_Cursor", "Cursor_Set"},
        {Command::Cursor_Pen, "Is_Pen_Down", "Cursor_Pen_Set"},
        {Command::Bands_Preview, "Is_Bands_Preview", "Bands_Preview_Set"},
        {Command::Histogram_Of_Tag, "Is_Histogram_Of_Tag", "Histogram_Of_Tag_Set"},
        {Command::Histogram_Smoothed, "Is_Histogram_Smoothed", "Histogram_Smoothed_Set"},
        {Command::Background_Leave_Out, "Is_Background_Left_Out", "Background_Leave_Out"},
        {Command::Wheel_Turned, "Is_Wheel_Turned", "Wheel_Turned_Set"},
        {Command::Database, "Is_Database", "Database_Show"},
        {Command::Database_Edit, "Is_Database_Editor", "Database_Editor_Set"},
    };
    for (const Switch& one : switches) {
        Command_Double parts;
        const Command_Table table(parts.Parts());
        EXPECT_FALSE(table.Is_Checked(one.command)) << one.action;
        EXPECT_EQ(Asked(parts, {one.command, 0}), std::string(one.action) + " 1");
        parts.is_set[one.question] = true;
        EXPECT_TRUE(table.Is_Checked(one.command)) << one.action;
        EXPECT_EQ(Asked(parts, {one.command, 0}), std::string(one.action) + " 0");
    }
}

TEST(Command_Table, a_tool_that_is_chosen_again_gives_way_to_the_brush) {
    Command_Double parts;
    EXPECT_EQ(Asked(parts, {Command::Marker_Mode, 0}), "Tool_Choose 1");
    parts.tool_now = Tool_Kind::Markers;
    EXPECT_EQ(Asked(parts, {Command::Marker_Mode, 0}), "Tool_Choose 0");
    EXPECT_EQ(Asked(parts, {Command::Tool_Brush, 0}), "Tool_Choose 0");
}

TEST(Command_Table, marks_follow_the_state) {
    Command_Double parts;
    const Command_Table table(parts.Parts());
    const auto marked = [&] {
        std::string names;
        for (const Command_Record& record : Command_Records()) {
            names += table.Is_Checked(record.command) ? std::string(record.name) + " " : "";
        }
        return names;
    };
    EXPECT_EQ(marked(), "tool_brush function_copy scope_volume histogram_all ");
    parts.frames_now = Histogram_Frames::Checked;
    parts.kind_now = Propagation_Kind::Grow;
    parts.is_set["Has_Tag_Mark 1"] = true;
    parts.is_set["Is_Light"] = true;
    parts.scope_now = Edit_Scope::Shown_Slice;
    parts.only_inside = "Fluid";
    parts.tool_now = Tool_Kind::Markers;
    EXPECT_EQ(marked(), "tag_select theme marker_mode function_grow scope_slice only_inside ");
    EXPECT_EQ(table.Text(Command::Only_Inside), "Onl&y inside: Fluid");
    parts.only_inside.reset();
    EXPECT_EQ(table.Text(Command::Only_Inside), "Onl&y inside: all TAGs");
}

TEST(Command_Table, entries_tell_what_the_next_step_is_and_are_grey_without_one) {
    Command_Double parts;
    const Command_Table table(parts.Parts());
    EXPECT_FALSE(table.Is_Enabled(Command::Undo));
    EXPECT_EQ(table.Text(Command::Undo), "&Undo");
    parts.undo_title = "stroke";
    parts.class_redo_title = "Q&A moved";
    EXPECT_TRUE(table.Is_Enabled(Command::Undo));
    EXPECT_FALSE(table.Is_Enabled(Command::Redo));
    EXPECT_EQ(table.Text(Command::Undo), "&Undo: stroke");
    EXPECT_EQ(table.Text(Command::Class_Redo), "&Redo in the class trees: Q&&A moved");
    EXPECT_TRUE(table.Is_Enabled(Command::Quit));
}

TEST(Command_Table, every_key_is_unique_in_its_context) {
    std::map<std::tuple<int, Key_Context, bool>, std::string> owner;
    for (const Command_Record& record : Command_Records()) {
        for (const Command_Key& key : record.keys) {
            for (int number = 0; key.key != 0 && number < record.key_nb; ++number) {
                const auto [other, is_new] =
                    owner.emplace(std::tuple(key.key + number, key.context, key.is_shift), record.name);
                EXPECT_TRUE(is_new) << Key_Text(key) << ": " << other->second << " and " << record.name;
            }
        }
    }
    EXPECT_GT(owner.size(), 70U);
}

TEST(Command_Table, every_key_leads_to_its_command) {
    for (const Command_Record& record : Command_Records()) {
        for (const Command_Key& key : record.keys) {
            if (key.key != 0) {
                EXPECT_EQ(Of_Key(key.key, key.context, key.is_shift), record.command) << record.name;
            }
        }
    }
}

TEST(Command_Table, keys_have_names_that_differ) {
    std::map<std::string, int> seen;
    for (const Command_Record& record : Command_Records()) {
        for (const Command_Key& key : record.keys) {
            if (key.key != 0) {
                const auto [other, is_new] = seen.emplace(Key_Text(key), key.key);
                EXPECT_TRUE(is_new || other->second == key.key) << Key_Text(key);
            }
        }
    }
    EXPECT_EQ(seen.count("Ctrl+O"), 1U);
    EXPECT_EQ(seen.count("Page Down"), 1U);
    EXPECT_EQ(seen.count("F11"), 1U);
    EXPECT_EQ(seen.count("Shift+Tab"), 1U);
    EXPECT_EQ(seen.count("N"), 1U);
}

/** What the menu system goes to when a letter is pressed; 0: none. */
char Mnemonic(const std::string& text) {
    const std::size_t mark = text.find('&');
    return mark == std::string::npos || mark + 1 >= text.size()
               ? '\0'
               : static_cast<char>(std::tolower(static_cast<unsigned char>(text[mark + 1])));
}

TEST(Command_Table, every_command_stands_in_a_menu_and_is_reached_by_letters_that_do_not_clash) {
    std::map<std::pair<Menu, char>, std::string> seen;
    for (const Command_Record& record : Command_Records()) {
        if (record.menu == Menu::None || Is_Numbered(record)) {
            continue;
        }
        const char letter = Mnemonic(record.text);
        EXPECT_NE(letter, '\0') << record.name;
        const auto [other, is_new] = seen.emplace(std::pair(record.menu, letter), record.name);
        EXPECT_TRUE(is_new) << record.name << " and " << other->second;
    }
    std::set<char> titles;
    for (const char* title : MENU_TITLES) {
        EXPECT_TRUE(titles.insert(Mnemonic(title)).second) << title;
    }
    EXPECT_GT(seen.size(), 90U);
}

TEST(Command_Table, what_stands_in_no_menu_has_a_key) {
    std::string names;
    for (const Command_Record& record : Command_Records()) {
        if (record.menu == Menu::None) {
            names += std::string(record.name) + " ";
            EXPECT_NE(record.keys[0].key, 0) << record.name;
        } else {
            EXPECT_TRUE(record.text[0] != 0 || record.entries != nullptr) << record.name;
        }
    }
    EXPECT_EQ(names, "tag_by_number banner_close report_state ");
}

TEST(Command_Table, no_other_key_does_anything) {
    std::set<std::tuple<int, Key_Context>> known;
    for (const Command_Record& record : Command_Records()) {
        for (const Command_Key& key : record.keys) {
            for (int number = 0; key.key != 0 && number < record.key_nb; ++number) {
                known.emplace(key.key + number, key.context);
            }
        }
    }
    for (const Key_Context context : CONTEXTS) {
        for (int key = -1; key < KEY_CODES; ++key) {
            const bool is_letter = key >= 'A' && key <= 'Z';
            EXPECT_EQ(Command_In_Context(key, context).has_value(),
                      known.contains({is_letter ? key - 'A' + 'a' : key, context}))
                << key;
        }
    }
}

TEST(Command_Table, the_list_of_keys_names_every_menu_entry) {
    const auto entries = std::ranges::count_if(Command_Records(), [](const Command_Record& record) {
        return record.menu != Menu::None && !Is_Numbered(record);
    });
    EXPECT_EQ(Key_Lines().size(), static_cast<std::size_t>(entries));
    for (const Key_Line& line : Key_Lines()) {
        EXPECT_EQ(line.what.find('&'), std::string::npos);
        EXPECT_NE(Keys_Text().find(line.what), std::string::npos) << line.what;
    }
}

TEST(Command_Table, the_document_of_keys_is_up_to_date) {
    std::ifstream file(KEYS_DOCUMENT, std::ios::binary);
    ASSERT_TRUE(file) << KEYS_DOCUMENT;
    const std::string text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
    if (text != Keys_Document()) {
        std::ofstream("keys.md", std::ios::binary) << Keys_Document();
        ADD_FAILURE()
            << "docs/keys.md does not agree with the table of commands; take the keys.md that was written here";
    }
}

}  // namespace
