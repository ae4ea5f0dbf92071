#include "workbench/window_control.h"

#include <windows.h>

#include <shlobj.h>

#include <algorithm>
#include <cmath>

#include "workbench/commands/keys_text.h"
#include "workbench/database_control.h"
#include "workbench/enlarged_window.h"
#include "workbench/histogram_desk.h"
#include "workbench/image_area.h"
#include "workbench/model/label_attributes.h"
#include "workbench/panel_set.h"
#include "workbench/segmentation_services.h"
#include "workbench/state_report.h"
#include "workbench/trace_view.h"
#include "workbench/volume_opener.h"
#include "workbench/volumes/message_text.h"
#include "workbench/wide_text.h"
#include "workbench/window_places.h"
#include "workbench/window_theme.h"

namespace workbench {

namespace {

constexpr int WINDOW_WIDTH = 1320;  // of the first start, pixels at 96 dots per inch
constexpr int WINDOW_HEIGHT = 860;
constexpr int BESIDE_IMAGE = TOOL_AREA_WIDTH + 18;  // the tools and the frame, at most

/** In the user's profile; empty when there is none, and then nothing is kept. */
std::filesystem::path Usual_Place() {
    wchar_t folder[MAX_PATH] = {};
    if (::SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder) != S_OK) {
        return {};
    }
    return std::filesystem::path(folder) / L"Workbench" / L"settings.txt";
}

}  // namespace

void Window_Control::Settings_Open() {
    of.settings.Open(of.options.settings.empty() ? Usual_Place() : volumes::Path_From_Utf8(of.options.settings));
    const Settings& kept = of.settings.Now();
    of.look.Theme_Set(kept.is_light ? Library_Theme::Light : Library_Theme::Dark);
    Windows_Theme_Set(!kept.is_light);
    of.labels.Share(kept.are_labels_shared);
    of.database.Width_Choose(of.look.Px(kept.database_width));
}

void Window_Control::Settings_Apply() {
    of.dialogs.Log("settings_ignored " + std::to_string(of.settings.Ignored()));
    const Settings& kept = of.settings.Now();
    const Window_Place area = Screen_Of(nullptr);
    Window_Place place = kept.window;
    if (place.width <= 0) {
        place = {area.left, area.top, of.look.Px(WINDOW_WIDTH), of.look.Px(WINDOW_HEIGHT), false};
    }
    place = Place_Inside(place, area);
    // What was not kept is left where the system puts it.
    ::SetWindowPos(of.window(), nullptr, place.left, place.top, place.width, place.height,
                   SWP_NOZORDER | (kept.window.width > 0 ? 0U : static_cast<UINT>(SWP_NOMOVE)));
    of.histogram.Analysis().Place_Set(kept.peaks_window, of.look.Px(BESIDE_IMAGE));
    Enlarged_Place_Set(of.window(), of.look.Px(BESIDE_IMAGE), kept.enlarged_window);
    of.opener.Not_Opened_List().Place_Set(kept.list_window, of.look.Px(BESIDE_IMAGE));
    of.opener.Read_List().Place_Set(kept.facts_window, of.look.Px(BESIDE_IMAGE));
    of.segmentation_services.Statistics_Window().Place_Set(kept.statistics_window, of.look.Px(BESIDE_IMAGE));
    of.panels.Area().Folded_Set(kept.folded);
    of.image.Arrange(kept.views);
    of.trace.Show(of.options.trace || kept.is_trace_shown);
    of.database.Column().View_Set(static_cast<Database_View>(kept.database_view));
    of.database.Database_Show(kept.is_database_shown);
}

void Window_Control::Settings_Keep() {
    Settings& kept = of.settings.Now();
    if (const Window_Place place = Place_Of(of.window()); place.width > 0) {
        kept.window = place;
    }
    kept.peaks_window = of.histogram.Analysis().Place_Now();
    kept.enlarged_window = Enlarged_Place_Now();
    kept.list_window = of.opener.Not_Opened_List().Place_Now();
    kept.facts_window = of.opener.Read_List().Place_Now();
    kept.statistics_window = of.segmentation_services.Statistics_Window().Place_Now();
    kept.are_labels_shared = of.labels.Is_Shared();
    kept.is_light = of.look.Theme() == Library_Theme::Light;
    kept.is_trace_shown = of.trace.Is_Shown() && !of.options.trace;
    kept.is_database_shown = of.database.Is_Database();
    kept.database_view = static_cast<int>(of.database.Column().View());
    kept.database_width =
        std::min(static_cast<int>(std::lround(static_cast<float>(of.database.Width_Chosen()) / of.look.Scale())),
                 DATABASE_WIDTH_MAX);
    kept.folded = of.panels.Area().Folded();
    if (!of.settings.Keep()) {
        of.dialogs.Log("settings_not_saved");
    }
}

void Window_Control::Trace_Show(bool shown) {
    of.trace.Show(shown);
    of.lay_out();
}

bool Window_Control::Is_Trace() const {
    return of.trace.Is_Shown();
}

void Window_Control::Theme_Set(bool is_light) {
    of.look.Theme_Set(is_light ? Library_Theme::Light : Library_Theme::Dark);
    Windows_Theme_Set(!is_light);
    Look_Changed();
}

void Window_Control::Dpi_Set(int dpi) {
    of.look.Dpi_Set(dpi);
    Look_Changed();
}

void Window_Control::Look_Changed() {
    of.variables.Scale_Set(of.look.Scale());
    of.panels.Lay_Out();
    of.database.Column().Lay_Out();
    of.histogram.Analysis().Look_Changed();
    of.lay_out();
    ::RedrawWindow(of.window(), nullptr, nullptr, RDW_INVALIDATE | RDW_ALLCHILDREN);
}

void Window_Control::Keys_Show() {
    of.dialogs.Text_Show("Keys and mouse", Keys_Text(), {});
}

void Window_Control::About_Show() {
    ::MessageBoxW(of.window(),
                  L"Workbench\n\nShows image volumes and edits their TAGs with the panels of Kit_Panels.dll.", L"About",
                  MB_OK);
}

void Window_Control::Report_State() {
    of.state_report.Write();
}

void Window_Control::Quit() {
    ::SendMessageW(of.window(), WM_CLOSE, 0, 0);
}

}  // namespace workbench
