// The inside of the rename dialog: where every element stands, how it looks, what a message draws and answers.
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "tests/database/dialog_scene.h"
#include "tests/database/widget_calls.h"
#include "tests/support/import_hook.h"

namespace {

constexpr short OWN_SPACE = 11;  // of the library; another number than each of the host's
constexpr const char* PROMPT = "\x02 Enter the new name for this instance.";

/** The function that opens a dialog: its template and procedure are looked at. */
struct Dialog_Opening {
    Dialog_Opening() : hook("", "user32.dll", "DialogBoxIndirectParamA", reinterpret_cast<void*>(&Open)) {
        EXPECT_TRUE(hook.Is_Set());
        now = this;
    }
    ~Dialog_Opening() { now = nullptr; }
    Dialog_Opening(const Dialog_Opening&) = delete;
    Dialog_Opening& operator=(const Dialog_Opening&) = delete;

    /** What the dialog's procedure returned to each message of this kind, in order. */
    std::vector<INT_PTR> Answers(UINT message) const {
        const auto found = answers.find(message);
        return found != answers.end() ? found->second : std::vector<INT_PTR>{};
    }

    std::vector<unsigned char> block;  ///< the template's bytes
    HINSTANCE instance = nullptr;
    HWND owner = nullptr;
    std::map<UINT, std::vector<INT_PTR>> answers;
    int result_forced = 0;       ///< what the opening gives instead of a dialog
    std::size_t init_begin = 0;  ///< numbers of the widget calls while the dialog is made
    std::size_t init_end = 0;
    RECT rect_before = {};
    RECT rect_after = {};
    const Widget_Calls* calls = nullptr;

  private:
    static INT_PTR CALLBACK Proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
        const bool starts = message == WM_INITDIALOG && now->calls != nullptr;
        if (starts) {
            now->init_begin = now->calls->calls.size();
            ::GetWindowRect(window, &now->rect_before);
        }
        const INT_PTR result = real_proc(window, message, wparam, lparam);
        if (starts) {
            now->init_end = now->calls->calls.size();
            ::GetWindowRect(window, &now->rect_after);
        }
        now->answers[message].push_back(result);
        return result;
    }
    static INT_PTR WINAPI Open(HINSTANCE instance, LPCDLGTEMPLATEA dialog_template, HWND owner, DLGPROC proc,
                               LPARAM parameter) {
        const auto* const bytes = reinterpret_cast<const unsigned char*>(dialog_template);
        now->block.assign(bytes, bytes + 48);
        now->instance = instance;
        now->owner = owner;
        if (now->result_forced != 0) {
            return now->result_forced;
        }
        real_proc = proc;
        return reinterpret_cast<decltype(&Open)>(now->hook.Original())(instance, dialog_template, owner, Proc,
                                                                       parameter);
    }

    static inline Dialog_Opening* now = nullptr;
    static inline DLGPROC real_proc = nullptr;
    Import_Hook hook;
};

struct Placed {
    int x;
    int y;
    int width;
    int height;
    friend bool operator==(const Placed&, const Placed&) = default;
};
std::ostream& operator<<(std::ostream& out, const Placed& place) {
    return out << "(" << place.x << ", " << place.y << ") " << place.width << " x " << place.height;
}
Placed Place_Of(const Widget_Call& call) {
    return {call.state.x, call.state.y, call.state.width, call.state.height};
}

/** A size of the inside and where the five elements stand. */
struct Layout {
    int width;
    int height;
    Placed box;
    Placed save;
    Placed cancel;
    Placed entry;
    Placed prompt;
};

int held_buttons = 0;  // bit: number of the button
int Held(int button) {
    return (held_buttons >> button) & 1;
}

