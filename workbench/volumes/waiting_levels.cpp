#include "workbench/volumes/waiting_levels.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <new>
#include <utility>

#include "workbench/volumes/dicom_reader.h"
#include "workbench/volumes/dicom_series.h"
#include "workbench/volumes/image_file_bytes.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/slices_join.h"
#include "workbench/volumes/work_share.h"

namespace volumes {

namespace {

constexpr const char* EMPTY_NOW = ": its slice is empty";

/** What became of one file. */
struct Slice_Read {
    std::optional<Volume> volume;
    std::vector<std::string> warnings;
    std::string error;
    bool has_no_room = false;
};

bool Is_The_Slice(const Dicom_Result& result, const Volume& wanted, const Slice_Identity& identity) {
    const Dicom_Image& image = *result.image;
    return result.others.empty() && image.volume.nx == wanted.nx && image.volume.ny == wanted.ny &&
           image.volume.nz == 1 && image.volume.nt == 1 && image.volume.color == wanted.color &&
           image.volume.is_inverted == wanted.is_inverted && Identity_Of(image) == identity;
}

class Levels_Reader {
  public:
    Levels_Reader(const Waiting_Levels& wanted_levels, const Load_Progress& load_progress,
                  const Load_Limits& load_limits)
        : wanted(wanted_levels), progress(load_progress), limits(load_limits), room(load_limits.decoded_bytes) {
        limits.share = &room;
    }

    void Read(Levels_Result& result) {
        slices.resize(wanted.files.size());
        const auto go_on = [&](std::size_t done) {
            is_given_up = progress && !progress(static_cast<double>(done) / static_cast<double>(wanted.files.size()));
            return !is_given_up;
        };
        result.is_cancelled = !Work_Share(
            slices.size(), Work_Thread_Nb(slices.size()), [this](std::size_t at) { Slice_Get(at); }, go_on);
        if (result.is_cancelled) {
            result.error = "was given up";
            return;
        }
        Problems_Tell(result);
        if (result.error.empty()) {
            Join(result);
        }
    }

  private:
    void Slice_Get(std::size_t at) {
        std::unique_ptr<Reading_Room> own = rooms.Take();
        slices[at] = Slice_Of(wanted.files[at], wanted.slices[at], *own);
        rooms.Give_Back(std::move(own));
    }

    Slice_Read Slice_Of(const std::filesystem::path& path, const Slice_Identity& identity, Reading_Room& own) {
        Slice_Read read;
        try {
            auto bytes = Plain_Bytes_Read(path, limits.decoded_bytes, std::move(own.file));
            if (!bytes) {
                read.error = "is packed by now";
                return read;
            }
            Dicom_Result result = Dicom_Read(
                *bytes, limits, [this](double) { return !is_given_up; }, &own);
            own.file = std::move(*bytes);
            read.error = result.error;
            read.has_no_room = result.has_no_room;
            read.warnings = std::move(result.warnings);
            if (!result.image) {
                return read;
            }
            if (!Is_The_Slice(result, wanted.volume, identity)) {
                read.error = "holds another image than when the folder was opened";
                return read;
            }
            read.has_no_room = !room.Take(result.image->volume.levels.Bytes());
            read.volume = std::move(result.image->volume);
        } catch (const File_Refusal& refusal) {
            read.error = refusal.text;
        }
        return read;
    }

    void Problems_Tell(Levels_Result& result) const {
        std::size_t readable_nb = 0;
        for (std::size_t at = 0; at < slices.size(); ++at) {
            const Slice_Read& slice = slices[at];
            if (slice.has_no_room) {
                result.error = "needs more memory than the limit of " + Size_Text(limits.decoded_bytes);
                return;
            }
            readable_nb += slice.volume ? 1 : 0;
            if (!slice.volume) {
                result.problems.push_back({wanted.files[at], slice.error + EMPTY_NOW, true});
            }
            for (const std::string& warning : slice.warnings) {
                result.problems.push_back({wanted.files[at], warning, true});
            }
        }
        if (readable_nb == 0) {
            result.error =
                "cannot be read any more: " + File_Name_Text(wanted.files.front()) + ' ' + slices.front().error;
        }
    }

    void Join(Levels_Result& result) {
        std::vector<Volume*> parts;
        for (Slice_Read& slice : slices) {
            parts.push_back(slice.volume ? &*slice.volume : nullptr);
        }
        Joined_Slices joined = Slices_Join(parts);
        if (!joined.lost.empty()) {
            result.problems.push_back({wanted.files.front(), joined.lost, true});
        }
        Volume& volume = joined.volume;
        volume.spacing = wanted.volume.spacing;
        volume.time_step = wanted.volume.time_step;
        volume.affine = wanted.volume.affine;
        volume.affine_source = wanted.volume.affine_source;
        volume.is_size_known = wanted.volume.is_size_known;
        volume.place_source = wanted.volume.place_source;
        volume.windows = wanted.volume.windows;
        result.volume = std::move(volume);
    }

    const Waiting_Levels& wanted;
    const Load_Progress& progress;
    Load_Limits limits;
    Memory_Share room;
    Reading_Rooms rooms;
    std::vector<Slice_Read> slices;
    std::atomic<bool> is_given_up = false;
};

}  // namespace

Waiting_Levels Waiting_Levels_Of(const Volume& listed, std::span<const std::int32_t> file_of_slice,
                                 std::span<const std::filesystem::path> files, std::span<const Slice_Identity> slices) {
    Waiting_Levels wanted{listed, {}, {slices.begin(), slices.end()}};
    wanted.files.reserve(file_of_slice.size());
    for (const std::int32_t file : file_of_slice) {
        wanted.files.push_back(files[static_cast<std::size_t>(file)]);
    }
    return wanted;
}

Levels_Result Waiting_Levels_Read(const Waiting_Levels& wanted, const Load_Progress& progress,
                                  const Load_Limits& limits) noexcept {
    Levels_Result result;
    try {
        Levels_Reader(wanted, progress, limits).Read(result);
    } catch (const std::bad_alloc&) {
        result = {};
        result.error = "needs more memory than there is";
    } catch (...) {
        result = {};
        result.error = "cannot be read";
    }
    return result;
}

}  // namespace volumes
