// Export of histogram, TAG membership and peaks as a text file of separated columns for spreadsheets.
#include <cerrno>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <cwchar>
#include <limits>
#include <memory>

#include "histogram/histo_peak.h"
#include "histogram/plot_scale.h"
#include "histogram/tool_histo.h"
#include "histogram/tool_histo_messages.h"
#include "host/kit_common.h"
#include "host/kit_dataset.h"
#include "panels/protocol/host_variables.h"

namespace {

constexpr const char* ITERATOR_NAME = "Tool_Histo::Write";

// Lines under which failures are reported; hosts match them, so they stay as they are.
constexpr int LINE_OPEN = 657;
constexpr int LINE_FRAME_LIST = 688;

struct File_Closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using File = std::unique_ptr<std::FILE, File_Closer>;

struct Heap_Freer {
    void operator()(Quorel_2D** list) const { std::free(list); }
};

/** Says why a file cannot be used: the warning, the path and the system's own text. */
void Report_File(const char* warning, const char* path, int error) {
    wchar_t reason[256] = {};
    Char_2_Wchar(std::strerror(error), reason, 256);
    Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x05WARNING:\x02 %s", warning);
    Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x09\x01%s", path);
    Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x09 %ls", reason);
}

struct Frame_Counts {
    int selected = 0;
    std::uint16_t total = 0;
};

/** Counts the frames of a window. @return false when the list of selected frames cannot grow (reported) */
bool Frames_Count(Quorel_Window* window, Frame_Counts& counts) {
    if (const unsigned short handle = Iterator_Init(ITERATOR_NAME, nullptr); handle != 0) {
        while (Iterator_Class_2D(handle, CLASS_MASK_2D, window, 0) != nullptr) {
            ++counts.total;
        }
        Iterator_End(handle);
    }
    const unsigned short handle = Iterator_Init(ITERATOR_NAME, nullptr);
    if (handle == 0) {
        return true;
    }
    // The selected frames are gathered and then only counted; the list is kept because hosts see its failure.
    std::unique_ptr<Quorel_2D*, Heap_Freer> frame_pt;
    bool done = true;
    while (Quorel_2D* frame = Iterator_Class_2D(handle, CLASS_MASK_2D, window, 1)) {
        const int nb = counts.selected + 1;
        auto** grown =
            static_cast<Quorel_2D**>(std::realloc(frame_pt.get(), static_cast<std::size_t>(nb) * sizeof(Quorel_2D*)));
        if (grown == nullptr) {
            Error_Fct(hwnd, MESSAGE_MEMORY, HISTO_MESSAGE_REALLOC, LINE_FRAME_LIST, TOOL_HISTO_SOURCE, "frame_pt", nb,
                      static_cast<int>(sizeof(Quorel_2D*)));
            done = false;
            break;
        }
        static_cast<void>(frame_pt.release());
        frame_pt.reset(grown);
        grown[counts.selected] = frame;
        counts.selected = nb;
    }
    Iterator_End(handle);
    return done;
}

/** TAG columns of the file. TAG 0 is the background and has none. */
struct Tag_Columns {
    int nb = 0;  // TAGs, the background counted
    char* const* label = nullptr;
    const float* min = nullptr;
    const float* max = nullptr;
    const char* filler = "0";

    void Look_Up() {
        nb = Host_Count("$TAG_NB");
        label = static_cast<char* const*>(Fct_Variable_Value("$TAG_LABEL", nullptr, nullptr, nullptr));
        static Cached_Variable<float*> minima("$TAG_THRESHOLD_MIN");
        static Cached_Variable<float*> maxima("$TAG_THRESHOLD_MAX");
        static Cached_Variable<char*> filler_text("$REGIONAL_FILLER");
        min = minima.Value_Or(nullptr);
        max = maxima.Value_Or(nullptr);
        const char* text = filler_text.Value_Or(nullptr);
        filler = text != nullptr ? text : "0";
    }

