#include "workbench/model/contact_sheet.h"

#include <algorithm>
#include <cmath>

#include "workbench/model/slice_render.h"
#include "workbench/model/view_geometry.h"

namespace workbench {

namespace {

constexpr int GAP = 4;            // between slices, and around everything
constexpr int LEAST_WIDTH = 320;  // names of the list have room below a single small slice
constexpr double ASPECT_MOST = 64.0;

struct Grid {
    int columns = 1;
    int rows = 1;
    int width = 1;  ///< of a slice
    int height = 1;
};

Grid Grid_Of(const Sheet_Request& request) {
    // Pixels become square by making the shorter side of them longer: no line of the slice is left out.
    const double aspect = std::clamp(request.pixel_aspect, 1.0 / ASPECT_MOST, ASPECT_MOST);
    const double width = request.slice_width * std::max(1.0, 1.0 / aspect);
    const double height = request.slice_height * std::max(1.0, aspect);
    Grid grid;
    const double wanted = std::sqrt(request.slice_nb * height * 4.0 / (width * 3.0));
    grid.columns = std::clamp(static_cast<int>(std::lround(std::min(wanted, 1e6))), 1, request.slice_nb);
    grid.rows = (request.slice_nb + grid.columns - 1) / grid.columns;
    const auto share = [](int nb, double side) { return (SHEET_MOST - GAP * (nb + 1.0)) / (nb * side); };
    const double least = std::max(std::min({1.0, share(grid.columns, width), share(grid.rows, height)}), 0.0);
    grid.width = std::max(static_cast<int>(width * least), 1);
    grid.height = std::max(static_cast<int>(height * least), 1);
    return grid;
}

}  // namespace

Sheet_Layout Sheet_Layout_Make(const Sheet_Request& request) {
    const Grid grid = Grid_Of(request);
    Sheet_Layout sheet;
    sheet.width = std::max(GAP + grid.columns * (grid.width + GAP), LEAST_WIDTH);
    for (int at = 0; at < request.slice_nb; ++at) {
        const int left = GAP + at % grid.columns * (grid.width + GAP);
        const int top = GAP + at / grid.columns * (grid.height + GAP);
        sheet.slices.push_back({left, top, left + grid.width, top + grid.height});
    }
    int left = GAP;
    int top = GAP + grid.rows * (grid.height + GAP);
    const int side = std::max(request.line_height - GAP, 1);
    for (const int name_width : request.entry_width) {
        const int width = side + GAP + name_width;
        if (left > GAP && left + width > sheet.width - GAP) {
            left = GAP;
            top += request.line_height;
        }
        const int name_left = left + side + GAP;
        const int drop = (request.line_height - side) / 2;
        sheet.swatches.push_back({left, top + drop, left + side, top + drop + side});
        sheet.names.push_back(
            {name_left, top, std::min(name_left + name_width, sheet.width - GAP), top + request.line_height});
        left += width + 4 * GAP;
    }
    sheet.height = top + (request.entry_width.empty() ? 0 : request.line_height + GAP);
    return sheet;
}

void Sheet_Slice_Put(volumes::Picture& sheet, const Pixel_Rect& place, std::span<const std::uint32_t> slice, int width,
                     int height) {
    View_Layout layout;
    layout.scale_x = static_cast<double>(place.right - place.left) / width;
    layout.scale_y = static_cast<double>(place.bottom - place.top) / height;
    layout.left = place.left;
    layout.top = place.top;
    layout.slice_width = width;
    layout.slice_height = height;
    Slice_Scale(slice, layout, place, sheet.width, sheet.height, 0, sheet.pixels);
}

void Sheet_Letters_Put(volumes::Picture& sheet, const Pixel_Rect& place, const volumes::Picture& letters) {
    const Pixel_Rect area = Rect_Common({place.left, place.top, std::min(place.right, place.left + letters.width),
                                         std::min(place.bottom, place.top + letters.height)},
                                        {0, 0, sheet.width, sheet.height});
    for (int y = area.top; y < area.bottom; ++y) {
        for (int x = area.left; x < area.right; ++x) {
            std::uint32_t& pixel = sheet.pixels[static_cast<std::size_t>(y) * static_cast<std::size_t>(sheet.width) +
                                                static_cast<std::size_t>(x)];
            const std::uint32_t ink =
                letters.pixels[static_cast<std::size_t>(y - place.top) * static_cast<std::size_t>(letters.width) +
                               static_cast<std::size_t>(x - place.left)];
            std::uint32_t mixed = 0;
            for (const unsigned int shift : {16U, 8U, 0U}) {
                mixed |= std::max((pixel >> shift) & 0xFFU, (ink >> shift) & 0xFFU) << shift;
            }
            pixel = mixed;
        }
    }
}

void Sheet_Fill(volumes::Picture& sheet, const Pixel_Rect& place, std::uint32_t color) {
    const Pixel_Rect area = Rect_Common(place, {0, 0, sheet.width, sheet.height});
    for (int y = area.top; y < area.bottom; ++y) {
        const auto row = sheet.pixels.begin() + static_cast<std::ptrdiff_t>(y) * sheet.width;
        std::fill(row + area.left, row + std::max(area.right, area.left), color);
    }
}

}  // namespace workbench
