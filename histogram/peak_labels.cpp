#include "histogram/peak_labels.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <numeric>

namespace {

constexpr int LEVELS_UP = 8;       // lines of text that a label may rise
constexpr int LEVELS_DOWN = 3;     // or sink
constexpr int COVER_PERCENT = 25;  // of the plot area that labels may hide

struct Label_Corners {
    int left;
    int bottom;
    int right;
    int top;
};

bool Collide(const Label_Corners& a, const Label_Corners& b) {
    return a.left < b.right + PEAK_LABEL_APART && b.left < a.right + PEAK_LABEL_APART && a.bottom < b.top &&
           b.bottom < a.top;
}

class Label_Placer {
  public:
    Label_Placer(int area_width, int area_height) : width(area_width), height(area_height) {}

    Peak_Label_Place Place(const Peak_Label_Request& request) {
        const bool in_view = request.column >= 0 && request.column < width && request.row >= 0;
        if (!in_view || request.width <= 0 || request.height <= 0 || request.width > width || request.height > height) {
            return {};
        }
        const auto pixels = static_cast<std::int64_t>(request.width) * request.height;
        if ((covered + pixels) * 100 > static_cast<std::int64_t>(width) * height * COVER_PERCENT) {
            return {};
        }
        const int start = std::min(request.row + PEAK_LABEL_GAP, height - request.height);
        const int line = request.height + 1;
        for (int level = 0; level <= LEVELS_UP; ++level) {
            if (const auto place = Try_Line(request, start + level * line); place.shown) {
                return place;
            }
        }
        for (int level = 1; level <= LEVELS_DOWN; ++level) {
            if (const auto place = Try_Line(request, start - level * line); place.shown) {
                return place;
            }
        }
        return {};
    }

  private:
    Peak_Label_Place Try_Line(const Peak_Label_Request& request, int bottom) {
        if (bottom < 0 || bottom + request.height > height) {
            return {};
        }
        const int middle = request.column - request.width / 2;
        // Aside as far as the label still stands over its peak's column.
        const int aside = request.width / 2;
        for (const int shift : std::array{0, -aside / 2, aside / 2, -aside, aside}) {
            const int left = std::clamp(middle + shift, 0, width - request.width);
            const Label_Corners wanted = {left, bottom, left + request.width, bottom + request.height};
            if (std::none_of(taken.begin(), taken.end(), [&](const auto& other) { return Collide(wanted, other); })) {
                taken.push_back(wanted);
                covered += static_cast<std::int64_t>(request.width) * request.height;
                return {true, left, bottom};
            }
        }
        return {};
    }

    int width;
    int height;
    std::int64_t covered = 0;  // pixels under labels
    std::vector<Label_Corners> taken;
};

}  // namespace

std::vector<Peak_Label_Place> Peak_Labels_Place(std::span<const Peak_Label_Request> requests, int area_width,
                                                int area_height) {
    std::vector<Peak_Label_Place> places(requests.size());
    std::vector<std::size_t> order(requests.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::stable_sort(order.begin(), order.end(),
                     [&](std::size_t a, std::size_t b) { return requests[a].row > requests[b].row; });
    Label_Placer placer(area_width, area_height);
    for (const std::size_t index : order) {
        places[index] = placer.Place(requests[index]);
    }
    return places;
}
