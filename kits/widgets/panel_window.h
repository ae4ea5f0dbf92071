/** @file
 *  A panel in a window: events go in, drawing comes out in one piece. For hosts on Windows, who may use it as it is or
 *  read how events reach a panel. User-interface thread.
 *
 *  Includes <windows.h>, so a host that wants NOMINMAX or WIN32_LEAN_AND_MEAN defines them before. */
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <type_traits>
#include <utility>

#include "base/wheel_remainder.h"
#include "host/kit_dataset.h"
#include "kits/widgets/widgets_host.h"

namespace kit {

/** A panel of any class. */
class Hosted_Panel {
  public:
    Hosted_Panel() = default;
    virtual ~Hosted_Panel() = default;
    Hosted_Panel(const Hosted_Panel&) = delete;
    Hosted_Panel& operator=(const Hosted_Panel&) = delete;
    ///@{
    /** The operations of the panel, see docs/hosting.md. */
    virtual void Resize(Boxs* box) = 0;
    virtual int Height() = 0;
    virtual void Draw() = 0;
    virtual int Click(int up_down) = 0;
    virtual int Motion(int up_down) = 0;
    virtual int Scroll(int notches) = 0;
    virtual int Keyboard(int key) = 0;
    virtual void Leave() = 0;
    virtual void Update(unsigned __int64 flags) = 0;
    ///@}
};

/** A panel of the module, hosted as it is. @tparam Panel one of its classes */
template <class Panel>
class Panel_Of : public Hosted_Panel {
  public:
    /** @param hosted outlives this; @param wanted the height that the panel wants, pixels */
    Panel_Of(Panel& hosted, std::function<int(Panel&)> wanted) : panel(hosted), height(std::move(wanted)) {}
    ///@{
    /** Hands on. */
    void Resize(Boxs* box) override { panel.Resize(box); }
    int Height() override { return height(panel); }
    void Draw() override { panel.Draw(); }
    int Click(int up_down) override { return panel.Click(up_down); }
    int Motion(int up_down) override { return panel.Motion(up_down); }
    int Scroll(int notches) override { return panel.Scroll(notches); }
    int Keyboard(int key) override { return panel.Keyboard(key); }
    void Leave() override { panel.Leave(); }
    ///@}
    /** A histogram panel whose counts came or went is drawn: an empty one paints nothing by itself. */
    void Update(unsigned __int64 flags) override {
        const bool had_counts = Has_Counts();
        panel.Update(flags);
        if (Has_Counts() != had_counts) {
            panel.Draw();
        }
    }

  private:
    bool Has_Counts() const {
        if constexpr (requires(Panel & of) { of.data->Has_Counts(); }) {
            return panel.data != nullptr && panel.data->Has_Counts();
        }
        return false;
    }
    Panel& panel;
    std::function<int(Panel&)> height;
};

/** The window of one panel: sets the pointer globals before every event, holds the capture while a button is down,
 *  keeps parts of wheel notches, and shows what the panel drew at once.
 *
 *  A Click may run a modal loop (drop lists, dialogs) in which the host destroys panel and window: nothing is touched
 *  after that. When it returns, the capture may be gone; a release is then not told, and panels need none. */
class Panel_Window {
  public:
    /** Called with what Click returned and the event code, after every press and release. */
    using Click_Answer = std::function<void(int result, int up_down)>;

    /** @param hosted outlives this; @param on_click may be empty */
    explicit Panel_Window(Hosted_Panel& hosted, Click_Answer on_click = {})
        : panel(hosted), clicked(std::move(on_click)) {}
    ~Panel_Window() {
        Detach();
        if (own_window != nullptr) {
            ::SetWindowLongPtrW(own_window, GWLP_USERDATA, 0);
            ::DestroyWindow(own_window);
        }
    }
    Panel_Window(const Panel_Window&) = delete;
    Panel_Window& operator=(const Panel_Window&) = delete;

