/** Everything without a mouse: what the keys do in the part of the window that they act on. */
#pragma once

#include <functional>

#include "workbench/commands/command_actions.h"
#include "workbench/host_variables.h"
#include "workbench/image_area.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/workspace.h"
#include "workbench/panel_set.h"
#include "workbench/parts/focus.h"

namespace workbench {

class Database_Control;
class Layout_Control;
class Tag_Control;
class Tool_Box;

/** What it works on. All outlive it. */
struct Keyboard_Parts {
    Workspace& work;
    Host_Variables& variables;
    Dialogs& dialogs;
    Panel_Set& panels;
    Image_Area& image;
    Plane_Views& planes;
    Database_Control& database;
    Tool_Box& tools;
    Tag_Control& tags;
    Layout_Control& layouts;
    Focus& focus;
    std::function<void(const Command_Call&)> execute;
};

class Keyboard_Control : public Cursor_Actions {
  public:
    explicit Keyboard_Control(Keyboard_Parts parts) : of(std::move(parts)) {}

    void Cursor_Set(bool on) override;
    bool Is_Cursor() const override { return of.image.Slices().Is_Cursor(); }
    void Cursor_Act(bool erase) override;
    void Cursor_Pen_Set(bool down) override;
    bool Is_Pen_Down() const override { return of.image.Slices().Is_Pen_Down(); }
    void Cursor_Pick() override;
    void Cross_To_Cursor() override;

    /** A key that was pressed, wherever the pointer is. @param key code as panels take it */
    void Key(int key);
    Focus_Host Focus_Services();

  private:
    /** Draws the frame of the part that the keyboard acts on, and tells of it. */
    void Mark(Pane pane);
    /** @return true when the marked part used the key */
    bool Pane_Key(int key);
    bool Pane_Command(int key);
    bool Cursor_Key(int key);
    /** The keyboard's cursor is there; otherwise the user is told how it begins. */
    bool Has_Cursor();

    Keyboard_Parts of;
};

}  // namespace workbench
