#include "workbench/parts/tag_control.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <optional>

#include "host/kit_dataset.h"
#include "workbench/model/number_text.h"
#include "workbench/model/tag_table.h"

namespace workbench {

namespace {

constexpr int THRESHOLD_DIGITS = 6;

bool Is_Digit(char letter) {
    return letter >= '0' && letter <= '9';
}

}  // namespace

void Tag_Control::Tag_Set(int tag, bool scroll_to_it) {
    if (tag < 0 || tag >= values.Tag_Nb()) {
        return;
    }
    values.Tag_Cur_Set(tag);
    work.hub.Note(Change::Current_Tag);
    if (scroll_to_it) {
        work.hub.Then([this, tag] { host.scroll_to(tag); });
    }
    dialogs.Log("tag_cur " + std::to_string(tag));
}

void Tag_Control::Tag_Step_By(int step) {
    Tag_Set(Tag_Step(values.Tag_Cur(), step, values.Tag_Nb()), true);
}

void Tag_Control::Tag_Go_To() {
    const auto answer = dialogs.Text_Ask("Go to TAG", "Number of the TAG, or a part of its name:", "");
    if (!answer || answer->empty()) {
        return;
    }
    if (std::ranges::all_of(*answer, Is_Digit)) {
        const int tag = answer->size() > 3 ? TAG_MAX : std::stoi(*answer);
        if (tag < values.Tag_Nb()) {
            Tag_Set(tag, true);
        } else {
            dialogs.Warn("There is no TAG " + *answer + "; there are TAGs 0 to " + std::to_string(values.Tag_Nb() - 1) +
                         ".");
        }
        return;
    }
    // The next match after the current TAG, so that asking again goes on.
    const std::string wanted = host.folded(*answer);
    for (int step = 1; step <= values.Tag_Nb(); ++step) {
        const int tag = Tag_Step(values.Tag_Cur(), step, values.Tag_Nb());
        if (host.folded(labels.Tag_Name(tag)).find(wanted) != std::string::npos) {
            Tag_Set(tag, true);
            return;
        }
    }
    dialogs.Warn("No TAG has \"" + *answer + "\" in its name.");
}

std::span<std::uint8_t> Tag_Control::Flags_Of(Tag_Mark mark) const {
    return mark == Tag_Mark::Enable   ? values.Tag_Enable()
           : mark == Tag_Mark::Select ? values.Tag_Select()
                                      : values.Tag_Lock();
}

bool Tag_Control::Has_Tag_Mark(Tag_Mark mark) const {
    return Flags_Of(mark)[static_cast<std::size_t>(values.Tag_Cur())] != 0;
}

void Tag_Control::Tag_Toggle(Tag_Mark mark) {
    std::uint8_t& flag = Flags_Of(mark)[static_cast<std::size_t>(values.Tag_Cur())];
    flag = flag == 0 ? 1 : 0;
    work.hub.Note(mark == Tag_Mark::Enable   ? Change::Tag_Shown
                  : mark == Tag_Mark::Select ? Change::Tag_Selected
                                             : Change::Tag_Locked);
}

void Tag_Control::Threshold_Mode_Set(bool on) {
    is_threshold_mode = on;
    host.panel_set(check_mark, is_threshold_mode);
    work.hub.Note({Change::Mode, Change::View, Change::Bands});
    dialogs.Tell(on ? "Threshold mode: a right press on a TAG edits its lower threshold" : "Threshold mode is off");
}

void Tag_Control::Check_Mark_Set(Tag_Mark mark) {
    check_mark = mark;
    host.panel_set(check_mark, is_threshold_mode);
}

void Tag_Control::Labels_Share(bool on) {
    host.settle();
    if (on && labels.Are_Others_Different() &&
        !dialogs.Yes_No_Ask(
            "Names and colours",
            "Other open volumes have names, colours, thresholds or states of their own. Give all of them "
            "those of this volume?")) {
        return;
    }
    labels.Share(on);
    host.shared_keep();
    dialogs.Tell(on ? "All open volumes have these names, colours and thresholds now"
                    : "Each volume has names, colours and thresholds of its own now");
}

void Tag_Control::Threshold_Ask(bool is_upper) {
    const auto tag = static_cast<std::size_t>(values.Tag_Cur());
    float& limit = (is_upper ? values.Threshold_Max() : values.Threshold_Min())[tag];
    const float unset = is_upper ? TAG_THRESHOLD_MAX_UNSET : TAG_THRESHOLD_MIN_UNSET;
    const bool is_set = is_upper ? limit < unset : limit > unset;
    const auto answer = dialogs.Text_Ask(is_upper ? "Upper threshold" : "Lower threshold",
                                         (is_upper ? "Largest grey value of " : "Smallest grey value of ") +
                                             labels.Tag_Name(values.Tag_Cur()) + " (empty: no limit):",
                                         is_set ? Number_Text(labels.Grey_Of(limit), THRESHOLD_DIGITS) : "");
    if (!answer) {
        return;
    }
    char* end = nullptr;
    const double value = std::strtod(answer->c_str(), &end);
    if (!answer->empty() && (*end != 0 || !std::isfinite(value))) {
        dialogs.Warn("\"" + *answer + "\" is no number.");
        return;
    }
    limit = answer->empty() ? unset : labels.Told_Of(value);
    labels.Note();
}

void Tag_Control::Name_Ask(Text_Table table) {
    const bool is_tag = table == Text_Table::Tag_Labels;
    const int index = is_tag ? values.Tag_Cur() : values.Marker_Cur();
    const std::string now = is_tag ? labels.Tag_Name(index) : labels.Marker_Name(index);
    const auto answer = dialogs.Text_Ask(
        is_tag ? "Name of a TAG" : "Name of a marker",
        (is_tag ? "Name of TAG " + std::to_string(index) : "Name of marker " + std::to_string(index + 1)) + ":", now);
    if (!answer || answer->empty() || *answer == now) {
        return;
    }
    const std::string label = values.Panel_Text_Of(*answer);
    if (is_tag) {
        values.Tag_Label_Set(index, label.c_str());
    } else {
        values.Marker_Label_Set(index, label.c_str());
    }
    labels.Note();
}

void Tag_Control::Brush_Set(int brush) {
    values.Brush_Cur_Set(brush);
    work.hub.Note(Change::Brush);
    dialogs.Log("brush_cur " + std::to_string(values.Brush_Cur()));
}

void Tag_Control::Brush_Step(int step) {
    if (!host.tool_step(step)) {
        Brush_Set(values.Brush_Cur() + step);
    }
}

void Tag_Control::Marker_Remove() {
    host.settle();  // a marker that is being dragged is put down first
    Marker_Place(values.Marker_Cur(), Marker{});
}

void Tag_Control::Marker_Set(int marker) {
    values.Marker_Cur_Set(((marker % MARKER_NB) + MARKER_NB) % MARKER_NB);
    work.hub.Note(Change::Current_Marker);
    const Marker place = work.session.Markers().Get(values.Marker_Cur());
    if (place.is_placed) {
        host.slice_show(place.slice);
    }
}

void Tag_Control::Markers_Refresh() {
    for (int marker = 0; marker < MARKER_NB; ++marker) {
        values.Marker_Enable()[static_cast<std::size_t>(marker)] =
            work.session.Markers().Get(marker).is_placed ? std::uint8_t{1} : std::uint8_t{0};
    }
}

void Tag_Control::Marker_Place(int marker, const Marker& place) {
    work.session.Marker_Set(marker, place);
    work.hub.Note(Change::Markers);
}

}  // namespace workbench
