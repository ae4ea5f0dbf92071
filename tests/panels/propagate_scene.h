/** A window with a volume, as a host has them, for tests of the propagate panel. */
#pragma once

#include <memory>
#include <vector>

#include "tests/support/panel_stage.h"

constexpr int PROPAGATE_SPACE = 4;
constexpr int PROPAGATE_LIST_DIM = 20;
constexpr int PROPAGATE_ARROW_DIM = 12;
constexpr int PROPAGATE_TITLE_DIM = 17;

/** A volume and its frames. */
class Stage_Volume {
  public:
    explicit Stage_Volume(int nb) {
        for (int i = 0; i < nb; i++) {
            frame.push_back(std::make_unique<Quorel_2D>());
            object.Child_Add(frame.back().get());
            frame.back()->Parent_Set_Pt(&object);
        }
    }
    Quorel_2D* At(int i) const { return frame[static_cast<std::size_t>(i)].get(); }

    Quorel_2D object;
    std::vector<std::unique_ptr<Quorel_2D>> frame;
};

/** The host's variables that the panel reads; window 2 has the focus and shows nothing. */
struct Propagate_Host {
    Propagate_Host() {
        Variable_Define_Scalar("$INTERFACE_SPACE_DIM", VARIABLE_SIGNED_16, PROPAGATE_SPACE);
        Variable_Define_Scalar("$INTERFACE_LIST_DIM_SML", VARIABLE_SIGNED_16, PROPAGATE_LIST_DIM);
        Variable_Define_Scalar("$INTERFACE_LIST_DIM_ARROW", VARIABLE_SIGNED_16, PROPAGATE_ARROW_DIM);
        Variable_Define_Scalar("$INTERFACE_TITLE_DIM_SML", VARIABLE_SIGNED_16, PROPAGATE_TITLE_DIM);
        Variable_Define_Scalar("$INTERFACE_BUTTON_DIM_BIG", VARIABLE_SIGNED_16, 30);
        Variable_Define_Scalar("$INTERFACE_TOOL_FONT_SCALE", VARIABLE_UNSIGNED_16, 12);
        Variable_Define_Scalar("$INTERFACE_LOCK_FOCUS", VARIABLE_UNSIGNED_8, 0);
        Variable_Define_Array("$FRAME_CUR", VARIABLE_POINTER, WINDOW_NUMBER_MAX);
        Variable_Define_Pointer("$WINDOW_CUR", &window);
        window.class_b = 2;
        Window_Frame_Set(&window, nullptr);
    }
    ~Propagate_Host() {
        Window_Frame_Set(&window, nullptr);
        Variable_Define_Pointer("$WINDOW_CUR", nullptr);
    }
    Propagate_Host(const Propagate_Host&) = delete;
    Propagate_Host& operator=(const Propagate_Host&) = delete;

    Quorel_Window window;
};
