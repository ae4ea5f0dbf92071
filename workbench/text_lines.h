/** Fields of many lines of text, to read and to copy from. */
#pragma once

#include "base/gdi_handles.h"

#include <functional>
#include <string>
#include <utility>

namespace workbench {

/** A field of several lines that fills a window, with a hidden label that tells screen readers what it is. */
HWND Lines_Make(HWND parent, HWND* label);
/** Another text; what is seen of it stays where it was. @param text lines end with '\n' */
void Lines_Set(HWND field, const std::wstring& text);

/** Lets the user choose a line of such a field, by a double click or Enter. Letters that are typed there, which the
 *  field has no use for, go to the main window; Escape takes the keyboard back there. */
class Row_Choice {
  public:
    Row_Choice() = default;
    Row_Choice(const Row_Choice&) = delete;
    Row_Choice& operator=(const Row_Choice&) = delete;
    ~Row_Choice();

    void Watch(HWND of_field);
    /** Told the line, from 0. */
    void Listen(std::function<void(int line)> listener) { chosen = std::move(listener); }

  private:
    static LRESULT CALLBACK Procedure(HWND field, UINT message, WPARAM wparam, LPARAM lparam) noexcept;
    /** @return the line that a message chooses; -1: none */
    int Line_Of(UINT message, WPARAM wparam, LPARAM lparam) const;

    HWND field = nullptr;
    WNDPROC own = nullptr;  // of the field
    std::function<void(int line)> chosen;
};

}  // namespace workbench
