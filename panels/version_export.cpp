#include "panels/version_export.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "host/kit_common.h"
#include "panels/kit_version.h"
#include "panels/module_file.h"

namespace {

constexpr int path_size = 260;  // bytes
constexpr int name_size = 80;   // bytes
constexpr char version_number[] = "5.0";
constexpr char revision[] = "16b";
constexpr int description_size = name_size + 40;  // bytes

/** The file's name without folder and extension, cut at what `name` holds. */
void Generic_Name(const char* path, char (&name)[name_size]) {
    char whole[path_size] = {};  // as long as the path: the name is never longer
    Get_Generic_Name(path, nullptr, whole, nullptr);
    std::snprintf(name, sizeof name, "%s", whole);
}

}  // namespace

char* Get_Version_Quorel_Tools(char* version) {
    static char description[description_size];
    if (version != nullptr && std::strcmp(version, KIT_PANELS_MODULE_VERSION) != 0) {
        return nullptr;
    }
    char name[name_size] = {};
    // Contract: hosts that compare the memory of two versions count on this block; it is never given back.
    if (auto* path = static_cast<char*>(std::calloc(path_size, 1)); path != nullptr) {
        Module_File_Name(path, path_size);
        Generic_Name(path, name);
    }
    std::snprintf(description, sizeof description, "%s.dll %s (rev-%s)", name, version_number, revision);
    return description;
}
