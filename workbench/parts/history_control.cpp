#include "workbench/parts/history_control.h"

#include <variant>
#include <vector>

namespace workbench {

void History_Control::Step_Show(const Undo_Step& done, bool redo, int& slice_of_step) {
    if (const auto* voxels = std::get_if<Voxel_Change>(&done.change)) {
        slice_of_step = Slice_Nearest(*voxels, slice_of_step);
        work.hub.Note(Change::Pixels);
    } else if (const auto* text = std::get_if<Text_Change>(&done.change)) {
        const std::optional<std::string>& value = redo ? text->after : text->before;
        const char* label = value ? value->c_str() : nullptr;
        if (text->table == Text_Table::Tag_Labels) {
            values.Tag_Label_Set(text->index, label);
        } else {
            values.Marker_Label_Set(text->index, label);
        }
        work.hub.Note(Change::Texts);
    } else if (const auto* thresholds = std::get_if<Threshold_Change>(&done.change)) {
        for (const Threshold_Change::Entry& entry : thresholds->entries) {
            const Tag_Band& band = redo ? entry.after : entry.before;
            values.Threshold_Min()[static_cast<std::size_t>(entry.tag)] = band.low;
            values.Threshold_Max()[static_cast<std::size_t>(entry.tag)] = band.high;
        }
        work.hub.Note(Change::Bands);
    } else if (const auto* colors = std::get_if<Color_Change>(&done.change)) {
        for (const Color_Change::Entry& entry : colors->entries) {
            values.Tag_Color_Set(entry.tag, redo ? entry.after : entry.before);
        }
        work.hub.Note(Change::Colors);
    } else if (const auto* marker = std::get_if<Marker_Change>(&done.change)) {
        const Marker& place = redo ? marker->after : marker->before;
        slice_of_step = place.is_placed ? place.slice : slice_of_step;
        work.hub.Note(Change::Markers);
    }
}

std::string History_Control::Walk(std::size_t wanted) {
    int slice_of_step = work.slice;
    std::string last;
    while (work.session.Journal().Undo_Nb() != wanted) {
        const bool redo = work.session.Journal().Undo_Nb() < wanted;
        const Undo_Step* step = redo ? work.session.Redo() : work.session.Undo();
        if (step == nullptr) {
            break;
        }
        last = step->title;
        Step_Show(*step, redo, slice_of_step);
    }
    if (!last.empty()) {
        host.slice_show(slice_of_step);
    }
    return last;
}

void History_Control::Undo_Or_Redo(bool redo) {
    host.settle();
    const Undo_Journal& journal = work.session.Journal();
    const std::size_t nb = redo ? journal.Redo_Nb() : journal.Undo_Nb();
    if (nb == 0) {
        dialogs.Tell(redo ? "There is nothing to redo" : "There is nothing to undo");
        return;
    }
    const std::string title = Walk(redo ? journal.Undo_Nb() + 1 : journal.Undo_Nb() - 1);
    dialogs.Tell((redo ? "Redone: " : "Undone: ") + title);
}

std::optional<std::string> History_Control::Next_Step(bool redo) const {
    const Undo_Step* step = redo ? work.session.Journal().Next_Redo() : work.session.Journal().Next_Undo();
    return step != nullptr ? std::optional(step->title) : std::nullopt;
}

void History_Control::History_Ask() {
    host.settle();
    const Undo_Journal& journal = work.session.Journal();
    const std::vector<std::string> lines = journal.List();
    const int chosen = dialogs.Line_Ask("History",
                                        "The work goes back to the state after the chosen step; later steps stay in "
                                        "the list until something else is done.",
                                        lines, static_cast<int>(journal.Undo_Nb()), "&Go there");
    if (chosen < 0 || static_cast<std::size_t>(chosen) >= lines.size() ||
        static_cast<std::size_t>(chosen) == journal.Undo_Nb()) {
        return;
    }
    Walk(static_cast<std::size_t>(chosen));
    dialogs.Tell("History: " + lines[static_cast<std::size_t>(chosen)]);
}

}  // namespace workbench
