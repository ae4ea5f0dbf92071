/** The database column of the window: its views, find, the editor of the class trees with its history. */
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>

#include "workbench/commands/command_actions.h"
#include "workbench/database/class_history.h"
#include "workbench/database/class_objects.h"
#include "workbench/database/database_pane.h"
#include "workbench/look.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/workspace.h"
#include "workbench/volume_objects.h"

namespace workbench {

/** What it works on, and what it asks of the application. All outlive it. */
struct Database_Parts {
    Look& look;
    Workspace& work;
    Volume_Objects& objects;
    Dialogs& dialogs;
    std::function<void()> lay_out;                    ///< the column wants other room
    std::function<void()> checked;                    ///< the user has checked other frames
    std::function<void(const Quorel_2D*)> go;         ///< shows a frame of whatever volume; null: none
    std::function<void(unsigned __int64)> requested;  ///< a panel asks for flags
};

class Database_Control : public Database_Actions {
  public:
    explicit Database_Control(Database_Parts parts);

    void Database_Show(bool shown) override;
    bool Is_Database() const override { return pane.Is_Shown(); }
    void Database_Find() override;
    void Database_View_Set(int view) override;
    void Database_Width_Step(int step) override;
    void Database_Expand_All(bool open) override;
    void Database_Editor_Set(bool on) override;
    bool Is_Database_Editor() const override { return pane.Is_Shown() && pane.Is_Editor(); }
    void Class_Undo_Or_Redo(bool redo) override;
    std::optional<std::string> Next_Class_Step(bool redo) const override;

    /** Makes the class trees; when the host variables are defined. */
    void Begin();
    Database_Pane& Column() { return pane; }
    const Database_Pane& Column() const { return pane; }
    const Class_History& History() const { return history; }
    /** Of the column, pixels. @param room of image and column together */
    int Width(int room) const;
    /** Pixels; 0: not chosen yet. */
    int Width_Chosen() const { return width; }
    void Width_Choose(int pixels) { width = pixels; }

    /** A panel asks for flags or for a frame. @return true: it does so within an event of the column, and is heard when
     *  that is over */
    bool Take_Request(unsigned __int64 flags);
    bool Take_Frame(Quorel_2D* frame);

    /** The images are about to go. */
    void Images_Leave() { history.Images_Leave(); }
    /** Brings the class trees to what is kept beside data that were opened.
     *  @param root of the 2D class tree; null: there is none @return a problem, for Opened_Tell; may be empty */
    std::string Open(Quorel_2D* root, const std::filesystem::path& first) { return history.Open(root, first); }
    void Opened_Tell(const std::string& problem);
    /** @return false: changes of the class trees would be lost, and the user wants to go on working */
    bool May_Leave();
    /** The column shows the editor: undo is for the class trees. */
    bool Is_Class_Undo() const { return pane.Is_Shown() && pane.Is_Editor_Shown(); }

  private:
    Database_Host Services();
    /** Runs an event of a panel. A panel asks for one thing per checked row; all is done once, afterwards. */
    void Run(const std::function<void()>& event);
    bool May_Remove(const std::string& class_name);
    /** Makes a step of what the editor has changed, and saves it. */
    void Note();
    void Save();

    Database_Parts of;
    std::optional<Class_Objects> classes;
    Class_History history;
    std::string problem;  // why the journal was not saved, as the user was told
    Database_Pane pane;
    int width = 0;               // pixels; 0: not chosen yet
    int events = 0;              // running events of panels
    unsigned __int64 flags = 0;  // what they have asked for
    Quorel_2D* frame = nullptr;
};

}  // namespace workbench
