#include "workbench/volumes/image_folder.h"

#include <algorithm>
#include <atomic>
#include <exception>
#include <memory>
#include <new>
#include <optional>
#include <system_error>
#include <utility>

#include "workbench/volumes/dicom_head_scan.h"
#include "workbench/volumes/dicom_series.h"
#include "workbench/volumes/image_file_bytes.h"
#include "workbench/volumes/image_file_kind.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/nifti_reader.h"
#include "workbench/volumes/work_share.h"

namespace volumes {

namespace {

/** A sentence without the file's name at its beginning and the point at its end. */
std::string Bare_Reason(std::string text, const std::string& name) {
    if (text.starts_with(name + ' ')) {
        text.erase(0, name.size() + 1);
    }
    if (text.ends_with('.')) {
        text.pop_back();
    }
    return text;
}

constexpr std::size_t TOGETHER_MOST = 64;  // small files that are read side by side

/** Opens files, small ones side by side. */
class Folder_Reader {
  public:
    Folder_Reader(Image_Folder& filled, const Load_Progress& load_progress, const Load_Limits& load_limits)
        : folder(filled), progress(load_progress), limits(load_limits), room(load_limits.decoded_bytes) {
        limits.share = &room;
    }

    void Read(std::span<const Wanted_File> files, std::uint64_t whole_most) {
        file_nb = files.size();
        const std::span taken = files.first(std::min(files.size(), FOLDER_FILES_MOST));
        std::vector<Dicom_Head> heads(taken.size());
        if (whole_most != WHOLE_ALWAYS && Is_More_Than(taken, whole_most)) {
            heads = Heads_Read(taken);
        }
        for (std::size_t at = 0; at < taken.size() && Go_On(0.0);) {
            if (heads[at].image) {
                Take_Head(taken[at].path, std::move(heads[at]));
                ++done_nb;
                ++at;
                continue;
            }
            const std::span ahead = std::span(heads).subspan(at, std::min(taken.size() - at, TOGETHER_MOST));
            const auto listed =
                std::ranges::find_if(ahead, [](const Dicom_Head& head) { return head.image.has_value(); });
            const auto whole_nb = static_cast<std::size_t>(listed - ahead.begin());
            const std::span together = taken.subspan(at, Small_Nb(taken.subspan(at, whole_nb)));
            if (together.size() > 1) {
                Read_Together(together);
                at += together.size();
            } else {
                Read_One(taken[at]);
                ++done_nb;
                ++at;
            }
        }
        if (files.size() > taken.size() && !folder.is_cancelled) {
            folder.problems.push_back(
                {files[taken.size()].path, "and all files after it were left out: there are too many", false});
        }
        Series_Assemble(std::move(parts), folder);
        for (Folder_Volume& one : niftis) {
            Times_Split(std::move(one), folder);
        }
        Slices_Limit();
        std::ranges::stable_sort(folder.problems, {}, &Folder_Problem::path);
    }

  private:
    /** @param share of the file that is read now. @return false: reading was given up */
    bool Go_On(double share) {
        const double done = (static_cast<double>(done_nb) + share) / static_cast<double>(file_nb);
        folder.is_cancelled = folder.is_cancelled || (progress && !progress(heads_share + (1.0 - heads_share) * done));
        return !folder.is_cancelled;
    }

    std::vector<Dicom_Head> Heads_Read(std::span<const Wanted_File> files) {
        constexpr double heads_part = 0.9;  // of the way: what follows takes long only where there is much else
        std::vector<Dicom_Head> heads = Waiting_Heads(files, [&](std::size_t done) {
            folder.is_cancelled =
                progress && !progress(heads_part * static_cast<double>(done) / static_cast<double>(file_nb));
            return !folder.is_cancelled;
        });
        heads_share = heads_part;
        heads.resize(files.size());
        return heads;
    }

    void Take_Head(const std::filesystem::path& path, Dicom_Head&& head) {
        for (const std::string& warning : head.warnings) {
            folder.problems.push_back({path, warning, true});
        }
        const std::int32_t file = File_Add(path, head.image->origin);
        parts.push_back({std::move(*head.image), file, true, {}});
    }

    /** How a file is to be read. */
    enum class Kind { Nifti, Any, None };
    static Kind Kind_Of(const Wanted_File& file, const std::string& name) {
        if (Is_Volume_Name(name) && !Is_Dicom_Content(file.path)) {
            return Kind::Nifti;
        }
        return Is_Voxels_Of_Pair(file, name) ? Kind::None : Kind::Any;
    }

    /** Runs what reads a file; why it cannot be read becomes a problem. */
    template <class Reading>
    void Guarded(const std::filesystem::path& path, Reading reading) {
        try {
            reading();
        } catch (const File_Refusal& refusal) {
            folder.problems.push_back({path, Bare_Reason(refusal.text, File_Name_Text(path)), false});
        } catch (const std::bad_alloc&) {
            folder.problems.push_back({path, "needs more memory than there is", false});
        }
    }

