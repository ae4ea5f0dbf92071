#include "workbench/model/wheel_notches.h"

#include <cstddef>
#include <cstdlib>

#include "base/wheel_remainder.h"

namespace workbench {

std::vector<int> Wheel_Notches(int delta, bool is_turned) {
    const int wanted = is_turned ? -delta : delta;
    const int notch = wanted < 0 ? -WHEEL_NOTCH : WHEEL_NOTCH;
    std::vector<int> notches(static_cast<std::size_t>(std::abs(wanted) / WHEEL_NOTCH), notch);
    if (wanted % WHEEL_NOTCH != 0) {
        notches.push_back(wanted % WHEEL_NOTCH);
    }
    return notches;
}

}  // namespace workbench
