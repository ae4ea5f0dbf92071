// Keys, mouse buttons, clipboard and cursor of Windows.
#include "base/gdi_handles.h"

#include <cstring>

#include "kits/common/text_conversion.h"
#include "kits/widgets/device.h"
#include "kits/widgets/surface.h"

bool System_Button_Held(int button) {
    return (::GetAsyncKeyState(button) & 0x8000) != 0;
}
bool System_Key_Held(int virtual_key) {
    return (::GetKeyState(virtual_key) & 0x8000) != 0;
}

namespace {

/** The clipboard while it is open. */
class Open_Clipboard {
  public:
    Open_Clipboard() : open(::OpenClipboard(nullptr) != 0) {}
    ~Open_Clipboard() {
        if (open) {
            ::CloseClipboard();
        }
    }
    Open_Clipboard(const Open_Clipboard&) = delete;
    Open_Clipboard& operator=(const Open_Clipboard&) = delete;
    explicit operator bool() const { return open; }

  private:
    bool open = false;
};

/** Movable memory of the system, for the clipboard. */
class Global_Memory {
  public:
    explicit Global_Memory(SIZE_T size) : handle(::GlobalAlloc(GMEM_MOVEABLE, size)) {}
    ~Global_Memory() {
        if (handle != nullptr) {
            ::GlobalFree(handle);
        }
    }
    Global_Memory(const Global_Memory&) = delete;
    Global_Memory& operator=(const Global_Memory&) = delete;
    HGLOBAL Get() const { return handle; }
    /** Null without memory. */
    void* Lock() const { return handle != nullptr ? ::GlobalLock(handle) : nullptr; }
    void Unlock() const { ::GlobalUnlock(handle); }
    void Give_Away() { handle = nullptr; }

  private:
    HGLOBAL handle = nullptr;
};

HCURSOR cursor_before = nullptr;

}  // namespace

int System_Clipboard_Get(char* out, int size) {
    if (out == nullptr || size <= 0) {
        return 0;
    }
    out[0] = 0;
    const Open_Clipboard clipboard;
    const HGLOBAL handle = clipboard ? ::GetClipboardData(CF_UNICODETEXT) : nullptr;
    const auto* text = handle != nullptr ? static_cast<const wchar_t*>(::GlobalLock(handle)) : nullptr;
    if (text == nullptr) {
        return 0;
    }
    int length = 0;
    while (const int units = Wide_Character_Units(text)) {  // one by one, so that the cut never splits a character
        char bytes[BYTES_PER_CHARACTER];
        const int nb = Bytes_Of_Wide_Character(text, units, bytes);
        if (length + nb >= size) {
            break;
        }
        std::memcpy(out + length, bytes, static_cast<std::size_t>(nb));
        length += nb;
        text += units;
    }
    out[length] = 0;
    ::GlobalUnlock(handle);
    return length;
}

int System_Clipboard_Set(const char* text) {
    const int length = text != nullptr ? ::MultiByteToWideChar(Code_Page(), 0, text, -1, nullptr, 0) : 0;
    if (length <= 0) {
        return 0;
    }
    Global_Memory memory(static_cast<SIZE_T>(length) * sizeof(wchar_t));
    if (auto* wide = static_cast<wchar_t*>(memory.Lock())) {
        ::MultiByteToWideChar(Code_Page(), 0, text, -1, wide, length);
        memory.Unlock();
        const Open_Clipboard clipboard;
        if (clipboard && ::EmptyClipboard() != 0 && ::SetClipboardData(CF_UNICODETEXT, memory.Get()) != nullptr) {
            memory.Give_Away();  // the system owns it now
            return 1;
        }
    }
    return 0;
}

bool System_Window_Is_Wide(HWND window) {
    return window != nullptr && ::IsWindowUnicode(window) != FALSE;
}

void System_Wait_Cursor(HWND, bool shown) {
    // LoadCursorA takes the number of a system cursor in place of a name.
    if (shown) {
        cursor_before = ::SetCursor(::LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_WAIT)));
    } else {
        ::SetCursor(cursor_before != nullptr ? cursor_before
                                             : ::LoadCursorA(nullptr, reinterpret_cast<LPCSTR>(IDC_ARROW)));
    }
}

int System_Key_Character(int virtual_key, std::intptr_t lparam) {
    BYTE keys[256] = {};
    WCHAR characters[4] = {};
    const auto scan_code = static_cast<UINT>((static_cast<std::uintptr_t>(lparam) >> 16U) & 0xFFU);
    if (::GetKeyboardState(keys) == 0) {
        return 0;
    }
    const int nb = ::ToUnicode(static_cast<UINT>(virtual_key), scan_code, keys, characters, 4, 0);
    return nb == 1 ? characters[0] : 0;
}
