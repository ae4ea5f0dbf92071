/** Between the class objects of the kit and a tree as plain data. */
#pragma once

#include <functional>
#include <string>

#include "workbench/model/class_tree.h"

namespace workbench {

/** The tree below a root object. @param id_of gives each object its id; one without an id is left out with what hangs
 * on it. @param name_of gives its name as the tree is to have it */
template <class Object>
Class_Tree Class_Tree_Read(const Object& root, const std::function<std::string(const Object&)>& id_of,
                           const std::function<std::string(const Object&)>& name_of) {
    Class_Tree tree(id_of(root), name_of(root));
    const auto add = [&](const auto& self, const Object& parent, const std::string& parent_id) -> void {
        for (int i = 0; i < parent.Child_Get_Nb(); ++i) {
            const Object* const child = parent.Child_Get_Pt(i);
            const std::string id = child != nullptr ? id_of(*child) : std::string();
            if (!id.empty() && tree.Add(id, name_of(*child), parent_id)) {
                self(self, *child, id);
            }
        }
    };
    add(add, root, tree.Root());
    return tree;
}

/** Does an action of a step to the objects. @param object_of gives the object of an id, null: unknown. @return false:
 *  an object is missing, or the kit refused; then nothing was changed */
template <class Object>
bool Class_Action_Do(const Class_Action& action, const std::function<Object*(const std::string&)>& object_of,
                     const std::function<void(Object&, const std::string&)>& name_set) {
    if (const auto* const rename = std::get_if<Class_Rename>(&action)) {
        Object* const object = object_of(rename->id);
        if (object != nullptr) {
            name_set(*object, rename->after);
        }
        return object != nullptr;
    }
    const auto& move = std::get<Class_Move>(action);
    Object* const object = object_of(move.id);
    Object* const parent = move.to.parent.empty() ? nullptr : object_of(move.to.parent);
    if (object == nullptr || (parent == nullptr && !move.to.parent.empty())) {
        return false;
    }
    if (Object* const former = object->Parent_Get_Pt(); former != nullptr) {
        former->Child_Remove(object);
    }
    return parent == nullptr || parent->Child_Insert(move.to.position, object) != 0;
}

}  // namespace workbench
