/** The menu bar, as the table of commands has it. */
#pragma once

#include "base/gdi_handles.h"

#include <optional>

#include "workbench/commands/command_table.h"

namespace workbench {

/** Owned by the window that it is given to. */
HMENU Menu_Make();

/** Brings marks, texts and numbered entries of a menu, and of all menus in it, up to date; before it opens. */
void Menu_Refresh(HMENU menu, const Command_Table& commands);

/** What an entry asks for; no value: the number is none of a command. @param id of WM_COMMAND */
std::optional<Command_Call> Command_Of_Menu(UINT id);

}  // namespace workbench
