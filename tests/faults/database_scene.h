/** Class objects and loaded files of a host, made anew as often as an editor has changed them. */
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "tests/database/file_scene.h"

/** root(a(b, c(d, e), f), g), and one class more for each of `more`. */
class Class_Scene {
  public:
    explicit Class_Scene(int more = 0) {
        Quorel_2D* const root = Class(nullptr, "root");
        Quorel_2D* const a = Class(root, "a");
        Class(a, "b");
        Quorel_2D* const c = Class(a, "c");
        Class(c, "d");
        Class(c, "e");
        Class(a, "f");
        Class(root, "g");
        for (int i = 0; i < more; i++) {
            Class(objects[static_cast<std::size_t>(i)].get(), "class " + std::to_string(i));
        }
        Variable_Define_Pointer("$DB_2D_ROOT_PT", root);
    }
    ~Class_Scene() { Variable_Define_Pointer("$DB_2D_ROOT_PT", nullptr); }
    Class_Scene(const Class_Scene&) = delete;
    Class_Scene& operator=(const Class_Scene&) = delete;

    std::vector<std::unique_ptr<Quorel_2D>> objects;

  private:
    Quorel_2D* Class(Quorel_2D* parent, const std::string& title) {
        objects.push_back(std::make_unique<Quorel_2D>());
        Quorel_2D* const object = objects.back().get();
        object->Title_Set(title.c_str());
        object->Name_Set(("name of " + title).c_str());
        if (parent != nullptr) {
            parent->Child_Add(object);
        }
        return object;
    }
};

/** Two folders with three files. */
inline void File_Scene_Fill(File_Scene& scene) {
    scene.Add_File("a\\x.dcm", 3);
    scene.Add_File("b\\y.dcm", 1);
    scene.Add_File("b\\z.dcm", 8);
    scene.Add_Object(scene.files[0].frames[1]);
    scene.Add_Object(scene.files[2].frames[0]);
}
