#include "workbench/model/undo_journal.h"

#include <algorithm>

std::size_t Undo_Step::Bytes() const {
    std::size_t sum = sizeof *this + title.size();
    if (const auto* slice = std::get_if<Slice_Change>(&change)) {
        sum += slice->runs.size() * sizeof(Voxel_Run);
    } else if (const auto* text = std::get_if<Text_Change>(&change)) {
        sum += text->before.value_or("").size() + text->after.value_or("").size();
    } else if (const auto* thresholds = std::get_if<Threshold_Change>(&change)) {
        sum += thresholds->entries.size() * sizeof(Threshold_Change::Entry);
    } else if (const auto* colors = std::get_if<Color_Change>(&change)) {
        sum += colors->entries.size() * sizeof(Color_Change::Entry);
    }
    return sum;
}

std::optional<Slice_Change> Slice_Difference(int slice, std::span<const std::uint8_t> before,
                                             std::span<const std::uint8_t> after) {
    Slice_Change change;
    change.slice = slice;
    const std::size_t size = std::min(before.size(), after.size());
    std::size_t at = 0;
    while (at < size) {
        if (before[at] == after[at]) {
            ++at;
            continue;
        }
        std::size_t end = at + 1;
        while (end < size && before[end] == before[at] && after[end] == after[at]) {
            ++end;
        }
        change.runs.push_back(
            {static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(end - at), before[at], after[at]});
        at = end;
    }
    if (change.runs.empty()) {
        return std::nullopt;
    }
    change.runs.shrink_to_fit();
    return change;
}

void Slice_Change_Apply(const Slice_Change& change, bool redo, std::span<std::uint8_t> pixels) {
    for (const Voxel_Run& run : change.runs) {
        if (std::size_t{run.offset} + run.length <= pixels.size()) {
            std::ranges::fill(pixels.subspan(run.offset, run.length), redo ? run.after : run.before);
        }
    }
}

void Undo_Journal::Push(Undo_Step step) {
    while (steps.size() > done) {
        bytes -= steps.back().Bytes();
        steps.pop_back();
        ids.pop_back();
    }
    bytes += step.Bytes();
    steps.push_back(std::move(step));
    ids.push_back(++last_id);
    ++done;
    while (steps.size() > JOURNAL_STEPS_MAX || (steps.size() > JOURNAL_STEPS_KEPT && bytes > JOURNAL_BYTES)) {
        Drop_Oldest();
    }
}

void Undo_Journal::Drop_Oldest() {
    bytes -= steps.front().Bytes();
    oldest = ids.front();
    steps.pop_front();
    ids.pop_front();
    --done;
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
    oldest = ++last_id;
    saved = oldest;
}
