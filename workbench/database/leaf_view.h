/** A view of the leaves of another view, in another order or a part of them. */
#pragma once

#include <vector>

#include "database/tool_db_list.h"

namespace workbench {

/** Checking listed rows leaves the selection of leaves that are not listed as it is. */
class Leaf_View : public Tool_DB_List {
  public:
    Leaf_View() = default;
    ~Leaf_View();
    Leaf_View(const Leaf_View&) = delete;
    Leaf_View& operator=(const Leaf_View&) = delete;

    /** The view whose leaves are listed; its mode is taken over. Null: none. It must outlive this one; its panel is not
     *  touched. */
    void Source_Set(Tool_DB_List* view);
    /** The source's record that a listed row stands for, -1: none. */
    int Source_Row(int listed) const;

    unsigned short List_Create_From_DB(int* nb, DB_List** list_pt, int level, int parent, void* object) override;
    void List_Select_From_DB(int nb, DB_List* list_pt) override;
    void List_Select_To_DB(int nb, DB_List* list_pt) override;

  protected:
    /** Appends the rows by Leaf_Append and Branch_Append. @return false without memory; std::bad_alloc means the same
     */
    virtual bool List_Rows(int* nb, DB_List** list_pt) = 0;
    /** Nothing is to be listed whatever the source holds. */
    virtual bool Is_Without_Rows() const { return false; }

    /** All records of the source, in its order, with the host's selection. */
    const DB_List* Source() const { return all; }
    int Source_Nb() const { return all_nb; }
    /** Appends the row of a source's leaf, without its texts. @return null without memory, reported */
    DB_List* Leaf_Append(int source_row, int* nb, DB_List** list_pt);
    /** Appends a row that stands for no leaf; its subtree is counted by the caller. @return as Leaf_Append */
    DB_List* Branch_Append(int* nb, DB_List** list_pt);

  private:
    void Source_Free();
    /** The source's records with the host's selection. @return false: there are none for these rows */
    bool Source_Read(int nb, const DB_List* list_pt);

    Tool_DB_List* source = nullptr;
    int all_nb = 0;  ///< all records of the source
    DB_List* all = nullptr;
    std::vector<int> source_rows;  ///< of every listed row; NO_LEAF: a branch
};

}  // namespace workbench
