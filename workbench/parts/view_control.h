/** What of the image is shown, and how: slice, grey window, overlays. No window. */
#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "workbench/commands/command_actions.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/display_window.h"
#include "workbench/model/settings.h"
#include "workbench/model/workspace.h"

namespace workbench {

/** What it needs of the application besides the work, the settings and the dialogs. */
struct View_Host {
    std::function<void()> stroke_end;
    std::function<void(int slice)> place;  ///< the data objects' window shows that slice; nobody is told
    std::function<void(int volume)> go;    ///< makes a volume the current one
    std::function<void(double factor)> zoom_to;
    std::function<void(int step)> zoom_by;
    /** Where another plane than that of the slices stands alone: goes by so many of its pictures. @return false: it
     *  does not */
    std::function<bool(int step)> plane_step = [](int) { return false; };
    /** The same, to its first or last picture. */
    std::function<bool(bool is_last)> plane_end = [](bool) { return false; };
};

class View_Control : public View_Actions {
  public:
    /** All but the host's functions outlive it. @param kept opacity and whether TAGs are shown */
    View_Control(Workspace& workspace, Settings& kept, Dialogs& application_dialogs, View_Host application)
        : work(workspace), settings(kept), dialogs(application_dialogs), host(std::move(application)) {}

    void Slice_Step(int step) override;
    void Slice_To_End(bool is_last) override;
    void Volume_Step(int step) override { host.go(work.volumes.Current() + step); }
    void Zoom_To(double factor) override { host.zoom_to(factor); }
    void Zoom_Step(int step) override { host.zoom_by(step); }
    void Window_Reset() override;
    void Level_Step(int step) override;
    void Window_Width_Step(int step) override;
    std::vector<Numbered_Entry> Window_Entries() const override;
    void Window_Choose(int number) override;
    void Overlay_Set(bool on) override;
    bool Is_Overlay() const override { return settings.is_overlay_shown; }
    void Overlay_Opacity_Ask() override;
    void Range_Overlay_Set(bool on) override;
    bool Is_Range_Overlay() const override { return is_range_shown; }

    /** Shows a slice, the nearest one for a number outside; also when it is shown already. */
    void Slice_Show(int wanted);
    /** Nothing when it is shown already. */
    void Slice_Go(int wanted);
    /** @param dx, @param dy shares of the view that the pointer moved */
    void Window_Drag(float dx, float dy);

  private:
    std::vector<volumes::Display_Window> Windows() const;

    Workspace& work;
    Settings& settings;
    Dialogs& dialogs;
    View_Host host;
    bool is_range_shown = false;
};

}  // namespace workbench
