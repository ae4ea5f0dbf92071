/** What is open, how it is looked at, and who hears of changes: where the parts of the application meet. No window. */
#pragma once

#include <functional>
#include <string>
#include <utility>
#include <vector>

#include "workbench/model/change_hub.h"
#include "workbench/model/open_volumes.h"
#include "workbench/model/panel_scale.h"
#include "workbench/model/session.h"
#include "workbench/model/slice_render.h"
#include "workbench/volumes/volume_statistics.h"

namespace workbench {

/** Whoever changes something notes it in the hub; nobody else is to be told. */
struct Workspace {
    /** @param pending_begins see Change_Hub */
    explicit Workspace(std::function<void()> pending_begins) : hub(std::move(pending_begins)) {}

    Session session;  ///< of the current volume
    Open_Volumes volumes;
    Change_Hub hub;
    std::vector<std::string> opened_paths;  ///< what is open came from there, UTF-8

    // Of the current volume, and how it is shown.
    volumes::Volume_Statistics statistics;
    Grey_Window grey_window;
    Panel_Scale panel_scale;
    int slice = 0;
};

}  // namespace workbench
