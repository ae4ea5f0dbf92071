// The module as a host loads it: exported operations across the DLL's border, its name at run time, its allocations,
// and what it and the widget library do with GDI.
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <utility>

#include "panels/tool_marker.h"
#include "panels/tool_tag.h"
#include "panels/version_export.h"
#include "tests/panels/label_scene.h"
#include "tests/support/gdi_recorder.h"
#include "tests/support/import_hook.h"

using testing::HasSubstr;

namespace {

constexpr const char* MODULE = "Kit_Panels.dll";
constexpr const char* WIDGETS = "Kit_Widgets.dll";
constexpr int NB = 20;        ///< all in view
constexpr int SCROLLED = 48;  ///< needs the slider

class Tag_Module : public Tag_Fixture {
  protected:
    void Lay_Out(int nb) {
        Define_Tags(nb);
        Boxs box = Place();
        box.style |= STYLE_SHOW_CHECK;
        panel.Flag(TAG_CHECK_SELECT | TAG_GREY_DISABLED);
        panel.Resize(&box);
        panel.Update(~0ULL);
        panel.Draw();
        model = Fresh_Model(box, nb);
    }
    Tool_Tag panel;
    Label_Model model;
};
class Marker_Module : public Marker_Fixture {};

using Version_Function = char* (*)(char*);

}  // namespace

// ---------------- version

TEST(Module_Version, names_the_module_file) {
    char version[] = "5.016b";
    EXPECT_STREQ(Get_Version_Quorel_Tools(version), "Kit_Panels.dll 5.0 (rev-16b)");
    EXPECT_STREQ(Get_Version_Quorel_Tools(nullptr), "Kit_Panels.dll 5.0 (rev-16b)");
    char other[] = "5.016c";
    EXPECT_EQ(Get_Version_Quorel_Tools(other), nullptr);
}

TEST(Module_Version, follows_the_name_that_the_file_has_now) {
    char path[MAX_PATH] = {};
    ::GetModuleFileNameA(::GetModuleHandleA(MODULE), path, MAX_PATH);
    const std::filesystem::path here(path);
    const std::string long_name(100, 'n');
    const struct {
        std::string file;
        std::string name;
    } cases[] = {{"Other Panels.v2.dll", "Other Panels.v2"}, {long_name + ".dll", long_name.substr(0, 79)}};
    for (const auto& one : cases) {
        const std::filesystem::path copy = here.parent_path() / one.file;
        std::filesystem::copy_file(here, copy, std::filesystem::copy_options::overwrite_existing);
        HMODULE module = ::LoadLibraryA(copy.string().c_str());
        ASSERT_NE(module, nullptr);
        const auto version = reinterpret_cast<Version_Function>(
            reinterpret_cast<void*>(::GetProcAddress(module, "Get_Version_Quorel_Tools")));
        ASSERT_NE(version, nullptr) << "exported by its plain name";
        EXPECT_EQ(version(nullptr), one.name + ".dll 5.0 (rev-16b)");
        ::FreeLibrary(module);
        std::filesystem::remove(copy);
    }
}

TEST(Module_Version, every_accepted_call_leaves_one_block_of_260_bytes) {
    static int blocks = 0;
    static int other = 0;
    const auto count = [](std::size_t nb, std::size_t size) -> void* {
        (nb * size == 260 ? blocks : other)++;
        return std::calloc(nb, size);
    };
    void* (*replacement)(std::size_t, std::size_t) = count;
    const Import_Hook hook(MODULE, "msvcrt.dll", "calloc", reinterpret_cast<void*>(replacement));
    ASSERT_TRUE(hook.Is_Set());
    static int freed = 0;
    void (*free_replacement)(void*) = [](void* memory) {
        freed++;
        std::free(memory);
    };
    const Import_Hook free_hook(MODULE, "msvcrt.dll", "free", reinterpret_cast<void*>(free_replacement));
    char wrong[] = "x";
    for (int i = 1; i <= 3; i++) {
        Get_Version_Quorel_Tools(nullptr);
        EXPECT_EQ(Get_Version_Quorel_Tools(wrong), nullptr);
        EXPECT_EQ(blocks, i);
    }
    EXPECT_EQ(freed, 0);
}

// ---------------- allocations

