/** What a drawing of a tree needs to know of all its records, found in one pass over them: a million records are a
 *  hundred megabytes, and reading them is what a redraw costs. Draws nothing.
 */
#pragma once

#include <vector>

#include "database/text_widths.h"
#include "database/tree_rows.h"

/** A displayed record from which a walk can begin. */
struct Tree_Start {
    int record = 0;
    int row = 0;
    Tree_Lines lines;  ///< of the displayed records before
};

struct Tree_Layout {
    int row_nb = 0;  ///< displayed rows
    int width = 0;   ///< of the widest row, pixels; 0 without memory for the columns, whose old places then stay
    std::vector<Tree_Start> starts;  ///< some, in order; not the first record; fewer, or none, without memory

    /** The nearest start at or above a row. */
    Tree_Start Start_For(int row) const;
};

/** Writes what Tree_Rows_Number and Tree_Width_Measure write.
 *  @param space "$INTERFACE_SPACE_DIM" */
Tree_Layout Tree_Lay_Out(int nb, DB_List* list_pt, int space, Text_Widths& widths, Text_Measurer& measurer);
