/** Changes of a tree of class objects, by the tree operations of the objects alone. Draws nothing and tells nobody.
 *
 *  `Object` is a class with the tree operations of Quorel_Tree. An operation of it may refuse, or fail for want of
 *  memory: no object is lost then.
 */
#pragma once

/** Whether an object hangs below another one or is that one. The pointer looked for is compared only: it may be of an
 *  object that is no more. @param level_most descends no further */
template <class Object>
bool Class_Is_Below(const Object* object, const Object* wanted, int level_most) {
    if (object == nullptr || object == wanted) {
        return object != nullptr;
    }
    for (int i = 0; level_most > 0 && i < object->Child_Get_Nb(); ++i) {
        if (Class_Is_Below<Object>(object->Child_Get_Pt(i), wanted, level_most - 1)) {
            return true;
        }
    }
    return false;
}

/** Appends an object to the children of another one. An object that is asked below itself is the host's to refuse.
 *  @return false when it is the only child already: nothing was done */
template <class Object>
bool Class_Append(Object& object, Object& target) {
    if (target.Child_Get_Nb() == 1 && target.Child_Get_Pt(0) == &object) {
        return false;
    }
    if (Object* const parent = object.Parent_Get_Pt(); parent != nullptr) {
        parent->Child_Remove(&object);
    }
    target.Child_Add(&object);
    return true;
}

/** Moves the children of an object behind it in its parent, in order. @return false, with everything as before, when
 *  there was no room for one of them */
template <class Object>
bool Class_Children_Hand_On(Object& object, Object& parent, int position) {
    int moved_nb = 0;
    for (int i = object.Child_Get_Nb() - 1; i >= 0; --i) {
        Object* const child = object.Child_Get_Pt(i);
        object.Child_Remove(i);
        if (child == nullptr) {
            continue;  // nothing that could go anywhere
        }
        parent.Child_Insert(position + 1, child);
        if (child->Parent_Get_Pt() == &parent) {
            ++moved_nb;
            continue;
        }
        if (child->Parent_Get_Pt() == nullptr) {
            object.Child_Insert(i, child);
        }
        for (; moved_nb > 0; --moved_nb) {
            Object* const back = parent.Child_Get_Pt(position + 1);
            parent.Child_Remove(position + 1);
            object.Child_Add(back);
        }
        return false;
    }
    return true;
}

/** Takes an object out of the tree, its children into its place. It lives on, without a parent.
 *  @param before_removal called as before_removal(parent) when only the object itself is still to go
 *  @return false, with everything as before, when it has no parent or could not go */
template <class Object, class Before_Removal>
bool Class_Take_Out(Object& object, Before_Removal before_removal) {
    Object* const parent = object.Parent_Get_Pt();
    if (parent == nullptr) {
        return false;
    }
    // Without the link first: whoever looks at the object meanwhile sees it taken out.
    object.Parent_Set_Pt(nullptr);
    const int position = parent->Child_Get_Id(&object);
    if (position < 0 || !Class_Children_Hand_On(object, *parent, position)) {
        object.Parent_Set_Pt(parent);
        return false;
    }
    before_removal(*parent);
    parent->Child_Remove(position);
    return true;
}
