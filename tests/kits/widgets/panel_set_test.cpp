// Panels in windows of their own: who is told of what and when, and whose the windows' class is.
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "kits/dataset/dataset_host.h"
#include "kits/widgets/panel_set.h"

namespace {

/** A panel that notes what it is told. */
struct Noting_Panel {
    void Resize(Boxs* box) { width = box->width; }
    int Height() const { return 33; }
    void Draw() { ++draws; }
    int Click(int) const { return answer; }
    int Motion(int) const { return 0; }
    int Scroll(int) const { return 0; }
    int Keyboard(int) const { return 0; }
    void Leave() {}
    void Update(unsigned __int64 flags) {
        told.push_back(flags);
        if (asks != 0) {
            Fct_Update(asks, nullptr, nullptr, nullptr);
        }
    }
    int Read() const { return 5; }

    int width = 0;
    int draws = 0;
    int answer = 0;
    unsigned __int64 asks = 0;  // announced by every Update
    std::vector<unsigned __int64> told;
};

/** One whose height is in rows. */
struct Rows_Panel : Noting_Panel {
    int Height(unsigned short rows) const { return 20 * rows; }
};

class Panel_Set_Test : public testing::Test {
  protected:
    Panel_Set_Test() {
        main_window =
            ::CreateWindowExA(0, "STATIC", "", WS_OVERLAPPEDWINDOW, 0, 0, 300, 200, nullptr, nullptr, nullptr, nullptr);
        for (const char* name : {"$TAG_CUR", "$MARKER_CUR", "$BRUSH_CUR"}) {
            Variable_Define_Scalar(name, VARIABLE_UNSIGNED_16, 0);
        }
    }
    ~Panel_Set_Test() override {
        panels.reset();
        ::DestroyWindow(main_window);
    }
    /** Makes the windows; places them, so that panels are laid out. */
    void Make() {
        ASSERT_TRUE(panels->Make(main_window));
        first_window.Place(0, 0, 100, 40);
        second_window.Place(0, 50, 100, 40);
        first.told.clear();
        second.told.clear();
    }
    static void Press(const kit::Panel_Window& window) {
        ::SendMessageA(window.Handle(), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(5, 5));
        ::SendMessageA(window.Handle(), WM_LBUTTONUP, 0, MAKELPARAM(5, 5));
    }
    static double Number(const char* name) { return Variable_Number(name, -1); }

