/** The column of panels at the left: a heading per panel, which folds it away. */
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "workbench/model/scroll_thumb.h"
#include "workbench/panel_host.h"

namespace workbench {

inline constexpr int TOOL_AREA_WIDTH = 452;  ///< pixels at 96 dots per inch, where the window has room

class Tool_Area : public Window_Base {
  public:
    explicit Tool_Area(const Look& shared_look) : look(shared_look) {}
    bool Make(HWND parent);
    /** Adds a panel below the others. @return its window, owned by the area */
    Panel_Host* Add(const wchar_t* title, Hosted_Panel& panel, Window_Axis axis,
                    std::function<void(int, int)> on_click);
    /** Lets a panel take the room that is left, up to so many pixels. */
    void Stretch(const Panel_Host* panel, int most);
    /** The text at the right of a panel's heading. */
    void Note_Set(const Panel_Host* panel, const std::wstring& note);
    /** Places all panels anew, for example after a change of the look. */
    void Lay_Out();
    void Update(unsigned __int64 flags);

    // The panels by their numbers, in the order in which they were added.
    int Panel_Nb() const { return static_cast<int>(sections.size()); }
    /** Marks the panel that the keyboard acts on and scrolls to it; -1: none. */
    void Focus_Set(int panel);
    /** Headings for screen readers. */
    void Accessible_Names();
    /** Bit per panel, the first one lowest. */
    unsigned int Folded() const;
    void Folded_Set(unsigned int bits);
    void Fold_Toggle(int panel);
    /** The panel under a point of the screen; null: none. */
    Panel_Host* Panel_At(POINT screen) const;
    /** The wheel over the area but over no panel: scrolls the area itself. */
    void Wheel(int delta);

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override;

  private:
    struct Section {
        std::wstring title;
        std::wstring note;
        std::unique_ptr<Panel_Host> host;
        bool is_folded = false;
        int stretch_most = 0;  ///< 0: keeps the height that it wants
        RECT heading = {};
    };
    void Paint();
    LONG Section_Bottom(const Section& section) const;
    void Draw_Heading(HDC dc, const Section& section, bool is_hovered) const;
    void Press(POINT point);
    void Hover(int section);
    int Content_Height() const;
    /** The scroll bar at the right; without width when everything has room. */
    RECT Bar() const;
    void Draw_Bar(HDC dc) const;
    void Bar_Press(int y);
    void Bar_Release();
    void Scroll_To(int offset);

    const Look& look;
    std::vector<Section> sections;
    int hovered = -1;
    int focused = -1;
    Scroll_Extent scroll;
    Scroll_Wheel wheel;
    int grip = -1;  ///< where the dragged thumb is held, pixels from its top; -1: it is not
};

}  // namespace workbench
