/** A program that reads the screen by UI Automation: asks from a thread of its own, while the windows' thread serves
 *  its messages. Uses the operations of uiautomationcore.dll itself, which its COM objects are made of: not every
 *  system has those objects. */
#pragma once

#include "base/gdi_handles.h"

#include <gtest/gtest.h>
#include <oleauto.h>

#include <optional>
#include <string>
#include <thread>
#include <vector>

/** What the client read of one element. */
struct Heard_Element {
    std::wstring name;
    std::wstring status;  ///< states in words
    int control_type = 0;
    int level = 0;  ///< in a tree, from 1; 0: in none
    bool is_enabled = false;
};

class Automation_Client {
  public:
    /** The window, then its parts in their order; empty: UI Automation knows no such window. */
    static std::vector<Heard_Element> Read(HWND window) {
        std::vector<Heard_Element> heard;
        Beside([&] { heard = Automation_Client().Read_All(window); });
        return heard;
    }
    /** Runs something on a thread as a client's, and serves this thread's windows until it is done. */
    template <class Call>
    static void Beside(Call call) {
        const HANDLE done = ::CreateEventW(nullptr, TRUE, FALSE, nullptr);
        std::thread client([&] {
            ::CoInitializeEx(nullptr, COINIT_MULTITHREADED);
            call();
            ::CoUninitialize();
            ::SetEvent(done);
        });
        Serve(done);
        client.join();
        ::CloseHandle(done);
    }

  private:
    using Node = void*;
    struct Condition {
        int type = 0;  // 0: true
    };
    struct Cache_Request {
        Condition* view = nullptr;
        int scope = 1;  // the element alone
        int* properties = nullptr;
        int property_nb = 0;
        int* patterns = nullptr;
        int pattern_nb = 0;
        int mode = 1;  // with its node
    };
    static constexpr int FIRST_CHILD = 3;
    static constexpr int NEXT_SIBLING = 1;

    Automation_Client() : library(::LoadLibraryW(L"uiautomationcore.dll")) {}

    static void Serve(HANDLE until) {
        MSG message = {};
        while (::MsgWaitForMultipleObjects(1, &until, FALSE, 20000, QS_ALLINPUT) == WAIT_OBJECT_0 + 1) {
            while (::PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE) != 0) {
                ::DispatchMessageW(&message);
            }
        }
    }
    template <class Function>
    Function Find(const char* name) const {
        return reinterpret_cast<Function>(reinterpret_cast<void*>(::GetProcAddress(library, name)));
    }
    std::vector<Heard_Element> Read_All(HWND window) const {
        std::vector<Heard_Element> heard;
        Node node = nullptr;
        if (FAILED(Find<HRESULT(WINAPI*)(HWND, Node*)>("UiaNodeFromHandle")(window, &node))) {
            return heard;
        }
        heard.push_back(Read_One(node));
        for (Node part = Step(node, FIRST_CHILD); part != nullptr && heard.size() < 1000;) {
            heard.push_back(Read_One(part));
            Node next = Step(part, NEXT_SIBLING);
            Release(part);
            part = next;
        }
        Release(node);
        return heard;
    }
    Heard_Element Read_One(Node node) const {
        Heard_Element one;
        one.name = Text(node, 30005);
        one.status = Text(node, 30026);
        one.control_type = Number(node, 30003);
        one.level = Number(node, 30154);
        one.is_enabled = Property(node, 30010).boolVal != VARIANT_FALSE;
        return one;
    }
    std::wstring Text(Node node, int number) const {
        VARIANT value = Property(node, number);
        const std::wstring text = value.vt == VT_BSTR ? value.bstrVal : L"";
        ::VariantClear(&value);
        return text;
    }
    int Number(Node node, int number) const {
        VARIANT value = Property(node, number);
        const int found = value.vt == VT_I4 ? static_cast<int>(value.lVal) : 0;
        ::VariantClear(&value);  // what is not supported is told by an object
        return found;
    }
    VARIANT Property(Node node, int number) const {
        VARIANT value = {};
        Find<HRESULT(WINAPI*)(Node, int, VARIANT*)>("UiaGetPropertyValue")(node, number, &value);
        return value;
    }
    Node Step(Node from, int direction) const {
        using Navigate = HRESULT(WINAPI*)(Node, int, Condition*, Cache_Request*, SAFEARRAY**, BSTR*);
        using From_Variant = HRESULT(WINAPI*)(VARIANT*, Node*);
        Condition all;
        Cache_Request request;
        request.view = &all;
        SAFEARRAY* found = nullptr;
        BSTR structure = nullptr;
        Node node = nullptr;
        if (SUCCEEDED(Find<Navigate>("UiaNavigate")(from, direction, &all, &request, &found, &structure)) &&
            found != nullptr) {
            LONG first[] = {0, 0};
            VARIANT element = {};
            if (SUCCEEDED(::SafeArrayGetElement(found, first, &element))) {
                Find<From_Variant>("UiaHUiaNodeFromVariant")(&element, &node);
                ::VariantClear(&element);
            }
            ::SafeArrayDestroy(found);
        }
        ::SysFreeString(structure);
        return node;
    }
    void Release(Node node) const { Find<BOOL(WINAPI*)(Node)>("UiaNodeRelease")(node); }

    HMODULE library;
};
