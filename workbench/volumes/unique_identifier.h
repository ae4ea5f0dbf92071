/** Names for new DICOM objects that no other object has. */
#pragma once

#include <array>
#include <cstdint>
#include <string>

namespace volumes {

/** "2.25." and a random number of 128 bits, as ISO/IEC 9834-8 allows without asking an authority; at most 44 letters.
 */
std::string Unique_Identifier_New();
/** The number in decimal digits. @param words the highest first */
std::string Decimal_Text(std::array<std::uint32_t, 4> words);

}  // namespace volumes
