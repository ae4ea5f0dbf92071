/** Texts of a DICOM data set, whatever character sets they are written in. */
#pragma once

#include <string>
#include <string_view>

namespace volumes {

/** A value as UTF-8: single-byte sets, ISO 2022 with Japanese, Korean and Chinese sets between escape sequences, UTF-8,
 *  GB18030 and GBK. Bytes that are no characters of the set become U+FFFD, control characters blanks. Backslashes
 *  between values stay, those inside a character of several bytes do not count.
 *  @param sets the value of Specific Character Set with all its backslashes; unknown names are taken as Latin-1
 *  @param is_name a person's name: its parts begin anew with the first set */
std::string Dicom_Text_Utf8(std::string_view bytes, std::string_view sets, bool is_name);

}  // namespace volumes
