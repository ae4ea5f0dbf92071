#include "workbench/model/command_line.h"

namespace workbench {

Command_Line Command_Line_Parse(std::span<const std::string> arguments) {
    Command_Line line;
    bool only_files = false;
    for (std::size_t at = 0; at < arguments.size() && line.error.empty(); ++at) {
        const std::string& argument = arguments[at];
        const auto take_value = [&](std::string& value) {
            if (at + 1 < arguments.size() && !arguments[at + 1].empty()) {
                value = arguments[++at];
            } else {
                line.error = "The option " + argument + " needs a file name.";
            }
        };
        if (only_files || argument.size() < 2 || argument[0] != '-') {
            line.files.push_back(argument);
        } else if (argument == "--") {
            only_files = true;
        } else if (argument == "--help" || argument == "-h") {
            line.help = true;
        } else if (argument == "--trace") {
            line.trace = true;
        } else if (argument == "--check") {
            line.check = true;
        } else if (argument == "--labels") {
            take_value(line.labels);
        } else if (argument == "--report") {
            take_value(line.report);
        } else if (argument == "--settings") {
            take_value(line.settings);
        } else {
            line.error = "There is no option \"" + argument + "\"; --help lists them.";
        }
    }
    return line;
}

std::string Command_Line_Help() {
    return "workbench [OPTION ...] [FILE_OR_FOLDER ...]\n"
           "\n"
           "Shows image volumes (DICOM, NIfTI .nii or .nii.gz, NRRD, MetaImage, Analyze .hdr/.img) and edits their "
           "TAGs.\n"
           "A folder is opened with everything below it.\n"
           "\n"
           "  --labels FILE   label volume of the first volume: loaded if it is there, and where the labels are saved\n"
           "  --trace         open the trace view from the start\n"
           "  --check         warn when the application breaks its contract with the panels\n"
           "  --report FILE   append machine-readable lines about what happens to FILE\n"
           "  --settings FILE keep window, theme and recent files in FILE, not in the user's profile\n"
           "  --help          show this text\n";
}

}  // namespace workbench
