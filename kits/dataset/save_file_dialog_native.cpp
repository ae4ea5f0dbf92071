// Without Windows there is no dialog: only a listener can answer.
#include "kits/dataset/save_file_dialog.h"

int Save_File_Dialog(const char* /*title*/, const char* /*filter*/, const char* /*initial_name*/,
                     const char* /*extension*/, char* /*buffer*/) {
    return 0;
}
