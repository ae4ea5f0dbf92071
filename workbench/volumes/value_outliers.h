/** Finds values so far from all others that a scale which reached them would flatten the rest. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace volumes {

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

/** A value is far away when it is so many times further from the others than they are from each other. */
inline constexpr double OUTLIER_DISTANCE = 4096.0;

/** Takes away what lies behind gaps of an eighth of the range and more, again and again, when it is far from the rest:
 *  values that are all the same (the mark of a program for "no value"), and those that are at most one in a thousand.
 *  Where nothing or one value only would be left, nothing is taken away.
 *  @param clusters finite, in any order, overlapping or not; empty: a range from 0 to 0
 *  @param distance how many times the width of the rest is far; above 8 */
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

}  // namespace volumes
