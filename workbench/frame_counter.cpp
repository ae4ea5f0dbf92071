#include "workbench/frame_counter.h"

#include <exception>
#include <utility>

namespace workbench {

void Frame_Counter::Begin(std::vector<Slices_To_Count>&& wanted) {
    Cancel();
    slices = std::move(wanted);
    is_begun = true;
    try {
        worker = std::thread([this] { Count(); });
    } catch (const std::exception&) {  // no thread, or no room for one
        Count();
    }
}

void Frame_Counter::Count() {
    try {
        Slices_Count(slices, [this](double done) {
            share = done;
            return !is_given_up;
        });
    } catch (const std::exception&) {
        slices.clear();  // a part of the histograms would be a wrong histogram of the whole
    }
    is_done = true;
}

void Frame_Counter::Cancel() {
    is_given_up = true;
    if (worker.joinable()) {
        worker.join();
    }
    slices.clear();
    share = 0.0;
    is_given_up = false;
    is_done = false;
    is_begun = false;
}

std::optional<std::vector<Slices_To_Count>> Frame_Counter::Take() {
    if (!is_begun || !is_done) {
        return std::nullopt;
    }
    if (worker.joinable()) {
        worker.join();
    }
    std::vector<Slices_To_Count> taken = std::move(slices);
    Cancel();
    return taken;
}

}  // namespace workbench
