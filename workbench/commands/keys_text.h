/** The list of keys and mouse gestures, for the help window and for docs/keys.md. UTF-8. */
#pragma once

#include <string>
#include <vector>

namespace workbench {

/** One line of the list of keys. */
struct Key_Line {
    std::string menu;  ///< title of the menu, without its mark
    std::string what;  ///< the entry's text, without its mark and dots
    std::string keys;  ///< all keys, parted by commas; empty: by the menu only
};
/** All commands in the order of the menus. */
std::vector<Key_Line> Key_Lines();

/** For a fixed-width font: menu entries with their keys, then what keys and mouse do in each part of the window. */
std::string Keys_Text();
/** The same as a document. */
std::string Keys_Document();

}  // namespace workbench
