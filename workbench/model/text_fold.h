/** Breaking of a text into rows that have the room. Pure code. */
#pragma once

#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace workbench {

/** Breaks between words; a word that is too long for a row of its own, as a path is, breaks behind a slash or a
 *  backslash, else where the row is full. Blanks at a break go, nothing else does.
 *  @param first_width room of the first row, which may be empty then; @param width of the others
 *  @param measure of a part of the text, in the unit of the widths; grows with the text
 *  @return at least one row; each has at least one letter of a text that is not empty, but for the first */
std::vector<std::wstring> Text_Fold(std::wstring_view text, int first_width, int width,
                                    const std::function<int(std::wstring_view)>& measure);
/** Every line of a text, in rows of at most so many letters. */
std::wstring Text_Folded(std::wstring_view text, int letters);

}  // namespace workbench
