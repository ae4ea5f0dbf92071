#include "kits/dataset/contract_frames.h"

#include <algorithm>
#include <cmath>
#include <string>

#include "kits/common/contract.h"
#include "kits/dataset/dataset_host.h"
#include "kits/dataset/variables.h"

namespace {

std::string Named(const Quorel_2D& object) {
    const char* name = object.Name_Get();
    return name != nullptr && *name != 0 ? std::string("frame ") + name : std::string("a frame");
}

/** What a merge of the selected frames covers. */
struct Extent {
    float lowest = 0.0F;
    float highest = 0.0F;
    float finest = 0.0F;
    bool is_empty = true;

    void Add(const Histo_Record& record) {
        const float edge = static_cast<float>(record.nb_bins) * record.bin_width + record.origin;
        lowest = is_empty ? record.origin : std::min(lowest, record.origin);
        highest = is_empty ? edge : std::max(highest, edge);
        finest = is_empty ? record.bin_width : std::min(finest, record.bin_width);
        is_empty = false;
    }
};

/** @return false when the record is of no use for a merge */
bool Record_Check(const Quorel_2D& object, const Histo_Record& record) {
    if (record.nb_bins == 0 || !(record.bin_width > 0.0F) || !std::isfinite(record.bin_width) ||
        !std::isfinite(record.origin)) {
        Contract_Report(CONTRACT_HISTOGRAM, Named(object) + " has no bins or no bin width");
        return false;
    }
    if ((record.flags & HISTO_COLOR) != 0 && (record.counts_red == nullptr || record.counts_green == nullptr ||
                                              record.counts_blue == nullptr || record.counts_component0 == nullptr)) {
        Contract_Report(CONTRACT_HISTOGRAM, Named(object) + " is coloured and lacks counts of a component");
    }
    return true;
}

void Histograms_Check(Quorel_Window* window) {
    const unsigned short handle = Iterator_Init("Contract_Check_Variables", nullptr);
    if (handle == 0) {
        return;
    }
    Extent extent;
    while (const Quorel_2D* object = Iterator_Class_2D(handle, CLASS_MASK_2D, window, 1)) {
        const Histo_Record* record = object->frame->Histogram_Get();
        if (record != nullptr && record->counts != nullptr && Record_Check(*object, *record)) {
            extent.Add(*record);
        }
    }
    Iterator_End(handle);
    const double limit = Variable_Number("$GLI_HISTO_BINS_MAX", -1.0);
    if (extent.is_empty || limit < 0.0) {
        return;
    }
    // The panel's own steps.
    if (const float bins = std::trunc((extent.highest - extent.lowest + 1.0F) / extent.finest);
        static_cast<double>(bins) > limit) {
        Contract_Report(CONTRACT_BINS, "$GLI_HISTO_BINS_MAX is " + std::to_string(static_cast<long long>(limit)) +
                                           ", the bins of the selected frames need " +
                                           std::to_string(static_cast<long long>(std::min(bins, 1e9F))));
    }
}

void Registered_Check(const Quorel_2D& object) {
    if (object.frame != nullptr && object.registered_at < 0) {
        Contract_Report(CONTRACT_FRAME, Named(object) + " is not registered");
    }
    for (int child = 0; child < object.Child_Get_Nb(); ++child) {
        Registered_Check(*object.Child_Get_Pt(child));
    }
}

}  // namespace

void Contract_Check_Frames() {
    const Variable* current = Variable_Find("$WINDOW_CUR");
    auto* window = current != nullptr && current->form == Variable::Form::Pointer
                       ? static_cast<Quorel_Window*>(current->storage.pointer)
                       : nullptr;
    if (window == nullptr || window == All_Windows()) {
        return;
    }
    int nb = 0;
    if (Variable_Array("$FRAME_CUR", VARIABLE_POINTER, &nb) != nullptr && window->Class_B_Get() >= nb) {
        Contract_Report(CONTRACT_FRAME, "window " + std::to_string(window->Class_B_Get()) +
                                            " has no place in $FRAME_CUR, of " + std::to_string(nb) + " elements");
    }
    if (window->volume != nullptr) {
        Registered_Check(*window->volume);
    }
    Histograms_Check(window);
}