class Dialog_Layout_Test : public Dialog_Scene {
  protected:
    Dialog_Layout_Test() { SPACE = OWN_SPACE; }
    ~Dialog_Layout_Test() override {
        SPACE = space_before;
        Input_Source_Set({});
        held_buttons = 0;
        for (const char* name : text_variables) {
            Variable_Undefine(name);
        }
    }
    void Text(const char* name, const char* text) {
        text_variables.push_back(name);
        Variable_Define_Text(name, text);
    }
    /** The Init calls of a layout: box, Save, Cancel, entry and prompt. */
    static std::vector<Widget_Call> Inits(const std::vector<Widget_Call>& calls) {
        std::vector<Widget_Call> inits;
        for (const Widget_Call& call : calls) {
            if (call.operation.ends_with("::Init")) {
                inits.push_back(call);
            }
        }
        return inits;
    }
    static void Expect_Layout(const std::vector<Widget_Call>& calls, const Layout& expected) {
        const std::vector<Widget_Call> inits = Inits(calls);
        ASSERT_EQ(inits.size(), 5U);
        const std::pair<const char*, Placed> elements[] = {{"Boxs::Init", expected.box},
                                                           {"Buttons::Init", expected.save},
                                                           {"Buttons::Init", expected.cancel},
                                                           {"Texts::Init", expected.entry},
                                                           {"Texts::Init", expected.prompt}};
        for (std::size_t i = 0; i < inits.size(); ++i) {
            EXPECT_EQ(inits[i].operation, elements[i].first);
            EXPECT_EQ(Place_Of(inits[i]), elements[i].second)
                << "element " << i << " of " << expected.width << " x " << expected.height;
        }
        EXPECT_STREQ(inits[1].state.name, "Save");
        EXPECT_STREQ(inits[2].state.name, "Cancel");
    }
    /** Lays the dialog out for a size and compares all five places. */
    static void Size_To(HWND dialog, Widget_Calls& calls, const Layout& expected) {
        calls.calls.clear();
        ::SendMessageA(dialog, WM_SIZE, SIZE_RESTORED, MAKELPARAM(expected.width, expected.height));
        Expect_Layout(calls.calls, expected);
    }

  private:
    const short space_before = SPACE;
    std::vector<const char*> text_variables;
};

// ---------------- places

TEST_F(Dialog_Layout_Test, every_element_stands_in_its_place_at_every_size) {
    const Layout layouts[] = {
        {480, 150, {0, 0, 479, 149}, {6, 6, 230, 24}, {253, 6, 230, 24}, {6, 36, 467, 24}, {6, 66, 467, 77}},
        {301, 240, {0, 0, 300, 239}, {6, 6, 141, 24}, {164, 6, 141, 24}, {6, 36, 288, 24}, {6, 66, 288, 167}},
        {700, 97, {0, 0, 699, 96}, {6, 6, 340, 24}, {363, 6, 340, 24}, {6, 36, 687, 24}, {6, 66, 687, 24}},
        {120, 60, {0, 0, 119, 59}, {6, 6, 50, 24}, {73, 6, 50, 24}, {6, 36, 107, 24}, {6, 66, 107, -13}},
    };
    Widget_Calls calls;
    Run({[&](HWND dialog) {
             for (const Layout& layout : layouts) {
                 Size_To(dialog, calls, layout);
             }
             const Size_Of_Client client = Client(dialog);
             ::SendMessageA(dialog, WM_SIZE, SIZE_RESTORED, MAKELPARAM(client.width, client.height));
         },
         Save});
}

TEST_F(Dialog_Layout_Test, the_places_follow_the_hosts_dimensions) {
    Scalar("$INTERFACE_SPACE_DIM", VARIABLE_SIGNED_16, 9);
    Scalar("$INTERFACE_BUTTON_DIM_BIG", VARIABLE_SIGNED_16, 31);
    Scalar("$INTERFACE_BORDER_DIM", VARIABLE_SIGNED_16, 3);
    Widget_Calls calls;
    EXPECT_EQ(
        Run({[&](HWND dialog) {
            Size_To(
                dialog, calls,
                {480, 150, {0, 0, 479, 149}, {9, 9, 226, 31}, {255, 9, 226, 31}, {9, 49, 461, 31}, {9, 89, 461, 51}});
            for (const Widget_Call& init : Inits(calls.calls)) {
                EXPECT_EQ(init.state.border, 3) << init.operation;
            }
            ::SendMessageA(dialog, WM_CLOSE, 0, 0);
        }}),
        0);
}

