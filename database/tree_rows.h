/** Which records of a tree stand on which display rows, and where the rows lie. Serves the drawing, hit-testing, range
 *  selection and the slider sizes alike, so that what is clicked is what was drawn. Draws nothing.
 */
#pragma once

#include <bitset>

#include "database/db_list.h"

inline constexpr int DB_ROW_HEIGHT = 18;   ///< pixels of a row
inline constexpr int DB_INDENTATION = 20;  ///< pixels per level

/** A point of the tree: x to the right from its left, y downwards from its top, pixels. */
struct DB_Tree_Point {
    int x = 0;
    int y = 0;
};

// ---- rows

/** Goes over the displayed records from the top: a collapsed record's subtree is passed over in one step. */
class Tree_Walk {
  public:
    Tree_Walk(int record_nb, const DB_List* list_pt) : Tree_Walk(record_nb, list_pt, 0, 0) {}
    /** From the displayed record `from_record` on, whose row is `from_row`. */
    Tree_Walk(int record_nb, const DB_List* list_pt, int from_record, int from_row)
        : list(list_pt), nb(list_pt != nullptr ? record_nb : 0), record(from_record), row(from_row) {}

    bool At_End() const { return record >= nb; }
    int Record() const { return record; }  ///< array index
    int Row() const { return row; }        ///< counted from 0; at the end the number of displayed rows
    /** The displayed record after this one. */
    void Next() {
        record = Next_Record();
        row++;
    }
    /** Where Next goes: the records between are hidden. At most the number of records, whatever `desc_nb` says. */
    int Next_Record() const {
        const DB_List& at = list[record];
        const int hidden = (at.flag & DB_FLAG_EXPANDED) != 0 ? 0 : at.desc_nb;
        return hidden < nb - record - 1 ? record + 1 + hidden : nb;
    }

  private:
    const DB_List* list;
    int nb;
    int record;
    int row;
};

/** What a record's `row` says of a display row: DB_ROW_NONE from 65535 on. */
inline std::uint16_t Tree_Row_Number(int row) {
    return static_cast<std::uint16_t>(row < DB_ROW_NONE ? row : DB_ROW_NONE);
}

/** Writes `row` of every record: its display row, or DB_ROW_NONE in a collapsed branch and from row 65535 on.
 *  @return the number of displayed rows */
int Tree_Rows_Number(int nb, DB_List* list_pt);

/** The record whose `row` is `row`, as the last numbering wrote it, looked for from the record `from` on; -1: none.
 *  Passes at least as many records in a step as rows are missing. */
int Tree_Row_Find(int nb, const DB_List* list_pt, int row, int from = 0);

/** Flips the check mark of the rows between two rows, in either order; every flipped record hands its whole `state` to
 *  its subtree, which counts as done. Ends at a row without a record, and at the first collapsed branch that is
 *  flipped: the rows of its hidden records lie beyond every other. Marks of branches are left to DB_List_Set_State. */
void Tree_Range_Flip(int nb, DB_List* list_pt, int row_a, int row_b);

/** Unchecks every record. */
void Tree_Uncheck(int nb, DB_List* list_pt);

/** For the lines on the left of a row: at which levels the branch goes on below. Levels of 100 and more have no lines.
 */
class Tree_Lines {
  public:
    static constexpr int LEVEL_MAX = 100;
    /** A displayed record was passed. */
    void Pass(const DB_List& record) {
        if (record.level < LEVEL_MAX) {
            goes_on.set(record.level, (record.flag & DB_FLAG_LAST) == 0);
        }
    }
    /** The last passed record of this level is not the last child of its parent. */
    bool Goes_On(int level) const {
        return level >= 0 && level < LEVEL_MAX && goes_on[static_cast<std::size_t>(level)];
    }

  private:
    std::bitset<LEVEL_MAX> goes_on;
};

// ---- positions

/** A slider's position in whole pixels, truncated; whatever is no number or out of all bounds is brought into them. */
int Tree_Pixels(float position);

/** Row and column under a point of the tree, truncated toward zero. A row takes the 9 pixels above its middle line and
 *  the 8 below; a column is one indentation wide. */
int Tree_Row_At(int y);
int Tree_Column_At(int x);

/** Distance of a row's middle line from the top of the tree, pixels. */
int Tree_Row_Middle(int row);

/** What a slider shows: all of it, or a part. */
struct Tree_Extent {
    bool fits = false;
    int visible = 0;
    int total = 0;
    int Maximum() const { return total - visible; }
};
Tree_Extent Tree_Height_Extent(int row_nb, int box_height);
Tree_Extent Tree_Width_Extent(int tree_width, int space, int box_width);
