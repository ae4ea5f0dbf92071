/** The parts of the window that keys can act on. */
#pragma once

#include "workbench/commands/command_table.h"

namespace workbench {

/** The parts in the order of the Tab key; the panels of the tool area stand in the order in which they were added. */
enum class Pane { None = -1, Image, Tag, Brush, Frames, Marker, Histogram, Database };

constexpr bool Is_Tool_Pane(Pane pane) {
    return pane >= Pane::Tag && pane <= Pane::Histogram;
}
/** Index among the panels of the tool area. */
constexpr int Tool_Of(Pane pane) {
    return static_cast<int>(pane) - static_cast<int>(Pane::Tag);
}
/** Where the keys of a part's own are looked up; those of the window where it has none. */
Key_Context Context_Of(Pane pane);

}  // namespace workbench
