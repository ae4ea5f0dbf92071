// Letters of every kind in the rename dialog: what is typed, what an input method composes, what fits.
#include <windows.h>

#include <imm.h>

#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "tests/database/dialog_scene.h"
#include "tests/support/import_hook.h"

namespace {

/** The system's answers about its code page, for as long as it lives. */
class Code_Page {
  public:
    /** @param lead_bytes_from bytes from here on begin a character of two; 256: none do */
    explicit Code_Page(UINT number, unsigned int lead_bytes_from = 256)
        : page("", "KERNEL32.dll", "GetACP", reinterpret_cast<void*>(&Page)),
          lead("", "KERNEL32.dll", "IsDBCSLeadByte", reinterpret_cast<void*>(&Lead)) {
        EXPECT_TRUE(page.Is_Set() && lead.Is_Set());
        now = number;
        from = lead_bytes_from;
    }

  private:
    static UINT WINAPI Page() { return now; }
    static BOOL WINAPI Lead(BYTE byte) { return byte >= from ? TRUE : FALSE; }
    static inline UINT now = 0;
    static inline unsigned int from = 256;
    Import_Hook page;
    Import_Hook lead;
};

std::string Taken(const std::string& text, bool* whole = nullptr) {
    char buffer[DIALOG_RENAME_SIZE];
    const bool all = Dialog_Text_Take(text.c_str(), buffer);
    if (whole != nullptr) {
        *whole = all;
    }
    return buffer;
}

TEST(Dialog_Text, takes_as_many_whole_characters_as_fit) {
    bool whole = false;
    for (const UINT page : {1252U, 932U, static_cast<UINT>(CP_UTF8)}) {
        const Code_Page code_page(page, page == 932 ? 0x81 : 256);
        EXPECT_EQ(Taken("", &whole), "");
        EXPECT_TRUE(whole);
        EXPECT_EQ(Taken(std::string(255, 'x'), &whole), std::string(255, 'x'));
        EXPECT_TRUE(whole);
        EXPECT_EQ(Taken(std::string(256, 'x'), &whole), std::string(255, 'x'));
        EXPECT_FALSE(whole);
        char buffer[DIALOG_RENAME_SIZE] = "before";
        EXPECT_TRUE(Dialog_Text_Take(nullptr, buffer));
        EXPECT_STREQ(buffer, "");
    }
    {
        const Code_Page code_page(1252);
        EXPECT_EQ(Taken(std::string(400, '\x80')), std::string(255, '\x80'));
        EXPECT_EQ(Taken(std::string(254, 'x') + "\xC3\xA9"), std::string(254, 'x') + "\xC3");
    }
    {
        const Code_Page code_page(932, 0x81);
        EXPECT_EQ(Taken(std::string(254, 'x') + "\x83\x5Ctail"), std::string(254, 'x'));
        EXPECT_EQ(Taken(std::string(253, 'x') + "\x83\x5Ctail"), std::string(253, 'x') + "\x83\x5C");
        EXPECT_EQ(Taken("a\x83", &whole), "a") << "the end cuts it off";
        EXPECT_FALSE(whole);
    }
    {
        const Code_Page code_page(CP_UTF8);
        EXPECT_EQ(Taken(std::string(254, 'x') + "\xC3\xA9"), std::string(254, 'x'));
        EXPECT_EQ(Taken(std::string(253, 'x') + "\xE4\xBD\xA0"), std::string(253, 'x'));
        EXPECT_EQ(Taken(std::string(252, 'x') + "\xE4\xBD\xA0tail"), std::string(252, 'x') + "\xE4\xBD\xA0");
        EXPECT_EQ(Taken(std::string(400, '\x80')), std::string(255, '\x80')) << "bytes that begin nothing stand alone";
    }
}

/** What the system's input method has composed. */
class Input_Method {
  public:
    explicit Input_Method(const std::wstring& text)
        : get("", "IMM32.dll", "ImmGetContext", reinterpret_cast<void*>(&Get)),
          read("", "IMM32.dll", "ImmGetCompositionStringW", reinterpret_cast<void*>(&Read)),
          release("", "IMM32.dll", "ImmReleaseContext", reinterpret_cast<void*>(&Release)) {
        EXPECT_TRUE(get.Is_Set() && read.Is_Set() && release.Is_Set());
        composed = text;
        held = 0;
    }
    ~Input_Method() { EXPECT_EQ(held, 0) << "contexts are given back"; }
    Input_Method(const Input_Method&) = delete;
    Input_Method& operator=(const Input_Method&) = delete;

