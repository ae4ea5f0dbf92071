// The brush and the propagate panel with calls that can fail failing one by one.
#include <gtest/gtest.h>

#include <optional>

#include "kits/widgets/select_drop_list.h"
#include "panels/tool_brush.h"
#include "panels/tool_propagate.h"
#include "panels/tool_propagate_geometry.h"
#include "tests/faults/fault_run.h"
#include "tests/panels/brush_scene.h"
#include "tests/panels/propagate_scene.h"

namespace {

constexpr int PRESS = MOUSE_PRESS | MOUSE_LEFT;
constexpr int DRAG = MOUSE_DRAG | MOUSE_LEFT;

Window_Picture Picture_Of(const Panel_Stage& stage) {
    return {stage.width, stage.height, stage.Read()};
}

int Second_Item(const Drop_List_Request& /*request*/) {
    return 1;
}

}  // namespace

TEST(Brush_Faults, every_operation_survives_a_sample_of_failures_because_all_take_minutes) {
    const Brush_Host host;
    Brush_Masks masks(4, 10);
    Panel_Stage stage(160, 50, Window_Axis::Down);
    std::optional<Tool_Brush> panel;
    const auto show = [&] {
        Boxs box = stage.Host_Box(2, 2, 150, 40);
        panel->Resize(&box);
        panel->Update(~0ULL);
        stage.Wipe();
        panel->Draw();
        stage.Take_Messages();
    };
    const auto home = [&] {
        Brush_Host::Sizes({2, 3, 9, 20});
        Brush_Host::Tag_Color(1, 0xC0FF, 0x8001, 0x40AA);
        Variable_Set("$BRUSH_CUR", 0);
        Variable_Set("$TAG_CUR", 1);
        stage.Point_At(0, 0);
    };
    Fault_Subject subject;
    subject.build = [&] {
        home();
        panel.emplace();
        show();
    };
    subject.settle = [&] {
        home();
        if (!panel) {
            panel.emplace();
        }
        panel->Leave();
        show();
    };
    subject.picture = [&] { return Picture_Of(stage); };
    subject.end = [&] { panel.reset(); };
    Faults_Run("Tool_Brush", subject,
               {
                   {"construction", [&] { panel.emplace(); }, true},
                   {"copy and assignment",
                    [&] {
                        const Tool_Brush copy(*panel);
                        *panel = copy;
                    }},
                   {"Resize",
                    [&] {
                        Boxs box = stage.Host_Box(2, 2, 140, 38);
                        panel->Resize(&box);
                    }},
                   {"Height", [&] { panel->Height(); }},
                   {"Draw", [&] { panel->Draw(); }},
                   {"Click",
                    [&] {
                        stage.Point_At(70, 22);
                        panel->Click(PRESS);
                    }},
                   {"Motion",
                    [&] {
                        stage.Point_At(70, 22);
                        panel->Motion(0);
                    }},
                   {"Scroll and Keyboard",
                    [&] {
                        panel->Scroll(1);
                        panel->Keyboard('a');
                    }},
                   {"Update, current brush", [&] { panel->Update(UPDATE_BRUSH); }, false,
                    [&] { Variable_Set("$BRUSH_CUR", 2); }},
                   {"Update, other sizes", [&] { panel->Update(UPDATE_BRUSH); }, false,
                    [&] {
                        Brush_Host::Sizes({1, 5});
                    }},
                   {"Update, current TAG", [&] { panel->Update(UPDATE_TAG_CUR); }, false,
                    [&] { Variable_Set("$TAG_CUR", 2); }},
                   {"Update, colours", [&] { panel->Update(UPDATE_TAG_TABLE); }, false,
                    [&] { Brush_Host::Tag_Color(1, 0x20FF, 0x3001, 0x50AA); }},
                   {"Update, all", [&] { panel->Update(~0ULL); }},
                   {"Leave", [&] { panel->Leave(); }, false,
                    [&] {
                        stage.Point_At(70, 22);
                        panel->Motion(0);
                    }},
                   {"destruction", [&] { panel.reset(); }},
               });
}

