/** Checks of the frames that a host shows. For the kit's own use. */
#pragma once

/** Reports frames of "$WINDOW_CUR" that panels do not reach, histograms that cannot be merged, and a limit of bins that
 * joins bins of the selected frames. */
void Contract_Check_Frames();
