#include "workbench/change_views.h"

#include <string>

#include "kits/common/contract.h"
#include "workbench/wide_text.h"

namespace workbench {

void Change_Views::Listen() {
    using Stage = Change_Hub::Stage;
    Change_Hub& hub = of.work.hub;
    hub.Listen(Stage::Derived, [this](Told_Changes& told) {
        of.tools.Follow(told.changes);
        Derive(told);
    });
    hub.Listen(Stage::Panels, [this](Told_Changes& told) {
        if (told.panel_flags != 0) {
            Contract_Check_Update(told.panel_flags);
            of.panels.Area().Update(told.panel_flags);
        }
    });
    hub.Listen(Stage::Panels, [this](Told_Changes& told) {
        if (told.panel_flags != 0) {
            of.database.Column().Update(told.panel_flags);
        }
    });
    hub.Listen(Stage::Views, [this](Told_Changes& told) {
        if (told.changes.Has(Change::Tag_Nb)) {
            of.panels.Tag_Rows_Show();
        }
    });
    hub.Listen(Stage::Views, [this](Told_Changes& told) { Show(told.changes); });
    hub.Listen(Stage::Views, [this](Told_Changes& told) {
        if (told.changes.Has_Any({Change::Volume, Change::Opened})) {
            of.segmentation.Volume_Follow();
        } else if (told.changes.Has_Any({Change::Pixels, Change::Texts})) {
            of.segmentation.Labels_Follow();
        }
    });
    hub.Listen(Stage::Report, [this](Told_Changes& told) {
        if (!told.changes.Is_Within({Change::Mouse, Change::Stroke})) {
            of.state_report.Round_Count();
        }
    });
}

void Change_Views::Derive(Told_Changes& told) {
    if (told.changes.Has_Any({Change::Volume, Change::Opened})) {
        of.color_advisor.Former_Forget();  // they were those of another volume
    }
    if (told.changes.Has_Any({Change::Markers, Change::Volume, Change::Opened})) {
        of.tags.Markers_Refresh();
    }
    of.histogram.Derive(told);
}

void Change_Views::Show(Changes changes) {
    const auto show = [changes](Shown shown, const auto& action) {
        if (Is_Shown_In(shown, changes)) {
            action();
        }
    };
    show(Shown::Image, [this] { of.image.Refresh(); });
    show(Shown::Other_Views, [this] { of.image.Others_Refresh(); });
    show(Shown::Brush_Outline, [this] { of.image.Outline_Refresh(); });
    if (changes.Has_Any({Change::Selection, Change::Volume, Change::Opened})) {
        of.panels.Histogram_Scale_Suggest();
    }
    if (changes.Has(Change::Colors)) {
        of.panels.Tag_Scroll_To(of.variables.Tag_Cur());  // the buttons were made anew
    }
    show(Shown::Notes, [this] { Notes_Show(); });
    show(Shown::Title, [this] { Title_Show(); });
    show(Shown::Voxel, [this] { of.slices.Voxel_Show(); });
    show(Shown::Color_Advice, [this] { of.color_advisor.Slice_Look(); });
    show(Shown::Peak_Source, [this] { of.histogram.Analysis().Source_Refresh(); });
}

void Change_Views::Notes_Show() {
    Host_Variables& variables = of.variables;
    const int tag = variables.Tag_Cur();
    const auto at = static_cast<std::size_t>(tag);
    std::string note = of.labels.Tag_Name(tag);
    note += variables.Tag_Enable()[at] == 0 ? ", hidden" : "";
    note += variables.Tag_Lock()[at] != 0 ? ", locked" : "";
    note += variables.Tag_Select()[at] == 0 ? ", not selected" : "";
    const auto set = [this](Pane pane, const std::string& text) { of.panels.Note_Set(pane, Wide_Of_Utf8(text)); };
    set(Pane::Tag, note);
    set(Pane::Brush, std::to_string(variables.Brush().Pixel_Nb()) + " pixels" + of.tools.Brush_Note());
    set(Pane::Frames, of.propagation.Propagation_Kind_Now() == Propagation_Kind::Copy ? "copy" : "grow");
    set(Pane::Marker,
        of.labels.Marker_Name(variables.Marker_Cur()) + (of.tools.Tool_Now() == Tool_Kind::Markers ? ", placing" : ""));
    set(Pane::Histogram, of.histogram.Note());
}

void Change_Views::Title_Show() {
    of.recovery.Step_Note();
    std::string title = "Workbench";
    if (of.work.session.Has_Volume()) {
        title = of.work.volumes.Facts(of.work.volumes.Current()).title +
                (of.work.session.Is_Unsaved() ? "* - " : " - ") + title;
    }
    ::SetWindowTextW(of.window.Handle(), Wide_Of_Utf8(title).c_str());
}

}  // namespace workbench
