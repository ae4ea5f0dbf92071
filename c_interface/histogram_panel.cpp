// What a histogram panel knows: counts, peaks, bands, its file.
#include <cmath>
#include <cstddef>
#include <vector>

#include "c_interface/code_page_text.h"
#include "c_interface/panel.h"
#include "histogram/histo_peaks.h"
#include "histogram/tool_histo.h"

using namespace c_interface;

static_assert(KIT_PEAK_GAUSSIAN == PEAK_GAUSS && KIT_PEAK_SEGMENT == PEAK_SEGMENT &&
              KIT_DOUBT_HEIGHT == HISTO_DOUBT_HEIGHT && KIT_DOUBT_WIDTH == HISTO_DOUBT_WIDTH &&
              KIT_DOUBT_CENTRE == HISTO_DOUBT_CENTRE);

namespace {

constexpr std::uint32_t SEGMENTS_MOST = 255;
constexpr std::uint32_t TAG_MOST = 65535;

Tool_Histo& Histogram_Of_Handle(kit_handle handle) {
    Tool_Histo* const histogram = Panel_Of_Handle(handle).Work().Histogram();
    Require(histogram != nullptr, KIT_ERROR_KIND, "the panel is no histogram");
    return *histogram;
}

Tool_Histo& Counted_Histogram(kit_handle panel) {
    Tool_Histo& histogram = Histogram_Of_Handle(panel);
    Require(histogram.data != nullptr && histogram.data->Has_Counts(), KIT_ERROR_STATE,
            "the histogram has no counts: no slice of the shown volume is selected");
    return histogram;
}

kit_peak Peak_Of(const Histo_Peak_Info& info) {
    kit_peak peak = {};
    peak.kind = info.kind;
    peak.doubt = info.doubt;
    peak.has_errors = info.has_errors;
    peak.first = info.first;
    peak.last = info.last;
    peak.centre = info.centre;
    peak.height = info.height;
    peak.full_width = info.full_width;
    peak.area_pixels = info.area_pixels;
    peak.area_levels = info.area_levels;
    peak.centre_error = info.centre_error;
    peak.height_error = info.height_error;
    peak.full_width_error = info.full_width_error;
    return peak;
}

void Peaks_Out(const std::vector<Histo_Peak_Info>& found, kit_peak* peaks) {
    const std::uint32_t step = Struct_Of(peaks).size;
    auto* at = reinterpret_cast<unsigned char*>(peaks);
    for (const Histo_Peak_Info& info : found) {
        std::memcpy(at, &step, sizeof step);  // the caller sets that of the first one only
        Struct_Fill(reinterpret_cast<kit_peak*>(at), Peak_Of(info));
        at += step;
    }
}

}  // namespace

extern "C" {

kit_status kit_histogram_read(kit_handle panel, kit_histogram* histogram, uint32_t* counts, uint32_t room,
                              uint32_t* needed) {
    return Call("kit_histogram_read", panel, [&] {
        const Histo_Record& record = *Counted_Histogram(panel).data->record;
        if (histogram != nullptr) {
            Struct_Fill(histogram, {0, record.nb_bins, record.origin, record.bin_width, record.max_count, 0});
        }
        if (histogram == nullptr || counts != nullptr || room != 0 || needed != nullptr) {
            Array_Out<std::uint32_t>({record.counts, record.nb_bins}, counts, room, needed);
        }
    });
}

kit_status kit_histogram_fit(kit_handle panel, uint32_t method, uint32_t most) {
    return Call("kit_histogram_fit", panel, [&] {
        Tool_Histo& histogram = Counted_Histogram(panel);
        int result = 0;
        switch (method) {
            case KIT_FIT_GAUSSIAN:
                result = Histo_Fit_Repeatable(histogram);
                break;
            case KIT_FIT_GAUSSIAN_NEXT:
                result = histogram.Fit_Gaussian();
                break;
            case KIT_FIT_SEGMENTS:
                Require(most >= 1 && most <= SEGMENTS_MOST, KIT_ERROR_ARGUMENT, "most is not from 1 to 255");
                result = histogram.Fit_Derivative(static_cast<unsigned char>(most));
                break;
            default:
                throw Failure{KIT_ERROR_ARGUMENT, "no such method"};
        }
        Require(result != 0, KIT_ERROR_STATE, "another analysis runs");
        Session::The().Announce(UPDATE_HISTO_PAINT);
    });
}

kit_status kit_histogram_peaks(kit_handle panel, kit_peak* peaks, uint32_t room, uint32_t* needed) {
    return Call("kit_histogram_peaks", panel, [&] {
        const Tool_Histo& histogram = Histogram_Of_Handle(panel);
        const int nb = Histo_Peaks(histogram, nullptr, 0);
        if (needed != nullptr) {
            *needed = static_cast<std::uint32_t>(nb);
        }
        if (peaks == nullptr) {
            Require(room == 0 && needed != nullptr, KIT_ERROR_ARGUMENT, "there is no place to write to");
            return;
        }
        Require(room >= static_cast<std::uint32_t>(nb), KIT_ERROR_ROOM, "too little room");
        if (nb > 0) {
            std::vector<Histo_Peak_Info> found(static_cast<std::size_t>(nb));
            Histo_Peaks(histogram, found.data(), nb);
            Peaks_Out(found, peaks);
        }
    });
}

kit_status kit_histogram_export(kit_handle panel, const char* path) {
    return Call("kit_histogram_export", panel, [&] {
        Tool_Histo& histogram = Counted_Histogram(panel);
        const std::string file = Page_Text(path);
        Require(!file.empty(), KIT_ERROR_ARGUMENT, "the path is empty");
        Require(histogram.Write(file.c_str()) != 0, KIT_ERROR_SYSTEM, "the file could not be written");
    });
}

kit_status kit_histogram_ranges(kit_handle panel, const kit_range* ranges, uint32_t count) {
    return Call("kit_histogram_ranges", panel, [&] {
        Tool_Histo& histogram = Histogram_Of_Handle(panel);
        Require(count <= HISTO_RANGE_MAX, KIT_ERROR_ARGUMENT, "count is beyond 32");
        std::vector<kit_range> checked;
        if (count > 0) {
            const std::uint32_t step = Struct_Of(ranges).size;
            const auto* at = reinterpret_cast<const unsigned char*>(ranges);
            for (std::uint32_t index = 0; index < count; ++index, at += step) {
                const kit_range range = Struct_Of(reinterpret_cast<const kit_range*>(at));
                Require(range.size == step, KIT_ERROR_SIZE, "the structs have different sizes");
                Require(range.tag <= TAG_MOST, KIT_ERROR_ARGUMENT, "a tag is beyond 65535");
                Require(std::isfinite(range.lowest) && std::isfinite(range.highest), KIT_ERROR_ARGUMENT,
                        "a grey level is no number");
                checked.push_back(range);
            }
        }
        for (std::size_t index = 0; index < checked.size(); ++index) {
            histogram.range_tag[index] = static_cast<std::uint16_t>(checked[index].tag);
            histogram.range_min[index] = checked[index].lowest;
            histogram.range_max[index] = checked[index].highest;
        }
        histogram.range_nb = static_cast<std::uint16_t>(count);
        Session::The().Announce(UPDATE_HISTO_PAINT);
    });
}

}  // extern "C"
