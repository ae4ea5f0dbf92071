#include "workbench/accessible.h"

#include <oleacc.h>

#include <cstddef>
#include <exception>
#include <optional>
#include <utility>

#include "kits/widgets/shown_widgets.h"
#include "workbench/accessible_snapshot.h"
#include "workbench/automation_provider.h"
#include "workbench/com_object.h"
#include "workbench/system_library.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

/** Loaded with the first question: most sessions are never asked. */
const System_Library& Library() {
    static const System_Library library(L"oleacc.dll");
    return library;
}
using Object_To_Answer = LRESULT(WINAPI*)(REFIID, WPARAM, LPUNKNOWN);
using Window_To_Object = HRESULT(WINAPI*)(HWND, DWORD, REFIID, void**);

/** The system's object for a window. Its children are numbers, 1 and up: the parts. */
class Accessible_Window final : public Com_Object<IAccessible> {
  public:
    Accessible_Window(HWND of_window, std::weak_ptr<Accessible_Source> answers)
        : window(of_window), source(std::move(answers)) {}

    // IUnknown
    HRESULT STDMETHODCALLTYPE QueryInterface(REFIID wanted, void** object) override {
        if (object == nullptr) {
            return E_POINTER;
        }
        if (::IsEqualGUID(wanted, IID_IUnknown) != 0 || ::IsEqualGUID(wanted, IID_IDispatch) != 0 ||
            ::IsEqualGUID(wanted, IID_IAccessible) != 0) {
            *object = static_cast<IAccessible*>(this);
            AddRef();
            return S_OK;
        }
        *object = nullptr;
        return E_NOINTERFACE;
    }

