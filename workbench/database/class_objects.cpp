#include "workbench/database/class_objects.h"

#include <cstdio>
#include <map>
#include <span>

namespace {

/** One class: where it hangs, what it is, what it is called. A title has an icon "class TITLE.tga". */
struct Entry {
    const char* path;  // names from the root, the own one last
    const char* title;
};

constexpr Entry structure_entries[] = {
    {"Anatomy", "anatomy"},
    {"Anatomy/Head", "organ"},
    {"Anatomy/Head/Brain", "organ"},
    {"Anatomy/Head/Brain/Grey matter", "tissue"},
    {"Anatomy/Head/Brain/White matter", "tissue"},
    {"Anatomy/Head/Brain/CSF", "tissue"},
    {"Anatomy/Head/Brain/Ventricles", "tissue"},
    {"Anatomy/Head/Brain/Cerebellum", "tissue"},
    {"Anatomy/Head/Brain/Brain stem", "tissue"},
    {"Anatomy/Head/Skull", "bone"},
    {"Anatomy/Head/Scalp", "tissue"},
    {"Anatomy/Head/Eyes", "organ"},
    {"Anatomy/Vessels", "vessel"},
    {"Anatomy/Vessels/Arteries", "vessel"},
    {"Anatomy/Vessels/Veins", "vessel"},
    {"Anatomy/Lesions", "lesion"},
    {"Anatomy/Lesions/Lesion 1", "lesion"},
};
constexpr Entry curve_entries[] = {
    {"Curves", "signal"},
    {"Curves/Histograms", "signal"},
    {"Curves/Histograms/Whole volume", "signal"},
    {"Curves/Histograms/Current TAG", "signal"},
    {"Curves/Profiles", "signal"},
    {"Curves/Profiles/Profile 1", "signal"},
};

template <class Class>
void Build(std::span<const Entry> entries, std::vector<std::unique_ptr<Class>>& objects) {
    std::map<std::string, Class*> by_path;
    for (const Entry& entry : entries) {
        const std::string path = entry.path;
        const std::size_t slash = path.rfind('/');
        auto object = std::make_unique<Class>();
        object->Title_Set(entry.title);
        object->Name_Set(path.substr(slash == std::string::npos ? 0 : slash + 1).c_str());
        std::snprintf(object->icon, sizeof object->icon, "class %s.tga", entry.title);
        if (slash != std::string::npos) {
            by_path.at(path.substr(0, slash))->Child_Add(object.get());
        }
        by_path[path] = object.get();
        objects.push_back(std::move(object));
    }
}

}  // namespace

Class_Objects::Class_Objects() {
    Build<Quorel_1D>(curve_entries, curves);
    Build<Quorel_3D>(structure_entries, structures);
    Variable_Define_Pointer("$DB_1D_ROOT_PT", Root_1D());
    Variable_Define_Pointer("$DB_3D_ROOT_PT", Root_3D());
}

Class_Objects::~Class_Objects() {
    Variable_Define_Pointer("$DB_1D_ROOT_PT", nullptr);
    Variable_Define_Pointer("$DB_3D_ROOT_PT", nullptr);
}
