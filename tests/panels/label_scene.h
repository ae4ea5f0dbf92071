/** TAGs and markers as a host has them, and what a panel of label buttons must show, computed and drawn by other means
 *  than the panel's own. */
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/support/panel_fixture.h"

/** What a label button is to show. */
struct Label_Look {
    std::string caption;
    std::uint32_t color = 0;  ///< 0x00BBGGRR
    unsigned short current = 0;
    unsigned short checked = 0;
    unsigned int style = STYLE_GRID_BUTTON;
};

/** A panel of label buttons by the plain formulas. */
class Label_Model {
  public:
    static constexpr int ROW = BORDER_DIM + BUTTON_DIM_SML;  ///< row height, pixels

    Label_Model() = default;
    /** A panel that was just laid out: scrolled to its bottom. */
    Label_Model(const Boxs& host_box, int label_nb);

    int Margin() const { return host.border + 2; }
    int Content() const { return count / 4 * ROW; }
    int Column_Width() const { return grid_width / 4; }
    bool Is_Laid_Out(int i) const { return i < count && count - 1 - i < count / 4 * 4; }
    int X(int i) const { return grid_x + (3 - (count - 1 - i) % 4) * Column_Width(); }
    int Y(int i) const { return top + (count - 1 - i) / 4 * ROW - static_cast<int>(scroll); }
    bool Is_Visible(int i) const { return Is_Laid_Out(i) && Y(i) >= top - 1 && Y(i) <= top + 1 + height - ROW; }
    int Visible_Nb() const;
    /** The label whose visible button covers a position, -1 for none. */
    int At(int x, int y) const;
    int Max_Scroll() const { return needed ? Content() - height : 1; }

    /** Draws the whole panel. */
    void Draw(HWND window) const;

    Boxs host;
    int count = 0;
    bool needed = false;  ///< the slider
    int top = 0;          ///< y of grid and slider
    int height = 0;       ///< of both
    int grid_x = 0;
    int grid_width = 0;
    float scroll = 0.0F;
    std::vector<Label_Look> look;
};

/** A window, the interface dimensions, and a second window in which expectations are drawn. */
class Label_Fixture : public Panel_Fixture {
  protected:
    static constexpr int WINDOW_WIDTH = 300;
    static constexpr int WINDOW_HEIGHT = 160;

    explicit Label_Fixture(Window_Axis axis = Window_Axis::Down);

    Window_Picture Expected(const Label_Model& model) const;
    /** How many pixels of the window differ from the model. */
    int Wrong_Pixels(const Label_Model& model) const;

    /** The panel's place in most tests: five rows of buttons and a bit. */
    Boxs Place() const;
    template <class Panel>
    int Press_Label(Panel& panel, const Label_Model& model, int i, int code = LEFT_PRESS) const {
        return Press(panel, model.X(i) + model.Column_Width() / 2, model.Y(i) + Label_Model::ROW / 2, code);
    }
    template <class Panel>
    int Open_Editor(Panel& panel, const Label_Model& model, int i) const {
        return Press_Label(panel, model, i, RIGHT_PRESS);
    }
    /** Puts the pointer where no widget is. */
    void Point_Away() const { Point_At(WINDOW_WIDTH - 1, 0); }
    /** Forgets messages, requests and counters. */
    void Quiet();

    Panel_Window expected_window;
};

/** The host's TAG variables. */
class Tag_Fixture : public Label_Fixture {
  protected:
    explicit Tag_Fixture(Window_Axis axis = Window_Axis::Down) : Label_Fixture(axis) {}

    /** Defines every TAG variable for this many TAGs: all enabled, all selected, none locked, TAG 1 current. */
    void Define_Tags(int nb);
    /** Changes the count and keeps what is in the arrays. */
    void Change_Count(int nb);
    static std::uint32_t Color_Of(int tag);  ///< 0x00BBGGRR, as Define_Tags makes it
    static std::string Label_Of(int tag) { return "TAG " + std::to_string(tag); }
    static char** Labels() { return static_cast<char**>(Variable_Array("$TAG_LABEL", VARIABLE_TEXT, nullptr)); }
    static std::uint8_t* Flags(const char* name) {
        return static_cast<std::uint8_t*>(Variable_Array(name, VARIABLE_UNSIGNED_8, nullptr));
    }
    static float* Thresholds() {
        return static_cast<float*>(Variable_Array("$TAG_THRESHOLD_MIN", VARIABLE_FLOAT, nullptr));
    }
    static void Set_Color(int tag, std::uint32_t color);
    /** What a panel that was just laid out shows. */
    Label_Model Fresh_Model(const Boxs& box, int nb) const;
};

/** The host's marker variables. */
class Marker_Fixture : public Label_Fixture {
  protected:
    explicit Marker_Fixture(Window_Axis axis = Window_Axis::Down) : Label_Fixture(axis) {}

    /** Defines every marker variable: all enabled but every third, marker 1 current. */
    void Define_Markers(int nb);
    static std::uint32_t Color_Of(int marker) { return 0x302010U + static_cast<std::uint32_t>(marker) * 0x020305U; }
    static char** Labels() { return static_cast<char**>(Variable_Array("$MARKER_LABEL", VARIABLE_TEXT, nullptr)); }
    static std::uint8_t* Enable() {
        return static_cast<std::uint8_t*>(Variable_Array("$MARKER_ENABLE", VARIABLE_UNSIGNED_8, nullptr));
    }
    static std::uint32_t* Colors_Array() {
        return static_cast<std::uint32_t*>(Variable_Array("$MARKER_COLOR", VARIABLE_UNSIGNED_32, nullptr));
    }
    /** What a panel that was just laid out shows. */
    Label_Model Fresh_Model(const Boxs& box, int nb) const;
};
