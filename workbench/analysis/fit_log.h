/** A fit that explains itself: the module's own traces, told as a story per candidate. Pure code. */
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace workbench {

/** What became of one candidate. */
struct Fit_Candidate {
    int bin = 0;              ///< where it was found
    bool by_zero = false;     ///< true: a zero crossing of the derivative; false: a maximum of the data
    std::string dropped;      ///< why it was deleted, the module's own words; empty: it stayed
    double dropped_at = 0.0;  ///< its centre then, bins
};

/** Collects the traces of one analysis. Feed it every message between start and end. */
class Fit_Log {
  public:
    void Clear();
    /** @param level, text as received; other messages are passed over */
    void Add(int level, std::string_view text);

    const std::vector<Fit_Candidate>& Candidates() const { return candidates; }
    /** Error per iteration as the module printed it, in order. */
    const std::vector<std::string>& Iterations() const { return iterations; }
    /** Warnings, without their style bytes. */
    const std::vector<std::string>& Warnings() const { return warnings; }
    /** Smoothing passes of the derivative method, 0 when it did not run. */
    int Passes() const { return passes; }
    /** The whole story, a line per fact. */
    std::vector<std::string> Lines() const;

  private:
    void Drop(double centre, std::string_view reason);

    std::vector<Fit_Candidate> candidates;
    std::vector<std::string> iterations;
    std::vector<std::string> warnings;
    std::string stop;
    int passes = 0;
    int last_maxima = 0;
};

}  // namespace workbench
