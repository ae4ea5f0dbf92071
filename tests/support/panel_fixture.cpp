#include "tests/support/panel_fixture.h"

#include <utility>

Panel_Fixture::Panel_Fixture(Window_Axis axis, int width, int height) : window(axis, width, height) {
    Widget_Counters_Reset();
}

Panel_Fixture::~Panel_Fixture() {
    for (const std::string& name : defined) {
        Variable_Undefine(name.c_str());
    }
}

void Panel_Fixture::Scalar(const char* name, Variable_Type type, double value) {
    defined.emplace_back(name);
    Variable_Define_Scalar(name, type, value);
}

void Panel_Fixture::Define_Dimensions() {
    const std::pair<const char*, int> dimensions[] = {
        {"$INTERFACE_SPACE_DIM", SPACE_DIM},           {"$INTERFACE_BORDER_DIM", BORDER_DIM},
        {"$INTERFACE_CURSOR_DIM", CURSOR_DIM},         {"$INTERFACE_BUTTON_DIM_SML", BUTTON_DIM_SML},
        {"$INTERFACE_BUTTON_DIM_BIG", BUTTON_DIM_BIG}, {"$INTERFACE_LIST_DIM_SML", LIST_DIM_SML},
        {"$INTERFACE_LIST_DIM_ARROW", LIST_DIM_ARROW}, {"$INTERFACE_TITLE_DIM_SML", TITLE_DIM_SML},
        {"$INTERFACE_VAL_DIM_SML", VAL_DIM_SML}};
    for (const auto& [name, pixels] : dimensions) {
        Scalar(name, VARIABLE_SIGNED_16, pixels);
    }
}

Widget_Counters Panel_Fixture::Take_Counters() const {
    const Widget_Counters counters = Widget_Counters_Get();
    Widget_Counters_Reset();
    return counters;
}
