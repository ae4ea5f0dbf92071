/** Takes the images of one series as they come from an archive, over whatever connection, into files of a folder. */
#pragma once

#include <atomic>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "workbench/archive/archive_association.h"
#include "workbench/archive/archive_client.h"

namespace workbench::archive {

/** What objects are taken, and in which forms. */
std::vector<Proposal> Stored_Proposals();

/** Used on one thread, but for Count. */
class Series_Intake {
  public:
    /** What is passed by reference outlives it. @param its_folder is there */
    Series_Intake(const Archive_Settings& its_archive, const Series& its_series, std::filesystem::path its_folder,
                  const Retrieve_Limits& limits)
        : archive(its_archive),
          series(its_series),
          folder(std::move(its_folder)),
          room(limits.bytes),
          image_most(limits.images) {}

    /** Takes the image that a C-STORE request announces, and answers. What is no image of the series leaves no file.
     *  @param on_piece after each part that came @throw Archive_Failure */
    void Take(
        Archive_Association& association, const Archive_Message& message,
        const std::function<void()>& on_piece = [] {});
    /** Images that are there. */
    int Count() const { return count; }

  private:
    static void Answer(Archive_Association& association, const Archive_Message& message, const std::string& sop_class,
                       const std::string& identifier, int status);
    /** Takes an image that is there already: it has to be the same. */
    void Repeated_Take(Archive_Association& association, const Archive_Message& message, const std::string& sop_class,
                       const std::string& identifier, const std::function<void()>& on_piece);
    /** Whether what came is what was asked for. */
    void Image_Check(std::string bytes, const std::string& identifier) const;

    const Archive_Settings& archive;
    const Series& series;
    std::filesystem::path folder;
    std::uint64_t room;
    std::size_t image_most;
    std::set<std::string> received;
    std::atomic<int> count = 0;
};

}  // namespace workbench::archive
