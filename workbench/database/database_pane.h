/** The column at the right: the loaded files and the class trees as database panels, a find field, and the editor of
 *  the class trees. */
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>

#include "database/tool_db_class.h"
#include "database/tool_db_file.h"
#include "workbench/database/database_strip.h"
#include "workbench/database/find_view.h"
#include "workbench/database/keyed_tree.h"
#include "workbench/database/patient_view.h"

namespace workbench {

inline constexpr int DATABASE_WIDTH_LEAST = 240;  ///< of the column, pixels at 96 dots per inch

/** What the column needs of the application. */
struct Database_Host {
    std::function<void(const std::function<void()>&)>
        run;                                             ///< runs an event of a panel: what it asks for is done after
    std::function<bool(const std::string&)> may_remove;  ///< asks before a class is taken out of its tree
    std::function<void(int)> width_set;                  ///< the user drags the column's left edge
    std::function<void()> changed;                       ///< view or editor was switched
    Patient_View::Origin_Of origin_of;                   ///< whose images a file holds
};

class Database_Pane : public Window_Base {
  public:
    Database_Pane(const Look& shared_look, Database_Host application);
    ~Database_Pane() override;
    bool Make(HWND parent);

    /** Places everything anew, for example after a change of the look. */
    void Lay_Out();
    /** To all panels, also to those that are hidden. */
    void Update(unsigned __int64 flags);

    void View_Set(Database_View wanted);
    Database_View View() const { return view; }
    /** The editor in place of the check-box tree; the files have none. */
    void Editor_Set(bool on);
    bool Is_Editor() const { return is_editor; }
    /** The editor itself is what the column shows, not files or what the find field found. */
    bool Is_Editor_Shown() const { return Shown() >= EDITOR_FIRST && Shown() < FIND; }
    void Expand_All(bool open);
    /** Puts the keyboard into the find field. */
    void Find_Begin();
    const std::wstring& Find_Text() const { return find_text; }

    /** The panel under a point of the screen; null: none. */
    Panel_Host* Panel_At(POINT screen) const;
    /** The panel shown. */
    Tool_DB_List& Panel() { return *panels[static_cast<std::size_t>(Shown())].panel; }
    HWND Panel_Window() const;
    /** A key for the panel shown, wherever the pointer is. @return true when it used the key */
    bool Key(int key);
    /** The mark of what the keyboard acts on. */
    void Focus_Set(bool on);
    /** Names for screen readers. */
    void Accessible_Names();
    /** Keys of the find field. @return true: the message is used up */
    bool Key_Message(const MSG& message);

  protected:
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam) override;

  private:
    /** Runs the panel's events through the application. */
    class Relay;
    struct Hosted {
        std::shared_ptr<Tool_DB_List> panel;  // shared: it deletes the panel as what it was made
        std::unique_ptr<Keyed_Tree> tree;
        std::unique_ptr<Hosted_Panel> relay;
        std::unique_ptr<Panel_Host> host;
        unsigned __int64 pending = UPDATE_STRUCTURE | UPDATE_WINDOW_CUR;  ///< what it has not been told yet
    };
    static constexpr int EDITOR_FIRST = DATABASE_VIEW_NB;  // editors of 2D, 3D, 1D
    static constexpr int EDITOR_NB = 3;
    static constexpr int FIND = EDITOR_FIRST + EDITOR_NB;  // what the find field found
    static constexpr int PANEL_NB = FIND + 1;

    void Panel_Make(int at, std::shared_ptr<Tool_DB_List> panel);
    bool Is_Of_Classes() const { return view != Database_View::Files && view != Database_View::Patients; }
    int Shown() const;
    void Show_Panel();
    void Find_Changed();
    void Paint();
    void Press(POINT point);

    const Look& look;
    Database_Strip strip;
    Database_Host host;
    std::array<Hosted, PANEL_NB> panels;
    Find_View* found = nullptr;           // the last panel
    const Hosted* after_event = nullptr;  // whose event is over, while the application does what it asked for
    HWND find_field = nullptr;
    std::wstring find_text;
    Database_View view = Database_View::Files;
    bool is_editor = false;
    bool is_dragged = false;
    bool has_focus = false;
};

}  // namespace workbench
