/** How data becomes pixels and back: one definition for the panel, its cursor, the TAG bands and the enlarged window.
 * Pure numbers. */
#pragma once

#include <cstdint>

/** A plot rectangle in pixels: columns left .. left + width - 1; heights are measured up from the base line, 0 ..
 * height. */
struct Plot_Rectangle {
    int left = 0;
    int width = 0;   ///< 0 or less: nothing can be drawn
    int height = 0;  ///< 0 or less: nothing can be drawn
    bool Is_Empty() const { return width <= 0 || height <= 0; }
};

/** Grid of a histogram as far as pixels depend on it. */
struct Plot_Bins {
    int nb_bins = 0;
    float origin = 0.0F;     ///< GLI value of the lower edge of bin 0
    float bin_width = 1.0F;  ///< GLI units
};

/** Maps bins, grey levels and counts of the panel's small plot. All products are single precision, truncated toward
 * zero. */
class Plot_Scale {
  public:
    /** @param full_count the count that reaches the top of the plot: the largest count times the magnification */
    Plot_Scale(const Plot_Rectangle& plot_rectangle, const Plot_Bins& plot_bins, float full_count);

    bool Is_Empty() const { return rectangle.Is_Empty() || bins.nb_bins <= 0; }
    /** First column of bin k; k = nb_bins gives the column after the plot's last bin. */
    int Bin_To_Column(int bin) const;
    /** The bin that a column shows (the last of those that begin at or before it), limited to the grid. */
    int Column_To_Bin(int column) const;
    /** Height of a count in pixels, 0 .. rectangle.height. */
    int Count_To_Height(std::uint32_t count) const;
    /** The count at a height. */
    float Height_To_Count(int height) const;
    /** The bin of a grey level: 0 at and below the origin (and for not a number), at most the last bin. */
    int Level_To_Bin(float level) const;
    /** Grey level of a bin's centre. */
    float Bin_To_Level(int bin) const;

    const Plot_Rectangle& Rectangle() const { return rectangle; }
    const Plot_Bins& Bins() const { return bins; }

  private:
    Plot_Rectangle rectangle;
    Plot_Bins bins;
    float count_full;
    float column_step;
};
