/** What stands in compressed pictures besides the picture: comments and what programs keep there. */
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdatset.h"

namespace workbench::archive {

/** Writes zeros over the comments and the segments of programs of a JPEG or JPEG-LS stream; those that say how colours
 *  are meant stay. Lengths and places stay as they are. @return where the picture ends; no value: it is no such stream,
 *  and may be changed in part */
std::optional<std::size_t> Jpeg_Comments_Blank(std::span<std::uint8_t> stream);
/** The same of a JPEG 2000 stream without a file around it. */
std::optional<std::size_t> Jpeg_2000_Comments_Blank(std::span<std::uint8_t> stream);

/** Does that in every compressed picture of an object, and behind the end of each; of run-length coded ones it is what
 *  their headers do not use, and what follows the runs of each segment. @return empty, or why there may still be
 * something, so that the object is not to be sent: "its compressed pictures cannot be looked through"; a picture may be
 * changed in part then */
std::string Picture_Comments_Blank(DcmDataset& data_set);

}  // namespace workbench::archive