TEST_F(Tag_Module, every_allocation_of_the_module_may_fail_in_the_tag_panel) {
    Define_Tags(SCROLLED);
    const Label_Model shown = Fresh_Model(Place(), SCROLLED);
    int without_buttons = 0;
    const int failed = Fail_Each_Import_Allocation(MODULE, [&] {
        Tool_Tag one;
        Boxs box = Place();
        one.Resize(&box);
        one.Draw();
        without_buttons += Press_Label(one, shown, 2) == -1 ? 1 : 0;
        one.Leave();
        Open_Editor(one, shown, 3);
        Type(one, "Lung");
        one.Keyboard(KEY_ENTER);
        one.Update(~0ULL);
        Tool_Tag copy(one);
        one = copy;
        one.Scroll(1);
        one.Motion(HOVER);
        one.Leave();
    });
    EXPECT_EQ(failed, 2) << "the buttons and the label";
    EXPECT_EQ(without_buttons, 1);
}

TEST_F(Marker_Module, every_allocation_of_the_module_may_fail_in_the_marker_panel) {
    Define_Markers(SCROLLED);
    const Label_Model shown = Fresh_Model(Place(), SCROLLED);
    int without_buttons = 0;
    int reported = 0;
    const int failed = Fail_Each_Import_Allocation(MODULE, [&] {
        messages.Take();
        Tool_Marker one;
        Boxs box = Place();
        one.Resize(&box);
        one.Draw();
        without_buttons += Press_Label(one, shown, 2) == -1 ? 1 : 0;
        one.Leave();
        Open_Editor(one, shown, 3);
        Type(one, "nose");
        const int result = one.Keyboard(KEY_ENTER);
        for (const Panel_Message& message : messages.Take_Reports()) {
            EXPECT_EQ(message.level, 1);
            EXPECT_THAT(message.text, HasSubstr("(var=(*Marker_Label_Pt)[ID_Label_Cur])"));
            EXPECT_EQ(result, 0);
            reported++;
        }
        one.Update(~0ULL);
        Tool_Marker copy(one);
        one = copy;
        one.Scroll(1);
        one.Leave();
    });
    EXPECT_EQ(failed, 2);
    EXPECT_EQ(without_buttons, 1);
    EXPECT_EQ(reported, 1);
}

TEST_F(Tag_Module, every_allocation_of_the_widget_library_may_fail) {
    Define_Tags(SCROLLED);
    const Label_Model shown = Fresh_Model(Place(), SCROLLED);
    const int failed = Fail_Each_Import_Allocation(WIDGETS, [&] {
        Tool_Tag one;
        Boxs box = Place();
        one.Resize(&box);
        one.Draw();
        Press_Label(one, shown, 2);
        Open_Editor(one, shown, 3);
        Type(one, "L");
        one.Keyboard(KEY_ENTER);
        one.Update(~0ULL);
        one.Scroll(1);
        one.Leave();
    });
    EXPECT_GE(failed, SCROLLED) << "a picture for every button at least";
    Lay_Out(SCROLLED);
    EXPECT_EQ(Press_Label(panel, model, 2), 2) << "all is well afterwards";
}

// ---------------- GDI

TEST_F(Tag_Module, an_update_without_a_change_makes_no_call_into_the_drawing_system) {
    Lay_Out(NB);
    Import_Counter gdi(WIDGETS, "gdi32.dll");
    Import_Counter user(WIDGETS, "user32.dll");
    ASSERT_GT(gdi.Function_Nb(), 5);
    const Import_Counter own_gdi(MODULE, "gdi32.dll");
    for (const unsigned __int64 flags : {UPDATE_TAG_ENABLE | UPDATE_TAG_SELECT | UPDATE_TAG_LOCK | UPDATE_TAG_CUR |
                                             UPDATE_TAG_LABEL | UPDATE_TAG_TABLE,
                                         UPDATE_TAG_CUR, UPDATE_ALL}) {
        panel.Update(flags);
        EXPECT_EQ(gdi.Calls(), 0U) << gdi.Text();
        EXPECT_EQ(user.Calls(), 0U) << user.Text();
    }
    Variable_Set("$TAG_CUR", 5);
    panel.Update(UPDATE_TAG_CUR);
    EXPECT_GT(gdi.Calls(), 0U) << "the counter counts";
    EXPECT_EQ(own_gdi.Calls(), 0U) << "these panels draw by widgets only";
}

