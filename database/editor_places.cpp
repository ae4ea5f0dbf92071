#include "database/editor_places.h"

#include "database/edit_diagram.h"
#include "panels/protocol/host_variables.h"

namespace {

/** The diagram's own corner in the window. */
DB_Tree_Point Origin(const Tool_DB_List& editor) {
    const Boxs& box = editor.list_box;
    return {box.x + Host_Dimension("$INTERFACE_SPACE_DIM") - Tree_Pixels(editor.horizontal.value),
            box.y + box.height + Tree_Pixels(editor.vertical.value)};
}

bool Is_Editor(const Tool_DB_List& panel) {
    return (panel.mode & DB_MODE_EDIT) != 0 && panel.List_Pt() != nullptr;
}

}  // namespace

bool DB_Editor_Node_Box(const Tool_DB_List& editor, int record, DB_Node_Box* box) {
    if (!Is_Editor(editor) || record < 0 || record >= editor.Nb() || editor.List_Pt()[record].row == DB_ROW_NONE) {
        return false;
    }
    const DB_Tree_Point origin = Origin(editor);
    const DB_Tree_Point cell = Edit_Cell(editor.List_Pt()[record]);
    *box = {origin.x + cell.x, origin.y - cell.y - EDIT_CELL_HEIGHT, EDIT_NODE_WIDTH, EDIT_NODE_HEIGHT};
    return true;
}

int DB_Editor_Body_At(const Tool_DB_List& editor, int x, int y) {
    const Boxs& box = editor.list_box;
    if (!Is_Editor(editor) || x < box.x || x >= box.x + box.width || y < box.y || y >= box.y + box.height) {
        return -1;
    }
    const DB_Tree_Point origin = Origin(editor);
    const Edit_Hit hit = Edit_Hit_At(editor.Nb(), editor.List_Pt(), {x - origin.x, origin.y - y});
    return hit.on_node && Edit_Code_Zone(hit.code) == Edit_Zone::Body ? Edit_Code_Record(hit.code) : -1;
}
