/** Replaces functions that a loaded module imports, by its import table. Production code stays as it is. Windows on
 *  x86-64 only.
 *
 *  A module is named by its file ("Kit_Widgets.dll"); an empty name is the program itself.
 */
#pragma once

#include <cstdint>
#include <string>
#include <vector>

/** One replaced import; put back at the end. */
class Import_Hook {
  public:
    Import_Hook() = default;
    /** @param dll     the file that the function is imported from, any case
     *  @param replacement a function of the same form */
    Import_Hook(const char* module, const char* dll, const char* function, void* replacement);
    ~Import_Hook() { Remove(); }
    Import_Hook(Import_Hook&& other) noexcept;
    Import_Hook& operator=(Import_Hook&& other) noexcept;

    /** False when the module does not import the function. */
    bool Is_Set() const { return place != nullptr; }
    void* Original() const { return original; }

  private:
    void Remove();

    void** place = nullptr;
    void* original = nullptr;
};

/** Names of the functions that a module imports from a DLL. */
std::vector<std::string> Import_Names(const char* module, const char* dll);

/** Counts every call that a module makes into a DLL, whatever the function. */
class Import_Counter {
  public:
    Import_Counter(const char* module, const char* dll);
    ~Import_Counter();
    Import_Counter(const Import_Counter&) = delete;
    Import_Counter& operator=(const Import_Counter&) = delete;

    /** Functions that are counted. */
    int Function_Nb() const { return static_cast<int>(names.size()); }
    /** Calls since the beginning or the last Reset. */
    std::uint64_t Calls() const;
    std::uint64_t Calls(const char* function) const;
    void Reset();
    /** "BitBlt 3, GetDC 1": for the failure text of a test. */
    std::string Text() const;

  private:
    std::vector<std::string> names;
    std::vector<std::uint64_t> counts;
    std::vector<Import_Hook> hooks;
    unsigned char* code = nullptr;  // one small jump for each function
};

/** Makes the n-th allocation (from 1) that a module asks the C runtime for fail, once. One at a time. */
class Allocation_Fault {
  public:
    Allocation_Fault(const char* module, int n);
    ~Allocation_Fault();
    Allocation_Fault(const Allocation_Fault&) = delete;
    Allocation_Fault& operator=(const Allocation_Fault&) = delete;

    /** True when the allocation was reached and has failed. */
    static bool Happened();

  private:
    std::vector<Import_Hook> hooks;
};

/** Calls `operation` with its module's first allocation failing, then its second, and so on until none is left to fail.
 *  @return how many allocations failed */
template <typename Operation>
int Fail_Each_Import_Allocation(const char* module, Operation operation) {
    for (int n = 1;; n++) {
        const Allocation_Fault fault(module, n);
        operation();
        if (!Allocation_Fault::Happened()) {
            return n - 1;
        }
    }
}
