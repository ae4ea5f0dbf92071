/** @file
 *  The histogram panel: the grey-level histogram of the selected frames of the current window, with TAG bands, a cursor
 *  at the grey level under the image mouse, an enlarged window, automatic peak analysis and export to a text file.
 *
 *  **An empty histogram paints nothing**, so what was painted before stays on the screen. When counts come or go
 *  (nothing selected any more, a window closed, no frame with a histogram), the host calls Draw, which paints the empty
 *  box; Update alone does not.
 *
 *  The host constructs the panel, gives it a rectangle by Resize, and then forwards events and change flags. Everything
 *  runs on the user-interface thread.
 */
#pragma once

#include <cstdint>
#include <memory>

#include "host/kit_dataset.h"
#include "host/kit_widgets.h"
#include "panels/protocol/kit_panels.h"

struct Histo_Peak;

inline constexpr int HISTO_LABEL_SIZE = 80;       ///< bytes of an axis label, its zero included
inline constexpr int HISTO_RANGE_MAX = 32;        ///< TAG ranges that can be shaded
inline constexpr float HISTO_SCALE_MIN = 0.001F;  ///< largest magnification: a thousandth of the highest count fills
                                                  ///< the plot
inline constexpr float HISTO_SCALE_MAX = 1.0F;    ///< no magnification

/** What a panel computed. Shared by the copies of a panel: recomputing in one is seen by the other; the last one frees
 *  it.
 *
 *  A host reads it (histogram/histo_peaks.h gives the peaks as numbers); pointers that it keeps are good until the next
 *  computation or analysis. Everything is freed by `delete` and `delete[]` of the module, so only a program that shares
 *  its C++ run-time library may put a record of its own there. */
struct KIT_PANELS_API Histo_Data {
    Histo_Data() = default;
    ~Histo_Data();
    Histo_Data(const Histo_Data&) = delete;
    Histo_Data& operator=(const Histo_Data&) = delete;

    Histo_Record* record =
        nullptr;                  ///< null until the first computation; test `counts` too: an emptied record has none
    double* filtered = nullptr;   ///< smoothed curve of the last analysis, `curve_nb` values, or null
    float* derivative = nullptr;  ///< derivative curve, `curve_nb` values, or null
    float* fit_sum = nullptr;     ///< sum of the starting curves of the Gaussian fit, `curve_nb` values, or null
    float* fit_spare = nullptr;   ///< released by the derivative method, filled by nothing here
    int curve_nb = 0;  ///< bins of the curves above: the grid of the last analysis, which may be older than the record
    int peak_nb = 0;   ///< length of the list
    Histo_Peak* peak_first = nullptr;  ///< peaks by ascending centre; null: none. See histogram/histo_peak.h

    /** True when there is a record with counts. */
    bool Has_Counts() const { return record != nullptr && record->counts != nullptr; }
    /** Frees the record's arrays and clears its flags; its other numbers stay. */
    void Record_Empty();
    /** Frees the record and its arrays. */
    void Record_Free();
    /** Frees the peaks (each with its curve and vectors). */
    void Peaks_Free();
    /** Frees `filtered`, `derivative` and `fit_sum`. */
    void Curves_Free();
};

/** See the top of this file. The panel is its own plot box.
 *
 *  One enlarged window serves all panels of the process and shows the one that opened it. The end of **any** histogram
 *  panel closes it, also that of a temporary copy: hand panels on by reference. Its "Export" button and the fields of
 *  its selectors run modal loops (the save dialog, a drop list), in which the host's windows live on: the host may
 *  close the window or destroy the panel there.
 *
 *  Operations that may call the host back, and after whose call-back the panel need not exist any more: Click (a window
 *  that opens or comes to the front tells the other windows of the program at once), Fit_Derivative, Fit_Gaussian and
 *  Write (a receiver of their messages may show a message box). The other operations report traces and failed
 *  allocations; a receiver of those must not destroy the panel.
 */
class KIT_PANELS_API Tool_Histo : public Boxs {
  public:
    Tool_Histo();
    ~Tool_Histo();
    ///@{
    /** Shares the computed data with the original; widgets, labels and ranges are its own. */
    Tool_Histo(const Tool_Histo& other);
    Tool_Histo& operator=(const Tool_Histo& other);
    ///@}

