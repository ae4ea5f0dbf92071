/** The rows of a database panel for screen readers. */
#pragma once

#include <vector>

#include "database/tool_db_list.h"
#include "workbench/accessible.h"

namespace workbench {

/** What is in view, rows or, in the editor, nodes of its diagram: what stands in them, on which level, whether they are
 *  checked, open or closed, and where they are. The editor's node under the pointer, which is painted highlighted, is
 *  told as hot-tracked.
 *  @param current record of the row that the keyboard acts on, -1: none; the editor has none
 *  @param window the panel's, y upwards */
std::vector<Accessible_Part> Tree_Parts(const Tool_DB_List& tree, int current, HWND window);

}  // namespace workbench
