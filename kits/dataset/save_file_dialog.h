/** The system's dialog for the name of a file to write. For the kit's own use. */
#pragma once

/** @param buffer FILE_NAME_SIZE bytes, receives the path. @return non-zero: confirmed */
int Save_File_Dialog(const char* title, const char* filter, const char* initial_name, const char* extension,
                     char* buffer);