TEST_F(Dialog_Layout_Test, a_new_window_is_laid_out_for_its_inside_before_it_is_shown) {
    Dialog_Opening opening;
    Widget_Calls calls;
    opening.calls = &calls;
    Run({[&](HWND dialog) {
             const auto [width, height] = Client(dialog);
             const std::vector<Widget_Call> made(calls.calls.begin() + static_cast<std::ptrdiff_t>(opening.init_begin),
                                                 calls.calls.begin() + static_cast<std::ptrdiff_t>(opening.init_end));
             const int inner = width - 13;
             const int half = (inner - 6) / 2;
             Expect_Layout(made, {width,
                                  height,
                                  {0, 0, width - 1, height - 1},
                                  {6, 6, half, 24},
                                  {12 + half + OWN_SPACE, 6, half, 24},
                                  {6, 36, inner, 24},
                                  {6, 66, inner, height - 73}});
             EXPECT_TRUE(::EqualRect(&opening.rect_before, &opening.rect_after)) << "topmost without moving or sizing";
             EXPECT_NE(::GetWindowLongA(dialog, GWL_EXSTYLE) & WS_EX_TOPMOST, 0);
         },
         Save});
}

TEST_F(Dialog_Layout_Test, a_new_size_is_shown_at_once) {
    Widget_Calls calls;
    Run({Show,
         [&](HWND dialog) {
             ::ValidateRect(dialog, nullptr);
             const Size_Of_Client client = Client(dialog);
             ::SendMessageA(dialog, WM_SIZE, SIZE_RESTORED, MAKELPARAM(client.width, client.height));
             EXPECT_TRUE(::GetUpdateRect(dialog, nullptr, FALSE));
         },
         Save});
}

// ---------------- looks

TEST_F(Dialog_Layout_Test, every_element_has_its_look) {
    Text("$INTERFACE_TITLE_FONT_NAME", "Title Face");
    Text("$INTERFACE_TITLE_FONT_WEIGHT", "bold");
    Text("$INTERFACE_TOOL_FONT_NAME", "Tool Face");
    Text("$INTERFACE_TOOL_FONT_WEIGHT", "");
    Scalar("$INTERFACE_TITLE_FONT_SCALE", VARIABLE_SIGNED_16, 21);
    Scalar("$INTERFACE_TOOL_FONT_SCALE", VARIABLE_SIGNED_16, 15);
    Widget_Calls calls;
    std::vector<Tools> looks;
    Run({[&](HWND dialog) {
             for (const Widget_Call& init : Inits(calls.calls)) {
                 looks.push_back(init.state);
             }
             Show(dialog);
         },
         Save});
    ASSERT_GE(looks.size(), 5U);
    const unsigned int styles[] = {STYLE_FRAMED_BOX, STYLE_BUTTON, STYLE_BUTTON, STYLE_EDIT_LIVE, 0};
    const int scales[] = {21, 16, 16, 15, 15};
    for (std::size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(looks[i].style, styles[i]) << i;
        EXPECT_EQ(looks[i].font_scale, scales[i]) << i;
        EXPECT_EQ(looks[i].border, BORDER_DIM) << i;
        EXPECT_STREQ(looks[i].font_name, i == 0 ? "Title Face" : "Tool Face") << i;
        EXPECT_STREQ(looks[i].font_weight, i == 0 ? "bold" : "") << i;
    }
    EXPECT_EQ(looks[2].color.get(), static_cast<unsigned long>(RGB(200, 200, 100))) << "Cancel";
    EXPECT_NE(looks[1].color.get(), looks[2].color.get()) << "Save";
}

