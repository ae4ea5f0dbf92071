#include "workbench/tools/tool.h"

#include <algorithm>
#include <cmath>

namespace workbench {

namespace {

/** Far outside is far enough: what follows must not leave the numbers. */
constexpr double FARTHEST = 1.0e6;

int Pixel_Of(double at) {
    return static_cast<int>(std::floor(std::clamp(at, -FARTHEST, FARTHEST)));
}

}  // namespace

int Tool_Spot::X() const {
    return Pixel_Of(at.x);
}

int Tool_Spot::Y() const {
    return Pixel_Of(at.y);
}

Shown_Voxel Tool_Spot::Voxel() const {
    return cut.geometry.To_Voxel(
        {std::clamp(X(), 0, cut.geometry.Width() - 1), std::clamp(Y(), 0, cut.geometry.Height() - 1), cut.depth});
}

}  // namespace workbench