    // IDispatch: late binding is not offered.
    HRESULT STDMETHODCALLTYPE GetTypeInfoCount(UINT* count) override {
        *count = 0;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE GetTypeInfo(UINT, LCID, ITypeInfo**) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE GetIDsOfNames(REFIID, LPOLESTR*, UINT, LCID, DISPID*) override { return E_NOTIMPL; }
    HRESULT STDMETHODCALLTYPE Invoke(DISPID, REFIID, LCID, WORD, DISPPARAMS*, VARIANT*, EXCEPINFO*, UINT*) override {
        return E_NOTIMPL;
    }

    // IAccessible
    HRESULT STDMETHODCALLTYPE get_accParent(IDispatch** parent) override {
        *parent = nullptr;
        const auto find = Library().Find<Window_To_Object>("AccessibleObjectFromWindow");
        return find == nullptr
                   ? S_FALSE
                   : find(window, static_cast<DWORD>(OBJID_WINDOW), IID_IDispatch, reinterpret_cast<void**>(parent));
    }
    HRESULT STDMETHODCALLTYPE get_accChildCount(LONG* count) override {
        return Answer([&](const Accessible_Source& asked) {
            *count = static_cast<LONG>(Parts(asked).size());
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE get_accChild(VARIANT, IDispatch** child) override {
        *child = nullptr;
        return S_FALSE;  // parts have no objects of their own
    }
    HRESULT STDMETHODCALLTYPE get_accName(VARIANT child, BSTR* name) override {
        return Text(
            child, name, [](const Accessible_Source& asked) { return asked.name ? asked.name() : L""; },
            &Accessible_Part::name);
    }
    HRESULT STDMETHODCALLTYPE get_accValue(VARIANT child, BSTR* value) override {
        return Text(
            child, value, [](const Accessible_Source& asked) { return asked.value ? asked.value() : L""; },
            &Accessible_Part::value);
    }
    HRESULT STDMETHODCALLTYPE get_accRole(VARIANT child, VARIANT* role) override {
        return Number(
            child, role, [](const Accessible_Source& asked) { return asked.role; }, &Accessible_Part::role);
    }
    HRESULT STDMETHODCALLTYPE get_accState(VARIANT child, VARIANT* state) override {
        return Number(
            child, state, [](const Accessible_Source&) { return LONG{0}; }, &Accessible_Part::state);
    }
    HRESULT STDMETHODCALLTYPE get_accDescription(VARIANT, BSTR* text) override { return No_Text(text); }
    HRESULT STDMETHODCALLTYPE get_accHelp(VARIANT, BSTR* text) override { return No_Text(text); }
    HRESULT STDMETHODCALLTYPE get_accHelpTopic(BSTR* file, VARIANT, LONG*) override { return No_Text(file); }
    HRESULT STDMETHODCALLTYPE get_accKeyboardShortcut(VARIANT, BSTR* text) override { return No_Text(text); }
    HRESULT STDMETHODCALLTYPE get_accFocus(VARIANT* child) override {
        child->vt = VT_EMPTY;
        return S_FALSE;
    }
    HRESULT STDMETHODCALLTYPE get_accSelection(VARIANT* children) override {
        children->vt = VT_EMPTY;
        return Answer([&](const Accessible_Source& asked) {
            const std::vector<Accessible_Part> parts = Parts(asked);
            for (std::size_t at = 0; at < parts.size(); ++at) {
                if ((parts[at].state & STATE_SYSTEM_SELECTED) != 0) {
                    children->vt = VT_I4;
                    children->lVal = static_cast<LONG>(at) + 1;
                    return S_OK;
                }
            }
            return S_FALSE;
        });
    }
    HRESULT STDMETHODCALLTYPE get_accDefaultAction(VARIANT child, BSTR* action) override {
        *action = nullptr;
        return Of_Part(child, [&](const Accessible_Part& part) {
            if (!Accessible_Is_Pressed(part)) {
                return DISP_E_MEMBERNOTFOUND;
            }
            *action = ::SysAllocString(L"Press");
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE accSelect(LONG, VARIANT) override { return DISP_E_MEMBERNOTFOUND; }
    HRESULT STDMETHODCALLTYPE accLocation(LONG* left, LONG* top, LONG* width, LONG* height, VARIANT child) override {
        RECT place = {};
        ::GetClientRect(window, &place);
        if (child.lVal != CHILDID_SELF) {
            const HRESULT result = Of_Part(child, [&](const Accessible_Part& part) {
                place = part.place;
                return S_OK;
            });
            if (FAILED(result)) {
                return result;
            }
        }
        ::MapWindowPoints(window, nullptr, reinterpret_cast<POINT*>(&place), 2);
        *left = place.left;
        *top = place.top;
        *width = place.right - place.left;
        *height = place.bottom - place.top;
        return S_OK;
    }
    HRESULT STDMETHODCALLTYPE accNavigate(LONG direction, VARIANT from, VARIANT* to) override {
        to->vt = VT_EMPTY;
        return Answer([&](const Accessible_Source& asked) {
            const auto count = static_cast<LONG>(Parts(asked).size());
            LONG wanted = 0;
            if (from.lVal == CHILDID_SELF) {
                wanted = direction == NAVDIR_FIRSTCHILD ? 1 : direction == NAVDIR_LASTCHILD ? count : 0;
            } else {
                wanted = direction == NAVDIR_NEXT ? from.lVal + 1 : direction == NAVDIR_PREVIOUS ? from.lVal - 1 : 0;
            }
            if (wanted < 1 || wanted > count) {
                return S_FALSE;
            }
            to->vt = VT_I4;
            to->lVal = wanted;
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE accHitTest(LONG x, LONG y, VARIANT* child) override {
        child->vt = VT_EMPTY;
        POINT point = {x, y};
        ::ScreenToClient(window, &point);
        RECT client = {};
        ::GetClientRect(window, &client);
        if (::PtInRect(&client, point) == 0) {
            return S_FALSE;
        }
        return Answer([&](const Accessible_Source& asked) {
            child->vt = VT_I4;
            child->lVal = CHILDID_SELF;
            const std::vector<Accessible_Part> parts = Parts(asked);
            for (std::size_t at = 0; at < parts.size(); ++at) {
                if (::PtInRect(&parts[at].place, point) != 0) {
                    child->lVal = static_cast<LONG>(at) + 1;
                }
            }
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE accDoDefaultAction(VARIANT child) override {
        return Of_Part(child, [&](const Accessible_Part& part) {
            if (!Accessible_Is_Pressed(part)) {
                return DISP_E_MEMBERNOTFOUND;
            }
            Accessible_Press(window,
                             {(part.place.left + part.place.right) / 2, (part.place.top + part.place.bottom) / 2});
            return S_OK;
        });
    }
    HRESULT STDMETHODCALLTYPE put_accName(VARIANT, BSTR) override { return DISP_E_MEMBERNOTFOUND; }
    HRESULT STDMETHODCALLTYPE put_accValue(VARIANT, BSTR) override { return DISP_E_MEMBERNOTFOUND; }

  private:
    static std::vector<Accessible_Part> Parts(const Accessible_Source& asked) {
        return asked.parts ? asked.parts() : std::vector<Accessible_Part>();
    }
    static HRESULT No_Text(BSTR* text) {
        *text = nullptr;
        return S_FALSE;
    }
    /** No exception crosses into the system. */
    template <class Call>
    HRESULT Answer(Call call) {
        const std::shared_ptr<Accessible_Source> asked = source.lock();
        if (asked == nullptr) {
            return CO_E_OBJNOTCONNECTED;
        }
        try {
            return call(*asked);
        } catch (const std::exception&) {
            return E_FAIL;
        }
    }
    template <class Call>
    HRESULT Of_Part(const VARIANT& child, Call call) {
        return Answer([&](const Accessible_Source& asked) -> HRESULT {
            const std::vector<Accessible_Part> parts = Parts(asked);
            if (child.vt != VT_I4 || child.lVal < 1 || static_cast<std::size_t>(child.lVal) > parts.size()) {
                return E_INVALIDARG;
            }
            return call(parts[static_cast<std::size_t>(child.lVal) - 1]);
        });
    }
    template <class Own>
    HRESULT Text(const VARIANT& child, BSTR* text, Own own, std::wstring Accessible_Part::*of_part) {
        *text = nullptr;
        const auto give = [&](const std::wstring& found) {
            *text = found.empty() ? nullptr : ::SysAllocString(found.c_str());
            return *text == nullptr ? S_FALSE : S_OK;
        };
        if (child.vt == VT_I4 && child.lVal == CHILDID_SELF) {
            return Answer([&](const Accessible_Source& asked) { return give(own(asked)); });
        }
        return Of_Part(child, [&](const Accessible_Part& part) { return give(part.*of_part); });
    }
    template <class Own>
    HRESULT Number(const VARIANT& child, VARIANT* number, Own own, LONG Accessible_Part::*of_part) {
        number->vt = VT_EMPTY;
        const auto give = [&](LONG found) {
            number->vt = VT_I4;
            number->lVal = found;
            return S_OK;
        };
        if (child.vt == VT_I4 && child.lVal == CHILDID_SELF) {
            return Answer([&](const Accessible_Source& asked) { return give(own(asked)); });
        }
        return Of_Part(child, [&](const Accessible_Part& part) { return give(part.*of_part); });
    }

    HWND window;
    std::weak_ptr<Accessible_Source> source;
};

/** Blanks at the ends of a caption only place it. */
std::wstring Without_Blanks(const std::wstring& text) {
    const std::size_t first = text.find_first_not_of(L' ');
    return first == std::wstring::npos ? L"" : text.substr(first, text.find_last_not_of(L' ') + 1 - first);
}

LONG Role_Of(Widget_Kind kind) {
    switch (kind) {
        case Widget_Kind::Label:
            return ROLE_SYSTEM_STATICTEXT;
        case Widget_Kind::List:
            return ROLE_SYSTEM_COMBOBOX;
        case Widget_Kind::Slider:
            return ROLE_SYSTEM_SCROLLBAR;
        case Widget_Kind::Value:
            return ROLE_SYSTEM_SLIDER;
        case Widget_Kind::Text:
            return ROLE_SYSTEM_TEXT;
        default:
            return ROLE_SYSTEM_PUSHBUTTON;
    }
}

}  // namespace

bool Accessible_Is_Pressed(const Accessible_Part& part) {
    return (part.state & STATE_SYSTEM_UNAVAILABLE) == 0 &&
           (part.role == ROLE_SYSTEM_PUSHBUTTON || part.role == ROLE_SYSTEM_PAGETAB ||
            part.role == ROLE_SYSTEM_OUTLINEITEM);
}

void Accessible_Press(HWND window, POINT point) {
    const LPARAM place = MAKELPARAM(static_cast<WORD>(point.x), static_cast<WORD>(point.y));
    ::PostMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, place);
    ::PostMessageW(window, WM_LBUTTONUP, 0, place);
}

std::optional<LRESULT> Accessible_Message(HWND window, UINT message, WPARAM wparam, LPARAM lparam,
                                          const std::shared_ptr<Accessible_Source>& source) {
    if (message == WM_DESTROY) {
        Automation_Forget(window);
        return std::nullopt;
    }
    if (source != nullptr && message == WM_GETOBJECT) {
        LRESULT answer = Automation_Answer(window, wparam, lparam);
        answer = answer != 0 ? answer : Accessible_Answer(window, wparam, lparam, source);
        return answer != 0 ? std::optional<LRESULT>(answer) : std::nullopt;
    }
    return Accessible_Snapshot_Answer(window, message, wparam, source) ? std::optional<LRESULT>(0) : std::nullopt;
}

LRESULT Accessible_Answer(HWND window, WPARAM wparam, LPARAM lparam, const std::shared_ptr<Accessible_Source>& source) {
    if (static_cast<LONG>(lparam) != OBJID_CLIENT || source == nullptr) {
        return 0;
    }
    const auto give = Library().Find<Object_To_Answer>("LresultFromObject");
    if (give == nullptr) {
        return 0;
    }
    auto* object = new (std::nothrow) Accessible_Window(window, source);
    if (object == nullptr) {
        return 0;
    }
    const LRESULT answer = give(IID_IAccessible, wparam, object);
    object->Release();
    return answer;
}

std::vector<Accessible_Part> Widget_Parts(HWND window, const std::function<std::wstring(int index)>& name) {
    std::vector<Accessible_Part> parts;
    int nameless = 0;
    Shown_Widget shown;
    for (int at = 0; Window_Widget_Get(window, at, &shown); ++at) {
        Accessible_Part part;
        part.name = Without_Blanks(Wide_Of_Panel(shown.name));
        part.value = Wide_Of_Panel(shown.value);
        if (part.name.empty() && name) {
            part.name = name(nameless++);
        }
        part.role = Role_Of(shown.kind);
        part.state = (shown.is_current ? STATE_SYSTEM_SELECTED : 0) | (shown.is_checked ? STATE_SYSTEM_CHECKED : 0) |
                     (shown.is_inactive ? STATE_SYSTEM_UNAVAILABLE : 0);
        part.place = {shown.left, shown.top, shown.left + shown.width, shown.top + shown.height};
        parts.push_back(std::move(part));
    }
    return parts;
}

}  // namespace workbench
