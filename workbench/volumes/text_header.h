/** Images whose header is text, NRRD and MetaImage: what the header says, and what it looks like. */
#pragma once

#include <array>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

#include "workbench/volumes/byte_order.h"
#include "workbench/volumes/nifti_header.h"
#include "workbench/volumes/volume.h"

namespace volumes {

enum class Text_Header_Kind { Nrrd, Meta_Image };
/** "NRRD", "MetaImage". */
const char* Text_Header_Kind_Name(Text_Header_Kind kind);

inline constexpr std::size_t TEXT_HEADER_MOST = 1U << 20U;  ///< bytes; a longer header is refused

/** Recognises a file by its first bytes, some hundred or all. */
std::optional<Text_Header_Kind> Text_Header_Recognise(std::span<const std::uint8_t> first);
/** Bytes of the header at the beginning of a text, the line ends behind it included. @param is_whole no more follow the
 *  text's @return nothing: its end is not among them */
std::optional<std::size_t> Text_Header_Size(Text_Header_Kind kind, std::string_view text, bool is_whole);

enum class Voxel_Coding { Plain, Gzip, Zlib };

/** What a header says, checked. */
struct Text_Header {
    Voxel_Type type = Voxel_Type::Uint8;
    Byte_Order order = Byte_Order::Little;
    std::array<std::int64_t, 4> size{1, 1, 1, 1};  ///< x, y, z, times; 1 .. 2^31 - 1
    std::array<double, 3> spacing{1.0, 1.0, 1.0};  ///< mm, positive
    double time_step = 0.0;                        ///< seconds; 0: unknown
    bool has_place = false;                        ///< the header says how the patient lies
    Affine affine{};                               ///< to the patient's right, front and top; only with a place
    Voxel_Coding coding = Voxel_Coding::Plain;
    std::string data_file;        ///< name of the file with the voxels, as the header has it; empty: they follow
    std::int64_t skip_lines = 0;  ///< lines before the voxels
    std::int64_t skip_bytes = 0;  ///< bytes behind them before the voxels; -1: the voxels are the end of the file
};
struct Text_Header_Result {
    Text_Header header;
    std::string error;  ///< empty: `header` is right; else what is wrong, to follow the file's name
};
/** Reads a header. Never throws but for want of memory. */
Text_Header_Result Text_Header_Decode(Text_Header_Kind kind, std::string_view text);

/** A header for voxels that follow it. A place is written when `has_place`. @param coded_size bytes of the compressed
 *  voxels, for a MetaImage */
std::string Text_Header_Make(Text_Header_Kind kind, const Text_Header& header, std::uint64_t coded_size);

}  // namespace volumes
