/** A window whose messages are handled by an object. */
#pragma once

#include "base/gdi_handles.h"

#include <exception>
#include <memory>

namespace workbench {

struct Accessible_Source;

/** Derive, call Create, answer messages in On_Message. The window is destroyed with the object. No exception leaves a
 *  window procedure: it becomes a warning. */
class Window_Base {
  public:
    Window_Base() = default;
    virtual ~Window_Base();
    Window_Base(const Window_Base&) = delete;
    Window_Base& operator=(const Window_Base&) = delete;

    HWND Handle() const { return own_handle; }
    /** Asks for a repaint; null: all of it. */
    void Invalidate(const RECT* area = nullptr) const;
    void Place(const RECT& area) const;
    void Show(bool shown) const;
    bool Is_Shown() const;
    RECT Client() const;
    /** What programs that read the screen aloud are told about the window; without it, what the system says. */
    void Accessible_Set(Accessible_Source source);

  protected:
    /** @param parent null: a window of its own @return false when the system refuses */
    bool Create(HWND parent, DWORD style, const wchar_t* title, HMENU menu = nullptr);
    virtual LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam);

  private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
    HWND own_handle = nullptr;
    std::shared_ptr<Accessible_Source> accessible;
};

/** Warns that an action ended by an exception. */
void Failure_Tell(const std::exception& failure);

/** Sets the pointer globals of the widgets to a position of a window. */
void Pointer_Take(HWND window, LPARAM client_position);
/** Button bits of an event code from a mouse message. */
int Held_Buttons(WPARAM keys);
/** Asks for WM_MOUSELEAVE. */
void Watch_Leave(HWND window);

}  // namespace workbench
