// What programs that drive the application are told about its state.
#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>
#include <utility>

#include "kits/common/contract.h"
#include "workbench/application.h"
#include "workbench/model/json_text.h"
#include "workbench/model/number_text.h"
#include "workbench/wide_text.h"
#include "workbench/window_report.h"

namespace workbench {

namespace {

constexpr int DB_ROWS_MOST = 100;  // enough of the tree to click on
constexpr int LEVEL_DIGITS = 4;

}  // namespace

void Application::Report_Places(Json_Text& out) const {
    out.Object_Begin("places");
    Place_Write(out, "window", window.Handle());
    Place_Write(out, "image", image.Handle());
    if (image.Is_Planes()) {
        Place_Write(out, "plane_0", image.Other(0).Handle());
        Place_Write(out, "plane_1", image.Other(1).Handle());
    }
    Place_Write(out, "tag", tag_host->Handle());
    Place_Write(out, "brush", brush_host->Handle());
    Place_Write(out, "frames", propagate_host->Handle());
    Place_Write(out, "marker", marker_host->Handle());
    Place_Write(out, "histogram", histogram_host->Handle());
    Place_Write(out, "banner", banner.Handle());
    Place_Write(out, "trace", trace.Handle());
    Place_Write(out, "database", database.Handle());
    Place_Write(out, "database_panel", database.Panel_Window());
    out.Object_End();
}

void Application::Report_View(Json_Text& out) const {
    // Pictures in the windows of their views, real pixels.
    const auto place = [&out, this](const char* name, const View_Layout& view) {
        out.Object_Begin(name);
        out.Real("left", view.To_Screen_X(0));
        out.Real("top", view.To_Screen_Y(0));
        out.Real("scale_x", view.scale_x);
        out.Real("scale_y", view.scale_y);
        out.Number("width", session.Has_Volume() ? view.slice_width : 0);
        out.Number("height", session.Has_Volume() ? view.slice_height : 0);
        out.Object_End();
    };
    place("slice_place", image.Slices().Layout());
    out.Number("planes", image.Is_Planes() ? 1 : 0);
    for (int view = 0; image.Is_Planes() && session.Has_Volume() && view < Plane_Views::VIEW_NB; ++view) {
        place(view == 0 ? "plane_place_0" : "plane_place_1", image.Other(view).Layout());
        out.Text("plane_text_" + std::to_string(view), Utf8_Of_Wide(image.Other(view).Caption()));
    }
    if (session.Has_Volume()) {
        const Shown_Voxel cross = planes.Cross();
        out.List_Begin("cross");
        for (const int at : {cross.x, cross.y, cross.slice}) {
            out.Number({}, at);
        }
        out.List_End();
    }
    out.List_Begin("measurements");
    for (const std::string& text : tools.Measurements().Texts()) {
        out.Text({}, text);
    }
    out.List_End();
    out.Number("space", variables.Dimensions().space);  // between widgets
    out.Number("contract_reports", Contract_Report_Nb());
    out.Number("rounds_told", rounds_told);  // but for what follows the mouse
    out.Number("focus", static_cast<int>(focus.Now()));
    out.Number("cursor_x", image.Slices().Is_Cursor() ? image.Slices().Cursor_X() : -1);
    out.Number("cursor_y", image.Slices().Is_Cursor() ? image.Slices().Cursor_Y() : -1);
    out.Number("alike", color_advisor.Alike_Nb());
    out.Number("light", look.Theme() == Library_Theme::Light ? 1 : 0);
    out.Number("scale_x100", std::lround(look.Scale() * 100.0F));
    out.Number("folded", tool_area.Folded());
    out.Number("histogram_scale_x1000", std::lround(histogram_panel.scale * 1000.0F));
    out.Number("recent_nb", static_cast<long long>(settings.Now().recent.size()));
    out.Text("voxel", Utf8_Of_Wide(status_line.Voxel()));
    out.Number("window_low_x100", std::lround(grey_window.low * 100.0F));
    out.Number("window_high_x100", std::lround(grey_window.high * 100.0F));
    out.Number("wheel_turned", settings.Now().is_wheel_turned ? 1 : 0);
}

void Application::Report_Tags(Json_Text& out) const {
    out.Number("tag_nb", variables.Tag_Nb());
    out.Number("tag_cur", variables.Tag_Cur());
    const auto cur = static_cast<std::size_t>(variables.Tag_Cur());
    out.Number("tag_enable", variables.Tag_Enable()[cur]);
    out.Number("tag_select", variables.Tag_Select()[cur]);
    out.Number("tag_lock", variables.Tag_Lock()[cur]);
    out.Number("threshold_mode", is_threshold_mode ? 1 : 0);
    out.Number("threshold_min", std::lround(variables.Threshold_Min()[cur]));
    out.Number("threshold_max", std::lround(variables.Threshold_Max()[cur]));
    out.Number("tag_color", variables.Tag_Color(variables.Tag_Cur()));
    out.Text("tag_label", variables.Tag_Name(variables.Tag_Cur()));
    out.Number("brush_cur", variables.Brush_Cur());
    out.Number("brush_pixels", static_cast<long long>(variables.Brush().Pixel_Nb()));
    out.Number("marker_cur", variables.Marker_Cur());
    out.Text("marker_label", variables.Marker_Name(variables.Marker_Cur()));
}

void Application::Report_Volume(Json_Text& out) const {
    out.Number("volume_nb", volumes.Nb());
    out.Number("volume_cur", volumes.Current());
    out.Text("volume_title", session.Has_Volume() ? volumes.Facts(volumes.Current()).title : "");
    out.Number("not_opened", std::ranges::count(not_opened, '\n'));
    out.Number("slice", slice);
    out.Number("slice_nb", session.Slice_Nb());
    out.Number("undo_nb", static_cast<long long>(session.Journal().Undo_Nb()));
    out.Number("redo_nb", static_cast<long long>(session.Journal().Redo_Nb()));
    out.Number("unsaved", session.Is_Unsaved() ? 1 : 0);
    out.Object_Begin("markers");
    for (int marker = 0; marker < MARKER_NB; ++marker) {
        const Marker place = session.Markers().Get(marker);
        if (place.is_placed) {
            out.List_Begin(std::to_string(marker));
            out.Number({}, place.x);
            out.Number({}, place.y);
            out.Number({}, place.slice);
            out.List_End();
        }
    }
    out.Object_End();
    out.Object_Begin("counts");
    const auto counts = session.Labels().Counts();
    for (std::size_t tag = 1; tag < counts.size(); ++tag) {
        if (counts[tag] != 0) {
            out.Number(std::to_string(tag), static_cast<long long>(counts[tag]));
        }
    }
    out.Object_End();
    out.Number("slice_pixels", static_cast<long long>(std::ranges::count_if(
                                   session.Labels().Slice(slice), [](std::uint8_t tag) { return tag != 0; })));
}

void Application::Report_Database(Json_Text& out) {
    const Tool_DB_List& panel = database.Panel();
    const DB_List* const rows = panel.List_Pt();
    int leaves = 0;
    int checked = 0;
    int shown = 0;
    out.List_Begin("db_rows");
    for (int at = 0; rows != nullptr && at < panel.Nb(); ++at) {
        const bool is_leaf = (rows[at].flag & DB_FLAG_LEAF) != 0;
        leaves += is_leaf ? 1 : 0;
        checked += is_leaf && (rows[at].state & DB_STATE_CHECKED) != 0 ? 1 : 0;
        shown += rows[at].row != DB_ROW_NONE ? 1 : 0;
        if (at < DB_ROWS_MOST) {
            const std::string title = rows[at].title != nullptr ? rows[at].title : "";
            const std::string name = rows[at].name != nullptr ? rows[at].name : "";
            out.Object_Begin();
            out.Number("level", rows[at].level);
            out.Number("row", rows[at].row != DB_ROW_NONE ? static_cast<int>(rows[at].row) : -1);
            out.Text("title", title);
            out.Text("name", name);
            out.Object_End();
        }
    }
    out.List_End();
    out.Number("db_nb", panel.Nb());
    out.Number("db_leaves", leaves);
    out.Number("db_checked", checked);
    out.Number("db_shown", shown);
    out.Number("db_scroll", static_cast<int>(panel.vertical.value));
    out.Number("db_editor", database.Is_Editor() ? 1 : 0);
    out.Text("class_undo", class_history.Journal().Undo_Title());
    out.Text("class_redo", class_history.Journal().Redo_Title());
    out.Number("class_unsaved", class_history.Is_Unsaved() ? 1 : 0);
}

void Application::Report_Histogram(Json_Text& out) {
    const bool has_counts = histogram_panel.data != nullptr && histogram_panel.data->Has_Counts();
    const Histo_Record* const record = has_counts ? histogram_panel.data->record : nullptr;
    out.Number("histogram_exponent", panel_scale.exponent);
    out.Number("histogram_bins", has_counts ? record->nb_bins : 0);
    out.Number("histogram_pixels", has_counts ? static_cast<long long>(std::accumulate(
                                                    record->counts, record->counts + record->nb_bins, 0ULL))
                                              : 0);
    std::string marked;
    for (const auto& [command, name] : {std::pair{Command::Histogram_All, "all"},
                                        {Command::Histogram_Shown, "shown"},
                                        {Command::Histogram_Range, "range"}}) {
        marked += commands.Is_Checked(command) ? name : "";
    }
    out.Text("histogram_mark", marked);
    out.Number("histogram_smoothed", histogram.Is_Smoothed() ? 1 : 0);
    out.Text("histogram_source", Histogram_Source());
    out.Text("background", histogram.Background() ? Number_Text(*histogram.Background(), LEVEL_DIGITS) : "none");
    out.Number("peaks_stale", analysis.Is_Stale() ? 1 : 0);
    out.List_Begin("peaks");
    for (const Peak_Row& peak : analysis.Table().rows) {
        out.Object_Begin();
        out.Text("text", Peak_Row_Text(peak, ' '));
        out.Real("centre", peak.centre);
        out.Real("share", peak.share);
        out.Object_End();
    }
    out.List_End();
}

void Application::Report_State() {
    Json_Text out;
    out.Object_Begin();
    out.Number("number", ++report_nb);
    Report_Places(out);
    Report_View(out);
    Report_Tags(out);
    Report_Volume(out);
    Report_Database(out);
    Report_Histogram(out);
    Windows_Write(out);
    HMENU menu = ::GetMenu(window.Handle());
    if (!Is_In_Menu()) {     // an open menu's entries must not change
        Menu_Refresh(menu);  // as when it opens
    }
    Menus_Write(out, menu);
    out.Object_Begin("input");
    report_questions.Input_Write(out);
    out.Object_End();
    out.Object_End();
    report.Line("state " + out.Written());
}

}  // namespace workbench
