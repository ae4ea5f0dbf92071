/** Warnings above the image: readable, styled, and in nobody's way. */
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "kits/common/messages.h"
#include "workbench/look.h"
#include "workbench/model/dialogs.h"
#include "workbench/window_base.h"

namespace workbench {

class Warning_Banner : public Window_Base {
  public:
    /** @param on_change called when the banner appears, grows or goes, so that it is given its place */
    Warning_Banner(const Look& shared_look, std::function<void()> on_change)
        : look(shared_look), changed(std::move(on_change)) {}
    bool Make(HWND parent);
    /** Shows a message with its styles. Messages that follow one another at once stand below each other. */
    void Add(const std::vector<Message_Run>& runs);
    /** Shows the application's own warning. */
    void Add_Text(const std::wstring& text, Warning_Subject subject = Warning_Subject::Other);
    void Close();
    /** Takes away the lines of one subject; the others stay. */
    void Close(Warning_Subject subject);
    /** Everything that stands in the banner, line by line. */
    std::wstring Text() const;
    /** In a window of that width; 0 while there is nothing to say. */
    int Wanted_Height(int width) const;

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override;

  private:
    struct Run {
        Message_Style style = Message_Style::Plain;
        std::wstring text;
    };
    struct Line {
        std::vector<Run> runs;
        Warning_Subject subject = Warning_Subject::Other;
    };
    void Add_Lines(const std::vector<Run>& runs, Warning_Subject subject);
    void Paint();
    RECT Close_Box() const;
    /** The rows that the lines take in a window of that width. */
    std::vector<std::vector<Run>> Rows(int width) const;
    HFONT Font_Of(const Run& run) const;
    void Draw_Lines(HDC dc) const;

    const Look& look;
    std::function<void()> changed;
    std::vector<Line> lines;
    DWORD last_time = 0;  ///< of the last message, milliseconds
};

}  // namespace workbench
