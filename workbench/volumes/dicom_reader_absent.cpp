// In place of the reader where its library is not there.
#include <algorithm>

#include "workbench/volumes/dicom_head.h"
#include "workbench/volumes/dicom_reader.h"

namespace volumes {

bool Dicom_Is_Likely(std::span<const std::uint8_t> head) {
    constexpr std::size_t preamble_size = 128;
    constexpr std::array<std::uint8_t, 4> mark = {'D', 'I', 'C', 'M'};
    return head.size() >= preamble_size + mark.size() &&
           std::ranges::equal(head.subspan(preamble_size, mark.size()), mark);
}

Dicom_Result Dicom_Read(std::span<const std::uint8_t> file, const Load_Limits&, const Load_Progress&,
                        Reading_Room*) noexcept {
    Dicom_Result result;
    try {
        result.error = Dicom_Is_Likely(file) ? "is a DICOM file, which this program was built without a reader for"
                                             : "is no DICOM file";
    } catch (...) {
    }
    return result;
}

std::optional<Dicom_Head> Dicom_Head_Of(std::span<const std::uint8_t>) {
    return std::nullopt;
}

Dicom_Head Dicom_Head_Read(const std::filesystem::path&, Reading_Room&) {
    return {};
}

}  // namespace volumes
