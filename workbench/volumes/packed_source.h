/** Voxels that are packed inside a file whose header is not. */
#pragma once

#include <cstdint>
#include <memory>

#include "workbench/volumes/byte_source.h"

namespace volumes {

/** What zlib has packed without the frame of gzip. Throws std::bad_alloc.
 *  @param packed at the first packed byte; must outlive the result
 *  @param wanted bytes that will be read; behind them the checksum is looked for, and a missing one is a failure */
std::unique_ptr<Byte_Source> Zlib_Unpacked(Byte_Source& packed, std::uint64_t wanted);
/** What gzip has packed: damage and wrong checksums are failures. As Zlib_Unpacked. */
std::unique_ptr<Byte_Source> Gzip_Unpacked(Byte_Source& packed, std::uint64_t wanted);

}  // namespace volumes
