/** What segmentation objects get of the application: its state, the dialogs and the thread. */
#pragma once

#include "base/gdi_handles.h"

#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "workbench/edits/label_objects.h"
#include "workbench/host_variables.h"
#include "workbench/model/open_volumes.h"

namespace workbench {

/** The application's side. Everything outlives the services. */
struct Label_Object_Wiring {
    Session& session;
    Open_Volumes& volumes;
    Host_Variables& variables;
    std::function<HWND()> owner;  ///< of dialogs
    std::function<Label_Description()> description;
    std::function<void()> labels_note;  ///< makes a step of the names that have changed
    /** Runs an action beside the window's thread with a window that shows how far it is. */
    std::function<void(const std::wstring& what, const std::function<void(const volumes::Load_Progress&)>& action)> run;
    std::function<void(const std::wstring& text)> tell;
    std::function<void(const std::string& text)> warn;
};

class Label_Object_Services : public Label_Object_Host {
  public:
    explicit Label_Object_Services(Label_Object_Wiring to_application) : wiring(std::move(to_application)) {}

    const Session& Work() const override { return wiring.session; }
    std::string Volume_Title() const override;
    volumes::Slice_Files Slices() const override;
    Label_Description Description() const override { return wiring.description(); }
    int Current_Tag() const override { return wiring.variables.Tag_Cur(); }
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
    void Tell(const std::string& text) override;
    void Warn(const std::string& text) override { wiring.warn(text); }

  private:
    Label_Object_Wiring wiring;
};

}  // namespace workbench
