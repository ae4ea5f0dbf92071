/** What a window tells about itself, asked from any thread: the answer is always made on the window's own one. */
#pragma once

#include <memory>
#include <optional>

#include "workbench/accessible.h"

namespace workbench {

/** A window and its parts at one moment. */
struct Accessible_Snapshot {
    std::wstring name;
    std::wstring value;
    LONG role = 0;
    RECT place = {};                     ///< of the client area, screen pixels
    std::vector<Accessible_Part> parts;  ///< their places too in screen pixels
};

/** Waits for the window's thread, some seconds at most.
 *  @return no value: the window is gone, hangs, or has nothing to tell */
std::optional<Accessible_Snapshot> Accessible_Snapshot_Ask(HWND window);

/** The window's side: answers the message of Accessible_Snapshot_Ask.
 *  @return false: the message is another one */
bool Accessible_Snapshot_Answer(HWND window, UINT message, WPARAM wparam,
                                const std::shared_ptr<Accessible_Source>& source);

}  // namespace workbench
