#include "workbench/model/undo_journal.h"

#include <cstdlib>
#include <string>

namespace workbench {

namespace {

/** ", slice 5", ", slices 3 to 12"; empty for what lies in no slice. */
std::string Slices_Text(const Undo_Change& change) {
    const auto* voxels = std::get_if<Voxel_Change>(&change);
    if (voxels == nullptr || voxels->slices.empty()) {
        return {};
    }
    const int first = voxels->slices.front().slice;
    const int last = voxels->slices.back().slice;
    return first == last ? ", slice " + std::to_string(first + 1)
                         : ", slices " + std::to_string(first + 1) + " to " + std::to_string(last + 1);
}

}  // namespace

std::size_t Undo_Step::Bytes() const {
    std::size_t sum = sizeof *this + title.size();
    if (const auto* voxels = std::get_if<Voxel_Change>(&change)) {
        sum += voxels->slices.capacity() * sizeof(Slice_Change);
        for (const Slice_Change& slice : voxels->slices) {
            sum += slice.Bytes();
        }
    } else if (const auto* text = std::get_if<Text_Change>(&change)) {
        sum += text->before.value_or("").size() + text->after.value_or("").size();
    } else if (const auto* thresholds = std::get_if<Threshold_Change>(&change)) {
        sum += thresholds->entries.size() * sizeof(Threshold_Change::Entry);
    } else if (const auto* colors = std::get_if<Color_Change>(&change)) {
        sum += colors->entries.size() * sizeof(Color_Change::Entry);
    }
    return sum;
}

int Slice_Nearest(const Voxel_Change& change, int slice) {
    int nearest = change.slices.empty() ? slice : change.slices.front().slice;
    for (const Slice_Change& one : change.slices) {
        if (std::abs(one.slice - slice) < std::abs(nearest - slice)) {
            nearest = one.slice;
        }
    }
    return nearest;
}

void Undo_Journal::Push(Undo_Step step) {
    while (steps.size() > done) {
        bytes -= steps.back().Bytes();
        steps.pop_back();
        ids.pop_back();
    }
    const std::size_t step_bytes = step.Bytes();
    ids.push_back(last_id + 1);
    try {
        steps.push_back(std::move(step));
    } catch (...) {
        ids.pop_back();
        throw;
    }
    ++last_id;
    bytes += step_bytes;
    ++done;
    while (steps.size() > JOURNAL_STEPS_MAX || (steps.size() > 1 && bytes > JOURNAL_BYTES)) {
        Drop_Oldest();
    }
}

void Undo_Journal::Drop_Oldest() {
    bytes -= steps.front().Bytes();
    oldest = ids.front();
    steps.pop_front();
    ids.pop_front();
    --done;
    ++forgotten;
}

std::vector<std::string> Undo_Journal::List() const {
    std::vector<std::string> lines = {forgotten == 0   ? "Start"
                                      : forgotten == 1 ? "The step before this was forgotten for want of room"
                                                       : std::to_string(forgotten) +
                                                             " steps before this were forgotten for want of room"};
    if (saved == oldest) {
        lines.front() += " (saved)";
    }
    for (std::size_t at = 0; at < steps.size(); ++at) {
        lines.push_back(std::to_string(forgotten + at + 1) + "  " + steps[at].title + Slices_Text(steps[at].change) +
                        (ids[at] == saved ? " (saved)" : "") + (at >= done ? " (undone)" : ""));
    }
    return lines;
}

const Undo_Step* Undo_Journal::Undo() {
    return done == 0 ? nullptr : &steps[--done];
}

const Undo_Step* Undo_Journal::Redo() {
    return done == steps.size() ? nullptr : &steps[done++];
}

void Undo_Journal::Clear() {
    steps.clear();
    ids.clear();
    done = 0;
    bytes = 0;
    forgotten = 0;
    oldest = ++last_id;
    saved = oldest;
}

}  // namespace workbench
