/** A library of the system whose operations are found by name: it may be missing, and most sessions never need it. */
#pragma once

#include <windows.h>

namespace workbench {

class System_Library {
  public:
    /** Loads it; it stays until the program ends. */
    explicit System_Library(const wchar_t* file) : handle(::LoadLibraryW(file)) {}
    /** An operation of that name; null: there is none. */
    template <class Function>
    Function Find(const char* name) const {
        void* const address = handle == nullptr ? nullptr : reinterpret_cast<void*>(::GetProcAddress(handle, name));
        return reinterpret_cast<Function>(address);
    }

  private:
    HMODULE handle;
};

}  // namespace workbench
