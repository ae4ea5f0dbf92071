/** Pieces of the sentences that tell a user what is wrong with a file. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <string_view>

namespace volumes {

/** "7,109,137": a count with its thousands set apart. */
std::string Count_Text(std::uint64_t count);
/** "0.25", "1.2e-07": a value with six digits at most, the same in every language. */
std::string Value_Text(double value);
/** "2.0 GiB", "512 bytes": an amount of data. */
std::string Size_Text(std::uint64_t bytes);
/** "0.25", "1,000", "1.5e-07": a measured amount with three digits that count. */
std::string Amount_Text(double amount);
/** Most characters of a field that a sentence repeats. */
inline constexpr std::size_t FIELD_SHOWN_MOST = 64;
/** Text from a file made fit for a sentence: UTF-8 stays, every byte that is none becomes U+FFFD, and control
 * characters become spaces. @param most characters; what follows them becomes "..." */
std::string Printable_Text(std::string_view text, std::size_t most = std::string::npos);
/** The file's own name without its folders, in UTF-8. A name that cannot be expressed gives "The file". */
std::string File_Name_Text(const std::filesystem::path& path);
/** A path from UTF-8 text, on every system. Text that is not valid UTF-8 gives an empty path on systems with wide file
 * names. */
std::filesystem::path Path_From_Utf8(std::string_view text);

}  // namespace volumes
