/** Writes the journal of work that is not saved, on a thread of its own. */
#pragma once

#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <map>
#include <mutex>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "workbench/model/display_order.h"
#include "workbench/model/recovery_record.h"

namespace workbench {

/** What changed on one volume since the last look. */
struct Recovery_Part {
    std::uint64_t serial = 0;  ///< the volume's, see Session::Serial
    Recovery_Volume facts;     ///< without slices and tagged_nb
    Display_Order order;
    bool is_whole = false;  ///< nothing was offered of it before: slices that do not follow are background
    std::vector<std::pair<int, std::vector<std::uint8_t>>> slices;  ///< in the order of display
};
/** All volumes with work that is not saved. */
struct Recovery_Snapshot {
    std::int64_t time = 0;
    std::vector<std::string> opened;
    std::vector<Recovery_Part> parts;  ///< none: there is no such work, and the journal goes
};

class Recovery_Keeper {
  public:
    /** @param journal written in one step each time @param program which version writes it */
    Recovery_Keeper(std::filesystem::path journal, std::string program);
    /** Finishes what was offered; the journal stays. */
    ~Recovery_Keeper();
    Recovery_Keeper(const Recovery_Keeper&) = delete;
    Recovery_Keeper& operator=(const Recovery_Keeper&) = delete;

    /** Takes over what changed; returns at once. Each offer builds on the one before. */
    void Offer(Recovery_Snapshot&& snapshot);
    /** Writes once more what could not be written. */
    void Retry();
    /** Until nothing is left to do. @return whether the journal holds all that was offered */
    bool Wait();
    /** Why the journal could not be written, to follow its name, told once until it could be written again; empty:
     *  nothing new. */
    std::string Problem_Take();
    bool Has_Failed();
    /** What was kept before an offer is lost, for lack of memory: nothing is written until an offer has whole volumes
     *  only. Told once. */
    bool Wants_Whole_Take();

  private:
    void Work();
    void Merge(Recovery_Snapshot&& snapshot);
    /** @return empty, or what is wrong */
    std::string Write_Out();

    std::filesystem::path file;
    struct Kept_Volume {
        std::vector<Packed_Slice> slices;
        std::vector<std::uint64_t> tagged_nb;  // of every slice
    };
    Recovery_Record record;                     // of the worker
    std::map<std::uint64_t, Kept_Volume> kept;  // of the worker, by serial
    std::mutex mutex;
    std::condition_variable change;
    std::vector<Recovery_Snapshot> offered;
    bool is_retry = false;
    bool is_busy = false;
    bool is_ending = false;
    bool has_failed = false;
    bool wants_whole = false;
    std::string problem;
    std::thread worker;  // last: it uses all of the others
};

}  // namespace workbench
