/** A window with the plot of the enlarged window alone: no controls, everything readable. */
#pragma once

#include <algorithm>
#include <cmath>

#include "histogram/blow_layout.h"
#include "histogram/plot_columns.h"
#include "histogram/tool_histo_peak.h"
#include "histogram/tool_histo_plot.h"
#include "host/kit_graph.h"
#include "tests/histogram/histo_scene.h"
#include "tests/support/panel_stage.h"

struct Plot_Stage_Look {
    int width = 640;
    int height = 400;
    short font_scale = 13;
    int top_reserved = 0;
};

class Plot_Stage {
  public:
    explicit Plot_Stage(const Plot_Stage_Look& look = {}) : stage(look.width, look.height, Window_Axis::Up) {
        scene.box = stage.Host_Box(1, 1, look.width - 2, look.height - 2);
        scene.box.Set_Color(32, 34, 38);
        scene.box.font_scale = look.font_scale;
        scene.box.font_name = "Arial";
        scene.box.border = 2;
        scene.box.style = STYLE_FRAMED_BOX;
        scene.box.Init(stage.Window());
        std::snprintf(panel.x_label, sizeof panel.x_label, "Pixel Intensity");
        std::snprintf(panel.y_label, sizeof panel.y_label, "Nb of Pixels");
        const Plot_Area area = Plot_Window_Area(scene.box, panel.x_label, panel.y_label, look.top_reserved);
        scene.area = {area.left, area.bottom, area.width, area.height};
        scene.font_height = look.font_scale;
        const int free_above = scene.box.y + scene.box.height - look.top_reserved - (area.bottom + area.height);
        scene.box.font_scale =
            static_cast<short>(Blow_Axis_Font(look.font_scale, area.left - scene.box.x, area.height + 2 * free_above));
    }
    ~Plot_Stage() {
        Histo_Plot_Marks_Forget();
        Histo_Plot_Picture_Free();
    }
    Plot_Stage(const Plot_Stage&) = delete;
    Plot_Stage& operator=(const Plot_Stage&) = delete;

    void Counts_Give(Scene_Grid grid, const std::vector<std::uint32_t>& counts) {
        Histo_Record_Give(panel, grid, counts);
        Full_View();
    }
    void Full_View() {
        const Histo_Record& record = *panel.data->record;
        const float span = static_cast<float>(record.nb_bins - 1) * record.bin_width;
        scene.x = {record.origin - 0.05F * span, record.origin + 1.05F * span};
        scene.y = {-0.1F * static_cast<float>(record.max_count), 1.1F * static_cast<float>(record.max_count)};
    }
    /** Appends a fitted peak with its curve. */
    Histo_Peak& Peak_Give(double centre, double amplitude, double width) {
        const int nb = panel.data->record->nb_bins;
        Histo_Peak* peak = Peak_Make(PEAK_GAUSS, true);
        (*peak->param)[PEAK_CENTRE] = centre;
        (*peak->param)[PEAK_AMPLITUDE] = amplitude;
        (*peak->param)[PEAK_WIDTH] = width;
        peak->fct_value = Peak_Value;
        peak->nb_pts = nb;
        peak->curve = new float[static_cast<std::size_t>(nb)];
        for (int bin = 0; bin < nb; ++bin) {
            peak->curve[bin] = static_cast<float>(Peak_Value(PEAK_GAUSS, bin, *peak->param));
        }
        Append(peak);
        return *peak;
    }
    Histo_Peak& Segment_Give(int centre, int first, int last) {
        Histo_Peak* peak = Peak_Make(PEAK_SEGMENT, false);
        (*peak->param)[PEAK_CENTRE] = centre;
        (*peak->param)[SEGMENT_FIRST] = first;
        (*peak->param)[SEGMENT_LAST] = last;
        Append(peak);
        return *peak;
    }
    void Filtered_Give() {
        const Histo_Record& record = *panel.data->record;
        panel.data->curve_nb = record.nb_bins;
        panel.data->filtered = new double[record.nb_bins];
        for (int bin = 0; bin < record.nb_bins; ++bin) {
            const int left = std::max(bin - 2, 0);
            const int right = std::min<int>(bin + 2, record.nb_bins - 1);
            panel.data->filtered[bin] =
                (static_cast<double>(record.counts[left]) + record.counts[bin] + record.counts[right]) / 3.0;
        }
    }
    void Range_Give(int tag, float least, float most) {
        panel.range_tag[panel.range_nb] = static_cast<std::uint16_t>(tag);
        panel.range_min[panel.range_nb] = least;
        panel.range_max[panel.range_nb] = most;
        ++panel.range_nb;
    }
    int Draw() {
        Window_Buffer_Begin(stage.Window());
        scene.box.Draw();
        Histo_Plot_Marks_Forget();
        const int result = Histo_Plot_Draw(panel, scene);
        Window_Buffer_End(stage.Window());
        return result;
    }
    std::vector<std::uint32_t> Read() const { return stage.Read(); }
    /** Index in Read of a pixel of the plot area: columns from its left, rows from its bottom edge. */
    std::size_t At(int column, int row) const { return stage.Index(scene.area.x + column, scene.area.y + row); }

    Histo_Scene host;
    Panel_Stage stage;
    Tool_Histo panel;
    Histo_Plot_Scene scene;

  private:
    void Append(Histo_Peak* peak) {
        Histo_Peak* tail = panel.data->peak_first;
        while (tail != nullptr && tail->next != nullptr) {
            tail = tail->next;
        }
        peak->prev = tail;
        (tail != nullptr ? tail->next : panel.data->peak_first) = peak;
        ++panel.data->peak_nb;
    }
};
