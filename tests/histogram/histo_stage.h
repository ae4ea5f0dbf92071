/** A histogram panel laid out in a window that can be read back. */
#pragma once

#include "tests/histogram/histo_scene.h"
#include "tests/support/panel_stage.h"

/** The panel's place: the same pixels of the window, whichever its axis. */
class Histo_Stage : public Panel_Stage {
  public:
    static constexpr int WIDTH = 300;
    static constexpr int HEIGHT = 150;
    static constexpr int LEFT = 10;
    static constexpr int TOP = 8;  ///< row of the visual top edge
    static constexpr int BOX_WIDTH = 260;
    static constexpr int BOX_HEIGHT = 121;
    static constexpr int EDGE = 2;
    // The plot inside the box of 260 - 2 x (15 + 3) columns: the border and one pixel more are free all round.
    static constexpr int PLOT_LEFT = LEFT + EDGE + 1;
    static constexpr int PLOT_TOP = TOP + EDGE + 1;
    static constexpr int PLOT_WIDTH = BOX_WIDTH - 36 - 2 * EDGE - 2;
    static constexpr int PLOT_HEIGHT = BOX_HEIGHT - 2 * EDGE - 2;

    explicit Histo_Stage(Window_Axis in_axis) : Panel_Stage(WIDTH, HEIGHT, in_axis), up(in_axis == Window_Axis::Up) {}

    Boxs Place() const {
        Boxs box = Host_Box(LEFT, up ? HEIGHT - TOP - BOX_HEIGHT : TOP, BOX_WIDTH, BOX_HEIGHT);
        box.border = EDGE;
        return box;
    }
    void Lay_Out(Tool_Histo& panel) const {
        Boxs box = Place();
        panel.Resize(&box);
    }
    static std::size_t At(int column, int row) {
        return static_cast<std::size_t>(row) * WIDTH + static_cast<std::size_t>(column);
    }
    /** The pointer on a column and a row from the top. */
    void Point_Row(int column, int row) const { Point_At(column, up ? HEIGHT - 1 - row : row); }
    /** Texts since the last call, "level text". */
    std::vector<std::string> Take_Lines() {
        std::vector<std::string> lines;
        for (const Panel_Message& one : Take_Messages()) {
            lines.push_back(std::to_string(one.level) + " " + one.text);
        }
        return lines;
    }

  private:
    bool up;
};
