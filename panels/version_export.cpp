#include "panels/version_export.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/kit_common.h"
#include "panels/kit_version.h"
#include "panels/module_file.h"

namespace {

constexpr int MODULE_PATH_SIZE = 260;  // bytes
constexpr int NAME_SIZE = 80;          // bytes
constexpr char VERSION_NUMBER[] = "5.0";
constexpr char REVISION[] = "16b";
constexpr int DESCRIPTION_SIZE = NAME_SIZE + 40;  // bytes

/** The file's name without folder and extension, cut at what `name` holds. */
void Generic_Name(const char* path, char (&name)[NAME_SIZE]) {
    char whole[MODULE_PATH_SIZE] = {};  // as long as the path: the name is never longer
    Get_Generic_Name(path, nullptr, whole, nullptr);
    std::snprintf(name, sizeof name, "%s", whole);
}

}  // namespace

char* Get_Version_Quorel_Tools(char* version) {
    static char description[DESCRIPTION_SIZE];
    if (version != nullptr && std::strcmp(version, KIT_PANELS_MODULE_VERSION) != 0) {
        return nullptr;
    }
    char name[NAME_SIZE] = {};
    // Contract: hosts that compare the memory of two versions count on this block; it is never given back.
    if (auto* path = static_cast<char*>(std::calloc(MODULE_PATH_SIZE, 1)); path != nullptr) {
        Module_File_Name(path, MODULE_PATH_SIZE);
        Generic_Name(path, name);
    }
    std::snprintf(description, sizeof description, "%s.dll %s (rev-%s)", name, VERSION_NUMBER, REVISION);
    return description;
}
