#include "workbench/commands/pane.h"

namespace workbench {

Key_Context Context_Of(Pane pane) {
    switch (pane) {
        case Pane::Tag:
            return Key_Context::Tag_Panel;
        case Pane::Frames:
            return Key_Context::Frames_Panel;
        case Pane::Marker:
            return Key_Context::Marker_Panel;
        case Pane::Histogram:
            return Key_Context::Histogram_Panel;
        default:
            return Key_Context::Window;
    }
}

}  // namespace workbench
