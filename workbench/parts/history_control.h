/** Undo, redo, and the list of the steps. No window. */
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "workbench/commands/command_actions.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/label_values.h"
#include "workbench/model/workspace.h"

namespace workbench {

/** What it needs of the application besides the work and the dialogs. */
struct History_Host {
    std::function<void()> settle;               ///< ends whatever is being done by a button
    std::function<void(int slice)> slice_show;  ///< also when it is shown already
};

class History_Control : public History_Actions {
  public:
    /** All but the host's functions outlive it. */
    History_Control(Workspace& workspace, Label_Values& panel_values, Dialogs& application_dialogs,
                    History_Host application)
        : work(workspace), values(panel_values), dialogs(application_dialogs), host(std::move(application)) {}

    void Undo_Or_Redo(bool redo) override;
    std::optional<std::string> Next_Step(bool redo) const override;
    void History_Ask() override;

  private:
    /** Takes steps back, or does them again, until so many are in force. @return title of the last; empty: none */
    std::string Walk(std::size_t wanted);
    /** Writes what a step holds besides voxels and markers where the panels read it.
     *  @param slice_of_step receives where the step is seen */
    void Step_Show(const Undo_Step& done, bool redo, int& slice_of_step);

    Workspace& work;
    Label_Values& values;
    Dialogs& dialogs;
    History_Host host;
};

}  // namespace workbench
