#include "workbench/keys_text.h"

#include <algorithm>
#include <iterator>

#include "workbench/commands.h"
#include "workbench/wide_text.h"

namespace workbench {

namespace {

struct Gesture {
    const wchar_t* keys;
    const wchar_t* what;
};

constexpr Gesture panel_keys[] = {
    {L"Tab, Shift+Tab", L"go on to the next or previous part of the window; a frame marks it, Escape takes it away"},
    {L"X", L"folds or unfolds the marked panel"},
    {L"Image",
     L"with the keyboard cursor (I): arrows move it, Shift+arrows by ten pixels, Space paints or places the "
     L"marker, Backspace erases, Enter holds the pen down and lifts it, A picks the TAG"},
    {L"TAG", L"arrows, Home, End: other TAG; Space: show or hide it; Enter: name"},
    {L"Brush", L"arrows, Home, End: other brush"},
    {L"Frames",
     L"arrows, Page Up, Page Down, Home, End: other slice; Enter: propagate to the next frame; Backspace: "
     L"to the previous one"},
    {L"Markers", L"arrows, Home, End: other marker; Enter: name; Delete: remove"},
    {L"Histogram", L"Up, Down: magnify or reduce the counts; Enter: enlarged histogram"},
    {L"Enlarged histogram",
     L"+ and -: zoom; arrows: move the view; Home: reset the zoom; E: export; T, C, P: open the lists of "
     L"TAGs, cursor and peaks, where arrows and Enter pick; Escape: close"},
    {L"Database",
     L"Up, Down, Page Up, Page Down, Home, End: other row; Left, Right: close or open a branch; Space: "
     L"check the row; Delete (editor): take the class out"},
    {L"Rename a class",
     L"letters, also those of an input method and those with an accent typed before them, and the keys of a text "
     L"field; Enter, Escape and Tab do nothing there: the buttons are for the mouse. Characters beyond 16 bits (some "
     L"rare Chinese ones, pictures), those of U+0800 to U+08FF and Alt with a number cannot be typed"},
    {L"0 to 9", L"pick the TAG of that number"},
    {L"Escape", L"closes the warning banner, the enlarged histogram and dialogs"},
};

constexpr Gesture mouse_gestures[] = {
    {L"Left button on the image", L"paint the current TAG"},
    {L"Right button on the image", L"erase"},
    {L"Ctrl + left on the image", L"pick the TAG under the pointer"},
    {L"Wheel over the image", L"other slice; with Ctrl: zoom"},
    {L"Shift + left drag", L"move the image"},
    {L"Middle drag, Shift + right drag", L"window (sideways) and level (up and down)"},
    {L"Left button on a panel", L"pick"},
    {L"Right button on a TAG or marker", L"name it; in threshold mode: the TAG's lower threshold"},
    {L"Wheel over a panel", L"scroll"},
    {L"Heading of a panel", L"folds it away"},
    {L"Click or drag in the database", L"check rows; Ctrl adds, Shift extends"},
    {L"Drag in the editor", L"a handle to another parent; the right button renames"},
    {L"Drag at the database's left edge", L"wider or narrower"},
};

void Pad(std::wstring& line, std::size_t width) {
    line.resize(std::max(line.size(), width), L' ');
}

/** A text in lines of limited length, all but the first indented. */
std::wstring Wrapped(const std::wstring& text, std::size_t width, std::size_t indent) {
    std::wstring lines;
    std::wstring rest = text;
    while (rest.size() > width) {
        const std::size_t blank = rest.rfind(L' ', width);
        const std::size_t end = blank == std::wstring::npos || blank == 0 ? width : blank;
        lines += rest.substr(0, end) + L"\n" + std::wstring(indent, L' ');
        rest.erase(0, rest[end] == L' ' ? end + 1 : end);
    }
    return lines + rest;
}

template <std::size_t count>
std::wstring Gesture_Lines(const Gesture (&gestures)[count]) {
    constexpr std::size_t column = 36;
    constexpr std::size_t text_width = 48;
    std::wstring text;
    for (const Gesture& gesture : gestures) {
        std::wstring line = std::wstring(L"  ") + gesture.keys;
        Pad(line, column);
        text += line + Wrapped(gesture.what, text_width, column) + L"\n";
    }
    return text;
}

/** In a table a bar would part the columns. */
std::string Cell(const std::wstring& text) {
    std::string cell;
    for (const char unit : Utf8_Of_Wide(text)) {
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

}  // namespace

std::wstring Keys_Text() {
    std::wstring text;
    std::wstring menu;
    for (const Key_Line& line : Key_Lines()) {
        if (line.menu != menu) {
            text += (text.empty() ? L"" : L"\n") + line.menu + L"\n";
            menu = line.menu;
        }
        std::wstring row = L"  " + line.what;
        Pad(row, 36);
        text += row + line.keys + L"\n";
    }
    text += L"\nBy keyboard in the parts of the window\n" + Gesture_Lines(panel_keys);
    text += L"\nMouse\n" + Gesture_Lines(mouse_gestures);
    return text;
}

std::string Keys_Document() {
    std::string text =
        "# Keys of the workbench\n\n"
        "Everything can be done without a mouse. Every command stands in a menu, which Alt and the underlined letters "
        "open;\nmany have keys of their own. The same list is shown by Help > Keys and mouse (F1).\n";
    std::wstring menu;
    for (const Key_Line& line : Key_Lines()) {
        if (line.menu != menu) {
            text += "\n## " + Utf8_Of_Wide(line.menu) + "\n\n| Command | Keys |\n|---|---|\n";
            menu = line.menu;
        }
        text += "| " + Cell(line.what) + " | " + Cell(line.keys) + " |\n";
    }
    text += "\n## By keyboard in the parts of the window\n\n" + Gesture_Table("Where or which key", panel_keys);
    text += "\n## Mouse\n\n" + Gesture_Table("Gesture", mouse_gestures);
    return text;
}

}  // namespace workbench
