/** Labels in files: loading, saving, and what is asked before work is lost. No window. */
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "workbench/commands/command_actions.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/label_attributes.h"
#include "workbench/model/label_description_file.h"
#include "workbench/model/workspace.h"

namespace workbench {

/** Labels of a file, whatever its kind, and what describes them. */
struct Labels_File {
    volumes::Volume volume;
    Label_Description_Loading described;
    bool is_object = false;  ///< labels are never saved into a segmentation object of somebody's
};

/** What it needs of the application besides the work and the dialogs. */
struct Label_File_Host {
    std::function<void()> settle;         ///< ends whatever is being done by a button
    std::function<void()> stroke_end;     ///< ends a stroke
    std::function<void(int volume)> go;   ///< makes a volume the current one
    std::function<void()> colors_change;  ///< the colours become others than the user has seen
    /** Reads an object that the file may be. @return outer no value: it is none; inner: given up, or told why not */
    std::function<std::optional<std::optional<Labels_File>>(const std::filesystem::path&)> object;
};

class Label_File_Control : public Label_File_Actions {
  public:
    /** All but the host's functions outlive it. */
    Label_File_Control(Workspace& workspace, Label_Attributes& attributes, Dialogs& application_dialogs,
                       Label_File_Host application)
        : work(workspace), labels(attributes), dialogs(application_dialogs), host(std::move(application)) {}

    void Load_Labels_Ask() override;
    bool Save_Labels(bool ask_for_name) override;

    void Load(const std::filesystem::path& path);
    /** Names, colours and thresholds that were loaded take the place of those that are there, without a step. */
    void Take(const Label_Description& description);
    /** About the work on all open volumes. @return false: the user wants to go on working */
    bool May_Leave();

  private:
    enum class Outcome { Saved, Not_Saved, Load_Theirs };
    /** Asks where there is doubt about the file. LOAD_THEIRS: the user prefers what another program has written. */
    Outcome Save_Asking(bool ask_for_name);
    /** @param is_chosen the user has just agreed that the file is replaced @return no value: save under another name */
    std::optional<Outcome> Doubts_Ask(const std::filesystem::path& path, bool is_chosen);
    Outcome Write(const std::filesystem::path& path);
    std::optional<Labels_File> Read(const std::filesystem::path& path);
    std::optional<volumes::Load_Result> Read_Volume(const std::filesystem::path& path);
    /** What to do with labels that lie elsewhere than the image; no value: the user gave up. */
    std::optional<Grid_Choice> Place_Ask(const volumes::Volume& loaded, const std::filesystem::path& path);
    /** What is to be told about labels that lie on the image otherwise than by equal voxels; may be empty. */
    std::string Place_Text(const volumes::Volume& loaded, const std::filesystem::path& path, Grid_Choice choice) const;

    Workspace& work;
    Label_Attributes& labels;
    Dialogs& dialogs;
    Label_File_Host host;
};

}  // namespace workbench
