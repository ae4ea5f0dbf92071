/** A file that appears under its name only when it is complete. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace volumes {

/** Writes to a file of another name beside the target (see Unfinished_Name) and renames it at the end, so that a full
 * disk or a crash leaves what was there before. Operations after a failed one do nothing. */
class Output_File {
  public:
    /** Creates the temporary file. @param target_path the name that the finished file will have */
    explicit Output_File(std::filesystem::path target_path);
    /** Removes the temporary file if Commit did not succeed. */
    ~Output_File();
    Output_File(const Output_File&) = delete;
    Output_File& operator=(const Output_File&) = delete;

    bool Write(std::span<const std::uint8_t> bytes);
    /** Brings the bytes to the disk and the file to its name, replacing a former one. */
    bool Commit();
    /** Empty as long as everything went well; else what is wrong, to follow the file's name: "cannot be written: No
     * space left on device" */
    const std::string& Error() const { return error; }

  private:
    bool Fail(const std::string& what);
    bool Fail_System(const std::string& what);
    void Abandon();

    std::filesystem::path target;
    std::filesystem::path temporary;
    std::string error;
    int descriptor = -1;
};

}  // namespace volumes
