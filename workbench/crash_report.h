/** What is left behind when the program ends by a fault: a text with the place and what was done last. */
#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace workbench {

/** From now on faults of the system (access violations, stack overflow ...) and of C++ (exceptions that nobody handles,
 *  abort) write FOLDER/crash-DATE-TIME-PROCESS.new.txt, then the program ends. Nothing is written into memory that the
 *  fault may have damaged. The program's status is 3 after an exception or abort.
 *  @param version of the program @param folder is made; empty: not known yet, what happened is said in a box instead.
 *  May be called again. */
void Crash_Report_Install(const std::filesystem::path& folder, std::string_view version);

/** Notes what is being done, with the time; the last of these stand in the report. Window's thread only. */
void Activity_Note(std::string_view what);

/** Reports that nobody has been told of; from now on they count as told: FOLDER/crash-DATE-TIME-PROCESS.txt.
 *  @return where they are now */
std::vector<std::filesystem::path> Crash_Reports_Take(const std::filesystem::path& folder);

}  // namespace workbench
