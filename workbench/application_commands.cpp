// What menu entries and keys do.
#include "workbench/application.h"
#include "workbench/commands/keys_text.h"
#include "workbench/crash_report.h"
#include "workbench/text_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

void Application::Menu_Refresh(HMENU menu) {
    workbench::Menu_Refresh(menu, commands);
}

void Application::Execute(const Command_Call& call) {
    const Command_Record& record = Record_Of(call.command);
    Activity_Note("command: " + std::string(record.name) +
                  (Is_Numbered(record) ? " " + std::to_string(call.number) : ""));
    commands.Run(call);
}

void Application::Slice_Step(int step) {
    Slice_Go(slice + step);
}

void Application::Slice_To_End(bool is_last) {
    Slice_Go(is_last ? session.Slice_Nb() - 1 : 0);
}

void Application::Volume_Step(int step) {
    Volume_Go(volumes.Current() + step);
}

void Application::Zoom_To(double factor) {
    image.Zoom_Set(factor);
}

void Application::Zoom_Step(int step) {
    image.Slices().Zoom_By(step);
}

void Application::Overlay_Set(bool on) {
    is_overlay_shown = on;
    hub.Note(Change::View);
}

void Application::Range_Overlay_Set(bool on) {
    is_range_shown = on;
    hub.Note(Change::View);
}

void Application::Trace_Show(bool shown) {
    trace.Show(shown);
    Lay_Out();
}

void Application::Theme_Set(bool is_light) {
    look.Theme_Set(is_light ? Library_Theme::Light : Library_Theme::Dark);
    Look_Changed();
}

bool Application::Is_Light() const {
    return look.Theme() == Library_Theme::Light;
}

void Application::Keys_Show() {
    Text_Show(window.Handle(), L"Keys and mouse", Wide_Of_Utf8(Keys_Text()), look.Fixed());
}

void Application::About_Show() {
    ::MessageBoxW(window.Handle(),
                  L"Workbench\n\nShows image volumes and edits their TAGs with the panels of Kit_Panels.dll.", L"About",
                  MB_OK);
}

void Application::Banner_Close() {
    banner.Close();
}

}  // namespace workbench