    Boxs look;                             ///< the panel's box but for place and window: colour, border, fonts, style
    Colors ground;                         ///< colour between the parts, which panels do not paint
    unsigned __int64 after_resize = 0;     ///< sent after each Resize, see kits/dataset/panel_flags.h
    std::function<void(int key)> untaken;  ///< keys that the panel did not use; may be empty

    /** Creates a child window of its own, shown as soon as it is placed. @param parent its window; @param axis see
     *  docs/coordinates.md
     *  @return false when the system refuses */
    bool Make(HWND parent, Window_Axis axis) {
        if (!window_class) {
            window_class = Window_Class::Shared();
        }
        own_window = ::CreateWindowExW(0, Window_Class::NAME, L"", WS_CHILD | WS_CLIPSIBLINGS | WS_VISIBLE, 0, 0, 0, 0,
                                       parent, nullptr, window_class->module, nullptr);
        if (own_window == nullptr) {
            return false;
        }
        ::SetWindowLongPtrW(own_window, GWLP_USERDATA, reinterpret_cast<LONG_PTR>(this));
        ::RegisterTouchWindow(own_window, 0);
        Attach(own_window, axis);
        return true;
    }
    /** Takes a window of the host, whose procedure hands its messages to Message. */
    void Attach(HWND of_host, Window_Axis axis) {
        window = of_host;
        Window_Axis_Set(window, axis);
    }
    /** Lets go of a window of the host that is being destroyed. */
    void Detach() {
        if (window != nullptr) {
            Window_Forget(window);
        }
        window = nullptr;
        is_laid_out = false;
    }
    /** The window; null before it was made and after the system destroyed it. */
    HWND Handle() const { return window; }
    /** True once the panel has a place: nothing reaches it before. */
    bool Is_Ready() const { return is_laid_out; }
    int Wanted_Height() { return panel.Height(); }  ///< pixels

    /** Moves a window of its own; the panel is laid out by that. Client pixels of the parent. */
    void Place(int x, int y, int width, int height) const {
        ::SetWindowPos(window, nullptr, x, y, width, height, SWP_NOZORDER | SWP_NOACTIVATE);
    }
    /** Gives the panel the whole window as its box and draws it. To be called again after a change of `look`. */
    void Lay_Out() {
        RECT client = {};
        if (::GetClientRect(window, &client) == FALSE || client.right <= 0 || client.bottom <= 0) {
            return;
        }
        Boxs box = look;
        box.x = 0;
        box.y = 0;
        box.width = Box_Size(client.right);
        box.height = Box_Size(client.bottom);
        box.window = window;
        Buffered([&] {
            Clear();
            panel.Resize(&box);
            is_laid_out = true;
            panel.Update(after_resize);
            panel.Draw();
        });
        ::InvalidateRect(window, nullptr, FALSE);
    }
    /** Shared state changed. */
    void Update(unsigned __int64 flags) {
        if (is_laid_out) {
            Buffered([&] { panel.Update(flags); });
        }
    }
    /** Draws the panel anew, at once. */
    void Refresh() {
        if (is_laid_out) {
            Buffered([&] {
                Clear();
                panel.Draw();
            });
        }
        ::ValidateRect(window, nullptr);
    }
    /** The wheel over this window. @param delta of the message; parts of a notch are kept */
    void Wheel(int delta) {
        const int notches = wheel.Add(delta);
        if (notches != 0 && is_laid_out) {
            Buffered([&] { panel.Scroll(notches); });
        }
    }
    /** A key code of Parse_Keyboard, with the pointer where it is. @return true when the panel used it */
    bool Key(int key) {
        if (!is_laid_out) {
            return false;
        }
        POINT pointer = {};
        ::GetCursorPos(&pointer);
        YCursor_X = pointer.x;
        YCursor_Y = pointer.y;
        Key_In_Hand_Set(key);
        int used = 0;
        Buffered([&] { used = panel.Keyboard(key); });
        Key_In_Hand_Set(0);
        return used != 0;
    }
    /** Runs a call and shows everything that it draws in the window at once, also when the window ends meanwhile.
     *  @return what the call returns */
    template <class Call>
    std::invoke_result_t<Call> Buffered(Call call) {
        const Buffer buffer(window);
        return call();
    }

