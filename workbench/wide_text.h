/** Text between UTF-8 and the wide characters of the window system. */
#pragma once

#include <string>
#include <string_view>

namespace workbench {

/** UTF-8 to wide; broken bytes become replacement characters. */
std::wstring Wide_Of_Utf8(std::string_view text);
std::string Utf8_Of_Wide(std::wstring_view text);
/** A text of the panels (TAG labels, messages), which is in the system's code page. */
std::wstring Wide_Of_Panel(const char* text);
/** The same the other way; letters that the code page lacks become question marks. */
std::string Panel_Of_Wide(std::wstring_view text);

}  // namespace workbench
