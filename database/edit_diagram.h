/** The diagram of the class tree editor: on which row and where each node, handle and line stands, and what is under a
 *  point. Serves drawing and locating alike, so that what is hit is what was painted. Draws nothing.
 *
 *  A node stands in a cell of a grid: its level is the column. A first child stands in its parent's row, every other
 *  node begins a row. Positions are tree points: pixels, x to the right from the tree's left, y downwards from its top.
 */
#pragma once

#include <cstddef>
#include <vector>

#include "database/db_list.h"
#include "database/tree_rows.h"

inline constexpr int EDIT_CELL_WIDTH = 330;  ///< pixels
inline constexpr int EDIT_CELL_HEIGHT = 50;
inline constexpr int EDIT_NODE_WIDTH = 250;  ///< the node's box: at the left and the lower edge of its cell
inline constexpr int EDIT_NODE_HEIGHT = 40;
inline constexpr int EDIT_MIDDLE_Y = 30;      ///< in a cell: the line of the handles and connectors
inline constexpr int EDIT_TOGGLE_X = 290;     ///< in a cell: middle of the expand toggle
inline constexpr int EDIT_ZONE_REACH = 10;    ///< pixels that a handle's zone reaches from its middle, inclusive
inline constexpr int EDIT_HANDLE_RADIUS = 6;  ///< pixels
inline constexpr int EDIT_TOGGLE_RADIUS = 8;  ///< pixels
inline constexpr int EDIT_BOTTOM_MARGIN = 5;  ///< pixels below the last row

// ---- codes

enum class Edit_Zone { Body, Parent_Handle, Children_Handle, Toggle };

/** A zone of a node as one number: 10 x index + zone. The body of record 0 is 0, as is no node at all. */
constexpr int Edit_Code(int record, Edit_Zone zone) {
    return 10 * record + static_cast<int>(zone);
}
constexpr int Edit_Code_Record(int code) {
    return code / 10;
}
constexpr Edit_Zone Edit_Code_Zone(int code) {
    return static_cast<Edit_Zone>(code % 10);
}

/** The first record has no parent handle; handles for children need children, the toggle two of them. */
bool Has_Edit_Zone(int record, const DB_List& node, Edit_Zone zone);

// ---- rows

/** Goes over the shown nodes from the top. A collapsed node's first child is shown, with what hangs on it; the
 *  subtrees of its other children are passed over. */
class Edit_Walk {
  public:
    Edit_Walk(int record_nb, const DB_List* list_pt) : list(list_pt), nb(list_pt != nullptr ? record_nb : 0) {}

    bool At_End() const { return record >= nb; }
    int Record() const { return record; }  ///< array index
    int Row() const { return row; }        ///< counted from 0
    const DB_List& Node() const { return list[record]; }
    /** The record before this one is its parent. */
    bool Is_First_Child() const { return Is_First_Child(record); }
    void Next();

  private:
    bool Is_First_Child(int of) const;
    bool Is_Shown(int of) const;

    const DB_List* list;
    int nb;
    int record = 0;
    int row = 0;
};

/** What the shown nodes take up. */
struct Edit_Extent {
    int row_nb = 0;
    int level_nb = 0;  ///< columns
};
/** Writes `row` of every record: the row of a shown node, else DB_ROW_NONE (also from row 65535 on). */
Edit_Extent Edit_Rows_Assign(int nb, DB_List* list_pt);

/** Sizes for the sliders. */
Tree_Extent Edit_Height_Extent(int row_nb, int box_height);
Tree_Extent Edit_Width_Extent(int level_nb, int space, int box_width);

// ---- positions

/** A node's cell, left and upper edge. The node needs a row. */
DB_Tree_Point Edit_Cell(const DB_List& node);
/** Middle of a handle or of the toggle; for Body the cell's left end of the middle line. */
DB_Tree_Point Edit_Zone_Point(const DB_List& node, Edit_Zone zone);

struct Edit_Line {
    DB_Tree_Point from;
    DB_Tree_Point to;
};

/** The connectors of the nodes of one walk. A branch's vertical line is made of pieces from child to child, so that a
 *  part of the diagram needs the lines of its own nodes and of those just below it only. */
class Edit_Lines {
  public:
    static constexpr int PER_NODE = 2;  ///< of one node
    /** The lines from the parent, or from the sibling above, to the node that a walk stands on; to be called for every
     *  node of the walk. @return how many */
    int Of(const Edit_Walk& walk, Edit_Line (&line)[PER_NODE]);

  private:
    static constexpr int LEVEL_MAX = 4096;   // the class view descends no further
    std::uint16_t last_row[LEVEL_MAX] = {};  // of the last node on a level
};

// ---- locating

/** What is under a point. */
struct Edit_Hit {
    bool on_node = false;  ///< tells record 0's body from no node
    int code = 0;
};
/** Uses the rows of the last Edit_Rows_Assign. */
Edit_Hit Edit_Hit_At(int nb, const DB_List* list_pt, const DB_Tree_Point& at);

// ---- marks

/** Which zones look different at the moment. */
struct Edit_Marks {
    int highlighted = 0;       ///< code under the pointer
    std::vector<int> dragged;  ///< codes of parent handles, ascending
    bool Is_Dragged(int code) const;
    /** The node itself is shown highlighted. */
    bool Is_Node_Highlighted(int record) const;
};
