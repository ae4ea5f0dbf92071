/** The histogram: what it is made of, its bands, the analysis of its peaks. */
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "workbench/analysis/analysis_window.h"
#include "workbench/analysis/band_plan.h"
#include "workbench/histogram_export.h"
#include "workbench/host_variables.h"
#include "workbench/model/dialogs.h"
#include "workbench/model/histogram_control.h"
#include "workbench/model/label_attributes.h"
#include "workbench/model/settings_keeper.h"
#include "workbench/model/workspace.h"
#include "workbench/volume_objects.h"

namespace workbench {

/** What it works on. All outlive it. */
struct Histogram_Parts {
    Look& look;
    Workspace& work;
    Host_Variables& variables;
    Label_Attributes& labels;
    Volume_Objects& objects;
    Tool_Histo& panel;
    Dialogs& dialogs;
    Settings_Keeper& settings;
    std::function<HWND()> window;         ///< the main one, which owns that of the analysis
    std::function<void()> enlarge;        ///< opens the enlarged histogram, or brings it to the front
    std::function<void(int)> scale_step;  ///< +1 magnifies the counts
    std::function<void()> scale_suggest;  ///< a magnification for the counts of now
    std::function<void()> scale_release;  ///< other images: one may be proposed again
};

class Histogram_Desk : public Histogram_Actions {
  public:
    explicit Histogram_Desk(Histogram_Parts parts);

    void Histogram_Of_All() override;
    void Histogram_Of_Shown() override;
    void Histogram_Range_Ask() override;
    Histogram_Frames Histogram_Frames_Now() const override { return control.Source_Now(); }
    void Histogram_Of_Tag_Set(bool on) override;
    bool Is_Histogram_Of_Tag() const override { return control.Is_Of_Tag(); }
    void Histogram_Smoothed_Set(bool on) override;
    bool Is_Histogram_Smoothed() const override { return control.Is_Smoothed(); }
    void Background_Leave_Out(bool on) override;
    bool Is_Background_Left_Out() const override { return control.Is_Background_Left_Out(); }
    void Background_Ask() override;
    void Histogram_Bins_Ask() override;
    void Histogram_Component_Next() override;
    void Histogram_Scale_Step(int step) override { of.scale_step(step); }
    void Histogram_Enlarge() override { of.enlarge(); }
    void Wheel_Turned_Set(bool on) override;
    bool Is_Wheel_Turned() const override { return of.settings.Now().is_wheel_turned; }
    void Peaks_Show() override;
    void Peaks_Fit_Gaussian() override;
    void Peaks_Fit_Derivative_Ask() override;
    void Peaks_To_Bands() override;

    /** The frames of the current volume, all of them, are counted from now on; nobody is told. */
    void All_Select();
    /** The same with all their pixels and as they are: other images were opened. */
    void Images_Take();
    /** The current volume becomes another one: it is counted plainly when it comes back. */
    void Volume_Leave();
    /** Counts anew what has changed, and adds what follows. */
    void Derive(Told_Changes& told);
    /** Counts the current TAG's pixels in these frames from now on. */
    void Tag_Take(int first, int last);
    /** What the histogram counts: "frames 3, 5 to 9, smoothed". UTF-8, as all texts here */
    std::string Source_Text() const;
    /** What stands in the heading of the panel. */
    std::string Note() const;
    /** Numbers of what is counted, in one line. */
    std::string Numbers_Text() const;

    Histogram_Control& Control() { return control; }
    const Histogram_Control& Control() const { return control; }
    Analysis_Window& Analysis() { return analysis; }
    Export_Actions& Exports() { return exports; }

  private:
    Analysis_Host Analysis_Services();
    void Select();
    /** Counts the frames that were chosen. */
    void Chosen();
    Counted_Pixels Counted() const;
    /** Hands the TAGs' bands to the panel. */
    void Ranges_Refresh();
    void Peaks_Changed();
    Claimed_Levels Claimed(int tag) const;
    /** The peak that is the background's; -1: none. */
    int Peak_Of_Background(const std::vector<Peak_Row>& peaks) const;
    void Bands_Take(const std::vector<Peak_Row>& peaks);

    Histogram_Parts of;
    Histogram_Control control;
    Histogram_Export exports;
    Analysis_Window analysis;
};

}  // namespace workbench
