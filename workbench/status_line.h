/** The line at the foot of the window: what happened, and what is under the mouse. */
#pragma once

#include <string>

#include "workbench/look.h"
#include "workbench/window_base.h"

namespace workbench {

class Status_Line : public Window_Base {
  public:
    explicit Status_Line(const Look& shared_look) : look(shared_look) {}
    bool Make(HWND parent);
    int Wanted_Height() const { return look.Px(26); }
    void Message_Set(const std::wstring& text);
    void Voxel_Set(const std::wstring& text);
    /** A lasting note, left of the voxel; empty: none. */
    void Mark_Set(const std::wstring& text);
    const std::wstring& Message() const { return message_text; }
    const std::wstring& Voxel() const { return voxel; }
    const std::wstring& Mark() const { return mark; }

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override;

  private:
    /** @return its width */
    int Draw_Mark(HDC dc, const RECT& room) const;
    const Look& look;
    std::wstring message_text;
    std::wstring voxel;
    std::wstring mark;
};

}  // namespace workbench
