/** The text that an NRRD file begins with. See Text_Header for what is read of it. */
#pragma once

#include <string>
#include <string_view>

#include "workbench/volumes/text_header.h"

namespace volumes {

/** @param text of the header, the mark included @throw Header_Fault */
Text_Header Nrrd_Decode(std::string_view text);
std::string Nrrd_Make(const Text_Header& header);

}  // namespace volumes
