// Class trees and the table of files.
#include <algorithm>
#include <cstdio>

#include "c_interface/code_page_text.h"
#include "c_interface/image_objects.h"
#include "c_interface/session.h"

using namespace c_interface;

namespace {

constexpr int DIMENSION_2D = 2;

/** A class or volume, whatever its dimension; null where it is not that one. */
struct Node {
    Quorel* object = nullptr;
    Quorel_1D* one = nullptr;
    Quorel_2D* two = nullptr;
    Quorel_3D* three = nullptr;
    int dimension = 0;
};

Node Node_Of(kit_handle handle) {
    Object* const object = Session::The().handles.Find(handle);
    Require(object != nullptr, KIT_ERROR_HANDLE, "the handle is not alive");
    Node node;
    if (object->kind == Kind::Volume) {
        node.two = &static_cast<Volume*>(object)->object;
        node.dimension = DIMENSION_2D;
    } else {
        const auto& made = Object_Of<Class>(handle);
        node = {nullptr, made.one.get(), made.two.get(), made.three.get(), made.dimension};
    }
    node.object = node.one != nullptr ? static_cast<Quorel*>(node.one)
                                      : (node.two != nullptr ? static_cast<Quorel*>(node.two) : node.three);
    return node;
}

Node Root_Of(int dimension) {
    Image_World& images = World();
    switch (dimension) {
        case 1:
            return {&images.root_1d, &images.root_1d, nullptr, nullptr, 1};
        case DIMENSION_2D:
            return {&images.root_2d, nullptr, &images.root_2d, nullptr, DIMENSION_2D};
        case 3:
            return {&images.root_3d, nullptr, nullptr, &images.root_3d, 3};
        default:
            throw Failure{KIT_ERROR_ARGUMENT, "dimension is not 1, 2 or 3"};
    }
}

Node Parent_Of(kit_handle parent, int dimension) {
    if (parent == 0) {
        return Root_Of(dimension);
    }
    const Node node = Node_Of(parent);
    Require(node.dimension == dimension, KIT_ERROR_ARGUMENT, "the parent is of another dimension");
    return node;
}

template <class Class_Object>
bool Insert(Class_Object& parent, Class_Object& child, int position) {
    const int nb = parent.Child_Get_Nb();
    const int old = parent.Child_Get_Id(&child);
    // The kit counts places as they are before the child leaves its old one; here they are those that result.
    const int place = position < 0 || position >= nb ? nb : (old >= 0 && old < position ? position + 1 : position);
    return parent.Child_Insert(place, &child) != 0;
}

bool Insert(const Node& parent, const Node& child, int position) {
    return child.one != nullptr   ? Insert(*parent.one, *child.one, position)
           : child.two != nullptr ? Insert(*parent.two, *child.two, position)
                                  : Insert(*parent.three, *child.three, position);
}

/** A moved object must not come to stand below itself: the kit would warn the user of it. */
template <class Class_Object>
bool Is_Below(const Class_Object* object, const Class_Object* ancestor) {
    for (; object != nullptr; object = object->Parent_Get_Pt()) {
        if (object == ancestor) {
            return true;
        }
    }
    return false;
}

bool Is_Below(const Node& object, const Node& ancestor) {
    return object.one != nullptr   ? Is_Below(object.one, ancestor.one)
           : object.two != nullptr ? Is_Below(object.two, ancestor.two)
                                   : Is_Below(object.three, ancestor.three);
}

template <class Class_Object>
std::pair<const Quorel*, int> Place_Of(const Class_Object* object) {
    const Class_Object* const parent = object->Parent_Get_Pt();
    return {parent, parent != nullptr ? parent->Child_Get_Id(object) : -1};
}

kit_handle Handle_Of_Object(const Quorel* object) {
    const Handle_Table& handles = Session::The().handles;
    for (const Kind kind : {Kind::Class, Kind::Volume}) {
        for (const kit_handle handle : handles.All(kind)) {
            if (object != nullptr && Node_Of(handle).object == object) {
                return handle;
            }
        }
    }
    return 0;
}

std::uint64_t Level_Of(int dimension) {
    return dimension == 1 ? UPDATE_LEVEL_1D : (dimension == DIMENSION_2D ? UPDATE_LEVEL_2D : UPDATE_LEVEL_3D);
}

template <class Class_Object>
std::unique_ptr<Class_Object> Made(const char* title, const char* name, const std::string& icon) {
    auto made = std::make_unique<Class_Object>();
    made->Title_Set(title != nullptr ? Page_Text(title).c_str() : nullptr);
    made->Name_Set(name != nullptr ? Page_Text(name).c_str() : nullptr);
    Require(icon.size() < sizeof made->icon, KIT_ERROR_ARGUMENT, "icon is longer than 63 bytes");
    std::snprintf(made->icon, sizeof made->icon, "%s", icon.c_str());
    return made;
}

}  // namespace

