/** What the TAGs are called and how they look before the user changes it. */
#pragma once

#include <cstdint>
#include <string>

namespace workbench {

/** How many TAGs a new session offers. */
inline constexpr int TAG_DEFAULT_NB = 24;

struct Tag_Entry {
    std::string label;  ///< empty: shown by its number
    std::uint8_t red = 0;
    std::uint8_t green = 0;
    std::uint8_t blue = 0;
};

/** Name and colour that a TAG starts with. The first ones are named; every number has a colour of its own. */
Tag_Entry Tag_Default(int tag);

/** How many TAGs to offer so that `highest` is among them: a multiple of four, because the TAG panel lays out complete
 *  rows only, at least TAG_DEFAULT_NB and at most 256. */
int Tag_Count_For(int highest);

/** The TAG `step` places after `tag`, before it for a negative step; goes round. */
int Tag_Step(int tag, int step, int count);

}  // namespace workbench
