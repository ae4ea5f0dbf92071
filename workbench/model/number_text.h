/** How numbers are shown to people, everywhere in the application. Pure code. */
#pragma once

#include <span>
#include <string>

namespace workbench {

inline constexpr int NUMBER_DIGITS = 3;  ///< significant digits of every number that is not whole, at least

/** A number with at least so many significant digits. The part before the point is never rounded, and whole numbers
 *  stand as they are. Where that would need too many characters it has an exponent: "4.58e-8". Never "-0".
 *  @param digits NUMBER_DIGITS or more @return ASCII; "none" for what is no number */
std::string Number_Text(double value, int digits = NUMBER_DIGITS);

/** A number that was measured in steps: with the decimals that tell one step from the next, and as many more as
 *  NUMBER_DIGITS asks for. What is less than half a step is 0. @param step 0: not known */
std::string Number_Text_In_Steps(double value, double step);

/** A value with its standard error: the error with two significant digits, the value as exactly as that but with
 *  NUMBER_DIGITS at least. An error of 0 or one that is no number leaves the value alone. @return UTF-8 */
std::string With_Error(double value, double error);

/** "frame 3", "frames 1 to 181", "frames 3, 5 to 9 and 12". @param frames ascending */
std::string Frames_Text(std::span<const int> frames);

/** Ten to a power as people write it, "10⁻⁶". @return UTF-8 */
std::string Power_Text(int exponent);

}  // namespace workbench
