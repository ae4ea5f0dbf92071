/** Windows of the build without a window system: a size, a place on an imaginary screen and the pixels they show. */
#pragma once

#include "host/platform.h"
#include "kits/widgets/surface.h"

/** @return a new window, to be given to Headless_Window_Destroy */
HWND Headless_Window_Create(int width, int height);
/** @param origin the screen position of the client area's top left pixel */
void Headless_Window_Move(HWND window, Point origin);
void Headless_Window_Resize(HWND window, int width, int height);
void Headless_Window_Destroy(HWND window);
/** What the window shows at a client position; 0 outside. */
Rgb Headless_Window_Pixel(HWND window, int x, int y);
/** The imaginary keyboard, mouse and clipboard. */
void Headless_Key_Set(int virtual_key, bool held);
void Headless_Button_Set(int button, bool held);
