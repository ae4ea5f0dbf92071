#include "histogram/peak_segments.h"

Segment_List Segments_Find(std::span<const float> derivative) {
    Segment_List list;
    std::array<int, SEGMENT_MAX + 1> start{};
    std::array<int, SEGMENT_MAX + 1> valley{};
    const auto n = static_cast<int>(derivative.size());
    for (int i = 0; i <= n - 2 && list.nb < SEGMENT_MAX; ++i) {
        const float here = derivative[static_cast<std::size_t>(i)];
        const float next = derivative[static_cast<std::size_t>(i) + 1];
        const auto k = static_cast<std::size_t>(list.nb);
        if (here < 0.0F && next >= 0.0F) {
            start[k] = i;
            if (k > 0) {
                valley[k] = i;
            }
        }
        // Both tests may hold at one bin.
        if (here <= 0.0F && next > 0.0F) {
            start[k] = i;
        }
        if (here >= 0.0F && next < 0.0F) {
            list.segment[k].centre = i;
            ++list.nb;
        }
    }
    for (int j = 0; j < list.nb; ++j) {
        const auto k = static_cast<std::size_t>(j);
        list.segment[k].first = 0;
        list.segment[k].last = n - 1;
        if (j > 0) {
            const int middle = valley[k] + ((start[k] - valley[k]) >> 1);
            list.segment[k - 1].last = middle;
            list.segment[k].first = middle + 1;
        }
    }
    return list;
}
