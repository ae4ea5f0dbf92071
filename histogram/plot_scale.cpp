#include "histogram/plot_scale.h"

#include <algorithm>

Plot_Scale::Plot_Scale(const Plot_Rectangle& plot_rectangle, const Plot_Bins& plot_bins, float full_count)
    : rectangle(plot_rectangle),
      bins(plot_bins),
      count_full(full_count),
      column_step(plot_bins.nb_bins > 0
                      ? static_cast<float>(plot_rectangle.width) / static_cast<float>(plot_bins.nb_bins)
                      : 0.0F) {}

int Plot_Scale::Bin_To_Column(int bin) const {
    return rectangle.left + static_cast<int>(static_cast<float>(bin) * column_step);
}

int Plot_Scale::Column_To_Bin(int column) const {
    if (Is_Empty() || column < rectangle.left) {
        return 0;
    }
    const int guess = static_cast<int>(static_cast<float>(column - rectangle.left) / column_step);
    int bin = std::clamp(guess, 0, bins.nb_bins - 1);
    // The product is rounded and truncated, so the quotient can be one bin off either way.
    while (bin + 1 < bins.nb_bins && Bin_To_Column(bin + 1) <= column) {
        ++bin;
    }
    while (bin > 0 && Bin_To_Column(bin) > column) {
        --bin;
    }
    return bin;
}

int Plot_Scale::Count_To_Height(std::uint32_t count) const {
    if (count == 0 || !(count_full > 0.0F) || rectangle.height <= 0) {
        return 0;
    }
    // The full count is a float, so the count becomes one too; their product with the height would not fit into one.
    const double height =
        static_cast<double>(static_cast<float>(count)) * rectangle.height / static_cast<double>(count_full);
    return height >= rectangle.height ? rectangle.height : static_cast<int>(height);
}

float Plot_Scale::Height_To_Count(int height) const {
    return rectangle.height > 0 ? static_cast<float>(height) * count_full / static_cast<float>(rectangle.height) : 0.0F;
}

int Plot_Scale::Level_To_Bin(float level) const {
    if (!(level > bins.origin) || bins.nb_bins <= 0 || !(bins.bin_width > 0.0F)) {
        return 0;
    }
    const float bin = (level - bins.origin) / bins.bin_width;
    return bin >= static_cast<float>(bins.nb_bins - 1) ? bins.nb_bins - 1 : static_cast<int>(bin);
}

float Plot_Scale::Bin_To_Level(int bin) const {
    return (static_cast<float>(bin) + 0.5F) * bins.bin_width + bins.origin;
}
