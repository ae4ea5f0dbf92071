/** Fonts for texts whose letters the usual one lacks: names in Chinese, Japanese, Korean and other scripts. */
#pragma once

#include "base/gdi_handles.h"

#include <cstddef>
#include <functional>
#include <span>
#include <string_view>

namespace workbench {

/** Faces that have letters of other scripts, the usual ones of the system first. A face that is not installed does no
 *  harm: the system puts another one in its place. */
std::span<const wchar_t* const> Faces_Of_Scripts();

/** Letters of a text that a font has no sign for. @param dc a device context of where the text goes */
std::size_t Letters_Missing(HDC dc, HFONT font, std::wstring_view text);

/** The face that lacks the fewest letters, the first of equal ones. @param missing letters that the usual font lacks
 *  @param missing_of letters that a face lacks; is asked no further once a face lacks none
 *  @return null: none is better than the usual font */
const wchar_t* Face_Choose(std::size_t missing, std::span<const wchar_t* const> faces,
                           const std::function<std::size_t(const wchar_t* face)>& missing_of);

/** The font for a whole line of text. @param made owns the font that is given when it is not the usual one
 *  @return the usual font as long as it has all letters, or no other has more of them; else one of its size and weight
 */
HFONT Font_For(HDC dc, HFONT usual, std::wstring_view text, Gdi_Font& made);

}  // namespace workbench
