/** Makes single calls of the loaded modules fail: allocations, files, and calls into the drawing and window system.
 *  Works on the modules' import tables, so the modules are those that a host loads. Windows on x86-64 only.
 *
 *  A call that cannot fail, or that gives something back (DeleteObject, ReleaseDC, RestoreDC, free ...), is left alone:
 *  refusing to take something back is a leak of the system's own.
 */
#pragma once

#include <string>
#include <vector>

#include "tests/support/import_hook.h"

/** One call that could have failed. */
struct Fault_Call {
    int function = 0;            ///< number of the watched function
    int module = 0;              ///< index in the list of modules
    const void* from = nullptr;  ///< where it was called from
    bool is_allocation = false;
};

/** Watches the modules while it lives. One at a time; the calls of the creating thread only. */
class Fault_Gate {
  public:
    /** @param modules files; those that are not loaded are passed over */
    explicit Fault_Gate(const std::vector<std::string>& modules);
    ~Fault_Gate();
    Fault_Gate(const Fault_Gate&) = delete;
    Fault_Gate& operator=(const Fault_Gate&) = delete;

    /** Begins to count; call `n` (from 1) fails, 0: none does. */
    static void Arm(int n, bool keep_calls);
    static void Disarm();
    /** The armed call was reached and has failed. */
    static bool Happened();
    /** Calls since Arm, in order, when they are kept. */
    static const std::vector<Fault_Call>& Calls();
    static std::string Name(const Fault_Call& call);
    /** Blocks that the modules took and have not given back. */
    static long Live_Block_Nb();

  private:
    std::vector<Import_Hook> hooks;
    unsigned char* code = nullptr;
};
