#include "workbench/commands.h"

#include <array>
#include <cctype>
#include <iterator>
#include <string>

#include "host/kit_widgets.h"

namespace {

constexpr int Control(char letter) {
    return letter - 'A' + 1;
}
constexpr int Function_Key(int number) {
    return KEY_SPECIAL + VK_F1 + number - 1;
}

struct Entry {
    Command command;
    const wchar_t* text;  // null: a line between entries
    const wchar_t* key_text;
    int key;  // 0: none
};

constexpr Entry separator = {Command::NONE, nullptr, nullptr, 0};

constexpr Entry file_entries[] = {
    {Command::OPEN, L"&Open volume...", L"Ctrl+O", Control('O')},
    {Command::LOAD_LABELS, L"&Load labels...", L"Ctrl+L", Control('L')},
    {Command::SAVE_LABELS, L"&Save labels", L"Ctrl+S", Control('S')},
    {Command::SAVE_LABELS_AS, L"Save labels &as...", nullptr, 0},
    separator,
    {Command::EXPORT_HISTOGRAM, L"&Export histogram...", L"Ctrl+E", Control('E')},
    separator,
    {Command::QUIT, L"&Quit", L"Ctrl+Q", Control('Q')},
};
constexpr Entry edit_entries[] = {
    {Command::UNDO, L"&Undo", L"Ctrl+Z", Control('Z')},
    {Command::REDO, L"&Redo", L"Ctrl+Y", Control('Y')},
    separator,
    {Command::BRUSH_LARGER, L"&Larger brush", L"]", ']'},
    {Command::BRUSH_SMALLER, L"&Smaller brush", L"[", '['},
    separator,
    {Command::MARKER_MODE, L"Place &markers", L"M", 'm'},
    {Command::MARKER_NEXT, L"Next mar&ker", L".", '.'},
    {Command::MARKER_PREVIOUS, L"Pre&vious marker", L",", ','},
    {Command::REMOVE_MARKER, L"Remo&ve current marker", L"Delete", KEY_DELETE},
};
constexpr Entry tag_entries[] = {
    {Command::TAG_NEXT, L"&Next TAG", L"N", 'n'},
    {Command::TAG_PREVIOUS, L"&Previous TAG", L"P", 'p'},
    {Command::TAG_GO_TO, L"&Go to TAG...", L"G", 'g'},
    separator,
    {Command::TAG_ENABLE, L"&Enabled (shown)", L"E", 'e'},
    {Command::TAG_SELECT, L"&Selected (propagated)", L"S", 's'},
    {Command::TAG_LOCK, L"&Locked (not overwritten)", L"L", 'l'},
    separator,
    {Command::TAG_THRESHOLDS, L"&Threshold mode", L"T", 't'},
    {Command::TAG_THRESHOLD_MAX, L"&Upper threshold...", nullptr, 0},
    {Command::TAG_MORE, L"Four &more TAGs", nullptr, 0},
    separator,
    {Command::CHECK_SHOWS_ENABLE, L"Check mark shows enabled", nullptr, 0},
    {Command::CHECK_SHOWS_SELECT, L"Check mark shows selected", nullptr, 0},
    {Command::CHECK_SHOWS_LOCK, L"Check mark shows locked", nullptr, 0},
};
constexpr Entry view_entries[] = {
    {Command::SLICE_NEXT, L"&Next slice", L"Page Up", KEY_PAGE_UP},
    {Command::SLICE_PREVIOUS, L"&Previous slice", L"Page Down", KEY_PAGE_DOWN},
    {Command::SLICE_FIRST, L"First slice", L"Home", KEY_HOME},
    {Command::SLICE_LAST, L"Last slice", L"End", KEY_END},
    separator,
    {Command::ZOOM_100, L"&100 %", L"F5", Function_Key(5)},
    {Command::ZOOM_200, L"&200 %", L"F6", Function_Key(6)},
    {Command::ZOOM_TO_FIT, L"&Fit", L"F7", Function_Key(7)},
    {Command::WINDOW_RESET, L"&Reset window and level", L"R", 'r'},
    {Command::OVERLAY, L"Show TAG &colours", L"O", 'o'},
    separator,
    {Command::RANGE_OVERLAY, L"Threshold o&verlay", L"V", 'v'},
    separator,
    {Command::TRACE_VIEW, L"&Trace view", L"F9", Function_Key(9)},
    {Command::THEME, L"&Light theme", L"F8", Function_Key(8)},
};
constexpr Entry analyze_entries[] = {
    {Command::HISTOGRAM_ALL, L"Histogram of &all frames", nullptr, 0},
    {Command::HISTOGRAM_SHOWN, L"Histogram of the &shown frame", L"H", 'h'},
    {Command::HISTOGRAM_RANGE, L"Histogram of a &range of frames...", nullptr, 0},
    {Command::HISTOGRAM_OF_TAG, L"Only pixels of the current &TAG", L"B", 'b'},
    {Command::HISTOGRAM_BINS, L"Most &bins...", nullptr, 0},
    {Command::HISTOGRAM_COMPONENT, L"Next colour &component", L"K", 'k'},
    separator,
    {Command::ANALYSIS_WINDOW, L"&Peak analysis...", L"F4", Function_Key(4)},
    {Command::FIT_GAUSSIAN, L"Fit &Gaussians", nullptr, 0},
    {Command::FIT_DERIVATIVE, L"&Derivative method...", nullptr, 0},
    {Command::PEAKS_TO_BANDS, L"Peaks to TAG ba&nds", nullptr, 0},
};
constexpr Entry propagate_entries[] = {
    {Command::PROPAGATE_NEXT, L"To the &next frame", L"U", 'u'},
    {Command::PROPAGATE_PREVIOUS, L"To the &previous frame", L"D", 'd'},
    {Command::PROPAGATE_REPEAT, L"&Repeat upwards...", L"Ctrl+R", Control('R')},
    {Command::PROPAGATE_REPEAT_BACK, L"Repeat &downwards...", nullptr, 0},
    separator,
    {Command::FUNCTION_COPY, L"Function: &copy", L"C", 'c'},
    {Command::FUNCTION_GROW, L"Function: &grow", L"W", 'w'},
};
constexpr Entry database_entries[] = {
    {Command::DATABASE, L"&Show the database", L"F3", Function_Key(3)},
    {Command::DATABASE_FIND, L"&Find...", L"Ctrl+F", Control('F')},
    separator,
    {Command::DATABASE_EXPAND, L"E&xpand all", nullptr, 0},
    {Command::DATABASE_COLLAPSE, L"&Collapse all", nullptr, 0},
    separator,
    {Command::DATABASE_EDIT, L"&Edit the class tree", L"F11", Function_Key(11)},
};
constexpr Entry help_entries[] = {
    {Command::KEYS_HELP, L"&Keys and mouse", L"F1", Function_Key(1)},
    {Command::ABOUT, L"&About", nullptr, 0},
};

struct Menu {
    const wchar_t* title;
    const Entry* first;
    std::size_t count;
};
constexpr Menu menus[] = {
    {L"&File", file_entries, std::size(file_entries)},
    {L"&Edit", edit_entries, std::size(edit_entries)},
    {L"&TAG", tag_entries, std::size(tag_entries)},
    {L"&View", view_entries, std::size(view_entries)},
    {L"&Propagate", propagate_entries, std::size(propagate_entries)},
    {L"&Analyze", analyze_entries, std::size(analyze_entries)},
    {L"&Database", database_entries, std::size(database_entries)},
    {L"&Help", help_entries, std::size(help_entries)},
};

/** Keys beside those that the menus show. */
struct Further_Key {
    int key;
    Command command;
};
constexpr Further_Key further_keys[] = {
    {'+', Command::BRUSH_LARGER},        {'-', Command::BRUSH_SMALLER},
    {KEY_UP, Command::SLICE_NEXT},       {KEY_DOWN, Command::SLICE_PREVIOUS},
    {KEY_RIGHT, Command::SLICE_NEXT},    {KEY_LEFT, Command::SLICE_PREVIOUS},
    {KEY_ESCAPE, Command::CLOSE_BANNER}, {Function_Key(12), Command::REPORT_STATE},
};

}  // namespace