TEST_F(Dialog_Layout_Test, a_font_scale_of_0_stays_the_library_s_own) {
    Scalar("$INTERFACE_TITLE_FONT_SCALE", VARIABLE_SIGNED_16, 0);
    for (const int scale : {0, 1}) {
        Scalar("$INTERFACE_TOOL_FONT_SCALE", VARIABLE_SIGNED_16, scale);
        Widget_Calls calls;
        std::vector<int> scales;
        Run({[&](HWND) {
                 for (const Widget_Call& init : Inits(calls.calls)) {
                     scales.push_back(init.state.font_scale);
                 }
             },
             Save});
        scales.resize(5, -1);
        EXPECT_EQ(scales, scale == 0 ? (std::vector{0, 0, 0, 0, 0}) : (std::vector{0, 2, 2, 1, 1}));
    }
}

TEST_F(Dialog_Layout_Test, painting_clears_the_texts_before_it_writes_them) {
    Put("Old");
    Widget_Calls calls;
    Run({Show,
         [&](HWND dialog) {
             const std::vector<Widget_Call> inits = Inits(calls.calls);
             ASSERT_GE(inits.size(), 5U);
             calls.calls.clear();
             ::InvalidateRect(dialog, nullptr, FALSE);
             ::UpdateWindow(dialog);
             const std::pair<const char*, const Tools*> drawn[] = {
                 {"Boxs::Draw", inits[0].widget},     {"Texts::Draw", inits[4].widget},
                 {"Texts::Cleanup", inits[4].widget}, {"Texts::Write", inits[4].widget},
                 {"Texts::Cleanup", inits[3].widget}, {"Texts::Read", inits[3].widget},
                 {"Texts::Draw", inits[3].widget},    {"Buttons::Draw", inits[1].widget},
                 {"Buttons::Draw", inits[2].widget}};
             ASSERT_EQ(calls.calls.size(), std::size(drawn));
             for (std::size_t i = 0; i < std::size(drawn); ++i) {
                 EXPECT_EQ(calls.calls[i].operation, drawn[i].first) << i;
                 EXPECT_EQ(calls.calls[i].widget, drawn[i].second) << i;
             }
             EXPECT_EQ(calls.Of("Texts::Write").at(0).text, PROMPT);
             EXPECT_EQ(calls.Of("Texts::Read").at(0).text, "Old");
         },
         Save});
}

// ---------------- opening

TEST_F(Dialog_Layout_Test, the_template_is_one_header_without_controls) {
    Dialog_Opening opening;
    opening.result_forced = -1;
    EXPECT_EQ(Dialog_Rename(buffer), -1);
    ASSERT_FALSE(opening.block.empty());
    const auto word = [&](std::size_t at) { return opening.block[at] | opening.block[at + 1] << 8; };
    const LONG units = ::GetDialogBaseUnits();
    EXPECT_EQ(static_cast<unsigned int>(word(0)) | static_cast<unsigned int>(word(2)) << 16, 0x80C80080U);
    EXPECT_EQ(word(4) | word(6), 0) << "extended style";
    EXPECT_EQ(word(8), 0) << "controls";
    EXPECT_EQ(word(10), 10);
    EXPECT_EQ(word(12), 10);
    EXPECT_EQ(word(14), 1920 / LOWORD(units));
    EXPECT_EQ(word(16), 1200 / HIWORD(units));
    EXPECT_EQ(word(18), 0) << "menu";
    EXPECT_EQ(word(20), 0) << "class";
    std::wstring title;
    for (std::size_t at = 22; at < 46 && word(at) != 0; at += 2) {
        title += static_cast<wchar_t>(word(at));
    }
    EXPECT_EQ(title, L"Class Rename");
    EXPECT_NE(opening.instance, nullptr);
}

TEST_F(Dialog_Layout_Test, a_dialog_that_failed_can_be_opened_again) {
    {
        Dialog_Opening opening;
        opening.result_forced = -1;
        EXPECT_EQ(Dialog_Rename(buffer), -1);
    }
    EXPECT_EQ(Run({Save}), 1);
}

