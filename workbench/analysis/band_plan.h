/** Which TAG gets the grey levels of which peak. Pure code. */
#pragma once

#include <span>
#include <string>
#include <vector>

#include "workbench/analysis/peak_table.h"

namespace workbench {

/** The grey levels of a peak, and the TAG that is to claim them. */
struct Band_Choice {
    int peak = 0;  ///< its number in the table
    double from = 0.0;
    double to = 0.0;
    int tag = 0;  ///< 0: none
};

/** What a TAG claims now. */
struct Claimed_Levels {
    bool is_set = false;
    double from = 0.0;
    double to = 0.0;
};

class Band_Plan {
  public:
    /** Proposes TAGs 1, 2, 3 ... to the peaks in their order; none to the background's, and none when there are no
     *  more.
     *  @param background index of the peak of the background; -1: none @param tag_count number of TAGs, 0 included */
    Band_Plan(std::span<const Peak_Row> peaks, int background, int tag_count);

    const std::vector<Band_Choice>& Choices() const { return choices; }
    int Tag_Nb() const { return tag_nb; }
    /** Gives a peak's levels to a TAG; another peak that had it has none then. @param tag 0: none */
    void Tag_Set(std::size_t choice, int tag);

  private:
    std::vector<Band_Choice> choices;
    int tag_nb;
};

/** The peak that stands for the background: the lowest one, if it claims the fullest bin and is not the only one.
 * @return its index, -1: none @param mode grey value of the fullest bin */
int Background_Peak(std::span<const Peak_Row> peaks, double mode);

/** A choice for people: "Peak 2   12.3 to 45.6   TAG 1 Fluid, which claims 10.0 to 40.0 now". UTF-8
 *  @param now what the TAG claims */
std::string Band_Choice_Text(const Band_Choice& choice, const std::string& tag_name, const Claimed_Levels& now);

}  // namespace workbench
