/** Drawing of the class tree editor's diagram, for tool_db_edit.cpp. Windows only. */
#pragma once

#include "database/edit_diagram.h"
#include "database/tool_db_fct_paint.h"
#include "host/kit_dataset.h"

inline constexpr COLORREF EDIT_HIGHLIGHT_COLOR = RGB(230, 100, 100);
inline constexpr COLORREF EDIT_OUTLINE_COLOR = 0;
inline constexpr COLORREF EDIT_DRAGGED_COLOR = 65535;  ///< of the parent handle of a dragged node: yellow

/** A record as something to draw. */
struct Edit_Node {
    int record = 0;
    const DB_List* row = nullptr;
    const Quorel* object = nullptr;  ///< its class object
};

/** The class object of a record; null for another dimension than 1, 2 or 3. */
Quorel* Edit_Object_Of(int mode, const DB_List& record);

/** The view that the sliders show. */
Tree_View Edit_View_Of(const Boxs& box, const Sliders& horizontal, const Sliders& vertical);

/** Paints parts of the diagram, cut at the view's box, into a device context that Y_setup gave. */
class Edit_Painter {
  public:
    Edit_Painter(HDC on_dc, const Tree_View& of_view);

    /** Everything: the box's colour, the lines and the nodes that the view covers. */
    void Diagram(int mode, int nb, const DB_List* list_pt, const Edit_Marks& marks) const;
    /** The node's box, icon and texts, with its two handles in the colours of `marks`; the toggle stands beside it.
     *  Nothing when the view does not cover it: its position may be far beyond what a widget can have. */
    void Node(const Edit_Node& node, bool highlighted, const Edit_Marks& marks) const;
    void Circle(int x, int y, int radius, COLORREF pen, COLORREF fill) const;
    void Toggle(const DB_List& row, COLORREF fill, int kind) const;
    /** Inverting lines from the shown parent handles among `codes` to a point of the tree. A second time takes them
     * away. */
    void Drag_Lines(int nb, const DB_List* list_pt, const std::vector<int>& codes, const DB_Tree_Point& to) const;

  private:
    bool Is_Seen(const DB_Tree_Point& from, const DB_Tree_Point& to) const;
    bool Is_Node_Seen(const DB_List& row) const;
    POINT Place_Of(const DB_Tree_Point& point) const;
    void Lines(int nb, const DB_List* list_pt) const;
    void Box(const Edit_Node& node, bool highlighted) const;
    void Handle(const Edit_Node& node, Edit_Zone zone, const Edit_Marks& marks) const;
    COLORREF Fill_Of(int code, const Edit_Marks& marks) const;

    HDC dc;
    Tree_View view;
    Gdi_Region region;
    Clip_Guard clip;
};

/** How an expand toggle looks. */
int Edit_Toggle_Kind(const DB_List& row);
