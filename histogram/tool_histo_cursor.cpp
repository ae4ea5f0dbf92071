#include "histogram/tool_histo_cursor.h"

#include <algorithm>

#include "histogram/histo_colors.h"
#include "histogram/plot_scale.h"
#include "histogram/tool_histo.h"
#include "host/kit_dataset.h"
#include "panels/protocol/host_variables.h"

Histo_Cursor_Bin Histo_Cursor_Bin_Find(const Tool_Histo& panel) {
    static Cached_Variable<Quorel_2D*> frame_over("$FRAME_OVR");
    static Cached_Variable<float*> mouse_position("$MOUSE_FRM");
    Histo_Cursor_Bin found;
    Quorel_2D* object = frame_over.Value_Or(nullptr);
    const float* position = mouse_position.Value_Or(nullptr);
    if (object == nullptr || object->frame == nullptr || position == nullptr) {
        return found;
    }
    const int sample = object->frame->Sample(position, object->slice);
    if (sample >= SAMPLE_OUTSIDE) {
        found.result = Histo_Cursor_Result::Outside;
        return found;
    }
    const Histo_Record& record = *panel.data->record;
    found.result = Histo_Cursor_Result::On_Bin;
    if (object->frame->color) {
        const int level = Histo_Sample_Level(sample, panel.color_component);
        found.level = static_cast<float>(level);
        found.bin = std::clamp(level, 0, std::max(record.nb_bins - 1, 0));
    } else {
        found.level = Fct_GLI_2_Float(object, sample);
        found.bin = Plot_Scale({}, {record.nb_bins, record.origin, record.bin_width}, 0.0F).Level_To_Bin(found.level);
    }
    return found;
}
