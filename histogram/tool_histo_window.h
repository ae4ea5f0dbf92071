/** The enlarged histogram window as the panel sees it. At most one exists in the process; it shows the panel that
 * opened it. */
#pragma once

class Tool_Histo;

/** Posted to the window when its panel's data changed. */
inline constexpr unsigned int HISTO_WINDOW_DATA = 0x400;
/** Posted when only the cursor moved. */
inline constexpr unsigned int HISTO_WINDOW_CURSOR = 0x401;

/** Registers the window class when this is the first living panel. */
void Histo_Window_Panel_Born();
/** Closes the window (it belongs to all panels, so whichever it shows); after the last living panel the class is
 * unregistered and its background brush deleted. The window never touches `panel` again. */
void Histo_Window_Panel_Gone(const Tool_Histo* panel);

/** True while the window exists. */
bool Has_Histo_Window();
/** Shows and raises the window, or creates it for this panel: where it stood last, owned by whom the host names. */
void Histo_Window_Open(Tool_Histo& panel);
/** The window was moved or sized: tells the host where it stands now, unless it is the smallest or the largest. */
void Histo_Window_Place_Keep();
/** Posts HISTO_WINDOW_DATA or HISTO_WINDOW_CURSOR to the window, if it exists. */
void Histo_Window_Notify(unsigned int message);
