#include "workbench/volumes/image_file_bytes.h"

#include <algorithm>
#include <cstddef>
#include <new>
#include <span>
#include <utility>

#include "workbench/volumes/decoded_source.h"
#include "workbench/volumes/message_text.h"

namespace volumes {

namespace {

enum class Packed { Unpack, Leave };

std::optional<std::vector<std::uint8_t>> Read(const std::filesystem::path& path, std::uint64_t most,
                                              std::vector<std::uint8_t> bytes, Packed packed) {
    File_Source plain(path);
    if (!plain.Error().empty()) {
        throw File_Refusal{plain.Error()};
    }
    Decoded_Source source(plain);
    constexpr std::size_t head_size = 352;  // of a NIfTI file; that of a DICOM file is shorter
    static_assert(head_size >= DICOM_HEAD_SIZE);
    bytes.resize(head_size);
    bytes.resize(source.Read(bytes));
    if (packed == Packed::Leave && source.Compressed()) {
        return std::nullopt;
    }
    if (!bytes.empty() && !Dicom_Is_Likely(bytes)) {
        return bytes;
    }
    if (const std::uint64_t size = source.Size().value_or(0); size > bytes.size() && size <= most) {
        const std::size_t had = bytes.size();
        bytes.resize(static_cast<std::size_t>(size) + 1);  // one more, which is not there, shows the end
        bytes.resize(had + source.Read(std::span(bytes).subspan(had)));
    }
    constexpr std::size_t step = std::size_t{1} << 20U;
    while (source.End() == Decode_End::Not_Yet) {
        const std::size_t had = bytes.size();
        if (had > most) {
            throw File_Refusal{"is larger than the limit of " + Size_Text(most)};
        }
        bytes.resize(had + std::max(step, std::min(had, std::size_t{64} * step)));
        bytes.resize(had + source.Read(std::span(bytes).subspan(had)));
    }
    switch (source.End()) {
        case Decode_End::Complete:
            return bytes;
        case Decode_End::Read_Error:
            throw File_Refusal{"cannot be read to its end"};
        case Decode_End::Cut_Off:
            throw File_Refusal{"is cut short inside its compressed data"};
        case Decode_End::No_Memory:
            throw std::bad_alloc();
        default:
            throw File_Refusal{"has damaged compressed data"};
    }
}

}  // namespace

std::vector<std::uint8_t> Bytes_Read(const std::filesystem::path& path, std::uint64_t most,
                                     std::vector<std::uint8_t> bytes) {
    return Read(path, most, std::move(bytes), Packed::Unpack).value();
}

std::optional<std::vector<std::uint8_t>> Plain_Bytes_Read(const std::filesystem::path& path, std::uint64_t most,
                                                          std::vector<std::uint8_t> bytes) {
    return Read(path, most, std::move(bytes), Packed::Leave);
}

}  // namespace volumes
