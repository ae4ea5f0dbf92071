/** Editable one-line text fields. */
#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string_view>
#include <utility>

#include "host/kit_widgets.h"
#include "kits/common/text_conversion.h"
#include "kits/widgets/axis.h"
#include "kits/widgets/painter.h"
#include "kits/widgets/shown_widgets_note.h"
#include "kits/widgets/text_edit_core.h"

namespace {

constexpr int TEXT_MARGIN = 4;     ///< pixels between border and text
constexpr int CARET_MARGIN = 2;    ///< rows that the caret stays away from the border
constexpr int CARET_WIDTH = 2;     ///< pixels
constexpr short PLACE_UNSET = -1;  ///< caret of a field that was not loaded since Init
constexpr char STYLED_RUN_END = 2;

constexpr int KEY_SELECT_ALL = 1;  // Ctrl+A, C, X and V
constexpr int KEY_COPY = 3;
constexpr int KEY_CUT = 24;
constexpr int KEY_PASTE = 22;
constexpr int VIRTUAL_SHIFT = 0x10;
constexpr int VIRTUAL_CONTROL = 0x11;
constexpr int LAST_BYTE = 0xFF;
constexpr int FIRST_BEYOND_ASCII = 0x80;

// UTF-16 has characters beyond 0xFFFF in two halves of ten bits each.
constexpr int FIRST_HALF = 0xD800;
constexpr int SECOND_HALF = 0xDC00;
constexpr int LAST_HALF = 0xDFFF;
constexpr int HALF_BITS = 10;
constexpr int FIRST_OF_PAIRS = 0x10000;

constexpr unsigned int STYLE_EDIT = STYLE_EDIT_OPEN;                     ///< the bit that makes an editor of it
constexpr unsigned int STYLE_LIVE = STYLE_EDIT_LIVE & ~STYLE_EDIT_OPEN;  ///< yields its text after every key

bool Is_Editor(const Texts& field) {
    return (field.style & STYLE_EDIT) != 0;
}
bool Is_Live(const Texts& field) {
    return Is_Editor(field) && (field.style & STYLE_LIVE) != 0;
}
bool Has_Keyboard(const Texts& field) {
    return Is_Editor(field) && !Widget_Inactive(field);
}

/** Where the characters stand, in the widget's own picture. */
Rect Text_Area(const Texts& field) {
    const int border = Is_Editor(field) ? std::max(Widget_Border(field), 1) : 0;
    const int side = border + TEXT_MARGIN;
    return {side, border, field.width - 2 * side, field.height - 2 * border};
}

int Width_Of(const Texts& field, std::string_view text) {
    return Text_Width(text, Widget_Font(field));
}

std::string_view Part(std::string_view text, int start, int end) {
    return text.substr(static_cast<std::size_t>(start), static_cast<std::size_t>(std::max(end - start, 0)));
}

void Paint_Selection(Surface& picture, const Texts& field, const Text_Edit& edit, int first) {
    const Theme& theme = Theme_Now();
    const Rect area = Text_Area(field);
    const int start = std::max(edit.Selection_Start(), first);
    const int end = std::max(edit.Selection_End(), first);
    const int from = area.left + Width_Of(field, Part(edit.Text(), first, start));
    const int to = area.left + Width_Of(field, Part(edit.Text(), first, end));
    const Rect marked = Rect_Common({from, area.top + CARET_MARGIN, to - from, area.height - 2 * CARET_MARGIN}, area);
    if (marked.Is_Empty()) {
        return;
    }
    picture.Fill(marked, theme.accent);
    const Rect before = picture.Clip_Set(marked);  // the same text once more, so that its characters keep their places
    picture.Text({area.left, area.top, picture.Width(), area.height}, Part(edit.Text(), first, edit.Length()),
                 Widget_Font(field), theme.accent_text);
    picture.Clip_Set(before);
}

/** The field with its text from `first` on, its selection and its caret. */
void Paint_Editor(Painter& painter, const Texts& field, const Text_Edit& edit, int first) {
    const Theme& theme = Theme_Now();
    Surface& picture = painter.Picture();
    const bool open = Has_Keyboard(field);
    const Rgb ground = open ? theme.field : Mix(theme.field, theme.panel, INACTIVE_MIX_PERCENT);
    Draw_Face(picture, painter.Area(), ground, open ? theme.line_strong : theme.line,
              std::max(Widget_Border(field), 1));
    const Rect area = Text_Area(field);
    const Rect before = picture.Clip_Set(area);
    picture.Text({area.left, area.top, picture.Width(), area.height}, Part(edit.Text(), first, edit.Length()),
                 Widget_Font(field), open ? theme.field_text : theme.text_grey);
    picture.Clip_Set(before);
    if (!open) {
        return;
    }
    Paint_Selection(picture, field, edit, first);
    const int caret = area.left + Width_Of(field, Part(edit.Text(), first, edit.Caret()));
    picture.Fill({caret, area.top + CARET_MARGIN, CARET_WIDTH, area.height - 2 * CARET_MARGIN}, theme.line_strong);
}

/** A field that is no editor is a line of text on its own colour. */
void Paint_Prompt(Painter& painter, const Texts& field, std::string_view text) {
    const Rgb ground = Rgb_Of(field.color);
    painter.Picture().Fill(painter.Area(), ground);
    Draw_Caption(painter.Picture(), Text_Area(field), field, text,
                 Widget_Inactive(field) ? Theme_Now().text_grey : Contrast_Color(ground), Align::Left);
}

/** Prints into a buffer of TEXTS_SIZE bytes; what is longer is cut at a whole character. Arguments that point into the
 *  field's own text are allowed: the buffer is another one. */
void Print(std::array<char, TEXTS_SIZE>* out, const char* format, va_list arguments) {
    // One character more than is kept, so that the cut can be seen.
    std::array<char, TEXTS_SIZE + 4> printed{};
    out->fill(0);
    if (format == nullptr || std::vsnprintf(printed.data(), printed.size(), format, arguments) < 0) {
        return;
    }
    const std::string_view kept = Text_Cut(printed.data(), TEXTS_SIZE - 1);
    std::copy(kept.begin(), kept.end(), out->begin());
}

/** Applies a key that moves the caret or changes the text. @return false when it is none of these */
bool Edit_Key(Text_Edit* edit, int key, bool shift, bool control) {
    switch (key) {
        case KEY_BACKSPACE:
            edit->Backspace();
            return true;
        case KEY_DELETE:
            edit->Delete();
            return true;
        case KEY_HOME:
            edit->Home(shift);
            return true;
        case KEY_END:
            edit->End(shift);
            return true;
        case KEY_LEFT:
            control ? edit->Word_Left(shift) : edit->Left(shift);
            return true;
        case KEY_RIGHT:
            control ? edit->Word_Right(shift) : edit->Right(shift);
            return true;
        default:
            return false;
    }
}

/** Applies a clipboard key. @return false when it is none */
bool Clipboard_Key(Text_Edit* edit, int key) {
    std::array<char, TEXTS_SIZE> clip{};
    switch (key) {
        case KEY_SELECT_ALL:
            edit->Select_All();
            return true;
        case KEY_COPY:
        case KEY_CUT:
            if (!edit->Has_Selection()) {
                return true;
            }
            std::copy_n(edit->Selected().data(), edit->Selected().size(), clip.begin());
            if (Input_Clipboard_Set(clip.data()) != 0 && key == KEY_CUT) {
                edit->Delete();  // a text that could not be copied is not lost
            }
            return true;
        case KEY_PASTE: {
            const int got = Input_Clipboard_Get(clip.data(), TEXTS_SIZE);
            clip.back() = 0;
            edit->Insert(std::string_view(clip.data(), got > 0 ? std::strlen(clip.data()) : 0));
            return true;
        }
        default:
            return false;
    }
}

bool Is_First_Half(int number) {
    return number >= FIRST_HALF && number < SECOND_HALF;
}

/** Inserts a character that comes as one or two numbers of UTF-16. @param first as for Type */
void Type_Wide(Text_Edit* edit, int number, unsigned short before, unsigned short* first) {
    if (Is_First_Half(number)) {
        *first = static_cast<unsigned short>(number);
        return;
    }
    const bool joins = Is_First_Half(before) && number >= SECOND_HALF && number <= LAST_HALF;
    edit->Insert_Code_Point(static_cast<std::uint32_t>(
        joins ? FIRST_OF_PAIRS + ((before - FIRST_HALF) << HALF_BITS) + (number - SECOND_HALF) : number));
}

/** Inserts a typed character: a byte of the system's code page, or a number of UTF-16 beyond its single bytes.
 *  @param first the first key code of a character whose second one is still to come, 0 for none; renewed */
void Type(Text_Edit* edit, int key, unsigned short* first) {
    const unsigned short before = std::exchange(*first, static_cast<unsigned short>(0));
    if (key >= KEY_SPECIAL && key <= KEY_SPECIAL + LAST_BYTE) {
        return;
    }
    // No single key makes a character of UTF-8 byte by byte: it comes whole.
    if (key > LAST_BYTE || (key >= FIRST_BEYOND_ASCII && Code_Page_Is_Utf8())) {
        Type_Wide(edit, key, before, first);
        return;
    }
    const bool second = before != 0 && before <= LAST_BYTE;
    const char byte = static_cast<char>(static_cast<unsigned char>(key));
    const char typed[] = {second ? static_cast<char>(static_cast<unsigned char>(before)) : byte, second ? byte : '\0',
                          '\0'};
    if (Character_Bytes(typed) == 0) {
        *first = static_cast<unsigned short>(key);
        return;
    }
    edit->Insert(typed);
}

}  // namespace

