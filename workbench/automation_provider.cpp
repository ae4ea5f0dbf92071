#include "workbench/automation_provider.h"

#include <oleacc.h>

#include <atomic>
#include <cstddef>
#include <new>
#include <optional>
#include <string>

#include "workbench/accessible_snapshot.h"
#include "workbench/automation_patterns.h"
#include "workbench/com_object.h"
#include "workbench/system_library.h"

namespace workbench {

namespace {

constexpr LONG ROOT_OBJECT = -25;     // UiaRootObjectId: what the question is about
constexpr int APPEND_RUNTIME_ID = 3;  // UiaAppendRuntimeId: the window's number goes before
constexpr HRESULT NOT_AVAILABLE = static_cast<HRESULT>(0x80040201);  // UIA_E_ELEMENTNOTAVAILABLE

// Numbers of properties.
constexpr int PROPERTY_CONTROL_TYPE = 30003;
constexpr int PROPERTY_NAME = 30005;
constexpr int PROPERTY_IS_ENABLED = 30010;
constexpr int PROPERTY_IS_CONTROL = 30016;
constexpr int PROPERTY_IS_CONTENT = 30017;
constexpr int PROPERTY_IS_OFFSCREEN = 30022;
constexpr int PROPERTY_ITEM_STATUS = 30026;
constexpr int PROPERTY_LEVEL = 30154;

struct Kind {
    LONG role;
    int control_type;
};
constexpr int CONTROL_CUSTOM = 50025;
constexpr Kind KINDS[] = {
    {ROLE_SYSTEM_PUSHBUTTON, 50000}, {ROLE_SYSTEM_COMBOBOX, 50003},    {ROLE_SYSTEM_TEXT, 50004},
    {ROLE_SYSTEM_GRAPHIC, 50006},    {ROLE_SYSTEM_SCROLLBAR, 50014},   {ROLE_SYSTEM_SLIDER, 50015},
    {ROLE_SYSTEM_STATUSBAR, 50017},  {ROLE_SYSTEM_PAGETAB, 50019},     {ROLE_SYSTEM_STATICTEXT, 50020},
    {ROLE_SYSTEM_ALERT, 50020},      {ROLE_SYSTEM_OUTLINEITEM, 50024}, {ROLE_SYSTEM_GROUPING, 50026},
    {ROLE_SYSTEM_ROW, 50029},        {ROLE_SYSTEM_DIALOG, 50032},      {ROLE_SYSTEM_COLUMNHEADER, 50035},
    {ROLE_SYSTEM_PANE, 50033},
};

int Control_Type(LONG role) {
    for (const Kind& kind : KINDS) {
        if (kind.role == role) {
            return kind.control_type;
        }
    }
    return CONTROL_CUSTOM;
}

/** What has no property of its own, in words. */
std::wstring Status_Text(LONG state) {
    struct Word {
        LONG state;
        const wchar_t* text;
    };
    constexpr Word words[] = {{STATE_SYSTEM_SELECTED, L"current"},      {STATE_SYSTEM_CHECKED, L"checked"},
                              {STATE_SYSTEM_MIXED, L"partly checked"},  {STATE_SYSTEM_EXPANDED, L"expanded"},
                              {STATE_SYSTEM_COLLAPSED, L"collapsed"},   {STATE_SYSTEM_PRESSED, L"pressed"},
                              {STATE_SYSTEM_HOTTRACKED, L"highlighted"}};
    std::wstring text;
    for (const Word& word : words) {
        if ((state & word.state) != 0) {
            text += (text.empty() ? L"" : L", ") + std::wstring(word.text);
        }
    }
    return text;
}

/** Loaded with the first question: most sessions are never asked. */
std::atomic<bool> is_library_loaded = false;
const System_Library& Library() {
    static const System_Library library(L"uiautomationcore.dll");
    is_library_loaded = true;
    return library;
}
using Provider_To_Answer = LRESULT(WINAPI*)(HWND, WPARAM, LPARAM, IRawElementProviderSimple*);
using Window_To_Provider = HRESULT(WINAPI*)(HWND, IRawElementProviderSimple**);

/** A window, or one of its parts. Holds no state of its own, so that any thread may ask; without the flag for COM's
 *  threading UI Automation does so on its threads, and none of them waits for the window's message loop. */
class Automation_Element final
    : public Com_Object<IRawElementProviderSimple, IRawElementProviderFragment, IRawElementProviderFragmentRoot,
                        Automation_Invoke, Automation_Value, Automation_Selection_Item> {
  public:
    /** @param number of the part, from 1; 0: the window */
    Automation_Element(HWND of_window, int number) : window(of_window), part_number(number) {}

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        *object = Interface(wanted);
        if (*object == nullptr) {
            return E_NOINTERFACE;
        }
        AddRef();
        return S_OK;
    }