    /** Handles a message of the window.
     *  @param message, wparam, lparam as the window procedure got them; @param answer receives the window procedure's
     *  result. @return false for a message that is not its own */
    bool Message(UINT message, WPARAM wparam, LPARAM lparam, LRESULT* answer) {
        *answer = 0;
        switch (message) {
            case WM_SIZE:
                Lay_Out();
                return true;
            case WM_PAINT:
                Refresh();
                return true;
            case WM_ERASEBKGND:
                *answer = 1;
                return true;
            case WM_LBUTTONDOWN:
            case WM_MBUTTONDOWN:
            case WM_RBUTTONDOWN:
            case WM_LBUTTONDBLCLK:
            case WM_MBUTTONDBLCLK:
            case WM_RBUTTONDBLCLK:
                ::SetCapture(window);  // a slider follows the pointer also outside
                Click(lparam, MOUSE_PRESS | Held_Buttons(wparam));
                return true;
            case WM_LBUTTONUP:
            case WM_MBUTTONUP:
            case WM_RBUTTONUP:
                if (Held_Buttons(wparam) == 0 && ::GetCapture() == window) {
                    ::ReleaseCapture();
                }
                Click(lparam, Held_Buttons(wparam));
                return true;
            case WM_MOUSEMOVE:
                Motion(lparam, Held_Buttons(wparam));
                return true;
            case WM_MOUSELEAVE:
                Buffered([&] { panel.Leave(); });
                return true;
            case WM_MOUSEWHEEL:
                if (window != own_window) {
                    return false;  // whose window the pointer is over is known to the host
                }
                Pointer_Take_Screen(lparam);
                Wheel(GET_WHEEL_DELTA_WPARAM(wparam));
                return true;
            case WM_TOUCH:
                Touch(message, wparam, lparam);
                return true;
            default:
                return false;
        }
    }

  private:
    /** The class of the windows that this module makes; it goes with the last of them. Another module has one of its
     * own with the same name, and one that is unloaded leaves nothing behind that would run its code. */
    struct Window_Class {
        static constexpr const wchar_t* NAME = L"Kit_Panel_Window";

        static std::shared_ptr<Window_Class> Shared() {
            static std::weak_ptr<Window_Class> living;
            std::shared_ptr<Window_Class> found = living.lock();
            if (!found) {
                living = found = std::make_shared<Window_Class>();
            }
            return found;
        }
        Window_Class() {
            ::GetModuleHandleExW(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                                 reinterpret_cast<LPCWSTR>(&Procedure), &module);
            WNDCLASSW made = {};
            made.style = CS_DBLCLKS;
            made.lpfnWndProc = Procedure;
            made.hInstance = module;
            made.hCursor = ::LoadCursorW(nullptr, MAKEINTRESOURCEW(32512));
            made.lpszClassName = NAME;
            ::RegisterClassW(&made);
        }
        ~Window_Class() { ::UnregisterClassW(NAME, module); }
        Window_Class(const Window_Class&) = delete;
        Window_Class& operator=(const Window_Class&) = delete;

        HMODULE module = nullptr;
    };
    struct Buffer {
        explicit Buffer(HWND of_window) : buffered(of_window) { Window_Buffer_Begin(buffered); }
        ~Buffer() { Window_Buffer_End(buffered); }
        Buffer(const Buffer&) = delete;
        Buffer& operator=(const Buffer&) = delete;
        HWND buffered;
    };

