/** Which files of a large folder can wait until their pixels are wanted. */
#pragma once

#include <cstdint>
#include <functional>
#include <span>
#include <vector>

#include "workbench/volumes/dicom_head.h"
#include "workbench/volumes/image_file_kind.h"

namespace volumes {

/** Whether files take more bytes than these together. */
bool Is_More_Than(std::span<const Wanted_File> files, std::uint64_t bytes);

/** Reads the heads of DICOM files on as many threads as there are processors.
 *  @param on_done as Work_Share has it
 *  @return one for each file, without an image where the file is to be read whole: also where several files hold an
 *  image of one identifier, for only their pixels tell whether they are copies. Empty: it was given up. Throws
 *  std::bad_alloc */
std::vector<Dicom_Head> Waiting_Heads(std::span<const Wanted_File> files,
                                      const std::function<bool(std::size_t)>& on_done);

}  // namespace volumes
