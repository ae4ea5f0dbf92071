/** What can be asked of an archive. Every operation runs on the caller's thread, which should not be a window's; it
 * asks `progress` at least every 20 ms, which may say no at any time and is answered at once. None throws. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <vector>

#include "workbench/archive/archive_outcome.h"
#include "workbench/archive/archive_settings.h"
#include "workbench/volumes/volume_load.h"

namespace workbench::archive {

using volumes::Load_Progress;

/** What the archive says that it does. */
struct Archive_Abilities {
    bool is_searched = false;
    bool is_fetched_from = false;  ///< in the way that the settings say
};

/** Whether this build speaks with archives by TLS. */
bool Can_Encrypt();
/** Asks whether it is there. @param abilities may be null */
Archive_Outcome Archive_Test(const Archive_Settings& archive, const Load_Progress& progress,
                             Archive_Abilities* abilities = nullptr);

/** What studies are wanted; whatever is empty is not asked for. UTF-8. `*` and `?` stand for any letters and any one.
 */
struct Study_Query {
    std::string patient_name;  ///< the beginning of it is enough
    std::string patient_id;
    std::string date_from;  ///< "20240131"
    std::string date_to;
    std::string modality;     ///< "MR"
    std::string description;  ///< a part of it is enough
};

/** Texts are UTF-8, as the archive has them. Counts are -1 where it does not say. */
struct Study {
    std::string identifier;
    std::string patient_name;  ///< "Doe Jane"
    std::string patient_id;
    std::string birth_date;  ///< "1970-01-31"
    std::string date;
    std::string description;
    std::string modalities;  ///< "CT, SEG"
    int series_count = -1;
    int image_count = -1;
};

struct Series {
    std::string identifier;
    std::string study;  ///< identifier
    std::string number;
    std::string modality;
    std::string description;
    int image_count = -1;
};

/** Most answers that a search takes. */
inline constexpr std::size_t ANSWER_MOST = 1000;

template <class Answer>
struct Search_Result {
    Archive_Outcome outcome;
    std::vector<Answer> answers;  ///< also those that came before a failure
    bool is_cut = false;          ///< the archive has more than ANSWER_MOST
    int unusable = 0;             ///< answers without a usable identifier
};

/** The latest first. */
Search_Result<Study> Studies_Search(const Archive_Settings& archive, const Study_Query& query,
                                    const Load_Progress& progress);
/** By their numbers. @param study identifier */
Search_Result<Series> Series_Search(const Archive_Settings& archive, const std::string& study,
                                    const Load_Progress& progress);
/** @return empty, or one sentence about what is wrong with a query */
std::string Query_Doubt(const Study_Query& query);

struct Retrieve_Result {
    Archive_Outcome outcome;
    std::filesystem::path folder;  ///< of the images; empty: there is none. After Incomplete it has those that came
    int image_count = 0;           ///< that came
    std::vector<std::string> remarks;
};

struct Retrieve_Limits {
    std::uint64_t bytes = std::uint64_t{20} << 30U;  ///< of one series; an image counts as 4 KiB at least
    std::size_t images = 100'000;                    ///< of one series
};

/** Fetches a series by C-GET or C-MOVE into a folder of its own. All files are named by the images' identifiers.
 *  A series that was fetched before stays where it is; each fetching has a new folder. What came before a failure is
 *  removed, but for Incomplete.
 *  @param root folder for such folders, is made; see archive_cache.h */
Retrieve_Result Series_Retrieve(const Archive_Settings& archive, const Series& series,
                                const std::filesystem::path& root, const Load_Progress& progress,
                                const Retrieve_Limits& limits = {});

struct Sent_File {
    std::filesystem::path file;
    bool is_accepted = false;
    bool is_held = false;  ///< not sent at all: its picture may show who the patient is
    std::string remark;    ///< why not, or what the archive warns of; may be empty
};

/** What becomes of the patient's identity in what is sent. */
struct Send_Wishes {
    bool is_anonymous = false;
    bool is_picture_trusted = false;  ///< anonymous images go although texts may be burnt into them
    std::string secret;               ///< of this installation, for what is made up instead (see secret_hash.h)
};

struct Send_Result {
    Archive_Outcome outcome;       ///< fine also where the archive refused files
    std::vector<Sent_File> files;  ///< those that were answered
    int accepted = 0;
    int refused = 0;
    int held = 0;  ///< neither
};

/** Stores files in the archive by C-STORE, as they are, or without compression where it takes them only so and they
 * have none. One that cannot be read counts as refused. An anonymous one never leaves with anything that
 * anonymous_rules.h takes out of it; it is changed in memory only. */
Send_Result Files_Send(const Archive_Settings& archive, std::span<const std::filesystem::path> files,
                       const Load_Progress& progress, const Send_Wishes& wishes = {});

}  // namespace workbench::archive
