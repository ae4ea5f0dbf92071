/** Where two volumes of labels on one grid differ. */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace workbench {

enum class Label_Difference : std::uint8_t {
    None,
    Only_Here,   ///< background there
    Only_There,  ///< background here
    Other_Tag,   ///< both have a TAG, and not the same
};
inline constexpr std::size_t DIFFERENCE_NB = 4;

constexpr Label_Difference Difference_Of(std::uint8_t here, std::uint8_t there) {
    if (here == there) {
        return Label_Difference::None;
    }
    return there == 0  ? Label_Difference::Only_Here
           : here == 0 ? Label_Difference::Only_There
                       : Label_Difference::Other_Tag;
}

/** 0x00RRGGBB; apart also for those who cannot tell red from green. */
inline constexpr std::array<std::uint32_t, DIFFERENCE_NB> DIFFERENCE_COLOR = {0, 0xFFB000, 0x3D9BFF, 0xFF40C0};
const char* Difference_Text(Label_Difference difference);

/** Voxels of each kind. @param there as many as here */
std::array<std::uint64_t, DIFFERENCE_NB> Differences_Count(std::span<const std::uint8_t> here,
                                                           std::span<const std::uint8_t> there);
/** "12 voxels only here, 3 only in the file, 1 of another TAG"; "the labels are the same". */
std::string Differences_Text(const std::array<std::uint64_t, DIFFERENCE_NB>& counts);

}  // namespace workbench
