// TAGs, brushes, markers and the history.
#include <algorithm>
#include <cmath>
#include <cwctype>
#include <utility>

#include "host/kit_widgets.h"
#include "workbench/application.h"
#include "workbench/model/number_text.h"
#include "workbench/model/tag_table.h"
#include "workbench/prompt_dialog.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

constexpr int THRESHOLD_DIGITS = 6;

std::wstring Lower(std::wstring text) {
    std::ranges::transform(text, text.begin(), [](wchar_t unit) { return static_cast<wchar_t>(std::towlower(unit)); });
    return text;
}

}  // namespace

void Application::Tag_Set(int tag, bool scroll_to_it) {
    if (tag < 0 || tag >= variables.Tag_Nb()) {
        return;
    }
    variables.Tag_Cur_Set(tag);
    hub.Note(Change::Current_Tag);
    if (scroll_to_it) {
        hub.Then([this, tag] { Tag_Scroll_To(tag); });
    }
    report.Line("tag_cur " + std::to_string(tag));
}

void Application::Tag_Scroll_To(int tag) {
    const int rows = variables.Tag_Nb() / 4;
    const int row = (variables.Tag_Nb() - 1 - tag) / 4;
    const Panel_Dimensions sizes = variables.Dimensions();
    const int rows_in_view = std::max(static_cast<int>(tag_host->Client().bottom) / (sizes.border + sizes.button), 1);
    if (rows <= rows_in_view) {
        return;
    }
    // The panel does not tell where it stands, so it is sent to its top first.
    tag_host->Buffered([&] {
        tag_panel.Scroll(rows);
        tag_panel.Scroll(-std::clamp(row - rows_in_view / 2, 0, rows));
    });
}

void Application::Tag_Go_To() {
    const auto answer = Prompt(window.Handle(), L"Go to TAG", L"Number of the TAG, or a part of its name:", L"");
    if (!answer || answer->empty()) {
        return;
    }
    if (std::ranges::all_of(*answer, [](wchar_t unit) { return std::iswdigit(unit) != 0; })) {
        const int tag = answer->size() > 3 ? TAG_MAX : std::stoi(*answer);
        if (tag < variables.Tag_Nb()) {
            Tag_Set(tag, true);
        } else {
            Warn("There is no TAG " + Utf8_Of_Wide(*answer) + "; there are TAGs 0 to " +
                 std::to_string(variables.Tag_Nb() - 1) + ".");
        }
        return;
    }
    // The next match after the current TAG, so that asking again goes on.
    for (int step = 1; step <= variables.Tag_Nb(); ++step) {
        const int tag = Tag_Step(variables.Tag_Cur(), step, variables.Tag_Nb());
        if (Lower(Wide_Of_Panel(variables.Tag_Name(tag).c_str())).find(Lower(*answer)) != std::wstring::npos) {
            Tag_Set(tag, true);
            return;
        }
    }
    Warn("No TAG has \"" + Utf8_Of_Wide(*answer) + "\" in its name.");
}

std::span<std::uint8_t> Application::Tag_Flags_Of(Tag_Mark mark) const {
    return mark == Tag_Mark::Enable   ? variables.Tag_Enable()
           : mark == Tag_Mark::Select ? variables.Tag_Select()
                                      : variables.Tag_Lock();
}

bool Application::Has_Tag_Mark(Tag_Mark mark) const {
    return Tag_Flags_Of(mark)[static_cast<std::size_t>(variables.Tag_Cur())] != 0;
}

void Application::Tag_Toggle(Tag_Mark mark) {
    std::uint8_t& flag = Tag_Flags_Of(mark)[static_cast<std::size_t>(variables.Tag_Cur())];
    flag = flag == 0 ? 1 : 0;
    hub.Note(mark == Tag_Mark::Enable   ? Change::Tag_Shown
             : mark == Tag_Mark::Select ? Change::Tag_Selected
                                        : Change::Tag_Locked);
}

void Application::Tag_Step_By(int step) {
    Tag_Pick(Tag_Step(variables.Tag_Cur(), step, variables.Tag_Nb()));
}

void Application::Tag_Pick(int tag) {
    Tag_Set(tag, true);
}

void Application::Tag_More() {
    labels.Nb_Grow(variables.Tag_Nb());
}

