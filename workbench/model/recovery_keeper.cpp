#include "workbench/model/recovery_keeper.h"

#include <algorithm>
#include <exception>
#include <numeric>
#include <stdexcept>
#include <system_error>

#include "workbench/model/text_file.h"
#include "workbench/volumes/file_operations.h"

namespace workbench {

Recovery_Keeper::Recovery_Keeper(std::filesystem::path journal, std::string program) : file(std::move(journal)) {
    record.program = std::move(program);
    worker = std::thread([this] { Work(); });
}

Recovery_Keeper::~Recovery_Keeper() {
    {
        const std::lock_guard hold(mutex);
        is_ending = true;
    }
    change.notify_all();
    worker.join();
}

void Recovery_Keeper::Offer(Recovery_Snapshot&& snapshot) {
    {
        const std::lock_guard hold(mutex);
        offered.push_back(std::move(snapshot));
    }
    change.notify_all();
}

void Recovery_Keeper::Retry() {
    {
        const std::lock_guard hold(mutex);
        is_retry = has_failed;
    }
    change.notify_all();
}

bool Recovery_Keeper::Wait() {
    std::unique_lock hold(mutex);
    change.wait(hold, [this] { return offered.empty() && !is_retry && !is_busy; });
    return !has_failed;
}

std::string Recovery_Keeper::Problem_Take() {
    const std::lock_guard hold(mutex);
    return std::exchange(problem, {});
}

bool Recovery_Keeper::Has_Failed() {
    const std::lock_guard hold(mutex);
    return has_failed;
}

bool Recovery_Keeper::Wants_Whole_Take() {
    const std::lock_guard hold(mutex);
    return std::exchange(wants_whole, false);
}

void Recovery_Keeper::Work() {
    std::unique_lock hold(mutex);
    for (;;) {
        change.wait(hold, [this] { return is_ending || is_retry || !offered.empty(); });
        if (offered.empty() && !is_retry) {
            return;
        }
        std::vector<Recovery_Snapshot> taken = std::exchange(offered, {});
        is_retry = false;
        is_busy = true;
        hold.unlock();
        std::string wrong;
        bool is_merged = false;
        try {
            for (Recovery_Snapshot& snapshot : taken) {
                Merge(std::move(snapshot));
            }
            is_merged = true;
            wrong = Write_Out();
        } catch (const std::exception& failure) {
            wrong = std::string("cannot be written: ") + failure.what();
        }
        hold.lock();
        wants_whole = wants_whole || !is_merged;
        if (!wrong.empty() && !has_failed) {
            problem = wrong;
        }
        has_failed = !wrong.empty();
        is_busy = false;
        change.notify_all();
    }
}

void Recovery_Keeper::Merge(Recovery_Snapshot&& snapshot) {
    record.time = snapshot.time;
    record.opened = std::move(snapshot.opened);
    record.volumes.clear();
    std::map<std::uint64_t, Kept_Volume> former = std::exchange(kept, {});
    for (Recovery_Part& part : snapshot.parts) {
        const auto& size = part.facts.grid.size;
        const auto slice_nb = static_cast<std::size_t>(size[2]);
        Kept_Volume& volume = kept[part.serial];
        if (part.is_whole) {
            const std::vector<std::uint8_t> background(static_cast<std::size_t>(size[0]) *
                                                       static_cast<std::size_t>(size[1]));
            volume.tagged_nb.assign(slice_nb, 0);
            volume.slices.assign(slice_nb, Slice_Pack(background));
        } else {
            volume = std::move(former[part.serial]);
            if (volume.slices.size() != slice_nb) {
                throw std::runtime_error("what it builds on is lost");
            }
        }
        for (auto& [slice, shown] : part.slices) {
            const auto at = static_cast<std::size_t>(slice);
            Slices_Turn(std::span(shown), size[0], size[1], part.order);
            volume.slices[at] = Slice_Pack(shown);
            volume.tagged_nb[at] = shown.size() - static_cast<std::size_t>(std::ranges::count(shown, std::uint8_t{0}));
        }
        Recovery_Volume& written = record.volumes.emplace_back(std::move(part.facts));
        written.slices = volume.slices;
        written.tagged_nb = std::accumulate(volume.tagged_nb.begin(), volume.tagged_nb.end(), std::uint64_t{0});
    }
}

std::string Recovery_Keeper::Write_Out() {
    if (record.volumes.empty()) {
        const std::error_code code = volumes::File_Operations_In_Use().remove(file);
        return code ? "cannot be removed: " + code.message() : std::string();
    }
    return Text_File_Write(file, Recovery_Encode(record));
}

}  // namespace workbench
