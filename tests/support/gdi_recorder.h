/** Balance of what a module does with GDI: created and deleted, selected and restored, got and released. Windows only.
 */
#pragma once

#include <string>
#include <vector>

#include "tests/support/import_hook.h"

/** Records a module's calls while it lives. One at a time. */
class Gdi_Recorder {
  public:
    explicit Gdi_Recorder(const char* module);
    ~Gdi_Recorder();
    Gdi_Recorder(const Gdi_Recorder&) = delete;
    Gdi_Recorder& operator=(const Gdi_Recorder&) = delete;

    /** What is out of balance since the beginning or the last Forget, one line each; empty when all is given back. */
    static std::string Unbalanced();
    static void Forget();
    /** Calls that were watched: a test without any says nothing. */
    static int Watched_Nb();
    /** The n-th GetDC from now on (from 1) gives none, once; 0: none fails. */
    static void Get_DC_Fail(int n);

  private:
    std::vector<Import_Hook> hooks;
};
