/** The list of keys and mouse gestures, for the help window and for docs/keys.md. */
#pragma once

#include <string>

namespace workbench {

/** For a fixed-width font: menu entries with their keys, then what keys and mouse do in each part of the window. */
std::wstring Keys_Text();
/** The same as a document. */
std::string Keys_Document();

}  // namespace workbench
