/** The class view: the hierarchy of the host's 1D, 2D or 3D class objects. */
#pragma once

#include "database/tool_db_list.h"

class KIT_PANELS_API Tool_DB_Class : public Tool_DB_List {
  public:
    explicit Tool_DB_Class(int mode_word);
    unsigned short List_Create_From_DB(int* nb, DB_List** list_pt, int level, int parent, void* object) override;
    void List_Select_From_DB(int nb, DB_List* list_pt) override;
    void List_Select_To_DB(int nb, DB_List* list_pt) override;
};
