/** Names of all parts of the main window for programs that read the screen aloud. */
#pragma once

#include <functional>
#include <string>

namespace workbench {

class Database_Pane;
class Image_Area;
class Panel_Set;
class Status_Line;
class Trace_View;
class Warning_Banner;

/** All live as long as the window. */
struct Named_Parts {
    Panel_Set& panels;
    Database_Pane& database;
    Image_Area& image;
    Status_Line& status_line;
    Trace_View& trace;
    Warning_Banner& banner;
    std::function<std::wstring()> volume;  ///< name and size of the current one; empty: there is none
};

void Accessible_Names_Give(Named_Parts parts);

}  // namespace workbench