TEST_F(Dialog_Layout_Test, the_active_window_owns_the_dialog_and_gives_its_instance) {
    const HWND owner = ::CreateWindowExA(0, "STATIC", "owner", WS_POPUP | WS_VISIBLE, 0, 0, 50, 50, nullptr, nullptr,
                                         ::GetModuleHandleA("Kit_Widgets.dll"), nullptr);
    ::SetActiveWindow(owner);
    ASSERT_EQ(::GetActiveWindow(), owner);
    Dialog_Opening opening;
    opening.result_forced = -1;
    Dialog_Rename(buffer);
    EXPECT_EQ(opening.owner, owner);
    EXPECT_EQ(opening.instance, reinterpret_cast<HINSTANCE>(::GetWindowLongPtrA(owner, GWLP_HINSTANCE)));
    EXPECT_EQ(opening.instance, ::GetModuleHandleA("Kit_Widgets.dll"));
    ::DestroyWindow(owner);
}

/** Blocks of global memory: how many are there, what they are made with, and one that fails. */
struct Global_Blocks {
    Global_Blocks()
        : alloc("", "kernel32.dll", "GlobalAlloc", reinterpret_cast<void*>(&Alloc)),
          free("", "kernel32.dll", "GlobalFree", reinterpret_cast<void*>(&Free)) {
        EXPECT_TRUE(alloc.Is_Set() && free.Is_Set());
        now = this;
    }
    ~Global_Blocks() { now = nullptr; }
    Global_Blocks(const Global_Blocks&) = delete;
    Global_Blocks& operator=(const Global_Blocks&) = delete;

    bool fails = false;
    int open_nb = 0;
    int asked_nb = 0;
    UINT flags = 0;
    SIZE_T size = 0;

  private:
    static HGLOBAL WINAPI Alloc(UINT flags, SIZE_T size) {
        now->asked_nb++;
        now->flags = flags;
        now->size = size;
        if (now->fails) {
            return nullptr;
        }
        now->open_nb++;
        return reinterpret_cast<decltype(&Alloc)>(now->alloc.Original())(flags, size);
    }
    static HGLOBAL WINAPI Free(HGLOBAL block) {
        now->open_nb--;
        return reinterpret_cast<decltype(&Free)>(now->free.Original())(block);
    }
    static inline Global_Blocks* now = nullptr;
    Import_Hook alloc;
    Import_Hook free;
};

TEST_F(Dialog_Layout_Test, the_template_is_a_fixed_empty_block_that_is_given_back) {
    Global_Blocks blocks;
    {
        Dialog_Opening opening;
        opening.result_forced = -1;
        EXPECT_EQ(Dialog_Rename(buffer), -1);
    }
    EXPECT_EQ(blocks.asked_nb, 1);
    EXPECT_EQ(blocks.flags, static_cast<UINT>(GPTR));
    EXPECT_EQ(blocks.size, 1024U);
    EXPECT_EQ(blocks.open_nb, 0);
    blocks.fails = true;
    EXPECT_EQ(Dialog_Rename(buffer), -1);
    blocks.fails = false;
    EXPECT_EQ(Run({Save}), 1) << "the next one opens";
    EXPECT_EQ(blocks.asked_nb, 3);
    EXPECT_EQ(blocks.open_nb, 0);
}

std::set<std::string> asked_variables;
decltype(&Fct_Variable_Value) real_value = nullptr;
void* Value(const char* name, int* nb, unsigned short* type, int (**fct)(void)) {
    asked_variables.insert(name);
    return real_value(name, nb, type, fct);
}

