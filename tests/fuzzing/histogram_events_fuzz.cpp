// libFuzzer: any stream of events, frames, variables and messages of the enlarged window on the histogram panel.
#include <array>
#include <memory>
#include <string>
#include <vector>

#include "histogram/tool_histo_blow.h"
#include "kits/widgets/select_drop_list.h"
#include "tests/fuzzing/input_bytes.h"
#include "tests/histogram/histo_scene.h"
#include "tests/support/headless_windows.h"
#include "tests/support/panel_stage.h"

namespace {

constexpr int WINDOW_WIDTH = 300;
constexpr int WINDOW_HEIGHT = 200;
constexpr int STEPS_MOST = 60;
constexpr int FRAMES_MOST = 4;
constexpr int BINS_MOST = 400;
constexpr int TAGS_MOST = 12;

/** Numbers as hosts have them: small, large, and none at all. */
float Level(Input_Bytes& input) {
    return static_cast<float>(input.Take<std::int16_t>()) / 8.0F;
}

void Frame_Add(Histo_Scene& scene, Input_Bytes& input) {
    const bool is_color = (input.Take<std::uint8_t>() & 3) == 0;
    std::vector<std::uint32_t> counts(static_cast<std::size_t>(is_color ? 256 : 1 + input.Below(BINS_MOST)));
    const std::uint32_t height = input.Take<std::uint32_t>();
    for (std::uint32_t& count : counts) {
        count = height / 256 * input.Take<std::uint8_t>();
    }
    const Scene_Grid grid{is_color ? 0.0F : Level(input),
                          is_color ? 1.0F : 0.25F + static_cast<float>(input.Below(40))};
    is_color ? scene.Add_Color(grid, counts, "color") : scene.Add_Grey(grid, counts, "grey");
}

void Change_Variable(Histo_Scene& scene, Input_Bytes& input) {
    switch (input.Below(8)) {
        case 0:
            Variable_Set("$GLI_COLOR_COMPONENT", input.Below(6));
            break;
        case 1:
            Variable_Set("$GLI_HISTO_BINS_MAX", input.Take<std::uint16_t>());
            break;
        case 2:
            Variable_Set("$INTERFACE_CURSOR_DIM", input.Below(60));
            break;
        case 3:
            scene.Tags(input.Below(TAGS_MOST));
            break;
        case 4:
            if (!scene.objects.empty()) {
                const auto at = static_cast<std::size_t>(input.Below(static_cast<int>(scene.objects.size())));
                scene.Mouse_Over(*scene.objects[at], input.Take<std::int32_t>());
            }
            break;
        case 5:
            scene.Mouse_Away();
            break;
        case 6:
            for (const auto& one : scene.objects) {
                one->Select((input.Take<std::uint8_t>() & 1) != 0);
            }
            break;
        default:
            if (scene.objects.size() < FRAMES_MOST) {
                Frame_Add(scene, input);
            }
    }
}

void Ranges_Set(Tool_Histo& panel, Input_Bytes& input) {
    const int tag = input.Below(TAGS_MOST);
    const double low = Level(input);
    const double high = Level(input);
    panel.Set(input.Below(4), tag, low, high, tag + 1, high, low, 0, low, low);
}

/** A message that the enlarged window gets from the system or from the panel. */
void Window_Message(Input_Bytes& input) {
    // size, close, paint, erase, move, press, release, wheel, left, capture lost, data, cursor
    constexpr std::array<unsigned int, 12> messages = {0x05,  0x10,  0x0F,  0x14,  0x200, 0x201,
                                                       0x202, 0x20A, 0x2A3, 0x215, 0x400, 0x401};
    constexpr unsigned int erase = 0x14;  // carries a device context
    const auto message = messages[static_cast<std::size_t>(input.Below(static_cast<int>(messages.size())))];
    const auto wparam = static_cast<std::uintptr_t>(static_cast<std::uint32_t>(input.Take<std::int8_t>() * 60) << 16U);
    const std::intptr_t place = input.Below(900) | input.Below(500) << 16U;
    if (histo_blow.window != nullptr && message != erase) {
        Headless_Message_Send(histo_blow.window, {message, wparam, place});
    }
}

void Event(Tool_Histo& panel, const Panel_Stage& stage, Input_Bytes& input) {
    switch (input.Below(10)) {
        case 0: {
            Boxs box = stage.Host_Box(input.Below(40), input.Below(40), input.Below(WINDOW_WIDTH) - 5,
                                      input.Below(WINDOW_HEIGHT) - 5);
            box.border = static_cast<unsigned short>(input.Below(6));
            panel.Resize(&box);
            break;
        }
        case 1:
            panel.Draw();
            break;
        case 2:
            panel.Click(input.Take<std::uint8_t>() & 0x77);
            break;
        case 3:
            panel.Motion(input.Take<std::uint8_t>() & 0x71);
            break;
        case 4:
            panel.Scroll(input.Take<std::int8_t>());
            break;
        case 5:
            panel.Leave();
            break;
        case 6:
            panel.Fit_Derivative(input.Take<std::uint8_t>());
            break;
        case 7:
            panel.Fit_Gaussian();
            break;
        case 8:
            panel.Write((input.Take<std::uint8_t>() & 1) != 0 ? "/dev/null" : "/dev/full");
            break;
        default:
            panel.Update(input.Take<std::uint64_t>());
    }
}

void Step(std::unique_ptr<Tool_Histo>& panel, Histo_Scene& scene, const Panel_Stage& stage, Input_Bytes& input) {
    stage.Point_At(input.Below(WINDOW_WIDTH), input.Below(WINDOW_HEIGHT));
    switch (input.Below(12)) {
        case 0:
            Change_Variable(scene, input);
            break;
        case 1:
            Ranges_Set(*panel, input);
            break;
        case 2:
            panel->Update(UPDATE_SELECTION | UPDATE_LEVEL_2D | UPDATE_HISTO_PAINT);
            break;
        case 3:
        case 4:
            Window_Message(input);
            break;
        case 5:
            Headless_Messages_Deliver();
            break;
        case 6:
            if ((input.Take<std::uint8_t>() & 7) == 0) {
                const Tool_Histo copy(*panel);
                panel = std::make_unique<Tool_Histo>(copy);
            }
            break;
        case 7:
            panel->blow_button.Init(stage.Window());
            stage.Point_At(panel->blow_button.x + 1, panel->blow_button.y + 1);
            panel->Click(MOUSE_PRESS | MOUSE_LEFT);
            break;
        default:
            Event(*panel, stage, input);
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Drop_List_Runner_Set([](const Drop_List_Request&) { return -1; });  // a list that nobody picks from
    Input_Bytes input(data, size);
    Headless_Windows_Allow((input.Take<std::uint8_t>() & 7) != 0);
    Histo_Scene scene;
    for (int nb = input.Below(FRAMES_MOST); nb > 0; --nb) {
        Frame_Add(scene, input);
    }
    const Panel_Stage stage(WINDOW_WIDTH, WINDOW_HEIGHT,
                            (input.Take<std::uint8_t>() & 1) != 0 ? Window_Axis::Up : Window_Axis::Down);
    auto panel = std::make_unique<Tool_Histo>();
    Boxs box = stage.Host_Box(10, 10, WINDOW_WIDTH - 20, WINDOW_HEIGHT - 20);
    panel->Resize(&box);
    panel->Update(UPDATE_SELECTION | UPDATE_LEVEL_2D);
    for (int step = 0; step < STEPS_MOST && !input.At_End(); ++step) {
        Step(panel, scene, stage, input);
    }
    panel.reset();
    Require(histo_blow.window == nullptr);
    return 0;
}
