/** What a test of a panel needs of a host: a window that can be read back, a pointer, keys, and records of what the
 *  panel says and asks for. Uses only what the kits export, so that panel and test share one state of the kits.
 *
 *  Positions are pixels of the window's own axis. Everything works without Windows too; the window is memory then.
 */
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "tests/support/panel_records.h"
#include "tests/support/panel_window.h"

inline constexpr int LEFT_PRESS = MOUSE_PRESS | MOUSE_LEFT;
inline constexpr int RIGHT_PRESS = MOUSE_PRESS | MOUSE_RIGHT;
inline constexpr int LEFT_DRAG = MOUSE_DRAG | MOUSE_LEFT;
inline constexpr int RELEASE = 0;
inline constexpr int HOVER = 0;

/** A window with one host box in it. Variables of earlier tests are gone. */
class Panel_Fixture : public testing::Test {
  protected:
    Panel_Fixture(Window_Axis axis, int width, int height);
    ~Panel_Fixture() override;

    /** A box of this window: grey, without border and without check marks. */
    Boxs Host_Box(int x, int y, int box_width, int box_height) const {
        return window.Host_Box(x, y, box_width, box_height);
    }
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