TEST_F(Tag_Module, a_change_of_the_current_tag_draws_no_caption) {
    Lay_Out(NB);
    Import_Counter gdi(WIDGETS, "gdi32.dll");
    Variable_Set("$TAG_CUR", 5);
    panel.Update(UPDATE_TAG_CUR);
    for (const char* text : {"ExtTextOutA", "ExtTextOutW", "TextOutA", "TextOutW", "DrawTextA", "GetTextExtentPoint32A",
                             "GetTextExtentPoint32W"}) {
        EXPECT_EQ(gdi.Calls(text), 0U) << text;
    }
    const std::uint64_t marks = gdi.Calls();
    gdi.Reset();
    panel.Draw();
    EXPECT_GT(gdi.Calls(), 0U);
    EXPECT_LE(marks, 2 * gdi.Calls());
}

TEST_F(Tag_Module, every_operation_gives_back_what_it_took_from_gdi) {
    Boxs box = Place();
    const std::pair<const char*, std::function<void()>> operations[] = {
        {"Resize", [&] { panel.Resize(&box); }},
        {"Height", [&] { panel.Height(3); }},
        {"Draw", [&] { panel.Draw(); }},
        {"Click", [&] { Press_Label(panel, model, 2); }},
        {"Click on the slider", [&] { Press(panel, model.host.x + 8, model.top + 4); }},
        {"Motion", [&] { Move(panel, model.grid_x + 5, model.top + 5); }},
        {"Motion with the thumb", [&] { Move(panel, model.host.x + 8, model.top + 50, LEFT_DRAG); }},
        {"Scroll", [&] { panel.Scroll(-1000); }},
        {"Click to edit", [&] { Open_Editor(panel, model, 3); }},
        {"Keyboard", [&] { panel.Keyboard('a'); }},
        {"Keyboard to the end", [&] { panel.Keyboard(KEY_ENTER); }},
        {"Update of marks",
         [&] {
             Variable_Set("$TAG_CUR", 3);
             panel.Update(UPDATE_TAG_CUR);
         }},
        {"Update of greying",
         [&] {
             Flags("$TAG_ENABLE")[2] ^= 1U;
             panel.Update(UPDATE_TAG_ENABLE);
         }},
        {"Update of colours",
         [&] {
             Set_Color(2, Color_Of(2) ^ 0x101010U);
             panel.Update(UPDATE_TAG_TABLE);
         }},
        {"Leave", [&] { panel.Leave(); }},
    };
    for (int round = 0; round < 2; round++) {
        Lay_Out(SCROLLED);
        const Gdi_Recorder recorder(WIDGETS);
        for (const auto& [name, operation] : operations) {
            Gdi_Recorder::Forget();
            operation();
            // In the first round the library makes what it keeps: fonts, and a picture to draw in.
            if (round > 0) {
                EXPECT_EQ(Gdi_Recorder::Unbalanced(), "") << name;
            }
        }
        Gdi_Recorder::Forget();
        panel.Draw();
        EXPECT_GT(Gdi_Recorder::Watched_Nb(), 0);
    }
}

TEST_F(Tag_Module, a_window_that_gives_no_device_context_is_survived_by_every_operation) {
    Lay_Out(SCROLLED);
    for (int n = 1; n <= 30; n++) {
        const Gdi_Recorder recorder(WIDGETS);
        Gdi_Recorder::Get_DC_Fail(n);
        panel.Draw();
        Press_Label(panel, model, 2);
        Open_Editor(panel, model, 3);
        panel.Keyboard('a');
        panel.Leave();
        Variable_Set("$TAG_CUR", n);
        panel.Update(UPDATE_TAG_CUR);
        EXPECT_EQ(Gdi_Recorder::Unbalanced(), "") << n;
    }
    Variable_Set("$TAG_CUR", 1);
    panel.Update(UPDATE_TAG_CUR);
    EXPECT_EQ(Press_Label(panel, model, 2), 2);
}

TEST(Gdi_Recorder, sees_what_is_not_given_back) {
    const Panel_Window window(Window_Axis::Down, 50, 50);
    const Gdi_Recorder recorder(WIDGETS);
    HDC dc = Y_setup(window.Get(), "left open");
    EXPECT_NE(Gdi_Recorder::Unbalanced(), "");
    Y_release(window.Get(), dc);
    EXPECT_EQ(Gdi_Recorder::Unbalanced(), "");
}
