/** Finds out what work is not saved, and takes up what was found of a program that has died. */
#pragma once

#include <cstddef>
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
/** How soon to look again when one look did not suffice. */
inline constexpr int RECOVERY_AGAIN_MS = 50;
/** Bytes of TAGs that one look copies, so that it takes a few milliseconds at most; then it copies whole slices still.
 */
inline constexpr std::size_t RECOVERY_COPY_MOST = std::size_t{6} << 20U;

/** Looks at the open volumes now and then, on the window's thread: copies slices that have changed, and no more. When
 *  there are many of them, several looks share the work; together they give one state, that of the last of them. */
class Recovery_Recorder {
  public:
    /** @param describe names, colours and thresholds of a volume as they are now; the places of markers are put in here
     *  @param opened paths that the volumes came from, UTF-8
     *  @return what is new since the last look that gave something; no value: nothing, or not all of it yet */
    std::optional<Recovery_Snapshot> Look(const Open_Volumes& volumes, const Session& current_session,
                                          const std::function<Label_Description(int volume)>& describe,
                                          const std::vector<std::string>& opened);
    /** The last look did not copy all that is new: look again soon. */
    bool Is_Unfinished() const { return is_unfinished; }
    /** The next look gives everything that is not saved. */
    void Forget() { seen.clear(); }

  private:
    struct Slice_Copy {
        std::uint64_t change_nb = 0;
        std::vector<std::uint8_t> tags;
    };
    /** Copies what is new of a volume. @param room bytes that still may be copied @return false: they did not suffice
     */
    bool Copy(const Session& session, std::size_t& room);

    std::map<std::uint64_t, std::uint64_t> seen;                // changes of every volume that is not saved, by serial
    std::map<std::uint64_t, std::map<int, Slice_Copy>> copies;  // by serial and slice, of an unfinished look
    bool is_unfinished = false;
};

/** The open volume that a piece of work belongs to; -1: none. */
int Recovery_Volume_Find(const Open_Volumes& volumes, const Session& current_session, const Recovery_Volume& wanted);

/** UTF-8 of a path; empty when it cannot be expressed. */
std::string Path_To_Utf8(const std::filesystem::path& path);

}  // namespace workbench