    /** Any height will do. @return the height wanted, as given */
    int Height(unsigned short wanted);
    /** Lays the panel out in the host's box: plot, magnification valuator, "Blow" button. Resets the magnification.
     * @return 1 */
    int Resize(Boxs* box);
    /** Paints box, button, valuator and plot. */
    void Draw();
    /** A press on "Blow" opens the enlarged window, or restores and raises it; see above for what that may call. A code
     *  without MOUSE_PRESS is a release, whatever buttons it names. @return 1 when the press fell on the button or the
     *  valuator, else 0 */
    int Click(int up_down);
    /** @return 1 when the valuator moved, else 0 */
    int Motion(int up_down);
    /** Wherever the pointer is: moves the magnification by `delta` notches, forward to larger, and repaints the plot.
     *  @return 1 */
    int Scroll(int delta);
    /** Takes no key. @return 0 */
    int Keyboard(int key);
    /** Takes button and valuator out of hover and pressed looks. */
    void Leave();
    /** UPDATE_SELECTION with UPDATE_LEVEL_2D, and UPDATE_HISTO_DATA: compute anew, and paint nothing of it: a host that
     *  wants the picture at once sends UPDATE_HISTO_PAINT too. UPDATE_HISTO_PAINT, UPDATE_TAG_TABLE, UPDATE_TAG_CUR:
     *  paint. UPDATE_MOUSE_FRAME: the cursor line follows. UPDATE_COLOR_COMPONENT: takes "$GLI_COLOR_COMPONENT" over
     *  and paints; without that variable Update ends there. UPDATE_ALL: only the mark of the "Blow" button. All but the
     *  last reach the enlarged window as well.
     *
     *  A computation reads the frames of "$WINDOW_CUR" that are selected, "$GLI_HISTO_BINS_MAX" and
     *  "$GLI_COLOR_COMPONENT", and writes "$GLI_HISTO_BINS_NB". "$SELECT_GLI_MIN" and "$SELECT_GLI_MAX" are looked up
     *  with them and restrict nothing. */
    void Update(unsigned __int64 flags);
    /** Sets the TAG ranges to shade: n (0 .. 32, read as a signed 16-bit number) groups of TAG number (int), minimum
     * and maximum (double, GLI). Repaints nothing. @return 1; 0 when n is out of range (the old ranges stay) */
    int Set(int n, ...);
    /** Writes histogram, TAG membership and peaks to a text file. @param path file to create or replace, in the
     * system's code page. @return 1; 0 on failure, reported to the user: then the file is missing, empty or incomplete
     */
    int Write(const char* path);
    /** Cuts the curve into segments around its maxima. @param max_peak largest number of peaks wanted. @return 0
     * without counts and while another analysis runs, else 1, whatever was found */
    int Fit_Derivative(unsigned char max_peak);
    /** Fits Gaussian peaks to the filtered curve. A second fit of the same counts may find other candidates: the place
     * of the last one is kept for the whole process, and candidates closer than 15 bins behind it are passed over.
     * Histo_Fit_Repeatable (histogram/histo_peaks.h) gives the same peaks again. @return as Fit_Derivative */
    int Fit_Gaussian();

    Buttons blow_button;            ///< current while the enlarged window is open, whichever panel it shows
    Valuators scale_valuator;       ///< HISTO_SCALE_MIN .. HISTO_SCALE_MAX
    float scale = HISTO_SCALE_MAX;  ///< fraction of the largest count that reaches the top of the plot
    /** Title of the grey-level axis. Written by every computation; a host reads it. */
    char x_label[HISTO_LABEL_SIZE] = {};
    /** Title of the count axis. Written by every computation; a host reads it. */
    char y_label[HISTO_LABEL_SIZE] = {};
    /** The frames' common descriptor, or "mix". Written by every computation; a host reads it. */
    char source_label[HISTO_LABEL_SIZE] = {};
    std::shared_ptr<Histo_Data> data;   ///< never null but after a failed allocation
    int cursor_position = -1;           ///< column of the cursor line; -1 after a repaint, 0 when no line is shown
    unsigned char color_component = 0;  ///< value of "$GLI_COLOR_COMPONENT"
    std::uint16_t range_nb = 0;         ///< ranges in use, 0 .. HISTO_RANGE_MAX
    std::uint16_t range_tag[HISTO_RANGE_MAX] = {};  ///< TAG number of each range
    float range_min[HISTO_RANGE_MAX] = {};          ///< GLI
    float range_max[HISTO_RANGE_MAX] = {};          ///< GLI
};
