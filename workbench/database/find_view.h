/** What a find field found: the rows of another view that match, as one flat list. */
#pragma once

#include <string>
#include <vector>

#include "database/tool_db_list.h"
#include "workbench/database/find_words.h"

namespace workbench {

/** Lists the leaves of another view that match by their texts, their modality or the branches above them. Each row says
 *  in extra columns where in the tree it is, and of what modality.
 *
 *  Checking listed rows leaves the selection of leaves that are not listed as it is. After a change of source or words
 *  the caller has the panel rebuild: Update(UPDATE_STRUCTURE). */
class Find_View : public Tool_DB_List {
  public:
    Find_View() = default;
    ~Find_View();
    Find_View(const Find_View&) = delete;
    Find_View& operator=(const Find_View&) = delete;

    /** The view whose rows are searched; its mode is taken over. Null: none. It must outlive this one; its panel is not
     *  touched. */
    void Source_Set(Tool_DB_List* view);
    /** @param typed words between blanks; all must occur. None: no row is listed */
    void Words_Set(const std::string& typed) { words = Find_Words(typed); }
    /** The source's record that a listed row stands for, -1: none. */
    int Source_Row(int listed) const;

    unsigned short List_Create_From_DB(int* nb, DB_List** list_pt, int level, int parent, void* object) override;
    void List_Select_From_DB(int nb, DB_List* list_pt) override;
    void List_Select_To_DB(int nb, DB_List* list_pt) override;

  private:
    void Source_Free();
    /** The source's records with the host's selection. @return false: there are none for these rows */
    bool Source_Read(int nb, const DB_List* list_pt);
    bool List_Row(int at, const std::vector<int>& branches, int* nb, DB_List** list_pt);

    Tool_DB_List* source = nullptr;
    Find_Words words;
    int all_nb = 0;  ///< all records of the source
    DB_List* all = nullptr;
    std::vector<int> found;  ///< records that are listed
};

}  // namespace workbench
