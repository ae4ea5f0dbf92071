// What tells a DICOM file from others by its first bytes.
#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_reader.h"

namespace volumes {

namespace {

bool Is_Group(std::uint8_t first, std::uint8_t second) {
    constexpr std::uint8_t identifying = 8;
    return (second == 0 && (first == identifying || first == 2)) ||
           (first == 0 && (second == identifying || second == 2));
}

}  // namespace

bool Dicom_Is_Likely(std::span<const std::uint8_t> head) {
    if (Dicom_Has_Mark(head) || Dicom_Has_Meta(head)) {
        return true;
    }
    // Without a preamble: a data set that begins with one of the first groups, in either byte order.
    constexpr std::size_t element_least = 8;
    return head.size() >= element_least && Is_Group(head[0], head[1]);
}

}  // namespace volumes
