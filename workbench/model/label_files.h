/** The files that labels are saved in: what they are called, and whether somebody else has changed them meanwhile. */
#pragma once

#include <filesystem>
#include <string>

#include "workbench/volumes/file_stamp.h"

namespace workbench {

/** Where the labels of an image are saved unless the user says otherwise: in the image's folder, under its name. A
 *  NIfTI file gives its own name, a file of a series the title of the series.
 *  @param image the file, or the first of them @param title of the volume, UTF-8 */
std::filesystem::path Label_Path_Proposed(const std::filesystem::path& image, const std::string& title);

/** A label volume and the text beside it. */
struct Label_Stamps {
    volumes::File_Stamp labels;
    volumes::File_Stamp description;
};
Label_Stamps Label_Stamps_Of(const std::filesystem::path& labels);

/** What speaks against writing a label volume and the text beside it. */
struct Save_Doubts {
    std::string changed;     ///< empty, or a sentence: files that somebody has written since
    std::string read_only;   ///< empty, or a sentence: files that are protected
    bool is_theirs = false;  ///< there is a changed label volume that could be loaded
    bool Is_None() const { return changed.empty() && read_only.empty(); }
};
/** @param known the files as they were read or written last */
Save_Doubts Save_Doubts_Of(const std::filesystem::path& labels, const Label_Stamps& known);

}  // namespace workbench
