// The seven panel classes as one.
#include "c_interface/image_objects.h"
#include "c_interface/panel.h"
#include "c_interface/panel_work_of.h"
#include "panels/tool_brush.h"
#include "panels/tool_marker.h"
#include "panels/tool_propagate.h"
#include "panels/tool_tag.h"

namespace c_interface {

namespace {

constexpr int TAG_OPTIONS =
    TAG_CHECK_SELECT | TAG_CHECK_LOCK | TAG_GREY_SELECTION | TAG_CHECK_ENABLE | TAG_GREY_DISABLED | TAG_THRESHOLD_MODE;

/** The propagate panel asks the host to carry the work on. */
int Propagate(void* from, void* to) {
    // Called by the panel, which is not to see an exception of ours.
    try {
        const Frame_Place before = Place_Of_Frame(static_cast<const Quorel_2D*>(from));
        const Frame_Place now = Place_Of_Frame(static_cast<const Quorel_2D*>(to));
        Event event;
        event.kind = KIT_EVENT_PROPAGATE;
        event.object = now.volume;
        event.index = now.slice;
        event.from = before.slice;
        return Session::The().Ask(event, 0);
    } catch (...) {
        return 0;
    }
}

class Propagate_Work : public Work_Of<Tool_Propagate> {
  public:
    Propagate_Work() { tool.Set(Propagate); }
};

}  // namespace

static_assert(KIT_TAG_CHECK_SELECT == TAG_CHECK_SELECT && KIT_TAG_CHECK_LOCK == TAG_CHECK_LOCK &&
              KIT_TAG_GREY_SELECTION == TAG_GREY_SELECTION && KIT_TAG_CHECK_ENABLE == TAG_CHECK_ENABLE &&
              KIT_TAG_GREY_DISABLED == TAG_GREY_DISABLED && KIT_TAG_THRESHOLDS == TAG_THRESHOLD_MODE);

std::unique_ptr<Panel_Work> Panel_Work_Make(std::uint32_t kind, std::int32_t option) {
    constexpr int dimension_bits = 0xF;
    constexpr int database_options = KIT_DATABASE_EDIT | KIT_DATABASE_ADD;
    const int dimension = option & dimension_bits;
    switch (kind) {
        case KIT_PANEL_TAG:
            Require((option & ~TAG_OPTIONS) == 0, KIT_ERROR_ARGUMENT, "option is no sum of KIT_TAG_ bits");
            return std::make_unique<Work_Of<Tool_Tag>>(
                static_cast<unsigned short>(option != 0 ? option : int{TAG_GREY_SELECTION}));
        case KIT_PANEL_MARKER:
            return std::make_unique<Work_Of<Tool_Marker>>();
        case KIT_PANEL_BRUSH:
            return std::make_unique<Work_Of<Tool_Brush>>();
        case KIT_PANEL_PROPAGATE:
            return std::make_unique<Propagate_Work>();
        case KIT_PANEL_HISTOGRAM:
            return Histogram_Work_Make();
        case KIT_PANEL_CLASSES:
            Require(dimension >= 1 && dimension <= 3 && (option & ~(dimension_bits | database_options)) == 0,
                    KIT_ERROR_ARGUMENT, "option is no dimension 1, 2 or 3 with KIT_DATABASE_ bits");
            return Classes_Work_Make(option);
        case KIT_PANEL_FILES:
            Require((option & ~database_options) == 0, KIT_ERROR_ARGUMENT, "option is no sum of KIT_DATABASE_ bits");
            return Files_Work_Make(option | 2);
        default:
            throw Failure{KIT_ERROR_ARGUMENT, "no such kind of panel"};
    }
}

}  // namespace c_interface
