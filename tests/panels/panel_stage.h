/** What a test gives a panel: a window that can be read back, a pointer, and ears for messages and requests. Uses only
 *  what the kits export, so that the panels and the tests share one state of the kits. */
#pragma once

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "host/kit_common.h"
#include "host/kit_dataset.h"
#include "host/kit_widgets.h"
#include "kits/common/messages.h"
#include "kits/dataset/dataset_host.h"
#include "kits/widgets/widgets_host.h"

struct Stage_Message {
    int level;
    std::string text;
    friend bool operator==(const Stage_Message&, const Stage_Message&) = default;
};

struct Stage_Change {
    Quorel_Window* window;
    Quorel_2D* to;
    Quorel_2D* from;
    friend bool operator==(const Stage_Change&, const Stage_Change&) = default;
};

class Panel_Stage {
  public:
    Panel_Stage(int in_width, int in_height, Window_Axis axis);
    ~Panel_Stage();
    Panel_Stage(const Panel_Stage&) = delete;
    Panel_Stage& operator=(const Panel_Stage&) = delete;

    HWND Window() const { return window; }
    /** A host box of this window: grey, without border. */
    Boxs Host_Box(int x, int y, int box_width, int box_height) const;
    /** What the window shows, rows from the top. */
    std::vector<std::uint32_t> Read() const;
    /** Fills the window with a colour that nothing else has. */
    void Wipe() const;
    /** Puts the pointer on a pixel of the window's own axis. */
    void Point_At(int x, int y) const;
    std::size_t Index(int x, int y) const;  ///< of Read, for a pixel of the window's own axis

    /** Messages of these levels since the last call, in order. */
    std::vector<Stage_Message> Take_Messages();
    std::vector<Stage_Change> Take_Changes();
    /** Called for every Fct_Change_Child that changes a frame. */
    std::function<void()> on_change;

    const int width;
    const int height;

  private:
    static void Receive(void* context, HWND at, int level, const char* text);
    static void Change(void* context, Quorel_Window* at, Quorel_2D* to, Quorel_2D* from);

    HWND window;
    Window_Axis axis;
    std::vector<Stage_Message> messages;
    std::vector<Stage_Change> changes;
};

/** True while the wait cursor is shown; `otherwise` where there is no cursor. */
bool Stage_Wait_Cursor(bool otherwise);

// The part that differs between window systems.
HWND Stage_Window_Make(int width, int height);
void Stage_Window_End(HWND window);
void Stage_Window_Fill(HWND window, int width, int height, std::uint32_t color);
std::vector<std::uint32_t> Stage_Window_Read(HWND window, int width, int height);
void Stage_Window_To_Screen(HWND window, int* x, int* y);
