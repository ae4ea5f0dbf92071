#include "kits/dataset/requests.h"
#include "kits/dataset/save_file_dialog.h"

int Fct_Save_FileName(const char* title, const char* filter, const char* initial_name, const char* extension,
                      char* buffer, int /*flags*/) {
    if (buffer == nullptr) {
        return 0;
    }
    buffer[0] = 0;
    const Request_Listener now = Listener();
    if (now.save_file_name != nullptr) {
        return now.save_file_name(now.context, title, filter, initial_name, extension, buffer);
    }
    return Save_File_Dialog(title, filter, initial_name, extension, buffer);
}
