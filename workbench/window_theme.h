/** What the system draws of this program's windows, in the colours of the theme: frames and prompts. */
#pragma once

#include <windows.h>

namespace workbench {

/** For the frames of all windows that there are, and for those to come. A screen of high contrast keeps the system's
 *  colours. */
void Windows_Theme_Set(bool is_dark);
/** The frame of a new window. Nothing where the system is too old for it. */
void Frame_Theme_Follow(HWND window);
/** What a prompt answers to the messages by which the system asks for colours; null: the system's colours hold, as in
 *  the light theme. */
HBRUSH Prompt_Ground(UINT message, WPARAM dc);

}  // namespace workbench
