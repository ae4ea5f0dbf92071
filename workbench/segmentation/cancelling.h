/** How a long operation is given up: from any depth, without a result. Of the operations in this folder only. */
#pragma once

#include <optional>
#include <utility>

#include "workbench/segmentation/label_edit.h"

namespace workbench::segmentation {

/** Thrown where the user gives up; Cancellable catches it. */
struct Edit_Cancelled {};

/** Reports the steps of a part of an operation. */
class Step_Progress {
  public:
    /** @param edit_progress must outlive this; may be empty @param from, to the part's share of the whole, 0 .. 1 */
    explicit Step_Progress(const Edit_Progress& edit_progress, double from = 0.0, double to = 1.0)
        : progress(edit_progress), begin(from), end(to) {}
    /** A smaller part of this part. */
    Step_Progress Part(double from, double to) const {
        return Step_Progress(progress, begin + from * (end - begin), begin + to * (end - begin));
    }
    /** Tells that `done` of `all` steps are done. @throw Edit_Cancelled */
    void Report(std::int64_t done, std::int64_t all) const {
        if (progress && !progress(begin + (end - begin) * static_cast<double>(done) / static_cast<double>(all))) {
            throw Edit_Cancelled();
        }
    }

  private:
    const Edit_Progress& progress;
    double begin;
    double end;
};

/** What `work` returns; nothing when it was given up. */
template <class Work>
auto Cancellable(Work work) -> std::optional<decltype(work())> {
    try {
        return work();
    } catch (const Edit_Cancelled&) {
        return std::nullopt;
    }
}

}  // namespace workbench::segmentation
