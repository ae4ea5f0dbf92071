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

TEST_F(Dialog_Text_Entry, a_font_scale_of_0_stays_the_library_s_own) {
    Scalar("$INTERFACE_TOOL_FONT_SCALE", VARIABLE_SIGNED_16, 0);
    EXPECT_EQ(Run({Show, Save}), 1);
}

}  // namespace