void Application::Tag_Rows_Show() {
    const Panel_Dimensions sizes = variables.Dimensions();
    const auto has_slider = [&](int count) {
        return count / 4 * (sizes.border + sizes.button) > tag_host->Client().bottom - 2 * SPACE;
    };
    if (has_slider(variables.Tag_Nb()) != has_slider(std::exchange(tag_rows_shown, variables.Tag_Nb()))) {
        tag_host->Lay_Out();  // the slider takes its room from the columns
    } else {
        tag_host->Refresh();
    }
    Tag_Scroll_To(variables.Tag_Cur());
}

void Application::Threshold_Mode_Set(bool on) {
    is_threshold_mode = on;
    Check_Mark_Set(check_mark);
    hub.Note({Change::Mode, Change::View, Change::Bands});
    Status(on ? L"Threshold mode: a right press on a TAG edits its lower threshold" : L"Threshold mode is off");
}

void Application::Check_Mark_Set(Tag_Mark mark) {
    check_mark = mark;
    const unsigned short option = mark == Tag_Mark::Enable   ? TAG_CHECK_ENABLE
                                  : mark == Tag_Mark::Select ? TAG_CHECK_SELECT
                                                             : TAG_CHECK_LOCK;
    tag_panel.Flag(
        static_cast<unsigned short>(option | TAG_GREY_SELECTION | (is_threshold_mode ? TAG_THRESHOLD_MODE : 0)));
    tag_host->Lay_Out();  // the marks of the former option go with the layout
    Tag_Scroll_To(variables.Tag_Cur());
}

void Application::Threshold_Ask(bool is_upper) {
    const auto tag = static_cast<std::size_t>(variables.Tag_Cur());
    float& limit = (is_upper ? variables.Threshold_Max() : variables.Threshold_Min())[tag];
    const float unset = is_upper ? TAG_THRESHOLD_MAX_UNSET : TAG_THRESHOLD_MIN_UNSET;
    const bool is_set = is_upper ? limit < unset : limit > unset;
    const auto answer =
        Prompt(window.Handle(), is_upper ? L"Upper threshold" : L"Lower threshold",
               (is_upper ? L"Largest grey value of " : L"Smallest grey value of ") +
                   Wide_Of_Panel(variables.Tag_Name(variables.Tag_Cur()).c_str()) + L" (empty: no limit):",
               is_set ? Wide_Of_Utf8(Number_Text(Grey_Of_Panel(limit), THRESHOLD_DIGITS)) : L"");
    if (!answer) {
        return;
    }
    wchar_t* end = nullptr;
    const double value = std::wcstod(answer->c_str(), &end);
    if (!answer->empty() && (*end != 0 || !std::isfinite(value))) {
        Warn("\"" + Utf8_Of_Wide(*answer) + "\" is no number.");
        return;
    }
    limit = answer->empty() ? unset : Panel_Of_Grey(value);
    labels.Note();
}

void Application::Brush_Set(int brush) {
    variables.Brush_Cur_Set(brush);
    hub.Note(Change::Brush);
    report.Line("brush_cur " + std::to_string(variables.Brush_Cur()));
}

void Application::Brush_Step(int step) {
    if (tools.Step(step)) {
        return;
    }
    Brush_Set(variables.Brush_Cur() + step);
}

void Application::Marker_Step(int step) {
    Marker_Set(variables.Marker_Cur() + step);
}

void Application::Marker_Remove() {
    tools.Settle();  // a marker that is being dragged is put down first
    Marker_Place(variables.Marker_Cur(), Marker{});
}

void Application::Marker_Set(int marker) {
    variables.Marker_Cur_Set(((marker % MARKER_NB) + MARKER_NB) % MARKER_NB);
    hub.Note(Change::Current_Marker);
    const Marker place = session.Markers().Get(variables.Marker_Cur());
    if (place.is_placed) {
        Slice_Show(place.slice);
    }
}

void Application::Markers_Enable_Refresh() {
    for (int marker = 0; marker < MARKER_NB; ++marker) {
        variables.Marker_Enable()[static_cast<std::size_t>(marker)] =
            session.Markers().Get(marker).is_placed ? std::uint8_t{1} : std::uint8_t{0};
    }
}

void Application::Marker_Place(int marker, const Marker& place) {
    session.Marker_Set(marker, place);
    hub.Note(Change::Markers);
}

}  // namespace workbench
