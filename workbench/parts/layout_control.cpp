#include "workbench/parts/layout_control.h"

namespace workbench {

void Layout_Control::Arrangement_Set(View_Arrangement wanted) {
    Views().arrangement = wanted;
    host.arrange(Views());
}

void Layout_Control::Large_Plane_Next() {
    Views().large = (Views().large + 1) % PLANE_VIEW_NB;
    host.arrange(Views());
    host.tell("The large view: " + host.plane_name(Views().large));
}

void Layout_Control::Views_Link(bool on) {
    Views().is_linked = on;
    host.arrange(Views());
    host.tell(on ? "Zoom and centre of one view are those of all" : "Each view zooms and moves by itself");
}

void Layout_Control::Linear_Set(bool on) {
    host.settings().is_linear = on;
    host.redraw();
    host.tell(on ? "Grey values run in straight lines from voxel to voxel" : "Each voxel has one grey value");
}

void Layout_Control::Slices_Show() {
    if (!Views().Has(SLICES_VIEW)) {
        Views().large = SLICES_VIEW;
        host.arrange(Views());
    }
}

}  // namespace workbench
