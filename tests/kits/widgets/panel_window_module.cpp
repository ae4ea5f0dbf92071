// A module of a program that has panels' windows as well.
#include <memory>

#include "kits/widgets/panel_window.h"

namespace {

class Counting_Panel : public kit::Hosted_Panel {
  public:
    void Resize(Boxs*) override {}
    int Height() override { return 0; }
    void Draw() override { ++draws; }
    int Click(int) override { return 0; }
    int Motion(int) override { return 0; }
    int Scroll(int) override { return 0; }
    int Keyboard(int) override { return 0; }
    void Leave() override {}
    void Update(unsigned __int64) override {}
    int draws = 0;
};

Counting_Panel panel;
std::unique_ptr<kit::Panel_Window> window;

}  // namespace

extern "C" __declspec(dllexport) HWND Other_Window_Make(HWND parent) {
    window = std::make_unique<kit::Panel_Window>(panel);
    if (!window->Make(parent, Window_Axis::Up)) {
        return nullptr;
    }
    window->Place(0, 0, 20, 20);
    return window->Handle();
}

extern "C" __declspec(dllexport) int Other_Window_End() {
    window.reset();
    return panel.draws;
}
