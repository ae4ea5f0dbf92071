/** What the readers of DICOM's labels share: where labels may be laid, room for them, and how reading ends. */
#pragma once

#include <cstdint>
#include <new>
#include <span>

#include "workbench/volumes/dicom_data_set.h"
#include "workbench/volumes/dicom_reader.h"
#include "workbench/volumes/dicom_segmentation.h"

namespace volumes {

/** The progress callback gave up. */
struct Label_Reading_Given_Up {};

/** Throws Dicom_Refusal when the image's file does not say where it lies: places of labels mean nothing on it. */
void Image_Place_Demand(const Volume& image);

/** Background everywhere, on the voxels of another volume. Throws Dicom_Refusal: more than the limit. */
Volume Labels_Like(const Volume& like, const Load_Limits& limits);

/** Runs a Reader, made of any bytes and what else it needs. @return what it gives, or why there is nothing */
template <class Reader, class... Needs>
Segmentation_Result Labels_Read_Guarded(std::span<const std::uint8_t> file, const Needs&... needs) noexcept {
    Segmentation_Result failed;
    try {
        try {
            if (Dicom_Is_Likely(file)) {
                return Reader(file, needs...).Read();
            }
            failed.error = "is no DICOM file";
        } catch (const Dicom_Refusal& refusal) {
            failed.error = refusal.text;
        } catch (const Label_Reading_Given_Up&) {
            failed.is_cancelled = true;
            failed.error = "was given up";
        } catch (const std::bad_alloc&) {
            failed.error = "needs more memory than there is";
        }
    } catch (...) {
        failed.error = "cannot be read";  // short enough to need no memory
    }
    return failed;
}

}  // namespace volumes
