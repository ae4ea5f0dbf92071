// Without a window system there are no histogram and database panels.
#include "c_interface/panel_work_of.h"

using namespace c_interface;

namespace {

constexpr char reason[] = "this panel needs a window system";

kit_status Refused(const char* function, kit_handle panel) {
    return Call(function, panel, [&] {
        Panel_Of_Handle(panel);
        throw Failure{KIT_ERROR_KIND, "the panel is no histogram"};
    });
}

}  // namespace

namespace c_interface {

std::unique_ptr<Panel_Work> Histogram_Work_Make() {
    throw Failure{KIT_ERROR_SYSTEM, reason};
}

std::unique_ptr<Panel_Work> Classes_Work_Make(int /*mode*/) {
    throw Failure{KIT_ERROR_SYSTEM, reason};
}

std::unique_ptr<Panel_Work> Files_Work_Make(int /*mode*/) {
    throw Failure{KIT_ERROR_SYSTEM, reason};
}

}  // namespace c_interface

extern "C" {

kit_status kit_histogram_read(kit_handle panel, kit_histogram* /*histogram*/, uint32_t* /*counts*/, uint32_t /*room*/,
                              uint32_t* /*needed*/) {
    return Refused("kit_histogram_read", panel);
}

kit_status kit_histogram_fit(kit_handle panel, uint32_t /*method*/, uint32_t /*most*/) {
    return Refused("kit_histogram_fit", panel);
}

kit_status kit_histogram_peaks(kit_handle panel, kit_peak* /*peaks*/, uint32_t /*room*/, uint32_t* /*needed*/) {
    return Refused("kit_histogram_peaks", panel);
}

kit_status kit_histogram_export(kit_handle panel, const char* /*path*/) {
    return Refused("kit_histogram_export", panel);
}

kit_status kit_histogram_ranges(kit_handle panel, const kit_range* /*ranges*/, uint32_t /*count*/) {
    return Refused("kit_histogram_ranges", panel);
}

}  // extern "C"
