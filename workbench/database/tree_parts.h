/** The rows of a database panel for those who hear the screen. */
#pragma once

#include <vector>

#include "database/tool_db_list.h"
#include "workbench/accessible.h"

/** The rows in view: what stands in them, whether they are checked, open or closed, and where they are. Not for the
 *  editor, whose nodes stand in a diagram. */
std::vector<Accessible_Part> Tree_Parts(const Tool_DB_List& tree, int current, HWND window);
