// What a panel computed: its lifetime.
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_peak.h"

namespace {

template <class Type>
void Array_Free(Type*& array) {
    delete[] array;
    array = nullptr;
}

}  // namespace

Histo_Data::~Histo_Data() {
    Peaks_Free();
    Curves_Free();
    Array_Free(fit_spare);
    Record_Free();
}

void Histo_Data::Record_Empty() {
    if (record == nullptr) {
        return;
    }
    record->flags = 0;
    Array_Free(record->counts);
    Array_Free(record->counts_red);
    Array_Free(record->counts_green);
    Array_Free(record->counts_blue);
    Array_Free(record->counts_component0);
}

void Histo_Data::Record_Free() {
    Record_Empty();
    delete record;
    record = nullptr;
}

void Histo_Data::Peaks_Free() {
    while (peak_first != nullptr) {
        Histo_Peak* next = peak_first->next;
        Peak_Free(peak_first);
        peak_first = next;
    }
    peak_nb = 0;
}

void Histo_Data::Curves_Free() {
    Array_Free(filtered);
    Array_Free(derivative);
    Array_Free(fit_sum);
    curve_nb = 0;
}
