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
#include "workbench/model/dialogs.h"
#include "workbench/model/label_attributes.h"
#include "workbench/model/workspace.h"
#include "workbench/table_view.h"

namespace workbench {

/** The application's side. Everything outlives the services. */
struct Segmentation_Wiring {
    Workspace& work;
    Host_Variables& variables;
    Label_Attributes& labels;
    Dialogs& dialogs;
    const Look& look;
    std::function<HWND()> owner;                                       ///< of the table's window
    std::function<std::optional<segmentation::Voxel_Place>()> cursor;  ///< the voxel that is pointed at
    std::function<void()> stroke_end;
    std::function<void(int slice)> slice_go;
    std::function<void()> refresh;  ///< of the image
    /** The table in the room of the image, while it is shown there; null: it is not. */
    std::function<Table_View*()> table;
    std::function<void(int tag, const segmentation::Slice_Range& slices)> histogram_of;
};

class Segmentation_Services : public Segmentation_Host {
  public:
    explicit Segmentation_Services(Segmentation_Wiring to_application);

    Session& Work() override { return wiring.work.session; }
    Segmentation_Hand Hand() const override;
    std::vector<Tag_Claim> Claims() const override;
    std::string Tag_Name(int tag) const override { return wiring.labels.Tag_Name(tag); }
    std::string Grey_Unit() const override;
    std::optional<std::string> Text_Ask(const std::string& title, const std::string& question,
                                        const std::string& start) override;
    int Line_Ask(const std::string& title, const std::string& label, const std::vector<std::string>& lines,
                 int current) override;
    std::optional<std::filesystem::path> Label_File_Ask(const std::string& title) override;
    std::optional<std::filesystem::path> Csv_File_Ask(const std::string& title, const std::string& name) override;
    void Run(const std::string& what,
             const std::function<void(const segmentation::Edit_Progress& progress)>& action) override;
    void Stroke_End() override { wiring.stroke_end(); }
    void Labels_Changed(int slice) override;
    void Limits_Changed() override { wiring.work.hub.Note(Change::Mode); }
    void Preview_Changed() override { wiring.refresh(); }
    void Statistics_Show(const std::string& title, const std::string& table) override;
    bool Is_Statistics_Shown() const override { return statistics.Is_Shown() || wiring.table() != nullptr; }
    void Histogram_Of(int tag, const segmentation::Slice_Range& slices) override { wiring.histogram_of(tag, slices); }
    bool Table_Show(const std::string& title, const std::string& table) override;
    void Tell(const std::string& text) override { wiring.dialogs.Tell(text); }
    void Warn(const std::string& text) override { wiring.dialogs.Warn(text); }

    /** The window of the table, for what is kept of its place. */
    List_Window& Statistics_Window() { return statistics; }

  private:
    Segmentation_Wiring wiring;
    List_Window statistics;
};

}  // namespace workbench
