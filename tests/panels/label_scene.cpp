#include "tests/panels/label_scene.h"

#include <algorithm>

// ---------------- model

Label_Model::Label_Model(const Boxs& host_box, int label_nb) : host(host_box), count(label_nb) {
    const int t = Margin();
    top = host.y + t;
    height = host.height - 2 * t;
    needed = Content() > host.height - 2 * SPACE;
    grid_x = host.x + t + (needed ? CURSOR_DIM + SPACE_DIM : 0);
    grid_width = host.width - 2 * t - (needed ? CURSOR_DIM + SPACE_DIM : 0);
    scroll = needed ? static_cast<float>(Content() - height) : 0.0F;
    look.resize(static_cast<std::size_t>(label_nb));
}

int Label_Model::Visible_Nb() const {
    int nb = 0;
    for (int i = 0; i < count; i++) {
        nb += Is_Visible(i) ? 1 : 0;
    }
    return nb;
}

int Label_Model::At(int x, int y) const {
    for (int i = 0; i < count; i++) {
        if (Is_Visible(i) && x >= X(i) && x < X(i) + Column_Width() && y >= Y(i) && y < Y(i) + ROW) {
            return i;
        }
    }
    return -1;
}

void Label_Model::Draw(HWND window) const {
    Boxs frame(host);
    frame.style = STYLE_FRAMED_BOX;
    frame.Init(window);
    frame.Draw();
    if (needed) {
        Sliders slider;
        slider.style = STYLE_SLIDER_VERTICAL;
        slider.x = static_cast<short>(host.x + Margin());
        slider.y = static_cast<short>(top);
        slider.width = CURSOR_DIM;
        slider.height = static_cast<short>(height);
        slider.color = host.color;
        slider.maximum = static_cast<float>(Content() - height);
        slider.value = scroll;
        slider.step = ROW;
        slider.Larg_Adjust(static_cast<float>(height), static_cast<float>(Content()));
        slider.Init(window);
        slider.Draw();
    }
    for (int i = 0; i < count; i++) {
        if (!Is_Visible(i)) {
            continue;
        }
        const Label_Look& one = look[static_cast<std::size_t>(i)];
        Buttons button;
        button.Take_Look(host);
        button.x = static_cast<short>(X(i));
        button.y = static_cast<short>(Y(i));
        button.width = static_cast<short>(Column_Width());
        button.height = ROW;
        button.style = one.style;
        button.current = one.current;
        button.checked = one.checked;
        button.Set_Color(static_cast<unsigned char>(one.color), static_cast<unsigned char>(one.color >> 8U),
                         static_cast<unsigned char>(one.color >> 16U));
        button.Set_Name("%s", one.caption.c_str());
        button.Init(window);
        button.Draw();
    }
}

// ---------------- fixture

Label_Fixture::Label_Fixture(Window_Axis axis)
    : Panel_Fixture(axis, WINDOW_WIDTH, WINDOW_HEIGHT), expected_window(axis, WINDOW_WIDTH, WINDOW_HEIGHT) {
    Define_Dimensions();
    Point_Away();
}

Window_Picture Label_Fixture::Expected(const Label_Model& model) const {
    expected_window.Wipe();
    model.Draw(expected_window.Get());
    return expected_window.Read();
}

int Label_Fixture::Wrong_Pixels(const Label_Model& model) const {
    const Window_Picture expected = Expected(model);
    const Window_Picture shown = Pixels();
    int wrong = 0;
    for (std::size_t i = 0; i < shown.pixels.size(); i++) {
        wrong += shown.pixels[i] != expected.pixels[i] ? 1 : 0;
    }
    return wrong;
}

Boxs Label_Fixture::Place() const {
    Boxs box = Host_Box(10, 8, 280, 120);
    box.border = 1;
    return box;
}

void Label_Fixture::Quiet() {
    messages.Take();
    requests.Take();
    Take_Counters();
}

// ---------------- TAGs

std::uint32_t Tag_Fixture::Color_Of(int tag) {
    const auto n = static_cast<std::uint32_t>(tag);
    return tag == 0 ? 0xAAAAAAU : (40 + n % 200) | ((250 - n % 180) << 8U) | ((60 + n * 7 % 190) << 16U);
}

void Tag_Fixture::Set_Color(int tag, std::uint32_t color) {
    constexpr unsigned int low_byte = 0x5C;  // does not show
    const char* names[] = {"$TAG_RED", "$TAG_GRN", "$TAG_BLU"};
    for (const char* name : names) {
        auto* array = static_cast<std::uint16_t*>(Variable_Array(name, VARIABLE_UNSIGNED_16, nullptr));
        array[tag] = static_cast<std::uint16_t>(((color & 0xFFU) << 8U) | low_byte);
        color >>= 8U;
    }
}

