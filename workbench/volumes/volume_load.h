/** What every reader of images takes and gives. */
#pragma once

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "workbench/volumes/level_tally.h"
#include "workbench/volumes/memory_share.h"
#include "workbench/volumes/volume.h"

namespace volumes {

/** Called now and then with the fraction done, 0 .. 1, never falling. @return false to give up */
using Load_Progress = std::function<bool(double)>;

/** What a file may ask for. */
struct Load_Limits {
    /** Most bytes of the decoded voxels, of the levels made of them, and of anything else in the file, each for
     *  itself. A level takes 2 bytes where all that the file may hold fit, else 4. */
    std::uint64_t decoded_bytes = std::uint64_t{2} << 30U;
    /** What the levels take while the file is read comes from here, too, and goes back at the end; null: of no share.
     *  Not owned. */
    Memory_Share* share = nullptr;
};

/** For files that belong to an open image: what was saved of it can be read again, however large it is. The usual
 *  limit, or eight bytes for each of its voxels if these are more. */
inline Load_Limits Limits_Beside(const Volume& image) {
    Load_Limits limits;
    const auto voxel_nb = static_cast<std::uint64_t>(image.Voxel_Nb_3D()) * static_cast<std::uint64_t>(image.nt);
    limits.decoded_bytes = std::max(limits.decoded_bytes, voxel_nb * 8);
    return limits;
}

struct Load_Result {
    std::optional<Volume> volume;       ///< no value: see error
    std::optional<Level_Tally> tally;   ///< of all levels, where they were counted while they were read
    std::string error;                  ///< one sentence for the user, UTF-8, naming the file; empty on success
    bool cancelled = false;             ///< the progress callback gave up; `error` says so too
    std::vector<std::string> warnings;  ///< sentences about oddities that did not prevent loading
};

}  // namespace volumes
