#include "workbench/model/change_hub.h"

#include <algorithm>
#include <exception>

namespace workbench {

void Change_Hub::Listen(Stage stage, Listener listener) {
    const auto place = std::ranges::upper_bound(listeners, stage, {}, &std::pair<Stage, Listener>::first);
    listeners.emplace(place, stage, std::move(listener));
}

void Change_Hub::Add(Changes changes, unsigned long long flags) {
    if (changes.Is_Empty() && flags == 0) {
        return;
    }
    const bool is_first = !Is_Pending();
    pending.changes |= changes;
    pending.panel_flags |= flags;
    if (is_first && !is_delivering) {
        wake();
    }
}

void Change_Hub::Then(std::function<void()> action) {
    const bool is_first = !Is_Pending();
    after.push_back(std::move(action));
    if (is_first && !is_delivering) {
        wake();
    }
}

void Change_Hub::Deliver() {
    if (is_delivering) {
        return;
    }
    is_delivering = true;
    std::exception_ptr failure;
    for (int round = 0; round < ROUNDS_MOST && Is_Pending(); ++round) {
        try {
            Round();
        } catch (...) {
            failure = failure ? failure : std::current_exception();
        }
    }
    pending = {};
    after.clear();
    is_delivering = false;
    if (failure) {
        std::rethrow_exception(failure);
    }
}

void Change_Hub::Round() {
    Told_Changes told = std::exchange(pending, {});
    const std::vector<std::function<void()>> then = std::exchange(after, {});
    std::exception_ptr failure;
    const auto run = [&failure](const auto& call) {
        try {
            call();
        } catch (...) {
            failure = failure ? failure : std::current_exception();
        }
    };
    if (!told.changes.Is_Empty() || told.panel_flags != 0) {
        for (const std::pair<Stage, Listener>& entry : listeners) {
            run([&] { entry.second(told); });
        }
    }
    for (const std::function<void()>& action : then) {
        run(action);
    }
    if (failure) {
        std::rethrow_exception(failure);
    }
}

}  // namespace workbench
