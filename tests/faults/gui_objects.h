/** How many objects of the window system the process holds. Windows only. */
#pragma once

/** Pens, brushes, fonts, bitmaps, regions and device contexts of the process. */
int Gdi_Object_Nb();
/** Windows of the calling thread, their children included. */
int Window_Nb();
/** Committed bytes that are no file's. */
unsigned long long Private_Byte_Nb();
