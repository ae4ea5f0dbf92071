#include "workbench/part_wiring.h"

#include <windows.h>

#include <algorithm>
#include <cstdint>
#include <cwctype>
#include <span>
#include <utility>

#include "workbench/application_parts.h"
#include "workbench/crash_report.h"
#include "workbench/model/image_memory.h"
#include "workbench/progress_window.h"
#include "workbench/volumes/message_text.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr UINT_PTR RECOVERY_TIMER = 41;
constexpr UINT_PTR COUNTING_TIMER = 42;

/** A line of light letters on black; empty without memory. */
volumes::Picture Letters_Drawn(const std::wstring& text, HFONT font) {
    const RECT area = {0, 0, Line_Width(font, text), Line_Height(font)};
    const Dib_Picture drawn(nullptr, area.right, area.bottom);
    if (!drawn) {
        return {};
    }
    Fill(drawn.Get_DC(), area, RGB(0, 0, 0));
    Draw_Line(drawn.Get_DC(), area, text, font, RGB(255, 255, 255), DT_LEFT);
    Dib_Picture::Flush();
    volumes::Picture letters{drawn.Width(), drawn.Height(), {}};
    const std::size_t size = static_cast<std::size_t>(drawn.Width()) * static_cast<std::size_t>(drawn.Height());
    letters.pixels.assign(drawn.Pixels(), drawn.Pixels() + size);
    return letters;
}

std::uint64_t Machine_Memory() {
    MEMORYSTATUSEX status = {};
    status.dwLength = sizeof status;
    return ::GlobalMemoryStatusEx(&status) != 0 ? status.ullTotalPhys : 0;
}

/** "Slice 91 / 181" and further lines become "Slice 91". */
std::string View_Name(const std::wstring& caption) {
    return Utf8_Of_Wide(caption.substr(0, caption.find(L" /")));
}

}  // namespace

Tool_Host Tool_Wires(Application_Parts& parts) {
    Tool_Host host;
    host.work = [&parts]() -> Session& { return parts.work.session; };
    host.tag = [&parts] { return parts.variables.Tag_Cur(); };
    host.tag_name = [&parts](int tag) { return parts.segmentation_services.Tag_Name(tag); };
    host.is_tag_hidden = [&parts] {
        return parts.variables.Tag_Enable()[static_cast<std::size_t>(parts.variables.Tag_Cur())] == 0;
    };
    host.locked = [&parts] {
        Tag_Flags locked{};
        std::ranges::copy(parts.variables.Tag_Lock(), locked.begin());
        return locked;
    };
    host.only_inside = [&parts] { return parts.segmentation.Only_Inside(); };
    host.slices = [&parts] { return parts.segmentation.Slices(); };
    host.band = [&parts]() -> std::optional<segmentation::Level_Band> {
        for (const Tag_Claim& claim : parts.segmentation_services.Claims()) {
            if (claim.tag == parts.variables.Tag_Cur() && parts.work.session.Has_Volume()) {
                return segmentation::Level_Band_Of(claim.band, parts.work.session.Image());
            }
        }
        return std::nullopt;
    };
    host.brush = [&parts] { return parts.variables.Brush(); };
    host.marker = [&parts] { return parts.variables.Marker_Cur(); };
    host.marker_pick = [&parts](int marker) { parts.tags.Marker_Set(marker); };
    host.marker_place = [&parts](int marker, const Marker& place) { parts.tags.Marker_Place(marker, place); };
    host.note = [&parts](Changes changes) { parts.work.hub.Note(changes); };
    host.pen_lifted = [&parts] { parts.image.Slices().Pen_Lifted(); };
    host.run = [&parts](const std::string& what,
                        const std::function<void(const segmentation::Edit_Progress& progress)>& action) {
        parts.segmentation_services.Run(what, action);
    };
    host.text_ask = [&parts](const std::string& title, const std::string& question, const std::string& start) {
        return parts.segmentation_services.Text_Ask(title, question, start);
    };
    host.tell = [&parts](const std::string& text) { parts.dialogs.Tell(text); };
    host.warn = [&parts](const std::string& text) { parts.dialogs.Warn(text); };
    host.log = [&parts](const std::string& line) { parts.report.Line(line); };
    return host;
}

