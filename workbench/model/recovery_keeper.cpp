#include "workbench/model/recovery_keeper.h"

#include <algorithm>
#include <exception>
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
        try {
            for (Recovery_Snapshot& snapshot : taken) {
                Merge(std::move(snapshot));
            }
            wrong = Write_Out();
        } catch (const std::exception& failure) {
            wrong = std::string("cannot be written: ") + failure.what();
        }
        hold.lock();
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
    std::map<std::uint64_t, std::vector<Packed_Slice>> former = std::exchange(kept, {});
    std::vector<std::uint8_t> tags;
    for (Recovery_Part& part : snapshot.parts) {
        const auto& size = part.facts.grid.size;
        std::vector<Packed_Slice>& slices = kept[part.serial];
        if (!part.is_whole) {
            slices = std::move(former[part.serial]);
        }
        slices.resize(static_cast<std::size_t>(size[2]));
        for (auto& [slice, shown] : part.slices) {
            Slices_Turn(std::span(shown), size[0], size[1], part.order);
            slices[static_cast<std::size_t>(slice)] = Slice_Pack(shown);
        }
        record.volumes.push_back(std::move(part.facts));
        record.volumes.back().slices = slices;
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
