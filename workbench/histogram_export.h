/** The histogram's file and the table of its analysis: writing them, and reading the file back. */
#pragma once

#include <filesystem>
#include <functional>
#include <string>

#include "histogram/tool_histo.h"
#include "workbench/analysis/export_check.h"
#include "workbench/commands/command_actions.h"
#include "workbench/host_variables.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/workspace.h"

namespace workbench {

class Histogram_Export : public Export_Actions {
  public:
    /** All outlive it. @param counted what the histogram counts, UTF-8 */
    Histogram_Export(Workspace& workspace, Host_Variables& host_variables, Tool_Histo& histogram,
                     Dialogs& application_dialogs, std::function<std::string()> counted)
        : work(workspace),
          variables(host_variables),
          panel(histogram),
          dialogs(application_dialogs),
          source(std::move(counted)) {}

    void Export_Histogram() override;
    void Export_Verify_Ask() override;

    /** What the table of the peak analysis was made of, as lines: volume, file, frames. */
    std::string Table_Source() const;
    /** @param owner of the question for the file */
    void Table_Save(HWND owner, const std::string& text);

  private:
    /** What the file of the histogram should tell; only with counts. */
    Export_Expected Wanted() const;
    /** Reads a histogram's file back and tells what differs from the panel. @param is_new it was just written: then
     *  only differences are worth a window */
    void Verify(const std::filesystem::path& path, bool is_new);

    Workspace& work;
    Host_Variables& variables;
    Tool_Histo& panel;
    Dialogs& dialogs;
    std::function<std::string()> source;
};

}  // namespace workbench