    void Read_One(const Wanted_File& file) {
        Guarded(file.path, [&] {
            const std::string name = File_Name_Text(file.path);
            const Kind kind = Kind_Of(file, name);
            if (kind == Kind::Nifti) {
                Read_Nifti(file.path, name);
            } else if (kind == Kind::Any) {
                Read_Any(file, name, Bytes_Read(file.path, limits.decoded_bytes));
            }
        });
    }

    /** Files at the beginning of a list that are read side by side: they are small, so that what is read of all of them
     *  takes little room until it is taken over, and are no volumes by their names. */
    static std::size_t Small_Nb(std::span<const Wanted_File> files) {
        constexpr std::uintmax_t size_most = std::uintmax_t{4} << 20U;
        std::size_t count = 0;
        while (count < std::min(files.size(), TOGETHER_MOST)) {
            std::error_code unknown;
            const std::uintmax_t size = std::filesystem::file_size(files[count].path, unknown);
            const std::string name = File_Name_Text(files[count].path);
            // What is packed may become large, and then each must find the room that those before have left.
            if (unknown || size > size_most || Is_Volume_Name(name) || name.ends_with(".gz")) {
                break;
            }
            ++count;
        }
        return count;
    }

    /** What a thread has made of a file. */
    struct Early {
        Kind kind = Kind::None;
        bool is_left = false;  // to be read by itself, when those before it have taken what they need
        std::vector<std::uint8_t> bytes;
        std::optional<Dicom_Result> result;  // no value: `bytes` is not looked into yet
        std::uint64_t held = 0;              // bytes of the share that the result takes
        std::exception_ptr failure;
    };

    /** Reads small files side by side, and takes them over in their order: the outcome is that of one after the other.
     */
    void Read_Together(std::span<const Wanted_File> files) {
        std::vector<Early> early(files.size());
        std::atomic<bool> is_given_up = false;
        Reading_Rooms rooms;
        const auto read = [&](std::size_t at) {
            try {
                std::unique_ptr<Reading_Room> own = rooms.Take();
                early[at] = Read_Early(files[at], *own, is_given_up);
                rooms.Give_Back(std::move(own));
            } catch (...) {
                early[at].failure = std::current_exception();
            }
        };
        const std::size_t begun_at = done_nb;
        const auto go_on = [&](std::size_t done) {
            done_nb = begun_at + done;
            is_given_up = !Go_On(0.0);
            return !is_given_up;
        };
        const bool is_done = Work_Share(files.size(), Work_Thread_Nb(files.size()), read, go_on);
        for (std::size_t at = 0; is_done && at < files.size() && !folder.is_cancelled; ++at) {
            done_nb = begun_at + at;
            if (early[at].is_left) {
                std::ranges::for_each(std::span(early).subspan(at + 1), [this](Early& later) { Leave(later); });
                Read_One(files[at]);
            } else {
                Guarded(files[at].path, [&] { Take_Early(files[at], std::move(early[at])); });
            }
        }
        done_nb = begun_at + files.size();
    }

    Early Read_Early(const Wanted_File& file, Reading_Room& own, const std::atomic<bool>& is_given_up) {
        Early early;
        early.kind = Kind_Of(file, File_Name_Text(file.path));
        if (early.kind != Kind::Any) {
            return early;
        }
        auto bytes = Plain_Bytes_Read(file.path, limits.decoded_bytes, std::move(own.file));
        if (!bytes) {
            early.is_left = true;
            return early;
        }
        early.bytes = std::move(*bytes);
        if (!Dicom_Is_Likely(early.bytes)) {
            if (May_Be_Nifti(file, early.bytes)) {  // its levels need room that the files before it must not hold yet
                early = {};
                early.is_left = true;
            }
            return early;
        }
        early.result = Dicom_Read(
            early.bytes, limits, [&](double) { return !is_given_up; }, &own);
        own.file = std::exchange(early.bytes, {});
        const std::uint64_t taken = Bytes_Of(*early.result);
        if (early.result->has_no_room || !room.Take(taken)) {
            early.result.reset();
            early.is_left = true;
        } else {
            early.held = taken;
        }
        return early;
    }

    /** Drops what a thread has made: a file before it needs the room, or has to be asked first. */
    void Leave(Early& early) {
        if (early.result) {
            room.Give_Back(early.held);
            early = {};
            early.is_left = true;
        }
    }

    void Take_Early(const Wanted_File& file, Early&& early) {
        if (early.failure != nullptr) {
            std::rethrow_exception(early.failure);
        }
        if (early.result) {
            room.Give_Back(early.held);
            Take_Dicom(file.path, std::move(*early.result));
        } else if (early.kind == Kind::Any) {
            Read_Any(file, File_Name_Text(file.path), std::move(early.bytes));
        }
    }

    void Slices_Limit() {
        std::size_t slices = 0;
        const auto fits = [&](const Folder_Volume& one) {
            slices += static_cast<std::size_t>(one.volume.nz);
            return slices <= FOLDER_SLICES_MOST;
        };
        const auto end = std::ranges::find_if_not(folder.volumes, fits);
        for (auto one = end; one != folder.volumes.end(); ++one) {
            folder.problems.push_back({one->path,
                                       "was left out (" + one->title + "): all volumes together may have " +
                                           Count_Text(FOLDER_SLICES_MOST) + " slices",
                                       false});
        }
        folder.volumes.erase(end, folder.volumes.end());
    }

