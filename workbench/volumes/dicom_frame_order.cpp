#include "workbench/volumes/dicom_frame_order.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "workbench/volumes/dicom_reader.h"

namespace {

constexpr double depth_same = 0.01;  // mm: slices nearer than this lie at one place

}  // namespace

std::array<double, 3> Slice_Normal(const Slice_Place& place) {
    const auto& row = place.along_row;
    const auto& column = place.along_column;
    return {row[1] * column[2] - row[2] * column[1], row[2] * column[0] - row[0] * column[2],
            row[0] * column[1] - row[1] * column[0]};
}

double Slice_Depth(const Slice_Place& place) {
    const std::array<double, 3> normal = Slice_Normal(place);
    return normal[0] * place.corner[0] + normal[1] * place.corner[1] + normal[2] * place.corner[2];
}

Affine Affine_Of(const Slice_Place& first, const std::array<double, 3>& spacing, const std::array<double, 3>& step) {
    Affine affine{};
    for (std::size_t row = 0; row < 3; ++row) {
        // To the left and back there, to the right and front here.
        const double sign = row < 2 ? -1.0 : 1.0;
        affine[row] = {sign * first.along_row[row] * spacing[0], sign * first.along_column[row] * spacing[1],
                       sign * step[row], sign * first.corner[row]};
    }
    return affine;
}

std::vector<std::int32_t> Slices_In_Order(const std::vector<double>& depth, const std::vector<double>& later,
                                          std::int32_t& nz, std::int32_t& nt) {
    std::vector<std::int32_t> order(depth.size());
    std::iota(order.begin(), order.end(), 0);
    const auto at = [](std::int32_t number) { return static_cast<std::size_t>(number); };
    std::ranges::stable_sort(order, {}, [&](std::int32_t slice) { return depth[at(slice)]; });
    std::vector<std::vector<std::int32_t>> places;
    for (const std::int32_t slice : order) {
        if (places.empty() || depth[at(slice)] - depth[at(places.back().front())] > depth_same) {
            places.emplace_back();
        }
        places.back().push_back(slice);
    }
    nz = static_cast<std::int32_t>(places.size());
    nt = places.empty() ? 1 : static_cast<std::int32_t>(places.front().size());
    std::vector<std::int32_t> result(order.size());
    for (std::size_t z = 0; z < places.size(); ++z) {
        if (places[z].size() != at(nt)) {
            nz = static_cast<std::int32_t>(order.size());
            nt = 1;
            return {};
        }
        std::ranges::sort(places[z]);
        std::ranges::stable_sort(places[z], {}, [&](std::int32_t slice) { return later[at(slice)]; });
        for (std::size_t t = 0; t < at(nt); ++t) {
            result[t * places.size() + z] = places[z][t];
        }
    }
    return result;
}
