/** A window as a program hears it that reads the screen by Active Accessibility. */
#pragma once

#include "base/gdi_handles.h"

#include <gtest/gtest.h>
#include <oleacc.h>

#include <string>

/** What a screen reader holds of a window. */
class Heard_Window {
  public:
    explicit Heard_Window(HWND window) {
        ::CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);  // as a reader does; more than once does no harm
        // Found by name: the import library has a jump in the place of the interface's number.
        using Window_To_Object = HRESULT(WINAPI*)(HWND, DWORD, REFIID, void**);
        const auto find = reinterpret_cast<Window_To_Object>(
            reinterpret_cast<void*>(::GetProcAddress(::LoadLibraryW(L"oleacc.dll"), "AccessibleObjectFromWindow")));
        result = find(window, static_cast<DWORD>(OBJID_CLIENT), IID_IAccessible, reinterpret_cast<void**>(&object));
    }
    ~Heard_Window() {
        if (object != nullptr) {
            object->Release();
        }
    }
    Heard_Window(const Heard_Window&) = delete;
    Heard_Window& operator=(const Heard_Window&) = delete;

    static VARIANT Child(LONG index) {
        VARIANT child = {};
        child.vt = VT_I4;
        child.lVal = index;
        return child;
    }
    std::wstring Name(LONG child) const { return Text(&IAccessible::get_accName, child); }
    std::wstring Value(LONG child) const { return Text(&IAccessible::get_accValue, child); }
    LONG Role(LONG child) const { return Number(&IAccessible::get_accRole, child); }
    LONG State(LONG child) const { return Number(&IAccessible::get_accState, child); }
    LONG Count() const {
        LONG count = -1;
        object->get_accChildCount(&count);
        return count;
    }
    RECT Place(LONG child) const {
        LONG left = 0, top = 0, width = 0, height = 0;
        EXPECT_EQ(object->accLocation(&left, &top, &width, &height, Child(child)), S_OK);
        return {left, top, left + width, top + height};
    }

    IAccessible* object = nullptr;
    HRESULT result = E_FAIL;

  private:
    std::wstring Text(HRESULT (STDMETHODCALLTYPE IAccessible::*get)(VARIANT, BSTR*), LONG child) const {
        BSTR text = nullptr;
        (object->*get)(Child(child), &text);
        const std::wstring copy = text != nullptr ? text : L"";
        ::SysFreeString(text);
        return copy;
    }
    LONG Number(HRESULT (STDMETHODCALLTYPE IAccessible::*get)(VARIANT, VARIANT*), LONG child) const {
        VARIANT number = {};
        (object->*get)(Child(child), &number);
        return number.vt == VT_I4 ? number.lVal : -1;
    }
};
