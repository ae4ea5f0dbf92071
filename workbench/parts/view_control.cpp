#include "workbench/parts/view_control.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>

#include "workbench/commands/command_table.h"

namespace workbench {

namespace {

constexpr std::size_t WINDOW_MENU_MOST = 15;
constexpr std::uint16_t MODALITY_CT = ('C' << 8) | 'T';
constexpr float DRAG_STEP = 0.05F;  // share of the view that one key moves window or level by

}  // namespace

void View_Control::Slice_Step(int step) {
    if (!host.plane_step(step)) {
        Slice_Go(work.slice + step);
    }
}

void View_Control::Slice_To_End(bool is_last) {
    if (!host.plane_end(is_last)) {
        Slice_Go(is_last ? work.session.Slice_Nb() - 1 : 0);
    }
}

void View_Control::Slice_Show(int wanted) {
    if (!work.session.Has_Volume()) {
        return;
    }
    host.stroke_end();
    work.slice = std::clamp(wanted, 0, work.session.Slice_Nb() - 1);
    host.place(work.slice);
    work.hub.Note(Change::Position);
    dialogs.Log("slice " + std::to_string(work.slice));
}

void View_Control::Slice_Go(int wanted) {
    if (work.session.Has_Volume() && std::clamp(wanted, 0, work.session.Slice_Nb() - 1) != work.slice) {
        Slice_Show(wanted);
    }
}

void View_Control::Window_Reset() {
    work.grey_window = Grey_Window();
    work.grey_window.low = static_cast<float>(work.statistics.window_low);
    work.grey_window.high = static_cast<float>(work.statistics.window_high);
    if (work.session.Has_Volume()) {
        work.grey_window = First_Window(work.session.Image()).value_or(work.grey_window);
    }
    work.hub.Note(Change::View);
}

void View_Control::Level_Step(int step) {
    Window_Drag(0.0F, static_cast<float>(step) * DRAG_STEP);
}

void View_Control::Window_Width_Step(int step) {
    Window_Drag(static_cast<float>(step) * DRAG_STEP, 0.0F);
}

void View_Control::Window_Drag(float dx, float dy) {
    const volumes::Volume_Statistics& levels = work.statistics;
    work.grey_window = work.grey_window.Dragged(dx, dy, static_cast<float>(levels.max - levels.min));
    work.hub.Note(Change::View);
}

std::vector<volumes::Display_Window> View_Control::Windows() const {
    if (!work.session.Has_Volume()) {
        return {};
    }
    const bool is_ct = work.volumes.Facts(work.volumes.Current()).modality == MODALITY_CT;
    std::vector<volumes::Display_Window> windows = Display_Windows_Of(work.session.Image(), is_ct);
    windows.resize(std::min(windows.size(), WINDOW_MENU_MOST));
    return windows;
}

std::vector<Numbered_Entry> View_Control::Window_Entries() const {
    std::vector<Numbered_Entry> entries;
    int number = 0;
    for (const volumes::Display_Window& window : Windows()) {
        ++number;
        const std::string letter = number <= 9 ? "&" + std::to_string(number) + "  " : "";
        entries.push_back(
            {letter + Menu_Text(Display_Window_Text(window, number)), Grey_Window_Of(window) == work.grey_window});
    }
    return entries;
}

void View_Control::Window_Choose(int number) {
    const std::vector<volumes::Display_Window> windows = Windows();
    if (number < 0 || static_cast<std::size_t>(number) >= windows.size()) {
        return;
    }
    const volumes::Display_Window& chosen = windows[static_cast<std::size_t>(number)];
    work.grey_window = Grey_Window_Of(chosen);
    work.hub.Note(Change::View);
    dialogs.Tell(Display_Window_Text(chosen, number + 1));
}

void View_Control::Overlay_Set(bool on) {
    settings.is_overlay_shown = on;
    work.hub.Note(Change::View);
}

void View_Control::Overlay_Opacity_Ask() {
    const auto answer = dialogs.Text_Ask(
        "Opacity of TAG colours", "Per cent over the image (0 to 100):", std::to_string(settings.overlay_opacity));
    if (!answer) {
        return;
    }
    char* rest = nullptr;
    const long percent = std::strtol(answer->c_str(), &rest, 10);
    if (rest == answer->c_str() || *rest != 0 || percent < 0 || percent > 100) {
        dialogs.Warn("\"" + *answer + "\" is no number from 0 to 100.");
        return;
    }
    settings.overlay_opacity = static_cast<int>(percent);
    work.hub.Note(Change::View);
}

void View_Control::Range_Overlay_Set(bool on) {
    is_range_shown = on;
    work.hub.Note(Change::View);
}

}  // namespace workbench