    bool Claims(int tag, float centre) const {
        const float low = min != nullptr ? min[tag] : TAG_THRESHOLD_MIN_UNSET;
        const float high = max != nullptr ? max[tag] : TAG_THRESHOLD_MAX_UNSET;
        const bool is_set = low != TAG_THRESHOLD_MIN_UNSET || high != TAG_THRESHOLD_MAX_UNSET;
        return is_set && low <= centre && centre <= high;
    }
};

void Write_Heading(std::FILE* file, char separator, const Frame_Counts& frames) {
    std::fprintf(file, "sep=%c\n", separator);
    std::fprintf(file, "=========== Histogram information ");
    // The total is compared and shown as a signed 16-bit number.
    const auto total = static_cast<std::int16_t>(frames.total);
    if (frames.selected != total) {
        std::fprintf(file, "(%d frames out of %d)", frames.selected, total);
    } else {
        std::fprintf(file, "(%d frames)", frames.selected);
    }
    std::fprintf(file, " =========\n\n");
}

void Write_Column_Names(std::FILE* file, char separator, bool filtered, const Tag_Columns& tags) {
    // "pixels" is in small letters here and in capitals on the plots; spreadsheets of users rely on it.
    std::fprintf(file, "GLI Value%cNb of pixels", separator);
    if (filtered) {
        std::fprintf(file, "%cFiltered", separator);
    }
    for (int tag = 1; tag < tags.nb; ++tag) {
        if (tags.label != nullptr && tags.label[tag] != nullptr) {
            std::fprintf(file, "%c%s", separator, tags.label[tag]);
        } else {
            std::fprintf(file, "%cTAG %3d", separator, tag);
        }
    }
    std::fputc('\n', file);
}

/** Truncated toward zero, and brought into the range of an int; 0 for what is no number. */
int Truncated(float level) {
    constexpr auto end = -static_cast<float>(std::numeric_limits<int>::min());  // 2^31, the first that is too large
    if (std::isnan(level)) {
        return 0;
    }
    if (level >= end) {
        return std::numeric_limits<int>::max();
    }
    return level < -end ? std::numeric_limits<int>::min() : static_cast<int>(level);
}

void Write_Bins(std::FILE* file, char separator, const Histo_Data& data, const Tag_Columns& tags) {
    const Histo_Record& record = *data.record;
    const Plot_Scale levels({}, {record.nb_bins, record.origin, record.bin_width}, 0.0F);
    for (int bin = 0; bin < record.nb_bins; ++bin) {
        const float centre = levels.Bin_To_Level(bin);
        std::fprintf(file, "%d%c%d", Truncated(centre), separator, static_cast<int>(record.counts[bin]));
        if (data.filtered != nullptr) {
            // The curve belongs to the last analysis and may be shorter than a newer record.
            std::fprintf(file, "%c%f", separator, bin < data.curve_nb ? data.filtered[bin] : 0.0);
        }
        for (int tag = 1; tag < tags.nb; ++tag) {
            std::fputc(separator, file);
            std::fputs(tags.Claims(tag, centre) ? "1" : tags.filler, file);
        }
        std::fputc('\n', file);
    }
    std::fputc('\n', file);
}

void Write_Peaks(std::FILE* file, char separator, const Histo_Data& data) {
    const Histo_Record& record = *data.record;
    std::fprintf(file, "\n\nWe found %d Gausian peaks \n", data.peak_nb);
    for (const char* name : {"Peak Number", "Peak Center", "Peak Height", "Peak Width"}) {
        std::fprintf(file, "%s%c", name, separator);
    }
    std::fputc('\n', file);
    int number = 1;
    for (const Histo_Peak* peak = data.peak_first; peak != nullptr; peak = peak->next, ++number) {
        // No half-bin shift and a width in bins, unlike the bin lines: readers of these files expect it. All three pass
        // through single precision.
        const double level =
            (*peak->param)[PEAK_CENTRE] * static_cast<double>(record.bin_width) + static_cast<double>(record.origin);
        const auto centre = static_cast<float>(level);
        const auto height = static_cast<float>((*peak->param)[PEAK_AMPLITUDE]);
        const auto half_width = static_cast<float>((*peak->param)[PEAK_WIDTH]);
        std::fprintf(file, "%d%c%.2f%c%.2f%c%.2f\n", number, separator, static_cast<double>(centre), separator,
                     static_cast<double>(height), separator, static_cast<double>(half_width));
    }
    std::fputc('\n', file);
}

}  // namespace

int Tool_Histo::Write(const char* path) {
    const auto code =
        reinterpret_cast<std::uintptr_t>(Fct_Variable_Value("$REGIONAL_SEPARATOR", nullptr, nullptr, nullptr)) & 0xFF;
    const char separator = code == 0 ? '\t' : static_cast<char>(code);
    // What is told may let the host destroy the panel.
    const std::shared_ptr<Histo_Data> written_data = data;
    if (written_data == nullptr || !written_data->Has_Counts()) {
        Error_Fct(hwnd, MESSAGE_WARNING, "\xF1\x05WARNING:\x02 No histogram to export!");
        return 0;
    }
    File file(path != nullptr ? std::fopen(path, "w") : nullptr);
    if (file == nullptr) {
        const int error = path != nullptr ? errno : EINVAL;
        Error_Fct(hwnd, 11, "file:%s line:%d", TOOL_HISTO_SOURCE, LINE_OPEN);
        Report_File("Unable to open the file", path != nullptr ? path : "", error);
        return 0;
    }
    auto* current_window = static_cast<Quorel_Window*>(Fct_Variable_Value("$WINDOW_CUR", nullptr, nullptr, nullptr));
    Frame_Counts frames;
    if (current_window == nullptr || !Frames_Count(current_window, frames)) {
        return 0;  // the file stays, empty
    }
    Tag_Columns tags;
    tags.Look_Up();
    Write_Heading(file.get(), separator, frames);
    Write_Column_Names(file.get(), separator, written_data->filtered != nullptr, tags);
    Write_Bins(file.get(), separator, *written_data, tags);
    if (written_data->peak_nb != 0) {
        Write_Peaks(file.get(), separator, *written_data);
    }
    // A full disk shows when the last buffer is written, at the latest when the file is closed.
    bool written = std::fflush(file.get()) == 0 && std::ferror(file.get()) == 0;
    int error = errno;
    if (std::fclose(file.release()) != 0 && written) {
        written = false;
        error = errno;
    }
    if (!written) {
        Report_File("Unable to write the file", path, error);
        return 0;
    }
    return 1;
}
