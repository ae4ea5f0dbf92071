/** Finds the grid that real values lie on, as those of an image of few greys do. */
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

namespace volumes {

/** Largest magnitude of whole numbers that real values keep as levels; every whole float32 up to it is exact. */
inline constexpr double WHOLE_RANGE = 16777216.0;

/** Equal steps from the smallest value to the largest. */
struct Value_Grid {
    std::int32_t step_nb = 0;
    double max_error = 0.0;  ///< largest distance of a value from its step, in the values' unit
};

/** Takes values with their numbers among QUANTISED_STEPS steps, and finds out whether fewer steps tell as much: without
 * gaps in the histogram where no value can be. Memory: some megabyte, whatever the number of values. */
class Value_Steps {
  public:
    /** @param value_range largest value minus the smallest one */
    explicit Value_Steps(double value_range);
    /** @param difference of the value to the smallest one, 0 .. range @param step its number, 0 .. QUANTISED_STEPS */
    void Note(double difference, std::int32_t step) {
        if (!is_spread) {
            Take(difference, static_cast<std::size_t>(step));
        }
    }
    /** Nothing when the values lie on no grid of at most QUANTISED_STEPS steps, or on it only by losing more than a
     * fourth of a step of QUANTISED_STEPS. */
    std::optional<Value_Grid> Grid() const;
    /** The number among a grid's steps of the values that had this number among QUANTISED_STEPS. */
    std::int32_t Step_Of(std::int32_t step, const Value_Grid& grid) const;

  private:
    void Take(double difference, std::size_t step);
    double range;
    double close;             // values nearer than this are one
    double spread = 0.0;      // largest distance of values that are one
    bool is_spread = false;   // one step has values that are apart: no grid
    std::vector<double> one;  // a value of each step; negative: none
};

}  // namespace volumes
