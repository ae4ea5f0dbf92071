#include "workbench/state_report.h"

#include "workbench/model/json_text.h"
#include "workbench/report.h"
#include "workbench/window_report.h"

namespace workbench {

void State_Report::Begin(const std::string& file) {
    questions.Begin(file + ".ask", [this] { Write(); });
}

void State_Report::Write() {
    Json_Text out;
    out.Object_Begin();
    out.Number("number", ++number);
    out.Number("rounds_told", rounds_told);  // but for what follows the mouse
    host.members(out);
    Windows_Write(out);
    HMENU menu = ::GetMenu(host.window());
    if (!Is_In_Menu()) {          // an open menu's entries must not change
        host.menu_refresh(menu);  // as when it opens
    }
    Menus_Write(out, menu);
    out.Object_Begin("input");
    questions.Input_Write(out);
    out.Object_End();
    out.Object_End();
    report.Line("state " + out.Written());
}

}  // namespace workbench
