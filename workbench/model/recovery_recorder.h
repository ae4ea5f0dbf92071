/** Finds out what work is not saved, and takes up what was found of a program that has died. */
#pragma once

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "workbench/model/open_volumes.h"
#include "workbench/model/recovery_keeper.h"

namespace workbench {

/** How often to look, and the longest that a change may stay outside the journal. */
inline constexpr int RECOVERY_LOOK_MS = 5000;
inline constexpr int RECOVERY_LOSS_MOST_MS = 30000;

/** Looks at the open volumes now and then, on the window's thread: copies slices that have changed, and no more. */
class Recovery_Recorder {
  public:
    /** @param describe names, colours and thresholds as they are now; the places of markers are put in here
     *  @param opened paths that the volumes came from, UTF-8
     *  @return what is new since the last look; no value: nothing */
    std::optional<Recovery_Snapshot> Look(const Open_Volumes& volumes, const Session& in_hand,
                                          const std::function<Label_Description()>& describe,
                                          const std::vector<std::string>& opened);

  private:
    std::map<std::uint64_t, std::uint64_t> seen;  // changes of every volume that is not saved, by serial
};

/** The open volume that a piece of work belongs to; -1: none. */
int Recovery_Volume_Find(const Open_Volumes& volumes, const Session& in_hand, const Recovery_Volume& wanted);

/** UTF-8 of a path; empty when it cannot be expressed. */
std::string Path_To_Utf8(const std::filesystem::path& path);

}  // namespace workbench
