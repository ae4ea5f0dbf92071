/** A table to read beside the pictures: the fourth view of the image. */
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "base/wheel_remainder.h"
#include "workbench/look.h"
#include "workbench/text_lines.h"
#include "workbench/window_base.h"

namespace workbench {

class Table_View : public Window_Base {
  public:
    explicit Table_View(const Look& shared_look) : look(shared_look) {}
    /** Hidden at first. */
    bool Make(HWND parent);
    /** @param text lines end with '\n', for letters of one width */
    void Text_Set(const std::wstring& table_title, const std::wstring& text);
    /** @param delta as WM_MOUSEWHEEL tells it */
    void Wheel(int delta);
    /** Told which line was chosen by a double click or Enter, from 0. */
    void Row_Listen(std::function<void(int line)> listener) { row_choice.Listen(std::move(listener)); }

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override;

  private:
    int Title_Height() const;
    void Lay_Out() const;
    void Fonts_Set();

    const Look& look;
    std::wstring title;
    Row_Choice row_choice;
    HWND label = nullptr;  // of the text, for screen readers
    Wheel_Remainder wheel;
    HWND lines = nullptr;  // the child that shows the text
    HFONT font_set = nullptr;
};

}  // namespace workbench