  private:
    static HIMC WINAPI Get(HWND) {
        held++;
        return reinterpret_cast<HIMC>(&composed);
    }
    static BOOL WINAPI Release(HWND, HIMC) {
        held--;
        return TRUE;
    }
    static LONG WINAPI Read(HIMC, DWORD part, void* out, DWORD size) {
        if (part != GCS_RESULTSTR) {
            return 0;
        }
        const DWORD bytes = std::min(size, static_cast<DWORD>(composed.size() * sizeof(wchar_t)));
        std::memcpy(out, composed.data(), bytes);
        return static_cast<LONG>(bytes);
    }
    static inline std::wstring composed;
    static inline int held = 0;
    Import_Hook get;
    Import_Hook read;
    Import_Hook release;
};

class Dialog_Text_Entry : public Dialog_Scene {
  protected:
    static std::string Bytes(const std::wstring& text) {
        char bytes[DIALOG_RENAME_SIZE] = {};
        ::WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, bytes, sizeof bytes, nullptr, nullptr);
        return bytes;
    }
    static void Compose(HWND dialog) { ::SendMessageA(dialog, WM_IME_COMPOSITION, 0, GCS_RESULTSTR); }
};

TEST_F(Dialog_Text_Entry, what_an_input_method_composes_arrives_whole) {
    const std::wstring text = L"Gr\u00F6\u00DFe \u00DF \u00FC";
    const Input_Method method(text);
    Put("Old");
    EXPECT_EQ(Run({Show, Compose, Save}), 1);
    EXPECT_EQ(std::string(buffer), Bytes(text)) << "in place of the selected text";
}

TEST_F(Dialog_Text_Entry, letters_that_the_code_page_lacks_are_left_out_and_those_it_has_arrive) {
    const std::wstring text = L"\u0393\u03BA\u03C1\u03AF \u4F60\u597D z";
    const Input_Method method(text);
    EXPECT_EQ(Run({Show, Compose, Save}), 1);
    std::string expected;
    for (const wchar_t letter : text) {
        const std::string bytes = Bytes(std::wstring(1, letter));
        expected += bytes == "?" ? "" : bytes;
    }
    EXPECT_EQ(std::string(buffer), expected);
}

TEST_F(Dialog_Text_Entry, a_composition_that_goes_on_types_nothing) {
    const Input_Method method(L"abc");
    Put("Old");
    EXPECT_EQ(Run({Show, [](HWND dialog) { ::SendMessageA(dialog, WM_IME_COMPOSITION, 0, GCS_COMPSTR); }, Save}), 1);
    EXPECT_STREQ(buffer, "Old");
}

TEST_F(Dialog_Text_Entry, what_stands_for_keys_or_pairs_is_left_out) {
    const Input_Method method(L"a\u0825\xD83D\xDE00\tb");
    EXPECT_EQ(Run({Show, Compose, Save}), 1);
    EXPECT_STREQ(buffer, "ab");
}

/** The key codes that the entry is given, while they go on into it. */
class Entry_Keys {
  public:
    Entry_Keys() : hook("", "Kit_Widgets.dll", "_ZN5Texts5InputEi", reinterpret_cast<void*>(&Input)) {
        EXPECT_TRUE(hook.Is_Set());
        real = reinterpret_cast<decltype(real)>(hook.Original());
        codes.clear();
    }
    static inline std::vector<int> codes;

  private:
    static void Input(Texts* entry, int code) {
        codes.push_back(code);
        real(entry, code);
    }
    static inline void (*real)(Texts*, int) = nullptr;
    Import_Hook hook;
};

/** A key as the dialog's message loop hands it on: what the system made of it waits in the queue, as UTF-16. The key
 *  itself is one that has another letter on the keyboard of the tests. */
void Key_With(HWND dialog, UINT message, wchar_t letter) {
    ::PostMessageW(dialog, message, letter, 1);
    ::SendMessageW(dialog, WM_KEYDOWN, 'Q', 1);
}

