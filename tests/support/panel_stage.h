/** What a test or a benchmark gives a panel: a window that can be read back, a pointer, and records of messages and
 *  changed frames. Needs no test library. */
#pragma once

#include <cstdint>
#include <functional>
#include <vector>

#include "tests/support/panel_records.h"
#include "tests/support/panel_window.h"

/** A frame of a window that a panel changed. */
struct Frame_Change {
    Quorel_Window* window;
    Quorel_2D* to;
    Quorel_2D* from;
    friend bool operator==(const Frame_Change&, const Frame_Change&) = default;
};

class Panel_Stage {
  public:
    Panel_Stage(int in_width, int in_height, Window_Axis axis);

    HWND Window() const { return window.Get(); }
    Boxs Host_Box(int x, int y, int box_width, int box_height) const {
        return window.Host_Box(x, y, box_width, box_height);
    }
    /** What the window shows, rows from the top. */
    std::vector<std::uint32_t> Read() const { return window.Read().pixels; }
    /** Fills the window with a colour that nothing else has. */
    void Wipe() const { window.Wipe(); }
    /** Puts the pointer on a pixel of the window's own axis. */
    void Point_At(int x, int y) const { window.Point_At(x, y); }
    std::size_t Index(int x, int y) const;  ///< of Read, for a pixel of the window's own axis

    /** Messages since the last call, in order. */
    std::vector<Panel_Message> Take_Messages() { return messages.Take(); }
    std::vector<Frame_Change> Take_Changes();
    /** Called for every Fct_Change_Child that changes a frame. */
    std::function<void()> on_change;

    const int width;
    const int height;

  private:
    Panel_Window window;
    Message_Recorder messages;
    Request_Recorder requests;
};
