// What programs that drive the application are told about its state.
#include <algorithm>
#include <cmath>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

#include "kits/common/contract.h"
#include "workbench/application.h"
#include "workbench/model/json_text.h"
#include "workbench/model/number_text.h"
#include "workbench/wide_text.h"
#include "workbench/window_report.h"

namespace workbench {

namespace {

constexpr int db_rows_most = 100;  // enough of the tree to click on
constexpr int number_digits = 4;

}  // namespace

/** Members of one object, and the same as lines "NAME VALUE". */
class State_Members {
  public:
    void Number(const std::string& name, long long value) {
        json.Number(name, value);
        lines.push_back(name + " " + std::to_string(value));
    }
    void Text(const std::string& name, const std::string& value) {
        json.Text(name, value);
        lines.push_back(name + " " + value);
    }
    void Place(const char* name, HWND window) {
        Place_Write(json, name, window);
        RECT place = {};
        ::GetWindowRect(window, &place);
        lines.push_back("place " + std::string(name) + " " + std::to_string(place.left) + " " +
                        std::to_string(place.top) + " " + std::to_string(place.right - place.left) + " " +
                        std::to_string(place.bottom - place.top) +
                        (::IsWindowVisible(window) != 0 ? " shown" : " hidden"));
    }

    Json_Text json;
    std::vector<std::string> lines;
};

void Application::Report_Places(State_Members& out) const {
    out.json.Object_Begin("places");
    out.Place("window", window.Handle());
    out.Place("image", image.Handle());
    out.Place("tag", tag_host->Handle());
    out.Place("brush", brush_host->Handle());
    out.Place("frames", propagate_host->Handle());
    out.Place("marker", marker_host->Handle());
    out.Place("histogram", histogram_host->Handle());
    out.Place("banner", banner.Handle());
    out.Place("trace", trace.Handle());
    out.Place("database", database.Handle());
    out.Place("database_panel", database.Panel_Window());
    out.json.Object_End();
}

void Application::Report_View(State_Members& out) const {
    const View_Layout view = image.Layout();
    const Panel_Dimensions sizes = variables.Dimensions();
    out.json.Object_Begin("slice_place");  // in the image's window, real pixels
    out.json.Real("left", view.To_Screen_X(0));
    out.json.Real("top", view.To_Screen_Y(0));
    out.json.Real("scale_x", view.scale_x);
    out.json.Real("scale_y", view.scale_y);
    out.json.Number("width", session.Has_Volume() ? session.Image().nx : 0);
    out.json.Number("height", session.Has_Volume() ? session.Image().ny : 0);
    out.json.Object_End();
    out.lines.push_back("slice_place " + std::to_string(view.To_Screen_X(0)) + " " +
                        std::to_string(view.To_Screen_Y(0)) + " " + std::to_string(view.scale_x) + " " +
                        std::to_string(view.scale_y));
    out.Number("slider_left", image.Slider_Box().left);
    out.Number("row_height", sizes.border + sizes.button);
    out.Number("space", sizes.space);
    out.Number("contract_reports", Contract_Report_Nb());
    out.Number("focus", focus_pane);
    out.Number("cursor_x", image.Is_Cursor() ? image.Cursor_X() : -1);
    out.Number("cursor_y", image.Is_Cursor() ? image.Cursor_Y() : -1);
    out.Number("alike", alike_nb);
    out.Number("light", look.Theme() == Library_Theme::Light ? 1 : 0);
    out.Number("scale_x100", std::lround(look.Scale() * 100.0F));
    out.Number("folded", tool_area.Folded());
    out.Number("histogram_scale_x1000", std::lround(histogram_panel.scale * 1000.0F));
    out.Number("recent_nb", static_cast<long long>(settings.recent.size()));
    out.Text("voxel", Utf8_Of_Wide(status_line.Voxel()));
    out.Number("window_low_x100", std::lround(grey_window.low * 100.0F));
    out.Number("window_high_x100", std::lround(grey_window.high * 100.0F));
    out.Number("wheel_turned", settings.is_wheel_turned ? 1 : 0);
}

void Application::Report_Tags(State_Members& out) const {
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

void Application::Report_Volume(State_Members& out) const {
    out.Number("volume_nb", volumes.Nb());
    out.Number("volume_cur", volumes.Current());
    out.Text("volume_title", session.Has_Volume() ? volumes.Facts(volumes.Current()).title : "");
    out.Number("not_opened", std::ranges::count(not_opened, '\n'));
    out.Number("slice", slice);
    out.Number("slice_nb", session.Slice_Nb());
    out.Number("undo_nb", static_cast<long long>(session.Journal().Undo_Nb()));
    out.Number("redo_nb", static_cast<long long>(session.Journal().Redo_Nb()));
    out.Number("unsaved", session.Is_Unsaved() ? 1 : 0);
    out.json.Object_Begin("markers");
    for (int marker = 0; marker < MARKER_NB; ++marker) {
        const Marker place = session.Markers().Get(marker);
        if (place.is_placed) {
            out.json.List_Begin(std::to_string(marker));
            out.json.Number({}, place.x);
            out.json.Number({}, place.y);
            out.json.Number({}, place.slice);
            out.json.List_End();
            out.lines.push_back("marker " + std::to_string(marker) + " " + std::to_string(place.x) + " " +
                                std::to_string(place.y) + " " + std::to_string(place.slice));
        }
    }
    out.json.Object_End();
    out.json.Object_Begin("counts");
    const auto counts = session.Labels().Counts();
    for (std::size_t tag = 1; tag < counts.size(); ++tag) {
        if (counts[tag] != 0) {
            out.json.Number(std::to_string(tag), static_cast<long long>(counts[tag]));
            out.lines.push_back("count " + std::to_string(tag) + " " + std::to_string(counts[tag]));
        }
    }
    out.json.Object_End();
    out.Number("slice_pixels", static_cast<long long>(std::ranges::count_if(
                                   session.Labels().Slice(slice), [](std::uint8_t tag) { return tag != 0; })));
}

void Application::Report_Database(State_Members& out) {
    const Tool_DB_List& panel = database.Panel();
    const DB_List* const rows = panel.List_Pt();
    int leaves = 0;
    int checked = 0;
    int shown = 0;
    out.json.List_Begin("db_rows");
    for (int at = 0; rows != nullptr && at < panel.Nb(); ++at) {
        const bool is_leaf = (rows[at].flag & DB_FLAG_LEAF) != 0;
        leaves += is_leaf ? 1 : 0;
        checked += is_leaf && (rows[at].state & DB_STATE_CHECKED) != 0 ? 1 : 0;
        shown += rows[at].row != DB_ROW_NONE ? 1 : 0;
        if (at < db_rows_most) {
            const std::string title = rows[at].title != nullptr ? rows[at].title : "";
            const std::string name = rows[at].name != nullptr ? rows[at].name : "";
            out.json.Object_Begin();
            out.json.Number("level", rows[at].level);
            out.json.Number("row", rows[at].row != DB_ROW_NONE ? static_cast<int>(rows[at].row) : -1);
            out.json.Text("title", title);
            out.json.Text("name", name);
            out.json.Object_End();
            out.lines.push_back("db_row " + std::to_string(at) + " " + std::to_string(rows[at].level) + " " +
                                std::to_string(rows[at].row) + " " + std::to_string(rows[at].state) + " " + title +
                                ": " + name);
        }
    }
    out.json.List_End();
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

void Application::Report_Histogram(State_Members& out) {
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
    out.Number("histogram_smoothed", is_histogram_smoothed ? 1 : 0);
    out.Text("histogram_source", Histogram_Source());
    out.Text("background", background ? Number_Text(*background, number_digits) : "none");
    out.Number("peaks_stale", analysis.Is_Stale() ? 1 : 0);
    out.json.List_Begin("peaks");
    for (const Peak_Row& peak : analysis.Table().rows) {
        out.json.Object_Begin();
        out.json.Text("text", Peak_Row_Text(peak, ' '));
        out.json.Real("centre", peak.centre);
        out.json.Real("share", peak.share);
        out.json.Object_End();
        out.lines.push_back("peak " + Peak_Row_Text(peak, ' '));
    }
    out.json.List_End();
}

void Application::Report_State(bool with_lines) {
    State_Members out;
    out.json.Object_Begin();
    out.json.Number("number", ++report_nb);
    Report_Places(out);
    Report_View(out);
    Report_Tags(out);
    Report_Volume(out);
    Report_Database(out);
    Report_Histogram(out);
    Windows_Write(out.json);
    HMENU menu = ::GetMenu(window.Handle());
    if (!Is_In_Menu()) {     // an open menu's entries must not change
        Menu_Refresh(menu);  // as when it opens
    }
    Menus_Write(out.json, menu);
    out.json.Object_Begin("input");
    report_questions.Input_Write(out.json);
    out.json.Object_End();
    out.json.Object_End();
    report.Line("state " + out.json.Written());
    if (with_lines) {
        report.Line("state_begin " + std::to_string(report_nb));
        for (const std::string& line : out.lines) {
            report.Line(line);
        }
        report.Line("state_end " + std::to_string(report_nb));
    }
}

}  // namespace workbench
