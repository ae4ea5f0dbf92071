/** The file with the description of labels, beside the label volume. */
#pragma once

#include <filesystem>
#include <string>

#include "workbench/model/label_description.h"

namespace workbench {

/** "DATA.labels.txt" beside "DATA.nii" or "DATA.nii.gz". */
std::filesystem::path Label_Description_Path(const std::filesystem::path& labels);

/** Writes the description beside a label volume, in one step. A file there that this version does not understand as a
 *  whole is kept: a later version's as NAME.newer, another one as NAME.damaged.
 *  @param extent of the volume @param kept receives one sentence for the user when a file was kept, else is emptied
 *  @return empty, or one sentence for the user: then the former file is as it was */
std::string Label_Description_Save(const std::filesystem::path& labels, const Label_Description& description,
                                   const Label_Extent& extent, std::string& kept);

struct Label_Description_Loading {
    Label_Description description;  ///< empty when there is no file or when it is refused
    bool is_there = false;          ///< there was a description that could be read, maybe in part
    std::string warning;            ///< empty, or one sentence for the user
};
/** Reads the description beside a label volume. */
Label_Description_Loading Label_Description_Load(const std::filesystem::path& labels, const Label_Extent& extent);

}  // namespace workbench
