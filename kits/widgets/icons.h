/** Icon pictures of the icon folders and the lines of trees, laid over what a device context shows. */
#pragma once

#include <string>

#include "host/kit_widgets.h"
#include "kits/widgets/surface.h"

/** Draws an icon, its white parts in the colour, in a set-up of its own or in the running one of the same window. */
void Icon_Draw_Tinted(HWND window, int x, int y, const char* prog_name, const char* file, Rgb tint);

///@{
/** Paths in the system's code page, read by characters: the second byte of one may look like a separator. */
/** The file in the folder; no separator is added to an empty folder or one that ends with one. */
std::string Icon_Path(const std::string& folder, const char* file);
/** What stands before the name of a program's file, with its separator; empty without a folder. */
std::string Icon_Program_Folder(const char* program);
///@}
