// What the brush and the propagate panel make the widget library do with GDI is given back after every operation, also
// when a device context cannot be had.
#include <gtest/gtest.h>

#include <functional>

#include "panels/tool_brush.h"
#include "panels/tool_propagate.h"
#include "tests/panels/brush_scene.h"
#include "tests/panels/propagate_scene.h"
#include "tests/support/gdi_recorder.h"

namespace {

constexpr int PRESS = 0x12;
constexpr int FAILURES = 4;  ///< device contexts that are refused in turn, one per pass

/** Does each step with all device contexts, then with the first refused, the second, and so on. */
void Expect_Balance(const std::vector<std::function<void()>>& steps) {
    Gdi_Recorder recorder("Kit_Widgets.dll");
    for (int refused = 0; refused <= FAILURES; refused++) {
        for (std::size_t i = 0; i < steps.size(); i++) {
            Gdi_Recorder::Forget();
            Gdi_Recorder::Get_DC_Fail(refused);
            steps[i]();
            Gdi_Recorder::Get_DC_Fail(0);
            EXPECT_EQ(Gdi_Recorder::Unbalanced(), "") << "step " << i << ", refused " << refused;
        }
    }
    EXPECT_GT(Gdi_Recorder::Watched_Nb(), 0);
}

}  // namespace

TEST(Gdi_Balance, of_every_operation_of_the_brush_panel) {
    const Brush_Host host;
    Brush_Masks masks(4, 10);
    Panel_Stage stage(160, 50, Window_Axis::Down);
    Tool_Brush panel;
    Boxs box = stage.Host_Box(2, 2, 150, 40);
    panel.Resize(&box);
    panel.Draw();  // what the library keeps for the process is made here
    stage.Point_At(70, 22);
    int step = 0;
    Expect_Balance({[&] { panel.Resize(&box); }, [&] { panel.Draw(); }, [&] { panel.Motion(0); },
                    [&] { panel.Click(PRESS); },
                    [&] {
                        Variable_Set("$BRUSH_CUR", step++ % 4);
                        Brush_Host::Sizes({2, 3, 9, 20 + step % 2});
                        panel.Update(~0ULL);
                    },
                    [&] { panel.Leave(); }});
}

TEST(Gdi_Balance, of_every_operation_of_the_propagate_panel) {
    Propagate_Host host;
    Stage_Volume volume(5);
    Panel_Stage stage(260, 60, Window_Axis::Up);
    Tool_Propagate panel;
    panel.Set([](void*, void*) { return 1; });
    Boxs box = stage.Host_Box(2, 2, 250, 50);
    panel.Resize(&box);
    panel.Draw();
    stage.Point_At(130, 15);
    int step = 0;
    const auto show = [&](int item) {
        Window_Frame_Set(&host.window, item < 0 ? nullptr : volume.At(item));
        panel.Update(UPDATE_ALL);
    };
    Expect_Balance({[&] { panel.Resize(&box); }, [&] { show(step++ % 5); }, [&] { panel.Draw(); },
                    [&] { panel.Motion(0); }, [&] { panel.Scroll(1); }, [&] { panel.Keyboard(KEY_HOME); },
                    [&] { panel.Propagate(1); }, [&] { panel.Propagate(-1); }, [&] { panel.Leave(); },
                    [&] { show(-1); }});
}
