/** Carrying TAGs from frame to frame. No window. */
#pragma once

#include <functional>
#include <string>
#include <utility>

#include "workbench/commands/command_actions.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/label_values.h"
#include "workbench/model/workspace.h"

namespace workbench {

/** What it needs of the application besides the work and the dialogs. */
struct Propagation_Host {
    std::function<void()> stroke_end;
    /** Has the panel carry TAGs from the shown frame to the one beside it, which it does by Carry, and go there.
     *  @return pixels carried */
    std::function<int(int direction)> panel_step;
    std::function<void()> seen;  ///< shows at once what has changed
    /** Calls a step so often, or until it gives false or the user gives up, and shows how far it is.
     *  @return steps that gave true */
    std::function<int(int count, const std::function<bool()>& step)> repeat;
};

class Propagation_Control : public Propagation_Actions {
  public:
    /** All but the host's functions outlive it. */
    Propagation_Control(Workspace& workspace, Label_Values& panel_values, Dialogs& application_dialogs,
                        Propagation_Host application)
        : work(workspace), values(panel_values), dialogs(application_dialogs), host(std::move(application)) {}

    void Propagate_Step(int direction) override { host.panel_step(direction); }
    void Propagate_Repeat(int direction) override;
    void Propagation_Kind_Set(Propagation_Kind wanted) override;
    Propagation_Kind Propagation_Kind_Now() const override { return kind; }

    /** Carries the selected TAGs from one slice to another. @return pixels carried */
    int Carry(int from, int to);

  private:
    Workspace& work;
    Label_Values& values;
    Dialogs& dialogs;
    Propagation_Host host;
    Propagation_Kind kind = Propagation_Kind::Grow;
};

}  // namespace workbench
