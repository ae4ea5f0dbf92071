// libFuzzer: frames of any grid merged into one record, against the same counts added bin by bin.
#include <algorithm>
#include <array>
#include <vector>

#include "histogram/histogram_merge.h"
#include "tests/fuzzing/input_bytes.h"

namespace {

constexpr int FRAMES_MOST = 6;
constexpr int BINS_MOST = 300;
constexpr int ARRAY_NB = 5;

/** A record and its arrays: all components, red, green, blue, component 0. */
struct Frame {
    Histo_Record record;
    std::array<std::vector<std::uint32_t>, ARRAY_NB> counts;

    void Arrays_Make(int nb_bins, bool color) {
        record.nb_bins = static_cast<std::uint16_t>(nb_bins);
        record.flags = color ? HISTO_COLOR : 0;
        std::uint32_t** const place[] = {&record.counts, &record.counts_red, &record.counts_green, &record.counts_blue,
                                         &record.counts_component0};
        for (int array = 0; array < (color ? ARRAY_NB : 1); ++array) {
            counts[static_cast<std::size_t>(array)].resize(static_cast<std::size_t>(nb_bins));
            *place[array] = counts[static_cast<std::size_t>(array)].data();
        }
    }
};

/** The plain rule, one bin at a time. */
void Add_Plainly(Frame& to, const Frame& frame) {
    for (int bin = 0; bin < frame.record.nb_bins; ++bin) {
        const float at = (static_cast<float>(bin) + 0.5F) * frame.record.bin_width + frame.record.origin;
        const float target = (at - to.record.origin) / to.record.bin_width;
        if (!(target > -1.0F) || target >= static_cast<float>(frame.record.nb_bins) ||
            target >= static_cast<float>(to.record.nb_bins)) {
            continue;
        }
        const auto into = static_cast<std::size_t>(target);
        for (std::size_t array = 0; array < ARRAY_NB; ++array) {
            if (!frame.counts[array].empty() && !to.counts[array].empty()) {
                to.counts[array][into] += frame.counts[array][static_cast<std::size_t>(bin)];
            }
        }
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input_Bytes input(data, size);
    std::array<Frame, FRAMES_MOST> frames;
    const int frame_nb = 1 + input.Below(FRAMES_MOST);
    Histogram_Extent extent;
    bool is_color = false;
    for (int i = 0; i < frame_nb; ++i) {
        Frame& frame = frames[static_cast<std::size_t>(i)];
        const std::uint8_t kind = input.Take<std::uint8_t>();
        frame.Arrays_Make(input.Below(BINS_MOST), (kind & 1) != 0);
        is_color = is_color || (kind & 1) != 0;
        frame.record.origin = (kind & 2) != 0 ? input.Take<float>() : static_cast<float>(input.Take<std::int16_t>());
        frame.record.bin_width = (kind & 4) != 0 ? input.Take<float>() : static_cast<float>(1 + input.Below(8));
        for (auto& array : frame.counts) {
            for (std::uint32_t& count : array) {
                count = input.Take<std::uint16_t>();
            }
        }
        extent.Add(frame.record);
    }
    const Histogram_Grid grid = Histogram_Grid_Choose(extent, static_cast<std::uint16_t>(input.Below(2000)));
    Frame merged;
    Frame plain;
    for (Frame* record : {&merged, &plain}) {
        record->Arrays_Make(grid.nb_bins, is_color);
        record->record.origin = grid.origin;
        record->record.bin_width = grid.bin_width;
    }
    {
        Histogram_Merger merger(merged.record);
        for (int i = 0; i < frame_nb; ++i) {
            merger.Add(frames[static_cast<std::size_t>(i)].record);
            Add_Plainly(plain, frames[static_cast<std::size_t>(i)]);
        }
    }
    Require(merged.counts == plain.counts);
    Require(Histogram_Max_Count(merged.record) == Histogram_Max_Count(plain.record));
    return 0;
}