TEST_F(Dialog_Layout_Test, the_layout_asks_for_all_variables_of_the_host_that_it_may_need) {
    asked_variables.clear();
    const Import_Hook hook("", "Kit_Dataset.dll", "_Z18Fct_Variable_ValuePKcPiPtPPFivE",
                           reinterpret_cast<void*>(&Value));
    ASSERT_TRUE(hook.Is_Set());
    real_value = reinterpret_cast<decltype(real_value)>(hook.Original());
    Run({Save});
    for (const char* name :
         {"$INTERFACE_SPACE_DIM", "$INTERFACE_BUTTON_DIM_BIG", "$INTERFACE_BORDER_DIM", "$INTERFACE_TITLE_FONT_NAME",
          "$INTERFACE_TITLE_FONT_WEIGHT", "$INTERFACE_TITLE_FONT_SCALE", "$INTERFACE_TOOL_FONT_NAME",
          "$INTERFACE_TOOL_FONT_WEIGHT", "$INTERFACE_TOOL_FONT_SCALE", "$INTERFACE_CURSOR_DIM",
          "$INTERFACE_BUTTON_DIM_SML", "$INTERFACE_VAL_DIM_SML", "$INTERFACE_TITLE_DIM_SML", "$DEFAULT_ICON_PATH"}) {
        EXPECT_TRUE(asked_variables.contains(name)) << name;
    }
}

// ---------------- answers

TEST_F(Dialog_Layout_Test, the_procedure_answers_what_it_handles) {
    Dialog_Opening opening;
    Run({Show,
         [&](HWND dialog) {
             ::SendMessageA(dialog, WM_COMMAND, IDCANCEL, 0);
             ::SendMessageA(dialog, WM_CHAR, 'a', 1);
             ::SendMessageA(dialog, WM_LBUTTONDOWN, MK_LBUTTON, On_Save(dialog));
             ::SendMessageA(dialog, WM_LBUTTONDOWN, MK_LBUTTON, On_Cancel(dialog));
         },
         Save});
    EXPECT_EQ(opening.Answers(WM_INITDIALOG), (std::vector<INT_PTR>{1})) << "the system gives the dialog the keyboard";
    EXPECT_EQ(opening.Answers(WM_COMMAND), (std::vector<INT_PTR>{0}));
    EXPECT_EQ(opening.Answers(WM_CHAR), (std::vector<INT_PTR>{0}));
    EXPECT_EQ(opening.Answers(WM_LBUTTONDOWN), (std::vector<INT_PTR>{1, 1, 1})) << "presses over a button";
    EXPECT_EQ(opening.Answers(WM_LBUTTONUP), (std::vector<INT_PTR>{1}));
}

TEST_F(Dialog_Layout_Test, a_press_tells_the_button_which_buttons_are_held) {
    Input_Source source;
    source.button = Held;
    Input_Source_Set(source);
    Widget_Calls calls;
    const auto press = [&](HWND dialog, int held) {
        held_buttons = held;
        calls.calls.clear();
        ::SendMessageA(dialog, WM_LBUTTONDOWN, MK_LBUTTON, On_Save(dialog));
        int code = 0;
        for (const Widget_Call& call : calls.Of("Buttons::Select")) {
            code = call.argument != MOUSE_ASK ? call.argument : code;
        }
        return code;
    };
    Run({Show,
         [&](HWND dialog) {
             EXPECT_EQ(press(dialog, 0), 2);
             EXPECT_EQ(press(dialog, 1 << 1), 2 + 16);
             EXPECT_EQ(press(dialog, 1 << 4), 2 + 32) << "the middle button";
             EXPECT_EQ(press(dialog, 1 << 2), 2 + 64);
             EXPECT_EQ(press(dialog, 1 << 1 | 1 << 2 | 1 << 4), 2 + 16 + 32 + 64);
             held_buttons = 0;
         },
         Save});
}

