// The merge's shell: reads the host, calls the numeric merge, stores the record, reports failures.
#include "histogram/tool_histo_compute.h"

#include <cstdio>
#include <cstring>
#include <new>
#include <span>

#include "histogram/histogram_merge.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_messages.h"
#include "host/kit_common.h"
#include "host/kit_dataset.h"
#include "panels/protocol/host_variables.h"

namespace {

constexpr const char* ITERATOR_NAME = "Tool_Histo: Histo_Compute";
constexpr const char* MIXED_DESCRIPTOR = "mix";

// Lines under which failed allocations are reported; hosts match them, so they stay as they are.
constexpr int LINE_RECORD = 897;
constexpr int LINE_COUNTS = 987;
constexpr int LINE_RED = 1019;
constexpr int LINE_GREEN = 1021;
constexpr int LINE_BLUE = 1023;
constexpr int LINE_COMPONENT0 = 1025;

/** Host settings of the computation, cached for the life of the module. */
struct Compute_Settings {
    std::uint8_t* color_component = nullptr;
    std::uint16_t* bins_max = nullptr;
    std::uint16_t* bins_nb = nullptr;

    bool Look_Up() {
        static Cached_Variable<std::uint8_t> component("$GLI_COLOR_COMPONENT");
        static Cached_Variable<std::uint16_t> max("$GLI_HISTO_BINS_MAX");
        static Cached_Variable<std::uint16_t> nb("$GLI_HISTO_BINS_NB");
        // The panel's grey-level selection is looked up with the others and restricts nothing here.
        static Cached_Variable<float> select_min("$SELECT_GLI_MIN");
        static Cached_Variable<float> select_max("$SELECT_GLI_MAX");
        color_component = component.Address();
        select_min.Address();
        select_max.Address();
        bins_max = max.Address();
        bins_nb = nb.Address();
        return color_component != nullptr && bins_max != nullptr && bins_nb != nullptr;
    }
};

/** One pass over the selected frames of a window; closed by its destructor. */
class Selected_Frames {
  public:
    explicit Selected_Frames(Quorel_Window* frames_window)
        : window(frames_window), handle(Iterator_Init(ITERATOR_NAME, nullptr)) {}
    ~Selected_Frames() {
        if (handle != 0) {
            Iterator_End(handle);
        }
    }
    Selected_Frames(const Selected_Frames&) = delete;
    Selected_Frames& operator=(const Selected_Frames&) = delete;

    bool Is_Open() const { return handle != 0; }
    Quorel_2D* Next() { return handle != 0 ? Iterator_Class_2D(handle, CLASS_MASK_2D, window, 1) : nullptr; }

