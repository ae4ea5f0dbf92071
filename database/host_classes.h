/** The host's class objects as the database panels use them: what differs between the dimensions, and the selection
 *  flags. */
#pragma once

#include "database/db_list.h"
#include "host/kit_dataset.h"

struct Classes_1D {
    using Object = Quorel_1D;
    static constexpr const char* ROOT = "$DB_1D_ROOT_PT";
    static constexpr int PLAIN = CLASS_PLAIN_1D;
    static constexpr unsigned __int64 LEVEL = UPDATE_LEVEL_1D;
    static const char* Icon(Object& object) { return object.Icon_Get(); }
};
struct Classes_2D {
    using Object = Quorel_2D;
    static constexpr const char* ROOT = "$DB_2D_ROOT_PT";
    static constexpr int PLAIN = CLASS_PLAIN_2D;
    static constexpr unsigned __int64 LEVEL = UPDATE_LEVEL_2D;
    static const char* Icon(Object& object) { return object.Icon_2D_Get(); }
};
struct Classes_3D {
    using Object = Quorel_3D;
    static constexpr const char* ROOT = "$DB_3D_ROOT_PT";
    static constexpr int PLAIN = CLASS_PLAIN_3D;
    static constexpr unsigned __int64 LEVEL = UPDATE_LEVEL_3D;
    static const char* Icon(Object& object) { return object.Icon_Get(); }
};

/** Calls `operation` with the classes of a mode word's dimension. @return false for another dimension: nothing done */
template <class Operation>
bool With_Classes(int mode, Operation operation) {
    switch (mode & DB_MODE_DIMENSION) {
        case 1:
            operation(Classes_1D{});
            return true;
        case 2:
            operation(Classes_2D{});
            return true;
        case 3:
            operation(Classes_3D{});
            return true;
        default:
            return false;
    }
}

inline bool Object_Is_Selected(const Quorel& object) {
    return object.Flag_Get_Bit(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION) != 0;
}

/** @param bits_on what selecting sets; deselecting clears FLAG_SELECTED alone */
inline void Object_Select(Quorel& object, bool on, int bits_on = FLAG_SELECTED) {
    if (on) {
        object.Flag_Set_On(bits_on, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
    } else {
        object.Flag_Set_Off(FLAG_SELECTED, FLAG_GROUP_SELECTION, FLAG_MASK_SELECTION);
    }
}
