#include "workbench/volumes/dicom_label_reading.h"

#include <cstdint>
#include <limits>

#include "workbench/volumes/message_text.h"

namespace volumes {

void Image_Place_Demand(const Volume& image) {
    if (image.affine_source == Affine_Source::Spacing || image.affine_source == Affine_Source::Chosen) {
        throw Dicom_Refusal{"cannot be laid on the image, whose file does not say where it lies in the patient"};
    }
}

Volume Labels_Like(const Volume& like, const Load_Limits& limits) {
    if (static_cast<std::uint64_t>(like.Voxel_Nb_3D()) * sizeof(std::uint16_t) > limits.decoded_bytes) {
        throw Dicom_Refusal{"needs more memory than the limit of " + Size_Text(limits.decoded_bytes)};
    }
    Volume labels;
    labels.nx = like.nx;
    labels.ny = like.ny;
    labels.nz = like.nz;
    labels.nt = 1;
    labels.spacing = like.spacing;
    labels.affine = like.affine;
    labels.affine_source = like.affine_source;
    labels.scalar_type = "uint8";
    labels.levels = Voxel_Levels::Of_Range(like.Voxel_Nb_3D(), 0, std::numeric_limits<std::uint8_t>::max(), false);
    return labels;
}

}  // namespace volumes
