/** The window of the peak analysis: starts a fit, shows the peaks as a table, tells how the fit went, and hands the
 * peaks on as TAG bands. */
#pragma once

#include <array>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "base/wheel_remainder.h"
#include "host/kit_widgets.h"
#include "workbench/analysis/fit_log.h"
#include "workbench/analysis/peak_table.h"
#include "workbench/look.h"
#include "workbench/model/settings.h"

class Tool_Histo;

namespace workbench {

struct Accessible_Part;
struct Accessible_Source;

/** What the window needs of the application. */
struct Analysis_Host {
    std::function<Tool_Histo*()> panel;   ///< the histogram panel; null when there is none
    std::function<void()> peaks_changed;  ///< the panel and the enlarged window must be painted anew
    std::function<void(const std::vector<Peak_Row>&)>
        bands_take;                            ///< asks which TAG gets which peak, and sets the TAGs' thresholds
    std::function<void(const wchar_t*)> tell;  ///< a word for the user on what became of his wish
    std::function<std::string()> source;       ///< what the panel's histogram is made of now, UTF-8
    std::function<double()> grey_unit;         ///< what the panel's grey levels are to be multiplied by
    std::function<void(const std::string&)> table_save;  ///< asks for a file and writes the full table
    std::function<std::string()> table_source;           ///< lines that name volume and frames in the full table
};

class Analysis_Window {
  public:
    Analysis_Window(Look& application_look, Analysis_Host application);
    ~Analysis_Window();
    Analysis_Window(const Analysis_Window&) = delete;
    Analysis_Window& operator=(const Analysis_Window&) = delete;

    /** Shows the window, or brings it to the front. */
    void Open(HWND owner);
    /** Where it opens. @param last as it stood before; without width: beside the owner
     *  @param tools width of what at the owner's left must stay free */
    void Place_Set(const Window_Place& last, int tools);
    /** Where it stands, or stood last. */
    Window_Place Place_Now() const;
    void Close();
    bool Is_Open() const { return window != nullptr; }
    HWND Window() const { return window; }
    /** Colours or scale have changed. */
    void Look_Changed();
    /** Looks whether the panel's histogram is still the one that the peaks were found in. */
    void Source_Refresh();
    /** The peaks are those of another selection. */
    bool Is_Stale() const { return is_stale; }
    /** Fits Gaussians; the same data gives the same peaks. */
    void Fit_Gaussian();
    /** Cuts into at most `peaks` segments. */
    void Fit_Derivative(int peaks);
    /** Sets the TAG bands from the peaks found; asks first when they are those of another selection. */
    void Bands_Hand_On();
    /** Puts the table on the clipboard as text. @return false when the clipboard is not to be had */
    bool Copy() { return Copy_Text(Peak_Table_Text(table)); }
    /** Everything that is known of the last analysis, as a text. */
    std::string Full_Text() const { return full_text; }
    const Peak_Table& Table() const { return table; }
    const Fit_Log& Log() const { return log; }

  private:
    static LRESULT CALLBACK Procedure(HWND of_window, UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT On_Message(UINT message, WPARAM wparam, LPARAM lparam);
    static void Receive(void* context, HWND of_window, int level, const char* text);
    void Lay_Out();
    /** 2 where one row would cut the captions. */
    int Button_Rows() const;
    int Buttons_Height() const;
    void Paint();
    RECT Table_Area() const;
    int Table_Rows_Shown() const;
    void Table_Scroll(int rows);
    std::wstring Rows_Text() const;
    bool Copy_Text(const std::string& utf8);
    void Copied_Tell(bool is_done);
    void Full_Save();
    std::array<Buttons*, 6> All_Buttons();
    void Paint_Table(HDC dc, RECT area) const;
    void Log_Scroll(int lines);
    /** A row as one line, every cell behind its column's title. */
    static std::wstring Row_Text(const Peak_Row& row);
    std::wstring Quality_Line() const;
    // analysis_accessible.cpp
    /** What the window tells programs that read the screen aloud. */
    std::shared_ptr<Accessible_Source> Accessible_Make();
    std::vector<Accessible_Part> Accessible_Parts();
    void Paint_Log(HDC dc, RECT area) const;
    void Pointer_Take(LPARAM lparam, bool on_screen) const;
    void Press(int up_down);
    template <class Fit>
    void Analyse(Fit fit);
    void Table_Make();

    Look& look;
    Analysis_Host host;
    HWND window = nullptr;
    Window_Place place_last;
    int tools_width = 0;
    Buttons gauss_button;
    Buttons derivative_button;
    Buttons bands_button;
    Buttons copy_button;
    Buttons copy_full_button;
    Buttons save_full_button;
    Selects peaks_list;
    Peak_Table table;
    std::string full_text;  // of the histogram that the table was made of
    std::string source;     // what that was
    bool is_stale = false;
    bool is_analysed = false;  // at least once
    Fit_Log log;
    std::vector<std::string> log_lines;
    int log_first = 0;  // first line shown
    Wheel_Remainder wheel{3};
    int table_first = 0;                            // first row shown
    std::shared_ptr<Accessible_Source> accessible;  // while the window is open
    bool is_watched = false;                        // the library notes what it paints, from the first question on
};

}  // namespace workbench
