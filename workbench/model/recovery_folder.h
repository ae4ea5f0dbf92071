/** The files with work that was not saved, one for every running program, in a folder of their own.
 *
 *  A program holds NAME.lock as long as it runs, so nobody takes its NAME.work for that of a program that has died.
 */
#pragma once

#include <filesystem>
#include <optional>
#include <string>
#include <vector>

#include "workbench/model/recovery_record.h"
#include "workbench/volumes/file_lock.h"

namespace workbench {

/** One journal, and the right to it. */
class Recovery_Claim {
  public:
    Recovery_Claim(std::filesystem::path journal, volumes::File_Lock&& held)
        : file(std::move(journal)), lock(std::move(held)) {}
    const std::filesystem::path& File() const { return file; }
    /** Removes the journal and what was left of writing it. @return false: it is still there */
    bool Remove();

  private:
    std::filesystem::path file;
    volumes::File_Lock lock;
};

/** A journal of this program's own, not written yet. Makes the folder. @return no value: it cannot be made */
std::optional<Recovery_Claim> Recovery_Claim_Make(const std::filesystem::path& folder);

struct Recovery_Found {
    Recovery_Claim claim;
    Recovery_Record record;
};
struct Recovery_Findings {
    std::vector<Recovery_Found> found;  ///< of programs that run no more, the newest first
    std::vector<std::string> told;      ///< sentences about files that could not be taken
};
/** Looks for work of programs that have died. A damaged journal is kept aside as NAME.work.damaged, one of a later
 *  version as NAME.work.newer; both are told, and so is one whose lock cannot be made. What dead programs left half
 *  written goes. */
Recovery_Findings Recovery_Find(const std::filesystem::path& folder);

}  // namespace workbench