Command Command_Of_Key(int key) {
    const int plain = key > 0 && key < 0x80 && std::isalpha(key) != 0 ? std::tolower(key) : key;
    if (plain >= '0' && plain <= '9') {
        return static_cast<Command>(static_cast<int>(Command::TAG_DIGIT_0) + plain - '0');
    }
    for (const Menu& menu : menus) {
        for (std::size_t at = 0; at < menu.count; ++at) {
            if (menu.first[at].key == plain && plain != 0) {
                return menu.first[at].command;
            }
        }
    }
    for (const Further_Key& further : further_keys) {
        if (further.key == plain) {
            return further.command;
        }
    }
    return Command::NONE;
}

HMENU Menu_Make() {
    const HMENU bar = ::CreateMenu();
    for (const Menu& menu : menus) {
        const HMENU popup = ::CreatePopupMenu();
        for (std::size_t at = 0; at < menu.count; ++at) {
            const Entry& entry = menu.first[at];
            if (entry.text == nullptr) {
                ::AppendMenuW(popup, MF_SEPARATOR, 0, nullptr);
                continue;
            }
            std::wstring text = entry.text;
            if (entry.key_text != nullptr) {
                text += std::wstring(L"\t") + entry.key_text;
            }
            ::AppendMenuW(popup, MF_STRING, static_cast<UINT_PTR>(entry.command), text.c_str());
        }
        ::AppendMenuW(bar, MF_POPUP, reinterpret_cast<UINT_PTR>(popup), menu.title);
    }
    return bar;
}

const wchar_t* Keys_Text() {
    return L"Image\n"
           L"  Left button: paint the current TAG.  Right button: erase.\n"
           L"  Ctrl + left: pick the TAG under the pointer.\n"
           L"  Wheel: other slice.  Ctrl + wheel: zoom.  Shift + left drag: move the image.\n"
           L"  Middle drag, or Shift + right drag: window (sideways) and level (up and down).\n"
           L"  M: place and move markers with the left button; Delete removes the current one.\n"
           L"\n"
           L"Panels\n"
           L"  Left: pick.  Right: rename (Enter ends, Escape gives up).  Wheel: scroll.\n"
           L"  In threshold mode (T) the right button edits the TAG's lower threshold.\n"
           L"  The arrows in the headings fold a panel away.\n"
           L"\n"
           L"Database\n"
           L"  Check rows by click, or by a drag over several; Ctrl adds, Shift extends.\n"
           L"  Arrows walk the tree, Space checks a row; Left and Right close and open a branch.\n"
           L"  Editor: drag a handle to another parent; right button renames; Delete takes a class out.\n"
           L"\n"
           L"Keys\n"
           L"  0-9, N, P, G: pick a TAG.  E, S, L: enable, select, lock it.\n"
           L"  [ ]  or  - +: brush size.  , .: marker.\n"
           L"  Page Up, Page Down, Home, End, arrows: slices.\n"
           L"  U, D: propagate to the next, previous frame.  Ctrl+R: repeat.  C, W: copy or grow.\n"
           L"  Ctrl+Z, Ctrl+Y: undo, redo.  Ctrl+S: save labels.";
}
