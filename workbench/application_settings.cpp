// What is kept between two starts.
#include <windows.h>

#include <shlobj.h>

#include <algorithm>
#include <cmath>

#include "workbench/application.h"
#include "workbench/enlarged_window.h"
#include "workbench/volumes/message_text.h"
#include "workbench/wide_text.h"
#include "workbench/window_places.h"

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

void Application::Settings_Open() {
    settings.Open(options.settings.empty() ? Usual_Place() : volumes::Path_From_Utf8(options.settings));
    const Settings& kept = settings.Now();
    look.Theme_Set(kept.is_light ? Library_Theme::Light : Library_Theme::Dark);
    is_overlay_shown = kept.is_overlay_shown;
    database_width = look.Px(kept.database_width);
}

void Application::Settings_Apply() {
    report.Line("settings_ignored " + std::to_string(settings.Ignored()));
    const Settings& kept = settings.Now();
    const Window_Place area = Screen_Of(nullptr);
    Window_Place place = kept.window;
    if (place.width <= 0) {
        place = {area.left, area.top, look.Px(WINDOW_WIDTH), look.Px(WINDOW_HEIGHT), false};
    }
    place = Place_Inside(place, area);
    // What was not kept is left where the system puts it.
    ::SetWindowPos(window.Handle(), nullptr, place.left, place.top, place.width, place.height,
                   SWP_NOZORDER | (kept.window.width > 0 ? 0U : static_cast<UINT>(SWP_NOMOVE)));
    analysis.Place_Set(kept.peaks_window, look.Px(BESIDE_IMAGE));
    Enlarged_Place_Set(window.Handle(), look.Px(BESIDE_IMAGE), kept.enlarged_window);
    not_opened_list.Place_Set(kept.list_window, look.Px(BESIDE_IMAGE));
    read_list.Place_Set(kept.facts_window, look.Px(BESIDE_IMAGE));
    segmentation_services.Statistics_Window().Place_Set(kept.statistics_window, look.Px(BESIDE_IMAGE));
    tool_area.Folded_Set(kept.folded);
    image.Planes_Show(kept.is_planes_shown);
    trace.Show(options.trace || kept.is_trace_shown);
    database.View_Set(static_cast<Database_View>(kept.database_view));
    Database_Show(kept.is_database_shown);
}

void Application::Settings_Keep() {
    Settings& kept = settings.Now();
    if (const Window_Place place = Place_Of(window.Handle()); place.width > 0) {
        kept.window = place;
    }
    kept.peaks_window = analysis.Place_Now();
    kept.enlarged_window = Enlarged_Place_Now();
    kept.list_window = not_opened_list.Place_Now();
    kept.facts_window = read_list.Place_Now();
    kept.statistics_window = segmentation_services.Statistics_Window().Place_Now();
    kept.is_light = look.Theme() == Library_Theme::Light;
    kept.is_overlay_shown = is_overlay_shown;
    kept.is_planes_shown = image.Is_Planes();
    kept.is_trace_shown = trace.Is_Shown() && !options.trace;
    kept.is_database_shown = database.Is_Shown();
    kept.database_view = static_cast<int>(database.View());
    kept.database_width =
        std::min(static_cast<int>(std::lround(static_cast<float>(database_width) / look.Scale())), DATABASE_WIDTH_MAX);
    kept.folded = tool_area.Folded();
    if (!settings.Keep()) {
        report.Line("settings_not_saved");
    }
}

void Application::Recent_Opened(const std::filesystem::path& path) {
    std::error_code unknown;
    const std::filesystem::path whole = std::filesystem::absolute(path, unknown);
    Recent_Add(settings.Now().recent, Utf8_Of_Wide((unknown ? path : whole).wstring()));
    Settings_Keep();
}

std::vector<Numbered_Entry> Application::Recent_Entries() const {
    std::vector<Numbered_Entry> entries;
    for (const std::string& path : settings.Now().recent) {
        entries.push_back({"&" + std::to_string(entries.size() + 1) + "  " + Menu_Text(path)});
    }
    return entries;
}

void Application::Recent_Open(int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= settings.Now().recent.size()) {
        return;
    }
    const std::filesystem::path path = volumes::Path_From_Utf8(settings.Now().recent[static_cast<std::size_t>(index)]);
    Open_Paths({&path, 1});
}

}  // namespace workbench
