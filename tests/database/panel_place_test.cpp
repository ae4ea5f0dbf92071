// Where a database panel paints at every size, and with which fonts.
#include <algorithm>
#include <string>
#include <utility>
#include <vector>

#include "database/tool_db_edit.h"
#include "tests/database/panel_scene.h"

namespace {

constexpr int PLACE_X = 120;
constexpr int PLACE_Y = 110;
constexpr std::uint32_t MARKER = 0x12AB34;

class Panel_Place : public Panel_Scene {
  protected:
    /** Is the pixel in a widget that has pixels at all? */
    static bool Is_In(const Tools& widget, int x, int y) {
        return x >= widget.x && x < widget.x + widget.width && y >= widget.y && y < widget.y + widget.height;
    }
    void Place(Tool_DB_List& panel, int width, int height) {
        Boxs host = Host_Box(PLACE_X, PLACE_Y, width, height);
        panel.Resize(&host);
    }
    /** Fills the window by the marker colour. */
    void Mark() const {
        Boxs ground = Host_Box(0, 0, PANEL_WIDTH, PANEL_HEIGHT);
        ground.style = STYLE_FLAT;
        ground.Set_Color(MARKER >> 16 & 0xFF, MARKER >> 8 & 0xFF, MARKER & 0xFF);
        ground.Init(window.Get());
        ground.Draw();
    }
};

TEST_F(Panel_Place, a_tree_box_without_extent_paints_nothing_whatever_happens) {
    for (const int mode : {2, 2 | DB_MODE_EDIT}) {
        Wide_View panel(mode);
        Show(panel);
        int tried = 0;
        for (const auto& [width, height] : {std::pair{180, 20}, {180, 48}, {180, 60}, {20, 150}, {30, 150}, {8, 8}}) {
            Place(panel, width, height);
            if (panel.list_box.width > 0 && panel.list_box.height > 0) {
                continue;
            }
            tried++;
            Mark();
            const Window_Picture before = Pixels();
            Boxs* const box = &panel.list_box;
            db_drag.active = true;
            db_drag.owner = box;
            db_drag.press = {-30, -40};
            db_drag.current = {60, 70};
            DB_List_Draw(box, panel.Nb(), panel.List_Pt(), &panel.horizontal, &panel.vertical);
            DB_List_Draw(box, 0, nullptr, &panel.horizontal, &panel.vertical);
            DB_List_Draw_Box(box, &panel.horizontal, &panel.vertical);
            DB_Edit_Draw(mode, box, panel.Nb(), panel.List_Pt(), &panel.horizontal, &panel.vertical);
            DB_Edit_Motion_DB(mode, box, LEFT_DRAG, panel.Nb(), panel.List_Pt(), &panel.horizontal, &panel.vertical);
            DB_Edit_Drag(box, panel.Nb(), panel.List_Pt(), &panel.horizontal, &panel.vertical);
            DB_Draw_Circle(box, PLACE_X, PLACE_Y, 6, 0, 0);
            DB_Draw_Expand(box, panel.List_Pt(), &panel.horizontal, &panel.vertical, 0, 1);
            EXPECT_EQ(Pixels(), before) << width << " x " << height << ", mode " << mode;
            db_drag = {};
        }
        EXPECT_GE(tried, 4);
    }
}

TEST_F(Panel_Place, a_panel_of_any_size_paints_in_itself_and_its_widgets_only) {
    for (const int mode : {2, 2 | DB_MODE_EDIT}) {
        Wide_View panel(mode);
        Show(panel);
        int painted = 0;
        for (int size = 4; size < 130; size += 9) {
            for (const auto& [width, height] : {std::pair{size, 150}, {180, size}, {size, size}}) {
                Place(panel, width, height);
                Mark();
                const Window_Picture before = Pixels();
                panel.Draw();
                panel.Update(UPDATE_STRUCTURE);
                const Tools* const widgets[] = {&panel.panel_box,  &panel.vertical,    &panel.horizontal,
                                                &panel.select_all, &panel.select_none, &panel.warning[0],
                                                &panel.warning[1]};
                const Window_Picture picture = Pixels();
                painted += picture != before ? 1 : 0;
                int astray = 0;
                for (int y = 0; y < PANEL_HEIGHT; ++y) {
                    for (int x = 0; x < PANEL_WIDTH; ++x) {
                        const bool inside = std::any_of(std::begin(widgets), std::end(widgets),
                                                        [&](const Tools* widget) { return Is_In(*widget, x, y); });
                        astray += !inside && picture.At(x, window.Row(y)) != before.At(x, window.Row(y)) ? 1 : 0;
                    }
                }
                ASSERT_EQ(astray, 0) << width << " x " << height << ", mode " << mode;
            }
        }
        EXPECT_GE(painted, 20);
    }
}

TEST_F(Panel_Place, a_font_scale_of_0_stays_the_library_s_own) {
    Wide_View panel(2 | DB_MODE_EDIT);
    Boxs host = Host_Box(10, 10, 200, 200);
    for (const int scale : {0, 1, 12}) {
        host.font_scale = static_cast<short>(scale);
        panel.Resize(&host);
        EXPECT_EQ(panel.warning[0].font_scale, scale == 0 ? 0 : scale + 1);
        EXPECT_EQ(panel.warning[1].font_scale, scale);
    }
}

}  // namespace