TEST(Propagate_Faults, every_operation_survives_a_sample_of_failures_because_all_take_minutes) {
    constexpr Pixel_Rectangle place = {6, 8, 296, 48};
    Propagate_Host host;
    const Stage_Volume volume(5);
    Panel_Stage stage(310, 64, Window_Axis::Up);
    std::optional<Tool_Propagate> panel;
    Drop_List_Runner_Set(Second_Item);
    stage.on_change = [&] { panel->Update(UPDATE_FRAME_CUR); };
    const auto show = [&] {
        Boxs box = stage.Host_Box(place.x, place.y, place.width, place.height);
        panel->Resize(&box);
        panel->Set([](void*, void*) { return 12; });
        Window_Frame_Set(&host.window, volume.At(1));
        panel->Update(~0ULL);
        stage.Wipe();
        panel->Draw();
        stage.Take_Messages();
        stage.Take_Changes();
    };
    Fault_Subject subject;
    subject.build = [&] {
        stage.Point_At(0, 0);
        panel.emplace();
        show();
    };
    subject.settle = [&] {
        stage.Point_At(0, 0);
        if (!panel) {
            panel.emplace();
        }
        panel->Leave();
        show();
    };
    subject.picture = [&] { return Picture_Of(stage); };
    subject.end = [&] { panel.reset(); };
    const Propagate_Layout layout = Propagate_Layout_Make(place, PROPAGATE_SPACE, PROPAGATE_LIST_DIM);
    const auto over = [&](const Pixel_Rectangle& one) {
        stage.Point_At(one.x + one.width / 2, one.y + one.height / 2);
    };
    Faults_Run("Tool_Propagate", subject,
               {
                   {"construction", [&] { panel.emplace(); }, true},
                   {"copy and assignment",
                    [&] {
                        const Tool_Propagate copy(*panel);
                        *panel = copy;
                    }},
                   {"Set", [&] { panel->Set(nullptr); }},
                   {"Resize",
                    [&] {
                        Boxs box = stage.Host_Box(2, 2, 280, 50);
                        panel->Resize(&box);
                    }},
                   {"Height", [&] { panel->Height(); }},
                   {"Draw", [&] { panel->Draw(); }},
                   {"Propagate", [&] { panel->Propagate(1); }},
                   {"Propagate without a function", [&] { panel->Propagate(-1); }, false, [&] { panel->Set(nullptr); }},
                   {"Click on Up",
                    [&] {
                        over(layout.up);
                        panel->Click(PRESS);
                    }},
                   {"Click on Down",
                    [&] {
                        over(layout.down);
                        panel->Click(PRESS);
                    }},
                   {"Click on the list",
                    [&] {
                        over(layout.list);
                        panel->Click(PRESS);
                    }},
                   {"Motion",
                    [&] {
                        over(layout.up);
                        panel->Motion(0);
                        over(layout.list);
                        panel->Motion(DRAG);
                    }},
                   {"Scroll",
                    [&] {
                        over(layout.list);
                        panel->Scroll(-1);
                    }},
                   {"Keyboard",
                    [&] {
                        over(layout.list);
                        panel->Keyboard(KEY_END);
                    }},
                   {"Update, another frame", [&] { panel->Update(UPDATE_FRAME_CUR); }, false,
                    [&] { Window_Frame_Set(&host.window, volume.At(4)); }},
                   {"Update, no frame", [&] { panel->Update(UPDATE_STRUCTURE | UPDATE_LEVEL_2D); }, false,
                    [&] { Window_Frame_Set(&host.window, nullptr); }},
                   {"Update, all", [&] { panel->Update(~0ULL); }},
                   {"Leave", [&] { panel->Leave(); }, false,
                    [&] {
                        over(layout.up);
                        panel->Motion(0);
                    }},
                   {"destruction", [&] { panel.reset(); }},
               });
    Drop_List_Runner_Set(nullptr);
}