extern "C" {

kit_status kit_class_create(uint32_t dimension, const char* title, const char* name, const char* icon,
                            kit_handle parent, kit_handle* made) {
    return Call("kit_class_create", parent, [&] {
        Write_To<kit_handle>(made, 0);
        Require(dimension >= 1 && dimension <= 3, KIT_ERROR_ARGUMENT, "dimension is not 1, 2 or 3");
        const Node above = Parent_Of(parent, static_cast<int>(dimension));
        const std::string icon_file = icon != nullptr ? Page_Text(icon) : std::string();
        auto one = std::make_unique<Class>();
        one->dimension = static_cast<int>(dimension);
        if (dimension == 1) {
            one->one = Made<Quorel_1D>(title, name, icon_file);
        } else if (dimension == DIMENSION_2D) {
            one->two = Made<Quorel_2D>(title, name, icon_file);
        } else {
            one->three = Made<Quorel_3D>(title, name, icon_file);
        }
        Session& session = Session::The();
        const kit_handle handle = session.handles.Add(std::move(one));
        if (!Insert(above, Node_Of(handle), -1)) {
            session.handles.Take(handle);
            throw std::bad_alloc();
        }
        session.Announce(UPDATE_STRUCTURE | Level_Of(static_cast<int>(dimension)));
        *made = handle;
    });
}

kit_status kit_class_destroy(kit_handle handle) {
    return Destroy<Class>("kit_class_destroy", handle);
}

kit_status kit_class_move(kit_handle handle, kit_handle parent, int32_t position) {
    return Call("kit_class_move", handle, [&] {
        const Node node = Node_Of(handle);
        const Node above = Parent_Of(parent, node.dimension);
        Require(position >= -1, KIT_ERROR_ARGUMENT, "position is below -1");
        Require(!Is_Below(above, node), KIT_ERROR_ARGUMENT, "it would become its own ancestor");
        Require(Insert(above, node, position), KIT_ERROR_MEMORY, "no memory for another child");
        Session::The().Announce(UPDATE_STRUCTURE | Level_Of(node.dimension));
    });
}

kit_status kit_class_place(kit_handle handle, kit_handle* parent, int32_t* position) {
    return Call("kit_class_place", handle, [&] {
        const Node node = Node_Of(handle);
        const auto [above, place] = node.one != nullptr   ? Place_Of(node.one)
                                    : node.two != nullptr ? Place_Of(node.two)
                                                          : Place_Of(node.three);
        Write_To(parent, Handle_Of_Object(above));
        Write_To<int32_t>(position, place);
    });
}

kit_status kit_class_name(kit_handle handle, char* out, uint32_t room, uint32_t* needed) {
    return Call("kit_class_name", handle, [&] { Text_Out(Node_Of(handle).object->Name_Get(), out, room, needed); });
}

kit_status kit_class_select(kit_handle handle, int32_t selected) {
    return Call("kit_class_select", handle, [&] {
        Require(selected == 0 || selected == 1, KIT_ERROR_ARGUMENT, "selected is neither 0 nor 1");
        const Node node = Node_Of(handle);
        if (selected != 0) {
            node.object->Flag_Set_On(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
        } else {
            node.object->Flag_Set_Off(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
        }
        Session::The().Announce(UPDATE_SELECTION | Level_Of(node.dimension));
    });
}

kit_status kit_class_selected(kit_handle handle, int32_t* selected) {
    return Call("kit_class_selected", handle, [&] {
        const Quorel& object = *Node_Of(handle).object;
        Write_To<int32_t>(selected,
                          object.Flag_Get_Bit(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION) != 0 ? 1 : 0);
    });
}

kit_status kit_file_create(const char* path, kit_handle volume, kit_handle* file) {
    return Call("kit_file_create", volume, [&] {
        Write_To<kit_handle>(file, 0);
        Object_Of<Volume>(volume);
        auto made = std::make_unique<File>();
        made->path = Page_Text(path);
        made->volume = volume;
        Session& session = Session::The();
        Require(session.handles.All(Kind::File).size() < 65535, KIT_ERROR_STATE, "there are 65535 files already");
        const kit_handle handle = session.handles.Add(std::move(made));
        Files_Table_Make();
        session.Announce(UPDATE_STRUCTURE | UPDATE_SELECTION | UPDATE_LEVEL_2D);
        *file = handle;
    });
}

kit_status kit_file_destroy(kit_handle file) {
    return Destroy<File>("kit_file_destroy", file);
}

kit_status kit_file_access(kit_handle file, int32_t slice, int32_t allowed) {
    return Call("kit_file_access", file, [&] {
        auto& live = Object_Of<File>(file);
        Require(slice >= 0 && static_cast<std::size_t>(slice) < live.flags.size(), KIT_ERROR_ARGUMENT,
                "slice is not one of the file");
        Require(allowed == 0 || allowed == 1, KIT_ERROR_ARGUMENT, "allowed is neither 0 nor 1");
        live.flags[static_cast<std::size_t>(slice)] = allowed != 0 ? 0 : FILE_FLAG_NO_ACCESS;
        Session::The().Announce(UPDATE_STRUCTURE | UPDATE_SELECTION | UPDATE_LEVEL_2D);
    });
}

}  // extern "C"
