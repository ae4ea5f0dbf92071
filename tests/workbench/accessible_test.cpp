#include "workbench/accessible.h"

#include <gtest/gtest.h>
#include <oleacc.h>

#include <optional>

#include "panels/tool_tag.h"
#include "tests/workbench/heard_window.h"
#include "tests/workbench/told_window.h"
#include "workbench/host_variables.h"
#include "workbench/panel_host.h"

using namespace workbench;

namespace {

Accessible_Source Example() {
    Accessible_Source source;
    source.role = ROLE_SYSTEM_GROUPING;
    source.name = [] { return std::wstring(L"Group"); };
    source.parts = [] {
        return std::vector<Accessible_Part>{
            {L"Up", L"", ROLE_SYSTEM_PUSHBUTTON, STATE_SYSTEM_SELECTED, {10, 10, 30, 20}},
            {L"Frame", L"17", ROLE_SYSTEM_COMBOBOX, STATE_SYSTEM_UNAVAILABLE, {40, 10, 60, 20}}};
    };
    return source;
}

TEST(Accessible, a_window_tells_its_parts) {
    Told_Window window;
    ASSERT_TRUE(window.Make());
    window.Place({100, 50, 300, 150});
    window.Accessible_Set(Example());
    const Heard_Window heard(window.Handle());
    ASSERT_EQ(heard.result, S_OK);
    EXPECT_EQ(heard.Name(CHILDID_SELF), L"Group");
    EXPECT_EQ(heard.Role(CHILDID_SELF), ROLE_SYSTEM_GROUPING);
    ASSERT_EQ(heard.Count(), 2);
    EXPECT_EQ(heard.Name(1), L"Up");
    EXPECT_EQ(heard.Role(1), ROLE_SYSTEM_PUSHBUTTON);
    EXPECT_EQ(heard.State(1), STATE_SYSTEM_SELECTED);
    EXPECT_EQ(heard.Name(2), L"Frame");
    EXPECT_EQ(heard.Value(2), L"17");
    EXPECT_EQ(heard.State(2), STATE_SYSTEM_UNAVAILABLE);
    const RECT place = heard.Place(2);
    EXPECT_EQ(place.left, 140);
    EXPECT_EQ(place.top, 60);
    EXPECT_EQ(place.right, 160);
    VARIANT selected = {};
    EXPECT_EQ(heard.object->get_accSelection(&selected), S_OK);
    EXPECT_EQ(selected.lVal, 1);
    VARIANT hit = {};
    EXPECT_EQ(heard.object->accHitTest(145, 65, &hit), S_OK);
    EXPECT_EQ(hit.lVal, 2);
    EXPECT_EQ(heard.object->accHitTest(101, 51, &hit), S_OK);
    EXPECT_EQ(hit.lVal, CHILDID_SELF);
    EXPECT_EQ(heard.object->accHitTest(5, 5, &hit), S_FALSE);
    VARIANT next = {};
    EXPECT_EQ(heard.object->accNavigate(NAVDIR_NEXT, Heard_Window::Child(1), &next), S_OK);
    EXPECT_EQ(next.lVal, 2);
    EXPECT_EQ(heard.object->accNavigate(NAVDIR_NEXT, Heard_Window::Child(2), &next), S_FALSE);
}

TEST(Accessible, what_does_not_exist_is_refused) {
    Told_Window window;
    ASSERT_TRUE(window.Make());
    window.Accessible_Set(Example());
    const Heard_Window heard(window.Handle());
    ASSERT_EQ(heard.result, S_OK);
    BSTR text = nullptr;
    EXPECT_EQ(heard.object->get_accName(Heard_Window::Child(3), &text), E_INVALIDARG);
    EXPECT_EQ(heard.object->get_accName(Heard_Window::Child(-1), &text), E_INVALIDARG);
    EXPECT_EQ(text, nullptr);
    VARIANT none = {};
    EXPECT_EQ(heard.object->get_accRole(none, &none), E_INVALIDARG);
}

TEST(Accessible, the_default_action_presses_buttons_only) {
    Told_Window window;
    ASSERT_TRUE(window.Make());
    window.Accessible_Set(Example());
    const Heard_Window heard(window.Handle());
    ASSERT_EQ(heard.result, S_OK);
    EXPECT_EQ(heard.object->accDoDefaultAction(Heard_Window::Child(1)), S_OK);
    EXPECT_EQ(heard.object->accDoDefaultAction(Heard_Window::Child(2)), DISP_E_MEMBERNOTFOUND);
    MSG message = {};
    while (::PeekMessageW(&message, window.Handle(), 0, 0, PM_REMOVE) != 0) {
        ::DispatchMessageW(&message);
    }
    EXPECT_EQ(window.presses, 1);
}

TEST(Accessible, an_object_outlives_its_window) {
    std::optional<Told_Window> window(std::in_place);
    ASSERT_TRUE(window->Make());
    window->Accessible_Set(Example());
    const Heard_Window heard(window->Handle());
    ASSERT_EQ(heard.result, S_OK);
    window.reset();
    LONG count = 0;
    EXPECT_EQ(heard.object->get_accChildCount(&count), CO_E_OBJNOTCONNECTED);
    EXPECT_EQ(heard.object->accDoDefaultAction(Heard_Window::Child(1)), CO_E_OBJNOTCONNECTED);
}

TEST(Accessible, an_exception_becomes_a_result) {
    Told_Window window;
    ASSERT_TRUE(window.Make());
    Accessible_Source source;
    source.parts = []() -> std::vector<Accessible_Part> { throw std::runtime_error("no parts"); };
    window.Accessible_Set(source);
    const Heard_Window heard(window.Handle());
    ASSERT_EQ(heard.result, S_OK);
    LONG count = 0;
    EXPECT_EQ(heard.object->get_accChildCount(&count), E_FAIL);
}

TEST(Accessible, the_tag_panel_tells_every_tag_that_can_be_seen) {
    Host_Variables variables;
    variables.Define();
    variables.Tag_Cur_Set(2);
    variables.Tag_Enable()[3] = 0;
    Look look;
    Tool_Tag panel(static_cast<unsigned short>(TAG_CHECK_ENABLE));
    Panel_Of<Tool_Tag> base(panel, [](Tool_Tag& of) { return of.Height(4); });
    Told_Window parent;
    ASSERT_TRUE(parent.Make());
    parent.Place({0, 0, 500, 300});
    Panel_Host host(base, look, [](int, int) {});
    ASSERT_TRUE(host.Make(parent.Handle(), Window_Axis::Down));
    host.Accessible_Names(L"TAG");
    host.Show(true);
    host.Place({0, 0, 400, base.Height()});
    host.Lay_Out();
    const Heard_Window heard(host.Handle());
    ASSERT_EQ(heard.result, S_OK);
    EXPECT_EQ(heard.Name(CHILDID_SELF), L"TAG");
    const LONG count = heard.Count();
    ASSERT_GE(count, 16);
    LONG white = 0, csf = 0;
    int buttons = 0;
    for (LONG child = 1; child <= count; ++child) {
        buttons += heard.Role(child) == ROLE_SYSTEM_PUSHBUTTON ? 1 : 0;
        white = heard.Name(child) == L"White matter" ? child : white;
        csf = heard.Name(child) == L"CSF" ? child : csf;
    }
    EXPECT_GE(buttons, 16);
    ASSERT_GT(white, 0);
    ASSERT_GT(csf, 0);
    EXPECT_EQ(heard.State(white) & STATE_SYSTEM_SELECTED, STATE_SYSTEM_SELECTED);
    EXPECT_EQ(heard.State(white) & STATE_SYSTEM_CHECKED, STATE_SYSTEM_CHECKED);
    EXPECT_EQ(heard.State(csf) & STATE_SYSTEM_CHECKED, 0);
    // What changes is heard without asking anew for the object.
    variables.Tag_Cur_Set(3);
    host.Update(UPDATE_TAG_CUR);
    EXPECT_EQ(heard.State(white) & STATE_SYSTEM_SELECTED, 0);
    EXPECT_EQ(heard.State(csf) & STATE_SYSTEM_SELECTED, STATE_SYSTEM_SELECTED);
}

}  // namespace
