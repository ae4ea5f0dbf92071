/** Colours of a screen as CIELab, the way DICOM tells them. */
#pragma once

#include <array>
#include <cstdint>

namespace volumes {

/** L, a and b as DICOM stores them: 0 .. 65535 for 0 .. 100, and for -128 .. 127. */
using Stored_Lab = std::array<std::uint16_t, 3>;

/** sRGB (IEC 61966-2-1, D65) brought to the reference white D50 by Bradford's adaptation, then CIE 1976 L*a*b*.
 *  @param color 0x00RRGGBB */
Stored_Lab Lab_Of_Color(std::uint32_t color);
/** The way back, limited to what a screen shows; exact for all that Lab_Of_Color gives.
 *  @param lab stored numbers, any @return 0x00RRGGBB */
std::uint32_t Color_Of_Lab(const std::array<double, 3>& lab);

}  // namespace volumes
