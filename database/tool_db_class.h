/** @file
 *  The class view: the hierarchy of the host's 1D, 2D or 3D class objects. */
#pragma once

#include "database/tool_db_list.h"

/** Tool_DB_List over the classes of the mode word's dimension; its editor is for this view. */
class KIT_PANELS_API Tool_DB_Class : public Tool_DB_List {
  public:
    /** @param mode_word the dimension (1, 2 or 3) and DB_MODE_* bits */
    explicit Tool_DB_Class(int mode_word);
    ~Tool_DB_Class();
    Tool_DB_Class(const Tool_DB_Class& other);             ///< shares the records
    Tool_DB_Class& operator=(const Tool_DB_Class& other);  ///< shares the records
    /** 0 also without a root object, for another dimension, and from level DB_LEVEL_MOST on. */
    unsigned short List_Create_From_DB(int* nb, DB_List** list_pt, int level, int parent, void* object) override;
    void List_Select_From_DB(int nb, DB_List* list_pt) override;
    /** Without a root object, and for 2D classes without "$WINDOW_CUR", nothing is done. Calls the host back: for 2D
     *  classes also Fct_Change_Child with each checked leaf. */
    void List_Select_To_DB(int nb, DB_List* list_pt) override;
};
