/** Small text files that are read and written as a whole. */
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>

namespace workbench {

/** @param size_most bytes; a longer file is not read @param text receives all bytes; empty when something is wrong
 *  @return empty, or what is wrong, to follow the file's name: "cannot be read", "is too large" */
std::string Text_File_Read(const std::filesystem::path& file, std::size_t size_most, std::string& text);

/** Writes beside the file and puts the new one in its place in one step: it is never half written.
 *  @return empty, or what is wrong, to follow the file's name: then the file is as it was */
std::string Text_File_Write(const std::filesystem::path& file, std::string_view text);

/** Moves a file out of the way, to a name that is free: "NAME.damaged", "NAME.damaged2" and so on.
 *  @param ending with its point @param kept receives the new name; may be null
 *  @return empty, or what is wrong, to follow the file's name: then the file is where it was */
std::string Text_File_Keep_Aside(const std::filesystem::path& file, std::string_view ending,
                                 std::filesystem::path* kept = nullptr);

}  // namespace workbench
