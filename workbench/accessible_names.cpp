#include "workbench/accessible_names.h"

#include <windows.h>

#include <oleacc.h>

#include <string>
#include <utility>

#include "workbench/accessible.h"
#include "workbench/database/database_pane.h"
#include "workbench/image_area.h"
#include "workbench/panel_set.h"
#include "workbench/status_line.h"
#include "workbench/trace_view.h"
#include "workbench/warning_banner.h"

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

void Accessible_Names_Give(Named_Parts parts) {
    parts.panels.Accessible_Names();
    parts.database.Accessible_Names();
    Image_Area& image = parts.image;
    Status_Line& status_line = parts.status_line;
    Trace_View& trace = parts.trace;
    Warning_Banner& banner = parts.banner;
    image.Slices().Accessible_Set(Plain_Source(
        ROLE_SYSTEM_GRAPHIC,
        [volume = std::move(parts.volume)] {
            const std::wstring text = volume();
            return text.empty() ? std::wstring(L"No image") : L"Image: " + text;
        },
        [&image, &status_line] {
            return image.Slices().Caption() + (status_line.Voxel().empty() ? L"" : L"\n" + status_line.Voxel());
        }));
    for (int view = 0; view < Plane_Views::VIEW_NB; ++view) {
        const auto caption = [&image, view] { return image.Other(view).Caption(); };
        image.Other(view).Accessible_Set(Plain_Source(ROLE_SYSTEM_GRAPHIC, caption, caption));
    }
    status_line.Accessible_Set(Plain_Source(
        ROLE_SYSTEM_STATUSBAR, [] { return std::wstring(L"Status"); },
        [&status_line] {
            return status_line.Message() + (status_line.Mark().empty() ? L"" : L"\n" + status_line.Mark());
        }));
    trace.Accessible_Set(Plain_Source(
        ROLE_SYSTEM_TEXT, [] { return std::wstring(L"Trace"); }, [&trace] { return trace.Text(); }));
    banner.Accessible_Set(Plain_Source(ROLE_SYSTEM_ALERT, [&banner] { return banner.Text(); }));
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
