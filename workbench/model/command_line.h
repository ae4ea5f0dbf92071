/** What the program was started with. */
#pragma once

#include <span>
#include <string>
#include <vector>

namespace workbench {

struct Command_Line {
    bool help = false;
    bool trace = false;    ///< --trace: the trace view is open from the start
    bool check = false;    ///< --check: the kits watch what the application owes the panels
    std::string labels;    ///< --labels FILE: loaded if it is there, and where "Save labels" writes
    std::string report;    ///< --report FILE: machine-readable lines are appended to it
    std::string settings;  ///< --settings FILE: where what is kept between starts stands; empty: the usual place
    std::vector<std::string> files;  ///< images and folders with images; all are opened
    std::string error;               ///< one sentence; empty: all is well
};

/** @param arguments without the program's own name, UTF-8 */
Command_Line Command_Line_Parse(std::span<const std::string> arguments);

/** What --help prints. */
std::string Command_Line_Help();

}  // namespace workbench