    static short Box_Size(LONG pixels) { return static_cast<short>(pixels < 32767 ? pixels : 32767); }
    static int Held_Buttons(WPARAM keys) {
        return ((keys & MK_LBUTTON) != 0 ? MOUSE_LEFT : 0) | ((keys & MK_MBUTTON) != 0 ? MOUSE_MIDDLE : 0) |
               ((keys & MK_RBUTTON) != 0 ? MOUSE_RIGHT : 0);
    }
    static void Pointer_Take_Screen(LPARAM position) {
        YCursor_X = static_cast<short>(LOWORD(position));
        YCursor_Y = static_cast<short>(HIWORD(position));
    }
    void Pointer_Take(LPARAM position) const {
        POINT pointer = {static_cast<short>(LOWORD(position)), static_cast<short>(HIWORD(position))};
        ::ClientToScreen(window, &pointer);
        YCursor_X = pointer.x;
        YCursor_Y = pointer.y;
    }
    void Click(LPARAM position, int up_down) {
        Pointer_Take(position);
        const std::weak_ptr<int> alive = life;
        int result = 0;
        Buffered([&] { result = panel.Click(up_down); });
        if (!alive.expired() && clicked) {
            clicked(result, up_down);
        }
    }
    void Motion(LPARAM position, int held) {
        TRACKMOUSEEVENT leave = {sizeof leave, TME_LEAVE, window, 0};
        ::TrackMouseEvent(&leave);
        Pointer_Take(position);
        Buffered([&] { panel.Motion(held != 0 ? held | MOUSE_DRAG : 0); });
    }
    /** Two fingers that move along the panel turn its wheel. */
    void Touch(UINT message, WPARAM wparam, LPARAM lparam) {
        constexpr float pixels_per_notch = 40.0F;
        if (const Gesture_Record* gesture =
                Fct_Pointer_Touch(window, message, static_cast<std::uintptr_t>(wparam), lparam)) {
            Wheel(static_cast<int>(gesture->dy * WHEEL_NOTCH / pixels_per_notch));
        }
    }
    void Clear() {
        RECT client = {};
        ::GetClientRect(window, &client);
        Boxs face;
        face.width = Box_Size(client.right);
        face.height = Box_Size(client.bottom);
        face.Init(window);
        face.Clear(ground);
    }
    static LRESULT CALLBACK Procedure(HWND of_window, UINT message, WPARAM wparam, LPARAM lparam) {
        auto* object = reinterpret_cast<Panel_Window*>(::GetWindowLongPtrW(of_window, GWLP_USERDATA));
        LRESULT answer = 0;
        if (object != nullptr && message == WM_NCDESTROY) {  // with its parent, maybe long before this object
            ::SetWindowLongPtrW(of_window, GWLP_USERDATA, 0);
            object->Detach();
            object->own_window = nullptr;
        } else if (object != nullptr && object->Typed(message, wparam, lparam)) {
            return 0;
        } else if (object != nullptr && object->Message(message, wparam, lparam, &answer)) {
            return answer;
        }
        return ::DefWindowProcW(of_window, message, wparam, lparam);
    }
    /** Keys reach a window that has the focus: a press gives it. */
    bool Typed(UINT message, WPARAM wparam, LPARAM lparam) {
        if (message == WM_LBUTTONDOWN || message == WM_RBUTTONDOWN) {
            ::SetFocus(window);
            return false;
        }
        if (message != WM_CHAR && message != WM_KEYDOWN) {
            return false;
        }
        const int key = Parse_Keyboard(window, message, static_cast<std::uintptr_t>(wparam), lparam);
        if (key == 0) {
            return false;
        }
        if (!Key(key) && untaken) {
            untaken(key);
        }
        return true;
    }

    Hosted_Panel& panel;
    Click_Answer clicked;
    std::shared_ptr<Window_Class> window_class;  // while there may be a window of its own
    HWND window = nullptr;
    HWND own_window = nullptr;  // the same, when this made it
    Wheel_Remainder wheel;
    std::shared_ptr<int> life = std::make_shared<int>(0);
    bool is_laid_out = false;
};

}  // namespace kit
