/** What the editor asks of the host's class objects, call by call, and the fixture of its tests. Windows only. */
#pragma once

#include <initializer_list>
#include <string>

#include "tests/database/edit_scene.h"
#include "tests/database/host_calls.h"
#include "tests/database/typed_name.h"

namespace edit_calls {

inline int (*real_insert)(Quorel*, int, Quorel*) = nullptr;
inline int (*real_remove)(Quorel*, int) = nullptr;
inline void (*real_name)(Quorel*, const char*) = nullptr;

inline std::string Name(const Quorel* object) {
    return object != nullptr && object->Title_Get() != nullptr ? object->Title_Get() : "-";
}
inline int Insert(Quorel* parent, int position, Quorel* object) {
    Host_Calls::current->Add("insert(" + Name(parent) + ", " + std::to_string(position) + ", " + Name(object) + ")");
    return real_insert(parent, position, object);
}
inline int Remove(Quorel* parent, int position) {
    Host_Calls::current->Add("remove(" + Name(parent) + ", " + std::to_string(position) + ")");
    return real_remove(parent, position);
}
inline void Name_Set(Quorel* object, const char* text) {
    Host_Calls::current->Add("name(" + Name(object) + ", " + text + ")");
    real_name(object, text);
}

}  // namespace edit_calls

/** Adds the tree operations and Name_Set to the calls that are written down. */
class Tree_Calls : public Host_Calls {
  public:
    Tree_Calls()
        : insert("", "Kit_Dataset.dll", "_ZN6Quorel11Tree_InsertEiPS_", reinterpret_cast<void*>(&edit_calls::Insert)),
          remove("", "Kit_Dataset.dll", "_ZN6Quorel11Tree_RemoveEi", reinterpret_cast<void*>(&edit_calls::Remove)),
          name("", "Kit_Dataset.dll", "_ZN6Quorel8Name_SetEPKc", reinterpret_cast<void*>(&edit_calls::Name_Set)) {
        EXPECT_TRUE(insert.Is_Set() && remove.Is_Set() && name.Is_Set());
        edit_calls::real_insert = reinterpret_cast<decltype(edit_calls::real_insert)>(insert.Original());
        edit_calls::real_remove = reinterpret_cast<decltype(edit_calls::real_remove)>(remove.Original());
        edit_calls::real_name = reinterpret_cast<decltype(edit_calls::real_name)>(name.Original());
    }
    template <class Objects>
    void Name_All(const Objects& objects) {
        for (const auto& object : objects) {
            Host_Calls::Name(object.get(), object->Title_Get());
        }
    }

  private:
    Import_Hook insert;
    Import_Hook remove;
    Import_Hook name;
};

/** The calls after a change of a parent. */
inline Calls Told(const std::string& object, const std::string& update, const std::string& redraw) {
    return {"on(" + object + ", 0x50, 8, 268435456)", "update(" + update + ", -, -, -)",
            "redraw(" + redraw + ", -, -, -)"};
}
inline Calls Together(std::initializer_list<Calls> parts) {
    Calls all;
    for (const Calls& part : parts) {
        all.insert(all.end(), part.begin(), part.end());
    }
    return all;
}

inline constexpr int EDIT_WIDTH = 900;
inline constexpr int EDIT_HEIGHT = 420;

class Tool_DB_Edit_Test : public Edit_Scene<Scene_2D> {
  protected:
    Tool_DB_Edit_Test() : Edit_Scene(EDIT_WIDTH, EDIT_HEIGHT) { typed_name = {}; }
    ~Tool_DB_Edit_Test() override { typed_name = {}; }
};
