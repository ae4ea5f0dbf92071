#include "workbench/model/label_difference.h"

#include <algorithm>

namespace workbench {

const char* Difference_Text(Label_Difference difference) {
    switch (difference) {
        case Label_Difference::Only_Here:
            return "Only here";
        case Label_Difference::Only_There:
            return "Only in the file";
        case Label_Difference::Other_Tag:
            return "Another TAG";
        case Label_Difference::None:
            break;
    }
    return "";
}

std::array<std::uint64_t, DIFFERENCE_NB> Differences_Count(std::span<const std::uint8_t> here,
                                                           std::span<const std::uint8_t> there) {
    std::array<std::uint64_t, DIFFERENCE_NB> counts{};
    const std::size_t size = std::min(here.size(), there.size());
    for (std::size_t at = 0; at < size; ++at) {
        ++counts[static_cast<std::size_t>(Difference_Of(here[at], there[at]))];
    }
    return counts;
}

std::string Differences_Text(const std::array<std::uint64_t, DIFFERENCE_NB>& counts) {
    const auto nb = [&](Label_Difference of) { return counts[static_cast<std::size_t>(of)]; };
    const std::uint64_t here = nb(Label_Difference::Only_Here);
    if (here + nb(Label_Difference::Only_There) + nb(Label_Difference::Other_Tag) == 0) {
        return "the labels are the same";
    }
    return std::to_string(here) + (here == 1 ? " voxel" : " voxels") + " only here, " +
           std::to_string(nb(Label_Difference::Only_There)) + " only in the file, " +
           std::to_string(nb(Label_Difference::Other_Tag)) + " of another TAG";
}

}  // namespace workbench
