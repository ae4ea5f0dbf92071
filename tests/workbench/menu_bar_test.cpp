#include "workbench/menu_bar.h"

#include <gtest/gtest.h>

#include <map>
#include <string>

#include "host/kit_widgets.h"
#include "tests/workbench/command_double.h"
#include "workbench/global_keys.h"
#include "workbench/wide_text.h"

using namespace workbench;

namespace {

/** The menu bar, and what stands in it. */
struct Menu_Bar_Scene {
    Menu_Bar_Scene() : bar(Menu_Make()) {}
    ~Menu_Bar_Scene() { ::DestroyMenu(bar); }
    Menu_Bar_Scene(const Menu_Bar_Scene&) = delete;
    Menu_Bar_Scene& operator=(const Menu_Bar_Scene&) = delete;

    void Refresh() { Menu_Refresh(bar, Command_Table(parts.Parts())); }
    HMENU Popup(Menu menu) const { return ::GetSubMenu(bar, static_cast<int>(menu)); }
    static std::string Text_At(HMENU menu, int at) {
        wchar_t text[200] = {};
        ::GetMenuStringW(menu, static_cast<UINT>(at), text, 200, MF_BYPOSITION);
        return Utf8_Of_Wide(text);
    }
    /** Number of the entry of that text, which may be left unfinished; 0: there is none. */
    UINT Id_Of(const std::string& text) const {
        for (int of = 0; of < ::GetMenuItemCount(bar); ++of) {
            const HMENU popup = ::GetSubMenu(bar, of);
            for (int at = 0; at < ::GetMenuItemCount(popup); ++at) {
                if (Text_At(popup, at).starts_with(text)) {
                    return ::GetMenuItemID(popup, at);
                }
            }
        }
        return 0;
    }
    bool Has_State(const std::string& text, UINT state) const {
        return (::GetMenuState(bar, Id_Of(text), MF_BYCOMMAND) & state) != 0;
    }

