#include "tests/database/typed_name.h"

#include <cstring>

#include "database/tool_db_dialog_rename.h"

Typed_Name typed_name;

extern "C" int __wrap__Z13Dialog_RenamePc(char* buffer);
extern "C" int __wrap__Z13Dialog_RenamePc(char* buffer) {
    typed_name.asked = buffer;
    std::strncpy(buffer, typed_name.typed.c_str(), DIALOG_RENAME_SIZE - 1);
    buffer[DIALOG_RENAME_SIZE - 1] = 0;
    if (typed_name.meanwhile) {
        typed_name.meanwhile();
    }
    return typed_name.answer;
}
