/** What the panels read, as it is after the start. */
#pragma once

#include <cstdint>
#include <string>

namespace c_interface {

// Arrays have room for all that panels show, whatever the counts are.
inline constexpr int TAG_ROOM = 256;
inline constexpr int MARKER_ROOM = 64;
inline constexpr int BRUSH_ROOM = 8;
inline constexpr int BRUSH_RADIUS_MOST = 181;  ///< beyond it the square of a radius is no 16-bit number

/** Defines every variable. @param scale 1 at 96 dots per inch; @param icons folder in the code page */
void Variables_Define(float scale, const std::string& icons);
/** Objects and memory of the session are in no variable any more. */
void Variables_End();
/** Gives the masks of all brushes that half-width. Throws bad_alloc; then nothing has changed. */
void Brush_Masks_Make(int radius);
/** Half-width of the masks, the middle not counted. */
int Brush_Mask_Radius();

/** True when panels trust a relation of this variable to another one, so that its functions alone may write it. */
bool Is_Kept_By_Tables(const std::string& name);

}  // namespace c_interface
