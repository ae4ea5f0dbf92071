/** What a test of a panel needs of a host: a window that can be read back, a pointer, keys, and records of what the
 *  panel says and asks for. Uses only what the kits export, so that panel and test share one state of the kits.
 *
 *  Positions are pixels of the window's own axis. Everything works without Windows too; the window is memory then.
 */
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "tests/panels/panel_stage.h"
#include "tests/support/window_picture.h"

inline constexpr int LEFT_PRESS = MOUSE_PRESS | MOUSE_LEFT;
inline constexpr int RIGHT_PRESS = MOUSE_PRESS | MOUSE_RIGHT;
inline constexpr int LEFT_DRAG = MOUSE_DRAG | MOUSE_LEFT;
inline constexpr int RELEASE = 0;
inline constexpr int HOVER = 0;

struct Panel_Message {
    int level = 0;
    std::string text;
    friend bool operator==(const Panel_Message&, const Panel_Message&) = default;
};
/** For the failure texts of tests. */
std::ostream& operator<<(std::ostream& out, const Panel_Message& message);

/** Keeps every message of its life time, in order. */
class Message_Recorder {
  public:
    Message_Recorder() { Message_Receiver_Add(Receive, this); }
    ~Message_Recorder() { Message_Receiver_Remove(Receive, this); }
    Message_Recorder(const Message_Recorder&) = delete;
    Message_Recorder& operator=(const Message_Recorder&) = delete;

    const std::vector<Panel_Message>& All() const { return messages; }
    /** Everything since the last Take. */
    std::vector<Panel_Message> Take();
    /** Messages below the trace levels (10 and more) since the last Take. */
    std::vector<Panel_Message> Take_Reports();
    /** While it is off, nothing is kept and nothing allocated: for tests that count allocations. */
    void Listen(bool on) { listening = on; }

  private:
    static void Receive(void* context, HWND window, int level, const char* text);
    std::vector<Panel_Message> messages;
    bool listening = true;
};

struct Panel_Request {
    enum class Kind { Update, Redraw, Change_Child };
    Kind kind = Kind::Update;
    unsigned long long flags = 0;
    void* a = nullptr;  ///< Change_Child: the window
    void* b = nullptr;  ///< Change_Child: the new frame
    void* c = nullptr;  ///< Change_Child: the old frame
    friend bool operator==(const Panel_Request&, const Panel_Request&) = default;
};

/** Keeps every request of the panels, and answers Fct_Update as a host does: by Update of its panels. */
class Request_Recorder {
  public:
    Request_Recorder();
    ~Request_Recorder();
    Request_Recorder(const Request_Recorder&) = delete;
    Request_Recorder& operator=(const Request_Recorder&) = delete;

    /** Requests are only kept. */
    void Answer_Never() { answer = nullptr; }
    /** `update` is called inside Fct_Update, on the panel's own call stack; not while an earlier call is running. */
    void Answer_At_Once(std::function<void(unsigned long long)> update);
    /** `update` is called by Deliver, once for each request since. */
    void Answer_Queued(std::function<void(unsigned long long)> update);
    void Deliver();

    const std::vector<Panel_Request>& All() const { return requests; }
    std::vector<Panel_Request> Take();
    /** Flags of the Fct_Update requests since the last Take. */
    std::vector<unsigned long long> Take_Updates();

    /** Called inside every Fct_Change_Child that changes a frame. */
    std::function<void(const Panel_Request&)> on_change_child;

  private:
    void Receive(const Panel_Request& request);

    std::vector<Panel_Request> requests;
    std::vector<unsigned long long> queue;
    std::function<void(unsigned long long)> answer;
    bool queued = false;
    bool answering = false;
};

/** A window of its own, gone at the end. */
class Panel_Window {
  public:
    static constexpr std::uint32_t MARKER = 0x123456;  ///< what a fresh window shows

    Panel_Window(Window_Axis axis, int width, int height);
    ~Panel_Window();
    Panel_Window(const Panel_Window&) = delete;
    Panel_Window& operator=(const Panel_Window&) = delete;

    HWND Get() const { return window; }
    Window_Picture Read() const { return {width, height, Stage_Window_Read(window, width, height)}; }
    /** Fills it with the marker again. */
    void Wipe() const { Stage_Window_Fill(window, width, height, MARKER); }
    /** Puts the pointer globals on a position of the window's axis. */
    void Point_At(int x, int y) const;
    /** The row, counted from the top, of a position of the window's axis. */
    int Row(int y) const { return axis == Window_Axis::Up ? height - 1 - y : y; }

  private:
    HWND window;
    Window_Axis axis;
    int width;
    int height;
};

/** A window with one host box in it. Variables of earlier tests are gone. */
class Panel_Fixture : public testing::Test {
  protected:
    Panel_Fixture(Window_Axis axis, int width, int height);
    ~Panel_Fixture() override;

    /** A box of this window: grey, without border and without check marks. */
    Boxs Host_Box(int x, int y, int box_width, int box_height) const;
    void Point_At(int x, int y) const { window.Point_At(x, y); }
    /** The window's pixel under a position. */
    std::uint32_t Pixel(int x, int y) const { return window.Read().At(x, window.Row(y)); }
    Window_Picture Pixels() const { return window.Read(); }

    template <class Panel>
    int Press(Panel& panel, int x, int y, int code = LEFT_PRESS) const {
        Point_At(x, y);
        return panel.Click(code);
    }
    template <class Panel>
    int Move(Panel& panel, int x, int y, int code = HOVER) const {
        Point_At(x, y);
        return panel.Motion(code);
    }
    template <class Panel>
    int Type(Panel& panel, std::string_view text) const {
        int result = 0;
        for (const char character : text) {
            result = panel.Keyboard(static_cast<unsigned char>(character));
        }
        return result;
    }

    /** Defines a variable that the end of the test removes again. */
    void Scalar(const char* name, Variable_Type type, double value);
    template <class Element>
    Element* Array(const char* name, Variable_Type type, int nb) {
        defined.emplace_back(name);
        return static_cast<Element*>(Variable_Define_Array(name, type, nb));
    }
    /** A signed 16-bit scalar for each interface dimension that panels read. */
    void Define_Dimensions();

    /** Widget operations that painted since the last call. */
    Widget_Counters Take_Counters() const;

    Panel_Window window;
    Message_Recorder messages;
    Request_Recorder requests;

  private:
    std::vector<std::string> defined;
};

// Interface dimensions of Define_Dimensions, pixels; all different.
inline constexpr int SPACE_DIM = 6;        ///< "$INTERFACE_SPACE_DIM"
inline constexpr int BORDER_DIM = 2;       ///< "$INTERFACE_BORDER_DIM"
inline constexpr int CURSOR_DIM = 15;      ///< "$INTERFACE_CURSOR_DIM"
inline constexpr int BUTTON_DIM_SML = 18;  ///< "$INTERFACE_BUTTON_DIM_SML"
inline constexpr int BUTTON_DIM_BIG = 24;  ///< "$INTERFACE_BUTTON_DIM_BIG"
inline constexpr int LIST_DIM_SML = 19;    ///< "$INTERFACE_LIST_DIM_SML"
inline constexpr int LIST_DIM_ARROW = 13;  ///< "$INTERFACE_LIST_DIM_ARROW"
inline constexpr int TITLE_DIM_SML = 17;   ///< "$INTERFACE_TITLE_DIM_SML"
inline constexpr int VAL_DIM_SML = 16;     ///< "$INTERFACE_VAL_DIM_SML"
