/** Everything without a mouse: what the keys do in the part of the window that they act on. No window. */
#pragma once

#include <functional>
#include <utility>

#include "workbench/commands/command_actions.h"
#include "workbench/commands/command_table.h"
#include "workbench/commands/pane.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/image_cursor.h"
#include "workbench/model/image_user.h"
#include "workbench/model/label_values.h"
#include "workbench/model/workspace.h"

namespace workbench {

/** What it needs of the application besides the work, the dialogs and the cursor. Keys are codes as panels take them.
 */
struct Keyboard_Host {
    std::function<bool()> is_shift;  ///< Shift is held down
    // The panels under the pointer.
    std::function<bool()> is_over_tool;               ///< one of the tool area
    std::function<bool(int key)> tool_key;            ///< @return true: there is one, and it has used the key
    std::function<bool(int key)> database_panel_key;  ///< the same of the database column
    std::function<bool()> is_class_undo;              ///< undo means the class tree
    // The part that the keyboard acts on.
    std::function<Pane()> focus;
    std::function<void(Pane)> focus_set;
    std::function<bool(int key)> database_key;  ///< @return true: the column is shown and has used the key
    // The tool in hand. @return true: there was something to take over, to drop, to take back
    std::function<bool()> tool_accept;
    std::function<bool()> tool_cancel;
    std::function<bool()> tool_step_back;
    std::function<void(int)> tag_set;
    std::function<void(int)> brush_set;
    std::function<void(int)> marker_set;
    std::function<void()> slices_show;  ///< the view that the cursor is in
    std::function<void(const Shown_Voxel&)> cross_set;
    std::function<void(const Command_Call&)> execute;
    int brush_nb = 0;
};

class Keyboard_Control : public Cursor_Actions {
  public:
    /** All but the host's functions outlive it. */
    Keyboard_Control(Workspace& workspace, Label_Values& panel_values, Dialogs& application_dialogs,
                     Image_Cursor& image_cursor, Keyboard_Host application)
        : work(workspace),
          values(panel_values),
          dialogs(application_dialogs),
          cursor(image_cursor),
          host(std::move(application)) {}

    void Cursor_Set(bool on) override;
    bool Is_Cursor() const override { return cursor.Is_Cursor(); }
    void Cursor_Act(bool erase) override;
    void Cursor_Pen_Set(bool down) override;
    bool Is_Pen_Down() const override { return cursor.Is_Pen_Down(); }
    void Cursor_Pick() override;
    void Cross_To_Cursor() override;

    /** A key that was pressed: it goes to the panel under the pointer, to the part that the keyboard acts on, and to
     * the commands; the first that uses it ends its way. */
    void Key(int key);

  private:
    /** @return true when the marked part used the key */
    bool Pane_Key(int key);
    bool Pane_Command(int key);
    bool Cursor_Key(int key);
    /** The keyboard's cursor is there; otherwise the user is told how it begins. */
    bool Has_Cursor();

    Workspace& work;
    Label_Values& values;
    Dialogs& dialogs;
    Image_Cursor& cursor;
    Keyboard_Host host;
};

}  // namespace workbench
