#include "workbench/database/class_objects.h"

#include <cstdio>
#include <map>
#include <span>

namespace workbench {

namespace {

/** One class: where it hangs, what it is, what it is called. A title has an icon "class TITLE.tga". */
struct Entry {
    const char* path;  // names from the root, the own one last
    const char* title;
};

constexpr Entry STRUCTURE_ENTRIES[] = {
    {"Anatomy", "Anatomy"},
    {"Anatomy/Head", "Organ"},
    {"Anatomy/Head/Brain", "Organ"},
    {"Anatomy/Head/Brain/Grey matter", "Tissue"},
    {"Anatomy/Head/Brain/White matter", "Tissue"},
    {"Anatomy/Head/Brain/CSF", "Tissue"},
    {"Anatomy/Head/Brain/Ventricles", "Tissue"},
    {"Anatomy/Head/Brain/Cerebellum", "Tissue"},
    {"Anatomy/Head/Brain/Brain stem", "Tissue"},
    {"Anatomy/Head/Skull", "Bone"},
    {"Anatomy/Head/Scalp", "Tissue"},
    {"Anatomy/Head/Eyes", "Organ"},
    {"Anatomy/Vessels", "Vessel"},
    {"Anatomy/Vessels/Arteries", "Vessel"},
    {"Anatomy/Vessels/Veins", "Vessel"},
    {"Anatomy/Lesions", "Lesion"},
    {"Anatomy/Lesions/Lesion 1", "Lesion"},
};
constexpr Entry CURVE_ENTRIES[] = {
    {"Curves", "Signal"},
    {"Curves/Histograms", "Signal"},
    {"Curves/Histograms/Whole volume", "Signal"},
    {"Curves/Histograms/Current TAG", "Signal"},
    {"Curves/Profiles", "Signal"},
    {"Curves/Profiles/Profile 1", "Signal"},
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
    Build<Quorel_1D>(CURVE_ENTRIES, curves);
    Build<Quorel_3D>(STRUCTURE_ENTRIES, structures);
    Variable_Define_Pointer("$DB_1D_ROOT_PT", Root_1D());
    Variable_Define_Pointer("$DB_3D_ROOT_PT", Root_3D());
}

Class_Objects::~Class_Objects() {
    Variable_Define_Pointer("$DB_1D_ROOT_PT", nullptr);
    Variable_Define_Pointer("$DB_3D_ROOT_PT", nullptr);
}

}  // namespace workbench
