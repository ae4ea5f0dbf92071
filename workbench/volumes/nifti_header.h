/** The headers of NIfTI-1, NIfTI-2 and Analyze 7.5 files: decoding and checking. */
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "workbench/volumes/byte_order.h"
#include "workbench/volumes/volume.h"

namespace volumes {

inline constexpr std::size_t NIFTI1_HEADER_SIZE = 348;   ///< bytes; Analyze 7.5 has the same
inline constexpr std::size_t NIFTI2_HEADER_SIZE = 540;   ///< bytes
inline constexpr std::size_t NIFTI_EXTENDER_SIZE = 4;    ///< bytes behind a header that tell whether extensions follow
inline constexpr std::size_t NIFTI_EXTENSION_STEP = 16;  ///< an extension's size is a multiple of this many bytes

enum class Nifti_Format { Analyze, Nifti_1, Nifti_2 };

/** Voxel types that can be loaded; the numbers are those of the field datatype. */
enum class Voxel_Type : std::int32_t {
    Uint8 = 2,
    Int16 = 4,
    Int32 = 8,
    Float32 = 16,
    Float64 = 64,
    Rgb24 = 128,
    Int8 = 256,
    Uint16 = 512,
    Uint32 = 768,
    Int64 = 1024,
    Uint64 = 1280,
    Rgba32 = 2304,
};
/** "uint8", "float32", "rgb24" ... */
const char* Voxel_Type_Name(Voxel_Type type);
/** Bytes of one voxel in a file. */
std::size_t Voxel_Type_Size(Voxel_Type type);

/** A header whose every field has been checked. */
struct Nifti_Header {
    Nifti_Format format = Nifti_Format::Nifti_1;
    Byte_Order order = Byte_Order::Little;
    bool single_file = true;                       ///< false: the voxels are in a file of their own
    std::array<std::int32_t, 4> size{1, 1, 1, 1};  ///< x, y, z, and all further dimensions multiplied; each 1 or more
    std::uint64_t voxel_nb = 1;                    ///< product of the four; voxel_nb * voxel size fits 63 bits
    Voxel_Type type = Voxel_Type::Uint8;
    std::uint64_t voxel_offset = 0;  ///< bytes from the beginning of the file with the voxels
    double slope = 1;                ///< finite, not 0; 1 when the file says none
    double intercept = 0;            ///< finite
    Stored_Geometry geometry;
};

/** What Nifti_Header_Size says of a file's first bytes. */
struct Nifti_Header_Kind {
    std::size_t size = 0;  ///< NIFTI1_HEADER_SIZE or NIFTI2_HEADER_SIZE
    Byte_Order order = Byte_Order::Little;
};
/** Recognises a header by its first four bytes. @return no value: not a header */
std::optional<Nifti_Header_Kind> Nifti_Header_Recognise(std::span<const std::uint8_t, 4> bytes);

struct Nifti_Header_Result {
    Nifti_Header header;
    std::string error;  ///< empty: `header` is right; else what is wrong, to follow the file's name: "has 9 dimensions,
                        ///< and 1 to 7 are possible"
};
/** Decodes and checks a header. Never throws but for want of memory.
 *  @param bytes exactly as many as Nifti_Header_Recognise asks for */
Nifti_Header_Result Nifti_Header_Decode(std::span<const std::uint8_t> bytes);

}  // namespace volumes
