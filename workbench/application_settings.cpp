// What is kept between two starts.
#include <windows.h>

#include <shlobj.h>

#include <algorithm>
#include <cmath>

#include "workbench/application.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/unfinished_file.h"
#include "workbench/wide_text.h"
#include "workbench/window_places.h"

namespace workbench {

namespace {

constexpr int window_width = 1320;  // of the first start, pixels at 96 dots per inch
constexpr int window_height = 860;
constexpr int tool_width = 470;  // of the tools and the frame, at most

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
    settings_file = options.settings.empty() ? Usual_Place() : volumes::Path_From_Utf8(options.settings);
    if (!settings_file.empty()) {
        volumes::Unfinished_Remove(settings_file);
    }
    settings = settings_file.empty() ? Settings{} : Settings_Load(settings_file, &settings_ignored);
    look.Theme_Set(settings.is_light ? Library_Theme::Light : Library_Theme::Dark);
    is_overlay_shown = settings.is_overlay_shown;
    database_width = look.Px(settings.database_width);
}

void Application::Settings_Apply() {
    report.Line("settings_ignored " + std::to_string(settings_ignored));
    const Window_Place area = Screen_Of(nullptr);
    Window_Place place = settings.window;
    if (place.width <= 0) {
        place = {area.left, area.top, look.Px(window_width), look.Px(window_height), false};
    }
    place = Place_Inside(place, area);
    // What was not kept is left where the system puts it.
    ::SetWindowPos(window.Handle(), nullptr, place.left, place.top, place.width, place.height,
                   SWP_NOZORDER | (settings.window.width > 0 ? 0U : static_cast<UINT>(SWP_NOMOVE)));
    analysis.Place_Set(settings.peaks_window, look.Px(tool_width));
    not_opened_list.Place_Set(settings.list_window, look.Px(tool_width));
    read_list.Place_Set(settings.facts_window, look.Px(tool_width));
    tool_area.Folded_Set(settings.folded);
    trace.Show(options.trace || settings.is_trace_shown);
    database.View_Set(static_cast<Database_View>(settings.database_view));
    Database_Show(settings.is_database_shown);
}

void Application::Settings_Keep() {
    if (settings_file.empty()) {
        return;
    }
    if (const Window_Place place = Place_Of(window.Handle()); place.width > 0) {
        settings.window = place;
    }
    settings.peaks_window = analysis.Place_Now();
    settings.list_window = not_opened_list.Place_Now();
    settings.facts_window = read_list.Place_Now();
    settings.is_light = look.Theme() == Library_Theme::Light;
    settings.is_overlay_shown = is_overlay_shown;
    settings.is_trace_shown = trace.Is_Shown() && !options.trace;
    settings.is_database_shown = database.Is_Shown();
    settings.database_view = static_cast<int>(database.View());
    settings.database_width =
        std::min(static_cast<int>(std::lround(static_cast<float>(database_width) / look.Scale())), DATABASE_WIDTH_MAX);
    settings.folded = tool_area.Folded();
    if (!Settings_Save(settings_file, settings)) {
        report.Line("settings_not_saved");
    }
}

void Application::Recent_Opened(const std::filesystem::path& path) {
    std::error_code unknown;
    const std::filesystem::path whole = std::filesystem::absolute(path, unknown);
    Recent_Add(settings.recent, Utf8_Of_Wide((unknown ? path : whole).wstring()));
    Settings_Keep();
}

std::vector<Numbered_Entry> Application::Recent_Entries() const {
    std::vector<Numbered_Entry> entries;
    for (const std::string& path : settings.recent) {
        entries.push_back({"&" + std::to_string(entries.size() + 1) + "  " + Menu_Text(path)});
    }
    return entries;
}

void Application::Recent_Open(int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= settings.recent.size()) {
        return;
    }
    const std::filesystem::path path = volumes::Path_From_Utf8(settings.recent[static_cast<std::size_t>(index)]);
    Open_Paths({&path, 1});
}

}  // namespace workbench
