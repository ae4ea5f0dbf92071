/** The window of the peak analysis: starts a fit, shows the peaks as a table, tells how the fit went, and hands the
 * peaks on as TAG bands. */
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/kit_widgets.h"
#include "workbench/analysis/fit_log.h"
#include "workbench/analysis/peak_table.h"
#include "workbench/analysis/repeatable_fit.h"
#include "workbench/look.h"

/** Grey levels that a peak claims. */
struct Peak_Band {
    double from = 0.0;
    double to = 0.0;
};

/** What the window needs of the application. */
struct Analysis_Host {
    std::function<Tool_Histo*()> panel;   ///< the histogram panel; null when there is none
    std::function<void()> peaks_changed;  ///< the panel and the enlarged window must be painted anew
    std::function<void(const std::vector<Peak_Band>&)>
        bands_take;  ///< sets the TAGs' thresholds, as one step that can be undone
};

class Analysis_Window {
  public:
    Analysis_Window(Look& application_look, Analysis_Host application);
    ~Analysis_Window();
    Analysis_Window(const Analysis_Window&) = delete;
    Analysis_Window& operator=(const Analysis_Window&) = delete;

    /** Shows the window, or brings it to the front. */
    void Open(HWND owner);
    void Close();
    bool Is_Open() const { return window != nullptr; }
    /** Fits Gaussians; the same data gives the same peaks. */
    void Fit_Gaussian();
    /** Cuts into at most `peaks` segments. */
    void Fit_Derivative(int peaks);
    /** Sets the TAG bands from the peaks found. */
    void Bands_Hand_On();
    /** Puts the table on the clipboard as text. @return false when the clipboard is not to be had */
    bool Copy();
    const Peak_Table& Table() const { return table; }
    const Fit_Log& Log() const { return log; }

  private:
    static LRESULT CALLBACK Procedure(HWND of_window, UINT message, WPARAM wparam, LPARAM lparam);
    LRESULT Handle(UINT message, WPARAM wparam, LPARAM lparam);
    static void Receive(void* context, HWND of_window, int level, const char* text);
    void Lay_Out();
    void Paint();
    void Paint_Table(HDC dc, RECT area) const;
    void Log_Scroll(int lines);
    void Paint_Log(HDC dc, RECT area) const;
    void Pointer_Take(LPARAM lparam, bool on_screen) const;
    void Press(int up_down);
    template <class Fit>
    void Analyse(Fit fit);
    void Table_Make();

    Look& look;
    Analysis_Host host;
    Repeatable_Fit repeatable_fit;
    HWND window = nullptr;
    Buttons gauss_button;
    Buttons derivative_button;
    Buttons bands_button;
    Buttons copy_button;
    Selects peaks_list;
    Peak_Table table;
    Fit_Log log;
    std::vector<std::string> log_lines;
    int log_first = 0;  // first line shown
};
