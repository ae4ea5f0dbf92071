/** The upper end of the database column: tabs of the views, the find field's box, buttons. Where they lie, what they
 *  look like, what is under a point. No window of its own; rectangles are in pixels of the column's window. */
#pragma once

#include <windows.h>

#include <string>

#include "workbench/look.h"

namespace workbench {

/** What the column shows. */
enum class Database_View { Files, Classes_2D, Classes_3D, Classes_1D, Patients };
inline constexpr int DATABASE_VIEW_NB = 5;

class Database_Strip {
  public:
    enum class Part { None, Edge, Find, Tab, Expand, Collapse, Edit };
    struct Hit {
        Part part = Part::None;
        Database_View view = Database_View::Files;  ///< of a tab
    };
    static constexpr int BUTTON_NB = 3;  ///< expand all, collapse all, edit
    static constexpr int EDIT_BUTTON = BUTTON_NB - 1;

    explicit Database_Strip(const Look& shared_look) : look(shared_look) {}

    /** @param at from the left @return the view that it stands for */
    static Database_View Tab_View(int at);
    static const wchar_t* Tab_Name(int at);
    static const wchar_t* Button_Name(int at);

    /** Pixels from the top to where the panels begin. */
    int Height() const;
    /** Pixels from the left to where everything begins; the edge, by which the column is made wider, is part of it. */
    int Left() const;
    bool Is_Edge(POINT point) const;
    /** @param client of the column, here and below; @param at from the left */
    RECT Tab(const RECT& client, int at) const;
    RECT Button(const RECT& client, int at) const;
    /** The frame around the find field. */
    RECT Find_Box(const RECT& client) const;
    Hit Part_At(const RECT& client, POINT point) const;
    void Paint(HDC dc, const RECT& client, Database_View shown, bool is_editor, bool is_find_focused) const;

  private:
    const Look& look;
};

}  // namespace workbench
