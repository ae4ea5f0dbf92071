#include "workbench/parts/settings_keeper.h"

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

bool Settings_Keeper::Keep() const {
    return file.empty() || Settings_Save(file, settings);
}

}  // namespace workbench
