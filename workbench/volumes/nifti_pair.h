/** Images in two files: a header and its voxels. */
#pragma once

#include <filesystem>
#include <string>

namespace volumes {

/** The other file of a pair: "a.img" for "a.hdr", the same capitals, compressed or not. An empty path when there is
 *  none.
 *  @param from, to endings in lower case, with their points */
std::filesystem::path Partner_Find(const std::filesystem::path& path, const std::string& from, const std::string& to);

}  // namespace volumes
