/** A window with a text to read, to scroll and to copy from. */
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "workbench/look.h"
#include "workbench/model/settings.h"
#include "workbench/text_lines.h"
#include "workbench/window_base.h"

namespace workbench {

/** Tables need letters of one width. */
enum class List_Font { Text, Fixed };

class List_Window : public Window_Base {
  public:
    explicit List_Window(const Look& shared_look) : look(shared_look) {}
    /** Shows a text, or another one in the window that is there already. @param text lines end with '\n' */
    void Open(HWND owner, const std::wstring& title, const std::wstring& text, List_Font font = List_Font::Text);
    /** Another text in the window that is there; it stays where it is and takes no keys. */
    void Text_Set(const std::wstring& title, const std::wstring& text);
    /** Told which line was chosen by a double click or Enter, from 0. */
    void Row_Listen(std::function<void(int line)> listener) { row_choice.Listen(std::move(listener)); }
    /** Where it opens. @param last as it stood before; without width: beside the owner
     *  @param tools width of what at the owner's left must stay free */
    void Place_Set(const Window_Place& last, int tools);
    /** Where it stands, or stood last. */
    Window_Place Place_Now() const;

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override;

  private:
    const Look& look;
    Row_Choice row_choice;
    Window_Place place;
    int tools_width = 0;
    HWND label = nullptr;  // of the text, for screen readers
    HWND lines = nullptr;  // the child that shows the text
};

}  // namespace workbench
