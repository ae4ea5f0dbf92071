#include "workbench/volumes/work_share.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <exception>
#include <mutex>
#include <thread>
#include <vector>

namespace volumes {

namespace {

/** What the threads have in common. */
class Shared_Work {
  public:
    Shared_Work(std::size_t piece_nb, const std::function<void(std::size_t)>& piece_work)
        : count(piece_nb), work(piece_work), failed_at(piece_nb) {}

    /** Does one piece. @return false: none is left */
    bool Step() {
        std::size_t piece = 0;
        {
            const std::lock_guard lock(mutex);
            if (is_ended || begun == count) {
                return false;
            }
            piece = begun++;
        }
        std::exception_ptr thrown;
        try {
            work(piece);
        } catch (...) {
            thrown = std::current_exception();
        }
        const std::lock_guard lock(mutex);
        ++done;
        if (thrown != nullptr) {
            is_ended = true;
            if (piece < failed_at) {
                failed_at = piece;
                failure = thrown;
            }
        }
        changed.notify_one();
        return true;
    }
    void End() {
        const std::lock_guard lock(mutex);
        is_ended = true;
    }
    /** Waits for pieces. @return how many are done */
    std::size_t Wait() {
        constexpr std::chrono::milliseconds pause(30);
        std::unique_lock lock(mutex);
        changed.wait_for(lock, pause, [this] { return Is_Over(); });
        return done;
    }
    bool Is_Finished() {
        const std::lock_guard lock(mutex);
        return Is_Over();
    }
    std::size_t Done() {
        const std::lock_guard lock(mutex);
        return done;
    }
    void Throw_On() const {
        if (failure != nullptr) {
            std::rethrow_exception(failure);
        }
    }

  private:
    bool Is_Over() const { return done == begun && (is_ended || begun == count); }

    const std::size_t count;
    const std::function<void(std::size_t)>& work;
    std::mutex mutex;
    std::condition_variable changed;
    std::size_t begun = 0;
    std::size_t done = 0;
    bool is_ended = false;
    std::size_t failed_at;
    std::exception_ptr failure;
};

/** Threads that are waited for, whatever happens. */
class Workers {
  public:
    Workers(Shared_Work& shared_work, std::size_t thread_nb) : shared(shared_work) {
        try {
            threads.reserve(thread_nb);
            while (threads.size() < thread_nb) {
                threads.emplace_back([&shared_work] {
                    while (shared_work.Step()) {
                    }
                });
            }
        } catch (const std::exception&) {  // no thread, or no room for one
            // Those that there are do it all; without any the caller does.
        }
    }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;
    ~Workers() {
        shared.End();
        for (std::thread& one : threads) {
            one.join();
        }
    }
    bool Is_Empty() const { return threads.empty(); }

  private:
    Shared_Work& shared;
    std::vector<std::thread> threads;
};

}  // namespace

std::size_t Work_Thread_Nb(std::size_t most) {
    constexpr std::size_t threads_most = 16;
    const std::size_t processors = std::max<std::size_t>(std::thread::hardware_concurrency(), 1);
    return std::clamp<std::size_t>(std::min(processors, most), 1, threads_most);
}

bool Work_Share(std::size_t count, std::size_t threads, const std::function<void(std::size_t)>& work,
                const std::function<bool(std::size_t)>& on_done) {
    Shared_Work shared(count, work);
    bool is_given_up = false;
    std::size_t told = 0;
    const auto tell = [&] {
        told = shared.Done();
        if (!is_given_up && on_done && !on_done(told)) {
            is_given_up = true;
            shared.End();
        }
    };
    {
        Workers workers(shared, threads > 1 && count > 1 ? std::min(threads, count) : 0);
        while (workers.Is_Empty() && !is_given_up && shared.Step()) {
            tell();
        }
        while (!workers.Is_Empty() && !shared.Is_Finished()) {
            shared.Wait();
            tell();
        }
    }
    if (is_given_up) {
        return false;
    }
    shared.Throw_On();
    if (told < count) {
        tell();
    }
    return !is_given_up;
}

}  // namespace volumes
