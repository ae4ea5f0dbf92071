/** What a file is at one moment, to see later whether somebody has changed it. */
#pragma once

#include <cstdint>
#include <filesystem>
#include <span>
#include <string>

namespace volumes {

/** CRC-32 of bytes, continued from that of what stands before them. */
std::uint32_t Checksum(std::span<const std::uint8_t> bytes, std::uint32_t before = 0);

struct File_Stamp {
    bool is_there = false;       ///< a file, no folder; false: the rest means nothing
    bool is_readable = true;     ///< false: the contents are not known
    std::uint64_t size = 0;      ///< bytes
    std::uint32_t checksum = 0;  ///< of all bytes
    std::int64_t time = 0;       ///< when it was written last, by the file system's own clock
};
/** Reads the whole file. Never throws but for lack of memory. */
File_Stamp File_Stamp_Of(const std::filesystem::path& file);

/** Whether the file is another one than it was. One that was only copied over itself, or whose time was set, is not. A
 *  file that cannot be read counts as changed unless size and time are what they were. */
bool File_Is_Changed(const File_Stamp& was, const File_Stamp& now);

/** Whether a file is there that its owner has protected from being written. */
bool File_Is_Read_Only(const std::filesystem::path& file);
/** Takes the protection away, or brings it back. @return empty, or why not, to follow the file's name */
std::string File_Read_Only_Set(const std::filesystem::path& file, bool is_read_only);

}  // namespace volumes
