/** The operations on files that saving and recovering work are made of. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <system_error>

namespace volumes {

/** A table, so that every single operation can be made to fail. Exclusive creation, and bringing bytes to the disk, are
 *  not in standard C++. */
struct File_Operations {
    /** Makes a file that is not there yet, for writing. @return a descriptor; -1: see errno */
    int (*create)(const std::filesystem::path& path);
    /** @return bytes that were written; -1: see errno */
    long long (*write)(int descriptor, const std::uint8_t* bytes, std::size_t count);
    /** Brings what was written to the disk. @return false: see errno */
    bool (*flush)(int descriptor);
    /** @return false: see errno; the descriptor is gone all the same */
    bool (*close)(int descriptor);
    /** Replaces a file of the new name in one step. */
    std::error_code (*rename)(const std::filesystem::path& from, const std::filesystem::path& to);
    std::error_code (*remove)(const std::filesystem::path& path);
    /** @param bytes receives the whole file @param most a longer one is not read: std::errc::file_too_large */
    std::error_code (*read)(const std::filesystem::path& path, std::size_t most, std::string& bytes);
};

/** Those of the system. */
const File_Operations& File_Operations_Of_System();
/** Those that are used; may be replaced as a whole while no file is being written. */
File_Operations& File_Operations_In_Use();

}  // namespace volumes
