#include "workbench/commands/keys_text.h"

#include <algorithm>
#include <iterator>

#include "workbench/commands/command_table.h"

namespace workbench {

namespace {

struct Gesture {
    const char* keys;
    const char* what;
};

constexpr Gesture PANEL_KEYS[] = {
    {"Tab, Shift+Tab", "go on to the next or previous part of the window; a frame marks it, Escape takes it away"},
    {"X", "folds or unfolds the marked panel"},
    {"Image",
     "with the keyboard cursor (I): arrows move it, Shift+arrows by ten pixels, Space paints or places the "
     "marker, Backspace erases, Enter holds the pen down and lifts it, A picks the TAG, J takes the cross-hair there"},
    {"TAG", "arrows, Home, End: other TAG; Space: show or hide it; Enter: name"},
    {"Brush", "arrows, Home, End: other brush"},
    {"Frames",
     "arrows, Page Up, Page Down, Home, End: other slice; Enter: propagate to the next frame; Backspace: "
     "to the previous one"},
    {"Markers", "arrows, Home, End: other marker; Enter: name; Delete: remove"},
    {"Histogram", "Up, Down: magnify or reduce the counts; Enter: enlarged histogram"},
    {"Enlarged histogram",
     "+ and -: zoom; arrows: move the view; Home: reset the zoom; E: export; T, C, P: open the lists of "
     "TAGs, cursor and peaks, where arrows and Enter pick; Escape: close"},
    {"Database",
     "Up, Down, Page Up, Page Down, Home, End: other row; Left, Right: close or open a branch; Space: "
     "check the row; Delete (editor): take the class out"},
    {"Rename a class",
     "letters, also those of an input method and those with an accent typed before them, and the keys of a text "
     "field; Enter, Escape and Tab do nothing there: the buttons are for the mouse. Characters beyond 16 bits (some "
     "rare Chinese ones, pictures), those of U+0800 to U+08FF and Alt with a number cannot be typed"},
    {"0 to 9", "pick the TAG of that number"},
    {"Enter, Backspace, Escape with a tool",
     "takes over what is begun (polygon, growing region), takes its last corner back, drops it"},
    {"Escape", "closes the warning banner, the enlarged histogram and dialogs"},
};

constexpr Gesture MOUSE_GESTURES[] = {
    {"Left button on the image", "paint the current TAG, or what the tool in hand does (Tools)"},
    {"Right button on the image", "erase; with a polygon, a lasso: its inside; with a measurement: remove it"},
    {"Ctrl + left on the image", "pick the TAG under the pointer"},
    {"Wheel over the image", "other slice; with Ctrl: zoom"},
    {"Shift + left drag", "move the image"},
    {"Ctrl + Shift + left drag", "move the cross-hair; the other planes (Y) follow"},
    {"Middle drag, Shift + right drag", "window (sideways) and level (up and down)"},
    {"Left button on a panel", "pick"},
    {"Right button on a TAG or marker", "name it; in threshold mode: the TAG's lower threshold"},
    {"Wheel over a panel", "scroll"},
    {"Heading of a panel", "folds it away"},
    {"Click or drag in the database", "check rows; Ctrl adds, Shift extends"},
    {"Drag in the editor", "a handle to another parent; the right button renames"},
    {"Drag at the database's left edge", "wider or narrower"},
};

/** Letters of a UTF-8 text. */
std::size_t Length(const std::string& text) {
    return static_cast<std::size_t>(
        std::ranges::count_if(text, [](char unit) { return (static_cast<unsigned char>(unit) & 0xC0U) != 0x80U; }));
}

void Pad(std::string& line, std::size_t width) {
    line.append(width - std::min(Length(line), width), ' ');
}

/** A text in lines of limited length, all but the first indented. */
std::string Wrapped(const std::string& text, std::size_t width, std::size_t indent) {
    std::string lines;
    std::string rest = text;
    while (rest.size() > width) {
        const std::size_t blank = rest.rfind(' ', width);
        const std::size_t end = blank == std::string::npos || blank == 0 ? width : blank;
        lines += rest.substr(0, end) + "\n" + std::string(indent, ' ');
        rest.erase(0, rest[end] == ' ' ? end + 1 : end);
    }
    return lines + rest;
}

template <std::size_t count>
std::string Gesture_Lines(const Gesture (&gestures)[count]) {
    constexpr std::size_t column = 36;
    constexpr std::size_t text_width = 48;
    std::string text;
    for (const Gesture& gesture : gestures) {
        std::string line = std::string("  ") + gesture.keys;
        Pad(line, column);
        text += line + Wrapped(gesture.what, text_width, column) + "\n";
    }
    return text;
}

/** In a table a bar would part the columns. */
std::string Cell(const std::string& text) {
    std::string cell;
    for (const char unit : text) {
        cell += unit == '|' ? std::string("\\|") : std::string(1, unit);
    }
    return cell;
}

template <std::size_t count>
std::string Gesture_Table(const char* head, const Gesture (&gestures)[count]) {
    std::string text = std::string("| ") + head + " | What happens |\n|---|---|\n";
    for (const Gesture& gesture : gestures) {
        text += "| " + Cell(gesture.keys) + " | " + Cell(gesture.what) + " |\n";
    }
    return text;
}

std::string Keys_Of(const Command_Record& record) {
    std::string keys;
    for (const Command_Key& key : record.keys) {
        if (key.key != 0) {
            const std::string context(Context_Text(key.context));
            keys += (keys.empty() ? "" : ", ") + Key_Text(key) + (context.empty() ? "" : " (" + context + ")");
        }
    }
    return keys;
}

}  // namespace

std::vector<Key_Line> Key_Lines() {
    std::vector<Key_Line> lines;
    for (const Command_Record& record : Command_Records()) {
        if (record.menu != Menu::None && record.text[0] != 0) {
            lines.push_back({Spoken_Text(MENU_TITLES[static_cast<std::size_t>(record.menu)]), Spoken_Text(record.text),
                             Keys_Of(record)});
        }
    }
    return lines;
}

std::string Keys_Text() {
    std::string text;
    std::string menu;
    for (const Key_Line& line : Key_Lines()) {
        if (line.menu != menu) {
            text += (text.empty() ? "" : "\n") + line.menu + "\n";
            menu = line.menu;
        }
        std::string row = "  " + line.what;
        Pad(row, 36);
        text += row + line.keys + "\n";
    }
    text += "\nBy keyboard in the parts of the window\n" + Gesture_Lines(PANEL_KEYS);
    text += "\nMouse\n" + Gesture_Lines(MOUSE_GESTURES);
    return text;
}

std::string Keys_Document() {
    std::string text =
        "# Keys of the workbench\n\n"
        "Everything can be done without a mouse. Every command stands in a menu, which Alt and the underlined letters "
        "open;\nmany have keys of their own. The same list is shown by Help > Keys and mouse (F1).\n";
    std::string menu;
    for (const Key_Line& line : Key_Lines()) {
        if (line.menu != menu) {
            text += "\n## " + line.menu + "\n\n| Command | Keys |\n|---|---|\n";
            menu = line.menu;
        }
        text += "| " + Cell(line.what) + " | " + Cell(line.keys) + " |\n";
    }
    text += "\n## By keyboard in the parts of the window\n\n" + Gesture_Table("Where or which key", PANEL_KEYS);
    text += "\n## Mouse\n\n" + Gesture_Table("Gesture", MOUSE_GESTURES);
    return text;
}

}  // namespace workbench
