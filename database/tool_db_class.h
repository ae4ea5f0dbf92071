/** @file
 *  The class view: the hierarchy of the host's 1D, 2D or 3D class objects. */
#pragma once

#include "database/tool_db_list.h"

/** Tool_DB_List over the classes of the mode word's dimension; its editor is for this view. */
class KIT_PANELS_API Tool_DB_Class : public Tool_DB_List {
  public:
    /** @param mode_word the dimension (1, 2 or 3) and DB_MODE_* bits */
    explicit Tool_DB_Class(int mode_word);
    unsigned short List_Create_From_DB(int* nb, DB_List** list_pt, int level, int parent, void* object) override;
    void List_Select_From_DB(int nb, DB_List* list_pt) override;
    void List_Select_To_DB(int nb, DB_List* list_pt) override;
};
