#include "panels/brush_mask.h"

#include <algorithm>
#include <cstring>

namespace {

/** No disc reaches farther: its square fits a signed 16-bit number. */
constexpr int DISC_REACH_MAX = 181;
static_assert(DISC_REACH_MAX * DISC_REACH_MAX <= INT16_MAX && (DISC_REACH_MAX + 1) * (DISC_REACH_MAX + 1) > INT16_MAX);

int Mask_Radius(Brush_Mask_Rows rows) {
    return static_cast<int>(rows.size() / 2);
}

}  // namespace

bool Brush_Mask_Complete(Brush_Mask_Rows rows) {
    return rows.size() % 2 == 1 && std::none_of(rows.begin(), rows.end(), [](auto* row) { return row == nullptr; });
}

void Brush_Mask_Clear(Brush_Mask_Rows rows) {
    for (unsigned char* row : rows) {
        std::memset(row, 0, rows.size());
    }
}

void Brush_Mask_Fill(Brush_Mask_Rows rows, std::uint16_t size) {
    const int radius = Mask_Radius(rows);
    const auto row_at = [rows](int y) { return rows[static_cast<std::size_t>(y)]; };
    if (size < BRUSH_DISC_MIN) {
        row_at(radius)[radius] = 1;
        return;
    }
    const int square = Brush_Mask_Square(size);
    int reach = std::min(radius, DISC_REACH_MAX);  // columns to either side; shrinks from row to row
    for (int dy = 0; dy <= radius; dy++) {
        while (reach >= 0 && reach * reach + dy * dy >= square) {
            reach--;
        }
        if (reach < 0) {
            return;
        }
        const auto width = static_cast<std::size_t>(2 * reach + 1);
        std::memset(row_at(radius - dy) + radius - reach, 1, width);
        std::memset(row_at(radius + dy) + radius - reach, 1, width);
    }
}
