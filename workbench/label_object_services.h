/** What segmentation objects get of the application: its state and the dialogs. */
#pragma once

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "workbench/edits/label_objects.h"
#include "workbench/host_variables.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/label_attributes.h"
#include "workbench/model/workspace.h"

namespace workbench {

class Label_Object_Services : public Label_Object_Host {
  public:
    /** All outlive it. */
    Label_Object_Services(Workspace& workspace, Host_Variables& host_variables, Label_Attributes& attributes,
                          Dialogs& application_dialogs)
        : work(workspace), variables(host_variables), labels(attributes), dialogs(application_dialogs) {}

    const Session& Work() const override { return work.session; }
    std::string Volume_Title() const override;
    volumes::Slice_Files Slices() const override;
    Label_Description Description() const override { return labels.Describe(); }
    int Current_Tag() const override { return variables.Tag_Cur(); }
    void Tag_Name_Set(int tag, const std::string& name) override;
    std::string Program_Version() const override;
    std::string User_Name() const override;
    std::optional<std::filesystem::path> Object_File_Ask(const std::filesystem::path& start) override;
    std::optional<std::string> Text_Ask(const std::string& title, const std::string& question,
                                        const std::string& start) override;
    int Line_Ask(const std::string& title, const std::string& label, const std::vector<std::string>& lines,
                 int current) override;
    int Way_Ask(const std::string& title, const std::string& text, const std::vector<std::string>& ways) override;
    void Run(const std::string& what, const std::function<void(const volumes::Load_Progress&)>& action) override;
    void Tell(const std::string& text) override { dialogs.Tell(text); }
    void Warn(const std::string& text) override { dialogs.Warn(text, Warning_Subject::Label_File); }

  private:
    Workspace& work;
    Host_Variables& variables;
    Label_Attributes& labels;
    Dialogs& dialogs;
};

}  // namespace workbench
