/** Which bin is under the image mouse: the conversion that the panel's cursor and the enlarged window share. */
#pragma once

class Tool_Histo;

enum class Histo_Cursor_Result {
    No_Frame,  ///< the mouse is over no frame
    Outside,   ///< it is outside the frame's image
    On_Bin,
};

struct Histo_Cursor_Bin {
    Histo_Cursor_Result result = Histo_Cursor_Result::No_Frame;
    int bin = 0;         ///< 0 .. nb_bins - 1 of the panel's record
    float level = 0.0F;  ///< grey level of a grey frame, raw level of a colour frame
};

/** Reads "$FRAME_OVR" and "$MOUSE_FRM". The panel must have a record with bins.
 *  Contract: hosts show raw levels 0 .. 255 of colour frames; the record's grid does not apply to them. */
Histo_Cursor_Bin Histo_Cursor_Bin_Find(const Tool_Histo& panel);
