#include "workbench/commands.h"

#include <cctype>
#include <iterator>
#include <string>
#include <utility>

#include "host/kit_widgets.h"

namespace workbench {

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
    {Command::OPEN, L"&Open image...", L"Ctrl+O", Control('O')},
    {Command::OPEN_FOLDER, L"Open &folder...", L"Ctrl+D", Control('D')},
    {Command::NOT_OPENED, L"Files &not opened...", nullptr, 0},
    {Command::WHAT_WAS_READ, L"&What was read...", nullptr, 0},
    {Command::ORIENTATION, L"O&rientation of the image...", nullptr, 0},
    separator,
    {Command::LOAD_LABELS, L"&Load labels...", L"Ctrl+L", Control('L')},
    {Command::SAVE_LABELS, L"&Save labels", L"Ctrl+S", Control('S')},
    {Command::SAVE_LABELS_AS, L"Save labels &as...", nullptr, 0},
    separator,
    {Command::EXPORT_HISTOGRAM, L"&Export histogram...", L"Ctrl+E", Control('E')},
    {Command::VERIFY_EXPORT, L"&Verify export...", nullptr, 0},
    separator,
    {Command::QUIT, L"&Quit", L"Ctrl+Q", Control('Q')},
};
constexpr Entry edit_entries[] = {
    {Command::UNDO, L"&Undo", L"Ctrl+Z", Control('Z')},
    {Command::REDO, L"&Redo", L"Ctrl+Y", Control('Y')},
    {Command::HISTORY, L"&History...", nullptr, 0},
    separator,
    {Command::BRUSH_LARGER, L"Lar&ger brush", L"]", ']'},
    {Command::BRUSH_SMALLER, L"&Smaller brush", L"[", '['},
    separator,
    {Command::MARKER_MODE, L"Place &markers", L"M", 'm'},
    {Command::MARKER_NEXT, L"&Next marker", L".", '.'},
    {Command::MARKER_PREVIOUS, L"Pre&vious marker", L",", ','},
    {Command::MARKER_RENAME, L"Name o&f the marker...", nullptr, 0},
    {Command::REMOVE_MARKER, L"Remove &current marker", L"Delete", KEY_DELETE},
};
constexpr Entry tag_entries[] = {
    {Command::TAG_NEXT, L"&Next TAG", L"N", 'n'},
    {Command::TAG_PREVIOUS, L"&Previous TAG", L"P", 'p'},
    {Command::TAG_GO_TO, L"&Go to TAG...", L"G", 'g'},
    separator,
    {Command::TAG_RENAME, L"Na&me...", L"F2", Function_Key(2)},
    {Command::TAG_COLORS, L"Check TAG &colours...", nullptr, 0},
    separator,
    {Command::TAG_ENABLE, L"&Enabled (shown)", L"E", 'e'},
    {Command::TAG_SELECT, L"&Selected (propagated)", L"S", 's'},
    {Command::TAG_LOCK, L"&Locked (not overwritten)", L"L", 'l'},
    separator,
    {Command::TAG_THRESHOLDS, L"&Threshold mode", L"T", 't'},
    {Command::TAG_THRESHOLD_MIN, L"Lo&wer threshold...", nullptr, 0},
    {Command::TAG_THRESHOLD_MAX, L"&Upper threshold...", nullptr, 0},
    {Command::TAG_MORE, L"&Four more TAGs", nullptr, 0},
    separator,
    {Command::CHECK_SHOWS_ENABLE, L"Check mark shows ena&bled", nullptr, 0},
    {Command::CHECK_SHOWS_SELECT, L"Check mark shows selecte&d", nullptr, 0},
    {Command::CHECK_SHOWS_LOCK, L"Chec&k mark shows locked", nullptr, 0},
};
constexpr Entry view_entries[] = {
    {Command::SLICE_NEXT, L"&Next slice", L"Page Up", KEY_PAGE_UP},
    {Command::SLICE_PREVIOUS, L"&Previous slice", L"Page Down", KEY_PAGE_DOWN},
    {Command::SLICE_FIRST, L"F&irst slice", L"Home", KEY_HOME},
    {Command::SLICE_LAST, L"L&ast slice", L"End", KEY_END},
    separator,
    {Command::VOLUME_NEXT, L"Next vol&ume", L"Ctrl+N", Control('N')},
    {Command::VOLUME_PREVIOUS, L"Previous volu&me", L"Ctrl+P", Control('P')},
    separator,
    {Command::ZOOM_100, L"&100 %", L"F5", Function_Key(5)},
    {Command::ZOOM_200, L"&200 %", L"F6", Function_Key(6)},
    {Command::ZOOM_TO_FIT, L"&Fit", L"F7", Function_Key(7)},
    {Command::WINDOW_RESET, L"&Reset window and level", L"R", 'r'},
    {Command::OVERLAY, L"Show TAG &colours", L"O", 'o'},
    separator,
    {Command::RANGE_OVERLAY, L"Threshold o&verlay", L"V", 'v'},
    separator,
    {Command::FOCUS_NEXT, L"Ne&xt panel by keyboard", L"Tab", KEY_TAB},
    {Command::FOCUS_PREVIOUS, L"Previous panel &by keyboard", L"Shift+Tab", 0},
    {Command::PANEL_FOLD, L"Fol&d the panel", L"X", 'x'},
    separator,
    {Command::TRACE_VIEW, L"&Trace view", L"F9", Function_Key(9)},
    {Command::THEME, L"&Light theme", L"F8", Function_Key(8)},
};
constexpr Entry image_entries[] = {
    {Command::CURSOR_SHOW, L"&Keyboard cursor", L"I", 'i'},
    {Command::CURSOR_PAINT, L"&Paint at the cursor", L"Space", ' '},
    {Command::CURSOR_ERASE, L"&Erase at the cursor", L"Backspace", KEY_BACKSPACE},
    {Command::CURSOR_PEN, L"Hold the pe&n down", L"Enter", KEY_ENTER},
    {Command::CURSOR_PICK, L"Pick the &TAG at the cursor", L"A", 'a'},
    separator,
    {Command::ZOOM_IN, L"Zoom &in", L"*", '*'},
    {Command::ZOOM_OUT, L"Zoom &out", L"/", '/'},
    separator,
    {Command::LEVEL_UP, L"&Darker (level up)", L")", ')'},
    {Command::LEVEL_DOWN, L"&Brighter (level down)", L"(", '('},
    {Command::WINDOW_WIDER, L"&Less contrast (wider window)", L"}", '}'},
    {Command::WINDOW_NARROWER, L"&More contrast (narrower window)", L"{", '{'},
};
constexpr Entry analyze_entries[] = {
    {Command::HISTOGRAM_ALL, L"Histogram of &all frames", nullptr, 0},
    {Command::HISTOGRAM_SHOWN, L"Histogram of the &shown frame", L"H", 'h'},
    {Command::HISTOGRAM_RANGE, L"Histogram of a &range of frames...", nullptr, 0},
    {Command::HISTOGRAM_OF_TAG, L"Only pixels of the current &TAG", L"B", 'b'},
    {Command::HISTOGRAM_SMOOTHED, L"S&moothed pixels (3 \u00D7 3)", nullptr, 0},
    {Command::BACKGROUND_LEAVE_OUT, L"&Leave out the background", nullptr, 0},
    {Command::BACKGROUND_THRESHOLD, L"Background t&hreshold...", nullptr, 0},
    {Command::HISTOGRAM_BINS, L"Most &bins...", nullptr, 0},
    {Command::HISTOGRAM_COMPONENT, L"Next colour &component", L"K", 'k'},
    {Command::HISTOGRAM_HIGHER, L"Magnif&y the counts", L">", '>'},
    {Command::HISTOGRAM_LOWER, L"Red&uce the counts", L"<", '<'},
    {Command::HISTOGRAM_ENLARGE, L"&Enlarged histogram", L"Z", 'z'},
    {Command::WHEEL_TURNED, L"Enlarged histogram: &wheel forward zooms in", nullptr, 0},
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
    {Command::DATABASE_FILES, L"F&iles", nullptr, 0},
    {Command::DATABASE_2D, L"&2D classes", nullptr, 0},
    {Command::DATABASE_3D, L"&3D classes", nullptr, 0},
    {Command::DATABASE_1D, L"&1D classes", nullptr, 0},
    {Command::DATABASE_WIDER, L"&Wider", nullptr, 0},
    {Command::DATABASE_NARROWER, L"&Narrower", nullptr, 0},
    separator,
    {Command::DATABASE_EXPAND, L"E&xpand all", nullptr, 0},
    {Command::DATABASE_COLLAPSE, L"&Collapse all", nullptr, 0},
    separator,
    {Command::DATABASE_EDIT, L"&Edit the class tree", L"F11", Function_Key(11)},
    {Command::CLASS_UNDO, L"&Undo in the class trees", nullptr, 0},
    {Command::CLASS_REDO, L"&Redo in the class trees", nullptr, 0},
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
    {L"&Image", image_entries, std::size(image_entries)},
    {L"&Propagate", propagate_entries, std::size(propagate_entries)},
    {L"&Analyze", analyze_entries, std::size(analyze_entries)},
    {L"&Database", database_entries, std::size(database_entries)},
    {L"&Help", help_entries, std::size(help_entries)},
};

