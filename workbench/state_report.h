/** What programs that drive the application are told about its state. */
#pragma once

#include <windows.h>

#include <functional>
#include <string>
#include <utility>

#include "workbench/report_questions.h"

namespace workbench {

class Json_Text;
class Report;

/** What it needs of the application. */
struct State_Host {
    std::function<HWND()> window;                 ///< the main one
    std::function<void(HMENU)> menu_refresh;      ///< as when it opens
    std::function<void(Json_Text& out)> members;  ///< writes what is told of the parts into an object
};

class State_Report {
  public:
    /** @param lines where the state is written; outlives it */
    State_Report(State_Host application, Report& lines) : host(std::move(application)), report(lines) {}

    /** From now on questions are answered. @param file the report's, UTF-8 */
    void Begin(const std::string& file);
    /** Writes the state as it is. */
    void Write();
    /** Everybody was told of changes that are more than what follows the mouse. */
    void Round_Count() { ++rounds_told; }

  private:
    State_Host host;
    Report& report;
    Report_Questions questions;
    int number = 0;
    int rounds_told = 0;
};

}  // namespace workbench
