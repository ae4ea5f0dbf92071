/** Merging of per-frame histograms onto one common grid: pure numeric code over the records, no panel, no host
 *  variable.
 *
 *  All grid arithmetic is in single precision, in the order written here; targets are truncated toward zero. Counts are
 *  unsigned and wrap, so that sums may be regrouped without changing a bit of the result.
 */
#pragma once

#include <array>
#include <cstdint>

#include "host/kit_dataset.h"

/** Extent of the frames that take part, before the grid is chosen. */
struct Histogram_Extent {
    float lowest_origin = 1000000.0F;  ///< GLI
    float highest_edge = -1000000.0F;  ///< GLI
    float finest_width = 1000000.0F;   ///< GLI units per bin

    /** Widens the extent by one frame's histogram; its upper edge counts with its own bin width. */
    void Add(const Histo_Record& frame);
    /** False as long as no histogram was added. */
    bool Is_Valid() const { return !(lowest_origin > highest_edge); }
};

/** The common grid. */
struct Histogram_Grid {
    float origin = 0.0F;     ///< GLI value of the lower edge of bin 0
    float bin_width = 1.0F;  ///< GLI units; a whole multiple of the finest frame width
    std::uint16_t nb_bins = 1;
};

/** Chooses the grid: the smallest whole multiple of the finest width that keeps the bin count within `limit`.
 *  Contract: hosts with whole-number levels find the top one counted: the span is one GLI unit more than the extent.
 *  An extent whose span is not positive (or not a number) gives one bin. A limit of 0 gives a grid of 0 bins. */
Histogram_Grid Histogram_Grid_Choose(const Histogram_Extent& extent, std::uint16_t limit);

/** Adds frames to a merged record, frame after frame.
 *
 *  Frame bin i goes whole to record bin trunc(((i + 0.5) * frame width + frame origin - record origin) / record width).
 *  A bin is dropped when that target is negative, at or beyond the frame's own bin count, or beyond the record.
 *  Successive frames of one grid are summed first and mapped once.
 *
 *  Contract: hosts compare totals with earlier ones; a bound by the record's bin count would keep more of them.
 */
class Histogram_Merger {
  public:
    /** @param target_record grid and zeroed arrays; the component arrays may be added later, before the first colour
     * frame is. Not owned. */
    explicit Histogram_Merger(Histo_Record& target_record);
    Histogram_Merger(const Histogram_Merger&) = delete;
    Histogram_Merger& operator=(const Histogram_Merger&) = delete;
    /** Finishes what is pending. */
    ~Histogram_Merger();

    /** Adds one frame. Components are added when the frame has HISTO_COLOR and the record has its arrays. The record
     * and its arrays are read until Finish. */
    void Add(const Histo_Record& frame);
    /** Maps what is still summed up. The record is complete afterwards. */
    void Finish();

  private:
    static constexpr int GROUP = 4;  // frames that are summed at a time

    bool Is_Of_Run(const Histo_Record& frame) const;  // the same grid and as many arrays
    void Sum_Group();

    Histo_Record& record;
    const Histo_Record* run = nullptr;               // first frame of the run; gives the run's grid
    bool summed = false;                             // the scratch arrays hold sums of the run
    std::array<const Histo_Record*, GROUP> group{};  // frames of the run that are not summed yet
    int group_nb = 0;
};

/** Largest count of all arrays of a record (the component arrays only with HISTO_COLOR); 0 without bins. */
std::uint32_t Histogram_Max_Count(const Histo_Record& record);
