// Undo, redo, and the list of the steps.
#include <algorithm>

#include "workbench/application.h"
#include "workbench/list_choice_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

void Application::Step_Show(const Undo_Step& done, bool redo, int& slice_of_step) {
    if (const auto* voxels = std::get_if<Voxel_Change>(&done.change)) {
        slice_of_step = Slice_Nearest(*voxels, slice_of_step);
        hub.Note(Change::Pixels);
    } else if (const auto* text = std::get_if<Text_Change>(&done.change)) {
        const std::optional<std::string>& value = redo ? text->after : text->before;
        const char* label = value ? value->c_str() : nullptr;
        if (text->table == Text_Table::Tag_Labels) {
            variables.Tag_Label_Set(text->index, label);
        } else {
            variables.Marker_Label_Set(text->index, label);
        }
        hub.Note(Change::Texts);
    } else if (const auto* thresholds = std::get_if<Threshold_Change>(&done.change)) {
        for (const Threshold_Change::Entry& entry : thresholds->entries) {
            const Tag_Band& band = redo ? entry.after : entry.before;
            variables.Threshold_Min()[static_cast<std::size_t>(entry.tag)] = band.low;
            variables.Threshold_Max()[static_cast<std::size_t>(entry.tag)] = band.high;
        }
        hub.Note(Change::Bands);
    } else if (const auto* colors = std::get_if<Color_Change>(&done.change)) {
        for (const Color_Change::Entry& entry : colors->entries) {
            variables.Tag_Color_Set(entry.tag, redo ? entry.after : entry.before);
        }
        hub.Note(Change::Colors);
    } else if (const auto* marker = std::get_if<Marker_Change>(&done.change)) {
        const Marker& place = redo ? marker->after : marker->before;
        slice_of_step = place.is_placed ? place.slice : slice_of_step;
        hub.Note(Change::Markers);
    }
}

std::string Application::Steps_Walk(std::size_t wanted) {
    int slice_of_step = slice;
    std::string last;
    while (session.Journal().Undo_Nb() != wanted) {
        const bool redo = session.Journal().Undo_Nb() < wanted;
        const Undo_Step* step = redo ? session.Redo() : session.Undo();
        if (step == nullptr) {
            break;
        }
        last = step->title;
        Step_Show(*step, redo, slice_of_step);
    }
    if (!last.empty()) {
        Slice_Show(slice_of_step);
    }
    return last;
}

void Application::Undo_Or_Redo(bool redo) {
    tools.Settle();
    const Undo_Journal& journal = session.Journal();
    const std::size_t nb = redo ? journal.Redo_Nb() : journal.Undo_Nb();
    if (nb == 0) {
        Status(redo ? L"There is nothing to redo" : L"There is nothing to undo");
        return;
    }
    const std::string title = Steps_Walk(redo ? journal.Undo_Nb() + 1 : journal.Undo_Nb() - 1);
    Status((redo ? L"Redone: " : L"Undone: ") + Wide_Of_Utf8(title));
}

std::optional<std::string> Application::Next_Step(bool redo) const {
    const Undo_Step* step = redo ? session.Journal().Next_Redo() : session.Journal().Next_Undo();
    return step != nullptr ? std::optional(step->title) : std::nullopt;
}

void Application::History_Ask() {
    tools.Settle();
    const Undo_Journal& journal = session.Journal();
    std::vector<std::wstring> lines;
    for (const std::string& line : journal.List()) {
        lines.push_back(Wide_Of_Utf8(line));
    }
    const int chosen = List_Choice_Ask(window.Handle(), L"History",
                                       L"The work goes back to the state after the chosen step; later steps stay in "
                                       L"the list until something else is done.",
                                       lines, static_cast<int>(journal.Undo_Nb()));
    if (chosen < 0 || static_cast<std::size_t>(chosen) >= lines.size() ||
        static_cast<std::size_t>(chosen) == journal.Undo_Nb()) {
        return;
    }
    Steps_Walk(static_cast<std::size_t>(chosen));
    Status(L"History: " + lines[static_cast<std::size_t>(chosen)]);
}

}  // namespace workbench
