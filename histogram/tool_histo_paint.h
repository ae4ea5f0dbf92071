/** The panel's small plot. */
#pragma once

class Tool_Histo;

/** Paints the plot. @return 0 without counts, else 1 */
int Histo_Paint(Tool_Histo& panel);
/** Moves the cursor line to the grey level under the image mouse. @return 0 when there is nothing to mark */
int Histo_Cursor(Tool_Histo& panel);
