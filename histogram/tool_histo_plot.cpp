#include "histogram/tool_histo_plot.h"

int Histo_Plot_Draw(const Tool_Histo& /*panel*/, const Histo_Plot_Scene& /*scene*/) {
    return 0;
}
int Histo_Plot_Cursor(Tool_Histo& /*panel*/, const Histo_Plot_Scene& /*scene*/) {
    return 0;
}
void Histo_Plot_Marks_Forget() {}
void Local_Drag_Draw(const Histo_Plot_Scene& /*scene*/, const Blow_Drag& /*drag*/) {}
void Local_Drag_Clear(const Histo_Plot_Scene& /*scene*/) {}
