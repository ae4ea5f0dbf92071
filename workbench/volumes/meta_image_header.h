/** The text that a MetaImage begins with. See Text_Header for what is read of it. */
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "workbench/volumes/text_header.h"

namespace volumes {

/** @throw Header_Fault */
Text_Header Meta_Image_Decode(std::string_view text);
/** @param coded_size bytes of the compressed voxels */
std::string Meta_Image_Make(const Text_Header& header, std::uint64_t coded_size);

}  // namespace volumes
