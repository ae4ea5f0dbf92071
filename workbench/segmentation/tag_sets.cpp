#include "workbench/segmentation/tag_sets.h"

#include <algorithm>
#include <cmath>
#include <utility>
#include <vector>

#include "workbench/segmentation/cancelling.h"

namespace workbench::segmentation {

namespace {

bool Is_In(Set_Operation operation, bool is_one, bool is_other) {
    switch (operation) {
        case Set_Operation::Add:
            return is_one || is_other;
        case Set_Operation::Subtract:
            return is_one && !is_other;
        case Set_Operation::Intersect:
            return is_one && is_other;
        case Set_Operation::Copy:
            break;
    }
    return is_other;
}

/** Where an outline crosses the line at a height, ascending. */
void Crossings_Find(std::span<const Outline_Point> outline, double height, std::vector<double>& crossings) {
    crossings.clear();
    for (std::size_t at = 0; at < outline.size(); ++at) {
        // From the upper corner to the lower one, so that both neighbours of a side find the same number.
        Outline_Point upper = outline[at];
        Outline_Point lower = outline[at + 1 < outline.size() ? at + 1 : 0];
        if (upper.y > lower.y) {
            std::swap(upper, lower);
        }
        if (upper.y <= height && height < lower.y) {
            crossings.push_back(upper.x + (height - upper.y) * ((lower.x - upper.x) / (lower.y - upper.y)));
        }
    }
    std::ranges::sort(crossings);
}

}  // namespace

std::optional<Label_Edit> Tag_Combine(const Edit_Input& input, std::uint8_t tag, Set_Operation operation,
                                      const Other_Set& other) {
    return Cancellable([&] {
        const Step_Progress progress(input.progress);
        const Slice_Range slices = input.Slices();
        const std::size_t size = input.grid.Slice_Size();
        Edit_Builder builder(input);
        std::vector<std::uint8_t> after(size);
        for (int z = slices.first; z <= slices.last; ++z) {
            progress.Report(z - slices.first, slices.last - slices.first + 1);
            input.Slice_Copy(z, after);
            const std::span<const std::uint8_t> others = other.tags.subspan(static_cast<std::size_t>(z) * size, size);
            for (std::size_t at = 0; at < size; ++at) {
                const bool is_one = after[at] == tag;
                if (Is_In(operation, is_one, others[at] == other.tag)) {
                    after[at] = tag;
                } else if (is_one) {
                    after[at] = 0;
                }
            }
            builder.Slice_Set(z, after);
        }
        progress.Report(1, 1);
        return builder.Take();
    });
}

Label_Edit Outline_Fill(const Edit_Input& input, int slice, std::span<const Outline_Point> outline, std::uint8_t tag) {
    const Slice_Range slices = input.Slices();
    const bool has_numbers = std::ranges::all_of(
        outline, [](const Outline_Point& point) { return std::isfinite(point.x) && std::isfinite(point.y); });
    if (slice < slices.first || slice > slices.last || !has_numbers) {
        return {};
    }
    const Label_Grid& grid = input.grid;
    std::vector<std::uint8_t> after(grid.Slice_Size());
    input.Slice_Copy(slice, after);
    std::vector<double> crossings;
    // The first pixel whose centre is not left of a place.
    const auto pixel = [&](double x) {
        return static_cast<std::ptrdiff_t>(std::ceil(std::clamp(x - 0.5, 0.0, static_cast<double>(grid.width))));
    };
    for (int y = 0; y < grid.height; ++y) {
        Crossings_Find(outline, y + 0.5, crossings);
        const auto row = after.begin() + static_cast<std::ptrdiff_t>(grid.Index(0, y, 0));
        for (std::size_t at = 0; at + 1 < crossings.size(); at += 2) {
            std::fill(row + pixel(crossings[at]), row + pixel(crossings[at + 1]), tag);
        }
    }
    Edit_Builder builder(input);
    builder.Slice_Set(slice, after);
    return builder.Take();
}

}  // namespace workbench::segmentation
