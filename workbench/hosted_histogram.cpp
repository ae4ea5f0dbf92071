#include "workbench/hosted_histogram.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

namespace workbench {

void Hosted_Histogram::Resize(Boxs* box) {
    const float scale = histogram.scale;
    Panel_Of<Tool_Histo>::Resize(box);
    Scale_Put(scale);
}

void Hosted_Histogram::Update(unsigned __int64 flags) {
    const bool had_counts = Has_Counts();
    Panel_Of<Tool_Histo>::Update(flags);
    if (Has_Counts() != had_counts) {
        Draw();
    }
}

void Hosted_Histogram::Scale_Set(float scale) {
    Scale_Put(scale);
    is_scale_chosen = true;
}

void Hosted_Histogram::Scale_Note() {
    is_scale_chosen = is_scale_chosen || histogram.scale != put_scale;
}

bool Hosted_Histogram::Scale_Suggest() {
    constexpr float headroom = 1.1F;
    constexpr std::ptrdiff_t beside = 2;  // bins that belong to the fullest one
    Scale_Note();
    if (is_scale_chosen || !Has_Counts()) {
        return false;
    }
    const Histo_Record& record = *histogram.data->record;
    const std::span<const std::uint32_t> counts(record.counts, record.nb_bins);
    const auto fullest = std::ranges::max_element(counts);
    if (fullest == counts.end() || *fullest == 0) {
        return false;
    }
    std::uint32_t next = 0;
    for (auto bin = counts.begin(); bin != counts.end(); ++bin) {
        next = std::abs(bin - fullest) > beside ? std::max(next, *bin) : next;
    }
    const float before = histogram.scale;
    Scale_Put(headroom * static_cast<float>(next) / static_cast<float>(*fullest));
    put_scale = histogram.scale;
    return histogram.scale != before;
}

void Hosted_Histogram::Scale_Release() {
    is_scale_chosen = false;
    put_scale = histogram.scale;
}

void Hosted_Histogram::Scale_Put(float scale) {
    histogram.scale = histogram.scale_valuator.value = std::clamp(scale, HISTO_SCALE_MIN, HISTO_SCALE_MAX);
}

}  // namespace workbench