void Tag_Fixture::Change_Count(int nb) {
    Scalar("$TAG_NB", VARIABLE_UNSIGNED_16, nb);
    int known = 0;
    Variable_Array("$TAG_RED", VARIABLE_UNSIGNED_16, &known);
    for (const char* name : {"$TAG_RED", "$TAG_GRN", "$TAG_BLU"}) {
        Array<std::uint16_t>(name, VARIABLE_UNSIGNED_16, nb);
    }
    for (const char* name : {"$TAG_ENABLE", "$TAG_SELECT", "$TAG_LOCK"}) {
        Array<std::uint8_t>(name, VARIABLE_UNSIGNED_8, nb);
    }
    Array<float>("$TAG_THRESHOLD_MIN", VARIABLE_FLOAT, nb);
    Array<char*>("$TAG_LABEL", VARIABLE_TEXT, nb);
    for (int tag = known; tag < nb; tag++) {
        Set_Color(tag, tag == 0 ? 0x010203 : Color_Of(tag));
        Flags("$TAG_ENABLE")[tag] = 1;
        Flags("$TAG_SELECT")[tag] = 1;
        Thresholds()[tag] = static_cast<float>(tag) * 10.0F - 20.0F;
        Variable_Set_Array_Text("$TAG_LABEL", tag, Label_Of(tag).c_str());
    }
}

void Tag_Fixture::Define_Tags(int nb) {
    for (const char* name : {"$TAG_RED", "$TAG_GRN", "$TAG_BLU", "$TAG_ENABLE", "$TAG_SELECT", "$TAG_LOCK",
                             "$TAG_THRESHOLD_MIN", "$TAG_LABEL"}) {
        Variable_Undefine(name);
    }
    Scalar("$TAG_CUR", VARIABLE_UNSIGNED_16, 1);
    Change_Count(nb);
}

Label_Model Tag_Fixture::Fresh_Model(const Boxs& box, int nb) const {
    Label_Model model(box, nb);
    for (int tag = 0; tag < nb; tag++) {
        Label_Look& look = model.look[static_cast<std::size_t>(tag)];
        look.caption = Labels()[tag] != nullptr ? Labels()[tag] : std::to_string(tag);
        look.color = Color_Of(tag);
        look.style = STYLE_GRID_BUTTON | (box.style & STYLE_SHOW_CHECK);
    }
    return model;
}

// ---------------- markers

void Marker_Fixture::Define_Markers(int nb) {
    for (const char* name : {"$MARKER_COLOR", "$MARKER_ENABLE", "$MARKER_LABEL"}) {
        Variable_Undefine(name);
    }
    Scalar("$MARKER_NB", VARIABLE_UNSIGNED_16, nb);
    Scalar("$MARKER_CUR", VARIABLE_UNSIGNED_16, 1);
    Array<std::uint32_t>("$MARKER_COLOR", VARIABLE_UNSIGNED_32, nb);
    Array<std::uint8_t>("$MARKER_ENABLE", VARIABLE_UNSIGNED_8, nb);
    Array<char*>("$MARKER_LABEL", VARIABLE_TEXT, nb);
    for (int marker = 0; marker < nb; marker++) {
        Colors_Array()[marker] = Color_Of(marker) | 0x77000000U;  // the high byte does not count
        Enable()[marker] = marker % 3 != 0 ? 1 : 0;
        Variable_Set_Array_Text("$MARKER_LABEL", marker, ("M" + std::to_string(marker)).c_str());
    }
}

Label_Model Marker_Fixture::Fresh_Model(const Boxs& box, int nb) const {
    Label_Model model(box, nb);
    for (int marker = 0; marker < nb; marker++) {
        Label_Look& look = model.look[static_cast<std::size_t>(marker)];
        look.caption = Labels()[marker] != nullptr ? Labels()[marker] : std::to_string(marker);
        look.color = Color_Of(marker);
        look.current = marker == static_cast<int>(Variable_Number("$MARKER_CUR", -1)) ? 1 : 0;
        if ((box.style & STYLE_SHOW_CHECK) != 0) {
            look.style = STYLE_GRID_BUTTON | STYLE_SHOW_CHECK;
            look.checked = Enable()[marker] != 0 ? 1 : 0;
        }
    }
    return model;
}