    Command_Double parts;
    HMENU bar;
};

TEST(Menu_Bar, entries_stand_as_the_table_has_them) {
    const Menu_Bar_Scene scene;
    std::map<UINT, std::string> seen;
    for (int of = 0; of < ::GetMenuItemCount(scene.bar); ++of) {
        EXPECT_EQ(Menu_Bar_Scene::Text_At(scene.bar, of), MENU_TITLES[static_cast<std::size_t>(of)]);
        const HMENU popup = ::GetSubMenu(scene.bar, of);
        for (int at = 0; at < ::GetMenuItemCount(popup); ++at) {
            if (const UINT id = ::GetMenuItemID(popup, at); id != 0) {
                EXPECT_TRUE(seen.emplace(id, Menu_Bar_Scene::Text_At(popup, at)).second) << id;
            }
        }
    }
    std::size_t wanted = 0;
    for (const Command_Record& record : Command_Records()) {
        if (record.text[0] == 0) {
            continue;
        }
        ++wanted;
        const UINT id = scene.Id_Of(record.text);
        EXPECT_EQ(Command_Of_Menu(id), (Command_Call{record.command, 0})) << record.name;
    }
    EXPECT_EQ(seen.size(), wanted);
    EXPECT_EQ(seen[scene.Id_Of("&Open image...")], "&Open image...\tCtrl+O");
    EXPECT_EQ(seen[scene.Id_Of("Previous panel")], "Previous panel &by keyboard\tShift+Tab");
    EXPECT_EQ(seen[scene.Id_Of("S&moothed")], "S&moothed pixels (3 \xC3\x97 3)");
}

TEST(Menu_Bar, numbers_of_the_systems_buttons_are_no_commands) {
    for (const UINT id : {0U, 1U, 2U, 99U, 100U + COMMAND_NB, 0xFFFFFFFFU}) {
        EXPECT_EQ(Command_Of_Menu(id), std::nullopt) << id;
    }
}

TEST(Menu_Bar, marks_and_texts_follow_the_state) {
    Menu_Bar_Scene scene;
    scene.Refresh();
    EXPECT_TRUE(scene.Has_State("&Undo", MF_GRAYED));
    EXPECT_FALSE(scene.Has_State("&Trace", MF_CHECKED));
    scene.parts.undo_title = "stroke";
    scene.parts.is_set["Is_Trace"] = true;
    scene.Refresh();
    EXPECT_FALSE(scene.Has_State("&Undo", MF_GRAYED));
    EXPECT_NE(scene.Id_Of("&Undo: stroke\tCtrl+Z"), 0U);
    EXPECT_TRUE(scene.Has_State("&Trace", MF_CHECKED));
    scene.parts.is_set.clear();
    scene.Refresh();
    EXPECT_FALSE(scene.Has_State("&Trace", MF_CHECKED));
}

TEST(Menu_Bar, numbered_entries_follow_their_menu_after_a_line_and_go_again) {
    Menu_Bar_Scene scene;
    const HMENU file = scene.Popup(Menu::File);
    const int lasting = ::GetMenuItemCount(file);
    scene.parts.recent = {{"&1  a.nii", false}, {"&2  b.nii", true}};
    for (int time = 0; time < 2; ++time) {
        scene.Refresh();
        ASSERT_EQ(::GetMenuItemCount(file), lasting + 3);
        EXPECT_EQ(Menu_Bar_Scene::Text_At(file, lasting), "");
        EXPECT_EQ(Command_Of_Menu(::GetMenuItemID(file, lasting + 2)), (Command_Call{Command::Recent, 1}));
        EXPECT_TRUE(scene.Has_State("&2  b.nii", MF_CHECKED));
        EXPECT_FALSE(scene.Has_State("&1  a.nii", MF_CHECKED));
    }
    EXPECT_EQ(scene.Id_Of("&1  brain"), 0U);
    scene.parts.recent.clear();
    scene.Refresh();
    EXPECT_EQ(::GetMenuItemCount(file), lasting);
}

TEST(Global_Keys, function_keys_and_letters_with_ctrl_work_in_every_window) {
    const auto command = [](WPARAM key, bool is_control) {
        return Command_Of_Key(Global_Key_Code(key, is_control, false, true))->command;
    };
    EXPECT_EQ(command('Q', true), Command::Quit);
    EXPECT_EQ(command('S', true), Command::Save_Labels);
    EXPECT_EQ(command(VK_F4, false), Command::Peak_Analysis);
    EXPECT_EQ(command(VK_F1, false), Command::Keys_Help);
    EXPECT_EQ(command(VK_F3, false), Command::Database);
    EXPECT_EQ(command('E', true), Command::Export_Histogram);
    EXPECT_EQ(Global_Key_Code(VK_F4, false, true, false), 0) << "Alt+F4 closes";
    EXPECT_EQ(Global_Key_Code(VK_F10, false, false, false), 0) << "the menu";
    EXPECT_EQ(Global_Key_Code('S', false, false, false), 0);
    for (const char own : {'A', 'C', 'V', 'X', 'H', 'I', 'M'}) {
        EXPECT_EQ(Global_Key_Code(static_cast<WPARAM>(own), true, false, false), 0) << own;
    }
    EXPECT_EQ(Command_Of_Key(Global_Key_Code('Z', true, false, false))->command, Command::Undo);
    EXPECT_EQ(Global_Key_Code('Z', true, false, true), 0) << "a field undoes by itself";
}

/** A window beside another one that stands for the main window, and what is done with its messages. */
struct Other_Window {
    explicit Other_Window(const wchar_t* of_class)
        : main_window(::CreateWindowExW(0, L"STATIC", L"", WS_POPUP, 0, 0, 10, 10, nullptr, nullptr, nullptr, nullptr)),
          other(::CreateWindowExW(0, of_class, L"", WS_POPUP, 0, 0, 10, 10, main_window, nullptr, nullptr, nullptr)) {}
    ~Other_Window() { ::DestroyWindow(main_window); }
    Other_Window(const Other_Window&) = delete;
    Other_Window& operator=(const Other_Window&) = delete;

    /** @return the key that was taken; 0: none, and the message goes on */
    int Taken(UINT message, WPARAM key, bool is_known = true) const {
        int taken = 0;
        const MSG told = {other, message, key, 0, 0, {}};
        const bool is_done = Global_Key_Dispatch(told, main_window, [&](int code) {
            taken = code;
            return is_known;
        });
        return is_done ? taken : 0;
    }

    HWND main_window;
    HWND other;
};

TEST(Global_Keys, characters_count_in_a_window_that_is_no_field) {
    const Other_Window window(L"STATIC");
    EXPECT_EQ(window.Taken(WM_CHAR, 'n'), 'n');
    EXPECT_EQ(window.Taken(WM_CHAR, ' '), 0);
    EXPECT_EQ(window.Taken(WM_CHAR, '\r'), 0);
    EXPECT_EQ(window.Taken(WM_KEYDOWN, VK_F3), KEY_SPECIAL + VK_F3);
    EXPECT_EQ(window.Taken(WM_KEYDOWN, VK_UP), 0) << "the window's own";
    EXPECT_EQ(window.Taken(WM_CHAR, 'q', false), 0) << "a key of no command goes on";
    const Other_Window field(L"EDIT");
    EXPECT_EQ(field.Taken(WM_CHAR, 'n'), 0);
    EXPECT_EQ(field.Taken(WM_KEYDOWN, VK_F3), KEY_SPECIAL + VK_F3);
}

}  // namespace
