/** What operations on labels get of the application: its state, the dialogs, the thread and the table's window. */
#pragma once

#include "base/gdi_handles.h"

#include <functional>
#include <optional>
#include <string>

#include "workbench/edits/segmentation_host.h"
#include "workbench/host_variables.h"
#include "workbench/list_window.h"
#include "workbench/look.h"

namespace workbench {

/** The application's side. Everything outlives the services. */
struct Segmentation_Wiring {
    Session& session;
    Host_Variables& variables;
    const Look& look;
    std::function<HWND()> owner;  ///< of dialogs
    std::function<int()> slice;   ///< the one that is shown
    std::function<std::optional<segmentation::Voxel_Place>()> cursor;
    std::function<double(float told)> grey;  ///< grey value of what the panels are told
    std::function<std::string()> grey_unit;
    /** Runs an action beside the window's thread with a window that shows how far it is. */
    std::function<void(const std::wstring& what,
                       const std::function<void(const segmentation::Edit_Progress& progress)>& action)>
        run;
    std::function<void()> stroke_end;
    std::function<void(int slice)> labels_changed;
    std::function<void()> refresh;  ///< of the image
    std::function<void(const std::wstring& text)> tell;
    std::function<void(const std::string& text)> warn;
};

class Segmentation_Services : public Segmentation_Host {
  public:
    explicit Segmentation_Services(Segmentation_Wiring to_application);

    Session& Work() override { return wiring.session; }
    Segmentation_Hand Hand() const override;
    std::vector<Tag_Claim> Claims() const override;
    std::string Tag_Name(int tag) const override;
    std::string Grey_Unit() const override { return wiring.grey_unit(); }
    std::optional<std::string> Text_Ask(const std::string& title, const std::string& question,
                                        const std::string& start) override;
    int Line_Ask(const std::string& title, const std::string& label, const std::vector<std::string>& lines,
                 int current) override;
    std::optional<std::filesystem::path> Label_File_Ask(const std::string& title) override;
    std::optional<std::filesystem::path> Csv_File_Ask(const std::string& title, const std::string& name) override;
    void Run(const std::string& what,
             const std::function<void(const segmentation::Edit_Progress& progress)>& action) override;
    void Stroke_End() override { wiring.stroke_end(); }
    void Labels_Changed(int slice) override { wiring.labels_changed(slice); }
    void Preview_Changed() override { wiring.refresh(); }
    void Statistics_Show(const std::string& title, const std::string& table) override;
    bool Is_Statistics_Shown() const override { return statistics.Is_Shown(); }
    bool Table_Show(const std::string& title, const std::string& table) override;
    void Tell(const std::string& text) override;
    void Warn(const std::string& text) override { wiring.warn(text); }

    /** The window of the table, for what is kept of its place. */
    List_Window& Statistics_Window() { return statistics; }

  private:
    Segmentation_Wiring wiring;
    List_Window statistics;
};

}  // namespace workbench
