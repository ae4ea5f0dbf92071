#include "database/tool_db_dialog_rename.h"

int Dialog_Rename(char*) {
    return -1;
}
