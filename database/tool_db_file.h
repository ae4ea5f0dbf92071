/** @file
 *  The file view: folders, loaded image files and their frames. */
#pragma once

#include "database/tool_db_list.h"

/** Tool_DB_List over the host's table of files. */
class KIT_PANELS_API Tool_DB_File : public Tool_DB_List {
  public:
    /** @param mode_word DB_MODE_* bits. Files have no place in the class tree: with DB_MODE_EDIT the editor finds no
     *  classes and changes nothing. */
    explicit Tool_DB_File(int mode_word);
    ~Tool_DB_File();
    Tool_DB_File(const Tool_DB_File& other);             ///< shares the records
    Tool_DB_File& operator=(const Tool_DB_File& other);  ///< shares the records
    /** `level`, `parent` and `object` are not used: the whole table is listed, as many entries as the low 16 bits of
     *  "$DB_2D_FILE_NB" say. */
    unsigned short List_Create_From_DB(int* nb, DB_List** list_pt, int level, int parent, void* object) override;
    void List_Select_From_DB(int nb, DB_List* list_pt) override;
    /** Without "$WINDOW_CUR" nothing is done. Calls the host back after each object that changes. */
    void List_Select_To_DB(int nb, DB_List* list_pt) override;
};
