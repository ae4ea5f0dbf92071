/** What a program asks of the widget library, call by call: its imports from the library's module are watched. One
 * watch at a time. */
#pragma once

#include <gtest/gtest.h>

#include <cstdarg>
#include <cstdio>
#include <string>
#include <type_traits>
#include <vector>

#include "host/kit_widgets.h"
#include "tests/support/import_hook.h"

/** One call of a widget's operation. */
struct Widget_Call {
    std::string operation;  ///< "Texts::Init"
    const Tools* widget = nullptr;
    Tools state;       ///< the fields that all widgets share, as they were
    int argument = 0;  ///< the first one, where that is a number
    int result = 0;    ///< where there is one
    std::string text;  ///< what Read and Write print
};

/** One call of a function that draws the lead cell of a row. */
struct Lead_Call {
    std::string kind;  ///< "Leaf"
    int flag = 0;
    int x0 = 0;
    int x1 = 0;
    int y0 = 0;
    int y1 = 0;
    friend bool operator==(const Lead_Call&, const Lead_Call&) = default;
};

/** For the failure texts of tests. */
inline std::ostream& operator<<(std::ostream& out, const Lead_Call& call) {
    return out << call.kind << " flag " << call.flag << ", x " << call.x0 << " to " << call.x1 << ", y " << call.y0
               << " to " << call.y1;
}

class Widget_Calls {
  public:
    Widget_Calls() {
        current = this;
        Watch_Init<Boxs>("Boxs::Init", "_ZN4Boxs4InitEP6HWND__");
        Watch_Init<Buttons>("Buttons::Init", "_ZN7Buttons4InitEP6HWND__");
        Watch_Init<Labels>("Labels::Init", "_ZN6Labels4InitEP6HWND__");
        Watch_Init<Texts>("Texts::Init", "_ZN5Texts4InitEP6HWND__");
        Watch_Plain<Boxs, 0>("Boxs::Draw", "_ZN4Boxs4DrawEv");
        Watch_Plain<Buttons, 0>("Buttons::Draw", "_ZN7Buttons4DrawEv");
        Watch_Plain<Labels, 0>("Labels::Draw", "_ZN6Labels4DrawEv");
        Watch_Plain<Texts, 0>("Texts::Draw", "_ZN5Texts4DrawEv");
        Watch_Plain<Sliders, 0>("Sliders::Draw", "_ZN7Sliders4DrawEv");
        Watch_Plain<Sliders, 1>("Sliders::Adjust", "_ZN7Sliders6AdjustEv");
        Watch_Plain<Texts, 1>("Texts::Cleanup", "_ZN5Texts7CleanupEv");
        Watch_Plain<Buttons, 2>("Buttons::Deselect", "_ZN7Buttons8DeselectEv");
        Watch_Plain<Texts, 2>("Texts::Deselect", "_ZN5Texts8DeselectEv");
        Watch_Plain<Tools, 3>("Tools::Clear", "_ZN5Tools5ClearEv");
        Set<Button_Select_Tag>("_ZN7Buttons6SelectEi", &Button_Select);
        Set<Text_Select_Tag>("_ZN5Texts6SelectEiss", &Text_Select);
        Set<Text_Read_Tag>("_ZN5Texts4ReadEPKcz", &Text_Read);
        Set<Text_Write_Tag>("_ZN5Texts5WriteEPKcz", &Text_Write);
        Watch_Lead<0>("Expand", "_Z16Icon_Lead_ExpandRK4Boxsiiiii");
        Watch_Lead<1>("Collapse", "_Z18Icon_Lead_CollapseRK4Boxsiiiii");
        Watch_Lead<2>("Leaf", "_Z14Icon_Lead_LeafRK4Boxsiiiii");
        Watch_Lead<3>("No_Access", "_Z19Icon_Lead_No_AccessRK4Boxsiiiii");
    }
    ~Widget_Calls() {
        hooks.clear();
        current = nullptr;
    }
    Widget_Calls(const Widget_Calls&) = delete;
    Widget_Calls& operator=(const Widget_Calls&) = delete;

    std::vector<Widget_Call> calls;
    std::vector<Lead_Call> leads;

    /** The calls of one operation, in order. */
    std::vector<Widget_Call> Of(const std::string& operation) const {
        std::vector<Widget_Call> found;
        for (const Widget_Call& call : calls) {
            if (call.operation == operation) {
                found.push_back(call);
            }
        }
        return found;
    }