    static std::uint64_t Bytes_Of(const Dicom_Result& result) {
        std::uint64_t bytes = result.image ? result.image->volume.levels.Bytes() : 0;
        for (const Dicom_Image& other : result.others) {
            bytes += other.volume.levels.Bytes();
        }
        return bytes;
    }

    void Room_Take(std::uint64_t bytes) {
        if (!room.Take(bytes)) {
            throw File_Refusal{room.Refusal_Text()};
        }
    }

    std::int32_t File_Add(const std::filesystem::path& path, const File_Origin& origin) {
        folder.origins.resize(folder.files.size());  // one more when the last file found no memory
        folder.origins.push_back(origin);
        folder.files.push_back(path);
        return static_cast<std::int32_t>(folder.files.size()) - 1;
    }

    static bool May_Be_Nifti(const Wanted_File& file, std::span<const std::uint8_t> bytes) {
        return Is_Nifti_Content(bytes) ||
               (file.is_named && !bytes.empty() && !Is_Dicom_Name(File_Name_Text(file.path)));
    }

    void Read_Any(const Wanted_File& file, const std::string& name, std::vector<std::uint8_t>&& bytes) {
        const bool is_dicom = Dicom_Is_Likely(bytes);
        if (is_dicom || !May_Be_Nifti(file, bytes)) {
            return Take_Dicom(file.path, Dicom_Read(bytes, limits, [this](double share) { return Go_On(share); }));
        }
        bytes = {};
        try {
            Read_Nifti(file.path, name);
        } catch (const File_Refusal& refusal) {
            throw File_Refusal{Bare_Reason(refusal.text, name) == "is not a NIfTI file"
                                   ? "is neither a NIfTI nor a DICOM file"
                                   : refusal.text};
        }
    }

    void Take_Dicom(const std::filesystem::path& path, Dicom_Result&& result) {
        if (result.is_cancelled) {
            return;
        }
        if (!result.image) {
            throw File_Refusal{result.error};
        }
        Room_Take(Bytes_Of(result));
        for (const std::string& warning : result.warnings) {
            folder.problems.push_back({path, warning, true});
        }
        const std::int32_t file = File_Add(path, result.image->origin);
        parts.push_back({std::move(*result.image), file, false, {}});
        for (Dicom_Image& other : result.others) {
            parts.push_back({std::move(other), file, false, {}});
        }
    }

    void Read_Nifti(const std::filesystem::path& path, const std::string& name) {
        Load_Result result = Volume_Load(
            path, [this](double share) { return Go_On(share); }, limits);
        if (result.cancelled) {
            return;
        }
        if (!result.volume) {
            throw File_Refusal{result.error};
        }
        Room_Take(result.volume->levels.Bytes());
        for (const std::string& warning : result.warnings) {
            folder.problems.push_back({path, Bare_Reason(warning, name), true});
        }
        constexpr std::uint16_t modality_magnetic_resonance = 'M' << 8 | 'R';
        constexpr std::uint16_t modality_other = 'O' << 8 | 'T';
        Folder_Volume made;
        made.title = name;
        made.volume = std::move(*result.volume);
        made.tally = std::move(result.tally);
        made.modality = made.volume.color ? modality_other : modality_magnetic_resonance;
        made.descriptor = made.volume.color ? "Colour image" : "Grey image, " + made.volume.scalar_type;
        made.path = path;
        made.file_of_slice.assign(static_cast<std::size_t>(made.volume.nz), File_Add(path, {}));
        niftis.push_back(std::move(made));
    }

    Image_Folder& folder;
    const Load_Progress& progress;
    Load_Limits limits;
    std::size_t file_nb = 0;
    std::size_t done_nb = 0;
    double heads_share = 0.0;  // of the way that reading heads was
    Memory_Share room;         // of all levels
    std::vector<Series_Part> parts;
    std::vector<Folder_Volume> niftis;
};

}  // namespace

Image_Folder Image_Folder_Open(std::span<const std::filesystem::path> paths, const Load_Progress& progress,
                               const Load_Limits& limits, std::uint64_t whole_most) noexcept {
    Image_Folder result;
    try {
        std::vector<Wanted_File> wanted;
        for (const std::filesystem::path& path : paths) {
            std::error_code error;
            const bool is_named = !std::filesystem::is_directory(path, error);
            for (std::filesystem::path& file : Folder_Files(path, result.problems)) {
                wanted.push_back({std::move(file), is_named});
            }
        }
        Folder_Reader(result, progress, limits).Read(wanted, whole_most);
    } catch (...) {
        result.volumes.clear();
        result.files.clear();
        result.origins.clear();
        result.problems.push_back(
            {paths.empty() ? std::filesystem::path() : paths.front(), "needs more memory than there is", false});
    }
    return result;
}

}  // namespace volumes
