/** The folder that fetched series are kept in: one folder each, of files named by identifiers. Nothing in it is a
 *  program, and nothing of it is ever run. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace workbench::archive {

/** A new folder for a series that is being fetched; what is in it goes with this, unless it was kept. */
class Fetched_Folder {
  public:
    /** @param series identifier */
    Fetched_Folder(std::filesystem::path its_root, std::string its_series);
    ~Fetched_Folder();
    Fetched_Folder(const Fetched_Folder&) = delete;
    Fetched_Folder& operator=(const Fetched_Folder&) = delete;

    /** Empty: it is made. Else what is wrong, to follow a name: "cannot be made: Permission denied" */
    const std::string& Error() const { return error; }
    /** While it is filled. */
    const std::filesystem::path& Path() const { return path; }
    /** Gives it the series' name; a number follows where there is one already.
     *  @return where it is now; empty: see Error */
    std::filesystem::path Keep();

  private:
    std::filesystem::path root;
    std::string series;
    std::filesystem::path path;
    std::string error;
};

/** Removes the oldest series until what is left takes no more than `most` bytes, and what a killed program left a day
 *  ago. What cannot be removed, and whatever is not such a folder, stays; so does a folder with anything beside the
 *  images, such as labels saved there. Never throws.
 *  @param kept folders that are in use, by whatever name
 *  @return bytes that are left */
std::uint64_t Cache_Trim(const std::filesystem::path& root, std::uint64_t most,
                         std::span<const std::filesystem::path> kept) noexcept;

}  // namespace workbench::archive
