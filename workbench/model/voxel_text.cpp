#include "workbench/model/voxel_text.h"

#include <cmath>
#include <cstddef>

#include "workbench/model/number_text.h"

namespace workbench {

namespace {

constexpr double PLACE_STEP = 0.1;  // mm

std::string Grey_Text(const volumes::Volume& volume, float grey) {
    if (std::isnan(grey)) {
        return "none";
    }
    return volume.color ? Number_Text_In_Steps(std::round(static_cast<double>(grey)), 1.0)
                        : Number_Text_In_Steps(static_cast<double>(grey), std::abs(volume.slope));
}

}  // namespace

std::string Voxel_Text(const Session& session, int x, int y, int slice, const std::string& tag_name) {
    if (x < 0 || x >= session.Width() || y < 0 || y >= session.Height() || slice < 0 || slice >= session.Slice_Nb()) {
        return {};
    }
    const volumes::Volume& volume = session.Image();
    const File_Voxel voxel = session.To_File(x, y, slice);
    std::string text =
        "(" + std::to_string(voxel.x) + ", " + std::to_string(voxel.y) + ", " + std::to_string(voxel.z) + ")   ";
    for (std::size_t axis = 0; axis < 3; ++axis) {
        const auto& row = volume.affine[axis];
        text += Number_Text_In_Steps(row[0] * voxel.x + row[1] * voxel.y + row[2] * voxel.z + row[3], PLACE_STEP) +
                (axis < 2 ? ", " : " mm");
    }
    text += "   grey " + Grey_Text(volume, session.Grey(x, y, slice));
    return text + "   TAG " + std::to_string(session.Labels().At(x, y, slice)) + " " + tag_name;
}

}  // namespace workbench
