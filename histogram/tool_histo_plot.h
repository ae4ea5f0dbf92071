/** What the enlarged histogram window paints: bands, axes, curves, peaks, labels, cursor line and zoom rectangle. */
#pragma once

#include "histogram/blow_view.h"
#include "histogram/plot_columns.h"
#include "host/kit_widgets.h"

class Tool_Histo;

/** Values of "Display Peak    ". For derivative segments there are only off and on (HISTO_PEAK_COMPOSITE). */
enum Histo_Peak_Display : int { HISTO_PEAK_OFF = 0, HISTO_PEAK_COMPOSITE = 1, HISTO_PEAK_INDIVIDUAL = 2 };

/** One redraw: where it goes and what it shows. Window pixels, y counted upward. */
struct Histo_Plot_Scene {
    Boxs box;              ///< the plot box as it is laid out: colour, border, window, the axes' font
    int font_height = 0;   ///< of the host's font for tools, pixels; 0: it has none
    Pixel_Rectangle area;  ///< the plot area inside the axes' margins
    Blow_Range x;          ///< visible grey levels (GLI)
    Blow_Range y;          ///< visible pixel counts
    bool tag = false;      ///< shade the TAG ranges
    int peak = HISTO_PEAK_OFF;

    /** The plot area with what it shows. */
    Plot_Frame Frame() const {
        return {area.width,
                area.height,
                static_cast<double>(x.start),
                static_cast<double>(x.end),
                static_cast<double>(y.start),
                static_cast<double>(y.end)};
    }
};

/** Paints everything but the controls and the cursor into the device context of the box's window (or its buffer).
 *  @return 0 without counts, else 1 */
int Histo_Plot_Draw(const Tool_Histo& panel, const Histo_Plot_Scene& scene);
/** Gives back the memory that redraws share: the window has closed. */
void Histo_Plot_Picture_Free();
/** Moves the cursor line (XOR) to the grey level under the image mouse. @return 0 when there is nothing to mark */
int Histo_Plot_Cursor(Tool_Histo& panel, const Histo_Plot_Scene& scene);
/** The picture was painted anew: no cursor line and no zoom rectangle is on it. */
void Histo_Plot_Marks_Forget();
/** Moves the zoom rectangle (XOR) to these corners; erases the one on screen first. */
void Local_Drag_Draw(const Histo_Plot_Scene& scene, const Blow_Drag& drag);
/** Erases the zoom rectangle. */
void Local_Drag_Clear(const Histo_Plot_Scene& scene);