TEST_F(Dialog_Layout_Test, a_press_shows_the_button_pressed_until_the_pointer_moves) {
    Widget_Calls calls;
    Run({Show,
         [&](HWND dialog) {
             const std::vector<Widget_Call> inits = Inits(calls.calls);
             ASSERT_GE(inits.size(), 5U);
             const auto state = [&](std::size_t element) {
                 return static_cast<const Buttons*>(inits[element].widget)->state;
             };
             ::SendMessageA(dialog, WM_LBUTTONDOWN, MK_LBUTTON, On_Save(dialog));
             EXPECT_EQ(state(1), 2);
             EXPECT_EQ(state(2), 0);
             calls.calls.clear();
             ::SendMessageA(dialog, WM_MOUSEMOVE, 0, Point(dialog, 40, 2));
             EXPECT_EQ(state(1), 0);
             std::map<const Tools*, int> released;
             for (const char* operation : {"Texts::Deselect", "Buttons::Deselect"}) {
                 for (const Widget_Call& call : calls.Of(operation)) {
                     released[call.widget]++;
                 }
             }
             EXPECT_EQ(released.size(), 4U) << "the entry, the prompt and both buttons";
             POINT at = {40, Client(dialog).height - 1 - 2};
             ::ClientToScreen(dialog, &at);
             EXPECT_EQ(YCursor_X, at.x);
             EXPECT_EQ(YCursor_Y, at.y);
             ::SendMessageA(dialog, WM_LBUTTONDOWN, MK_LBUTTON, On_Cancel(dialog));
             EXPECT_EQ(state(2), 2);
             ::SendMessageA(dialog, WM_LBUTTONUP, 0, Point(dialog, 1, 1));
             EXPECT_EQ(state(2), 0) << "a release elsewhere";
         },
         Save});
}

TEST_F(Dialog_Layout_Test, a_release_takes_the_pressed_look_away_wherever_it_happens) {
    Widget_Calls calls;
    const auto pressed = [&](HWND dialog, LPARAM where) {
        ::SendMessageA(dialog, WM_LBUTTONDOWN, MK_LBUTTON, where);
        calls.calls.clear();
    };
    const auto released = [&] {
        std::vector<const Tools*> widgets;
        for (const Widget_Call& call : calls.Of("Buttons::Deselect")) {
            widgets.push_back(call.widget);
        }
        return widgets;
    };
    std::vector<const Tools*> both;
    EXPECT_EQ(Run({Show,
                   [&](HWND dialog) {
                       both = {Inits(calls.calls)[1].widget, Inits(calls.calls)[2].widget};
                       pressed(dialog, On_Save(dialog));
                       ::SendMessageA(dialog, WM_LBUTTONUP, 0, Point(dialog, 1, 1));
                       EXPECT_EQ(released(), both);
                       pressed(dialog, On_Cancel(dialog));
                       ::SendMessageA(dialog, WM_LBUTTONUP, 0, On_Cancel(dialog));
                   }}),
              2);
    EXPECT_EQ(released(), std::vector<const Tools*>{both[1]}) << "over the button too";
}

TEST_F(Dialog_Layout_Test, what_does_not_fit_is_not_shown_either) {
    Put(std::string(DIALOG_RENAME_SIZE - 1, 'i'));
    Run({Show,
         [](HWND dialog) {
             const auto [width, height] = Client(dialog);
             ::SendMessageA(dialog, WM_KEYDOWN, VK_END, 1);
             const auto before = Panel_Window_Read(dialog, width, height);
             Type_Keys(dialog, "w");
             EXPECT_EQ(Panel_Window_Read(dialog, width, height), before);
             ::SendMessageA(dialog, WM_KEYDOWN, VK_BACK, 1);
         },
         Save});
    EXPECT_EQ(std::strlen(buffer), DIALOG_RENAME_SIZE - 2U);
}

TEST_F(Dialog_Layout_Test, a_press_into_the_entry_places_the_caret) {
    Put("abcdef");
    EXPECT_EQ(Run({Show,
                   [](HWND dialog) {
                       Click(dialog, On_Entry(dialog, 3));  // before the first character
                       Type_Keys(dialog, "x");
                       Click(dialog, On_Entry(dialog, Client(dialog).width / 2));  // behind the last one
                       Type_Keys(dialog, "y");
                   },
                   Save}),
              1);
    EXPECT_STREQ(buffer, "xabcdefy");
}

}  // namespace
