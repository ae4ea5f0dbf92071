#include "histogram/tool_histo_export.h"

#include <cstdio>

#include "histogram/tool_histo.h"
#include "histogram/tool_histo_blow.h"
#include "host/kit_dataset.h"
#include "panels/protocol/host_variables.h"

namespace {

constexpr const char* DIALOG_TITLE = "Write histogram info to file";
constexpr const char* DEFAULT_NAME = "histogram";
constexpr const char* EXTENSION = "csv";

/** Who waits for the dialog's answer. Windows come and go meanwhile, and another one may ask too. */
class Asking {
  public:
    explicit Asking(const Tool_Histo* with_panel) : panel(with_panel), outer(innermost) { innermost = this; }
    ~Asking() { innermost = outer; }
    Asking(const Asking&) = delete;
    Asking& operator=(const Asking&) = delete;

    bool Is_Panel_There() const { return panel != nullptr; }
    static void Forget(const Tool_Histo* gone) {
        for (Asking* at = innermost; at != nullptr; at = at->outer) {
            at->panel = at->panel == gone ? nullptr : at->panel;
        }
    }

  private:
    inline static Asking* innermost = nullptr;

    const Tool_Histo* panel;
    Asking* outer;
};

/** The name that the dialog begins with. */
void Default_Name(char (&name)[FILE_NAME_SIZE]) {
    // The folder's text carries its own separator at the end.
    const char* folder = Host_Pointer<const char>("$DEFAULT_FILE_PATH");
    std::snprintf(name, sizeof name, "%s%s", folder != nullptr ? folder : "", DEFAULT_NAME);
}

}  // namespace

int Histo_Export(Tool_Histo& panel, Buttons& button) {
    // Paths are too long for the stack; the window lets no second export begin while the first one asks.
    static char initial_name[FILE_NAME_SIZE];
    static char path[FILE_NAME_SIZE];
    const Asking asking(&panel);
    Histo_Blow_Button_Press(button);
    Default_Name(initial_name);
    Host_Count("$REGIONAL_SEPARATOR");  // looked up and not used; writing reads it again
    const char* filter =
        Fct_Create_szFilter(2, "DB Files", "$FILE_EXTENSION_EXCEL", "All Files", "$FILE_EXTENSION_ALL");
    path[0] = 0;
    const bool confirmed = Fct_Save_FileName(DIALOG_TITLE, filter, initial_name, EXTENSION, path, 0) != 0;
    const int written = confirmed && asking.Is_Panel_There() ? panel.Write(path) : 0;
    Histo_Blow_Button_Release(button);
    return written;
}

void Histo_Export_Panel_Gone(const Tool_Histo* panel) {
    Asking::Forget(panel);
}