int Texts::Init(HWND init_window) {
    finished = false;
    key_seen = false;
    selecting = false;
    typed_first = 0;
    caret = PLACE_UNSET;
    anchor = PLACE_UNSET;
    return Widget_Init(*this, init_window);
}

void Texts::Draw() {
    if (Widget_Hidden(*this)) {
        return;
    }
    Painter painter(*this);
    if (!painter) {
        return;
    }
    const Text_Edit edit(text, TEXTS_SIZE, caret, anchor);
    Shown_Note(*this, {Widget_Kind::Text, name, edit.Text()});
    if (Is_Editor(*this)) {
        const int room = Text_Area(*this).width - CARET_WIDTH;
        const auto width_of = [this](std::string_view part) { return Width_Of(*this, part); };
        position = static_cast<unsigned short>(Text_First_Shown(edit.Text(), edit.Caret(), position, room, width_of));
        Paint_Editor(painter, *this, edit, position);
    } else {
        Paint_Prompt(painter, *this, edit.Text());
    }
    Count_Draw();
}

void Texts::Adjust() {
    Draw();
}

void Texts::Read(const char* format, ...) {
    std::array<char, TEXTS_SIZE> loaded;
    va_list arguments;
    va_start(arguments, format);
    Print(&loaded, format, arguments);
    va_end(arguments);

    // The application of a live field hands the text back after every key, perhaps cut: the edit goes on then.
    const bool goes_on = Is_Live(*this) && caret != PLACE_UNSET && std::string_view(text).starts_with(loaded.data());
    std::copy(loaded.begin(), loaded.end(), text);
    Text_Edit edit(text, TEXTS_SIZE, caret, anchor);
    if (!goes_on) {
        edit.Select_All();
        position = 0;
        selecting = false;
    }
    caret = static_cast<short>(edit.Caret());
    anchor = static_cast<short>(edit.Anchor());
    finished = false;
    key_seen = false;
}

