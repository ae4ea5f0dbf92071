#include "workbench/automation_provider.h"

#include <gtest/gtest.h>
#include <oleacc.h>

#include <algorithm>
#include <optional>
#include <utility>

#include "panels/tool_tag.h"
#include "tests/workbench/automation_client.h"
#include "tests/workbench/told_window.h"
#include "workbench/accessible.h"
#include "workbench/automation_patterns.h"
#include "workbench/host_variables.h"
#include "workbench/panel_host.h"

using namespace workbench;

namespace {

constexpr int CONTROL_BUTTON = 50000;
constexpr int CONTROL_COMBO_BOX = 50003;
constexpr int CONTROL_TREE_ITEM = 50024;
constexpr int CONTROL_GROUP = 50026;

Accessible_Source Example() {
    Accessible_Source source;
    source.role = ROLE_SYSTEM_GROUPING;
    source.name = [] { return std::wstring(L"Group"); };
    source.parts = [] {
        return std::vector<Accessible_Part>{
            {L"Up", L"", ROLE_SYSTEM_PUSHBUTTON, STATE_SYSTEM_SELECTED | STATE_SYSTEM_CHECKED, {10, 10, 30, 20}, 0},
            {L"Frame", L"17", ROLE_SYSTEM_COMBOBOX, STATE_SYSTEM_UNAVAILABLE, {40, 10, 60, 20}, 0},
            {L"Vessel", L"level 2", ROLE_SYSTEM_OUTLINEITEM, STATE_SYSTEM_EXPANDED, {10, 30, 60, 40}, 2}};
    };
    return source;
}

/** Gives an interface back. */
template <class Interface>
class Held {
  public:
    explicit Held(Interface* taken = nullptr) : pointer(taken) {}
    ~Held() { Reset(nullptr); }
    Held(Held&& other) noexcept : pointer(std::exchange(other.pointer, nullptr)) {}
    Held& operator=(Held&& other) noexcept {
        Reset(std::exchange(other.pointer, nullptr));
        return *this;
    }
    Interface* operator->() const { return pointer; }
    Interface& operator*() const { return *pointer; }
    explicit operator bool() const { return pointer != nullptr; }
    template <class Wanted>
    Held<Wanted> As(const GUID& id = __uuidof(Wanted)) const {
        void* wanted = nullptr;
        pointer->QueryInterface(id, &wanted);
        return Held<Wanted>(static_cast<Wanted*>(wanted));
    }

