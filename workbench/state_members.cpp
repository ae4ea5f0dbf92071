#include "workbench/state_members.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>
#include <string>
#include <utility>

#include "kits/common/contract.h"
#include "workbench/application_parts.h"
#include "workbench/model/json_text.h"
#include "workbench/model/number_text.h"
#include "workbench/wide_text.h"
#include "workbench/window_report.h"

namespace workbench {

namespace {

constexpr int DB_ROWS_MOST = 100;  // enough of the tree to click on
constexpr int LEVEL_DIGITS = 4;

void Places_Write(Application_Parts& of, Json_Text& out) {
    out.Object_Begin("places");
    Place_Write(out, "window", of.window.Handle());
    Place_Write(out, "image", of.image.Handle());
    for (int view = 0; view < Plane_Views::VIEW_NB; ++view) {
        if (of.image.Is_Shown(view + 1)) {
            Place_Write(out, view == 0 ? "plane_0" : "plane_1", of.image.Other(view).Handle());
        }
    }
    if (of.image.Is_Shown(TABLE_VIEW)) {
        Place_Write(out, "table", of.image.Table().Handle());
    }
    Place_Write(out, "tag", of.panels.Host(Pane::Tag).Handle());
    Place_Write(out, "brush", of.panels.Host(Pane::Brush).Handle());
    Place_Write(out, "frames", of.panels.Host(Pane::Frames).Handle());
    Place_Write(out, "marker", of.panels.Host(Pane::Marker).Handle());
    Place_Write(out, "histogram", of.panels.Host(Pane::Histogram).Handle());
    Place_Write(out, "banner", of.banner.Handle());
    Place_Write(out, "trace", of.trace.Handle());
    Place_Write(out, "database", of.database.Column().Handle());
    Place_Write(out, "database_panel", of.database.Column().Panel_Window());
    out.Object_End();
}

void Views_Write(Application_Parts& of, Json_Text& out) {
    const Settings& kept = of.settings.Now();
    out.Number("views", 1 + std::ranges::count_if(std::array{1, 2, TABLE_VIEW}, [&of](int view) {
                            return of.image.Is_Planes() && of.image.Is_Shown(view);
                        }));
    out.Number("large_view", kept.views.large);
    out.Number("linked", kept.views.is_linked ? 1 : 0);
    out.Number("linear", kept.is_linear ? 1 : 0);
    out.Number("differences", of.commands.Is_Checked(Command::Differences) ? 1 : 0);
    if (of.work.session.Has_Volume() && of.tools.Slider({of.work.session.Slice_Pictures(), of.work.slice})) {
        const Slider_Boxes boxes = of.image.Slices().Tool_Slider_Boxes();
        out.Object_Begin("tool_slider");  // in the window of the slices, left, top, width and height
        for (const auto& [name, box] :
             {std::pair("track", boxes.track), std::pair("take", boxes.take), std::pair("drop", boxes.drop)}) {
            out.List_Begin(name);
            for (const LONG at : {box.left, box.top, box.right - box.left, box.bottom - box.top}) {
                out.Number({}, at);
            }
            out.List_End();
        }
        out.Object_End();
    }
}

void View_Write(Application_Parts& of, Json_Text& out) {
    // Pictures in the windows of their views, real pixels.
    const auto place = [&out, &of](const char* name, const View_Layout& view) {
        out.Object_Begin(name);
        out.Real("left", view.To_Screen_X(0));
        out.Real("top", view.To_Screen_Y(0));
        out.Real("scale_x", view.scale_x);
        out.Real("scale_y", view.scale_y);
        out.Number("width", of.work.session.Has_Volume() ? view.slice_width : 0);
        out.Number("height", of.work.session.Has_Volume() ? view.slice_height : 0);
        out.Object_End();
    };
    place("slice_place", of.image.Slices().Layout());
    out.Number("planes", of.image.Is_Planes() ? 1 : 0);
    Views_Write(of, out);
    for (int view = 0; view < Plane_Views::VIEW_NB; ++view) {
        if (!of.work.session.Has_Volume() || !of.image.Is_Shown(view + 1)) {
            continue;
        }
        place(view == 0 ? "plane_place_0" : "plane_place_1", of.image.Other(view).Layout());
        out.Text("plane_text_" + std::to_string(view), Utf8_Of_Wide(of.image.Other(view).Caption()));
    }
    if (of.work.session.Has_Volume()) {
        const Shown_Voxel cross = of.planes.Cross();
        out.List_Begin("cross");
        for (const int at : {cross.x, cross.y, cross.slice}) {
            out.Number({}, at);
        }
        out.List_End();
    }
    out.List_Begin("measurements");
    for (const std::string& text : of.tools.Measurements().Texts()) {
        out.Text({}, text);
    }
    out.List_End();
    out.Number("space", of.variables.Dimensions().space);  // between widgets
    out.Number("contract_reports", Contract_Report_Nb());
    out.Number("focus", static_cast<int>(of.focus.Now()));
    out.Number("cursor_x", of.image.Slices().Is_Cursor() ? of.image.Slices().Cursor_X() : -1);
    out.Number("cursor_y", of.image.Slices().Is_Cursor() ? of.image.Slices().Cursor_Y() : -1);
    out.Number("alike", of.color_advisor.Alike_Nb());
    out.Number("light", of.look.Theme() == Library_Theme::Light ? 1 : 0);
    out.Number("scale_x100", std::lround(of.look.Scale() * 100.0F));
    out.Number("folded", of.panels.Area().Folded());
    out.Number("histogram_scale_x1000", std::lround(of.panels.Histogram().scale * 1000.0F));
    out.Number("recent_nb", static_cast<long long>(of.settings.Now().recent.size()));
    out.Text("voxel", Utf8_Of_Wide(of.status_line.Voxel()));
    out.Number("window_low_x100", std::lround(of.work.grey_window.low * 100.0F));
    out.Number("window_high_x100", std::lround(of.work.grey_window.high * 100.0F));
    out.Number("wheel_turned", of.settings.Now().is_wheel_turned ? 1 : 0);
}

void Tags_Write(Application_Parts& of, Json_Text& out) {
    out.Number("tag_nb", of.variables.Tag_Nb());
    out.Number("tag_cur", of.variables.Tag_Cur());
    const auto cur = static_cast<std::size_t>(of.variables.Tag_Cur());
    out.Number("tag_enable", of.variables.Tag_Enable()[cur]);
    out.Number("tag_select", of.variables.Tag_Select()[cur]);
    out.Number("tag_lock", of.variables.Tag_Lock()[cur]);
    out.Number("threshold_mode", of.tags.Is_Threshold_Mode() ? 1 : 0);
    out.Number("threshold_min", std::lround(of.variables.Threshold_Min()[cur]));
    out.Number("threshold_max", std::lround(of.variables.Threshold_Max()[cur]));
    out.Number("tag_color", of.variables.Tag_Color(of.variables.Tag_Cur()));
    out.Text("tag_label", of.variables.Tag_Name(of.variables.Tag_Cur()));
    out.Number("brush_cur", of.variables.Brush_Cur());
    out.Number("brush_pixels", static_cast<long long>(of.variables.Brush().Pixel_Nb()));
    out.Number("marker_cur", of.variables.Marker_Cur());
    out.Text("marker_label", of.variables.Marker_Name(of.variables.Marker_Cur()));
}

void Volume_Write(Application_Parts& of, Json_Text& out) {
    out.Number("volume_nb", of.work.volumes.Nb());
    out.Number("read_nb", of.work.volumes.Read_Nb(of.work.session));
    out.Number("volume_cur", of.work.volumes.Current());
    out.Text("volume_title",
             of.work.session.Has_Volume() ? of.work.volumes.Facts(of.work.volumes.Current()).title : "");
    out.Number("not_opened", of.opener.Not_Opened_Nb());
    out.Number("slice", of.work.slice);
    out.Number("slice_nb", of.work.session.Slice_Nb());
    out.Number("undo_nb", static_cast<long long>(of.work.session.Journal().Undo_Nb()));
    out.Number("redo_nb", static_cast<long long>(of.work.session.Journal().Redo_Nb()));
    out.Number("unsaved", of.work.session.Is_Unsaved() ? 1 : 0);
    out.Object_Begin("markers");
    for (int marker = 0; marker < MARKER_NB; ++marker) {
        const Marker place = of.work.session.Markers().Get(marker);
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
    const auto counts = of.work.session.Labels().Counts();
    for (std::size_t tag = 1; tag < counts.size(); ++tag) {
        if (counts[tag] != 0) {
            out.Number(std::to_string(tag), static_cast<long long>(counts[tag]));
        }
    }
    out.Object_End();
    out.Number("slice_pixels",
               static_cast<long long>(std::ranges::count_if(of.work.session.Labels().Slice(of.work.slice),
                                                            [](std::uint8_t tag) { return tag != 0; })));
}

void Database_Write(Application_Parts& of, Json_Text& out) {
    const Tool_DB_List& panel = of.database.Column().Panel();
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
    out.Number("db_editor", of.database.Column().Is_Editor() ? 1 : 0);
    out.Text("class_undo", of.database.History().Journal().Undo_Title());
    out.Text("class_redo", of.database.History().Journal().Redo_Title());
    out.Number("class_unsaved", of.database.History().Is_Unsaved() ? 1 : 0);
}

void Histogram_Write(Application_Parts& of, Json_Text& out) {
    const bool has_counts = of.panels.Histogram().data != nullptr && of.panels.Histogram().data->Has_Counts();
    const Histo_Record* const record = has_counts ? of.panels.Histogram().data->record : nullptr;
    out.Number("histogram_counting", of.counting.Is_Busy() ? 1 : 0);
    out.Number("histogram_exponent", of.work.panel_scale.exponent);
    out.Number("histogram_bins", has_counts ? record->nb_bins : 0);
    out.Number("histogram_pixels", has_counts ? static_cast<long long>(std::accumulate(
                                                    record->counts, record->counts + record->nb_bins, 0ULL))
                                              : 0);
    std::string marked;
    for (const auto& [command, name] : {std::pair{Command::Histogram_All, "all"},
                                        {Command::Histogram_Shown, "shown"},
                                        {Command::Histogram_Range, "range"}}) {
        marked += of.commands.Is_Checked(command) ? name : "";
    }
    out.Text("histogram_mark", marked);
    out.Number("histogram_smoothed", of.histogram.Is_Histogram_Smoothed() ? 1 : 0);
    out.Text("histogram_source", of.histogram.Source_Text());
    out.Text("background", of.histogram.Control().Background()
                               ? Number_Text(*of.histogram.Control().Background(), LEVEL_DIGITS)
                               : "none");
    out.Number("peaks_stale", of.histogram.Analysis().Is_Stale() ? 1 : 0);
    out.List_Begin("peaks");
    for (const Peak_Row& peak : of.histogram.Analysis().Table().rows) {
        out.Object_Begin();
        out.Text("text", Peak_Row_Text(peak, ' '));
        out.Real("centre", peak.centre);
        out.Real("share", peak.share);
        out.Object_End();
    }
    out.List_End();
}

}  // namespace

void State_Members_Write(Application_Parts& parts, Json_Text& out) {
    Places_Write(parts, out);
    View_Write(parts, out);
    Tags_Write(parts, out);
    Volume_Write(parts, out);
    Database_Write(parts, out);
    Histogram_Write(parts, out);
}

}  // namespace workbench
