/** The brush panel in a window, and what its buttons must show there pixel by pixel. */
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <vector>

#include "panels/tool_brush.h"
#include "tests/panels/brush_scene.h"

inline constexpr unsigned int GREY = 0xAAAAAA;
inline constexpr unsigned int COLOR_1 = 0xC08040;
inline constexpr unsigned int COLOR_2 = 0x10E020;
inline constexpr int NO_BRUSH = 99;  ///< an index without a button: no button carries the current mark

inline std::vector<std::string> Lines_Of(const std::vector<Panel_Message>& messages) {
    std::vector<std::string> texts;
    for (const Panel_Message& one : messages) {
        texts.push_back(std::to_string(one.level) + " " + one.text);
    }
    return texts;
}

class Brush_Panel : public testing::Test {
  protected:
    Brush_Panel() {
        Variable_Set("$BRUSH_CUR", NO_BRUSH);
        stage.Point_At(0, 0);
    }

    void Lay_Out() {
        Boxs box = stage.Host_Box(host_x, host_y, host_width, host_height);
        EXPECT_EQ(panel.Resize(&box), 1);
    }
    /** Layout, first notification and nothing left to be noticed. */
    void Bring_Up() {
        Lay_Out();
        panel.Update(UPDATE_ALL);
        panel.Update(UPDATE_TAG_CUR);
        Quiet();
    }
    void Quiet() {
        stage.Take_Messages();
        Widget_Counters_Reset();
        Variable_Look_Ups_Reset();
    }
    int Column_Width(int shown) const { return (host_width - 2 * BRUSH_SPACE) / shown; }
    void Point_At_Button(int i, int shown) const {
        stage.Point_At(host_x + BRUSH_SPACE + i * Column_Width(shown) + Column_Width(shown) / 2,
                       host_y + host_height / 2);
    }
    static unsigned int Painted() {
        const Widget_Counters counters = Widget_Counters_Get();
        return counters.draws + counters.adjusts + counters.clears;
    }
    /** Colour of a button's ground in its plain, hover, pressed and current look. */
    std::array<unsigned int, 4> Grounds() const {
        Buttons plain;
        plain.Take_Look(stage.Host_Box(0, 0, 10, 10));
        plain.width = 4;
        plain.height = 4;
        plain.Init(nullptr);
        return {plain.image[0][0], plain.image[1][0], plain.image[2][0], plain.image[3][0]};
    }
    /** How many pixels of a button in the window differ from its disc and outline by the rule. */
    int Wrong_Pixels(int i, const std::vector<int>& size, unsigned int color, unsigned int ground) const {
        const std::vector<std::uint32_t> shown = stage.Read();
        const int nb = std::min(static_cast<int>(size.size()), 8);
        const int w = Column_Width(nb);
        const int h = host_height - 2 * BRUSH_SPACE;
        const int margin = 2 * BORDER + 4;
        const auto largest = static_cast<float>(2 * *std::max_element(size.begin(), size.begin() + nb) + 1);
        const float k = std::max(largest / static_cast<float>(w - margin), largest / static_cast<float>(h - margin));
        const float radius = static_cast<float>(size[static_cast<std::size_t>(i)]) / k;
        const int square = static_cast<int>(radius * radius);
        const auto in_disc = [&](int x, int y) {
            const int dx = std::abs(x - w / 2);
            const int dy = std::abs(y - h / 2);
            return dx < w / 2 && dy < h / 2 && dx * dx + dy * dy <= square;
        };
        int wrong = 0;
        for (int y = 0; y < h; y++) {
            for (int x = 0; x < w; x++) {
                bool touches = false;
                for (int step = 0; step < 9; step++) {
                    touches = touches || in_disc(x + step % 3 - 1, y + step / 3 - 1);
                }
                const unsigned int expected = in_disc(x, y) ? color : touches ? 0 : ground;
                wrong += shown[stage.Index(host_x + BRUSH_SPACE + i * w + x, host_y + BRUSH_SPACE + y)] != expected;
            }
        }
        return wrong;
    }
    void Expect_Discs(const std::vector<int>& size, unsigned int color, const std::string& when) const {
        for (int i = 0; i < static_cast<int>(size.size()); i++) {
            EXPECT_EQ(Wrong_Pixels(i, size, color, Grounds()[0]), 0) << when << ", brush " << i;
        }
    }

    int host_x = 7;
    int host_y = 5;
    int host_width = 206;
    int host_height = 50;
    const std::vector<int> sizes = {2, 3, 9, 20};
    Brush_Host host;
    Brush_Masks masks{4, 25};
    Panel_Stage stage{220, 70, Window_Axis::Down};
    Tool_Brush panel;
};