/** Makes the dialog a window whose messages carry UTF-16. */
void Make_Wide(HWND dialog) {
    ::SetWindowLongPtrW(dialog, GWLP_WNDPROC, ::GetWindowLongPtrW(dialog, GWLP_WNDPROC));
    EXPECT_TRUE(::IsWindowUnicode(dialog));
}

TEST_F(Dialog_Text_Entry, letters_typed_key_by_key_arrive_whole) {
    const std::wstring text = L"Gr\u00F6\u00DFe \u00DF \u00FC";
    for (const bool wide : {false, true}) {
        Put("Old");
        EXPECT_EQ(Run({Show,
                       [&](HWND dialog) {
                           if (wide) {
                               Make_Wide(dialog);
                           } else {
                               EXPECT_FALSE(::IsWindowUnicode(dialog));
                           }
                           for (const wchar_t letter : text) {
                               Key_With(dialog, WM_CHAR, letter);
                           }
                       },
                       Save}),
                  1);
        EXPECT_EQ(std::string(buffer), Bytes(text)) << "each once, in place of the selected text";
    }
}

TEST_F(Dialog_Text_Entry, the_entry_gets_bytes_of_the_code_page_and_in_utf_8_numbers) {
    struct Case {
        UINT page;
        std::vector<int> codes;
    };
    const Case cases[] = {{1252, {'G', 'r', 0xF6, 0xDF, 'e', 0x80}}, {CP_UTF8, {'G', 'r', 0xF6, 0xDF, 'e', 0x20AC}}};
    for (const Case& one : cases) {
        for (const bool wide : {false, true}) {
            const Code_Page page(one.page);
            const Entry_Keys keys;
            Run({Show,
                 [&](HWND dialog) {
                     if (wide) {
                         Make_Wide(dialog);
                     }
                     for (const wchar_t letter : L"Gr\u00F6\u00DFe\u20AC") {
                         if (letter != 0) {
                             Key_With(dialog, WM_CHAR, letter);
                         }
                     }
                 },
                 Save});
            EXPECT_EQ(Entry_Keys::codes, one.codes) << one.page << ", wide " << wide;
        }
    }
}

TEST_F(Dialog_Text_Entry, an_accent_waits_for_its_letter) {
    EXPECT_EQ(Run({Show,
                   [](HWND dialog) {
                       Key_With(dialog, WM_DEADCHAR, L'\u00B4');
                       Key_With(dialog, WM_CHAR, L'\u00E9');
                   },
                   Save}),
              1);
    EXPECT_EQ(std::string(buffer), Bytes(L"\u00E9"));
}

TEST_F(Dialog_Text_Entry, keys_that_edit_come_as_characters_too) {
    Put("Old");
    EXPECT_EQ(Run({Show,
                   [](HWND dialog) {
                       ::SendMessageW(dialog, WM_KEYDOWN, VK_END, 1);
                       Key_With(dialog, WM_CHAR, KEY_BACKSPACE);
                       Key_With(dialog, WM_CHAR, 0x7F);  // with Ctrl
                   },
                   Save}),
              1);
    EXPECT_STREQ(buffer, "O");
}

TEST_F(Dialog_Text_Entry, the_end_of_the_program_is_left_to_the_message_loop) {
    MSG quit = {};
    EXPECT_EQ(Run({Show,
                   [&](HWND dialog) {
                       ::PostQuitMessage(7);
                       ::SendMessageW(dialog, WM_KEYDOWN, VK_END, 1);
                       EXPECT_TRUE(::PeekMessageW(&quit, nullptr, WM_QUIT, WM_QUIT, PM_REMOVE));
                   },
                   Save}),
              1);
    EXPECT_EQ(quit.message, static_cast<UINT>(WM_QUIT));
    EXPECT_EQ(quit.wParam, 7U);
}

TEST_F(Dialog_Text_Entry, keys_come_through_the_dialogs_own_loop) {
    Put("Old");
    EXPECT_EQ(Run({Show, [](HWND dialog) { ::PostMessageW(dialog, WM_KEYDOWN, VK_HOME, 1); },
                   [](HWND dialog) { ::PostMessageW(dialog, WM_KEYDOWN, 'X', 1); }, [](HWND) {}, Save}),
              1);
    EXPECT_STREQ(buffer, "xOld");
}

}  // namespace
