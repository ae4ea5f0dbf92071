// A sheet of every look of every widget, written as a picture for people to judge, in both themes.
#include <windows.h>

#include <gtest/gtest.h>

#include <cstdlib>
#include <string>

#include "host/kit_widgets.h"
#include "kits/widgets/theme.h"
#include "tests/kits/widgets/test_window.h"

namespace {

constexpr int SHEET_WIDTH = 760;
constexpr int SHEET_HEIGHT = 560;

struct Face {
    const char* name;
    unsigned char red, green, blue;
};
constexpr Face FACES[] = {{"Liver", 180, 70, 60},  {"Bone", 240, 235, 215}, {"Vessel", 60, 110, 220},
                          {"Background", 0, 0, 0}, {"Air", 170, 170, 170},  {"Tumour", 90, 200, 90}};

template <typename Widget>
void Place(Widget& widget, int x, int y, int width, int height) {
    widget.x = static_cast<short>(x);
    widget.y = static_cast<short>(y);
    widget.width = static_cast<short>(width);
    widget.height = static_cast<short>(height);
    widget.border = 1;
}

void Panel_Color(Tools& widget) {
    const Rgb panel = Theme_Now().panel;
    widget.Set_Color(static_cast<unsigned char>(panel >> 16U), static_cast<unsigned char>((panel >> 8U) & 0xFFU),
                     static_cast<unsigned char>(panel & 0xFFU));
}

void Caption(HWND window, int x, int y, int width, const char* text) {
    Labels label;
    Place(label, x, y, width, 16);
    label.style = STYLE_FLAT;
    Panel_Color(label);
    label.Set_Name("%s", text);
    label.Init(window);
    label.Draw();
}

void Button_Rows(HWND window) {
    struct Column {
        const char* name;
        unsigned short state, current, checked;
        unsigned int bits;
    };
    constexpr Column columns[] = {{"plain", 0, 0, 0, 0},
                                  {"hover", 1, 0, 0, 0},
                                  {"pressed", 2, 0, 0, 0},
                                  {"current", 0, 1, 0, 0},
                                  {"checked", 0, 0, 1, 0},
                                  {"cur+chk", 0, 1, 1, 0},
                                  {"inactive", 0, 0, 0, STYLE_INACTIVE},
                                  {"inact+chk", 0, 1, 1, STYLE_INACTIVE}};
    int x = 90;
    for (const Column& column : columns) {
        Caption(window, x, 34, 80, column.name);
        int y = 54;
        for (const Face& face : FACES) {
            Buttons button;
            Place(button, x, y, 76, 22);
            button.style = STYLE_GRID_BUTTON | STYLE_SHOW_CHECK | column.bits;
            button.Set_Color(face.red, face.green, face.blue);
            button.Set_Name("%s", face.name);
            button.state = column.state;
            button.current = column.current;
            button.checked = column.checked;
            button.Init(window);
            button.Draw();
            y += 26;
        }
        x += 82;
    }
}

void Slider_Rows(HWND window) {
    int x = 20;
    for (const unsigned int style : {STYLE_SLIDER_VERTICAL, STYLE_SLIDER_VERTICAL | STYLE_INACTIVE}) {
        Sliders slider;
        Place(slider, x, 240, 16, 200);
        Panel_Color(slider);
        slider.style = style;
        slider.maximum = 100.0F;
        slider.value = 30.0F;
        slider.Larg_Adjust(100.0F, 300.0F);
        slider.Init(window);
        slider.Draw();
        x += 26;
    }
    Sliders flat;
    Place(flat, 90, 240, 200, 16);
    Panel_Color(flat);
    flat.style = STYLE_SCROLL_BAR;
    flat.maximum = 100.0F;
    flat.value = 70.0F;
    flat.Larg_Adjust(50.0F, 100.0F);
    flat.Init(window);
    flat.Draw();
    x = 90;
    for (const float value : {0.001F, 0.35F, 1.0F}) {
        Valuators valuator;
        Place(valuator, x, 266, 18, 100);
        Panel_Color(valuator);
        valuator.minimum = 0.001F;
        valuator.value = value;
        valuator.Init(window);
        valuator.Draw();
        x += 28;
    }
}

void Select_And_Text_Rows(HWND window) {
    int y = 240;
    for (const unsigned int style : {STYLE_FLAT, STYLE_FLAT_INACTIVE}) {
        Selects list;
        Place(list, 320, y, 220, 24);
        Panel_Color(list);
        list.style = style;
        list.arrow = 20;
        list.Set_Name(" Frame: ");
        list.Grow(3, 0);
        std::snprintf(list.item[1].text, sizeof list.item[1].text, "Composite");
        list.current = 1;
        list.Init(window);
        list.Draw();
        y += 30;
    }
    Texts open;
    Place(open, 320, y, 220, 24);
    open.style = STYLE_EDIT_OPEN;
    Panel_Color(open);
    open.Init(window);
    open.Read("%s", "Left kidney");
    open.Draw();
    Texts caret;
    Place(caret, 320, y + 30, 220, 24);
    caret.style = STYLE_EDIT_OPEN;
    Panel_Color(caret);
    caret.Init(window);
    caret.Read("%s", "Left kidney");
    caret.Input(KEY_HOME);
    caret.Draw();
}

void Box_And_Label_Rows(HWND window) {
    Boxs titled;
    Place(titled, 320, 370, 220, 80);
    titled.style = STYLE_FRAMED_BOX;
    Panel_Color(titled);
    titled.Set_Name("Propagate");
    titled.Init(window);
    titled.Draw();
    Labels warning;
    Place(warning, 560, 240, 80, 22);
    warning.style = STYLE_FLAT;
    warning.Set_Color(255, 255, 0);
    warning.Set_Name(" Warning!");
    warning.Init(window);
    warning.Draw();
    Labels line = warning;
    Place(line, 560, 268, 190, 22);
    line.Set_Color(0, 1, 0);
    line.Set_Name("The class tree has been changed in this session");
    line.Draw();
    Labels node = warning;
    Place(node, 560, 296, 190, 22);
    node.Set_Color(100, 100, 0);
    node.Set_Name("  Series of Zürich");
    node.Draw();
    Buttons wide;
    Place(wide, 560, 330, 190, 26);
    Panel_Color(wide);
    wide.Set_Name("Select All");
    wide.Init(window);
    wide.Draw();
    for (int i = 0; i < 4; i++) {
        Buttons brush;
        Place(brush, 560 + i * 46, 370, 42, 42);
        Panel_Color(brush);
        brush.current = i == 1 ? 1 : 0;
        brush.state = static_cast<unsigned short>(i == 2 ? 1 : i == 3 ? 2 : 0);
        brush.Init(window);
        for (unsigned int* image : brush.image) {
            for (int y = 0; y < 42; y++) {
                for (int x = 0; x < 42; x++) {
                    const int r2 = (x - 21) * (x - 21) + (y - 21) * (y - 21);
                    if (r2 < (4 + 4 * i) * (4 + 4 * i)) {
                        image[y * 42 + x] = 0xC06040;
                    }
                }
            }
        }
        brush.Draw();
    }
}

void Tree_Rows(HWND window) {
    Boxs tree;
    Place(tree, 20, 460, 300, 90);
    tree.style = STYLE_FRAMED_BOX;
    Panel_Color(tree);
    tree.Init(window);
    tree.Draw();
    HDC dc = Y_setup(window, "contact sheet");
    Icon_Lead_Expand(tree, 0, 24, 44, 464, 480);
    Icon_Lead_Leaf(tree, 1, 44, 64, 481, 499);
    Icon_Lead_No_Access(tree, 1, 44, 64, 499, 517);
    Icon_Lead_Leaf(tree, 0, 44, 64, 517, 535);
    Icon_Lead_Collapse(tree, 4, 24, 44, 534, 550);
    Y_release(window, dc);
}

/** In the folder of this program, wherever it is started. */
std::string Beside_Program(const char* file) {
    char path[MAX_PATH] = {};
    ::GetModuleFileNameA(nullptr, path, MAX_PATH - 1);
    const std::string program = path;
    return program.substr(0, program.find_last_of("/\\") + 1) + file;
}

void Sheet(Library_Theme theme, const char* file) {
    Library_Theme_Set(theme);
    const Test_Window window(SHEET_WIDTH, SHEET_HEIGHT, Window_Axis::Down);
    Boxs ground;
    Place(ground, 0, 0, SHEET_WIDTH, SHEET_HEIGHT);
    ground.style = STYLE_FRAMED_BOX;
    Panel_Color(ground);
    ground.Set_Name("All looks of all widgets");
    ground.Init(window.Get());
    ground.Draw();
    Button_Rows(window.Get());
    Slider_Rows(window.Get());
    Select_And_Text_Rows(window.Get());
    Box_And_Label_Rows(window.Get());
    Tree_Rows(window.Get());
    const Window_Picture picture = window.Read();
    EXPECT_TRUE(Write_Png(Beside_Program(file).c_str(), picture));
    EXPECT_EQ(picture.At(SHEET_WIDTH - 6, SHEET_HEIGHT - 6), Theme_Now().panel);
    Library_Theme_Set(Library_Theme::Dark);
}

}  // namespace

TEST(Contact_Sheet, is_written_in_the_dark_theme) {
    Sheet(Library_Theme::Dark, "widgets_dark.png");
}
TEST(Contact_Sheet, is_written_in_the_light_theme) {
    Sheet(Library_Theme::Light, "widgets_light.png");
}
