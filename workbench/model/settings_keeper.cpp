#include "workbench/model/settings_keeper.h"

#include "workbench/volumes/unfinished_file.h"

namespace workbench {

void Settings_Keeper::Open(const std::filesystem::path& settings_file) {
    file = settings_file;
    ignored = 0;
    settings = {};
    if (!file.empty()) {
        volumes::Unfinished_Remove(file);
        settings = Settings_Load(file, &ignored);
    }
}

void Settings_Keeper::Secret_Read() {
    if (file.empty()) {
        return;
    }
    if (const std::string kept = Settings_Load(file).archive_secret; !kept.empty()) {
        settings.archive_secret = kept;
    }
}

bool Settings_Keeper::Keep() {
    Secret_Read();
    return file.empty() || Settings_Save(file, settings);
}

}  // namespace workbench
