// Makes one panel of every kind and asks each for its height, and prints the peaks of a histogram as numbers: enough to
// see that headers, import libraries and DLLs of an installation fit together.
#include <windows.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <vector>

#include "database/tool_db_class.h"
#include "database/tool_db_file.h"
#include "histogram/histo_peaks.h"
#include "histogram/tool_histo.h"
#include "kits/common/messages.h"
#include "kits/dataset/dataset_host.h"
#include "kits/widgets/widgets_host.h"
#include "panels/tool_brush.h"
#include "panels/tool_marker.h"
#include "panels/tool_propagate.h"
#include "panels/tool_tag.h"
#include "panels/version_export.h"

namespace {

constexpr int BINS = 256;

/** One frame of a window, whose grey levels lie around 80 and 170. */
struct Made_Frame {
    Quorel_2D volume;
    Quorel_Window window;
    Quorel_2D object;
    Quorel_2D_Frame frame;
    Histo_Record record;
    std::vector<std::uint32_t> counts;

    Made_Frame() {
        for (int level = 0; level < BINS; ++level) {
            counts.push_back(static_cast<std::uint32_t>(9000.0 * std::exp(-std::pow((level - 80) / 15.0, 2)) +
                                                        4000.0 * std::exp(-std::pow((level - 170) / 20.0, 2))));
        }
        record.nb_bins = BINS;
        record.bin_width = 1.0F;
        record.counts = counts.data();
        frame.histogram = &record;
        object.frame = &frame;
        object.Flag_Set_On(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
        volume.Child_Add(&object);
        object.Parent_Set_Pt(&volume);
        Object_Register_2D(&object);
        window.volume = &volume;
        Variable_Define_Pointer("$WINDOW_CUR", &window);
        Variable_Define_Scalar("$GLI_COLOR_COMPONENT", VARIABLE_UNSIGNED_8, 0);
        Variable_Define_Scalar("$GLI_HISTO_BINS_MAX", VARIABLE_UNSIGNED_16, BINS + 1);
        Variable_Define_Scalar("$GLI_HISTO_BINS_NB", VARIABLE_UNSIGNED_16, 0);
    }
    ~Made_Frame() { Variable_Define_Pointer("$WINDOW_CUR", nullptr); }
    Made_Frame(const Made_Frame&) = delete;
    Made_Frame& operator=(const Made_Frame&) = delete;
};

/** Counts the frame's grey levels, fits, prints. @return true when the two peaks stand where they were made */
bool Peaks_Print(Tool_Histo& histogram) {
    histogram.Update(UPDATE_HISTO_DATA);
    Histo_Fit_Repeatable(histogram);
    std::vector<Histo_Peak_Info> peaks(static_cast<std::size_t>(Histo_Peaks(histogram, nullptr, 0)));
    Histo_Peaks(histogram, peaks.data(), static_cast<int>(peaks.size()));
    for (const Histo_Peak_Info& peak : peaks) {
        std::printf("peak at %.2f +- %.2f, height %.1f +- %.1f, full width %.2f +- %.2f, %.0f pixels%s\n", peak.centre,
                    peak.centre_error, peak.height, peak.height_error, peak.full_width, peak.full_width_error,
                    peak.area_pixels, peak.doubt != 0 ? ", doubtful" : "");
    }
    return peaks.size() == 2 && std::abs(peaks[0].centre - 80.5) < 1.0 && std::abs(peaks[1].centre - 170.5) < 1.0;
}

}  // namespace

int main() {
    Variable_Define_Scalar("$INTERFACE_SPACE_DIM", VARIABLE_SIGNED_16, 4);
    Variable_Define_Scalar("$INTERFACE_BORDER_DIM", VARIABLE_SIGNED_16, 1);
    Variable_Define_Scalar("$INTERFACE_BUTTON_DIM_SML", VARIABLE_SIGNED_16, 20);
    Tool_Tag tags(0);
    Tool_Marker markers;
    Tool_Brush brushes;
    Tool_Propagate propagate;
    Tool_Histo histogram;
    Tool_DB_Class classes(2);
    Tool_DB_File files(2);
    std::printf("tags %d, markers %d, brushes %d, propagate %d, histogram %d, classes %d, files %d\n", tags.Height(4),
                markers.Height(2), brushes.Height(), propagate.Height(), histogram.Height(150), classes.Height(10),
                files.Height(10));
    const Made_Frame made;
    const bool has_peaks = Peaks_Print(histogram);
    return has_peaks && classes.Height(10) == 20 + 2 * (4 + 90 + 1) ? 0 : 1;
}
