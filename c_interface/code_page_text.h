/** Texts between the C interface (UTF-8) and the panels (the system's code page). */
#pragma once

#include <string>

namespace c_interface {

/** @param text UTF-8 @param out receives the text in the code page @return false: not UTF-8, or not in that page */
bool Page_Of_Utf8(const char* text, std::string& out);
/** Bytes that are no text become replacement characters. */
std::string Utf8_Of_Page(const char* text);
/** Page_Of_Utf8, or a Failure; also for null. */
std::string Page_Text(const char* text);
/** The folder of the icons beside the running program; empty without one. */
std::string Icon_Folder_Beside_Program();

}  // namespace c_interface