Segmentation_Wiring Segmentation_Wires(Application_Parts& parts) {
    return {parts.work,
            parts.variables,
            parts.labels,
            parts.dialogs,
            parts.look,
            [&parts] { return parts.window.Handle(); },
            [&parts]() -> std::optional<segmentation::Voxel_Place> {
                const Image_View& slices = parts.image.Slices();
                if (slices.Is_Cursor()) {
                    return segmentation::Voxel_Place{slices.Cursor_X(), slices.Cursor_Y(), parts.work.slice};
                }
                const std::optional<Shown_Voxel>& hovered = parts.slices.Hovered();
                return hovered ? std::optional(segmentation::Voxel_Place{hovered->x, hovered->y, hovered->slice})
                               : std::nullopt;
            },
            [&parts] { parts.tools.Stroke_End(); },
            [&parts](int slice) { parts.view.Slice_Go(slice); },
            [&parts] { parts.image.Refresh(); },
            [&parts] { return parts.image.Is_Shown(TABLE_VIEW) ? &parts.image.Table() : nullptr; },
            [&parts](int tag, const segmentation::Slice_Range& slices) {
                parts.tags.Tag_Set(tag, true);
                parts.histogram.Tag_Take(slices.first, slices.last);
            }};
}

Color_Host Color_Wires(Application_Parts& parts) {
    Color_Host services;
    services.colors = [&parts] { return parts.variables.Tag_Colors(); };
    services.shown_tags = [&parts] {
        std::vector<int> shown;
        for (int tag = 1; tag < parts.variables.Tag_Nb(); ++tag) {  // the background is not drawn over the image
            if (parts.variables.Tag_Enable()[static_cast<std::size_t>(tag)] != 0) {
                shown.push_back(tag);
            }
        }
        return shown;
    };
    services.slice = [&parts] {
        return parts.work.session.Has_Volume()
                   ? std::span<const std::uint8_t>(parts.work.session.Labels().Slice(parts.work.slice))
                   : std::span<const std::uint8_t>();
    };
    services.used_tags = [&parts] {
        std::vector<bool> used(TAG_MAX, false);
        if (parts.work.session.Has_Volume()) {
            const auto counts = parts.work.session.Labels().Counts();
            for (std::size_t tag = 0; tag < used.size(); ++tag) {
                used[tag] = counts[tag] != 0;
            }
        }
        return used;
    };
    services.name = [&parts](int tag) { return parts.labels.Tag_Name(tag); };
    services.mark = [&parts](const std::string& text) { parts.status_line.Mark_Set(Wide_Of_Utf8(text)); };
    services.tell = [&parts](const std::string& text) { parts.dialogs.Tell(text); };
    services.found = [&parts](int pairs) { parts.report.Line("alike_pairs " + std::to_string(pairs)); };
    services.change = [&parts](const std::vector<std::uint32_t>& wanted) {
        for (int tag = 1; tag < TAG_MAX; ++tag) {
            parts.variables.Tag_Color_Set(tag, wanted[static_cast<std::size_t>(tag)]);
        }
        parts.work.session.Note_Colors(parts.variables.Tag_Colors());
        parts.work.hub.Note(Change::Colors);
    };
    services.ask = [&parts](const std::string& text, const std::vector<std::string>& choices) {
        return parts.dialogs.Text_Show("TAG colours", text, choices);
    };
    return services;
}

