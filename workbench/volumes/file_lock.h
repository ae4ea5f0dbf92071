/** The right to something that only one running program may have. */
#pragma once

#include <filesystem>
#include <optional>

namespace volumes {

/** A file that this program holds open alone. The system lets go of it when the program ends, however it ends. */
class File_Lock {
  public:
    /** Makes the file when it is not there. @return no value: another program holds it, or it cannot be made */
    static std::optional<File_Lock> Take(const std::filesystem::path& file);
    /** Lets go and removes the file. */
    ~File_Lock();
    File_Lock(File_Lock&& other) noexcept;
    File_Lock& operator=(File_Lock&& other) noexcept;
    File_Lock(const File_Lock&) = delete;
    File_Lock& operator=(const File_Lock&) = delete;

  private:
    File_Lock(std::filesystem::path of_file, int of_descriptor);
    std::filesystem::path file;
    int descriptor = -1;
};

}  // namespace volumes
