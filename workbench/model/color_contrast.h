/** How well one colour is seen on another: luminance and contrast as the Web Content Accessibility Guidelines 2.1
 * define them. Colours are 0x00RRGGBB in sRGB. */
#pragma once

#include <cstdint>

namespace workbench {

inline constexpr double CONTRAST_TEXT = 4.5;     ///< least ratio for text
inline constexpr double CONTRAST_GRAPHIC = 3.0;  ///< least ratio for large text, marks and the edges of controls

/** A component of sRGB, 0 to 255, as a share of linear light. */
double Linear_Of_Component(int component);
/** 0 (black) to 1 (white). */
double Relative_Luminance(std::uint32_t color);
/** 1 (the same) to 21 (black and white); the order of the two does not count. */
double Contrast_Ratio(std::uint32_t a, std::uint32_t b);

}  // namespace workbench
