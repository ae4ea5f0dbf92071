// What is kept between two starts.
#include <windows.h>

#include <shlobj.h>

#include <algorithm>
#include <cmath>

#include "workbench/application.h"
#include "workbench/volumes/message_text.h"
#include "workbench/volumes/unfinished_file.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int window_width = 1320;  // of the first start, pixels at 96 dots per inch
constexpr int window_height = 860;

/** In the user's profile; empty when there is none, and then nothing is kept. */
std::filesystem::path Usual_Place() {
    wchar_t folder[MAX_PATH] = {};
    if (::SHGetFolderPathW(nullptr, CSIDL_APPDATA, nullptr, SHGFP_TYPE_CURRENT, folder) != S_OK) {
        return {};
    }
    return std::filesystem::path(folder) / L"Workbench" / L"settings.txt";
}

Window_Place Screen_Area() {
    RECT work = {};
    ::SystemParametersInfoW(SPI_GETWORKAREA, 0, &work, 0);
    return {work.left, work.top, work.right - work.left, work.bottom - work.top, false};
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
    const Window_Place area = Screen_Area();
    Window_Place place = settings.window;
    if (place.width <= 0) {
        place = {area.left, area.top, look.Px(window_width), look.Px(window_height), false};
    }
    place = Place_Inside(place, area);
    // What was not kept is left where the system puts it.
    ::SetWindowPos(window.Handle(), nullptr, place.left, place.top, place.width, place.height,
                   SWP_NOZORDER | (settings.window.width > 0 ? 0U : static_cast<UINT>(SWP_NOMOVE)));
    tool_area.Folded_Set(settings.folded);
    trace.Show(options.trace || settings.is_trace_shown);
    database.View_Set(static_cast<Database_View>(settings.database_view));
    Database_Show(settings.is_database_shown);
}

void Application::Settings_Keep() {
    if (settings_file.empty()) {
        return;
    }
    WINDOWPLACEMENT place = {};
    place.length = sizeof place;
    if (::GetWindowPlacement(window.Handle(), &place) != 0) {
        const RECT& normal = place.rcNormalPosition;
        const bool is_maximized = place.showCmd == SW_SHOWMAXIMIZED || (place.flags & WPF_RESTORETOMAXIMIZED) != 0;
        settings.window = {normal.left, normal.top, normal.right - normal.left, normal.bottom - normal.top,
                           is_maximized};
    }
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

void Application::Recent_Menu(HMENU menu) {
    constexpr auto first = static_cast<UINT>(Command::RECENT_0);
    for (UINT at = 0; at <= RECENT_MAX; ++at) {  // one more: the line above them
        ::RemoveMenu(menu, first + at, MF_BYCOMMAND);
    }
    if (settings.recent.empty()) {
        return;
    }
    ::AppendMenuW(menu, MF_SEPARATOR, first + RECENT_MAX, nullptr);
    for (UINT at = 0; at < settings.recent.size(); ++at) {
        std::wstring name = Wide_Of_Utf8(settings.recent[at]);
        // A mark in a file's name would underline a letter.
        for (std::size_t mark = name.find(L'&'); mark != std::wstring::npos; mark = name.find(L'&', mark + 2)) {
            name.insert(mark, 1, L'&');
        }
        ::AppendMenuW(menu, MF_STRING, first + at, (L"&" + std::to_wstring(at + 1) + L"  " + name).c_str());
    }
}

void Application::Recent_Open(int index) {
    if (index < 0 || static_cast<std::size_t>(index) >= settings.recent.size()) {
        return;
    }
    const std::filesystem::path path = volumes::Path_From_Utf8(settings.recent[static_cast<std::size_t>(index)]);
    Open_Paths({&path, 1});
}

}  // namespace workbench
