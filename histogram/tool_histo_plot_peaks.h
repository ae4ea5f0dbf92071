/** Peaks in the enlarged plot: fills, outlines and labels. */
#pragma once

#include "base/gdi_handles.h"
#include "histogram/plot_pixels.h"
#include "histogram/tool_histo_plot.h"

/** The curves of a panel's peaks as columns of a picture; made once per redraw. */
class Histo_Plot_Peaks {
  public:
    /** Fits: their sum as one outline (composite), or each its own filled curve (individual). Segments: bands from the
     *  bottom of the plot to its top. Peaks without a curve are left out. */
    Histo_Plot_Peaks(const Tool_Histo& panel, const Plot_Columns& columns, int display);

    enum class Look {
        Outline,
        Filled,  ///< and an outline
        Band,    ///< of the spans' rows, without an outline
    };
    struct Curve {
        Column_Spans spans;       ///< the outline, one span per column, from the first one that has some
        int begin = 0;            ///< column of the first span
        std::uint32_t pixel = 0;  ///< colour
        Look look = Look::Outline;
    };
    struct Label {
        int column = 0;
        int row = 0;          ///< of the peak's top, in the frame's rows
        double centre = 0.0;  ///< GLI
    };
    const std::vector<Curve>& Curves() const { return curves; }
    const std::vector<Label>& Labels() const { return labels; }

  private:
    void Segments_Add(const Tool_Histo& panel, const Plot_Columns& columns);
    void Fits_Add(const Tool_Histo& panel, const Plot_Columns& columns);
    /** @param spans one per column */
    void Curve_Add(Column_Spans spans, std::uint32_t pixel, int base, Look look);
    void Sum_Add(const Tool_Histo& panel, const Plot_Columns& columns);

    std::vector<Curve> curves;
    std::vector<Label> labels;
};

/** Adds bands, and the areas under curves that are filled, half transparent. @param base row of the count 0, may be
 * outside */
void Histo_Plot_Window_Fill(std::vector<Plot_Layer>& layers, const Histo_Plot_Peaks& peaks, const Plot_Frame& frame,
                            int base);
/** Adds the outlines. */
void Histo_Plot_Window_Curve(std::vector<Plot_Layer>& layers, const Histo_Plot_Peaks& peaks, const Plot_Frame& frame,
                             int thickness);
/** Writes the centres at the peaks' tops, each on a plate, those that collide apart or not at all.
 *  @param dc device context of the picture, with the font selected */
void Histo_Plot_Peak_Label(HDC dc, Plot_Pixels& picture, const Histo_Plot_Peaks& peaks, std::uint32_t ground,
                           std::uint32_t text);
