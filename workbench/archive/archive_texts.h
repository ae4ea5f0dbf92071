/** What is said of archives, and of what they have. */
#pragma once

#include <chrono>
#include <string>
#include <vector>

#include "workbench/archive/archive_client.h"

namespace workbench::archive {

inline constexpr const char* IN_CLEAR =
    "Names and images travel without encryption: use it within a network that you trust.";
inline constexpr const char* BY_TLS = "Names and images travel encrypted, and the archive's certificate is checked.";
/** Which of them holds. */
inline const char* Way_Text(const Archive_Settings& archive) {
    return archive.is_encrypted ? BY_TLS : IN_CLEAR;
}

/** "1 image", "3 images"; empty for a number that is not known. */
std::string Counted_Text(int count, const char* one, const char* many);
std::string Objects_Text(int count);
/** "1.5 seconds". */
std::string Seconds_Text(std::chrono::milliseconds time);
/** What is not empty, with room between. */
std::string Joined_Text(const std::vector<std::string>& parts);
/** A line of a list. */
std::string Study_Text(const Study& study);
std::string Series_Text(const Series& series);
/** Why files were not taken, or are held: each reason once, some of them. */
std::string Reasons_Text(const Send_Result& sent, bool is_held);

}  // namespace workbench::archive
