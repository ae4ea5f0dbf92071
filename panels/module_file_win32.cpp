#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "panels/module_file.h"

void Module_File_Name(char* path, int size) {
    if (size <= 0) {
        return;
    }
    path[0] = 0;
    HMODULE module = nullptr;
    constexpr DWORD by_address = GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT;
    if (::GetModuleHandleExA(by_address, reinterpret_cast<LPCSTR>(&Module_File_Name), &module) == 0) {
        return;
    }
    if (::GetModuleFileNameA(module, path, static_cast<DWORD>(size)) == 0) {
        path[0] = 0;
    }
    path[size - 1] = 0;  // some systems leave a cut path without its end
}
