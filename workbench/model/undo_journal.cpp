#include "workbench/model/undo_journal.h"

#include <algorithm>
#include <cstdlib>
#include <new>
#include <string>

#define ZLIB_CONST
#include <zlib.h>

namespace workbench {

namespace {

constexpr std::size_t PLAIN_MOST = 4096;  // bytes of runs that are not worth compressing
constexpr int FAST = 1;                   // zlib's level

void Number_Put(std::vector<std::uint8_t>& bytes, std::uint32_t number) {
    for (; number >= 0x80; number >>= 7U) {
        bytes.push_back(static_cast<std::uint8_t>(number | 0x80U));
    }
    bytes.push_back(static_cast<std::uint8_t>(number));
}

std::uint32_t Number_Take(std::span<const std::uint8_t>& bytes) {
    std::uint32_t number = 0;
    for (unsigned int shift = 0; !bytes.empty() && shift < 32; shift += 7) {
        const std::uint8_t byte = bytes.front();
        bytes = bytes.subspan(1);
        number |= static_cast<std::uint32_t>(byte & 0x7FU) << shift;
        if (byte < 0x80) {
            break;
        }
    }
    return number;
}

std::vector<std::uint8_t> Compressed(const std::vector<std::uint8_t>& plain) {
    uLongf size = ::compressBound(static_cast<uLong>(plain.size()));
    std::vector<std::uint8_t> bytes(size);
    if (::compress2(bytes.data(), &size, plain.data(), static_cast<uLong>(plain.size()), FAST) != Z_OK) {
        return {};
    }
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

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

Slice_Change::Slice_Change(int of_slice, std::span<const Voxel_Run> runs) : slice(of_slice), run_nb(runs.size()) {
    std::uint32_t end = 0;
    for (const Voxel_Run& run : runs) {
        Number_Put(packed, run.offset - end);
        Number_Put(packed, run.length);
        packed.push_back(run.before);
        packed.push_back(run.after);
        end = run.offset + run.length;
    }
    if (packed.size() > PLAIN_MOST) {
        std::vector<std::uint8_t> smaller = Compressed(packed);
        if (!smaller.empty() && smaller.size() < packed.size()) {
            plain_size = packed.size();
            packed = std::move(smaller);
        }
    }
    packed.shrink_to_fit();
}

std::vector<Voxel_Run> Slice_Change::Runs() const {
    std::vector<std::uint8_t> plain;
    std::span<const std::uint8_t> bytes = packed;
    if (plain_size != 0) {
        plain.resize(plain_size);
        auto size = static_cast<uLongf>(plain_size);
        if (::uncompress(plain.data(), &size, packed.data(), static_cast<uLong>(packed.size())) != Z_OK) {
            throw std::bad_alloc();  // nothing else can go wrong with bytes of our own
        }
        bytes = plain;
    }
    std::vector<Voxel_Run> runs;
    runs.reserve(run_nb);
    std::uint32_t end = 0;
    while (bytes.size() > 3) {
        Voxel_Run run;
        run.offset = end + Number_Take(bytes);
        run.length = Number_Take(bytes);
        if (bytes.size() < 2) {
            break;
        }
        run.before = bytes[0];
        run.after = bytes[1];
        bytes = bytes.subspan(2);
        end = run.offset + run.length;
        runs.push_back(run);
    }
    return runs;
}

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

std::optional<Slice_Change> Slice_Difference(int slice, std::span<const std::uint8_t> before,
                                             std::span<const std::uint8_t> after) {
    std::vector<Voxel_Run> runs;
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
        runs.push_back({static_cast<std::uint32_t>(at), static_cast<std::uint32_t>(end - at), before[at], after[at]});
        at = end;
    }
    if (runs.empty()) {
        return std::nullopt;
    }
    return Slice_Change(slice, runs);
}

void Slice_Change_Apply(const Slice_Change& change, bool redo, std::span<std::uint8_t> pixels) {
    for (const Voxel_Run& run : change.Runs()) {
        if (std::size_t{run.offset} + run.length <= pixels.size()) {
            std::ranges::fill(pixels.subspan(run.offset, run.length), redo ? run.after : run.before);
        }
    }
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