    // IRawElementProviderSimple
    HRESULT STDMETHODCALLTYPE get_ProviderOptions(ProviderOptions* options) override {
        *options = ProviderOptions_ServerSideProvider;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetPatternProvider(PATTERNID pattern, IUnknown** provider) override {
        *provider = nullptr;
        return Of_Element([&](const Accessible_Part& asked) {
            IUnknown* found = nullptr;
            if (pattern == AUTOMATION_INVOKE_PATTERN && Accessible_Is_Pressed(asked)) {
                found = static_cast<Automation_Invoke*>(this);
            } else if (pattern == AUTOMATION_VALUE_PATTERN && !asked.value.empty()) {
                found = static_cast<Automation_Value*>(this);
            } else if (pattern == AUTOMATION_SELECTION_ITEM_PATTERN && Is_Choice(asked)) {
                found = static_cast<Automation_Selection_Item*>(this);
            }
            if (found != nullptr) {
                AddRef();
                *provider = found;
            }
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE GetPropertyValue(PROPERTYID property, VARIANT* value) override {
        value->vt = VT_EMPTY;
        return Of_Element([&](const Accessible_Part& asked) {
            switch (property) {
                case PROPERTY_NAME:
                    return Text(asked.name, value);
                case PROPERTY_ITEM_STATUS:
                    return Text(Status_Text(asked.state), value);
                case PROPERTY_CONTROL_TYPE:
                    return Number(Control_Type(asked.role), value);
                case PROPERTY_LEVEL:
                    return asked.level > 0 ? Number(asked.level, value) : S_OK;
                case PROPERTY_IS_ENABLED:
                    return Truth((asked.state & STATE_SYSTEM_UNAVAILABLE) == 0, value);
                case PROPERTY_IS_OFFSCREEN:
                    return Truth((asked.state & STATE_SYSTEM_OFFSCREEN) != 0, value);
                case PROPERTY_IS_CONTROL:
                case PROPERTY_IS_CONTENT:
                    return Truth(true, value);
                default:
                    return S_OK;
            }
        });
    }
    HRESULT STDMETHODCALLTYPE get_HostRawElementProvider(IRawElementProviderSimple** provider) override {
        *provider = nullptr;
        const auto find = Library().Find<Window_To_Provider>("UiaHostProviderFromHwnd");
        return part_number != 0 || find == nullptr ? S_OK : find(window, provider);
    }

    // IRawElementProviderFragment
    HRESULT STDMETHODCALLTYPE Navigate(NavigateDirection direction, IRawElementProviderFragment** to) override {
        *to = nullptr;
        const std::optional<Accessible_Snapshot> asked = Accessible_Snapshot_Ask(window);
        if (!asked) {
            return NOT_AVAILABLE;
        }
        const int count = static_cast<int>(asked->parts.size());
        switch (direction) {
            case NavigateDirection_FirstChild:
                return part_number == 0 && count > 0 ? Give(1, to) : S_OK;
            case NavigateDirection_LastChild:
                return part_number == 0 && count > 0 ? Give(count, to) : S_OK;
            case NavigateDirection_Parent:
                return part_number != 0 ? Give(0, to) : S_OK;
            case NavigateDirection_NextSibling:
                return part_number != 0 && part_number < count ? Give(part_number + 1, to) : S_OK;
            case NavigateDirection_PreviousSibling:
                return part_number > 1 ? Give(part_number - 1, to) : S_OK;
            default:
                return E_INVALIDARG;
        }
    }
    HRESULT STDMETHODCALLTYPE GetRuntimeId(SAFEARRAY** id) override {
        *id = nullptr;
        if (part_number == 0) {
            return S_OK;  // the window's own
        }
        *id = ::SafeArrayCreateVector(VT_I4, 0, 2);
        if (*id == nullptr) {
            return E_OUTOFMEMORY;
        }
        const int numbers[] = {APPEND_RUNTIME_ID, part_number};
        for (LONG at = 0; at < 2; ++at) {
            int number = numbers[at];
            ::SafeArrayPutElement(*id, &at, &number);
        }
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE get_BoundingRectangle(UiaRect* place) override {
        return Of_Element([&](const Accessible_Part& asked) {
            *place = {static_cast<double>(asked.place.left), static_cast<double>(asked.place.top),
                      static_cast<double>(asked.place.right - asked.place.left),
                      static_cast<double>(asked.place.bottom - asked.place.top)};
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE GetEmbeddedFragmentRoots(SAFEARRAY** roots) override {
        *roots = nullptr;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE SetFocus() override { return S_OK; }
    HRESULT STDMETHODCALLTYPE get_FragmentRoot(IRawElementProviderFragmentRoot** root) override {
        *root = new (std::nothrow) Automation_Element(window, 0);
        return *root != nullptr ? S_OK : E_OUTOFMEMORY;
    }

    // IRawElementProviderFragmentRoot
    HRESULT STDMETHODCALLTYPE ElementProviderFromPoint(double x, double y, IRawElementProviderFragment** at) override {
        *at = nullptr;
        const std::optional<Accessible_Snapshot> asked = Accessible_Snapshot_Ask(window);
        if (!asked) {
            return NOT_AVAILABLE;
        }
        const POINT point = {static_cast<LONG>(x), static_cast<LONG>(y)};
        int found = 0;
        for (std::size_t number = 1; number <= asked->parts.size(); ++number) {
            found = ::PtInRect(&asked->parts[number - 1].place, point) != 0 ? static_cast<int>(number) : found;
        }
        return Give(found, at);
    }
    HRESULT STDMETHODCALLTYPE GetFocus(IRawElementProviderFragment** focused) override {
        *focused = nullptr;
        return S_OK;
    }

    // Patterns
    HRESULT STDMETHODCALLTYPE Invoke() override {
        return Of_Element([&](const Accessible_Part& asked) {
            if (!Accessible_Is_Pressed(asked)) {
                return E_FAIL;
            }
            POINT middle = {(asked.place.left + asked.place.right) / 2, (asked.place.top + asked.place.bottom) / 2};
            ::ScreenToClient(window, &middle);
            Accessible_Press(window, middle);
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE SetValue(LPCWSTR) override { return E_ACCESSDENIED; }
    HRESULT STDMETHODCALLTYPE get_Value(BSTR* value) override {
        *value = nullptr;
        return Of_Element([&](const Accessible_Part& asked) {
            *value = ::SysAllocString(asked.value.c_str());
            return *value != nullptr ? S_OK : E_OUTOFMEMORY;
        });
    }
    HRESULT STDMETHODCALLTYPE get_IsReadOnly(BOOL* is_read_only) override {
        *is_read_only = TRUE;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE Select() override { return Invoke(); }
    HRESULT STDMETHODCALLTYPE AddToSelection() override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE RemoveFromSelection() override { return E_FAIL; }
    HRESULT STDMETHODCALLTYPE get_IsSelected(BOOL* is_selected) override {
        return Of_Element([&](const Accessible_Part& asked) {
            *is_selected = (asked.state & STATE_SYSTEM_SELECTED) != 0 ? TRUE : FALSE;
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE get_SelectionContainer(IRawElementProviderSimple** container) override {
        *container = nullptr;
        return S_OK;
    }

  private:
    void* Interface(REFIID wanted) {
        if (wanted == __uuidof(IUnknown) || wanted == __uuidof(IRawElementProviderSimple)) {
            return static_cast<IRawElementProviderSimple*>(this);
        }
        if (wanted == __uuidof(IRawElementProviderFragment)) {
            return static_cast<IRawElementProviderFragment*>(this);
        }
        if (part_number == 0 && wanted == __uuidof(IRawElementProviderFragmentRoot)) {
            return static_cast<IRawElementProviderFragmentRoot*>(this);
        }
        if (wanted == AUTOMATION_INVOKE_ID) {
            return static_cast<Automation_Invoke*>(this);
        }
        if (wanted == AUTOMATION_VALUE_ID) {
            return static_cast<Automation_Value*>(this);
        }
        return wanted == AUTOMATION_SELECTION_ITEM_ID ? static_cast<Automation_Selection_Item*>(this) : nullptr;
    }
    static bool Is_Choice(const Accessible_Part& asked) {
        return asked.role == ROLE_SYSTEM_PAGETAB || asked.role == ROLE_SYSTEM_OUTLINEITEM;
    }
    /** The part as it is now; the window as a part. */
    template <class Call>
    HRESULT Of_Element(Call call) {
        std::optional<Accessible_Snapshot> asked = Accessible_Snapshot_Ask(window);
        if (!asked || static_cast<std::size_t>(part_number) > asked->parts.size()) {
            return NOT_AVAILABLE;
        }
        if (part_number != 0) {
            return call(asked->parts[static_cast<std::size_t>(part_number) - 1]);
        }
        Accessible_Part whole;
        whole.name = asked->name;
        whole.value = asked->value;
        whole.role = asked->role;
        whole.place = asked->place;
        return call(whole);
    }
    HRESULT Give(int number, IRawElementProviderFragment** to) const {
        *to = new (std::nothrow) Automation_Element(window, number);
        return *to != nullptr ? S_OK : E_OUTOFMEMORY;
    }
    static HRESULT Text(const std::wstring& text, VARIANT* value) {
        value->bstrVal = ::SysAllocString(text.c_str());
        value->vt = value->bstrVal != nullptr ? VT_BSTR : VT_EMPTY;
        return value->bstrVal != nullptr ? S_OK : E_OUTOFMEMORY;
    }
    static HRESULT Number(int number, VARIANT* value) {
        value->vt = VT_I4;
        value->lVal = number;
        return S_OK;
    }
    static HRESULT Truth(bool truth, VARIANT* value) {
        value->vt = VT_BOOL;
        value->boolVal = truth ? VARIANT_TRUE : VARIANT_FALSE;
        return S_OK;
    }

    const HWND window;
    const int part_number;
};

}  // namespace

IRawElementProviderSimple* Automation_Provider_Make(HWND window) {
    return new (std::nothrow) Automation_Element(window, 0);
}

LRESULT Automation_Answer(HWND window, WPARAM wparam, LPARAM lparam) {
    if (static_cast<LONG>(lparam) != ROOT_OBJECT) {
        return 0;
    }
    const auto give = Library().Find<Provider_To_Answer>("UiaReturnRawElementProvider");
    IRawElementProviderSimple* const provider = give != nullptr ? Automation_Provider_Make(window) : nullptr;
    if (provider == nullptr) {
        return 0;
    }
    const LRESULT answer = give(window, wparam, lparam, provider);
    provider->Release();
    return answer;
}

void Automation_Forget(HWND window) {
    if (!is_library_loaded) {
        return;
    }
    if (const auto give = Library().Find<Provider_To_Answer>("UiaReturnRawElementProvider"); give != nullptr) {
        give(window, 0, 0, nullptr);
    }
}

}  // namespace workbench
