#include "panels/tool_tag.h"

#include <cstdio>
#include <cstdlib>

#include "host/kit_common.h"
#include "panels/label_grid.h"
#include "panels/label_panel.h"
#include "panels/protocol/host_variables.h"
#include "panels/protocol/tool_panel.h"

static_assert(Tool_Panel<Tool_Tag>);

namespace {

constexpr std::uint32_t BACKGROUND_COLOR = 0xAAAAAA;  // of TAG 0, whatever the colour arrays say
// Contract: hosts know the message by its line.
constexpr Label_Copy_Failure COPY_FAILURE = {244, KIT_SOURCE_ROOT "/panels/tool_tag.cpp",
                                             "(*TAG_Label_Pt)[Tag_Label_Cur]"};

int Count_Now() {
    return Host_Count("$TAG_NB");
}

// ---- colours, captions

struct Tag_Colors {
    const std::uint16_t* red;
    const std::uint16_t* green;
    const std::uint16_t* blue;

    bool Is_Complete() const { return red != nullptr && green != nullptr && blue != nullptr; }
    /** The shown colour, 0x00BBGGRR: the high bytes. */
    std::uint32_t Of(int tag) const {
        if (tag == 0) {
            return BACKGROUND_COLOR;
        }
        constexpr unsigned int high_byte = 8;
        const std::uint32_t high_red = red[tag] >> high_byte;
        const std::uint32_t high_green = green[tag] >> high_byte;
        const std::uint32_t high_blue = blue[tag] >> high_byte;
        return high_red | (high_green << 8U) | (high_blue << 16U);
    }
};

/** "$TAG_THRESHOLD_MIN", null when missing. */
float* Thresholds() {
    auto** storage = static_cast<float**>(Fct_Variable_Get("$TAG_THRESHOLD_MIN", nullptr, nullptr, nullptr, 0));
    return storage != nullptr ? *storage : nullptr;
}

Label_Caption Threshold_Caption(float threshold) {
    Label_Caption caption;
    std::snprintf(caption.text, sizeof caption.text, "%.0f", static_cast<double>(threshold));
    return caption;
}

// ---- steps of Update

void Check_Show(Buttons& button, bool checked, Label_Change& change) {
    const unsigned short mark = checked ? 1 : 0;
    if (button.checked != mark) {
        button.checked = mark;
        change.Add(Label_Change::MARK);
    }
}

/** Greys a button or brings it back. The background is cleared only for greying.
 *  Contract: for hosts that announce during an edit the button behind the editor counts as greyed; it may come back. */
void Activity_Show(Buttons& button, bool active, Label_Change& change) {
    const bool is_greyed = (button.style & STYLE_INACTIVE) != 0;
    if (!active && !is_greyed) {
        button.style |= STYLE_INACTIVE;
        change.Add(Label_Change::REDRAW | Label_Change::BACKGROUND);
    } else if (active && is_greyed) {
        button.style &= ~STYLE_INACTIVE;
        change.Add(Label_Change::REDRAW);
    }
}

/** How one array of flags shows on the buttons. */
struct Flag_Step {
    unsigned __int64 update;
    const char* variable;
    unsigned short check_option;
    unsigned short grey_option;
    bool grey_when_set;  // otherwise greyed where the flag is 0
};
// Contract: hosts that announce select and lock together see lock, the later one: both grey by the same option.
constexpr Flag_Step FLAG_STEPS[] = {
    {UPDATE_TAG_ENABLE, "$TAG_ENABLE", TAG_CHECK_ENABLE, TAG_GREY_DISABLED, false},
    {UPDATE_TAG_SELECT, "$TAG_SELECT", TAG_CHECK_SELECT, TAG_GREY_SELECTION, false},
    {UPDATE_TAG_LOCK, "$TAG_LOCK", TAG_CHECK_LOCK, TAG_GREY_SELECTION, true},
};

/** @return false when the array is missing */
bool Flags_Show(const Flag_Step& step, Label_Grid& grid, int count, unsigned short option, Label_Change& change) {
    const auto* values = Host_Pointer<const std::uint8_t>(step.variable);
    if (values == nullptr) {
        return false;
    }
    for (int tag = 0; tag < grid.Button_Nb(count); tag++) {
        const bool is_set = values[tag] != 0;
        if ((option & step.check_option) != 0) {
            Check_Show(grid.Button(tag), is_set, change);
        }
        if ((option & step.grey_option) != 0) {
            Activity_Show(grid.Button(tag), is_set != step.grey_when_set, change);
        }
    }
    return true;
}

/** @return false when the label array is missing */
bool Labels_Show(Label_Grid& grid, int count, bool threshold_mode, Label_Change& change) {
    const auto* labels = Host_Pointer<const char* const>("$TAG_LABEL");
    if (labels == nullptr) {
        return false;
    }
    const float* thresholds = threshold_mode ? Thresholds() : nullptr;
    for (int tag = 0; tag < grid.Button_Nb(count); tag++) {
        Label_Caption caption;  // empty in threshold mode without thresholds
        if (!threshold_mode) {
            caption = Label_Caption_Of(labels[tag], tag);
        } else if (thresholds != nullptr) {
            caption = Threshold_Caption(thresholds[tag]);
        }
        Label_Caption_Show(grid.Button(tag), caption, change);
    }
    return true;
}

/** Takes over colours and number of TAGs. @return false when a colour array is missing */
bool Table_Show(Label_Grid& grid, int count, Label_Change& change) {
    static Cached_Variable<const std::uint16_t*> red("$TAG_RED");
    static Cached_Variable<const std::uint16_t*> green("$TAG_GRN");
    static Cached_Variable<const std::uint16_t*> blue("$TAG_BLU");
    const Tag_Colors colors = {red.Value_Or(nullptr), green.Value_Or(nullptr), blue.Value_Or(nullptr)};
    if (!colors.Is_Complete()) {
        return false;
    }
    for (int tag = 0; tag < grid.Button_Nb(count); tag++) {
        Label_Color_Show(grid.Button(tag), colors.Of(tag), change);
    }
    grid.Relayout(count);
    change.Add(Label_Change::SLIDER);
    return true;
}

}  // namespace

