#include "workbench/model/painting.h"

#include <algorithm>
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

Pixel_Rect Brush_Footprint::Box() const {
    Pixel_Rect box;
    for (const Row& row : rows) {
        box = Rect_Union(box, {row.first, row.y, row.last + 1, row.y + 1});
    }
    return box;
}

std::vector<Outline_Edge> Brush_Outline(const Brush_Footprint& brush) {
    // By line and side (left or right, upper or lower), the pixels along it: neighbours on one line and side join.
    std::map<std::pair<int, bool>, std::vector<int>> upright;
    std::map<std::pair<int, bool>, std::vector<int>> level;
    // Which pixels are covered, with one free pixel all around: footprints of many pieces are looked up often.
    const Pixel_Rect box = brush.Box();
    const int width = box.right - box.left + 2;
    std::vector<bool> covered(static_cast<std::size_t>(width) * static_cast<std::size_t>(box.bottom - box.top + 2));
    const auto at = [&](int x, int y) {
        return static_cast<std::size_t>(y - box.top + 1) * static_cast<std::size_t>(width) +
               static_cast<std::size_t>(x - box.left + 1);
    };
    for (const Brush_Footprint::Row& row : brush.Rows()) {
        for (int x = row.first; x <= row.last; ++x) {
            covered[at(x, row.y)] = true;
        }
    }
    for (const Brush_Footprint::Row& row : brush.Rows()) {
        upright[{row.first, true}].push_back(row.y);
        upright[{row.last + 1, false}].push_back(row.y);
        for (int x = row.first; x <= row.last; ++x) {
            if (!covered[at(x, row.y - 1)]) {
                level[{row.y, true}].push_back(x);
            }
            if (!covered[at(x, row.y + 1)]) {
                level[{row.y + 1, false}].push_back(x);
            }
        }
    }
    const auto join = [](const std::vector<int>& places, auto add) {
        for (std::size_t begin = 0; begin < places.size();) {
            std::size_t end = begin + 1;
            while (end < places.size() && places[end] == places[end - 1] + 1) {
                ++end;
            }
            add(places[begin], places[end - 1] + 1);
            begin = end;
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

}  // namespace workbench
