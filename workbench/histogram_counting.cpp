#include "workbench/histogram_counting.h"

#include <new>
#include <optional>
#include <utility>
#include <vector>

namespace workbench {

namespace {

constexpr int LOOK_EVERY = 30;  // ms
constexpr const char* NO_MEMORY = "There is not enough memory for the histograms of these images.";

std::string Progress_Text(const std::string& text, double share) {
    return text + "   counting the histogram: " + std::to_string(static_cast<int>(share * 100.0)) + " %";
}

}  // namespace

void Histogram_Counting::Begin(const std::string& text) {
    opened_text = text;
    said = Progress_Text(text, 0.0);
    of.progress(said);
    try {
        counter.Begin(of.objects.Counting_Begin(of.work.volumes, of.work.session));
    } catch (const std::bad_alloc&) {
        return Fail();
    }
    of.look_after(LOOK_EVERY);
}

void Histogram_Counting::Cancel() {
    of.look_after(0);
    counter.Cancel();
}

void Histogram_Counting::Fail() {
    of.objects.Counts_Fail();
    of.work.hub.Note(Change::Counted);
    of.dialogs.Warn(NO_MEMORY);
    if (Is_Line_Own()) {
        of.dialogs.Tell(opened_text);
    }
}

void Histogram_Counting::Look() {
    std::optional<std::vector<Slices_To_Count>> counted = counter.Take();
    if (!counted && counter.Is_Busy()) {
        if (Is_Line_Own()) {
            said = Progress_Text(opened_text, counter.Share());
            of.progress(said);
        }
        return;
    }
    of.look_after(0);
    if (!counted) {
        return;
    }
    if (counted->empty()) {
        return Fail();
    }
    of.objects.Counts_Take(std::move(*counted));
    of.report.Time("counted");
    of.work.hub.Note(Change::Counted);
    of.work.hub.Then([this] {
        of.scale_suggest();
        if (Is_Line_Own()) {
            of.dialogs.Tell(opened_text + "   " + of.numbers());
        }
    });
}

}  // namespace workbench
