/** Counts the histograms of slices on a thread of its own, while everything else goes on. */
#pragma once

#include <atomic>
#include <optional>
#include <thread>
#include <vector>

#include "workbench/slice_frames.h"

namespace workbench {

/** One count at a time. All calls on one thread. The levels of what is counted must stay where they are until the
 * result was taken or Cancel has returned. */
class Frame_Counter {
  public:
    Frame_Counter() = default;
    ~Frame_Counter() { Cancel(); }
    Frame_Counter(const Frame_Counter&) = delete;
    Frame_Counter& operator=(const Frame_Counter&) = delete;

    /** Begins, in place of what is being counted. Where no thread can be had it is done when this returns. */
    void Begin(std::vector<Slices_To_Count>&& wanted);
    /** Gives up and drops what there is; when it returns nothing reads the levels any more. */
    void Cancel();
    /** Something was begun and not taken yet. */
    bool Is_Busy() const { return is_begun; }
    /** How much of it is counted, 0 .. 1. */
    double Share() const { return share; }
    /** The result, once. @return nothing: not yet; no volumes: there was not enough memory */
    std::optional<std::vector<Slices_To_Count>> Take();

  private:
    void Count();

    std::vector<Slices_To_Count> slices;  // the worker's as long as it is there
    std::atomic<double> share = 0.0;
    std::atomic<bool> is_given_up = false;
    std::atomic<bool> is_done = false;
    bool is_begun = false;
    std::thread worker;
};

}  // namespace workbench
