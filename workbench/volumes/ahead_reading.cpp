#include "workbench/volumes/ahead_reading.h"

#include <algorithm>
#include <chrono>
#include <system_error>
#include <utility>

namespace volumes {

Ahead_Reading::Ahead_Reading(std::span<const std::filesystem::path> of_paths, const Load_Limits& load_limits,
                             std::uint64_t whole_most)
    : paths(of_paths.begin(), of_paths.end()), limits(load_limits), whole(whole_most) {
    try {
        {  // some systems take the memory of locks at their first use: here its lack is no more than that of a thread
            std::unique_lock lock(mutex);
            changed.wait_for(lock, std::chrono::seconds(0));
        }
        thread = std::thread([this] { Read(); });
    } catch (const std::system_error&) {
        return;  // Take reads
    }
}

Ahead_Reading::~Ahead_Reading() {
    if (thread.joinable()) {
        {
            const std::lock_guard lock(mutex);
            is_given_up = true;
        }
        thread.join();
    }
}

void Ahead_Reading::Read() {
    folder = Image_Folder_Open(
        paths,
        [this](double done) {
            const std::lock_guard lock(mutex);
            share = done;
            return !is_given_up;
        },
        limits, whole);
    const std::lock_guard lock(mutex);
    is_done = true;
    changed.notify_one();
}

bool Ahead_Reading::Is_Of(std::span<const std::filesystem::path> wanted) const {
    return std::ranges::equal(paths, wanted);
}

Image_Folder Ahead_Reading::Take(const Load_Progress& progress) {
    if (!thread.joinable()) {
        return Image_Folder_Open(paths, progress, limits, whole);
    }
    constexpr std::chrono::milliseconds pause(20);
    std::unique_lock lock(mutex);
    while (!changed.wait_for(lock, pause, [this] { return is_done; })) {
        const double done = share;
        lock.unlock();
        const bool goes_on = !progress || progress(done);
        lock.lock();
        is_given_up = is_given_up || !goes_on;
    }
    lock.unlock();
    thread.join();
    return std::move(folder);
}

}  // namespace volumes
