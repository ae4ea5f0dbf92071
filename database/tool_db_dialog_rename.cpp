#include "database/tool_db_dialog_rename.h"

#include <windows.h>
#include <windowsx.h>

#include <imm.h>

#include <cstring>

#include "base/gdi_handles.h"
#include "base/wheel_remainder.h"
#include "database/db_panel_geometry.h"
#include "host/kit_common.h"
#include "host/kit_widgets.h"
#include "panels/protocol/host_variables.h"
#include "panels/protocol/widget_place.h"

namespace {

constexpr std::size_t TEMPLATE_SIZE = 1024;    // bytes
constexpr DWORD TEMPLATE_STYLE = 0x80C80080U;  // pop-up, caption, system menu, modal frame
constexpr int TEMPLATE_PLACE = 10;             // dialog units
constexpr int TEMPLATE_WIDTH = 1920;           // base units, so that the size in pixels is the same on every screen
constexpr int TEMPLATE_HEIGHT = 1200;
constexpr int TITLE_MAX = 50;  // wide characters
constexpr char TITLE[] = "Class Rename";
constexpr char PROMPT[] = "\x02 Enter the new name for this instance.";
constexpr int RESULT_SAVE = 1;
constexpr int RESULT_CANCEL = 2;
constexpr int RESULT_FAILED = -1;
constexpr int CHARACTER_MASK = 0xFFFF;  // of what Parse_Dialog makes of a key
constexpr unsigned char GREY_BOX = 160;
constexpr unsigned char GREY_ENTRY = 235;

/** The one dialog. */
struct Rename_Dialog {
    char (*buffer)[DIALOG_RENAME_SIZE] = nullptr;  // the caller's
    HWND window = nullptr;
    HWND owner = nullptr;
    Boxs box;
    Buttons save;
    Buttons cancel;
    Texts entry;
    Texts prompt;
};
Rename_Dialog* dialog = nullptr;  // while it is open
Wheel_Remainder wheel;            // goes on from one dialog to the next

void Frame_In(Tools& widget, const Pixel_Rectangle& place) {
    Widget_Place(widget, place);
    widget.border = static_cast<unsigned short>(Host_Dimension("$INTERFACE_BORDER_DIM"));
}

void Tool_Font(Tools& widget, bool is_larger) {
    widget.font_name = Host_Pointer<const char>("$INTERFACE_TOOL_FONT_NAME");
    widget.font_weight = Host_Pointer<const char>("$INTERFACE_TOOL_FONT_WEIGHT");
    const short scale = Host_Dimension("$INTERFACE_TOOL_FONT_SCALE");
    widget.font_scale = is_larger ? DB_Font_Scale_Larger(scale) : scale;
}

void Lay_Out(Rename_Dialog& rename, int width, int height) {
    const int space = Host_Dimension("$INTERFACE_SPACE_DIM");
    const int button = Host_Dimension("$INTERFACE_BUTTON_DIM_BIG");
    for (const char* unused : {"$INTERFACE_CURSOR_DIM", "$INTERFACE_BUTTON_DIM_SML", "$INTERFACE_VAL_DIM_SML",
                               "$INTERFACE_TITLE_DIM_SML", "$DEFAULT_ICON_PATH"}) {
        Fct_Variable_Value(unused, nullptr, nullptr, nullptr);  // looked up and not used
    }
    const int inner = width - 1 - 2 * space;
    const int half = (inner - space) / 2;

    rename.box.style = STYLE_FRAMED_BOX;
    Frame_In(rename.box, {0, 0, width - 1, height - 1});
    rename.box.font_name = Host_Pointer<const char>("$INTERFACE_TITLE_FONT_NAME");
    rename.box.font_weight = Host_Pointer<const char>("$INTERFACE_TITLE_FONT_WEIGHT");
    rename.box.font_scale = Host_Dimension("$INTERFACE_TITLE_FONT_SCALE");
    rename.box.Set_Color(GREY_BOX, GREY_BOX, GREY_BOX);
    rename.box.Init(rename.window);

    Frame_In(rename.save, {space, space, half, button});
    Tool_Font(rename.save, true);
    rename.save.Set_Color(GREY_BOX, GREY_BOX, GREY_BOX);
    rename.save.Set_Name("Save");
    rename.save.Init(rename.window);

    // The library's own space comes on top of the host's; kept.
    Frame_In(rename.cancel, {2 * space + half + SPACE, space, half, button});
    Tool_Font(rename.cancel, true);
    rename.cancel.Set_Color(200, 200, 100);
    rename.cancel.Set_Name("Cancel");
    rename.cancel.Init(rename.window);

    rename.entry.style = STYLE_EDIT_LIVE;
    Frame_In(rename.entry, {space, 2 * space + button, inner, button});
    Tool_Font(rename.entry, false);
    rename.entry.Set_Color(GREY_ENTRY, GREY_ENTRY, GREY_ENTRY);
    rename.entry.Init(rename.window);

    const int above_entry = 3 * space + 2 * button;
    Frame_In(rename.prompt, {space, above_entry, inner, height - 1 - above_entry - space});
    Tool_Font(rename.prompt, false);
    rename.prompt.Set_Color(GREY_BOX, GREY_BOX, GREY_BOX);
    rename.prompt.Init(rename.window);
}

void Lay_Out_Client(Rename_Dialog& rename) {
    RECT client = {};
    ::GetClientRect(rename.window, &client);
    Lay_Out(rename, client.right, client.bottom);
}

void Paint(Rename_Dialog& rename) {
    rename.box.Draw();
    rename.prompt.Draw();
    rename.prompt.Cleanup();
    rename.prompt.Write("%s", PROMPT);
    rename.entry.Cleanup();
    rename.entry.Read("%s", *rename.buffer);
    rename.entry.Draw();
    rename.save.Draw();
    rename.cancel.Draw();
}

/** Bytes of the character of the system's code page that begins at `text`; 0 at the end, and for one that the end cuts
 *  off. What begins no character counts as one byte. */
std::size_t Character_Size(const char* text) {
    const auto lead = static_cast<unsigned char>(text[0]);
    std::size_t size = lead != 0 ? 1 : 0;
    if (lead >= 0xC2 && ::GetACP() == CP_UTF8) {
        size = lead < 0xE0 ? 2 : lead < 0xF0 ? 3 : lead < 0xF5 ? 4 : 1;
    } else if (lead >= 0x80 && ::GetACP() != CP_UTF8 && ::IsDBCSLeadByte(lead) != FALSE) {
        return text[1] != 0 ? 2 : 0;
    }
    for (std::size_t i = 1; i < size; ++i) {
        if (text[i] == 0) {
            return 0;
        }
        if ((static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80U) {
            return 1;
        }
    }
    return size;
}

/** What one key or message has typed. */
void Typed_Take(Rename_Dialog& rename) {
    const char* const text = rename.entry.Update();
    if (text == nullptr) {
        return;
    }
    const bool whole = Dialog_Text_Take(text, *rename.buffer);
    rename.entry.Read("%s", *rename.buffer);
    if (!whole) {
        rename.entry.Draw();  // what does not fit is not shown either
    }
}

/** Types one character of UTF-16 as the entry takes it: by the bytes of the code page, or in UTF-8 by its number.
 *  Numbers that mean a key without a character, and those beyond 16 bits, cannot be typed. */
void Character_Type(Texts& entry, wchar_t unit) {
    constexpr wchar_t first_printable = 32;
    constexpr wchar_t keys_from = KEY_SPECIAL;
    constexpr wchar_t keys_to = KEY_SPECIAL + 0xFF;
    if (unit < first_printable || (unit >= HIGH_SURROGATE_START && unit <= LOW_SURROGATE_END) ||
        (unit >= keys_from && unit <= keys_to)) {
        return;
    }
    const UINT page = ::GetACP();
    if (page == CP_UTF8) {
        entry.Input(unit);
        return;
    }
    char bytes[4] = {};
    BOOL replaced = FALSE;
    const auto letter = static_cast<WCHAR>(unit);
    const int nb = ::WideCharToMultiByte(page, 0, &letter, 1, bytes, sizeof bytes, nullptr, &replaced);
    for (int i = 0; i < nb && replaced == FALSE; ++i) {
        entry.Input(static_cast<unsigned char>(bytes[i]));
    }
}

/** Ends of the entry that the dialog does not know: there Enter and Escape do nothing, whatever key makes them. An
 * entry that is given them is finished, and emptied by the second. */
bool Is_Ending(int code) {
    return code == KEY_ENTER || code == KEY_TAB || code == KEY_ESCAPE;
}

/** Types the characters that the system has made of the key that is being handled. They wait behind it in the queue, in
 *  UTF-16 whatever the window's own messages can carry. Asking for the key's character anew would lose the accent that
 *  the system keeps from one key to the next, and letters that are no single byte.
 *  @return false when it made none */
bool Waiting_Characters_Type(Rename_Dialog& rename) {
    constexpr wchar_t control_backspace = 0x7F;
    bool any = false;
    for (MSG waiting; ::PeekMessageW(&waiting, rename.window, WM_CHAR, WM_DEADCHAR, PM_REMOVE | PM_NOYIELD) != FALSE;) {
        if (waiting.message == WM_QUIT) {  // comes whatever is asked for, and is the message loop's
            ::PostQuitMessage(static_cast<int>(waiting.wParam));
            break;
        }
        any = true;
        const auto unit = static_cast<wchar_t>(waiting.wParam);
        if (waiting.message != WM_CHAR) {
            continue;  // an accent: the system puts it on the next letter
        }
        if (Is_Ending(unit)) {
            continue;
        }
        if (unit < L' ' || unit == control_backspace) {
            rename.entry.Input(unit == control_backspace ? KEY_BACKSPACE : unit);
        } else {
            Character_Type(rename.entry, unit);
        }
    }
    return any;
}

void Key(Rename_Dialog& rename, UINT message, WPARAM wparam, LPARAM lparam) {
    if (rename.entry.Select(1, 0, 0) == 0) {
        return;
    }
    if (!Waiting_Characters_Type(rename)) {
        const int key = Parse_Dialog(rename.window, message, wparam, lparam);
        if (key == 0 || Is_Ending(key & CHARACTER_MASK)) {
            return;
        }
        rename.entry.Input(key);
    }
    Typed_Take(rename);
}

/** Takes what an input method has composed: as UTF-16, whatever the window's own messages can carry. */
void Composed(Rename_Dialog& rename) {
    if (rename.entry.Select(1, 0, 0) == 0) {
        return;
    }
    const HIMC context = ::ImmGetContext(rename.window);
    if (context == nullptr) {
        return;
    }
    wchar_t text[DIALOG_RENAME_SIZE];
    const LONG size = ::ImmGetCompositionStringW(context, GCS_RESULTSTR, text, sizeof text);
    ::ImmReleaseContext(rename.window, context);
    for (LONG i = 0; i < size / static_cast<LONG>(sizeof text[0]); ++i) {
        Character_Type(rename.entry, text[i]);
    }
    Typed_Take(rename);
}

void Pointer_Take(HWND window, LPARAM lparam) {
    POINT point = {GET_X_LPARAM(lparam), GET_Y_LPARAM(lparam)};
    ::ClientToScreen(window, &point);
    YCursor_X = point.x;
    YCursor_Y = point.y;
}

int Button_Code(bool is_press) {
    return (is_press ? MOUSE_PRESS : 0) | (getbutton(1) != 0 ? MOUSE_LEFT : 0) |
           (getbutton(4) != 0 ? MOUSE_MIDDLE : 0) | (getbutton(2) != 0 ? MOUSE_RIGHT : 0);
}

/** A press shows the button pressed, a release over it ends the dialog: with or without a press on it before. */
bool Button_Takes(Rename_Dialog& rename, Buttons& button, int code, int result) {
    if (button.Select(MOUSE_ASK) == 0) {
        return false;
    }
    if ((code & MOUSE_PRESS) != 0) {
        button.Select(code);
    } else {
        button.Deselect();
        ::EndDialog(rename.window, result);
    }
    return true;
}

bool Click(Rename_Dialog& rename, bool is_press) {
    const int code = Button_Code(is_press);
    if (Button_Takes(rename, rename.save, code, RESULT_SAVE) ||
        Button_Takes(rename, rename.cancel, code, RESULT_CANCEL)) {
        return true;
    }
    rename.save.Deselect();
    rename.cancel.Deselect();
    if (is_press) {
        rename.entry.Select(code, 0, 0);
    }
    return false;
}

void Wheel(int delta) {
    if (wheel.Add(delta) == 0) {  // whole notches are dropped: nothing scrolls
        return;
    }
    Error_Fct(hwnd, TRACE_LEVEL, "tool_db_dialog_rename::Dialog_Proc(WM_MOUSEWHEEL)");
}

INT_PTR CALLBACK Dialog_Proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (dialog == nullptr || (message != WM_INITDIALOG && dialog->window != window)) {
        return 0;
    }
    Rename_Dialog& rename = *dialog;
    switch (message) {
        case WM_INITDIALOG:
            rename.window = window;
            Lay_Out_Client(rename);
            ::SetWindowPos(window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
            return 1;
        case WM_SIZE:
            Lay_Out(rename, LOWORD(lparam), HIWORD(lparam));
            ::InvalidateRect(window, nullptr, FALSE);
            return 1;
        case WM_PAINT: {
            const Paint_DC validating(window);
            Paint(rename);
            return 1;
        }
        case WM_KEYDOWN:
            Key(rename, message, wparam, lparam);
            return 1;
        case WM_IME_COMPOSITION:
            if ((lparam & GCS_RESULTSTR) != 0) {
                Composed(rename);
            }
            return 0;  // the system goes on: what characters it makes of the text are not handled here
        case WM_MOUSEMOVE:
            Error_Fct(hwnd, TRACE_LEVEL, "tool_db_dialog_rename::Dialog_Proc(WM_MOUSEMOVE)");
            Pointer_Take(window, lparam);
            rename.entry.Deselect();
            rename.prompt.Deselect();
            rename.save.Deselect();
            rename.cancel.Deselect();
            return 1;
        case WM_LBUTTONDOWN:
        case WM_LBUTTONUP:
            Error_Fct(hwnd, TRACE_LEVEL, "tool_db_dialog_rename::Dialog_Proc(WM_LBUTTONx)");
            Pointer_Take(window, lparam);
            return Click(rename, message == WM_LBUTTONDOWN) ? 1 : 0;
        case WM_MOUSEWHEEL:
            Wheel(GET_WHEEL_DELTA_WPARAM(wparam));
            return 1;
        case WM_CLOSE:
            // A modal dialog that is destroyed without being ended leaves its owner disabled.
            if (rename.owner != nullptr) {
                ::EnableWindow(rename.owner, TRUE);
            }
            ::DestroyWindow(window);
            return 1;
        case WM_DESTROY:
            rename.window = nullptr;
            return 1;
        default:
            return 0;
    }
}

/** The instance of the owner's program; without an owner, the module that this code is in. */
HINSTANCE Instance_Of(HWND owner) {
    if (owner != nullptr) {
        return reinterpret_cast<HINSTANCE>(::GetWindowLongPtrA(owner, GWLP_HINSTANCE));
    }
    HMODULE module = nullptr;
    ::GetModuleHandleExA(GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
                         reinterpret_cast<const char*>(&Dialog_Proc), &module);
    return module;
}

/** A dialog template in a block of its own: the header, no menu, the default class, the title. */
class Dialog_Template {
  public:
    Dialog_Template() : block(::GlobalAlloc(GPTR, TEMPLATE_SIZE)) {
        auto* const header = block != nullptr ? static_cast<DLGTEMPLATE*>(::GlobalLock(block)) : nullptr;
        if (header == nullptr) {
            return;
        }
        const LONG units = ::GetDialogBaseUnits();
        header->style = TEMPLATE_STYLE;
        header->x = TEMPLATE_PLACE;
        header->y = TEMPLATE_PLACE;
        header->cx = static_cast<short>(TEMPLATE_WIDTH / LOWORD(units));
        header->cy = static_cast<short>(TEMPLATE_HEIGHT / HIWORD(units));
        // Behind the header: menu and class, one zero each, then the title.
        auto* const title = reinterpret_cast<WCHAR*>(header + 1) + 2;
        ::MultiByteToWideChar(CP_ACP, 0, TITLE, -1, title, TITLE_MAX);
        data = header;
    }
    ~Dialog_Template() {
        if (data != nullptr) {
            ::GlobalUnlock(block);
        }
        if (block != nullptr) {
            ::GlobalFree(block);
        }
    }
    Dialog_Template(const Dialog_Template&) = delete;
    Dialog_Template& operator=(const Dialog_Template&) = delete;
    const DLGTEMPLATE* Get() const { return data; }

  private:
    HGLOBAL block;
    const DLGTEMPLATE* data = nullptr;
};

}  // namespace

bool Dialog_Text_Take(const char* text, char (&buffer)[DIALOG_RENAME_SIZE]) {
    const char* end = text != nullptr ? text : "";
    text = end;
    for (std::size_t size = Character_Size(end); size != 0; size = Character_Size(end)) {
        if (static_cast<std::size_t>(end - text) + size >= sizeof buffer) {
            break;
        }
        end += size;
    }
    const auto length = static_cast<std::size_t>(end - text);
    const bool whole = *end == 0;
    std::memmove(buffer, text, length);
    buffer[length] = 0;
    return whole;
}

int Dialog_Rename(char* buffer) {
    if (buffer == nullptr || dialog != nullptr) {
        return RESULT_FAILED;
    }
    const Dialog_Template dialog_template;
    if (dialog_template.Get() == nullptr) {
        return RESULT_FAILED;
    }
    Rename_Dialog rename;
    rename.buffer = reinterpret_cast<char(*)[DIALOG_RENAME_SIZE]>(buffer);
    rename.owner = ::GetActiveWindow();
    dialog = &rename;
    const INT_PTR result =
        ::DialogBoxIndirectParamA(Instance_Of(rename.owner), dialog_template.Get(), rename.owner, Dialog_Proc, 0);
    dialog = nullptr;
    return static_cast<int>(result);
}
