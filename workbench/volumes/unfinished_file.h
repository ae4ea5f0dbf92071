/** Files that are being written under a name of their own until they are whole, and what is left of them when the
 *  program is ended meanwhile. */
#pragma once

#include <cstdint>
#include <filesystem>

namespace volumes {

/** "labels.nii.gz.workbench-1a2b3c4d.part": says whose it is, so it is never taken for a file of the user's.
 *  @param mark tells programs that write one target from each other */
std::filesystem::path Unfinished_Name(const std::filesystem::path& target, std::uint32_t mark);

/** The target of an unfinished file, in the same folder; empty: the name is none of Unfinished_Name's. */
std::filesystem::path Unfinished_Target(const std::filesystem::path& file);

/** Removes the unfinished files of a target, and those of other targets in its folder that are a minute old. What a
 *  running program holds open stays. Fails silently: they take nothing but room.
 *  @return files that are gone */
int Unfinished_Remove(const std::filesystem::path& target) noexcept;

}  // namespace volumes
