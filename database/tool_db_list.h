/** @file
 *  The database panel: a scrollable tree of check-box rows with "Select All" and "Select None", or, with DB_MODE_EDIT,
 *  the editor of the class tree.
 *
 *  Click, Keyboard and List_Select_To_DB call the host back (Fct_Update, Fct_Redraw, Fct_Change_Child), and a right
 *  press in the editor runs a dialog with a message loop of its own. The host may rebuild the panel meanwhile, and it
 *  may destroy it: the operation then returns without touching it, and does no more of what it was about. */
#pragma once

#include <memory>

#include "database/db_list.h"
#include "host/kit_dataset.h"
#include "host/kit_widgets.h"
#include "panels/protocol/kit_panels.h"
#include "panels/protocol/panel_life.h"

inline constexpr int DB_WARNING_LABELS = 2;  ///< the title " Warning!" and the alternating line

/** The records of a panel. Copies of a panel share them until one of the panels builds them anew. */
struct DB_Rows {
    int nb = 0;                  ///< records
    DB_List* list_pt = nullptr;  ///< of DB_List_Append; null without records
    DB_Rows() = default;
    KIT_PANELS_API ~DB_Rows();
    DB_Rows(const DB_Rows&) = delete;
    DB_Rows& operator=(const DB_Rows&) = delete;
};

/** Abstract: a view implements the three virtual operations. There is no virtual destructor: panels are destroyed as
 *  what they were made, and views add no members. */
class KIT_PANELS_API Tool_DB_List {
  public:
    Tool_DB_List();
    ~Tool_DB_List();
    Tool_DB_List(const Tool_DB_List& other);             ///< shares the records
    Tool_DB_List& operator=(const Tool_DB_List& other);  ///< shares the records

    /** Appends the record of `object` (null: the view's root) and those of its subtree.
     *  @param nb, list_pt the array, 0 and null or as DB_List_Append left it; grown by one record at a time. After a
     *  failed growth `*list_pt` is null and `*nb` keeps the count of what was lost
     *  @param level, parent of the first new record; @param object the class object to begin with
     *  @return class view: records appended; file view: 1; 0 when nothing was appended, or after a memory error */
    virtual unsigned short List_Create_From_DB(int* nb, DB_List** list_pt, int level, int parent, void* object) = 0;
    /** The host's selection into `state` of the leaves. */
    virtual void List_Select_From_DB(int nb, DB_List* list_pt) = 0;
    /** The checked leaves into the host's objects; asks the host to update and redraw. */
    virtual void List_Select_To_DB(int nb, DB_List* list_pt) = 0;

    /** Lays the panel out in the host's box. @return 1 */
    int Resize(Boxs* box);
    /** @return the height wanted for a tree of `rows` rows, pixels */
    int Height(unsigned short rows);
    /** Paints everything; in the editor the warning's line is another one with every call. */
    void Draw();
    /** A drag belongs to the panel in which it began: a release over another one ends nothing. A rename draws nothing
     *  by itself: the host's answer to its Fct_Update does. See above for what the host may do meanwhile.
     *  @return 1 when the event was taken, else 0 */
    int Click(int up_down);
    /** Hover, the marking of a range, moving rows in the editor, and scrolling while a drag is held beside the tree. A
     *  motion without buttons ends a drag that was released elsewhere.
     *  @return 1 when the event was taken or ended a drag, else 0 */
    int Motion(int up_down);
    /** Over the horizontal slider: that one; over the rest of the panel: the vertical one; forward goes up or left.
     *  @return 1, or 0 when the pointer is elsewhere */
    int Scroll(int delta);
    /** KEY_DELETE, by the low 16 bits of `key`, edits in edit mode while the pointer is inside the tree. See above for
     *  what the host may do meanwhile. @return 0: the host goes on handling the key */
    int Keyboard(int key);
    /** Takes buttons and sliders out of hover and pressed looks, and ends their drags. */
    void Leave();
    /** UPDATE_STRUCTURE rebuilds; UPDATE_WINDOW_CUR and UPDATE_SELECTION (with a level bit) read the selection anew. */
    void Update(unsigned __int64 flags);
    /** Frees the records of a panel, and ends a drag that it owns. */
    void List_Free(Tool_DB_List* list);

    Boxs panel_box;  ///< the whole panel
    Boxs spare_box;  ///< never laid out
    Boxs list_box;   ///< the tree
    ///@{
    Boxs top_zone;  ///< a drag held here scrolls the tree
    Boxs bottom_zone;
    Boxs left_zone;
    Boxs right_zone;
    ///@}
    Labels warning[DB_WARNING_LABELS];  ///< drawn in the editor only, in place of the buttons
    Sliders vertical;                   ///< pixels from the top of the tree
    Sliders horizontal;                 ///< pixels from its left
    ///@{
    Buttons select_all;  ///< sets or clears every check mark, of locked rows too: writing back skips those
    Buttons select_none;
    ///@}
    std::shared_ptr<DB_Rows> rows;  ///< null only after a failed allocation
    int mode = 0;                   ///< dimension and DB_MODE_* bits

    ///@{
    /** The records, 0 and null without memory; also null while Nb() > 0. */
    int Nb() const { return rows != nullptr ? rows->nb : 0; }
    DB_List* List_Pt() const { return rows != nullptr ? rows->list_pt : nullptr; }
    ///@}

  protected:
    Panel_Life life;  ///< for operations that call out

  private:
    bool Is_Editor() const { return (mode & DB_MODE_EDIT) != 0; }
    void Tree_Draw();
    void Tree_Click(int up_down);
    void Tree_Motion(int up_down);
    void Sliders_Draw();
    bool Slider_Takes(Sliders& slider, int up_down);
    bool Drag_Scroll();
    void Select_Every(Buttons& button, std::uint16_t check);
    void Show_Changed();
    void Rebuild(const Panel_Watch& watch);
    void Take_Window(const Panel_Watch& watch);
    bool Take_Selection(const Panel_Watch& watch);
};
