/** What stands on the screen, for a program that drives the application: every window with what can be clicked in it.
 */
#pragma once

#include <windows.h>

namespace workbench {

class Json_Text;

/** The member "windows": this thread's windows that can be seen, each with its title, whether it has the keyboard, its
 *  client area ("place": left, top, width, height on the screen), and "children" likewise: controls of the system with
 *  their texts, windows of the application with the parts that they tell (see accessible.h). */
void Windows_Write(Json_Text& out);
/** A menu of this thread is open. */
bool Is_In_Menu();
/** The members "menus", as they are marked now, and "is_in_menu". @param menu null: there is none */
void Menus_Write(Json_Text& out, HMENU menu);
/** A member of that name: a place on the screen, and whether it can be seen. */
void Place_Write(Json_Text& out, const char* name, HWND window);

}  // namespace workbench
