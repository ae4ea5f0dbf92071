/** What a character of the system's code page is, and its conversion to and from wide text. The one definition for all
 * kits, and for nobody else. */
#pragma once

#include "host/kit_common.h"

/** Most wide characters that one character of a code page becomes. */
inline constexpr int WIDE_PER_CHARACTER = 2;
/** Most bytes that one character takes in any code page. */
inline constexpr int BYTES_PER_CHARACTER = 8;

/** Bytes of the character that begins at `text`. 0 at the end of the text, and for a character that the end of the text
 * cuts off. A byte that begins no character counts as a character of its own. */
KIT_COMMON_API int Character_Bytes(const char* text);
/** Converts one character. @param out room for WIDE_PER_CHARACTER. @return how many were written, 0 when it cannot be
 * expressed */
int Wide_Of_Character(const char* text, int bytes, wchar_t* out);
/** Wide characters of the character that begins at `text`, 1 or 2; 0 at the end. */
KIT_COMMON_API int Wide_Character_Units(const wchar_t* text);
/** Converts one wide character to the code page, '?' when it has no such character.
 *  @param out room for BYTES_PER_CHARACTER. @return bytes written, at least 1 */
KIT_COMMON_API int Bytes_Of_Wide_Character(const wchar_t* text, int units, char* out);
/** True when the system's code page is UTF-8. */
KIT_COMMON_API bool Code_Page_Is_Utf8();

#if defined(_WIN32)
/** Character_Bytes in the code page of that number. */
KIT_COMMON_API int Character_Bytes_In(unsigned int code_page, const char* text);
/** The number of the code page that texts are in: the system's. */
KIT_COMMON_API unsigned int Code_Page();
/** Another page in place of the system's, 0: the system's again. Tests walk through pages that their machine has not.
 */
KIT_COMMON_API void Code_Page_Set(unsigned int code_page);
#endif

/** Character_Bytes for UTF-8. */
int Utf8_Character_Bytes(const char* text);
