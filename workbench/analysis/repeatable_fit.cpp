#include "workbench/analysis/repeatable_fit.h"

#include <new>

namespace {

constexpr int PRIMER_BINS = 64;
// The moving mean over 21 bins first sees this bin from bin 1 on and then spreads it: the derivative crosses zero at
// bin 2 and nowhere else.
constexpr int PRIMER_BIN = 11;
constexpr std::uint32_t PRIMER_COUNT = 1000;

}  // namespace

Repeatable_Fit::Repeatable_Fit() {
    if (primer.data == nullptr) {
        return;
    }
    auto* record = new (std::nothrow) Histo_Record();
    auto* counts = new (std::nothrow) std::uint32_t[PRIMER_BINS]();
    if (record == nullptr || counts == nullptr) {
        delete record;
        delete[] counts;
        return;
    }
    counts[PRIMER_BIN] = PRIMER_COUNT;
    record->nb_bins = PRIMER_BINS;
    record->bin_width = 1.0F;
    record->counts = counts;
    primer.data->record = record;
}

void Repeatable_Fit::Prime() {
    primer.Fit_Gaussian();
}

int Repeatable_Fit::Run(Tool_Histo& panel) {
    Prime();
    return panel.Fit_Gaussian();
}
