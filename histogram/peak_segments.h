/** Cuts a curve into one segment per maximum, from its derivative. Pure code. */
#pragma once

#include <array>
#include <span>

inline constexpr int SEGMENT_MAX = 100;  ///< segments that can be made

/** Bins first .. last (both included) around a maximum. */
struct Segment {
    int centre = 0;
    int first = 0;
    int last = 0;
};

struct Segment_List {
    std::array<Segment, SEGMENT_MAX> segment{};
    int nb = 0;
};

/** Finds the maxima of a curve by its derivative (n >= 2 values) and shares the bins among them without gap or overlap:
 * each valley is split at its middle, the lower half goes to the left. At most SEGMENT_MAX maxima, those of the lowest
 * bins. */
Segment_List Segments_Find(std::span<const float> derivative);
