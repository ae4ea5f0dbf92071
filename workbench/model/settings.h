/** What the application remembers between two starts, and the small text file that it stands in.
 *
 *  One setting a line: its name, a blank, its value. Lines that cannot be understood are left out, so that a damaged
 *  file, or one of another version, costs only what is damaged.
 */
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include "workbench/model/view_places.h"

namespace workbench {

/** A window on the screen, pixels. */
struct Window_Place {
    int left = 0;
    int top = 0;
    int width = 0;  ///< 0: not known
    int height = 0;
    bool is_maximized = false;
};

struct Settings {
    Window_Place window;
    Window_Place peaks_window;
    Window_Place enlarged_window;    ///< of the histogram
    Window_Place list_window;        ///< of the files that were not opened
    Window_Place facts_window;       ///< of what was read
    Window_Place statistics_window;  ///< of the table of the TAGs
    bool is_light = false;           ///< theme
    bool is_overlay_shown = true;
    int overlay_opacity = 45;        ///< per cent of the TAG colours over the image
    bool are_labels_shared = false;  ///< all open volumes have the names and colours of the current one
    Views_Shown views;               ///< of the image
    bool is_linear = false;          ///< grey values run in straight lines from pixel to pixel
    bool is_trace_shown = false;
    bool is_database_shown = false;
    int database_view = 0;              ///< tab
    int database_width = 0;             ///< pixels at 96 dots per inch; 0: not chosen
    unsigned int folded = 0;            ///< bit per panel of the tool area, the first one lowest
    bool is_wheel_turned = false;       ///< of the enlarged histogram: forward narrows
    int image_memory = 0;               ///< MiB, of the levels of all open images; 0: a part of the machine's memory
    int whole_folder = 256;             ///< MiB of files, up to which all pixels of a folder are read at once
    std::vector<std::string> archives;  ///< one line each, whatever is in it
    bool is_sent_anonymously = false;   ///< what was chosen last
    std::string archive_secret;         ///< of this installation, for what is sent anonymously; empty: none yet
    std::vector<std::string> recent;    ///< paths in UTF-8, the last opened first
};

inline constexpr std::size_t RECENT_MAX = 8;
inline constexpr std::size_t ARCHIVE_MAX = 50;
inline constexpr int DATABASE_VIEW_MAX = 4;       ///< the highest tab
inline constexpr int DATABASE_WIDTH_MAX = 4000;   ///< pixels at 96 dots per inch
inline constexpr int IMAGE_MEMORY_MAX = 1 << 22;  ///< MiB
inline constexpr unsigned int FOLDED_MAX = 0xFF;  ///< all bits that mean something

/** Puts a path at the front of the list; it stands there once. */
void Recent_Add(std::vector<std::string>& recent, const std::string& path);

/** @param ignored receives how many lines were not understood; may be null @return defaults for all that is missing */
Settings Settings_Parse(std::string_view text, int* ignored = nullptr);
std::string Settings_Text(const Settings& settings);

/** A file that is missing or cannot be read gives the defaults. @param ignored as above */
Settings Settings_Load(const std::filesystem::path& file, int* ignored = nullptr);
/** Writes beside the file and then replaces it in one step: it is never half written. Makes the folder.
 *  @return false: the file is as it was */
bool Settings_Save(const std::filesystem::path& file, const Settings& settings);

/** Moves and shrinks a place so that all of it lies in an area of the screen that is there now.
 *  @param area left, top, width and height of the screen without its bars */
Window_Place Place_Inside(const Window_Place& place, const Window_Place& area);

}  // namespace workbench
