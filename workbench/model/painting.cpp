#include "workbench/model/painting.h"

#include <algorithm>
#include <cstdlib>
#include <map>
#include <utility>

namespace workbench {

Brush_Footprint::Brush_Footprint(const unsigned char* const* mask_rows, int radius) {
    if (mask_rows == nullptr) {
        return;
    }
    const int side = 2 * radius + 1;
    for (int y = 0; y < side; ++y) {
        const unsigned char* row = mask_rows[y];
        for (int x = 0; row != nullptr && x < side; ++x) {
            if (row[x] == 0) {
                continue;
            }
            const int first = x;
            while (x + 1 < side && row[x + 1] != 0) {
                ++x;
            }
            rows.push_back({y - radius, first - radius, x - radius});
        }
    }
}

std::size_t Brush_Footprint::Pixel_Nb() const {
    std::size_t sum = 0;
    for (const Row& row : rows) {
        sum += static_cast<std::size_t>(row.last - row.first + 1);
    }
    return sum;
}

bool Brush_Footprint::Covers(int x, int y) const {
    return std::ranges::any_of(rows, [&](const Row& row) { return row.y == y && x >= row.first && x <= row.last; });
}

std::vector<Outline_Edge> Brush_Outline(const Brush_Footprint& brush) {
    // By line and side (left or right, upper or lower), the pixels along it: neighbours on one line and side join.
    std::map<std::pair<int, bool>, std::vector<int>> upright;
    std::map<std::pair<int, bool>, std::vector<int>> level;
    for (const Brush_Footprint::Row& row : brush.Rows()) {
        upright[{row.first, true}].push_back(row.y);
        upright[{row.last + 1, false}].push_back(row.y);
        for (int x = row.first; x <= row.last; ++x) {
            if (!brush.Covers(x, row.y - 1)) {
                level[{row.y, true}].push_back(x);
            }
            if (!brush.Covers(x, row.y + 1)) {
                level[{row.y + 1, false}].push_back(x);
            }
        }
    }
    const auto join = [](const std::vector<int>& places, auto add) {
        for (std::size_t at = 0; at < places.size();) {
            std::size_t end = at + 1;
            while (end < places.size() && places[end] == places[end - 1] + 1) {
                ++end;
            }
            add(places[at], places[end - 1] + 1);
            at = end;
        }
    };
    std::vector<Outline_Edge> edges;
    for (const auto& [line, places] : upright) {
        const auto [x, is_first] = line;
        join(places, [&, x = x, is_first = is_first](int from, int to) {
            edges.push_back({x, from, x, to, is_first});
        });
    }
    for (const auto& [line, places] : level) {
        const auto [y, is_first] = line;
        join(places, [&, y = y, is_first = is_first](int from, int to) {
            edges.push_back({from, y, to, y, is_first});
        });
    }
    return edges;
}

Pixel_Rect Paint_Dab(const Paint_Target& target, const Brush_Footprint& brush, int x, int y, const Paint_Ink& ink) {
    Pixel_Rect touched;
    for (const Brush_Footprint::Row& row : brush.Rows()) {
        const int at_y = y + row.y;
        const int first = std::max(x + row.first, 0);
        const int last = std::min(x + row.last, target.width - 1);
        if (at_y < 0 || at_y >= target.height || first > last) {
            continue;
        }
        std::uint8_t* pixel = target.pixels.data() + static_cast<std::ptrdiff_t>(at_y) * target.width + first;
        for (int count = last - first + 1; count > 0; --count, ++pixel) {
            if (ink.locked[*pixel] == 0) {
                *pixel = ink.tag;
            }
        }
        touched = Rect_Union(touched, {first, at_y, last + 1, at_y + 1});
    }
    return touched;
}

Pixel_Rect Paint_Line(const Paint_Target& target, const Brush_Footprint& brush, int x0, int y0, int x1, int y1,
                      const Paint_Ink& ink) {
    const int dx = std::abs(x1 - x0);
    const int dy = -std::abs(y1 - y0);
    const int step_x = x0 < x1 ? 1 : -1;
    const int step_y = y0 < y1 ? 1 : -1;
    int error = dx + dy;
    Pixel_Rect touched;
    for (;;) {
        touched = Rect_Union(touched, Paint_Dab(target, brush, x0, y0, ink));
        if (x0 == x1 && y0 == y1) {
            return touched;
        }
        const int doubled = 2 * error;
        if (doubled >= dy) {
            error += dy;
            x0 += step_x;
        }
        if (doubled <= dx) {
            error += dx;
            y0 += step_y;
        }
    }
}

}  // namespace workbench
