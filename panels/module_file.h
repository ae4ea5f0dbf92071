/** The file that this module was loaded from. */
#pragma once

/** Writes the full path, cut at `size` - 1 bytes and always ended by a zero; empty when the system does not tell. The
 *  program's path where the module is part of the program. */
void Module_File_Name(char* path, int size);