Tool_Tag::Tool_Tag() : Tool_Tag(TAG_GREY_SELECTION) {}
Tool_Tag::Tool_Tag(unsigned short option_word) : option(option_word), widgets(Label_Grid::Widgets_Make(TAG_CAPACITY)) {}
Tool_Tag::~Tool_Tag() = default;
Tool_Tag::Tool_Tag(const Tool_Tag& other) = default;
Tool_Tag& Tool_Tag::operator=(const Tool_Tag& other) = default;

void Tool_Tag::Flag(unsigned short option_word) {
    option = option_word;
}

int Tool_Tag::Read() {
    return current;
}

int Tool_Tag::Resize(Boxs* box) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Tag::Resize(dim=%dx%d)", box->width, box->height);
    const Boxs host = *box;  // may be the panel's own frame
    const int count = Count_Now();
    const Tag_Colors colors = {Host_Pointer<const std::uint16_t>("$TAG_RED"),
                               Host_Pointer<const std::uint16_t>("$TAG_GRN"),
                               Host_Pointer<const std::uint16_t>("$TAG_BLU")};
    const auto* labels = Host_Pointer<const char* const>("$TAG_LABEL");
    const bool threshold_mode = (option & TAG_THRESHOLD_MODE) != 0;
    const float* thresholds = threshold_mode ? Thresholds() : nullptr;

    Label_Grid grid(widgets);
    for (int tag = 0; tag < grid.Button_Nb(TAG_CAPACITY); tag++) {
        Label_Grid::Button_Dress(grid.Button(tag), host);
        grid.Button(tag).style = STYLE_GRID_BUTTON | (host.style & STYLE_SHOW_CHECK);
    }
    grid.Resize(host, count, [&](Buttons& button, int tag) {
        if (colors.Is_Complete()) {
            Label_Color_Set(button, colors.Of(tag));
        }
        if (!threshold_mode) {
            button.Set_Name("%s", Label_Caption_Of(labels != nullptr ? labels[tag] : nullptr, tag).text);
        } else if (thresholds != nullptr) {
            button.Set_Name("%s", Threshold_Caption(thresholds[tag]).text);
        }
    });
    return 1;
}

int Tool_Tag::Height(unsigned short rows) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Tag::Height()");
    return Label_Panel_Height(Label_Dimensions_Read(), rows);
}

void Tool_Tag::Draw() {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Tag::Draw()");
    Label_Grid(widgets).Draw(Count_Now());
}

int Tool_Tag::Click(int up_down) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Tag::Click(up_down=0x%08x)", static_cast<unsigned int>(up_down));
    return Label_Click(*this, Label_Grid(widgets), current, Count_Now(), up_down, nullptr);
}

int Tool_Tag::Motion(int up_down) {
    return Label_Motion(*this, Label_Grid(widgets), Count_Now(), up_down);
}

int Tool_Tag::Scroll(int val) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Tag::Scroll(val=%d)", val);
    return Label_Scroll(*this, Label_Grid(widgets), Count_Now(), val);
}

int Tool_Tag::Keyboard(int key) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Tag::Keyboard(key=0x%08x)", static_cast<unsigned int>(key));
    static Cached_Variable<char**> label_array("$TAG_LABEL");
    char** labels = label_array.Value_Or(nullptr);
    if (labels == nullptr) {
        return 0;
    }
    const bool threshold_mode = (option & TAG_THRESHOLD_MODE) != 0;
    return Label_Keyboard(Label_Grid(widgets), key, Count_Now, [labels, threshold_mode](int tag, const char* text) {
        if (!threshold_mode) {
            return Label_Replace(&labels[tag], text, COPY_FAILURE);
        }
        if (float* thresholds = Thresholds()) {
            thresholds[tag] = static_cast<float>(std::atof(text));  // NOLINT(cert-err34-c): no number is 0 by contract
        }
        return true;
    });
}

void Tool_Tag::Leave() {
    Label_Leave(Label_Grid(widgets), Count_Now());
}

void Tool_Tag::Update(unsigned __int64 flags) {
    Error_Fct(hwnd, TRACE_LEVEL, "in Tool_Tag::Update()");
    static Cached_Variable<std::uint16_t> tag_nb("$TAG_NB");
    const std::uint16_t* count_now = tag_nb.Address();
    if (count_now == nullptr) {
        return;
    }
    const int count = *count_now;
    Label_Grid grid(widgets);
    Label_Change change;
    for (const Flag_Step& step : FLAG_STEPS) {
        if (Has_Any(flags, step.update) && !Flags_Show(step, grid, count, option, change)) {
            return;
        }
    }
    if (Has_Any(flags, UPDATE_TAG_CUR)) {
        current = Host_Count("$TAG_CUR");
        Label_Current_Show(grid, grid.Button_Nb(TAG_CAPACITY), current, change);
    }
    if (Has_Any(flags, UPDATE_TAG_LABEL) && !Labels_Show(grid, count, (option & TAG_THRESHOLD_MODE) != 0, change)) {
        return;
    }
    if (Has_Any(flags, UPDATE_TAG_TABLE) && !Table_Show(grid, count, change)) {
        return;
    }
    grid.Paint(count, change);
}