  private:
    void Reset(Interface* taken) {
        if (pointer != nullptr) {
            pointer->Release();
        }
        pointer = taken;
    }
    Interface* pointer;
};
using Fragment = Held<IRawElementProviderFragment>;
using Simple = Held<IRawElementProviderSimple>;

VARIANT Property(IRawElementProviderSimple& of, int number) {
    VARIANT value = {};
    EXPECT_EQ(of.GetPropertyValue(number, &value), S_OK);
    return value;
}
std::wstring Text(IRawElementProviderSimple& of, int number) {
    VARIANT value = Property(of, number);
    const std::wstring text = value.vt == VT_BSTR ? value.bstrVal : L"";
    ::VariantClear(&value);
    return text;
}

bool Truth(IRawElementProviderSimple& of, int number) {
    return Property(of, number).boolVal != VARIANT_FALSE;
}

constexpr int NAME_PROPERTY = 30005;
constexpr int CONTROL_TYPE_PROPERTY = 30003;
constexpr int IS_ENABLED_PROPERTY = 30010;
constexpr int ITEM_STATUS_PROPERTY = 30026;
constexpr int LEVEL_PROPERTY = 30154;

Fragment Step(const Fragment& from, NavigateDirection direction) {
    IRawElementProviderFragment* to = nullptr;
    EXPECT_EQ(from->Navigate(direction, &to), S_OK);
    return Fragment(to);
}

/** The providers of the example, asked without UI Automation between. */
class Automation_Provider : public testing::Test {
  protected:
    Automation_Provider() {
        window.emplace();
        EXPECT_TRUE(window->Make());
        window->Place({100, 50, 300, 150});
        window->Accessible_Set(Example());
        root = Simple(Automation_Provider_Make(window->Handle()));
    }
    Fragment Root() const { return root.As<IRawElementProviderFragment>(); }
    /** @param number from 1 */
    Simple Part(int number) const {
        Fragment at = Step(Root(), NavigateDirection_FirstChild);
        for (int step = 1; step < number; ++step) {
            at = Step(at, NavigateDirection_NextSibling);
        }
        return at.As<IRawElementProviderSimple>();
    }
    template <class Pattern>
    static Held<Pattern> Pattern_Of(const Simple& part, int pattern, const GUID& id) {
        IUnknown* found = nullptr;
        EXPECT_EQ(part->GetPatternProvider(pattern, &found), S_OK);
        return found != nullptr ? Held<IUnknown>(found).As<Pattern>(id) : Held<Pattern>();
    }
    static int Presses(Told_Window& of) {
        MSG message = {};
        while (::PeekMessageW(&message, of.Handle(), 0, 0, PM_REMOVE) != 0) {
            ::DispatchMessageW(&message);
        }
        return of.presses;
    }
    std::optional<Told_Window> window;
    Simple root;
};

TEST(Automation_Client, a_client_hears_a_window_and_its_parts) {
    Told_Window window;
    ASSERT_TRUE(window.Make());
    window.Accessible_Set(Example());
    const std::vector<Heard_Element> heard = Automation_Client::Read(window.Handle());
    ASSERT_EQ(heard.size(), 4U);
    EXPECT_EQ(heard[0].name, L"Group");
    EXPECT_EQ(heard[0].control_type, CONTROL_GROUP);
    EXPECT_TRUE(heard[0].is_enabled);
    EXPECT_EQ(heard[1].name, L"Up");
    EXPECT_EQ(heard[1].control_type, CONTROL_BUTTON);
    EXPECT_TRUE(heard[1].is_enabled);
    EXPECT_EQ(heard[1].status, L"current, checked");
    EXPECT_EQ(heard[1].level, 0);
    EXPECT_EQ(heard[2].name, L"Frame");
    EXPECT_EQ(heard[2].control_type, CONTROL_COMBO_BOX);
    EXPECT_FALSE(heard[2].is_enabled);
    EXPECT_EQ(heard[3].name, L"Vessel");
    EXPECT_EQ(heard[3].control_type, CONTROL_TREE_ITEM);
    EXPECT_EQ(heard[3].status, L"expanded");
    EXPECT_EQ(heard[3].level, 2);
}

TEST(Automation_Client, a_client_hears_every_tag_that_can_be_seen) {
    Host_Variables variables;
    variables.Define();
    variables.Tag_Cur_Set(2);
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
    const std::vector<Heard_Element> heard = Automation_Client::Read(host.Handle());
    ASSERT_GE(heard.size(), 17U);
    EXPECT_EQ(heard[0].name, L"TAG");
    const auto white = std::ranges::find(heard, std::wstring(L"White matter"), &Heard_Element::name);
    ASSERT_NE(white, heard.end());
    EXPECT_EQ(white->status, L"current, checked");
    EXPECT_GE(std::ranges::count(heard, CONTROL_BUTTON, &Heard_Element::control_type), 16);
}

TEST(Automation_Client, a_window_with_nothing_to_tell_has_no_provider) {
    Told_Window window;
    ASSERT_TRUE(window.Make());
    EXPECT_EQ(::SendMessageW(window.Handle(), WM_GETOBJECT, 0, -25), 0);
}

TEST_F(Automation_Provider, parts_tell_name_kind_state_and_level) {
    const Simple up = Part(1);
    ASSERT_TRUE(up);
    EXPECT_EQ(Text(*up, NAME_PROPERTY), L"Up");
    EXPECT_EQ(Property(*up, CONTROL_TYPE_PROPERTY).lVal, CONTROL_BUTTON);
    EXPECT_EQ(Text(*up, ITEM_STATUS_PROPERTY), L"current, checked");
    EXPECT_TRUE(Truth(*up, IS_ENABLED_PROPERTY));
    EXPECT_EQ(Property(*up, LEVEL_PROPERTY).vt, VT_EMPTY);
    EXPECT_FALSE(Truth(*Part(2), IS_ENABLED_PROPERTY));
    const Simple vessel = Part(3);
    EXPECT_EQ(Property(*vessel, LEVEL_PROPERTY).lVal, 2);
    EXPECT_EQ(Text(*vessel, ITEM_STATUS_PROPERTY), L"expanded");
}

TEST_F(Automation_Provider, parts_lie_beside_one_another_below_the_window) {
    const Fragment first = Step(Root(), NavigateDirection_FirstChild);
    const Fragment last = Step(Root(), NavigateDirection_LastChild);
    ASSERT_TRUE(first && last);
    EXPECT_EQ(Text(*last.As<IRawElementProviderSimple>(), NAME_PROPERTY), L"Vessel");
    EXPECT_FALSE(Step(first, NavigateDirection_PreviousSibling));
    EXPECT_FALSE(Step(last, NavigateDirection_NextSibling));
    EXPECT_FALSE(Step(first, NavigateDirection_FirstChild));
    EXPECT_FALSE(Step(Root(), NavigateDirection_Parent)) << "the system knows what lies above a window";
    const Fragment before = Step(last, NavigateDirection_PreviousSibling);
    EXPECT_EQ(Text(*before.As<IRawElementProviderSimple>(), NAME_PROPERTY), L"Frame");
    const Fragment above = Step(first, NavigateDirection_Parent);
    EXPECT_EQ(Text(*above.As<IRawElementProviderSimple>(), NAME_PROPERTY), L"Group");
    SAFEARRAY* number = nullptr;
    ASSERT_EQ(last->GetRuntimeId(&number), S_OK);
    LONG second = 1;
    int value = 0;
    EXPECT_EQ(::SafeArrayGetElement(number, &second, &value), S_OK);
    EXPECT_EQ(value, 3);
    ::SafeArrayDestroy(number);
}

TEST_F(Automation_Provider, places_and_points_are_the_screens) {
    UiaRect place = {};
    ASSERT_EQ(Step(Root(), NavigateDirection_FirstChild)->get_BoundingRectangle(&place), S_OK);
    EXPECT_EQ(place.left, 110.0);
    EXPECT_EQ(place.top, 60.0);
    EXPECT_EQ(place.width, 20.0);
    EXPECT_EQ(place.height, 10.0);
    const auto fragment_root = root.As<IRawElementProviderFragmentRoot>();
    const auto name_at = [&](double x, double y) {
        IRawElementProviderFragment* at = nullptr;
        EXPECT_EQ(fragment_root->ElementProviderFromPoint(x, y, &at), S_OK);
        return Text(*Fragment(at).As<IRawElementProviderSimple>(), NAME_PROPERTY);
    };
    EXPECT_EQ(name_at(145.0, 65.0), L"Frame");
    EXPECT_EQ(name_at(101.0, 51.0), L"Group");
}

TEST_F(Automation_Provider, what_can_be_done_with_a_part_depends_on_it) {
    const auto invoke = [&](int number) {
        return Pattern_Of<Automation_Invoke>(Part(number), AUTOMATION_INVOKE_PATTERN, AUTOMATION_INVOKE_ID);
    };
    ASSERT_TRUE(invoke(1));
    EXPECT_FALSE(invoke(2));
    EXPECT_EQ(invoke(1)->Invoke(), S_OK);
    EXPECT_EQ(Presses(*window), 1);
    const auto value = [&](int number) {
        return Pattern_Of<Automation_Value>(Part(number), AUTOMATION_VALUE_PATTERN, AUTOMATION_VALUE_ID);
    };
    EXPECT_FALSE(value(1));
    ASSERT_TRUE(value(2));
    BSTR text = nullptr;
    EXPECT_EQ(value(2)->get_Value(&text), S_OK);
    EXPECT_STREQ(text, L"17");
    ::SysFreeString(text);
    const auto choice =
        Pattern_Of<Automation_Selection_Item>(Part(3), AUTOMATION_SELECTION_ITEM_PATTERN, AUTOMATION_SELECTION_ITEM_ID);
    ASSERT_TRUE(choice);
    BOOL is_selected = TRUE;
    EXPECT_EQ(choice->get_IsSelected(&is_selected), S_OK);
    EXPECT_EQ(is_selected, FALSE);
    EXPECT_EQ(choice->Select(), S_OK);
    EXPECT_EQ(Presses(*window), 2);
}

TEST_F(Automation_Provider, a_provider_outlives_its_window) {
    const Simple part = Part(1);
    window.reset();
    VARIANT name = {};
    EXPECT_TRUE(FAILED(part->GetPropertyValue(NAME_PROPERTY, &name)));
    EXPECT_EQ(name.vt, VT_EMPTY);
    EXPECT_TRUE(FAILED(root->GetPropertyValue(NAME_PROPERTY, &name)));
}

TEST_F(Automation_Provider, a_part_that_has_gone_is_refused) {
    const Simple part = Part(3);
    Accessible_Source less = Example();
    less.parts = {};
    window->Accessible_Set(std::move(less));
    VARIANT name = {};
    EXPECT_TRUE(FAILED(part->GetPropertyValue(NAME_PROPERTY, &name)));
}

}  // namespace