void Texts::Write(const char* format, ...) {
    std::array<char, TEXTS_SIZE> printed;
    va_list arguments;
    va_start(arguments, format);
    Print(&printed, format, arguments);
    va_end(arguments);

    const auto start = printed.begin() + (printed[0] == STYLED_RUN_END ? 1 : 0);
    std::fill(std::copy(start, printed.end(), text), text + TEXTS_SIZE, '\0');
    Text_Edit edit(text, TEXTS_SIZE, TEXTS_SIZE, TEXTS_SIZE);
    caret = static_cast<short>(edit.Caret());
    anchor = static_cast<short>(edit.Anchor());
    position = 0;
    Draw();
}

int Texts::Select(int up_down, short pointer_x, short pointer_y) {
    if (up_down == 1) {
        return Has_Keyboard(*this) ? 1 : 0;
    }
    Point pointer;
    bool over = Widget_Pointer(*this, &pointer);
    if (pointer_x != 0 || pointer_y != 0) {  // the application gave the place itself
        pointer = {pointer_x - x, pointer_y - y};
        over = Rect{0, 0, width, height}.Has_Point(pointer);
    }
    over = over && Has_Keyboard(*this);
    if (up_down == MOUSE_ASK) {
        return over ? 1 : 0;
    }
    const bool pressed = over && (up_down & MOUSE_PRESS) != 0;
    selecting = pressed || (selecting && (up_down & MOUSE_DRAG) != 0 && Has_Keyboard(*this));
    if (!selecting) {
        return 0;
    }
    Text_Edit edit(text, TEXTS_SIZE, caret, anchor);
    const Rect area = Text_Area(*this);
    const int first = Text_Whole_Character(edit.Text(), position);
    const int along = pointer.x - area.left;
    int place = first;
    if (along < 0) {  // beyond the left end: scroll back
        place = first > 0 ? static_cast<int>(Character_Before(edit.Text(), static_cast<std::size_t>(first))) : 0;
    } else {
        const std::string_view shown = Part(edit.Text(), first, edit.Length());
        const std::size_t whole = Text_Fit(shown, Widget_Font(*this), along);
        const std::size_t next = whole + Character_Length(shown, whole);
        const int left_gap = along - Width_Of(*this, shown.substr(0, whole));
        const int right_gap = Width_Of(*this, shown.substr(0, next)) - along;
        place = first + static_cast<int>(left_gap <= right_gap ? whole : next);
    }
    edit.Move_To(place, !pressed || Input_Key_Held(VIRTUAL_SHIFT));
    const bool changed = edit.Caret() != caret || edit.Anchor() != anchor;
    caret = static_cast<short>(edit.Caret());
    anchor = static_cast<short>(edit.Anchor());
    if (changed) {
        Draw();
    }
    return 1;
}

void Texts::Deselect() {
    selecting = false;
}

void Texts::Input(int key) {
    const int code = key & 0xFFFF;
    if (!Has_Keyboard(*this) || (finished && !Is_Live(*this)) || code == 0) {
        return;
    }
    key_seen = true;
    if (code == KEY_ENTER || code == KEY_TAB || code == KEY_ESCAPE) {
        if (code == KEY_ESCAPE) {
            text[0] = 0;
        }
        finished = true;  // not repainted: the application closes the field
        return;
    }
    Text_Edit edit(text, TEXTS_SIZE, caret, anchor);
    if (!Edit_Key(&edit, code, Input_Key_Held(VIRTUAL_SHIFT), Input_Key_Held(VIRTUAL_CONTROL)) &&
        !Clipboard_Key(&edit, code) && code >= FIRST_PRINTABLE) {
        Type(&edit, code, &typed_first);
    } else {
        typed_first = 0;
    }
    caret = static_cast<short>(edit.Caret());
    anchor = static_cast<short>(edit.Anchor());
    Draw();
}

char* Texts::Update() {
    return finished || (key_seen && Is_Live(*this)) ? text : nullptr;
}

void Texts::Cleanup() {
    Clear();
}
