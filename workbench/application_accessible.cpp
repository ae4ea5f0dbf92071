// What programs that read the screen aloud are told.
#include <oleacc.h>

#include <string>
#include <utility>

#include "workbench/accessible.h"
#include "workbench/application.h"

namespace workbench {

namespace {

Accessible_Source Plain_Source(LONG role, std::function<std::wstring()> name,
                               std::function<std::wstring()> value = {}) {
    Accessible_Source source;
    source.role = role;
    source.name = std::move(name);
    source.value = std::move(value);
    return source;
}

}  // namespace

void Application::Accessible_Names() {
    tag_host->Accessible_Names(L"TAG");
    brush_host->Accessible_Names(L"Brush", [](int index) { return L"Brush " + std::to_wstring(index + 1); });
    propagate_host->Accessible_Names(L"Frames");
    marker_host->Accessible_Names(L"Markers");
    histogram_host->Accessible_Names(L"Histogram", [](int) { return std::wstring(L"Magnification"); });
    database.Accessible_Names();
    tool_area.Accessible_Names();
    image.Slices().Accessible_Set(Plain_Source(
        ROLE_SYSTEM_GRAPHIC, [this] { return session.Has_Volume() ? L"Image: " + Volume_Text() : L"No image"; },
        [this] {
            return image.Slices().Caption() + (status_line.Voxel().empty() ? L"" : L"\n" + status_line.Voxel());
        }));
    for (int view = 0; view < Plane_Views::VIEW_NB; ++view) {
        const auto caption = [this, view] { return image.Other(view).Caption(); };
        image.Other(view).Accessible_Set(Plain_Source(ROLE_SYSTEM_GRAPHIC, caption, caption));
    }
    status_line.Accessible_Set(Plain_Source(
        ROLE_SYSTEM_STATUSBAR, [] { return std::wstring(L"Status"); },
        [this] { return status_line.Message() + (status_line.Mark().empty() ? L"" : L"\n" + status_line.Mark()); }));
    trace.Accessible_Set(Plain_Source(
        ROLE_SYSTEM_TEXT, [] { return std::wstring(L"Trace"); }, [this] { return trace.Text(); }));
    banner.Accessible_Set(Plain_Source(ROLE_SYSTEM_ALERT, [this] { return banner.Text(); }));
}

void Tool_Area::Accessible_Names() {
    Accessible_Source source;
    source.role = ROLE_SYSTEM_PANE;
    source.name = [] { return std::wstring(L"Tool panels"); };
    source.parts = [this] {
        std::vector<Accessible_Part> parts;
        for (std::size_t at = 0; at < sections.size(); ++at) {
            Accessible_Part part;
            part.name = sections[at].title;
            part.value = sections[at].note;
            part.role = ROLE_SYSTEM_PUSHBUTTON;
            part.state = (sections[at].is_folded ? STATE_SYSTEM_COLLAPSED : STATE_SYSTEM_EXPANDED) |
                         (static_cast<int>(at) == focused ? STATE_SYSTEM_SELECTED : 0);
            part.place = sections[at].heading;
            parts.push_back(std::move(part));
        }
        return parts;
    };
    Accessible_Set(std::move(source));
}

}  // namespace workbench
