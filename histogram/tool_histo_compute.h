/** The computation of a panel's histogram. */
#pragma once

class Tool_Histo;

/** Merges the stored histograms of the selected frames of the current window into the panel's record. @return 1 when a
 * histogram was built */
int Histo_Compute(Tool_Histo& panel);
