/** Finds values so far from all others that a scale which reached them would flatten the rest. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/** Values that lie together. */
struct Value_Cluster {
    double lowest = 0.0;
    double highest = 0.0;
    std::uint64_t count = 0;
};

/** What is left when the outliers are taken away. */
struct Value_Range {
    double lowest = 0.0;
    double highest = 0.0;
    std::uint64_t outlier_nb = 0;
    double outlier_lowest = 0.0;   ///< of the outliers; 0 without any
    double outlier_highest = 0.0;  ///< the same
};

/** All others share less than one part in so many of the whole range when a value counts as far away. */
inline constexpr double OUTLIER_DISTANCE = 4096.0;

/** Takes away what lies behind gaps of an eighth of the range and more, again and again: values that are all the same
 *  (the mark of a program for "no value"), and those that are at most one in a thousand. Where what would be left is
 * not so narrow that it is flattened, or would be one value only, nothing is taken away.
 *  @param clusters finite, in any order, overlapping or not; empty: a range from 0 to 0
 *  @param distance what is left is flattened when it is less than one part in `distance` of the whole; above 8 */
Value_Range Value_Range_Find(std::vector<Value_Cluster> clusters, double distance = OUTLIER_DISTANCE);

/** Collects values in clusters no wider than a sixteenth of their magnitude. Memory: two megabytes, whatever the number
 * of values. */
class Value_Clusters {
  public:
    Value_Clusters();
    /** @param value finite */
    void Take(double value);
    std::vector<Value_Cluster> All() const;

  private:
    std::vector<Value_Cluster> bins;  // by sign, exponent and the first four digits of the value
};
