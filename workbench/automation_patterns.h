/** Interfaces of UI Automation that a provider hands out beside its own. Not every compiler's headers have them, so
 *  that they stand here under names of their own; numbers and order of the operations are the system's. */
#pragma once

#include <windows.h>

#include <oleauto.h>
#include <unknwn.h>

struct IRawElementProviderSimple;

namespace workbench {

inline constexpr int AUTOMATION_INVOKE_PATTERN = 10000;
inline constexpr int AUTOMATION_VALUE_PATTERN = 10002;
inline constexpr int AUTOMATION_SELECTION_ITEM_PATTERN = 10010;

inline constexpr GUID AUTOMATION_INVOKE_ID = {
    0x54fcb24b, 0xe18e, 0x47a2, {0xb4, 0xd3, 0xec, 0xcb, 0xe7, 0x75, 0x99, 0xa2}};
inline constexpr GUID AUTOMATION_VALUE_ID = {
    0xc7935180, 0x6fb3, 0x4201, {0xb1, 0x74, 0x7d, 0xf7, 0x3a, 0xdb, 0xf6, 0x4a}};
inline constexpr GUID AUTOMATION_SELECTION_ITEM_ID = {
    0x2acad808, 0xb2d4, 0x452d, {0xa4, 0x07, 0x91, 0xff, 0x1a, 0xd1, 0x67, 0xb2}};

/** Can be pressed. */
class Automation_Invoke : public IUnknown {
  public:
    virtual HRESULT STDMETHODCALLTYPE Invoke() = 0;
};

/** Has a value as text. */
class Automation_Value : public IUnknown {
  public:
    virtual HRESULT STDMETHODCALLTYPE SetValue(LPCWSTR value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_Value(BSTR* value) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsReadOnly(BOOL* is_read_only) = 0;
};

/** Is one of several that can be chosen. */
class Automation_Selection_Item : public IUnknown {
  public:
    virtual HRESULT STDMETHODCALLTYPE Select() = 0;
    virtual HRESULT STDMETHODCALLTYPE AddToSelection() = 0;
    virtual HRESULT STDMETHODCALLTYPE RemoveFromSelection() = 0;
    virtual HRESULT STDMETHODCALLTYPE get_IsSelected(BOOL* is_selected) = 0;
    virtual HRESULT STDMETHODCALLTYPE get_SelectionContainer(IRawElementProviderSimple** container) = 0;
};

}  // namespace workbench
