/** The data of a histogram panel with given counts, and a record of what is reported: for tests of the peak analysis.
 */
#pragma once

#include <algorithm>
#include <string>
#include <vector>

#include "histogram/tool_histo.h"
#include "histogram/tool_histo_fit.h"
#include "histogram/tool_histo_peak.h"
#include "kits/common/messages.h"

struct Reported {
    int level = 0;
    std::string text;
};

/** As much of a panel as an analysis has to do with: it builds where there are no windows. */
struct Analysed_Panel {
    std::shared_ptr<Histo_Data> data = std::make_shared<Histo_Data>();
    unsigned char color_component = 0;

    int Fit_Derivative(unsigned char max_peak) { return Histo_Fit_Derivative(data, color_component, max_peak); }
    int Fit_Gaussian() { return Histo_Fit_Gaussian(data, color_component); }
};

class Analysis_Panel {
  public:
    explicit Analysis_Panel(const std::vector<std::uint32_t>& counts) {
        Counts_Set(counts);
        Message_Receiver_Add(&Analysis_Panel::Receive, this, true);
    }
    ~Analysis_Panel() { Message_Receiver_Remove(&Analysis_Panel::Receive, this); }
    Analysis_Panel(const Analysis_Panel&) = delete;
    Analysis_Panel& operator=(const Analysis_Panel&) = delete;

    void Counts_Set(const std::vector<std::uint32_t>& counts) {
        Histo_Data& data = *panel.data;
        data.Record_Free();
        data.record = new Histo_Record();
        data.record->nb_bins = static_cast<std::uint16_t>(counts.size());
        data.record->bin_width = 1.0F;
        data.record->counts = new std::uint32_t[counts.size()];
        std::copy(counts.begin(), counts.end(), data.record->counts);
    }
    Histo_Data& Data() { return *panel.data; }
    std::vector<const Histo_Peak*> Peaks() const {
        std::vector<const Histo_Peak*> peaks;
        for (const Histo_Peak* peak = panel.data->peak_first; peak != nullptr; peak = peak->next) {
            peaks.push_back(peak);
        }
        return peaks;
    }
    /** Texts of one level. */
    std::vector<std::string> Texts(int level) const {
        std::vector<std::string> texts;
        for (const Reported& message : reported) {
            if (message.level == level) {
                texts.push_back(message.text);
            }
        }
        return texts;
    }
    bool Has(int level, const std::string& text) const {
        for (const Reported& message : reported) {
            if (message.level == level && message.text == text) {
                return true;
            }
        }
        return false;
    }
    bool Has_Part(int level, const std::string& part) const {
        for (const Reported& message : reported) {
            if (message.level == level && message.text.find(part) != std::string::npos) {
                return true;
            }
        }
        return false;
    }

    Analysed_Panel panel;
    std::vector<Reported> reported;

  private:
    static void Receive(void* context, HWND /*window*/, int level, const char* text) {
        static_cast<Analysis_Panel*>(context)->reported.push_back({level, text});
    }
};