Picture_Host Picture_Wires(Application_Parts& parts) {
    Picture_Host host;
    host.views = [&parts] {
        std::vector<Pictured_View> shown;
        const auto add = [&](Image_View& view, const Image_User& user) {
            shown.push_back({View_Name(view.Caption()), [&user] { return user.Content(); },
                             [&view](bool is_plain) { return view.Picture_Now(is_plain); }});
        };
        if (parts.work.session.Has_Volume()) {
            parts.tools.Stroke_End();
            if (parts.image.Is_Shown(SLICES_VIEW)) {
                add(parts.image.Slices(), parts.slices);
            }
            for (int view = 0; view < Plane_Views::VIEW_NB; ++view) {
                if (parts.image.Is_Shown(view + 1)) {
                    add(parts.image.Other(view), parts.planes.User(view));
                }
            }
        }
        return shown;
    };
    host.slice_nb = [&parts] { return parts.work.session.Slice_Nb(); };
    host.slice = [&parts](int of) { return parts.slices.Content_Of(of); };
    host.tag_nb = [&parts] { return parts.variables.Tag_Nb(); };
    host.tag_name = [&parts](int tag) { return parts.segmentation_services.Tag_Name(tag); };
    host.letters = [&parts](const std::string& text) { return Letters_Drawn(Wide_Of_Utf8(text), parts.look.Font()); };
    host.line = [&parts](const std::string& title, const std::string& label, const std::vector<std::string>& lines) {
        return parts.segmentation_services.Line_Ask(title, label, lines, 0);
    };
    host.text = [&parts](const std::string& title, const std::string& question, const std::string& start) {
        return parts.segmentation_services.Text_Ask(title, question, start);
    };
    host.file = [&parts](const std::string& title, const std::string& name) {
        return parts.dialogs.File_To_Save(title, File_Kind::Pictures, volumes::Path_From_Utf8(name));
    };
    host.run = [&parts](const std::string& what, const std::function<void(const volumes::Load_Progress&)>& action) {
        parts.dialogs.Run(what, action);
    };
    host.tell = [&parts](const std::string& text) { parts.dialogs.Tell(text); };
    host.warn = [&parts](const std::string& text) { parts.dialogs.Warn(text); };
    return host;
}

Level_Supply_Host Level_Wires(Application_Parts& parts) {
    Level_Supply_Host host;
    host.memory_most = [&parts] { return Image_Memory_Of(parts.settings.Now().image_memory, Machine_Memory()); };
    host.problems_note = [&parts](std::span<const volumes::Folder_Problem> problems) {
        return parts.opener.Read_Warnings_Add(problems);
    };
    host.came = [&parts](int volume) {
        parts.objects.Levels_Came(volume, parts.work.volumes.Session_Of(volume, parts.work.session));
    };
    host.counting_cancel = [&parts] { parts.counting.Cancel(); };
    host.gone = [&parts](int volume) { parts.objects.Levels_Gone(volume); };
    return host;
}

Recovery_Host Recovery_Wires(Application_Parts& parts, TIMERPROC on_timer) {
    Recovery_Host host;
    host.now_ms = [] { return std::uint64_t{::GetTickCount64()}; };
    host.look_after = [&parts, on_timer](int ms) {
        // A procedure of its own: it is called in every message loop, also those of dialogs and menus.
        ::SetTimer(parts.window.Handle(), RECOVERY_TIMER, static_cast<UINT>(ms), on_timer);
    };
    host.open = [&parts](std::span<const std::filesystem::path> paths) { parts.opener.Open(paths); };
    host.go = [&parts](int volume) { parts.opener.Go(volume); };
    host.take = [&parts](const Label_Description& description) { parts.label_files.Take(description); };
    host.note = [](const std::string& text) { Activity_Note(text); };
    return host;
}

Counting_Parts Counting_Wires(Application_Parts& parts, TIMERPROC on_timer) {
    return {parts.work,
            parts.objects,
            parts.dialogs,
            parts.report,
            [&parts, on_timer](int ms) {
                // As above: results are handed over in every message loop.
                if (ms > 0) {
                    ::SetTimer(parts.window.Handle(), COUNTING_TIMER, static_cast<UINT>(ms), on_timer);
                } else {
                    ::KillTimer(parts.window.Handle(), COUNTING_TIMER);
                }
            },
            [&parts] { return Utf8_Of_Wide(parts.status_line.Message()); },
            [&parts](const std::string& text) { parts.status_line.Message_Set(Wide_Of_Utf8(text)); },
            [&parts] { return parts.histogram.Numbers_Text(); },
            [&parts] { parts.panels.Histogram_Scale_Suggest(); }};
}

Label_File_Host Label_File_Wires(Application_Parts& parts) {
    Label_File_Host host;
    host.settle = [&parts] { parts.tools.Settle(); };
    host.stroke_end = [&parts] { parts.tools.Stroke_End(); };
    host.go = [&parts](int volume) { parts.opener.Go(volume); };
    host.colors_change = [&parts] { parts.color_advisor.Former_Forget(); };
    host.object = [&parts](const std::filesystem::path& path) -> std::optional<std::optional<Labels_File>> {
        if (!Label_Objects::Is_Object_File(path)) {
            return std::nullopt;
        }
        parts.dialogs.Warnings_Close(Warning_Subject::Label_File);  // what was told of other label files
        std::optional<Object_Labels> object = parts.label_objects.Load(path);
        if (!object) {
            return std::optional<Labels_File>();
        }
        return Labels_File{std::move(object->volume), {std::move(object->description), true, {}}, true};
    };
    return host;
}