/** Keys beside those that the menus show. */
struct Further_Key {
    int key;
    Command command;
    const wchar_t* text;
};
constexpr Further_Key further_keys[] = {
    {'+', Command::BRUSH_LARGER, L"+"},
    {'-', Command::BRUSH_SMALLER, L"-"},
    {KEY_UP, Command::SLICE_NEXT, L"Up"},
    {KEY_RIGHT, Command::SLICE_NEXT, L"Right"},
    {KEY_DOWN, Command::SLICE_PREVIOUS, L"Down"},
    {KEY_LEFT, Command::SLICE_PREVIOUS, L"Left"},
    {KEY_ESCAPE, Command::CLOSE_BANNER, L"Escape"},
    {Function_Key(12), Command::REPORT_STATE, L"F12"},
};

/** A menu's text as it is read aloud: without the mark of its letter, and without the dots of a question. */
std::wstring Spoken(std::wstring text) {
    std::erase(text, L'&');
    if (text.ends_with(L"...")) {
        text.resize(text.size() - 3);
    }
    return text;
}

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

std::vector<Key_Line> Key_Lines() {
    std::vector<Key_Line> lines;
    for (const Menu& menu : menus) {
        for (std::size_t at = 0; at < menu.count; ++at) {
            const Entry& entry = menu.first[at];
            if (entry.text == nullptr) {
                continue;
            }
            Key_Line line = {Spoken(menu.title), Spoken(entry.text), entry.key_text != nullptr ? entry.key_text : L""};
            for (const Further_Key& further : further_keys) {
                if (further.command == entry.command) {
                    line.keys += (line.keys.empty() ? L"" : L", ") + std::wstring(further.text);
                }
            }
            lines.push_back(std::move(line));
        }
    }
    return lines;
}

std::string Command_Name(Command command) {
    for (const Menu& menu : menus) {
        for (std::size_t at = 0; at < menu.count; ++at) {
            if (menu.first[at].command == command && menu.first[at].text != nullptr) {
                std::string name;
                for (const wchar_t letter : Spoken(menu.first[at].text)) {
                    name += letter < 0x80 ? static_cast<char>(letter) : '?';
                }
                return name;
            }
        }
    }
    return std::to_string(static_cast<int>(command));
}

}  // namespace workbench
