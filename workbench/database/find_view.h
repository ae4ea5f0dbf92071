/** What a find field found: the rows of another view that match, as one flat list. */
#pragma once

#include <string>
#include <vector>

#include "workbench/database/find_words.h"
#include "workbench/database/leaf_view.h"

namespace workbench {

/** Lists the leaves of another view that match by their texts, their modality or the branches above them. Each row says
 *  in extra columns where in the tree it is, and of what modality. After a change of source or words the caller has the
 *  panel rebuild: Update(UPDATE_STRUCTURE). */
class Find_View : public Leaf_View {
  public:
    /** @param typed words between blanks; all must occur. None: no row is listed */
    void Words_Set(const std::string& typed) { words = Find_Words(typed); }

  protected:
    bool List_Rows(int* nb, DB_List** list_pt) override;
    bool Is_Without_Rows() const override { return words.Is_Empty(); }

  private:
    bool List_Row(int at, const std::vector<int>& branches, int* nb, DB_List** list_pt);

    Find_Words words;
};

}  // namespace workbench
