/** What the user types into a find field, as a condition on texts. */
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace workbench {

/** The words of a find field: a text matches when each of them occurs in it. Letters of the English alphabet match
 *  either case. */
class Find_Words {
  public:
    Find_Words() = default;
    /** @param typed words between blanks */
    explicit Find_Words(std::string_view typed);
    bool Is_Empty() const { return words.empty(); }
    /** Without words nothing matches. */
    bool Match(std::string_view text) const;

  private:
    std::vector<std::string> words;  ///< in small letters
};

}  // namespace workbench
