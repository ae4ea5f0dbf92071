/** What stands in compressed pictures besides the picture: comments and what programs keep there. */
#pragma once

#include <string>

#include "dcmtk/config/osconfig.h"
#include "dcmtk/dcmdata/dcdatset.h"

namespace workbench::archive {

/** Writes zeros over the comments in every compressed picture of an object, over the segments of programs that do not
 *  say how colours are meant, and over what is behind the end of each picture; of run-length coded ones it is what
 *  their headers do not use, and what follows the runs of each segment. @return empty, or why there may still be
 *  something, so that the object is not to be sent: "its compressed pictures cannot be looked through"; a picture may
 *  be changed in part then */
std::string Picture_Comments_Blank(DcmDataset& data_set);

}  // namespace workbench::archive
