#include "workbench/model/marker_table.h"

#include <algorithm>

namespace workbench {

Marker Marker_Table::Get(int index) const {
    return index >= 0 && index < MARKER_NB ? marker[static_cast<std::size_t>(index)] : Marker{};
}

bool Marker_Table::Set(int index, const Marker& value) {
    if (index < 0 || index >= MARKER_NB) {
        return false;
    }
    marker[static_cast<std::size_t>(index)] = value;
    return true;
}

int Marker_Table::Placed_Nb() const {
    return static_cast<int>(std::ranges::count_if(marker, &Marker::is_placed));
}

std::uint32_t Marker_Default_Color(int index) {
    constexpr std::array<std::uint32_t, MARKER_NB> colors = {0x4B4BFF, 0x3CC8FF, 0x5ADC5A, 0xFFC83C,
                                                             0xFF6EB4, 0xC8FF5A, 0x78A0FF, 0xE6E6E6};
    return colors[static_cast<std::size_t>(index) % colors.size()];
}

}  // namespace workbench
