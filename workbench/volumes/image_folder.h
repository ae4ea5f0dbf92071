/** Opens folders and lists of image files: DICOM files are put together to volumes, NIfTI volumes stand beside them. */
#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <limits>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/dicom_reader.h"
#include "workbench/volumes/volume.h"
#include "workbench/volumes/volume_load.h"

namespace volumes {

/** A file that could not be opened, or not as a whole. */
struct Folder_Problem {
    std::filesystem::path path;
    std::string reason;      ///< one sentence without the name: "is no DICOM file"; UTF-8
    bool is_opened = false;  ///< its pictures are there all the same
    bool operator==(const Folder_Problem&) const = default;
};

/** Adds problems that are not among these yet: reading pixels finds once more what reading heads has found.
 *  @return those that were added */
std::vector<Folder_Problem> Problems_Add(std::span<const Folder_Problem> further,
                                         std::vector<Folder_Problem>& problems);

/** What the head of a slice's file says: it must say the same when the pixels are read. */
struct Slice_Identity {
    std::string instance;   ///< unique identifier of the image; may be empty
    bool is_known = false;  ///< where it lies, as in Slice_Place
    std::array<double, 3> corner{};
    std::array<double, 3> along_row{};
    std::array<double, 3> along_column{};
    bool operator==(const Slice_Identity&) const = default;
};

/** A volume at one time: of a file, or of the slices of a series that fit one another, ordered by position. Images of
 *  several times are one volume per time. Moments of a single place (cine) are one volume, whose slices they are. */
struct Folder_Volume {
    std::string title;           ///< "MR 3: t1 sagittal", or the file's name
    std::string descriptor;      ///< kind of image, for people
    std::uint16_t modality = 0;  ///< two letters, the first in the high byte
    bool is_scout = false;
    bool is_cine = false;                     ///< the slices are moments, volume.time_step seconds apart
    std::filesystem::path path;               ///< the file that it came from, or the first of them
    Volume volume;                            ///< nt is 1
    std::optional<Level_Tally> tally;         ///< of all its levels, where they were counted while they were read
    std::vector<std::int32_t> file_of_slice;  ///< of every slice: an index into Image_Folder::files
    /** Of every slice, where the pixels are not read: the volume has no levels then, and neither scale nor range is
     *  known (see waiting_levels.h). Else empty. */
    std::vector<Slice_Identity> waiting;
};

struct Image_Folder {
    std::vector<std::filesystem::path> files;  ///< those that were opened, in order of folders and names
    std::vector<File_Origin> origins;          ///< of each of the files
    std::vector<Folder_Volume> volumes;        ///< in order of study, series number, and time
    std::vector<Folder_Problem> problems;      ///< in order of the files' names
    bool is_cancelled = false;                 ///< the progress callback gave up; the rest is what was read so far
};

/** Files that a folder may hold; the rest is listed as left out. */
inline constexpr std::size_t FOLDER_FILES_MOST = 1000000;
/** Slices of all volumes together, so many that lists of them still answer at once; volumes beyond are listed as left
 *  out. */
inline constexpr std::size_t FOLDER_SLICES_MOST = 1000000;
/** No folder is too large to be read at once. */
inline constexpr std::uint64_t WHOLE_ALWAYS = std::numeric_limits<std::uint64_t>::max();

/** All files below a folder, the files of each folder in a row, ordered by name; folders that may not be read become
 *  problems. Links to folders are not followed. A path that is no folder gives itself. */
std::vector<std::filesystem::path> Folder_Files(const std::filesystem::path& folder,
                                                std::vector<Folder_Problem>& problems);

/** Opens folders with everything below them, and files, all together. Never throws. In a folder only files are taken
 *  for NIfTI volumes whose name says so; a file that is named itself is looked into whatever its name.
 *  @param progress may be empty; called on the caller's thread
 *  @param limits for each file, and for the levels of all that are read
 *  @param whole_most bytes: where the files take more together, only the heads of DICOM files of one picture are read;
 *  pixels follow when they are wanted (Folder_Volume::waiting). All else is read whole */
Image_Folder Image_Folder_Open(std::span<const std::filesystem::path> paths, const Load_Progress& progress = {},
                               const Load_Limits& limits = {}, std::uint64_t whole_most = WHOLE_ALWAYS) noexcept;

/** "3 volumes of 24 files; 2 files were not opened". */
std::string Image_Folder_Text(const Image_Folder& folder);
/** One line per problem: the path below a folder, the reason, and whether the file is opened all the same. */
std::string Image_Folder_Problems_Text(const Image_Folder& folder, const std::filesystem::path& below);

}  // namespace volumes
