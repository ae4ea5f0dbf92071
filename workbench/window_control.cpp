#include "workbench/window_control.h"

#include <windows.h>

#include <shlobj.h>

#include "workbench/commands/keys_text.h"
#include "workbench/volumes/message_text.h"
#include "workbench/wide_text.h"
#include "workbench/window_places.h"
#include "workbench/window_theme.h"

namespace workbench {

namespace {

constexpr int WINDOW_WIDTH = 1320;  // of the first start, pixels at 96 dots per inch
constexpr int WINDOW_HEIGHT = 860;

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
    of.database_width_choose(of.look.Px(kept.database_width));
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
    for (const Kept_Window& one : of.windows()) {
        one.place_set(kept.*one.kept);
    }
    of.arrange(kept);
}

void Window_Control::Settings_Keep() {
    Settings& kept = of.settings.Now();
    if (const Window_Place place = Place_Of(of.window()); place.width > 0) {
        kept.window = place;
    }
    for (const Kept_Window& one : of.windows()) {
        kept.*one.kept = one.place_now();
    }
    kept.are_labels_shared = of.labels.Is_Shared();
    kept.is_light = of.look.Theme() == Library_Theme::Light;
    of.arrangement_take(kept);
    if (!of.settings.Keep()) {
        of.dialogs.Log("settings_not_saved");
    }
}

void Window_Control::Trace_Show(bool shown) {
    of.trace_show(shown);
    of.lay_out();
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
    of.look_changed();
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

void Window_Control::Quit() {
    ::SendMessageW(of.window(), WM_CLOSE, 0, 0);
}

}  // namespace workbench
