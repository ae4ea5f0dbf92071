#include "workbench/model/label_map.h"

#include <algorithm>

namespace workbench {

Pixel_Rect Rect_Union(const Pixel_Rect& a, const Pixel_Rect& b) {
    if (a.Is_Empty()) {
        return b;
    }
    if (b.Is_Empty()) {
        return a;
    }
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}

Pixel_Rect Rect_Common(const Pixel_Rect& a, const Pixel_Rect& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
}

Label_Map::Label_Map(int map_width, int map_height, int map_slices)
    : width(map_width), height(map_height), slices(map_slices) {
    tags = decltype(tags)(Slice_Size() * static_cast<std::size_t>(slices));
}

std::span<std::uint8_t> Label_Map::Slice(int slice) {
    if (slice < 0 || slice >= slices) {
        return {};
    }
    return std::span(tags).subspan(Slice_Size() * static_cast<std::size_t>(slice), Slice_Size());
}

std::span<const std::uint8_t> Label_Map::Slice(int slice) const {
    if (slice < 0 || slice >= slices) {
        return {};
    }
    return std::span(tags).subspan(Slice_Size() * static_cast<std::size_t>(slice), Slice_Size());
}

std::uint8_t Label_Map::At(int x, int y, int slice) const {
    if (x < 0 || x >= width || y < 0 || y >= height || slice < 0 || slice >= slices) {
        return 0;
    }
    return Slice(slice)[static_cast<std::size_t>(y) * static_cast<std::size_t>(width) + static_cast<std::size_t>(x)];
}

std::array<std::uint64_t, TAG_MAX> Label_Map::Counts() const {
    // Four tables, because equal neighbours would wait for each other's addition.
    std::array<std::array<std::uint64_t, TAG_MAX>, 4> part{};
    const std::size_t whole = tags.size() / 4 * 4;
    for (std::size_t at = 0; at < whole; at += 4) {
        ++part[0][tags[at]];
        ++part[1][tags[at + 1]];
        ++part[2][tags[at + 2]];
        ++part[3][tags[at + 3]];
    }
    for (std::size_t at = whole; at < tags.size(); ++at) {
        ++part[0][tags[at]];
    }
    for (std::size_t tag = 0; tag < part[0].size(); ++tag) {
        part[0][tag] += part[1][tag] + part[2][tag] + part[3][tag];
    }
    return part[0];
}

int Label_Map::Highest_Tag() const {
    return tags.empty() ? 0 : *std::max_element(tags.begin(), tags.end());
}

}  // namespace workbench
