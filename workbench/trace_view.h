/** The list of what the panels trace. */
#pragma once

#include <deque>
#include <string>

#include "base/wheel_remainder.h"
#include "workbench/look.h"
#include "workbench/window_base.h"

namespace workbench {

/** Keeps the last lines always, also while it is hidden. */
class Trace_View : public Window_Base {
  public:
    explicit Trace_View(const Look& shared_look) : look(shared_look) {}
    bool Make(HWND parent);
    int Wanted_Height() const { return look.Px(150); }
    void Add(int level, const std::string& text);
    void Wheel(int delta);
    /** The lines in view, the newest last. */
    std::wstring Text() const;

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override;

  private:
    struct Entry {
        int level = 0;
        std::string text;
        unsigned int repeats = 1;  ///< how often it came in a row
    };
    void Paint();
    std::size_t First_In_View() const;
    static std::wstring Line_Text(const Entry& entry);
    int Lines_In_View() const;

    const Look& look;
    std::deque<Entry> entries;
    int back = 0;  ///< lines scrolled back from the newest
    Wheel_Remainder wheel{3};
};

}  // namespace workbench