History_Host History_Wires(Application_Parts& parts) {
    return {[&parts] { parts.tools.Settle(); }, [&parts](int wanted) { parts.view.Slice_Show(wanted); }};
}

Tag_Host Tag_Wires(Application_Parts& parts) {
    Tag_Host host;
    host.settle = [&parts] { parts.tools.Settle(); };
    host.slice_show = [&parts](int wanted) { parts.view.Slice_Show(wanted); };
    host.scroll_to = [&parts](int tag) { parts.panels.Tag_Scroll_To(tag); };
    host.panel_set = [&parts](Tag_Mark check_mark, bool is_threshold_mode) {
        parts.panels.Tag_Options_Set(check_mark, is_threshold_mode);
    };
    host.shared_keep = [&parts] { parts.window_control.Settings_Keep(); };
    host.tool_step = [&parts](int step) { return parts.tools.Step(step); };
    host.folded = [](const std::string& text) {
        std::wstring lower = Wide_Of_Utf8(text);
        std::ranges::transform(lower, lower.begin(),
                               [](wchar_t unit) { return static_cast<wchar_t>(std::towlower(unit)); });
        return Utf8_Of_Wide(lower);
    };
    return host;
}

Propagation_Host Propagation_Wires(Application_Parts& parts, std::function<void()> deliver) {
    Propagation_Host host;
    host.stroke_end = [&parts] { parts.tools.Stroke_End(); };
    host.panel_step = [&parts](int direction) { return parts.panels.Propagate(direction); };
    host.seen = [&parts, deliver = std::move(deliver)] {
        deliver();
        ::UpdateWindow(parts.image.Handle());
    };
    host.repeat = [&parts](int count, const std::function<bool()>& step) {
        Progress_Window progress(parts.look, parts.window.Handle(), L"Propagating");
        int done = 0;
        // Every frame is written whole, so giving up between two frames leaves nothing half done.
        while (done < count &&
               progress.Step(static_cast<double>(done) / count,
                             L"Frame " + std::to_wstring(done + 1) + L" of " + std::to_wstring(count)) &&
               step()) {
            ++done;
        }
        return done;
    };
    return host;
}

View_Host View_Wires(Application_Parts& parts) {
    View_Host host;
    host.stroke_end = [&parts] { parts.tools.Stroke_End(); };
    host.place = [&parts](int slice) { parts.objects.Show(slice); };
    host.go = [&parts](int volume) { parts.opener.Go(volume); };
    host.zoom_to = [&parts](double factor) { parts.image.Zoom_Set(factor); };
    host.zoom_by = [&parts](int step) { parts.image.Led().Zoom_By(step); };
    host.plane_step = [&parts](int step) {
        const bool is_alone = !parts.image.Is_Shown(SLICES_VIEW);
        if (is_alone) {
            parts.image.Led().Slice_By(step);
        }
        return is_alone;
    };
    host.plane_end = [&parts](bool is_last) {
        const bool is_alone = !parts.image.Is_Shown(SLICES_VIEW);
        if (is_alone) {
            parts.image.Led().Slice_End(is_last);
        }
        return is_alone;
    };
    return host;
}

Layout_Host Layout_Wires(Application_Parts& parts) {
    Layout_Host host;
    host.settings = [&parts]() -> Settings& { return parts.settings.Now(); };
    host.arrange = [&parts](const Views_Shown& views) {
        const bool is_new_table = views.Has(TABLE_VIEW) && !parts.image.Is_Shown(TABLE_VIEW);
        parts.image.Arrange(views);
        if (is_new_table && parts.work.session.Has_Volume()) {
            parts.segmentation.Statistics_Show();
        }
    };
    host.redraw = [&parts] { parts.work.hub.Note(Change::View); };
    host.plane_name = [&parts](int view) {
        return std::string(
            Plane_Name(view == SLICES_VIEW ? parts.planes.Slice_Plane() : parts.planes.Plane_Of(view - 1)));
    };
    host.tell = [&parts](const std::string& text) { parts.dialogs.Tell(text); };
    return host;
}

}  // namespace workbench
