// Makes one panel of every kind and asks each for its height: enough to see that headers, import libraries and DLLs of
// an installation fit together.
#include <windows.h>

#include <cstdio>

#include "database/tool_db_class.h"
#include "database/tool_db_file.h"
#include "histogram/tool_histo.h"
#include "kits/common/messages.h"
#include "kits/dataset/dataset_host.h"
#include "kits/widgets/widgets_host.h"
#include "panels/tool_brush.h"
#include "panels/tool_marker.h"
#include "panels/tool_propagate.h"
#include "panels/tool_tag.h"
#include "panels/version_export.h"

int main() {
    Variable_Define_Scalar("$INTERFACE_SPACE_DIM", VARIABLE_SIGNED_16, 4);
    Variable_Define_Scalar("$INTERFACE_BORDER_DIM", VARIABLE_SIGNED_16, 1);
    Variable_Define_Scalar("$INTERFACE_BUTTON_DIM_SML", VARIABLE_SIGNED_16, 20);
    Tool_Tag tags(0);
    Tool_Marker markers;
    Tool_Brush brushes;
    Tool_Propagate propagate;
    Tool_Histo histogram;
    Tool_DB_Class classes(2);
    Tool_DB_File files(2);
    std::printf("tags %d, markers %d, brushes %d, propagate %d, histogram %d, classes %d, files %d\n", tags.Height(4),
                markers.Height(2), brushes.Height(), propagate.Height(), histogram.Height(150), classes.Height(10),
                files.Height(10));
    return classes.Height(10) == 20 + 2 * (4 + 90 + 1) ? 0 : 1;
}