  private:
    Quorel_Window* window;
    unsigned short handle;
};

Histo_Record* Histogram_Of(const Quorel_2D& object) {
    Histo_Record* histogram = object.frame != nullptr ? object.frame->Histogram_Get() : nullptr;
    return histogram != nullptr && histogram->counts != nullptr ? histogram : nullptr;
}

/** The descriptor that all frames share, "mix" when they differ, null while none was seen. */
const char* Descriptor_Combine(const char* running, const char* frame) {
    if (running == nullptr || std::strcmp(running, MIXED_DESCRIPTOR) == 0) {
        return running == nullptr ? frame : running;
    }
    return frame != nullptr && std::strcmp(running, frame) == 0 ? running : MIXED_DESCRIPTOR;
}

std::uint32_t* Counts_Allocate(int nb_bins, int line) {
    auto* counts = new (std::nothrow) std::uint32_t[static_cast<std::size_t>(nb_bins)]();
    if (counts == nullptr) {
        Histo_Report_New(line, TOOL_HISTO_SOURCE);
    }
    return counts;
}

/** Adds the component arrays to the record at its first colour frame. Arrays made before a failure stay with the
 * record. */
bool Components_Allocate(Histo_Record& record) {
    record.flags |= HISTO_COLOR;
    record.counts_red = Counts_Allocate(record.nb_bins, LINE_RED);
    if (record.counts_red == nullptr) {
        return false;
    }
    record.counts_green = Counts_Allocate(record.nb_bins, LINE_GREEN);
    if (record.counts_green == nullptr) {
        return false;
    }
    record.counts_blue = Counts_Allocate(record.nb_bins, LINE_BLUE);
    if (record.counts_blue == nullptr) {
        return false;
    }
    record.counts_component0 = Counts_Allocate(record.nb_bins, LINE_COMPONENT0);
    return record.counts_component0 != nullptr;
}

enum class Extent_Result { Found, No_Frame, No_Histogram };

Extent_Result Extent_Find(Quorel_Window* window, Histogram_Extent& extent) {
    Selected_Frames frames(window);
    int frame_nb = 0;
    while (const Quorel_2D* object = frames.Next()) {
        ++frame_nb;
        if (const Histo_Record* histogram = Histogram_Of(*object)) {
            extent.Add(*histogram);
        }
    }
    if (frame_nb == 0) {
        return Extent_Result::No_Frame;
    }
    return extent.Is_Valid() ? Extent_Result::Found : Extent_Result::No_Histogram;
}

/** Second pass. @param label receives the descriptor that the frames share, and stays when none has one. @return false
 * when a component array could not be allocated */
bool Frames_Merge(Quorel_Window* window, Histo_Record& record, std::span<char> label) {
    const char* descriptor = nullptr;
    // Everything is read before the iterator ends: a frame's counts and texts may go with it.
    Selected_Frames frames(window);
    Histogram_Merger merger(record);
    while (const Quorel_2D* object = frames.Next()) {
        descriptor = Descriptor_Combine(descriptor, object->descriptor);
        const Histo_Record* histogram = Histogram_Of(*object);
        if (histogram == nullptr) {
            continue;
        }
        if ((histogram->flags & HISTO_COLOR) != 0 && (record.flags & HISTO_COLOR) == 0) {
            if (!Components_Allocate(record)) {
                return false;
            }
        }
        merger.Add(*histogram);
    }
    merger.Finish();
    if (descriptor != nullptr) {
        std::snprintf(label.data(), label.size(), "%s", descriptor);
    }
    return true;
}

bool Record_Prepare(Histo_Data& data) {
    if (data.record != nullptr) {
        data.Record_Empty();
        return true;
    }
    data.record = new (std::nothrow) Histo_Record();
    if (data.record == nullptr) {
        Error_Fct(hwnd, MESSAGE_MEMORY, HISTO_MESSAGE_CALLOC, LINE_RECORD, TOOL_HISTO_SOURCE, "histo",
                  static_cast<int>(sizeof(Histo_Record)), 1);
    }
    return data.record != nullptr;
}

}  // namespace

int Histo_Compute(Tool_Histo& panel) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Histo_Compute()");
    auto* window = static_cast<Quorel_Window*>(Fct_Variable_Value("$WINDOW_CUR", nullptr, nullptr, nullptr));
    Compute_Settings settings;
    if (window == nullptr || panel.data == nullptr || !settings.Look_Up()) {
        return 0;
    }
    panel.color_component = *settings.color_component;
    Histo_Data& data = *panel.data;
    if (!Record_Prepare(data)) {
        return 0;
    }
    Histogram_Extent extent;
    switch (Extent_Find(window, extent)) {
        case Extent_Result::No_Frame:
            data.Record_Free();
            return 0;
        case Extent_Result::No_Histogram:
            return 0;
        case Extent_Result::Found:
            break;
    }
    const Histogram_Grid grid = Histogram_Grid_Choose(extent, *settings.bins_max);
    *settings.bins_nb = grid.nb_bins;
    Histo_Record& record = *data.record;
    record.nb_bins = *settings.bins_nb;
    record.origin = grid.origin;
    record.bin_width = grid.bin_width;
    record.counts = Counts_Allocate(record.nb_bins, LINE_COUNTS);
    if (record.counts == nullptr) {
        return 0;
    }
    if (!Frames_Merge(window, record, panel.source_label)) {
        return 0;
    }
    record.max_count = Histogram_Max_Count(record);
    std::snprintf(panel.x_label, sizeof panel.x_label, "%s", "Pixel Intensity");
    std::snprintf(panel.y_label, sizeof panel.y_label, "%s", "Nb of Pixels");
    return 1;
}
