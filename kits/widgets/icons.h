/** Icon pictures of the icon folders and the lines of trees, laid over what a device context shows. */
#pragma once

#include "host/kit_widgets.h"
#include "kits/widgets/surface.h"

/** Draws an icon, its white parts in the colour, in a set-up of its own or in the running one of the same window. */
void Icon_Draw_Tinted(HWND window, int x, int y, const char* prog_name, const char* file, Rgb tint);
