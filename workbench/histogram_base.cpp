#include "workbench/histogram_base.h"

#include <algorithm>

namespace workbench {

void Histogram_Base::Resize(Boxs* box) {
    const float scale = histogram.scale;
    Panel_Of<Tool_Histo>::Resize(box);
    Scale_Set(scale);
}

void Histogram_Base::Update(unsigned __int64 flags) {
    const bool had_counts = Has_Counts();
    Panel_Of<Tool_Histo>::Update(flags);
    if (Has_Counts() != had_counts) {
        Draw();
    }
}

void Histogram_Base::Scale_Set(float scale) {
    histogram.scale = histogram.scale_valuator.value = std::clamp(scale, HISTO_SCALE_MIN, HISTO_SCALE_MAX);
}

}  // namespace workbench
