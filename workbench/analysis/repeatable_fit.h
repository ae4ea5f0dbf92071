/** A Gaussian fit that gives the same peaks for the same data.
 *
 *  The module keeps the last zero crossing that it saw, for the whole process and on purpose: so a second fit on the
 * same data may find other candidates. Before every fit for a user a fit on a small synthetic curve, whose only
 * crossing is at a known bin, puts that memory into a known state. Only public operations of the panel are used.
 */
#pragma once

#include "histogram/tool_histo.h"

class Repeatable_Fit {
  public:
    Repeatable_Fit();
    /** Puts the module's memory into the known state. */
    void Prime();
    /** Primes, then fits the panel's histogram. @return what the panel's fit returned */
    int Run(Tool_Histo& panel);

  private:
    // Kept as long as the application: destroying any histogram panel closes the enlarged window.
    Tool_Histo primer;
};