  private:
    /** What a replacement needs: the real function and the operation's name. */
    template <class Tag, class Function>
    struct Real {
        static inline Function* function = nullptr;
    };
    template <class Tag, class Function>
    void Set(const char* mangled, Function* replacement) {
        Import_Hook hook("", "Kit_Widgets.dll", mangled, reinterpret_cast<void*>(replacement));
        EXPECT_TRUE(hook.Is_Set()) << mangled << " is not imported: its calls are not seen";
        Real<Tag, Function>::function = reinterpret_cast<Function*>(hook.Original());
        hooks.push_back(std::move(hook));
    }
    static Widget_Call& Note(const char* operation, const Tools* widget) {
        current->calls.push_back({operation, widget, *widget, 0, 0, {}});
        return current->calls.back();
    }
    /** A call may bring others: its result is written down by its number. */
    static void Note_Result(std::size_t number, int result) { current->calls[number].result = result; }

    template <class Widget>
    struct Init_Tag {
        static inline const char* operation = "";
    };
    template <class Widget>
    static int Init(Widget* widget, HWND window) {
        Note(Init_Tag<Widget>::operation, widget);
        return Real<Init_Tag<Widget>, int(Widget*, HWND)>::function(widget, window);
    }
    template <class Widget>
    void Watch_Init(const char* operation, const char* mangled) {
        Init_Tag<Widget>::operation = operation;
        Set<Init_Tag<Widget>>(mangled, &Init<Widget>);
    }

    template <class Widget, int NUMBER>
    struct Plain_Tag {
        static inline const char* operation = "";
    };
    template <class Widget, int NUMBER>
    static void Plain(Widget* widget) {
        Note(Plain_Tag<Widget, NUMBER>::operation, widget);
        Real<Plain_Tag<Widget, NUMBER>, void(Widget*)>::function(widget);
    }
    template <class Widget, int NUMBER>
    void Watch_Plain(const char* operation, const char* mangled) {
        Plain_Tag<Widget, NUMBER>::operation = operation;
        Set<Plain_Tag<Widget, NUMBER>>(mangled, &Plain<Widget, NUMBER>);
    }

    template <int NUMBER>
    struct Lead_Tag {
        static inline const char* kind = "";
    };
    template <int NUMBER>
    static void Lead(const Boxs* box, int flag, int x0, int x1, int y0, int y1) {
        current->leads.push_back({Lead_Tag<NUMBER>::kind, flag, x0, x1, y0, y1});
        Real<Lead_Tag<NUMBER>, void(const Boxs*, int, int, int, int, int)>::function(box, flag, x0, x1, y0, y1);
    }
    template <int NUMBER>
    void Watch_Lead(const char* kind, const char* mangled) {
        Lead_Tag<NUMBER>::kind = kind;
        Set<Lead_Tag<NUMBER>>(mangled, &Lead<NUMBER>);
    }

    struct Button_Select_Tag {};
    static int Button_Select(Buttons* button, int code) {
        Note("Buttons::Select", button).argument = code;
        const std::size_t number = current->calls.size() - 1;
        const int result = Real<Button_Select_Tag, int(Buttons*, int)>::function(button, code);
        Note_Result(number, result);
        return result;
    }
    struct Text_Select_Tag {};
    static int Text_Select(Texts* field, int code, short x, short y) {
        Note("Texts::Select", field).argument = code;
        const std::size_t number = current->calls.size() - 1;
        const int result = Real<Text_Select_Tag, int(Texts*, int, short, short)>::function(field, code, x, y);
        Note_Result(number, result);
        return result;
    }
    /** Notes the text of a call and makes it. */
    template <class Tag>
    static void Note_Text(const char* operation, Texts* field, const char* format, va_list arguments) {
        char text[TEXTS_SIZE];
        std::vsnprintf(text, sizeof text, format, arguments);
        Note(operation, field).text = text;
        Real<Tag, void(Texts*, const char*, ...)>::function(field, "%s", text);
    }
    struct Text_Read_Tag {};
    static void Text_Read(Texts* field, const char* format, ...) {
        va_list arguments;
        va_start(arguments, format);
        Note_Text<Text_Read_Tag>("Texts::Read", field, format, arguments);
        va_end(arguments);
    }
    struct Text_Write_Tag {};
    static void Text_Write(Texts* field, const char* format, ...) {
        va_list arguments;
        va_start(arguments, format);
        Note_Text<Text_Write_Tag>("Texts::Write", field, format, arguments);
        va_end(arguments);
    }

    static inline Widget_Calls* current = nullptr;
    std::vector<Import_Hook> hooks;
};