    using Flags = std::vector<unsigned __int64>;
    HWND main_window = nullptr;
    Noting_Panel first;
    Rows_Panel second;
    std::unique_ptr<kit::Panel_Set> panels = std::make_unique<kit::Panel_Set>();
    kit::Panel_Window& first_window = panels->Add(first, Panel_Kind::Brush);
    kit::Panel_Window& second_window = panels->Add(second, Panel_Kind::Tag, 3);
};

TEST_F(Panel_Set_Test, what_was_announced_reaches_every_panel_once_and_together) {
    Make();
    EXPECT_EQ(panels->Send(), 0U);
    panels->Announce(UPDATE_BRUSH);
    panels->Announce(UPDATE_TAG_CUR);
    EXPECT_EQ(first.told, Flags{}) << "not before";
    EXPECT_EQ(panels->Send(), UPDATE_BRUSH | UPDATE_TAG_CUR);
    EXPECT_EQ(first.told, Flags{UPDATE_BRUSH | UPDATE_TAG_CUR});
    EXPECT_EQ(second.told, Flags{UPDATE_BRUSH | UPDATE_TAG_CUR});
    EXPECT_EQ(panels->Send(), 0U);
    EXPECT_EQ(first.told.size(), 1U);
}

TEST_F(Panel_Set_Test, what_computes_a_histogram_paints_it_too) {
    Make();
    panels->Announce(UPDATE_SELECTION | UPDATE_LEVEL_2D);
    EXPECT_EQ(panels->Send(), UPDATE_SELECTION | UPDATE_LEVEL_2D | UPDATE_HISTO_PAINT);
    EXPECT_EQ(first.told, Flags{UPDATE_SELECTION | UPDATE_LEVEL_2D | UPDATE_HISTO_PAINT});
}

TEST_F(Panel_Set_Test, what_a_panel_asks_for_waits_for_the_next_time) {
    Make();
    first.asks = UPDATE_TAG_LABEL;
    panels->Announce(UPDATE_BRUSH);
    panels->Send();
    first.asks = 0;
    EXPECT_EQ(second.told, Flags{UPDATE_BRUSH});
    panels->Send();
    EXPECT_EQ(second.told, (Flags{UPDATE_BRUSH, UPDATE_TAG_LABEL}));
    Quorel_Window shown;
    Quorel_2D before;
    Quorel_2D after;
    Fct_Change_Child(&shown, &before, &after);
    EXPECT_EQ(panels->Send(), UPDATE_FRAME_CUR);
}

TEST_F(Panel_Set_Test, a_pick_sets_its_variable_and_is_announced) {
    Make();
    second.answer = 7;
    Press(second_window);
    EXPECT_EQ(Number("$TAG_CUR"), 7);
    EXPECT_EQ(panels->Send(), UPDATE_TAG_CUR);
    second.answer = -1;
    Press(second_window);
    EXPECT_EQ(Number("$TAG_CUR"), 7) << "nothing was picked";
    EXPECT_EQ(panels->Send(), 0U);
    first.answer = 1;
    Press(first_window);
    EXPECT_EQ(Number("$BRUSH_CUR"), 5) << "what the panel tells";
    EXPECT_EQ(panels->Send(), UPDATE_BRUSH);
    first.answer = 0;
    Variable_Set("$BRUSH_CUR", 0);
    Press(first_window);
    EXPECT_EQ(Number("$BRUSH_CUR"), 0);
}

TEST_F(Panel_Set_Test, windows_have_the_axis_and_the_height_of_their_kind) {
    Noting_Panel third;
    kit::Panel_Window& third_window = panels->Add(third, Panel_Kind::Marker);
    Make();
    EXPECT_EQ(Window_Axis_Get(first_window.Handle()), Window_Axis::Up);
    EXPECT_EQ(Window_Axis_Get(second_window.Handle()), Window_Axis::Down);
    EXPECT_EQ(first_window.Wanted_Height(), 33);
    EXPECT_EQ(second_window.Wanted_Height(), 60);
    EXPECT_EQ(first.width, 100);
    third.answer = 2;
    third_window.Place(0, 100, 50, 50);
    EXPECT_EQ(third.told, Flags{Update_After_Resize(Panel_Kind::Marker)});
    Press(third_window);
    EXPECT_EQ(Number("$MARKER_CUR"), 2);
    panels.reset();
}

TEST_F(Panel_Set_Test, trees_have_a_look_of_their_own_and_a_request_to_draw_reaches_the_host) {
    Noting_Panel classes;
    Noting_Panel files;
    kit::Panel_Window& class_window = panels->Add(classes, Panel_Kind::Classes, 0, 3);
    kit::Panel_Window& file_window = panels->Add(files, Panel_Kind::Files);
    panels->look.border = 3;
    panels->tree_look.border = 5;
    unsigned __int64 drawn = 0;
    panels->redraw = [&drawn](unsigned __int64 flags) { drawn = flags; };
    Make();
    EXPECT_EQ(first_window.look.border, 3);
    EXPECT_EQ(class_window.look.border, 5);
    EXPECT_EQ(file_window.look.border, 5);
    Fct_Redraw(0x3FFF, nullptr, nullptr, nullptr);
    EXPECT_EQ(drawn, 0x3FFFU);
    panels.reset();
}

TEST_F(Panel_Set_Test, the_main_window_owns_what_panels_open_until_the_end) {
    const auto owner = [] { return Fct_Variable_Value("$HISTO_WINDOW_OWNER", nullptr, nullptr, nullptr); };
    Make();
    EXPECT_EQ(hwnd, main_window);
    EXPECT_EQ(owner(), main_window);
    panels.reset();
    EXPECT_EQ(hwnd, nullptr);
    EXPECT_EQ(owner(), nullptr);
    EXPECT_EQ(::GetWindow(main_window, GW_CHILD), nullptr) << "the windows are gone";
    Fct_Update(UPDATE_BRUSH, nullptr, nullptr, nullptr);  // nobody listens
}

TEST_F(Panel_Set_Test, keys_that_no_panel_uses_go_to_the_host) {
    std::string keys;
    panels->untaken = [&keys](int key) { keys += static_cast<char>(key); };
    Make();
    ::SendMessageA(first_window.Handle(), WM_CHAR, 'f', 0);
    EXPECT_EQ(keys, "f");
}

/** One that shows counts, and paints nothing by itself without them. */
struct Counting_Panel : Noting_Panel {
    struct Counts {
        bool Has_Counts() const { return nb > 0; }
        int nb = 0;
    };
    void Update(unsigned __int64 flags) {
        Noting_Panel::Update(flags);
        counts.nb = next;
        data = next < 0 ? nullptr : &counts;
    }
    Counts counts;
    Counts* data = nullptr;
    int next = -1;
};

TEST_F(Panel_Set_Test, a_histogram_is_drawn_when_its_counts_come_and_when_they_go) {
    Counting_Panel counting;
    kit::Panel_Window& window = panels->Add(counting, Panel_Kind::Histogram);
    Make();
    window.Place(0, 100, 50, 50);
    const auto draws_with = [&](int nb) {
        counting.draws = 0;
        counting.next = nb;
        window.Update(UPDATE_HISTO_DATA);
        return counting.draws;
    };
    EXPECT_EQ(draws_with(5), 1) << "they came";
    EXPECT_EQ(draws_with(7), 0) << "other counts are the panel's own to paint";
    EXPECT_EQ(draws_with(0), 1) << "they went";
    EXPECT_EQ(draws_with(-1), 0);
    EXPECT_EQ(draws_with(3), 1);
    EXPECT_EQ(draws_with(-1), 1) << "all of it went";
    panels.reset();
}

/** Whether this module has a class for the windows of panels. */
bool Has_Class(HMODULE module) {
    WNDCLASSW found = {};
    return ::GetClassInfoW(module, L"Kit_Panel_Window", &found) != FALSE && found.hInstance == module;
}

TEST_F(Panel_Set_Test, the_windows_class_goes_with_the_last_window) {
    const HMODULE own = ::GetModuleHandleW(nullptr);
    EXPECT_FALSE(Has_Class(own));
    Make();
    EXPECT_TRUE(Has_Class(own));
    panels.reset();
    EXPECT_FALSE(Has_Class(own));
}

TEST_F(Panel_Set_Test, another_module_has_a_class_of_its_own_and_takes_it_along) {
    Make();
    for (int round = 0; round < 2; ++round) {
        const HMODULE other = ::LoadLibraryW(L"panel_window_module.dll");
        ASSERT_NE(other, nullptr);
        const auto make = reinterpret_cast<HWND (*)(HWND)>(
            reinterpret_cast<void (*)()>(::GetProcAddress(other, "Other_Window_Make")));
        const auto end =
            reinterpret_cast<int (*)()>(reinterpret_cast<void (*)()>(::GetProcAddress(other, "Other_Window_End")));
        ASSERT_TRUE(make != nullptr && end != nullptr);
        const HWND window = make(main_window);
        ASSERT_NE(window, nullptr);
        EXPECT_EQ(reinterpret_cast<HMODULE>(::GetClassLongPtrW(window, GCLP_HMODULE)), other);
        EXPECT_EQ(reinterpret_cast<HMODULE>(::GetClassLongPtrW(first_window.Handle(), GCLP_HMODULE)),
                  ::GetModuleHandleW(nullptr));
        EXPECT_GT(end(), 0) << "the panel of the other module was drawn by its own window";
        EXPECT_FALSE(Has_Class(other));
        ::FreeLibrary(other);
        ASSERT_EQ(::GetModuleHandleW(L"panel_window_module.dll"), nullptr);
    }
    first.answer = 1;
    Press(first_window);
    EXPECT_EQ(Number("$BRUSH_CUR"), 5) << "this module's windows go on";
}

}  // namespace
