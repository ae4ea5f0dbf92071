/** A user for the editor's rename: Dialog_Rename of the program is replaced at link time
 *  (-Wl,--wrap=_Z13Dialog_RenamePc). */
#pragma once

#include <functional>
#include <string>

/** What the next dialogs show and how they end. Each test begins with Typed_Name_Reset. */
struct Typed_Name {
    std::string asked = "never";      ///< what the dialog showed
    std::string typed;                ///< what the user types
    int answer = 1;                   ///< how the dialog ends
    std::function<void()> meanwhile;  ///< what happens while it is open
};
extern Typed_Name typed_name;
