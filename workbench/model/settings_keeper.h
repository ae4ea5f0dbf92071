/** Keeps the settings in their file. No window. */
#pragma once

#include <filesystem>

#include "workbench/model/settings.h"

namespace workbench {

class Settings_Keeper {
  public:
    /** Reads what was kept, and takes away what an end in the middle of writing has left.
     *  @param settings_file empty: nothing is kept */
    void Open(const std::filesystem::path& settings_file);
    Settings& Now() { return settings; }
    const Settings& Now() const { return settings; }
    /** Empty: nothing is kept. */
    const std::filesystem::path& File() const { return file; }
    /** Lines of the file that were not understood. */
    int Ignored() const { return ignored; }
    /** Takes over the secret of the file where there is one: another window may have made it since. */
    void Secret_Read();
    /** Writes the settings as they are, but never another secret over the file's: what was sent with it would belong to
     *  nobody any more. @return false: they could not be written; the file is as it was */
    bool Keep();

  private:
    Settings settings;
    std::filesystem::path file;
    int ignored = 0;
};

}  // namespace workbench
