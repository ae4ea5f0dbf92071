/** One of the panel classes as a Panel_Work. */
#pragma once

#include "c_interface/panel.h"

namespace c_interface {

template <class Tool>
class Work_Of : public Panel_Work {
  public:
    template <class... Arguments>
    explicit Work_Of(Arguments... arguments) : tool(arguments...) {}
    void Resize(Boxs* box) override { tool.Resize(box); }
    int Height(unsigned short rows) override {
        if constexpr (requires { tool.Height(rows); }) {
            return tool.Height(rows);
        } else {
            return tool.Height();
        }
    }
    void Draw() override { tool.Draw(); }
    int Click(int up_down) override { return tool.Click(up_down); }
    int Motion(int up_down) override { return tool.Motion(up_down); }
    int Scroll(int notches) override { return tool.Scroll(notches); }
    int Keyboard(int key) override { return tool.Keyboard(key); }
    void Leave() override { tool.Leave(); }
    void Update(unsigned __int64 flags) override { tool.Update(flags); }
    int Read() override {
        if constexpr (requires { tool.Read(); }) {
            return tool.Read();
        } else {
            return -1;
        }
    }

  protected:
    Tool tool;
};

/** The panels that draw themselves. @param mode dimension and KIT_DATABASE_ bits */
std::unique_ptr<Panel_Work> Histogram_Work_Make();
std::unique_ptr<Panel_Work> Classes_Work_Make(int mode);
std::unique_ptr<Panel_Work> Files_Work_Make(int mode);

}  // namespace c_interface
